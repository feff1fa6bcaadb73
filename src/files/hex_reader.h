// Reads a .hex settings file for the commands that load one: its lines,
// trimmed, or why the file is no settings file; what a line means is
// HexFormat's business.
#pragma once

#include <QString>
#include <QStringList>

class HexReader
{
public:
    // The largest file a load takes; settings files are a few kilobytes.
    static constexpr qint64 kLargestFile = 1 << 20;

    // All lines of a settings file, without their line ends and surrounding
    // white space; false when the file cannot be used. `refusal` then says
    // why, or stays empty when the file cannot be read at all (missing,
    // unreadable, a folder). Refused are files over 1 MiB, UTF-16 text,
    // empty files (nothing but white space), binary data (most lines hold a
    // zero byte or are no UTF-8) and files without a usable register line. Text is UTF-8; in a line that is not,
    // the bytes that are not are replaced.
    static bool readLines(const QString& path, QStringList* lines, QString* refusal);
};
