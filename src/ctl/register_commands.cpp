// dump, get and set of zv4280ctl.
#include "register_commands.h"

#include "ctl_board.h"
#include "ctl_options.h"
#include "ctl_output.h"
#include "ctl_session.h"
#include "mapshow.h"
#include "register_names.h"
#include "usb_link.h"

#include <QJsonArray>
#include <QScopeGuard>

namespace {

// The read styles of the worker's chip read ("ReadStyle").
const QStringList kStyles = {QStringLiteral("single"), QStringLiteral("block"), QStringLiteral("auto")};

QString hexByte(quint8 value)
{
    return QStringLiteral("%1").arg(value, 2, 16, QLatin1Char('0'));
}

} // namespace

RegisterCommands::RegisterCommands(CtlSession& s, CtlOutput& o) : session(s), out(o) {}

bool RegisterCommands::registerNumber(const QString& text, int* number, int* status)
{
    const int count = registerNames.size();
    qint64 value = -1;
    if (!CtlOptions::number(text, &value) || value >= count) {
        *status = out.fail(CtlExit::Usage,
                           QStringLiteral("no register \"%1\": registers are 0 to %2").arg(text).arg(count - 1));
        return false;
    }
    *number = int(value);
    return true;
}

int RegisterCommands::boardFailure(const QString& what)
{
    const QString why = CtlBoard::absence(session.boardChosen());
    return out.fail(CtlExit::Board, why.isEmpty() ? what : what + QStringLiteral(": ") + why);
}

int RegisterCommands::dump(const QString& style)
{
    const QString chosen = style.isEmpty() ? kStyles.at(2) : style;
    const int styleIndex = kStyles.indexOf(chosen);
    if (styleIndex < 0)
        return out.fail(CtlExit::Usage, QStringLiteral("--style takes single, block or auto; not \"%1\"").arg(style));

    if (!style.isEmpty())
        session.setSetting("ReadStyle", styleIndex);
    const QString failure = session.run(1, QString(), false);
    if (!failure.isEmpty())
        return boardFailure(failure);

    const mapshow& map = session.map();
    QJsonArray values;
    QString header = QStringLiteral("    ");
    for (int c = 0; c < 16; ++c)
        header += QStringLiteral("  %1").arg(c, 0, 16);
    out.line(header);
    for (quint32 row = 0; row < map.registerCount; row += 16) {
        QString text = QStringLiteral("%1:").arg(row, 3, 16, QLatin1Char('0'));
        for (quint32 r = row; r < row + 16 && r < map.registerCount; ++r) {
            text += QLatin1Char(' ') + hexByte(map.icImage[r]);
            values.append(map.icImage[r]);
        }
        out.line(text);
    }
    out.set(QStringLiteral("style"), kStyles.value(session.setting("ReadStyle"), chosen));
    out.set(QStringLiteral("registers"), values);
    return out.done();
}

int RegisterCommands::get(const QString& registerText)
{
    int number = 0, status = 0;
    if (!registerNumber(registerText, &number, &status))
        return status;
    quint8 value = 0;
    if (!session.link().readRegister(number, &value))
        return boardFailure(QStringLiteral("register %1 could not be read").arg(number) + transferDetail());
    out.line(QStringLiteral("0x") + hexByte(value));
    out.set(QStringLiteral("register"), number);
    out.set(QStringLiteral("name"), registerNames.value(number));
    out.set(QStringLiteral("value"), value);
    return out.done();
}

int RegisterCommands::set(const QString& registerText, const QString& valueText)
{
    int number = 0, status = 0;
    if (!registerNumber(registerText, &number, &status))
        return status;
    qint64 value = -1;
    if (!CtlOptions::number(valueText, &value) || value > 255)
        return out.fail(CtlExit::Usage, QStringLiteral("no byte \"%1\": a value is 0 to 255 (0xff)").arg(valueText));

    const quint8 written = quint8(value);
    usb_link& link = session.link();
    // The write and the read-back go to one board.
    link.holdBoard();
    const auto release = qScopeGuard([&link] { link.releaseBoard(); });
    if (!link.writeRegister(number, &written))
        return boardFailure(QStringLiteral("register %1 could not be written").arg(number) + transferDetail());
    quint8 readBack = 0;
    if (!link.readRegister(number, &readBack))
        return boardFailure(QStringLiteral("register %1 could not be read back").arg(number) + transferDetail());
    out.set(QStringLiteral("register"), number);
    out.set(QStringLiteral("name"), registerNames.value(number));
    out.set(QStringLiteral("written"), written);
    out.set(QStringLiteral("value"), readBack);
    out.line(QStringLiteral("0x") + hexByte(readBack));
    if (readBack != written)
        return out.fail(CtlExit::Differs, QStringLiteral("register %1 reads back 0x%2 after 0x%3 was written")
                                              .arg(number)
                                              .arg(hexByte(readBack), hexByte(written)));
    return out.done();
}

QString RegisterCommands::transferDetail() const
{
    const QString failure = session.link().reason();
    return failure.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(failure);
}
