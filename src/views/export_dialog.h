// "Export…": register settings written for firmware (C header, CSV or JSON)
// from the forms, the chip as last read or a file, in full or only the
// registers that differ from a base file.
#pragma once

#include <QDialog>

class FormModel;
class QCheckBox;
class QComboBox;
class QLineEdit;

class ExportDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ExportDialog(FormModel& model, QWidget* parent = nullptr);

    // Writes the export as the dialog says to `file`; the reason when it
    // could not, else empty.
    QString write(const QString& file);

    QComboBox* format = nullptr;  // c, csv, json
    QComboBox* source = nullptr;  // forms, chip, file
    QLineEdit* sourceFile = nullptr;
    QCheckBox* changesOnly = nullptr;
    QLineEdit* baseFile = nullptr;

private:
    void run();

    FormModel& model;
};
