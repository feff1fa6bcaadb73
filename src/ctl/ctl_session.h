// The engine that zv4280ctl drives, without any window: the chip's register
// images and the forms' state (built on first use, idle: no "default.hex"),
// the USB link, the settings its commands run with, and the worker's
// commands run to their end with the event loop turning.
#pragma once

#include "clerk.h"
#include "usb_link.h"
#include "values/calibration.h"

#include <QString>

#include <memory>

class FormModel;
class RegisterImages;

class CtlSession
{
public:
    // boardKey: usb_link's key of the chosen board; empty for the only one.
    explicit CtlSession(const QString& boardKey);
    ~CtlSession();

    // The chip's register images, and the forms' state on them.
    RegisterImages& images();
    FormModel& model();
    usb_link& link() { return usb; }
    bool boardChosen() const { return !key.isEmpty(); }

    // The tables the forms show their displays from; set before the forms
    // are first used.
    Calibration calibration;

    // What the worker's commands run with; it starts as the service panel
    // does.
    PanelSettings settings;

    // Runs a worker command and waits for its end; the worker's text when it
    // failed, else empty. With intoForms a success ends as in the GUI: a read
    // or a load shows the image in the forms, a load marks what only the
    // chip can tell, anything else recomputes the displays.
    QString run(clerk::Command command, const QString& fileName = QString(), bool intoForms = true);

private:
    QString key;
    usb_link usb;
    std::unique_ptr<RegisterImages> registers;
    std::unique_ptr<FormModel> forms;
};
