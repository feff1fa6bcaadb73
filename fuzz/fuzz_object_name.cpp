// Fuzzes the field-name parser with any object name: no fault, and a name
// that gives a field starts with "ZV_" and yields a key whose last token is
// its chip word (empty tokens included), with at least one position and one
// width.
#include "part.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString name = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    const std::optional<part> p = parseFieldName(name);
    if (p && (!name.startsWith(QLatin1String("ZV_")) || p->name.section(QLatin1Char('_'), -1) != p->chip || p->positions.isEmpty()
              || p->widths.isEmpty()))
        std::abort();
    return 0;
}
