// A table of the three images in blocks like the triad view, with a fixed
// number of registers side by side; edits not sent to the chip are blue.

#pragma once

#include <QAbstractTableModel>

class RegTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    // `images` points to guiImage, icImage and cfgImage, `size` registers
    // each; the array must outlive the model.
    RegTableModel(quint8* const* images, int size, int registerColumns, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // Sets the registers side by side and answers the table rows that
    // follow.
    int setRegisterColumns(int registerColumns);

private:
    quint8* const* images;
    int columns = 0;
    int rows = 0;
    const int size;
};
