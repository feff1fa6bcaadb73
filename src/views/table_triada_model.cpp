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
    return RegisterBlocks::data(cell, role, cell.reg <= shownRegisters, changed(cell), liveImages.data(), look);
}

RegisterBlocks::Face TableTriadaModel::face(int row, int column) const
{
    const RegisterBlocks::Cell cell = blocks().cell(row, column);
    return RegisterBlocks::face(cell, cell.reg <= shownRegisters, changed(cell), liveImages.data(), look);
}

// Each image line is compared with its own old copy.
bool TableTriadaModel::changed(const RegisterBlocks::Cell& cell) const
{
    if (cell.reg > shownRegisters || !cell.isImageLine() || !cell.isBit())
        return false;
    const size_t image = size_t(cell.line - RegisterBlocks::GuiLine);
    return RegisterBlocks::bit(liveImages[image], cell.position()) !=
           RegisterBlocks::bit(reinterpret_cast<const quint8*>(oldImages[image].constData()), cell.position());
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

// The four only tell the views; the numbers are the resize's to change.
bool TableTriadaModel::insertRows(int row, int count, const QModelIndex& parent)
{
    beginInsertRows(parent, row, row + count - 1);
    endInsertRows();
    return true;
}

bool TableTriadaModel::removeRows(int row, int count, const QModelIndex& parent)
{
    beginRemoveRows(parent, row, row + count - 1);
    endRemoveRows();
    return true;
}

bool TableTriadaModel::insertColumns(int column, int count, const QModelIndex& parent)
{
    beginInsertColumns(parent, column, column + count - 1);
    endInsertColumns();
    return true;
}

bool TableTriadaModel::removeColumns(int column, int count, const QModelIndex& parent)
{
    beginRemoveColumns(parent, column, column + count - 1);
    endRemoveColumns();
    return true;
}

void TableTriadaModel::resize(int width, int)
{
    const RegisterBlocks layout(width / registerColumnWidth);
    const int oldRows = rows, oldColumns = columns;
    columns = layout.tableColumns();
    rows = (shownRegisters / layout.registerColumns() + 1) * RegisterBlocks::linesPerBlock;
    // The spans and the row heights change only with the number of
    // registers side by side; a resize within it only shares the width anew.
    if (layout.registerColumns() != laidOutColumns)
        view->clearSpans();
    if (rows < oldRows)
        removeRows(0, oldRows - rows);
    else if (rows > oldRows)
        insertRows(0, rows - oldRows);
    if (columns < oldColumns)
        removeColumns(0, oldColumns - columns);
    else if (columns > oldColumns)
        insertColumns(0, columns - oldColumns);
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
    // Registers past the last one shown still have cells ("-") in the last
    // block; those beyond the table have none to tell.
    const int reg = position / 8;
    const RegisterBlocks layout = blocks();
    const int row = layout.row(reg, RegisterBlocks::GuiLine);
    const QModelIndex bitCell = index(row, layout.column(reg, position % 8));
    const QModelIndex hexCell = index(row, layout.column(reg, RegisterBlocks::hexColumn));
    if (bitCell.isValid())
        emit dataChanged(bitCell, bitCell);
    if (hexCell.isValid())
        emit dataChanged(hexCell, hexCell);
}

void TableTriadaModel::refresh()
{
    beginResetModel();
    endResetModel();
}
