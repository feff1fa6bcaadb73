// field and fields of zv4280ctl.
#include "field_commands.h"

#include "bench_methods.h"
#include "ctl_board.h"
#include "ctl_field.h"
#include "ctl_options.h"
#include "ctl_output.h"
#include "ctl_session.h"
#include "engine/field_search.h"
#include "engine/form_model.h"
#include "engine/register_images.h"
#include "part.h"
#include "usb_link.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QScopeGuard>

FieldCommands::FieldCommands(CtlSession& s, CtlOutput& o) : session(s), out(o) {}

int FieldCommands::boardFailure(const QString& what)
{
    const QString why = CtlBoard::absence(session.boardChosen());
    return out.fail(CtlExit::Board, why.isEmpty() ? what : what + QStringLiteral(": ") + why);
}

bool FieldCommands::resolve(const QStringList& names, QList<CtlField>* fields, int* status)
{
    for (const QString& name : names) {
        const CtlField f(session.model(), name);
        if (!f.valid()) {
            const QStringList near = CtlField::nearest(session.model(), name);
            if (!near.isEmpty())
                out.set(QStringLiteral("suggestions"), QJsonArray::fromStringList(near));
            *status = out.fail(CtlExit::Usage,
                               QStringLiteral("no field \"%1\"%2 (zv4280ctl fields lists them)")
                                   .arg(name, near.isEmpty() ? QString()
                                                             : QStringLiteral("; nearest: ") + near.join(QStringLiteral(", "))));
            return false;
        }
        fields->append(f);
    }
    return true;
}

int FieldCommands::field(const QStringList& arguments)
{
    int assignments = 0;
    for (const QString& a : arguments)
        assignments += a.contains(QLatin1Char('=')) ? 1 : 0;
    if (assignments == 0)
        return read(arguments);
    if (assignments == arguments.size())
        return write(arguments);
    return out.fail(CtlExit::Usage, QStringLiteral("give either names to read or NAME=CODE to change, not both"));
}

int FieldCommands::read(const QStringList& names)
{
    QList<CtlField> fields;
    int status = 0;
    if (!resolve(names, &fields, &status))
        return status;
    const QString failure = session.run(clerk::Command::ChipToGui);
    if (!failure.isEmpty())
        return boardFailure(failure);
    report(fields, {});
    return out.done();
}

// Everything is checked before the chip is touched; then the chip is read,
// the widgets set, the changed registers written and the chip read back.
int FieldCommands::write(const QStringList& assignments)
{
    QList<CtlField> fields;
    QList<quint32> codes;
    for (const QString& a : assignments) {
        const int eq = a.indexOf(QLatin1Char('='));
        const QString name = a.left(eq), codeText = a.mid(eq + 1);
        int status = 0;
        if (!resolve({name}, &fields, &status))
            return status;
        const CtlField& f = fields.last();
        const QString refusal = f.refusal(false);
        if (!refusal.isEmpty())
            return out.fail(CtlExit::Usage, refusal);
        for (int i = 0; i + 1 < fields.size(); ++i)
            if (&fields.at(i).record() == &f.record())
                return out.fail(CtlExit::Usage, QStringLiteral("%1 is given twice").arg(f.name()));
        quint32 code = 0;
        if (!f.codeOf(codeText, &code))
            return out.fail(CtlExit::Usage, QStringLiteral("%1 (%2) takes %3, not \"%4\"")
                                                .arg(f.name(), f.kindWords(), f.allowed(), codeText));
        codes.append(code);
    }

    session.settings.changesOnly = true;
    session.settings.readBack = true;
    session.settings.readBackWritten = true;
    session.settings.writePauseMs = 0;
    // The read, the write and the read-back go to one board.
    usb_link& link = session.link();
    link.holdBoard();
    const auto release = qScopeGuard([&link] { link.releaseBoard(); });
    QString failure = session.run(clerk::Command::ChipToGui);
    if (!failure.isEmpty())
        return boardFailure(failure);
    // A field that the chip's state leaves disabled in the forms is refused
    // before anything is written.
    for (int i = 0; i < fields.size(); ++i) {
        const QString refusal = fields.at(i).refusal(true);
        if (!refusal.isEmpty())
            return out.fail(CtlExit::Usage, refusal);
        fields.at(i).setCode(codes.at(i));
    }

    const RegisterImages& map = session.images();
    QJsonArray written;
    for (quint32 r = 0; r < map.registerCount; ++r)
        if (map.guiImage[r] != map.icImage[r])
            written.append(int(r));
    out.set(QStringLiteral("written"), written);
    failure = session.run(clerk::Command::GuiToChip);
    if (!failure.isEmpty())
        return boardFailure(failure);

    report(fields, codes);
    QStringList differing;
    for (int i = 0; i < fields.size(); ++i)
        if (fields.at(i).code() != codes.at(i))
            differing.append(QStringLiteral("%1 reads back %2 after %3 was written")
                                 .arg(fields.at(i).name())
                                 .arg(fields.at(i).code())
                                 .arg(codes.at(i)));
    if (!differing.isEmpty())
        return out.fail(CtlExit::Differs, differing.join(QStringLiteral("; ")));
    return out.done();
}

// "NAME=CODE<tab>what the screens show", one line a field, which a later
// "field NAME=CODE" takes back.
void FieldCommands::report(const QList<CtlField>& fields, const QList<quint32>& asked)
{
    QJsonArray list;
    for (int i = 0; i < fields.size(); ++i) {
        const CtlField& f = fields.at(i);
        QJsonObject entry = BenchMethods::fieldJson(f);
        out.line(QStringLiteral("%1=%2\t%3").arg(f.name()).arg(f.code()).arg(entry.value(QStringLiteral("text")).toString()));
        if (i < asked.size())
            entry.insert(QStringLiteral("asked"), qint64(asked.at(i)));
        list.append(entry);
    }
    out.set(QStringLiteral("fields"), list);
}

int FieldCommands::match(const QString& text)
{
    QStringList names;
    for (int f : FieldSearch::match(session.model().catalogue(), text))
        names.append(session.model().entry(f).record.name);
    if (names.isEmpty()) {
        out.set(QStringLiteral("fields"), QJsonArray());
        return out.done();
    }
    return list(names);
}

int FieldCommands::list(const QStringList& names)
{
    QList<CtlField> fields;
    if (names.isEmpty()) {
        for (int f = 0; f < session.model().fieldCount(); ++f)
            fields.append(CtlField(session.model(), f));
    } else {
        int status = 0;
        if (!resolve(names, &fields, &status))
            return status;
    }

    QJsonArray list;
    for (const CtlField& f : qAsConst(fields)) {
        const QString location = buildToolTip(f.record());
        // A field that the chip alone writes is no more editable than a display.
        const bool editable = f.refusal(false).isEmpty();
        if (!out.json()) {
            QString codes = editable      ? f.allowed()
                            : f.editable() ? QStringLiteral("written by the chip alone")
                                           : QStringLiteral("displays only");
            if (f.record().inverted)
                codes += QStringLiteral(" (inverted in the register)");
            out.line(QStringLiteral("%1\t%2\t%3\t%4").arg(f.name(), location, f.kindWords(), codes));
            continue;
        }

        QJsonArray registers;
        for (int r : f.registers())
            registers.append(r);
        QJsonObject entry{{QStringLiteral("name"), f.name()},
                          {QStringLiteral("location"), location},
                          {QStringLiteral("registers"), registers},
                          {QStringLiteral("width"), f.record().width},
                          {QStringLiteral("kind"), f.kindKey()},
                          {QStringLiteral("editable"), editable},
                          {QStringLiteral("inverted"), f.record().inverted},
                          {QStringLiteral("min"), qint64(f.lowest())},
                          {QStringLiteral("max"), qint64(f.highest())}};
        if (f.kind() == CtlField::Kind::ComboBox)
            entry.insert(QStringLiteral("items"), QJsonArray::fromStringList(f.items()));
        list.append(entry);
    }
    if (out.json())
        out.set(QStringLiteral("fields"), list);
    return out.done();
}
