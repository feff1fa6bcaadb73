// The data side of the map window: its bit operations are those of its
// register images.
#include "mapshow.h"
#include "part.h"

part* mapshow::ParseObjName(const QString& name)
{
    std::optional<part> p = parseFieldName(name);
    return p ? new part(std::move(*p)) : nullptr;
}

int mapshow::getBit(const quint8* image, qint32 position) const
{
    return RegisterImages::getBit(image, position);
}

void mapshow::setBit(quint8* image, qint32 position, int value)
{
    RegisterImages::setBit(image, position, value);
}

quint32 mapshow::getBrim(qint32 position, qint32 width) const
{
    return images.getBrim(position, width);
}

void mapshow::setBrim(qint32 position, qint32 width, quint32 value)
{
    images.setBrim(position, width, value);
}

bool mapshow::isBrimChanged(qint32 position, qint32 width) const
{
    return images.isBrimChanged(position, width);
}

void mapshow::dropOldGUI() { images.dropOldGUI(); }
void mapshow::dropOldIC() { images.dropOldIC(); }
void mapshow::dropOldCfg() { images.dropOldCfg(); }

quint32 mapshow::fieldImageValue(const part& p, const quint8* image) const
{
    return RegisterImages::fieldValue(p, image);
}
