// The worker's file commands: file to chip, chip to file, file to GUI and
// GUI to file.

#include "clerk.h"

#include "hex_format.h"
#include "hex_reader.h"
#include "hex_writer.h"
#include "mapshow.h"
#include "service_block.h"
#include "usb_link.h"

#include <cstring>
#include <vector>

namespace {

// One entry of the list that file to chip sends: a register, or a pause
// before a section of the file.
struct Entry
{
    qint32 address = -1; // -1: the pause
    quint8 value = 0;
};

} // namespace

// Command 3: the file's registers straight to the chip, in file order, each
// section (what follows a map line) as one block write after a pause.
QString clerk::fileToChip()
{
    QStringList lines;
    if (!HexReader::readLines(fileName, &lines))
        return tr(".hex file is not available");
    std::vector<Entry> entries;
    for (const QString& line : qAsConst(lines)) {
        switch (HexFormat::classify(line)) {
        case HexFormat::LineKind::Map: {
            const QString name = setting("ConfigCheck") == 0 ? maps.firstKey() : HexFormat::mapName(line);
            if (!maps.contains(name))
                return tr("RegMap name is incorrect\nor not exist");
            entries.push_back(Entry());
            break;
        }
        case HexFormat::LineKind::Register:
            if (const auto reg = HexFormat::readRegister(line))
                entries.push_back({reg->number, reg->value});
            break;
        case HexFormat::LineKind::Other:
            break;
        }
    }

    const int length = int(entries.size());
    const int addressBytes = link()->addressBytes;
    for (int i = 0; i < length;) {
        if (setting("separateWrite") != 0) {
            const Entry& e = entries[size_t(i)];
            if (e.address < 0) {
                if (!pause())
                    return tr("Interrupted");
            } else if (!link()->writeRegister(e.address, &e.value)) {
                return tr("Write register error");
            }
            emit percent_up(i * 100 / length);
            ++i;
            continue;
        }
        std::vector<quint8> block;
        for (; i < length && entries[size_t(i)].address >= 0; ++i) {
            const Entry& e = entries[size_t(i)];
            if (addressBytes != 1)
                block.push_back(quint8(e.address >> 8));
            block.push_back(quint8(e.address & 0xFF));
            block.push_back(e.value);
            if (interrupted)
                return tr("Interrupted");
        }
        if (!block.empty() && !link()->writeBlock(int(block.size()) / (addressBytes + 1), block.data()))
            return tr("Write block error");
        if (interrupted)
            return tr("Interrupted");
        if (i >= length)
            return QString();
        if (!pause()) // entry i is the pause before the next section
            return tr("Interrupted");
        ++i;
    }
    return QString();
}

// Command 4: what the chip holds, read by autoincrement, into a file.
QString clerk::chipToFile()
{
    HexWriter file(fileName, setting("MergeFile") != 0);
    if (!file.open())
        return tr(".hex file is not available");
    for (mapshow* map : qAsConst(maps)) {
        QByteArray registers(int(map->registerCount), 0);
        if (!link()->readAuto(0, registers.size(), reinterpret_cast<quint8*>(registers.data())))
            return tr("WINUSB: USB interface error ") + link()->transferFailure();
        emit percent_up(50);
        if (!file.write(HexWriter::chipText(map->chipName, registers)))
            return tr(".hex file is not available");
    }
    if (!file.commit())
        return tr(".hex file is not available");
    return QString();
}

// Command 6: the GUI state, taken with its comments before the thread
// started, into a file.
QString clerk::guiToFile()
{
    emit percent_up(0);
    HexWriter file(fileName, setting("MergeFile") != 0);
    if (!file.open())
        return tr(".hex file is not available");
    const QString text = HexWriter::guiText(save, [this](int percent) { emit percent_up(percent); });
    if (!file.write(text) || !file.commit())
        return tr(".hex file is not available");
    emit percent_up(100);
    return QString();
}

// Command 5: the file's registers into guiImage and cfgImage of the map it
// names. Nothing is applied before the whole file has been read; registers
// absent from the file keep their value in guiImage and are 0 in cfgImage.
QString clerk::fileToGui()
{
    QStringList lines;
    if (!HexReader::readLines(fileName, &lines))
        return tr(".hex file is not available");
    QMap<QString, QMap<int, quint8>> values;
    for (auto it = maps.cbegin(); it != maps.cend(); ++it)
        values.insert(it.key(), {});
    mapshow* first = firstMap();
    onGuiThread([first] { first->dropOldCfg(); });
    emit percent_up(1);

    QString name;
    for (const QString& line : qAsConst(lines)) {
        switch (HexFormat::classify(line)) {
        case HexFormat::LineKind::Map:
            name = HexFormat::loadedMapName(line);
            break;
        case HexFormat::LineKind::Register:
            if (setting("ConfigCheck") == 0)
                name = maps.firstKey();
            if (!maps.contains(name))
                return tr("RegMap name is incorrect\nor not exist");
            if (interrupted)
                return tr("Interrupted");
            if (const auto reg = HexFormat::readRegister(line))
                values[name].insert(reg->number, reg->value);
            break;
        case HexFormat::LineKind::Other:
            break;
        }
    }
    emit percent_up(25);
    onGuiThread([&] {
        first->dropOldCfg();
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            mapshow* map = maps.value(it.key());
            std::vector<quint8> buffer(map->registerCount, 0);
            for (auto r = it.value().cbegin(); r != it.value().cend(); ++r) {
                if (r.key() < 0 || r.key() >= int(map->registerCount))
                    continue; // no such register in the image
                buffer[size_t(r.key())] = r.value();
                map->guiImage[r.key()] = r.value();
            }
            std::memcpy(map->cfgImage, buffer.data(), buffer.size());
        }
    });
    emit percent_up(60);
    return QString();
}
