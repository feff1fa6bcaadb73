// The model of the map window's triad view: registers 0 to 106 in blocks
// with their bits in the three images, changed bits in blue.

#pragma once

#include "mapshow.h"
#include "register_blocks.h"

#include <QAbstractTableModel>
#include <QByteArray>

#include <array>

class QTableView;

class TableTriadaModel : public QAbstractTableModel, public ImageViewModel
{
    Q_OBJECT

public:
    // The width of one register column; the view's width divided by it gives
    // the number of registers side by side.
    static constexpr int registerColumnWidth = 150;

    // `style` 1 gives the triad headers; any other the named view's.
    TableTriadaModel(QTableView* view, int style, quint32 registerCount, mapshow* map);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    // What the cell at `row` and `column`, both in the table, shows: the
    // text and background that data() gives, in one lookup.
    RegisterBlocks::Face face(int row, int column) const;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    // Rows and columns come and go with the view's width only; these add or
    // take them at the given place.
    bool insertRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;
    bool removeRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;
    bool insertColumns(int column, int count, const QModelIndex& parent = QModelIndex()) override;
    bool removeColumns(int column, int count, const QModelIndex& parent = QModelIndex()) override;

    // Lays the table out for a view `width` wide: as many registers side by
    // side as 150 go into it (at least one). The height is not used.
    void resize(int width, int height);

    void dropOld(int index) override;
    void bitChanged(int position) override;
    void refresh() override;

private:
    bool changed(const RegisterBlocks::Cell& cell) const;
    RegisterBlocks blocks() const { return RegisterBlocks(columns / RegisterBlocks::columnsPerRegister); }

    int columns = RegisterBlocks::columnsPerRegister;
    int rows = RegisterBlocks::linesPerBlock;
    const int shownRegisters; // registers 0 to 106
    const int style;
    QTableView* const view;
    std::array<QByteArray, 3> oldImages;
    std::array<const quint8*, 3> liveImages;
    int laidOutColumns = 0; // register columns of the last layout of spans
};
