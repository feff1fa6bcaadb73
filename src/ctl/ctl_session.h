// The engine that zv4280ctl drives: the main window built offscreen and idle
// (no "default.hex"), its USB link, the settings its commands run with, and
// the worker's commands run to their end with the event loop turning.
#pragma once

#include "clerk.h"

#include <QString>

#include <memory>

class MainClass;
class FormModel;
class RegisterImages;
class mapshow;
class usb_link;

class CtlSession
{
public:
    // boardKey: usb_link's key of the chosen board; empty for the only one.
    explicit CtlSession(const QString& boardKey);
    ~CtlSession();

    // The main window with all forms bound, built on first use.
    MainClass& window();
    mapshow& map();
    // The chip's register images and the forms' state, without widgets.
    RegisterImages& images();
    FormModel& model();
    // The USB link: the panel's once the window is built, else one of the
    // session's own (single registers need no forms).
    usb_link& link();
    bool boardChosen() const { return !key.isEmpty(); }

    // What the worker's commands run with; it starts as the service panel
    // does.
    PanelSettings settings;

    // Runs a worker command and waits for its end; the worker's text when it
    // failed, else empty. With intoWidgets a success ends as in the GUI: a
    // read shows the image in the widgets and recomputes the displays.
    QString run(clerk::Command command, const QString& fileName = QString(), bool intoWidgets = true);

private:
    QString key;
    MainClass* main = nullptr; // lives until the process ends
    std::unique_ptr<usb_link> ownLink;
};
