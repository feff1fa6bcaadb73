// The worker's chip operations: read the whole chip into the images, write
// the GUI state to the chip (all registers or only the changes), and read or
// write one register by number.

#include "clerk.h"

#include "register_images.h"
#include "usb_link.h"

#include <cstring>
#include <vector>

namespace {

// Addresses 0 to count - 1.
std::vector<int> allRegisters(int count)
{
    std::vector<int> addresses(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        addresses[static_cast<size_t>(i)] = i;
    return addresses;
}

} // namespace

// Chip to GUI. The images change only at the end, once every register is in:
// a stop or a failure on the way leaves them as they were.
QString clerk::chipRead()
{
    RegisterImages* map = firstMap();
    const int count = int(map->registerCount);
    emit percent_up(0);
    onGuiThread([map] { map->dropOldGUI(); });
    std::vector<quint8> buffer(static_cast<size_t>(count), 0);

    switch (settings.readStyle) {
    case PanelSettings::Style::OneAtATime:
        for (int i = 0; i < count; ++i) {
            if (interrupted)
                return tr("Interrupted");
            emit percent_up(i * 75 / count);
            if (!link->readRegister(i, &buffer[size_t(i)]))
                return interfaceError();
        }
        break;
    case PanelSettings::Style::Blocks: {
        const int size = link->addressBytes + 1;
        std::vector<quint8> list = link->blockList(allRegisters(count));
        if (!link->readBlock(count, list.data()))
            return interfaceError();
        for (int i = 0; i < count; ++i)
            buffer[size_t(i)] = list[size_t(i * size + size - 1)];
        break;
    }
    case PanelSettings::Style::Autoincrement:
        if (!link->readAuto(0, count, buffer.data()))
            return interfaceError();
        break;
    default:
        break; // an unknown style reads nothing
    }

    emit percent_up(75);
    const QString chip = link->heldBoard();
    const quint64 changes = link->chipChanges();
    onGuiThread([map, &buffer, count, &chip, changes] {
        map->dropOldIC();
        std::memcpy(map->icImage, buffer.data(), size_t(count));
        std::memcpy(map->guiImage, buffer.data(), size_t(count));
        map->knownBoard = chip;
        map->knownChanges = changes;
    });
    registersRead = count;
    emit percent_up(100);
    return QString();
}

// GUI to chip, for each register map: all registers in the write style, or
// only those where guiImage differs from icImage, always in block frames.
// Only the changes needs a chip that is known: one read in full from this
// board (a write leaves icImage as it was); else every register goes, and
// the remark says so. With read-back the chip is read back after the pause,
// and the operation ends as a read.
QString clerk::chipWrite()
{
    for (RegisterImages* map : qAsConst(maps)) {
        const int count = int(map->registerCount);
        std::vector<quint8> gui(static_cast<size_t>(count)), ic(static_cast<size_t>(count));
        const QString chip = link->heldBoard();
        bool known = false;
        onGuiThread([&] {
            std::memcpy(gui.data(), map->guiImage, size_t(count));
            std::memcpy(ic.data(), map->icImage, size_t(count));
            known = map->chipKnownOn(chip);
        });

        if (settings.changesOnly && !known)
            remark = tr("changes only, but the chip was not read since the start or since the board was plugged "
                        "in: all %1 registers were written").arg(count);
        if (!settings.changesOnly || !known) {
            registersWritten = count;
            // A changes-only write that found the chip unknown fails in its
            // own words ("Refresh device list" when no board was there).
            const auto failed = [this] { return settings.changesOnly ? statusOrInterfaceError() : interfaceError(); };
            switch (settings.writeStyle) {
            case PanelSettings::Style::Blocks: {
                std::vector<quint8> list = link->blockList(allRegisters(count), gui.data());
                if (!link->writeBlock(count, list.data()))
                    return failed();
                break;
            }
            case PanelSettings::Style::Autoincrement:
                if (!link->writeAuto(0, count, gui.data()))
                    return statusOrInterfaceError();
                break;
            case PanelSettings::Style::OneAtATime:
                for (int i = 0; i < count; ++i) {
                    registersWritten = i;
                    if (!link->writeRegister(i, &gui[size_t(i)]))
                        return failed() + QLatin1Char('\n')
                               + QStringLiteral("%1 of %2 registers written").arg(i).arg(count);
                    registersWritten = i + 1;
                    if (interrupted)
                        return tr("Interrupted");
                }
                break;
            default:
                return tr("Недокументированная \nкомбинация флагов");
            }
        } else {
            const int style = int(settings.writeStyle);
            if (style < 0 || style > 2)
                return QStringLiteral("Недокументированная \nкомбинация флагов");
            std::vector<int> addresses;
            std::vector<quint8> values;
            for (int i = 0; i < count; ++i) {
                if (gui[size_t(i)] != ic[size_t(i)]) {
                    addresses.push_back(i);
                    values.push_back(gui[size_t(i)]);
                }
            }
            registersWritten = int(addresses.size());
            std::vector<quint8> list = link->blockList(addresses, values.data());
            if (!link->writeBlock(int(addresses.size()), list.data()))
                return statusOrInterfaceError();
            if (settings.readBack && settings.readBackWritten)
                return readBackWritten(map, addresses);
        }

        if (settings.readBack) {
            if (!pause())
                return tr("Interrupted");
            command = Command::ChipToGui;
            emit percent_up(45);
            const QString readBack = chipRead();
            if (readBack.isEmpty() || readBack == tr("Interrupted"))
                return readBack;
            return readBack + QLatin1Char('\n') + QStringLiteral("the registers were written; the read-back failed");
        }
        emit percent_up(100);
        return QString();
    }
    return QString();
}

// After a changes-only write to a known chip, the registers written read
// back in block frames into both images. When every one came back as
// written, the forms stand as they are and the chip is still known; a
// register that came back otherwise makes the operation end as a read, so
// that the forms show what the chip holds.
QString clerk::readBackWritten(RegisterImages* map, const std::vector<int>& addresses)
{
    if (!pause())
        return tr("Interrupted");
    emit percent_up(45);
    const int count = int(addresses.size());
    std::vector<quint8> list = link->blockList(addresses);
    // Nothing written, nothing to read back.
    if (count > 0 && !link->readBlock(count, list.data()))
        return interfaceError() + QLatin1Char('\n') + QStringLiteral("the registers were written; the read-back failed");
    const int size = link->addressBytes + 1;
    std::vector<quint8> values(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        values[size_t(i)] = list[size_t(i * size + size - 1)];
    const quint64 changes = link->chipChanges();
    bool differs = false;
    onGuiThread([&] {
        differs = map->takeReadBack(addresses, values.data());
        map->knownChanges = changes;
    });
    registersRead = count;
    if (differs)
        command = Command::ChipToGui;
    emit percent_up(100);
    return QString();
}

// Register registerNumber into registerValue, which a failed read leaves as
// it was.
QString clerk::readOne()
{
    emit percent_up(1);
    quint8 value = 0;
    if (!link->readRegister(settings.registerNumber, &value))
        return interfaceError();
    emit percent_up(50);
    settings.registerValue = value;
    emit percent_up(100);
    return QString();
}

// registerValue into register registerNumber.
QString clerk::writeOne()
{
    emit percent_up(1);
    const quint8 value = settings.registerValue;
    if (!link->writeRegister(settings.registerNumber, &value))
        return interfaceError();
    emit percent_up(100);
    return QString();
}
