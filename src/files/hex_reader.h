// Reads a .hex settings file line by line, trimmed, for the commands that
// load a file; what a line means is HexFormat's business.
#pragma once

#include <QFile>
#include <QString>
#include <QStringList>

class HexReader
{
public:
    explicit HexReader(const QString& path);

    // False when the file cannot be read (missing, unreadable, a folder).
    bool open();
    // The next line without its line end and surrounding white space; false
    // at the end of the file. Text is UTF-8; bytes that are not are replaced,
    // and lines of any length are read whole.
    bool nextLine(QString* line);

    // All lines of a file at once; false when it cannot be read.
    static bool readLines(const QString& path, QStringList* lines);

private:
    QFile file;
};
