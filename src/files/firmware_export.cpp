// The C, CSV and JSON texts of register settings for firmware.
#include "firmware_export.h"

#include "register_names.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

QString hexByte(quint8 value)
{
    return QStringLiteral("0x") + QString::number(value, 16).rightJustified(2, QLatin1Char('0')).toUpper();
}

QString crcText(quint32 crc)
{
    return QStringLiteral("0x") + QString::number(crc, 16).rightJustified(8, QLatin1Char('0')).toUpper();
}

// A text that may stand inside a C comment.
QString commentSafe(QString text)
{
    return text.replace(QLatin1String("*/"), QLatin1String("* /")).replace(QLatin1Char('\n'), QLatin1Char(' '));
}

// A CSV field, quoted when it has to be.
QString csvField(const QString& text)
{
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')) && !text.contains(QLatin1Char('\n')))
        return text;
    return QLatin1Char('"') + QString(text).replace(QLatin1String("\""), QLatin1String("\"\"")) + QLatin1Char('"');
}

int registerCount(const QVector<HexEntries::Entry>& entries)
{
    return int(std::count_if(entries.cbegin(), entries.cend(), [](const HexEntries::Entry& e) { return !e.isPause(); }));
}

QString cText(const QVector<HexEntries::Entry>& entries, const FirmwareExport::Header& h, quint32 crc)
{
    QString t;
    t += QStringLiteral("/*\n"
                        " * %1 register settings for firmware.\n"
                        " *\n"
                        " * Tool:      %2\n"
                        " * Version:   %3\n"
                        " * Date:      %4\n"
                        " * Source:    %5\n"
                        " * Registers: %6\n"
                        " * CRC-32:    %7\n"
                        " *\n")
             .arg(commentSafe(h.chip), commentSafe(h.tool), QStringLiteral(ZV_VERSION),
                  h.created.toUTC().toString(Qt::ISODate), commentSafe(h.source))
             .arg(registerCount(entries))
             .arg(crcText(crc));
    t += QStringLiteral(
        " * zv4280_settings[] holds the register writes in the order in which the\n"
        " * tool sends a settings file to the chip. An entry whose reg is\n"
        " * ZV4280_PAUSE (0xFFFF, value 0) writes nothing: it is the pause that a\n"
        " * map line or a \"Reg-1\" line of the file makes. Wait the write pause\n"
        " * there (the tool waits 200 ms by default), then go on.\n"
        " *\n"
        " * The CRC-32 (IEEE 802.3: reflected polynomial 0xEDB88320, start value\n"
        " * and final XOR 0xFFFFFFFF, as zlib's crc32) covers the register entries\n"
        " * in order, three bytes each: reg high byte, reg low byte, value. Pause\n"
        " * entries are not included.\n"
        " */\n"
        "#ifndef ZV4280_SETTINGS_H\n"
        "#define ZV4280_SETTINGS_H\n"
        "\n"
        "#include <stdint.h>\n"
        "\n"
        "#define ZV4280_PAUSE 0xFFFFu\n"
        "#define ZV4280_SETTINGS_CRC32 %1u\n"
        "#define ZV4280_SETTINGS_COUNT (sizeof zv4280_settings / sizeof zv4280_settings[0])\n"
        "\n"
        "/* A file that includes this header and leaves the table unused compiles\n"
        " * without a warning. */\n"
        "#if defined(__GNUC__) || defined(__clang__)\n"
        "#define ZV4280_UNUSED __attribute__((unused))\n"
        "#else\n"
        "#define ZV4280_UNUSED\n"
        "#endif\n"
        "\n"
        "static const struct { uint16_t reg; uint8_t value; } zv4280_settings[] ZV4280_UNUSED = {\n")
             .arg(crcText(crc));
    if (entries.isEmpty())
        t += QStringLiteral("    { ZV4280_PAUSE, 0x00 }, /* nothing to write */\n");
    for (const HexEntries::Entry& e : entries) {
        if (e.isPause())
            t += QStringLiteral("    { ZV4280_PAUSE, 0x00 }, /* pause */\n");
        else
            t += QStringLiteral("    { %1, %2 }, /* %3 */\n")
                     .arg(e.reg, 3)
                     .arg(hexByte(e.value), commentSafe(registerNames.value(e.reg)));
    }
    t += QStringLiteral(
        "};\n"
        "\n"
        "#endif /* ZV4280_SETTINGS_H */\n");
    return t;
}

} // namespace

bool FirmwareExport::parseFormat(const QString& name, Format* format)
{
    if (name == QLatin1String("c"))
        *format = Format::C;
    else if (name == QLatin1String("csv"))
        *format = Format::Csv;
    else if (name == QLatin1String("json"))
        *format = Format::Json;
    else
        return false;
    return true;
}

QString FirmwareExport::suffix(Format format)
{
    switch (format) {
    case Format::C: return QStringLiteral(".h");
    case Format::Csv: return QStringLiteral(".csv");
    case Format::Json: return QStringLiteral(".json");
    }
    return QString();
}

QString FirmwareExport::text(Format format, const QVector<HexEntries::Entry>& entries, const Header& header)
{
    const quint32 crc = crc32(writtenPairs(entries));
    switch (format) {
    case Format::C:
        return cText(entries, header, crc);
    case Format::Csv: {
        QString t = QStringLiteral("register,name,value\n");
        for (const HexEntries::Entry& e : entries)
            if (!e.isPause())
                t += QStringLiteral("%1,%2,%3\n").arg(e.reg).arg(csvField(registerNames.value(e.reg)), hexByte(e.value));
        return t;
    }
    case Format::Json: {
        QJsonArray registers;
        for (const HexEntries::Entry& e : entries)
            if (!e.isPause())
                registers.append(QJsonObject{{QStringLiteral("register"), e.reg},
                                             {QStringLiteral("name"), registerNames.value(e.reg)},
                                             {QStringLiteral("value"), int(e.value)}});
        const QJsonObject document{{QStringLiteral("chip"), header.chip},
                                   {QStringLiteral("source"), header.source},
                                   {QStringLiteral("created"), header.created.toUTC().toString(Qt::ISODate)},
                                   {QStringLiteral("crc32"), qint64(crc)},
                                   {QStringLiteral("registers"), registers}};
        return QString::fromUtf8(QJsonDocument(document).toJson(QJsonDocument::Indented));
    }
    }
    return QString();
}

QByteArray FirmwareExport::writtenPairs(const QVector<HexEntries::Entry>& entries)
{
    QByteArray bytes;
    for (const HexEntries::Entry& e : entries) {
        if (e.isPause())
            continue;
        bytes.append(char(quint8(e.reg >> 8)));
        bytes.append(char(quint8(e.reg & 0xFF)));
        bytes.append(char(e.value));
    }
    return bytes;
}

quint32 FirmwareExport::crc32(const QByteArray& bytes)
{
    quint32 crc = 0xFFFFFFFFu;
    for (const char c : bytes) {
        crc ^= quint8(c);
        for (int k = 0; k < 8; ++k)
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}
