#pragma once

// Helpers for the tests that run on a simulated board.

#include "simulated_chip.h"
#include "testbed.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>
#include <random>

// The chip's registers as they stand.
inline QByteArray chipRegisters(const zvsim::SimulatedChip& chip)
{
    QByteArray regs;
    for (int r = 0; r < zvsim::SimulatedChip::kRegisters; ++r)
        regs += char(chip.reg(r));
    return regs;
}

// Ends a test's bus and tells what the program left open or claimed on it:
// nothing when every open was closed and every claim released.
inline QString closeBus(std::unique_ptr<zvsim::Testbed>& bus)
{
    const QString left = bus->unreleased();
    bus.reset();
    return left;
}

// The frames the host sent, in order.
inline QList<QByteArray> sentFrames(const zvsim::Testbed& bus)
{
    QList<QByteArray> frames;
    for (const zvsim::WireFrame& f : bus.wireLog())
        if (f.out)
            frames << f.bytes;
    return frames;
}

// Random contents for the registers the chip does not fill itself (identity,
// temperature, channel B's lock bit); the C-divider (register 11) at 4 or
// more, as its box cannot go lower.
inline void fillChipAtRandom(zvsim::SimulatedChip& chip, std::mt19937& random)
{
    for (int r = 6; r < zvsim::SimulatedChip::kRegisters; ++r)
        if (r != 36)
            chip.setReg(r, quint8(random()));
    chip.setReg(11, quint8(4 + random() % 250));
}
