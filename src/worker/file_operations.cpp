// The worker's file commands: file to chip, chip to file, file to GUI and
// GUI to file.

#include "clerk.h"

#include "mapshow.h"
#include "service_block.h"
#include "usb_link.h"

#include <QFile>
#include <QTextStream>

#include <cstring>
#include <vector>

namespace {

bool readLines(const QString& path, QStringList* lines)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    const QString text = QString::fromUtf8(file.readAll());
    for (const QString& line : text.split(QLatin1Char('\n')))
        lines->append(line.trimmed());
    return true;
}

bool parseRegister(QString line, int* reg, int* value)
{
    line.replace(QLatin1Char('\t'), QLatin1Char(' '));
    line.remove(QLatin1Char('&'));
    line.remove(QStringLiteral("0x"));
    line.remove(QStringLiteral("Reg"));
    const QStringList pieces = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (pieces.size() < 2)
        return false;
    *reg = pieces.at(0).toInt(nullptr, 10);
    *value = int(pieces.at(1).toUInt(nullptr, 16) & 0xFF);
    return *reg >= 0;
}

QString mapName(const QString& line)
{
    return line.mid(1).replace(QLatin1Char('.'), QLatin1Char('v'));
}

} // namespace

QString clerk::fileToChip()
{
    return tr(".hex file is not available");
}

QString clerk::chipToFile()
{
    return tr(".hex file is not available");
}

QString clerk::guiToFile()
{
    return tr(".hex file is not available");
}

// Command 5: the file's registers into guiImage and cfgImage of the map it
// names. Nothing is applied before the whole file has been read; registers
// absent from the file keep their value in guiImage and are 0 in cfgImage.
QString clerk::fileToGui()
{
    QStringList lines;
    if (!readLines(fileName, &lines))
        return tr(".hex file is not available");
    QMap<QString, QMap<int, int>> values;
    for (auto it = maps.cbegin(); it != maps.cend(); ++it)
        values.insert(it.key(), {});
    mapshow* first = firstMap();
    onGuiThread([first] { first->dropOldCfg(); });
    emit percent_up(1);

    QString name;
    for (const QString& line : qAsConst(lines)) {
        if (line.startsWith(QLatin1Char(';'))) {
            name = mapName(line);
            if (name.contains(QLatin1String("ZV4280")))
                name = QStringLiteral("ZV4280v2");
        } else if (line.startsWith(QLatin1String("Reg"))) {
            if (setting("ConfigCheck") == 0)
                name = maps.firstKey();
            if (!maps.contains(name))
                return tr("RegMap name is incorrect\nor not exist");
            if (interrupted)
                return tr("Interrupted");
            int reg = 0, value = 0;
            if (parseRegister(line, &reg, &value))
                values[name].insert(reg, value);
        }
    }
    emit percent_up(25);
    onGuiThread([&] {
        first->dropOldCfg();
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            mapshow* map = maps.value(it.key());
            std::vector<quint8> buffer(map->registerCount, 0);
            for (auto r = it.value().cbegin(); r != it.value().cend(); ++r) {
                if (r.key() >= int(map->registerCount))
                    continue; // no such register in the image
                buffer[size_t(r.key())] = quint8(r.value());
                map->guiImage[r.key()] = quint8(r.value());
            }
            std::memcpy(map->cfgImage, buffer.data(), buffer.size());
        }
    });
    emit percent_up(60);
    return QString();
}
