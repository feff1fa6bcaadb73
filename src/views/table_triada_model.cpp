// The triad view of the map window: blocks of the lines "Reg", "Bit",
// "Wr", "Rd", "Cfg" and a spacer, laid out by the view's width.

#include "table_triada_model.h"
#include "table_named_model.h"

#include <QHeaderView>
#include <QTableView>

#include <algorithm>
#include <cstring>

namespace {
const RegisterBlocks::Look look = {{"Reg", "Bit", "Wr", "Rd", "Cfg", ""}, "h", true, false, Qt::AlignHCenter};
}

TableTriadaModel::TableTriadaModel(QTableView* tableView, int headerStyle, quint32 registerCount, mapshow* map)
    : QAbstractTableModel(map), shownRegisters(std::min(106, int(registerCount) - 1)), style(headerStyle),
      view(tableView), liveImages{map->guiImage, map->icImage, map->cfgImage}
{
    for (QByteArray& old : oldImages)
        old = QByteArray(int(registerCount), '\0');
    view->horizontalHeader()->setMinimumSectionSize(1);
    view->verticalHeader()->setMinimumSectionSize(1);
    view->verticalHeader()->setDefaultSectionSize(15);
}

int TableTriadaModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : rows;
}

int TableTriadaModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columns;
}

QVariant TableTriadaModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rows || index.column() >= columns)
        return QVariant();
    const RegisterBlocks::Cell cell = blocks().cell(index.row(), index.column());
    const bool shown = cell.reg <= shownRegisters;
    // Each image line is compared with its own old copy.
    const size_t image = size_t(cell.line - RegisterBlocks::GuiLine);
    const bool changed =
        role == Qt::BackgroundRole && shown && cell.isImageLine() && cell.isBit() &&
        RegisterBlocks::bit(liveImages[image], cell.position()) !=
            RegisterBlocks::bit(reinterpret_cast<const quint8*>(oldImages[image].constData()), cell.position());
    return RegisterBlocks::data(cell, role, shown, changed, liveImages.data(), look);
}

bool TableTriadaModel::setData(const QModelIndex& index, const QVariant&, int)
{
    emit dataChanged(index, index);
    return false;
}

QVariant TableTriadaModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QVariant();
    if (style != 1)
        return orientation == Qt::Horizontal ? TableNamedModel::columnTitle(section) : QString();
    return orientation == Qt::Horizontal ? QString() : RegisterBlocks::lineTitle(section, look);
}

bool TableTriadaModel::insertRows(int row, int count, const QModelIndex& parent)
{
    if (parent.isValid() || row < 0 || row > rows || count < 1)
        return false;
    beginInsertRows(parent, row, row + count - 1);
    rows += count;
    endInsertRows();
    return true;
}

bool TableTriadaModel::removeRows(int row, int count, const QModelIndex& parent)
{
    if (parent.isValid() || row < 0 || count < 1 || row + count > rows)
        return false;
    beginRemoveRows(parent, row, row + count - 1);
    rows -= count;
    endRemoveRows();
    return true;
}

bool TableTriadaModel::insertColumns(int column, int count, const QModelIndex& parent)
{
    if (parent.isValid() || column < 0 || column > columns || count < 1)
        return false;
    beginInsertColumns(parent, column, column + count - 1);
    columns += count;
    endInsertColumns();
    return true;
}

bool TableTriadaModel::removeColumns(int column, int count, const QModelIndex& parent)
{
    if (parent.isValid() || column < 0 || count < 1 || column + count > columns)
        return false;
    beginRemoveColumns(parent, column, column + count - 1);
    columns -= count;
    endRemoveColumns();
    return true;
}

void TableTriadaModel::resize(int width, int)
{
    const RegisterBlocks layout(width / registerColumnWidth);
    const int newColumns = layout.tableColumns();
    const int newRows = (shownRegisters / layout.registerColumns() + 1) * RegisterBlocks::linesPerBlock;
    // The spans and the row heights change only with the number of
    // registers side by side; a resize within it only shares the width anew.
    if (layout.registerColumns() != laidOutColumns)
        view->clearSpans();
    if (newRows < rows)
        removeRows(newRows, rows - newRows);
    else if (newRows > rows)
        insertRows(rows, newRows - rows);
    if (newColumns < columns)
        removeColumns(newColumns, columns - newColumns);
    else if (newColumns > columns)
        insertColumns(columns, newColumns - columns);
    if (layout.registerColumns() != laidOutColumns) {
        layout.setSpans(view, rows);
        laidOutColumns = layout.registerColumns();
    }
    layout.setColumnWidths(view, width);
}

void TableTriadaModel::dropOld(int index)
{
    // Registers 0 to 105: register 106 is shown but never refreshed.
    const size_t image = size_t(index);
    if (image < oldImages.size() && shownRegisters > 0)
        std::memcpy(oldImages[image].data(), liveImages[image], size_t(shownRegisters));
}

void TableTriadaModel::bitChanged(int position)
{
    const int reg = position / 8;
    if (reg > shownRegisters)
        return;
    const RegisterBlocks layout = blocks();
    const int row = layout.row(reg, RegisterBlocks::GuiLine);
    const QModelIndex bitCell = index(row, layout.column(reg, position % 8));
    const QModelIndex hexCell = index(row, layout.column(reg, RegisterBlocks::hexColumn));
    emit dataChanged(bitCell, bitCell);
    emit dataChanged(hexCell, hexCell);
}

void TableTriadaModel::refresh()
{
    beginResetModel();
    endResetModel();
}
