#pragma once

#include "gui_save.h"

#include <QMap>
#include <QString>
#include <QThread>

#include <atomic>
#include <functional>

class mapshow;
class service_block;
class usb_link;

// The worker: one thread per operation. It carries out one numbered command
// (1 chip to GUI, 2 GUI to chip, 3 file to chip, 4 chip to file, 5 file to
// GUI, 6 GUI to file, 7 and 8 one register), reports progress, and ends with
// exactly one error_mess: an empty text for success, else what failed. An
// operation works on one board: the one it reached first (see
// usb_link::holdBoard).
//
// It never touches a widget, and it reads and writes the images of the
// register map only on the GUI thread (a blocking call there), so that the
// views and the field rules never see an image half written.
class clerk : public QThread
{
    Q_OBJECT

public:
    // An empty worker, whose fields the starter fills in, or one filled in.
    explicit clerk(QObject* parent = nullptr);
    clerk(int command, const QString& fileName, service_block* service, const QMap<QString, mapshow*>& maps,
          QObject* parent = nullptr);

    QString fileName;
    qint32 command = 0;
    // Set by the GUI thread to ask for a stop; polled at fixed points.
    std::atomic<bool> interrupted{false};
    service_block* service = nullptr;
    QMap<QString, mapshow*> maps;

    // What GUI to file saves: the images, the comments and the registers
    // left out, taken from the widgets on the GUI thread before the thread
    // starts.
    GuiSave save;

signals:
    void percent_up(int percent);
    void error_mess(QString text);

protected:
    void run() override;

private:
    QString operation();
    QString chipRead();
    QString chipWrite();
    QString fileToChip();
    QString chipToFile();
    QString fileToGui();
    QString guiToFile();
    QString readOne();
    QString writeOne();

    // A setting of the service panel, read by name at the moment of use; a
    // name nobody has set reads 0.
    int setting(const char* key) const;
    usb_link* link() const;
    mapshow* firstMap() const { return maps.isEmpty() ? nullptr : maps.first(); }
    // Runs work on the thread that owns the register maps and waits for it.
    void onGuiThread(const std::function<void()>& work) const;
    // Waits "writePause" milliseconds in short sleeps; false when a stop
    // request came meanwhile.
    bool pause();
    // The end text of a failed register operation.
    QString interfaceError() const;
    QString statusOrInterfaceError() const;
    // The lines of fileName for a load; an end text when the file is none
    // a load takes.
    QString readSettings(QStringList* lines) const;
};
