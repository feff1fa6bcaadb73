// The diff command of zv4280ctl.
#include "diff_command.h"

#include "ctl_output.h"
#include "ctl_session.h"
#include "ctl_source.h"
#include "engine/image_compare.h"

#include <QJsonArray>
#include <QJsonObject>

DiffCommand::DiffCommand(CtlSession& s, CtlOutput& o) : session(s), out(o) {}

int DiffCommand::run(const QString& a, const QString& b)
{
    CtlSource first(session, a), second(session, b);
    for (CtlSource* source : {&first, &second}) {
        QString error;
        bool board = false;
        if (!source->load(&error, &board))
            return out.fail(CtlExit::Usage, error);
    }
    QVector<bool> known(first.known.size());
    for (int r = 0; r < known.size(); ++r)
        known[r] = first.known.at(r) && second.known.at(r);
    const QVector<ImageDifference> rows = ImageCompare::compare(first.image, second.image, session.calibration, known);

    QJsonArray list;
    for (const ImageDifference& d : rows) {
        out.line(QStringList{d.name, d.location, d.caption, QString::number(d.codeA), d.textA, QString::number(d.codeB),
                             d.textB}
                     .join(QLatin1Char('\t')));
        QJsonObject row{{QStringLiteral("kind"), d.field >= 0 ? QStringLiteral("field") : QStringLiteral("register")},
                        {QStringLiteral("name"), d.name},
                        {QStringLiteral("location"), d.location},
                        {QStringLiteral("a"), QJsonObject{{QStringLiteral("code"), qint64(d.codeA)}, {QStringLiteral("text"), d.textA}}},
                        {QStringLiteral("b"), QJsonObject{{QStringLiteral("code"), qint64(d.codeB)}, {QStringLiteral("text"), d.textB}}}};
        if (d.field >= 0)
            row.insert(QStringLiteral("caption"), d.caption);
        else
            row.insert(QStringLiteral("register"), d.reg);
        list.append(row);
    }
    out.set(QStringLiteral("a"), a);
    out.set(QStringLiteral("b"), b);
    out.set(QStringLiteral("equal"), rows.isEmpty());
    out.set(QStringLiteral("differences"), list);
    out.done();
    return rows.isEmpty() ? 0 : 1;
}
