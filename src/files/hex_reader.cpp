// Reading a .hex settings file line by line.
#include "hex_reader.h"

HexReader::HexReader(const QString& path) : file(path) {}

bool HexReader::open()
{
    return file.open(QIODevice::ReadOnly);
}

bool HexReader::nextLine(QString* line)
{
    if (!file.isOpen() || file.atEnd())
        return false;
    // Every line read holds at least its line end or one byte: nothing read
    // means a read error, which ends the file as well.
    const QByteArray bytes = file.readLine();
    if (bytes.isEmpty())
        return false;
    // The decoder drops a byte order mark that an editor may have put first.
    // A zero byte is a character like any other, not the line's end.
    *line = QString::fromUtf8(bytes.constData(), bytes.size()).trimmed();
    return true;
}

bool HexReader::readLines(const QString& path, QStringList* lines)
{
    HexReader reader(path);
    if (!reader.open())
        return false;
    lines->clear();
    QString line;
    while (reader.nextLine(&line))
        lines->append(line);
    return true;
}
