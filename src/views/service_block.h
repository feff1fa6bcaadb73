#pragma once

#include <QMap>
#include <QString>
#include <QWidget>

class usb_link;

// The settings panel: owns the USB link and the map of settings that the
// worker and the main window read.
class service_block : public QWidget
{
    Q_OBJECT

public:
    explicit service_block(QWidget* parent = nullptr);
    ~service_block() override;

    QMap<QString, int> settings;
    usb_link* usb = nullptr;
};
