// The "USB log" dock of the main window: the last 10,000 frames on the wire,
// one line each (time, direction, bytes, meaning), filtered by register,
// cleared, saved as text. The link's frames are kept by a FrameLog as they
// pass, on whatever thread moves them; the dock takes the new ones while it
// is shown.
#pragma once

#include "frame_log.h"

#include <QDockWidget>

class QLineEdit;
class QMainWindow;
class QPlainTextEdit;
class QTimer;
class usb_link;

class UsbLogDock : public QDockWidget
{
    Q_OBJECT

public:
    // Docks itself at the bottom of `window`, hidden, with its entry in the
    // View menu and on the window toolbar.
    UsbLogDock(usb_link& link, QMainWindow& window);
    ~UsbLogDock() override;

    FrameLog& frames() { return log; }
    // The register the list is filtered by; -1 for all. The filter takes a
    // number (decimal or 0x hexadecimal) or a register's name.
    int filterRegister() const { return shownRegister; }
    void setFilter(const QString& text);
    // Takes the frames that came since the last call into the list.
    void takeNew();
    void clear();
    // The list as it shows, into a text file; an empty text or why not.
    QString save(const QString& fileName) const;

private:
    void refill();
    bool shows(const FrameLog::Entry& entry) const;

    usb_link& link;
    FrameLog log;
    QPlainTextEdit* list;
    QLineEdit* filter;
    QTimer* poll;
    qint64 taken = 0;
    int shownRegister = -1;
};
