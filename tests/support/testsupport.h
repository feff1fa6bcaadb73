#pragma once

// Helpers shared by the tests of the windows, and the headers nearly every
// one needs.

#include "enginesupport.h"
#include "MainClass.h"
#include "mapshow.h"
#include "part.h"

#include <QtWidgets>

// Closes every modal message box that comes up while it lives and keeps the
// texts, so that tests can run code that asks the user.
class ModalCatcher : public QObject
{
    Q_OBJECT

public:
    explicit ModalCatcher(QObject* parent = nullptr);
    QStringList texts;

private slots:
    void poll();

private:
    QTimer timer;
};

// Lets the main window's running operation (the load of "default.hex" at
// start, say) come to its end; false when it is still running after the
// timeout.
bool waitIdle(MainClass* window, int timeoutMs = 20000);

// Sets up the embedded resources once per test program, and with `english`
// the program's English translation.
void zvTestInit(bool english = false);
