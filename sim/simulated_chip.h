#pragma once

#include <QByteArray>

#include <array>
#include <cstdint>

namespace zvsim {

// A ZV4280 behind the bridge: 291 registers answered through the frame
// protocol. Status fields that the chip writes (temperature code, PLL lock
// bits) move on their own, so that repeated reads see a live chip.
class SimulatedChip
{
public:
    static constexpr int kRegisters = 291;

    SimulatedChip();

    // The reply to one frame sent to the board; it has the frame's length.
    QByteArray answer(const QByteArray& frame);

    void setRelease(int code); // low three bits of register 1
    uint8_t reg(int address) const { return regs[size_t(address)]; }
    void setReg(int address, uint8_t value) { regs[size_t(address)] = value; }

private:
    uint8_t read(int address);
    void write(int address, uint8_t value);
    void tick();

    std::array<uint8_t, kRegisters> regs{};
    unsigned ticks = 0;
    int temperatureCode = 640;
};

} // namespace zvsim
