#include "simulated_chip.h"

#include "hex_format.h"
#include "hex_reader.h"

static void initSimResources()
{
    Q_INIT_RESOURCE(sim);
}

namespace zvsim {

namespace {
constexpr uint8_t kFrameType = 0x15;
constexpr uint8_t kRead = 0x80;
constexpr uint8_t kAuto = 0x40;
constexpr int kChipId = 4280; // 13 bits over registers 0 and 1
} // namespace

SimulatedChip::SimulatedChip()
{
    // Powered up as the tool's "default.hex" sets a chip up.
    initSimResources();
    QStringList lines;
    QString refusal;
    HexReader::readLines(QStringLiteral(":/sim/default.hex"), &lines, &refusal);
    for (const QString& line : qAsConst(lines))
        if (HexFormat::classify(line) == HexFormat::LineKind::Register)
            if (const auto reg = HexFormat::readRegister(line))
                if (reg->number < kRegisters)
                    regs[size_t(reg->number)] = reg->value;
    regs[0] = uint8_t(kChipId >> 5);
    regs[1] = uint8_t((kChipId & 0x1F) << 3);
    setRelease(2);
    // A powered chip: AOK and the channels' PLLs locked.
    regs[2] = 0x1F;
    regs[14] = 0x20;
    regs[36] = 0x20;
    regs[58] = 0x20;
    tick();
}

void SimulatedChip::setRelease(int code)
{
    regs[1] = uint8_t((regs[1] & ~7) | (code & 7));
}

// The temperature wanders by a step now and then; the lock bit of channel B
// drops for one read in sixteen.
void SimulatedChip::tick()
{
    ++ticks;
    if (ticks % 3 == 0)
        temperatureCode += (ticks / 3) % 2 ? 1 : -1;
    regs[4] = uint8_t((regs[4] & ~3) | ((temperatureCode >> 8) & 3));
    regs[5] = uint8_t(temperatureCode & 0xFF);
    regs[36] = uint8_t(ticks % 16 == 0 ? regs[36] & ~0x20 : regs[36] | 0x20);
}

uint8_t SimulatedChip::read(int address)
{
    if (address < 0 || address >= kRegisters)
        return 0;
    if (address == 4)
        tick();
    return regs[size_t(address)];
}

// Identity and sensor registers belong to the chip; other addresses beyond
// the map are taken and forgotten.
void SimulatedChip::write(int address, uint8_t value)
{
    if (address < 0 || address >= kRegisters || address <= 1 || address == 5)
        return;
    if (address == 4)
        value = uint8_t((value & ~3) | (regs[4] & 3));
    regs[size_t(address)] = value;
}

QByteArray SimulatedChip::answer(const QByteArray& frame)
{
    QByteArray reply = frame;
    if (frame.size() < 2 || uint8_t(frame[0]) != kFrameType)
        return reply;
    const int payload = qMin(int(uint8_t(frame[1])), frame.size() - 2);
    if (payload < 2)
        return reply;
    const uint8_t first = uint8_t(frame[2]);
    if (first & kAuto) {
        const bool isRead = first & kRead;
        const int start = ((first & 0x3F) << 8) | uint8_t(frame[3]);
        for (int i = 0; i + 2 < payload; ++i) {
            if (isRead)
                reply[4 + i] = char(read(start + i));
            else
                write(start + i, uint8_t(frame[4 + i]));
        }
        return reply;
    }
    for (int k = 0; 3 * k + 2 < payload + 0 && 3 * k + 4 < frame.size(); ++k) {
        const uint8_t hi = uint8_t(frame[2 + 3 * k]);
        const int address = ((hi & 0x3F) << 8) | uint8_t(frame[3 + 3 * k]);
        if (hi & kRead) {
            reply[4 + 3 * k] = char(read(address));
        } else {
            // A written triple comes back with what the register holds
            // afterwards, which differs where the chip keeps its own bits.
            write(address, uint8_t(frame[4 + 3 * k]));
            if (address < kRegisters)
                reply[4 + 3 * k] = char(regs[size_t(address)]);
        }
    }
    return reply;
}

} // namespace zvsim
