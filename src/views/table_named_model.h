// The model of the map window's named view: one row per register with its
// name, value and bits, and the fields that own the bits.

#pragma once

#include "mapshow.h"

#include <QAbstractTableModel>
#include <QByteArray>

#include <array>

class TableNamedModel : public QAbstractTableModel, public ImageViewModel
{
    Q_OBJECT

public:
    // Columns: "Addr", "Name", "Value", then per bit D7 to D0 its value and
    // the name of its field, and "Default".
    enum Column { AddressColumn = 0, NameColumn = 1, ValueColumn = 2, FirstBitColumn = 3, DefaultColumn = 19 };
    static constexpr int columnCountOfTable = 20;

    TableNamedModel(mapshow* map, quint8* guiImage, quint8* icImage, quint8* cfgImage);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    // A bit's value cell writes the bit into guiImage if a field owns it,
    // and the field's widget follows.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // The header text of a column.
    static QString columnTitle(int column);
    // The field that owns a bit, with the bit's label: "CLK_SOURCE<2>", or
    // "Unused".
    QString fieldOfBit(int position) const;

    // Nothing refreshes the old copies of this view.
    void dropOld(int) override {}
    void bitChanged(int position) override;
    void refresh() override;

private:
    // The bit shown in a column, 0 for D7 to 7 for D0, or -1.
    static int bitOfColumn(int column);
    static bool isBitValueColumn(int column) { return bitOfColumn(column) >= 0 && (column - FirstBitColumn) % 2 == 0; }

    std::array<QByteArray, 3> oldImages;
    std::array<quint8*, 3> liveImages;
    mapshow* const map;
    const int rows;
};
