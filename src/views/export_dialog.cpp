// The dialog of the firmware export.
#include "export_dialog.h"

#include "engine/form_model.h"
#include "engine/register_images.h"
#include "firmware_export.h"
#include "hex_format.h"
#include "hex_writer.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

ExportDialog::ExportDialog(FormModel& formModel, QWidget* parent) : QDialog(parent), model(formModel)
{
    setObjectName(QStringLiteral("exportDialog"));
    setWindowTitle(tr("Export for firmware"));
    auto* layout = new QFormLayout(this);
    format = new QComboBox(this);
    format->addItems({QStringLiteral("C header (.h)"), QStringLiteral("CSV (.csv)"), QStringLiteral("JSON (.json)")});
    layout->addRow(tr("Format"), format);
    source = new QComboBox(this);
    source->addItems({tr("Forms"), tr("Chip as last read"), tr("File")});
    layout->addRow(tr("Source"), source);
    sourceFile = new QLineEdit(this);
    sourceFile->setPlaceholderText(QStringLiteral("settings.hex"));
    layout->addRow(tr("Source file"), sourceFile);
    changesOnly = new QCheckBox(tr("Only registers that differ from the base file"), this);
    layout->addRow(changesOnly);
    baseFile = new QLineEdit(QStringLiteral("default.hex"), this);
    layout->addRow(tr("Base file"), baseFile);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("Export…"));
    layout->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &ExportDialog::run);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void ExportDialog::run()
{
    const auto chosen = FirmwareExport::Format(format->currentIndex());
    const QString file = QFileDialog::getSaveFileName(this, tr("Export for firmware"),
                                                      QStringLiteral("zv4280_settings") + FirmwareExport::suffix(chosen));
    if (file.isEmpty())
        return;
    const QString fault = write(file);
    if (!fault.isEmpty()) {
        QMessageBox::warning(this, windowTitle(), fault);
        return;
    }
    accept();
}

QString ExportDialog::write(const QString& file)
{
    const RegisterImages& images = model.images();
    const int count = int(images.registerCount);
    QVector<HexEntries::Entry> entries;
    FirmwareExport::Header header;
    header.tool = QStringLiteral("zv4280tb");
    header.chip = images.chipName;
    QString error;
    switch (source->currentIndex()) {
    case 0:
        header.source = QStringLiteral("forms");
        entries = HexEntries::ofImage(QByteArray(reinterpret_cast<const char*>(images.guiImage), count),
                                      HexFormat::lastSavedRegister);
        break;
    case 1:
        header.source = QStringLiteral("chip");
        entries = HexEntries::ofImage(QByteArray(reinterpret_cast<const char*>(images.icImage), count),
                                      HexFormat::lastSavedRegister);
        break;
    default:
        header.source = sourceFile->text();
        if (!HexEntries::read(header.source, images.chipName, images.registerCount, &entries, &error))
            return error;
        break;
    }
    if (changesOnly->isChecked()) {
        QVector<HexEntries::Entry> base;
        if (!HexEntries::read(baseFile->text(), images.chipName, images.registerCount, &base, &error))
            return tr("Base file: ") + error;
        entries = HexEntries::changesFrom(entries, HexEntries::image(base, images.registerCount));
    }
    const QString text = FirmwareExport::text(FirmwareExport::Format(format->currentIndex()), entries, header);
    HexWriter writer(file, false);
    if (!writer.open() || !writer.write(text) || !writer.commit())
        return writer.errorText().isEmpty() ? tr("Cannot write %1").arg(file) : writer.errorText();
    return QString();
}
