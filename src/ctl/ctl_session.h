// The engine that zv4280ctl drives: the main window built offscreen and idle
// (no "default.hex"), its panel's settings and USB link, and the worker's
// commands run to their end with the event loop turning.
#pragma once

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

    // A setting of the service panel, as the worker reads it.
    void setSetting(const char* key, int value);
    int setting(const char* key);

    // Runs a worker command (1 chip to GUI, 2 GUI to chip, 3 file to chip,
    // 5 file to GUI, 6 GUI to file) and waits for its end; the worker's text
    // when it failed, else empty. With intoWidgets a success ends as in the
    // GUI: a read shows the image in the widgets and recomputes the displays.
    QString run(int command, const QString& fileName = QString(), bool intoWidgets = true);

private:
    QString key;
    MainClass* main = nullptr; // lives until the process ends
    std::unique_ptr<usb_link> ownLink;
};
