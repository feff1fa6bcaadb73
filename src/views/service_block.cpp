#include "service_block.h"
#include "ui_service_block.h"

#include "usb_link.h"

#include <QCheckBox>
#include <QComboBox>
#include <QListView>
#include <QStandardItemModel>
#include <QMessageBox>
#include <QSpinBox>

service_block::service_block(QWidget* parent) : QWidget(parent), ui(new Ui::service_block)
{
    ui->setupUi(this);
    usb = new usb_link;
    connect(ui->flag_currentInterface, &QComboBox::currentTextChanged, this,
            &service_block::on_flag_currentInterface_currentIndexChanged);
    setWindowTitle(QStringLiteral("Service settings"));
    ui->flag_speedCom->hide();
    ui->label_TB->hide();
    ui->text_pause->setText(QStringLiteral("Read/write pause (ms)"));

    const QList<QCheckBox*> bits = {ui->cbxRegByte7, ui->cbxRegByte6, ui->cbxRegByte5, ui->cbxRegByte4,
                                    ui->cbxRegByte3, ui->cbxRegByte2, ui->cbxRegByte1, ui->cbxRegByte0};
    for (QCheckBox* box : bits)
        connect(box, &QCheckBox::stateChanged, this, &service_block::change_Value);

    // Every flag control feeds the settings, from its start value on.
    for (QObject* child : findChildren<QObject*>()) {
        if (!child->objectName().contains(QLatin1String("flag")))
            continue;
        if (auto* check = qobject_cast<QCheckBox*>(child))
            connect(check, &QCheckBox::stateChanged, this, &service_block::changeFlag);
        else if (auto* combo = qobject_cast<QComboBox*>(child))
            connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &service_block::changeFlag);
        else if (auto* spin = qobject_cast<QSpinBox*>(child))
            connect(spin, QOverload<int>::of(&QSpinBox::valueChanged), this, &service_block::changeFlag);
        else
            continue;
        store(child);
    }

    for (QWidget* w : {static_cast<QWidget*>(ui->Button_ICFILE), static_cast<QWidget*>(ui->GrRWRegister),
                       static_cast<QWidget*>(ui->flag_AutoPause), static_cast<QWidget*>(ui->flag_ReadStyle),
                       static_cast<QWidget*>(ui->text_read), static_cast<QWidget*>(ui->flag_WriteStyle),
                       static_cast<QWidget*>(ui->text_write), static_cast<QWidget*>(ui->flag_ServiceBits),
                       static_cast<QWidget*>(ui->flag_StatusBits), static_cast<QWidget*>(ui->flag_ConfigCheck),
                       static_cast<QWidget*>(ui->Info), static_cast<QWidget*>(ui->flag_RepeatRead)})
        w->hide();
    resize(330, 300);

    // Only the bridge boards have a protocol; the other interfaces stay out
    // of sight, and out of reach of the wheel and the arrow keys too, which
    // walk past hidden rows but not past disabled ones.
    auto* rows = qobject_cast<QListView*>(ui->flag_interfaceCheck->view());
    auto* items = qobject_cast<QStandardItemModel*>(ui->flag_interfaceCheck->model());
    for (int row = 1; row <= 4; ++row) {
        if (rows)
            rows->setRowHidden(row, true);
        if (items && items->item(row))
            items->item(row)->setEnabled(false);
    }
    ui->flag_interfaceCheck->setCurrentIndex(0);
    if (ui->flag_currentInterface->count() == 0)
        ui->flag_currentInterface->setCurrentIndex(0);
}

service_block::~service_block()
{
    delete usb;
    delete ui;
}

// Enters a control's state under its key, the object name less "flag_".
void service_block::store(QObject* control)
{
    const QString key = control->objectName().mid(5);
    int value = 0;
    if (auto* check = qobject_cast<QCheckBox*>(control))
        value = check->isChecked() ? 1 : 0;
    else if (auto* combo = qobject_cast<QComboBox*>(control))
        value = combo->currentIndex();
    else if (auto* spin = qobject_cast<QSpinBox*>(control))
        value = spin->value();
    else
        return;
    settings[key] = value;
}

// The one place where the settings' names are read. The read/write pause is
// also the pause the worker waits before a read-back and between the
// sections of a file.
PanelSettings service_block::panelSettings() const
{
    PanelSettings s;
    auto flag = [this](const char* key, int start) { return settings.value(QLatin1String(key), start); };
    s.readStyle = PanelSettings::Style(flag("ReadStyle", int(s.readStyle)));
    s.writeStyle = PanelSettings::Style(flag("WriteStyle", int(s.writeStyle)));
    s.changesOnly = flag("ChangesOnly", s.changesOnly) != 0;
    s.readBack = flag("InteractiveRefresh", s.readBack) != 0;
    s.writePauseMs = flag("PauseTimer", s.writePauseMs);
    s.comments = flag("HexComment", s.comments) != 0;
    s.mergeFile = flag("MergeFile", s.mergeFile) != 0;
    s.configCheck = flag("ConfigCheck", s.configCheck) != 0;
    s.statusBits = flag("StatusBits", s.statusBits) != 0;
    s.serviceBits = flag("ServiceBits", s.serviceBits) != 0;
    s.allRegisters = flag("SaveAll", s.allRegisters) != 0;
    s.repeatRead = flag("RepeatRead", s.repeatRead) != 0;
    s.autoPauseSeconds = flag("AutoPause", s.autoPauseSeconds);
    s.registerNumber = flag("RegisterNumber", s.registerNumber);
    return s;
}

void service_block::changeFlag(int value)
{
    QObject* s = sender();
    if (!s)
        return;
    store(s);
    // Only the bridge boards (interface 0) are served: the panel offers no
    // other interface.
    const QString name = s->objectName();
    if (name.contains(QLatin1String("interfaceCheck")))
        usb->interfaceKind = value;
    if (name.contains(QLatin1String("flag_interfaceCheck")) && value == 0) {
        usb->scanDevices();
        fillDevices(usb->deviceList);
    }
    if (name.contains(QLatin1String("flag_currentInterface")))
        usb->selectedKey = ui->flag_currentInterface->currentText();
}

void service_block::fillDevices(const QStringList& devices)
{
    ui->flag_currentInterface->clear();
    ui->flag_currentInterface->addItems(devices);
    usb->selectedKey = ui->flag_currentInterface->currentText();
}

void service_block::followBoards()
{
    QStringList shown;
    for (int i = 0; i < ui->flag_currentInterface->count(); ++i)
        shown.append(ui->flag_currentInterface->itemText(i));
    shown.sort();
    const QStringList seen = usb->boardsSeen();
    if (seen == shown || ui->flag_interfaceCheck->currentIndex() != 0)
        return;
    const QString chosen = usb->selectedKey;
    fillDevices(seen);
    if (seen.contains(chosen))
        ui->flag_currentInterface->setCurrentText(chosen);
}

void service_block::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (ui->flag_interfaceCheck->currentIndex() == 0 && usb->scanDevices())
        followBoards();
}

void service_block::on_search_interface_clicked()
{
    if (ui->flag_interfaceCheck->currentIndex() != 0)
        return;
    usb->scanDevices();
    fillDevices(usb->deviceList);
}

void service_block::on_flag_currentInterface_currentIndexChanged(QString arg1)
{
    usb->selectedKey = arg1;
}

quint8 service_block::bitRowValue() const
{
    const QCheckBox* bits[8] = {ui->cbxRegByte0, ui->cbxRegByte1, ui->cbxRegByte2, ui->cbxRegByte3,
                                ui->cbxRegByte4, ui->cbxRegByte5, ui->cbxRegByte6, ui->cbxRegByte7};
    quint8 value = 0;
    for (int b = 0; b < 8; ++b)
        if (bits[b]->isChecked())
            value = quint8(value | (1u << b));
    return value;
}

// The bit boxes and the value box show one byte.
void service_block::change_Value(int)
{
    QObject* s = sender();
    if (s && s->objectName().contains(QLatin1String("cbxRegByte")))
        ui->SpinRegisterValue->setValue(bitRowValue());
}

void service_block::on_SpinRegisterValue_valueChanged(int value)
{
    QCheckBox* bits[8] = {ui->cbxRegByte0, ui->cbxRegByte1, ui->cbxRegByte2, ui->cbxRegByte3,
                          ui->cbxRegByte4, ui->cbxRegByte5, ui->cbxRegByte6, ui->cbxRegByte7};
    for (int b = 0; b < 8; ++b)
        bits[b]->setChecked(value & (1 << b));
}

void service_block::showInterfaceError(quint8 value)
{
    QMessageBox box;
    box.setText(QStringLiteral("USB interface error ") + QString::number(value));
    box.exec();
}

void service_block::on_ButtonReadRegister_clicked()
{
    quint8 value = 0;
    if (usb->readRegister(ui->flag_RegisterNumber->value(), &value))
        ui->SpinRegisterValue->setValue(value);
    else
        showInterfaceError(value);
}

void service_block::on_ButtonWriteRegister_clicked()
{
    const quint8 value = bitRowValue();
    if (!usb->writeRegister(ui->flag_RegisterNumber->value(), &value))
        showInterfaceError(value);
}
