#pragma once

#include "panel_settings.h"

#include <QMap>
#include <QString>
#include <QWidget>

class usb_link;

namespace Ui {
class service_block;
}

// The settings panel ("Service settings"). It owns the USB link and the map
// of settings: every control whose object name holds "flag" feeds the map
// under its name less "flag_", and the worker and the main window take them
// as panelSettings(). It also chooses the board, and reads or writes one
// register by number.
class service_block : public QWidget
{
    Q_OBJECT

public:
    explicit service_block(QWidget* parent = nullptr);
    ~service_block() override;

    QMap<QString, int> settings;
    usb_link* usb = nullptr;

    // The settings as they stand now, for an operation to take.
    PanelSettings panelSettings() const;
    // The device list follows the boards that the last register operation
    // found on the bus (a board replugged comes back under a new key); the
    // chosen board stays chosen while it is there.
    void followBoards();

public slots:
    void changeFlag(int value);
    void on_ButtonReadRegister_clicked();
    void on_ButtonWriteRegister_clicked();
    void on_SpinRegisterValue_valueChanged(int value);
    void change_Value(int);
    void on_search_interface_clicked();

public:
    // Connected to the device box's text by hand, not by its name: Qt 6's
    // combo box has no currentIndexChanged(QString) to connect it to.
    void on_flag_currentInterface_currentIndexChanged(QString arg1);

protected:
    // Shown, the panel looks at the bus afresh.
    void showEvent(QShowEvent* event) override;

private:
    void store(QObject* control);
    void fillDevices(const QStringList& devices);
    quint8 bitRowValue() const;
    void showInterfaceError(quint8 value);

    Ui::service_block* ui;
};
