// Fuzzes the reading of hex file lines: any bytes as a line must classify
// and read without a fault, and what reads as a register reads the same once
// written back.
#include "hex_format.h"

#include <QString>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString line = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size)).trimmed();
    if (HexFormat::classify(line) == HexFormat::LineKind::Map && HexFormat::mapName(line).contains(QLatin1Char('.')))
        std::abort();
    if (const auto r = HexFormat::readRegister(line)) {
        const auto back = HexFormat::readRegister(HexFormat::registerLine(r->number, r->value, line));
        if (!back || back->number != r->number || back->value != r->value)
            std::abort();
    }
    return 0;
}
