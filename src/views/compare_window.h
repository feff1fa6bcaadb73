// The "Compare" window: two of the forms, the chip as last read and a file
// (the last loaded, or one chosen) side by side, one row per field that
// differs; a double-click on a row finds the field in the forms.
#pragma once

#include "engine/image_compare.h"

#include <QByteArray>
#include <QVector>
#include <QWidget>

class FormModel;
class QComboBox;
class QLabel;
class QTableWidget;

class CompareWindow : public QWidget
{
    Q_OBJECT

public:
    // What a side shows.
    enum Source { Forms, Chip, LastFile, ChosenFile };

    explicit CompareWindow(FormModel& model, QWidget* parent = nullptr);

    // Compares the two sides chosen now; a chosen file is read anew.
    void refresh();
    // Chooses a side's source; a chosen file comes from `file`.
    void choose(int side, Source source, const QString& file = QString());
    const QVector<ImageDifference>& differences() const { return rows; }

signals:
    // A row was double-clicked: its field, an index into the catalogue's fields.
    void findField(int field);

private:
    // The image of a side and the registers it tells; false with a message
    // in the window when a file cannot be read.
    bool image(int side, QByteArray* bytes, QVector<bool>* known);
    void sourceChosen(int side);

    FormModel& model;
    QComboBox* sources[2] = {};
    QString files[2];
    QLabel* summary = nullptr;
    QTableWidget* table = nullptr;
    QVector<ImageDifference> rows;
};
