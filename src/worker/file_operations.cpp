// The worker's file commands: file to chip, chip to file, file to GUI and
// GUI to file.

#include "clerk.h"

#include "hex_format.h"
#include "hex_reader.h"
#include "hex_writer.h"
#include "register_images.h"
#include "usb_link.h"

#include <QDir>
#include <QFileInfo>

#include <cstring>
#include <vector>

namespace {

// The most registers file to chip sends in one block.
constexpr int kBlock = 1000;

// One entry of the list that file to chip sends: a register, or a pause
// before a section of the file.
struct Entry
{
    qint32 address = -1; // -1: the pause
    quint8 value = 0;
};

} // namespace

QString clerk::readSettings(QStringList* lines) const
{
    QString refusal;
    if (HexReader::readLines(fileName, lines, &refusal))
        return QString();
    return refusal.isEmpty() ? tr(".hex file is not available") : refusal;
}

// File to chip: the file's registers straight to the chip, in file order, each
// section (what follows a map line) as one block write after a pause; a long
// section goes in blocks of kBlock registers, with progress after each. The
// whole file is checked before anything is sent. A failure on the way says
// how far the file got.
QString clerk::fileToChip()
{
    QStringList lines;
    const QString unusable = readSettings(&lines);
    if (!unusable.isEmpty())
        return unusable;
    oddLines = OddLines::find(lines, int(firstMap()->registerCount));
    std::vector<Entry> entries;
    for (int n = 0; n < lines.size(); ++n) {
        const QString& line = lines.at(n);
        switch (HexFormat::classify(line)) {
        case HexFormat::LineKind::Map: {
            const QString name = settings.configCheck ? HexFormat::mapName(line) : maps.firstKey();
            if (!maps.contains(name))
                return tr("RegMap name is incorrect\nor not exist") + QLatin1Char('\n')
                       + QStringLiteral("%1 needs the map line ;%2").arg(fileName, maps.firstKey());
            entries.push_back(Entry());
            break;
        }
        case HexFormat::LineKind::Register: {
            // A line whose number is no register is refused: its value would
            // go to another register. A value that is no byte goes as a
            // reader reads it, and the line is told of after.
            const QString fault = HexFormat::numberFault(line, int(firstMap()->registerCount));
            if (!fault.isEmpty())
                return HexFormat::refusedLine(fileName, n + 1, line, fault);
            if (const auto reg = HexFormat::readRegister(line))
                entries.push_back({reg->number, reg->value});
            break;
        }
        case HexFormat::LineKind::Other:
            break;
        }
    }

    // A section ends at the register before a pause or at the end.
    const int length = int(entries.size());
    auto endsSection = [&](int i) { return entries[size_t(i)].address >= 0 && (i + 1 == length || entries[size_t(i + 1)].address < 0); };
    int sections = 0, registers = 0, sectionsSent = 0, sent = 0;
    for (int i = 0; i < length; ++i) {
        sections += endsSection(i) ? 1 : 0;
        registers += entries[size_t(i)].address >= 0 ? 1 : 0;
    }
    auto partWay = [&](const QString& first) {
        const QString reason = link->reason();
        return first + QLatin1Char('\n')
               + QStringLiteral("sections %1 of %2 written (%3 of %4 registers)")
                     .arg(sectionsSent).arg(sections).arg(sent).arg(registers)
               + (reason.isEmpty() ? QString() : QStringLiteral("; ") + reason);
    };

    const int addressBytes = link->addressBytes;
    for (int i = 0; i < length;) {
        if (settings.separateWrite) {
            const Entry& e = entries[size_t(i)];
            if (e.address < 0) {
                if (!pause())
                    return tr("Interrupted");
            } else if (!link->writeRegister(e.address, &e.value)) {
                return partWay(tr("Write register error"));
            } else {
                registersWritten = ++sent;
                sectionsSent += endsSection(i) ? 1 : 0;
            }
            emit percent_up(i * 100 / length);
            ++i;
            continue;
        }
        std::vector<quint8> block;
        int count = 0;
        for (; i < length && entries[size_t(i)].address >= 0 && count < kBlock; ++i, ++count) {
            const Entry& e = entries[size_t(i)];
            if (addressBytes != 1)
                block.push_back(quint8(e.address >> 8));
            block.push_back(quint8(e.address & 0xFF));
            block.push_back(e.value);
            if (interrupted)
                return tr("Interrupted");
        }
        if (count > 0) {
            if (!link->writeBlock(count, block.data()))
                return partWay(tr("Write block error"));
            sent += count;
            registersWritten = sent;
            sectionsSent += endsSection(i - 1) ? 1 : 0;
            emit percent_up(sent * 100 / registers);
        }
        if (interrupted)
            return tr("Interrupted");
        if (i >= length)
            return QString();
        if (entries[size_t(i)].address >= 0)
            continue; // the section goes on in the next block
        if (!pause()) // entry i is the pause before the next section
            return tr("Interrupted");
        ++i;
    }
    return QString();
}

// A save's file that cannot be opened; a folder that is not there is named.
QString clerk::unwritable() const
{
    const QDir folder = QFileInfo(fileName).dir();
    if (!folder.exists())
        return tr(".hex file is not available") + QLatin1Char('\n')
               + QStringLiteral("the folder \"%1\" does not exist").arg(folder.path());
    return tr(".hex file is not available");
}

// Chip to file: what the chip holds, read by autoincrement, into a file.
QString clerk::chipToFile()
{
    HexWriter file(fileName, settings.mergeFile);
    if (!file.open())
        return unwritable();
    for (RegisterImages* map : qAsConst(maps)) {
        QByteArray registers(int(map->registerCount), 0);
        if (!link->readAuto(0, registers.size(), reinterpret_cast<quint8*>(registers.data())))
            return tr("WINUSB: USB interface error ") + link->reason();
        emit percent_up(50);
        registersRead += registers.size();
        if (!file.write(HexWriter::chipText(map->chipName, registers)))
            break;
        registersWritten += registers.size();
    }
    if (!file.commit())
        return file.errorText();
    return QString();
}

// GUI to file: the GUI state, taken with its comments before the thread
// started, into a file.
QString clerk::guiToFile()
{
    emit percent_up(0);
    HexWriter file(fileName, settings.mergeFile);
    if (!file.open())
        return unwritable();
    const QString text = HexWriter::guiText(save, [this](int percent) { emit percent_up(percent); });
    file.write(text);
    registersWritten = text.count(QLatin1String("\nReg"));
    if (!file.commit())
        return file.errorText();
    emit percent_up(100);
    return QString();
}

// File to GUI: the file's registers into guiImage and cfgImage of the map it
// names. Nothing is applied before the whole file has been read; registers
// absent from the file keep their value in guiImage and are 0 in cfgImage.
QString clerk::fileToGui()
{
    QStringList lines;
    const QString unusable = readSettings(&lines);
    if (!unusable.isEmpty())
        return unusable;
    QMap<QString, QMap<int, quint8>> values;
    for (auto it = maps.cbegin(); it != maps.cend(); ++it)
        values.insert(it.key(), {});
    RegisterImages* first = firstMap();
    onGuiThread([first] { first->dropOldCfg(); });
    emit percent_up(1);

    oddLines = OddLines::find(lines, int(first->registerCount));
    QString name;
    for (const QString& line : qAsConst(lines)) {
        switch (HexFormat::classify(line)) {
        case HexFormat::LineKind::Map:
            name = HexFormat::loadedMapName(line);
            break;
        case HexFormat::LineKind::Register:
            if (!settings.configCheck)
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
            RegisterImages* map = maps.value(it.key());
            std::vector<quint8> buffer(map->registerCount, 0);
            for (auto r = it.value().cbegin(); r != it.value().cend(); ++r) {
                if (r.key() < 0 || r.key() >= int(map->registerCount))
                    continue; // no such register in the image
                buffer[size_t(r.key())] = r.value();
                map->guiImage[r.key()] = r.value();
                ++registersRead;
            }
            std::memcpy(map->cfgImage, buffer.data(), buffer.size());
        }
    });
    emit percent_up(60);
    return QString();
}
