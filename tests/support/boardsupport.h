#pragma once

// Helpers for the tests that run on a simulated board.

#include "simulated_chip.h"
#include "testbed.h"
#include "enginesupport.h"

// The frames the host sent, in order.
inline QList<QByteArray> sentFrames(const zvsim::Testbed& bus)
{
    QList<QByteArray> frames;
    for (const zvsim::WireFrame& f : bus.wireLog())
        if (f.out)
            frames << f.bytes;
    return frames;
}

// A test's bus with one board on it, made anew for each test function.
struct OnBoard
{
    std::unique_ptr<zvsim::Testbed> bus;
    int board = 0;
    std::mt19937 random{4280};

    void plugBoard() { bus.reset(new zvsim::Testbed), board = bus->addBoard(); }
    // Ends the bus and tells what the program left open or claimed on it:
    // nothing when every open was closed and every claim released.
    QString unplugBus() { const QString left = bus->unreleased(); bus.reset(); return left; }
    QByteArray chip(int b = -1) const { return bus->registers(b < 0 ? board : b); }
    QList<QByteArray> sent() const { return sentFrames(*bus); }
    // Random contents for the registers the chip does not fill itself
    // (identity, temperature, channel B's lock bit); the C-divider (register
    // 11) at 4 or more, as its box cannot go lower.
    void fillChip()
    {
        for (int r = 6; r < zvsim::SimulatedChip::kRegisters; ++r)
            if (r != 36)
                bus->chip(board).setReg(r, quint8(random()));
        bus->chip(board).setReg(11, quint8(4 + random() % 250));
    }
};
