// The three register images and the bit operations on them.
#include "register_images.h"

#include "part.h"

RegisterImages::RegisterImages(const QString& chip, quint32 count, QObject* parent)
    : QObject(parent),
      storage(size_t(count) * 3, 0),
      chipName(chip),
      registerCount(count),
      guiImage(storage.data()),
      icImage(storage.data() + count),
      cfgImage(storage.data() + 2 * size_t(count))
{
}

int RegisterImages::getBit(const quint8* image, qint32 position)
{
    return (image[position / 8] >> (7 - position % 8)) & 1;
}

void RegisterImages::setBit(quint8* image, qint32 position, int value)
{
    quint8& reg = image[position / 8];
    const int shift = 7 - position % 8;
    reg = quint8((reg & ~(1u << shift)) + (quint32(value) << shift));
}

quint32 RegisterImages::runValue(const quint8* image, qint32 position, qint32 width)
{
    quint32 sum = 0;
    for (qint32 i = 0; i < width; ++i)
        sum = (sum << 1) | quint32(getBit(image, position + i));
    return sum;
}

quint32 RegisterImages::getBrim(qint32 position, qint32 width) const
{
    return runValue(guiImage, position, width);
}

void RegisterImages::setBrim(qint32 position, qint32 width, quint32 value)
{
    for (qint32 i = width - 1; i >= 0; --i) {
        const int bit = int(value & 1u);
        if (getBit(guiImage, position + i) != bit)
            setBit(guiImage, position + i, bit);
        value >>= 1;
    }
}

bool RegisterImages::isBrimChanged(qint32 position, qint32 width) const
{
    if (width <= 0)
        return false;
    return runValue(guiImage, position, width) != runValue(icImage, position, width);
}

quint32 RegisterImages::fieldValue(const part& p, const quint8* image)
{
    quint32 value = 0;
    quint32 weight = 1;
    for (int i = p.positions.size() - 1; i >= 0; --i) {
        const qint32 w = qint32(p.widths.value(i));
        for (qint32 b = 0; b < w; ++b) {
            if (getBit(image, qint32(p.positions.at(i)) + w - 1 - b))
                value += weight;
            weight <<= 1;
        }
    }
    return value;
}

void RegisterImages::writeField(const part& p, quint32 value)
{
    for (int i = p.positions.size() - 1; i >= 0; --i) {
        const qint32 w = qint32(p.widths.value(i));
        for (qint32 b = 0; b < w; ++b) {
            const qint32 position = qint32(p.positions.at(i)) + w - 1 - b;
            const int bit = int(value & 1u);
            if (getBit(guiImage, position) != bit) {
                setBit(guiImage, position, bit);
                if (listener)
                    listener->bitChanged(position);
            }
            value >>= 1;
        }
    }
}

bool RegisterImages::isFieldChanged(const part& p) const
{
    const int ranges = qMin(p.positions.size(), p.widths.size());
    for (int i = 0; i < ranges; ++i)
        if (isBrimChanged(qint32(p.positions.at(i)), qint32(p.widths.at(i))))
            return true;
    return false;
}

void RegisterImages::dropOld(int index)
{
    if (listener)
        listener->dropOld(index);
}

bool RegisterImages::takeReadBack(const std::vector<int>& registers, const quint8* values)
{
    bool differs = false;
    for (size_t i = 0; i < registers.size(); ++i) {
        const size_t r = size_t(registers[i]);
        differs = differs || guiImage[r] != values[i];
        icImage[r] = guiImage[r] = values[i];
    }
    return differs;
}
