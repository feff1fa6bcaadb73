// The bit table model: the block layout over `size` registers, guiImage
// compared with the chip's image.

#include "reg_table_model.h"
#include "register_blocks.h"

namespace {
const RegisterBlocks::Look look = {{"Reg", "Bit", "wr", "rd", "cfg", ""}, "hh", false, true, Qt::AlignCenter};
}

RegTableModel::RegTableModel(quint8* const* imageSet, int registers, int registerColumns, QObject* parent)
    : QAbstractTableModel(parent), images(imageSet), size(registers)
{
    setRegisterColumns(registerColumns);
}

int RegTableModel::setRegisterColumns(int registerColumns)
{
    const RegisterBlocks layout(registerColumns);
    beginResetModel();
    columns = layout.tableColumns();
    rows = (size + layout.registerColumns() - 1) / layout.registerColumns() * RegisterBlocks::linesPerBlock;
    endResetModel();
    return rows;
}

int RegTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : rows;
}

int RegTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columns;
}

QVariant RegTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rows || index.column() >= columns)
        return QVariant();
    const RegisterBlocks::Cell cell =
        RegisterBlocks(columns / RegisterBlocks::columnsPerRegister).cell(index.row(), index.column());
    const bool shown = cell.reg < size;
    // Every line below the bit numbers compares guiImage with the chip's image.
    const bool changed = role == Qt::BackgroundRole && shown && cell.line >= RegisterBlocks::GuiLine && cell.isBit() &&
                         RegisterBlocks::bit(images[0], cell.position()) != RegisterBlocks::bit(images[1], cell.position());
    return RegisterBlocks::data(cell, role, shown, changed, images, look);
}

bool RegTableModel::setData(const QModelIndex& index, const QVariant&, int)
{
    emit dataChanged(index, index);
    return false;
}

QVariant RegTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QVariant();
    return orientation == Qt::Horizontal ? QString() : RegisterBlocks::lineTitle(section, look);
}
