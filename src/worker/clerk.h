#pragma once

#include "gui_save.h"
#include "odd_lines.h"
#include "panel_settings.h"

#include <QMap>
#include <QString>
#include <QThread>

#include <atomic>
#include <functional>
#include <vector>

class RegisterImages;
class usb_link;

// The worker: one thread per operation. It carries out one command, reports
// progress, and ends with exactly one error_mess: an empty text for
// success, else what failed. An operation works on one board: the one it
// reached first (see usb_link::holdBoard), with the panel's settings as they
// stood when it was made.
//
// It never touches a widget, and it reads and writes the register images
// only on the thread that owns them (a blocking call there), so that the
// views and the field rules never see an image half written.
class clerk : public QThread
{
    Q_OBJECT

public:
    enum class Command : qint32 {
        ChipToGui = 1, // read the whole chip into the forms
        GuiToChip,     // write the forms to the chip
        FileToChip,    // send a file's registers straight to the chip
        ChipToFile,    // save what the chip holds
        FileToGui,     // load a file into the forms
        GuiToFile,     // save the forms
        ReadOne,       // read register registerNumber into registerValue
        WriteOne,      // write registerValue into register registerNumber
    };

    clerk(Command command, const QString& fileName, usb_link* link, const PanelSettings& settings,
          const QMap<QString, RegisterImages*>& maps, QObject* parent = nullptr);

    QString fileName;
    // A write with read-back ends as a read.
    Command command = Command::ChipToGui;
    // Set by the GUI thread to ask for a stop; polled at fixed points.
    std::atomic<bool> interrupted{false};
    usb_link* link = nullptr;
    // ReadOne leaves the register's value in registerValue.
    PanelSettings settings;
    QMap<QString, RegisterImages*> maps;

    // What GUI to file saves: the images, the comments and the registers
    // left out, taken from the widgets on the GUI thread before the thread
    // starts.
    GuiSave save;

    // What the operation did, set before its end message: the registers it
    // read (from the chip or a file) and wrote (to the chip or a file), the
    // board it worked on (usb_link's key; empty when it reached none), a
    // remark for the user (a changes-only write to a chip not known, which
    // sent every register), and the lines of a loaded file that are no plain
    // lines.
    int registersRead = 0;
    int registersWritten = 0;
    QString board;
    QString remark;
    QVector<OddLines::Line> oddLines;

signals:
    void percent_up(int percent);
    void error_mess(QString text);

protected:
    void run() override;

private:
    QString operation();
    QString chipRead();
    QString chipWrite();
    QString readBackWritten(RegisterImages* map, const std::vector<int>& addresses);
    QString fileToChip();
    QString chipToFile();
    QString fileToGui();
    QString guiToFile();
    QString readOne();
    QString writeOne();

    RegisterImages* firstMap() const { return maps.isEmpty() ? nullptr : maps.first(); }
    // Runs work on the thread that owns the register images and waits for it.
    void onGuiThread(const std::function<void()>& work) const;
    // Waits the write pause in short sleeps; false when a stop request came
    // meanwhile.
    bool pause();
    // The end text of a failed register operation.
    QString interfaceError() const;
    QString statusOrInterfaceError() const;
    // The lines of fileName for a load; an end text when the file is none
    // a load takes.
    QString readSettings(QStringList* lines) const;
    // The end text of a save whose file cannot be opened.
    QString unwritable() const;
};
