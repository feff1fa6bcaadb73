// Reading a .hex settings file for a load.
#include "hex_reader.h"

#include "hex_format.h"
#include "qt_compat.h"

#include <QFile>

bool HexReader::readLines(const QString& path, QStringList* lines, QString* refusal)
{
    refusal->clear();
    lines->clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.read(kLargestFile + 1);
    if (file.error() != QFileDevice::NoError)
        return false;
    if (bytes.size() > kLargestFile) {
        *refusal = QStringLiteral("\"%1\" is larger than 1 MiB; a settings file is a few kilobytes").arg(path);
        return false;
    }
    if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF")) {
        *refusal = QStringLiteral("\"%1\" is UTF-16 text; a settings file is UTF-8 or plain ASCII").arg(path);
        return false;
    }
    int texts = 0, binaries = 0, registers = 0;
    for (const QByteArray& raw : bytes.split('\n')) {
        // The decoder drops a byte order mark that an editor may have put
        // first. A zero byte is a character like any other, not the line's end.
        bool invalid = false;
        const QString line = QtCompat::fromUtf8(raw, &invalid).trimmed();
        lines->append(line);
        if (line.isEmpty())
            continue;
        (raw.contains('\0') || invalid ? binaries : texts) += 1;
        if (HexFormat::classify(line) == HexFormat::LineKind::Register && HexFormat::readRegister(line))
            ++registers;
    }
    if (texts + binaries == 0)
        *refusal = QStringLiteral("\"%1\" is empty; a settings file holds register lines").arg(path);
    else if (binaries > texts)
        *refusal = QStringLiteral("\"%1\" is not a text file").arg(path);
    else if (registers == 0)
        *refusal = QStringLiteral("\"%1\" holds no register line").arg(path);
    return refusal->isEmpty();
}
