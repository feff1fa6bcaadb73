// The named view of the map window; a bit edited in its cell moves the
// image and the widget of the field that owns it.

#include "table_named_model.h"
#include "register_blocks.h"
#include "register_names.h"

#include <QColor>

TableNamedModel::TableNamedModel(mapshow* owner, quint8* guiImage, quint8* icImage, quint8* cfgImage)
    : QAbstractTableModel(owner), liveImages{guiImage, icImage, cfgImage}, map(owner), rows(int(owner->registerCount))
{
    for (QByteArray& old : oldImages)
        old = QByteArray(rows, '\0');
}

int TableNamedModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : rows;
}

int TableNamedModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columnCountOfTable;
}

int TableNamedModel::bitOfColumn(int column)
{
    return column >= FirstBitColumn && column < DefaultColumn ? (column - FirstBitColumn) / 2 : -1;
}

QString TableNamedModel::columnTitle(int column)
{
    switch (column) {
    case AddressColumn: return QStringLiteral("Addr");
    case NameColumn: return QStringLiteral("Name");
    case ValueColumn: return QStringLiteral("Value");
    case DefaultColumn: return QStringLiteral("Default");
    default:
        return bitOfColumn(column) >= 0 ? QStringLiteral("D%1").arg(7 - bitOfColumn(column)) : QString();
    }
}

QString TableNamedModel::fieldOfBit(int position) const
{
    const auto owner = map->bitOwners.constFind(position);
    if (owner == map->bitOwners.constEnd())
        return QStringLiteral("Unused");
    const QString objectName = owner->widget ? owner->widget->objectName() : QString();
    QString name = objectName.mid(3);
    const int chipWord = name.indexOf(QLatin1String("_ZV42"));
    if (chipWord >= 0)
        name.truncate(chipWord);
    if (!owner->label.isEmpty())
        name += QLatin1Char('<') + owner->label + QLatin1Char('>');
    return name;
}

QVariant TableNamedModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.column() >= columnCountOfTable || index.row() >= rows)
        return QVariant();
    const int reg = index.row();
    const int column = index.column();
    const int bit = bitOfColumn(column);
    const int position = reg * 8 + bit;
    const quint8* gui = liveImages[0];
    const quint8* old = reinterpret_cast<const quint8*>(oldImages[0].constData());
    switch (role) {
    case Qt::TextAlignmentRole:
        return int(Qt::AlignLeft);
    case Qt::BackgroundRole: {
        static const QColor odd(QStringLiteral("#EEEEEE"));
        static const QColor even(QStringLiteral("#FFFFFF"));
        return reg % 2 ? odd : even;
    }
    case Qt::ForegroundRole: {
        static const QColor changed(QStringLiteral("#FF6666"));
        if (bit >= 0 && RegisterBlocks::bit(gui, position) != RegisterBlocks::bit(old, position))
            return changed;
        if (column == ValueColumn && gui[reg] != old[reg])
            return changed;
        return QVariant();
    }
    case Qt::DisplayRole:
    case Qt::EditRole:
        switch (column) {
        case AddressColumn: return QString::number(reg);
        case NameColumn: return registerNames.value(reg);
        case ValueColumn: return RegisterBlocks::hexByte(gui[reg]);
        case DefaultColumn: return RegisterBlocks::hexByte(liveImages[2][reg]);
        default:
            if (isBitValueColumn(column))
                return RegisterBlocks::bit(gui, position) ? QStringLiteral("1") : QStringLiteral("0");
            return fieldOfBit(position);
        }
    default:
        return QVariant();
    }
}

bool TableNamedModel::setData(const QModelIndex& index, const QVariant& value, int)
{
    if (!index.isValid())
        return false;
    // Every cell takes an edit, and the column picks the bit by halves from
    // column 2: a bit's value cell and the name cell before it (column 1
    // and the Value column stand for D7 of their row, column 0 for the last
    // bit of the register above).
    const int position = index.row() * 8 + (index.column() - ValueColumn) / 2;
    const auto owner = map->bitOwners.constFind(position);
    emit dataChanged(index, index);
    if (position < 0 || owner == map->bitOwners.constEnd() || !owner->widget)
        return false;
    map->setBit(liveImages[0], position, value.toInt() >= 1 ? 1 : 0);
    // The fieldKey: the object name less "ZV_" and less what follows the
    // chip word.
    const QString objectName = owner->widget->objectName().mid(3);
    const int chipWord = objectName.indexOf(map->chipName);
    map->setPartValue(objectName.left(chipWord < 0 ? objectName.size() : chipWord + map->chipName.size()), liveImages[0]);
    bitChanged(position);
    return false;
}

QVariant TableNamedModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QVariant();
    return orientation == Qt::Horizontal ? columnTitle(section) : QString();
}

Qt::ItemFlags TableNamedModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags base = QAbstractTableModel::flags(index);
    return index.isValid() ? base | Qt::ItemIsEditable : base;
}

void TableNamedModel::bitChanged(int position)
{
    const int reg = position / 8;
    if (reg < 0 || reg >= rows)
        return;
    const QModelIndex bitCell = index(reg, FirstBitColumn + 2 * (position % 8));
    const QModelIndex valueCell = index(reg, ValueColumn);
    emit dataChanged(bitCell, bitCell);
    emit dataChanged(valueCell, valueCell);
}

void TableNamedModel::refresh()
{
    beginResetModel();
    endResetModel();
}
