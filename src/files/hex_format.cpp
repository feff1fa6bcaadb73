// The text format of the .hex settings files.
#include "hex_format.h"

#include "qt_compat.h"

#include <QStringList>
#include <QVector>

#include <cctype>

HexFormat::LineKind HexFormat::classify(const QString& trimmedLine)
{
    if (trimmedLine.startsWith(QLatin1Char(';')))
        return LineKind::Map;
    if (trimmedLine.startsWith(QLatin1String("Reg")))
        return LineKind::Register;
    return LineKind::Other;
}

QString HexFormat::mapName(const QString& trimmedMapLine)
{
    return trimmedMapLine.mid(1).replace(QLatin1Char('.'), QLatin1Char('v'));
}

QString HexFormat::loadedMapName(const QString& trimmedMapLine)
{
    const QString name = mapName(trimmedMapLine);
    return name.contains(QLatin1String("ZV4280")) ? QStringLiteral("ZV4280v2") : name;
}

QString HexFormat::readerText(const QString& line)
{
    QString text = line;
    text.replace(QLatin1Char('\t'), QLatin1Char(' '));
    text.remove(QLatin1Char('&'));
    text.remove(QLatin1String("0x"));
    text.remove(QLatin1String("Reg"));
    return text;
}

namespace {

// True when text is one or more ASCII digits of the base, 10 or 16.
bool digitsOnly(QStringView text, int base)
{
    for (const QChar c : text) {
        const int ascii = c.unicode() > 0x7F ? 0 : c.unicode();
        if (!(base == 10 ? std::isdigit(ascii) : std::isxdigit(ascii)))
            return false;
    }
    return !text.isEmpty();
}

} // namespace

// "Reg12 0x5F", "Reg12\t5F //text", "Reg 12 &5f" and "Reg12 5F 77" all mean
// register 12, value 0x5F: tabs count as blanks, "&", "0x" and "Reg" are
// dropped anywhere in the line, and the first two pieces are the register
// number (decimal) and the value (hexadecimal). A piece that is no number,
// or too big a number, counts as 0; the value keeps its low 8 bits.
// A negative number reads as it stands; file to GUI has no place for it, and
// file to chip takes no line that numberFault finds fault with.
std::optional<HexFormat::Register> HexFormat::readRegister(const QString& line)
{
    const QString text = readerText(line);
    const QList<QStringView> pieces = QStringView(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (pieces.size() < 2)
        return std::nullopt;

    Register r;
    r.number = QtCompat::toInt(pieces.at(0), 10);
    r.value = quint8(QtCompat::toUInt(pieces.at(1), 16) & 0xFFu);
    return r;
}

QString HexFormat::numberFault(const QString& line, int registerCount)
{
    const QString text = readerText(line);
    const QStringView number = QStringView(text).split(QLatin1Char(' '), Qt::SkipEmptyParts).value(0);
    // "-1" is the pause marker a map line also makes: file to chip waits there.
    const bool pause = number == QLatin1String("-1");
    if (!pause && (!digitsOnly(number, 10) || number.size() > 9 || number.toInt() >= registerCount))
        return QStringLiteral("no register \"%1\": registers are 0 to %2").arg(number).arg(registerCount - 1);
    return QString();
}

QString HexFormat::chipLineFault(const QString& line, int registerCount)
{
    const QString fault = numberFault(line, registerCount);
    if (!fault.isEmpty())
        return fault;
    const QString text = readerText(line);
    const QStringView value = QStringView(text).split(QLatin1Char(' '), Qt::SkipEmptyParts).value(1);
    if (!digitsOnly(value, 16) || value.size() > 2)
        return QStringLiteral("the value \"%1\" is no byte: one or two hex digits, 00 to FF").arg(value);
    return QString();
}

QString HexFormat::refusedLine(const QString& file, int number, const QString& line, const QString& why)
{
    return QStringLiteral("%1, line %2: %3 (\"%4\")").arg(file).arg(number).arg(why, line);
}

QString HexFormat::mapLine(const QString& chipName)
{
    return QLatin1Char(';') + QString(chipName).remove(QLatin1String("v2"));
}

QString HexFormat::registerLine(qint32 number, quint8 value)
{
    return QLatin1String("Reg") + QString::number(number) + QLatin1Char('\t')
           + QStringLiteral("%1").arg(uint(value), 2, 16, QLatin1Char('0')).toUpper();
}

QString HexFormat::registerLine(qint32 number, quint8 value, const QString& comment)
{
    return registerLine(number, value) + QLatin1String(" //") + comment;
}

QString HexFormat::commentSeparator()
{
    return QStringLiteral("\n\t   //");
}

QString HexFormat::heading(const QString& chipName, qint32 number)
{
    if (!chipName.contains(QLatin1String("4280")))
        return QString();
    switch (number) {
    case 9: return QStringLiteral("//  Temperature sensor ");
    case 10: return QStringLiteral("//  Clock settings ");
    case 13: return QStringLiteral("// External sampling frequency settings");
    case 14: return QStringLiteral("// Channel \"A\" ");
    case 36: return QStringLiteral("// Channel \"B\" ");
    case 58: return QStringLiteral("// Channel \"C\" ");
    case 80: return QStringLiteral("// Channel \"D\" ");
    default: return QString();
    }
}
