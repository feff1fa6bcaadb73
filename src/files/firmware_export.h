// Register settings written out for firmware: a C header, a CSV table or a
// JSON document, each with the CRC-32 of the register writes it lists.
#pragma once

#include "hex_entries.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QVector>

class FirmwareExport
{
public:
    enum class Format { C, Csv, Json };

    // "c", "csv" or "json"; false for anything else.
    static bool parseFormat(const QString& name, Format* format);
    // The file name ending of a format: ".h", ".csv", ".json".
    static QString suffix(Format format);

    // What stands in the output besides the entries.
    struct Header
    {
        QString tool = QStringLiteral("zv4280ctl"); // the program that wrote it
        QString source;                             // "chip", "forms" or the file's path
        QString chip = QStringLiteral("ZV4280v2");
        QDateTime created = QDateTime::currentDateTimeUtc();
    };

    // The text of `entries` (register writes and pauses in the order they
    // go to the chip) in a format. The C header keeps the pauses as entries
    // of register ZV4280_PAUSE (0xFFFF); CSV and JSON list the registers
    // only.
    static QString text(Format format, const QVector<HexEntries::Entry>& entries, const Header& header);

    // The bytes the CRC covers: each register write in order as register
    // high byte, register low byte, value; pauses are left out.
    static QByteArray writtenPairs(const QVector<HexEntries::Entry>& entries);
    // CRC-32 of IEEE 802.3 (zlib's, reflected polynomial 0xEDB88320, start
    // and final XOR 0xFFFFFFFF): "123456789" gives 0xCBF43926.
    static quint32 crc32(const QByteArray& bytes);
};
