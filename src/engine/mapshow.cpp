#include "mapshow.h"
#include "part.h"

#include <cstring>

// The data side of the map window: the images and the bit operations.

part* mapshow::ParseObjName(const QString& name)
{
    std::optional<part> p = parseFieldName(name);
    return p ? new part(std::move(*p)) : nullptr;
}

int mapshow::getBit(const quint8* image, qint32 position) const
{
    return (image[position / qint32(bitsPerRegister)] >> (7 - position % qint32(bitsPerRegister))) & 1;
}

void mapshow::setBit(quint8* image, qint32 position, int value)
{
    quint8& reg = image[position / 8];
    const int shift = 7 - position % 8;
    reg = quint8((reg & ~(1u << shift)) + (quint32(value) << shift));
}

quint32 mapshow::runValue(const quint8* image, qint32 position, qint32 width) const
{
    quint32 sum = 0;
    for (qint32 i = 0; i < width; ++i)
        sum = (sum << 1) | quint32(getBit(image, position + i));
    return sum;
}

quint32 mapshow::getBrim(qint32 position, qint32 width) const
{
    return runValue(guiImage, position, width);
}

void mapshow::setBrim(qint32 position, qint32 width, quint32 value)
{
    for (qint32 i = width - 1; i >= 0; --i) {
        const int bit = int(value & 1u);
        if (getBit(guiImage, position + i) != bit)
            setBit(guiImage, position + i, bit);
        value >>= 1;
    }
}

bool mapshow::isBrimChanged(qint32 position, qint32 width) const
{
    if (width <= 0)
        return false;
    return runValue(guiImage, position, width) != runValue(icImage, position, width);
}

void mapshow::dropOldGUI() { dropOld(0); }
void mapshow::dropOldIC() { dropOld(1); }
void mapshow::dropOldCfg() { dropOld(2); }
