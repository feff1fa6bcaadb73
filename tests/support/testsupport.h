#pragma once

// Helpers shared by the tests, and the headers nearly every test needs.

#include "MainClass.h"
#include "mapshow.h"
#include "part.h"

#include <QtTest>
#include <QtWidgets>

#include <memory>
#include <random>

class clerk;

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

// Runs a worker to its end, its messages arriving on this thread as the main
// window receives them, and gives its end messages: exactly one when all is
// well.
QStringList runToEnd(clerk* worker, int timeoutMs = 20000);

// Lets the main window's running operation (the load of "default.hex" at
// start, say) come to its end; false when it is still running after the
// timeout.
bool waitIdle(MainClass* window, int timeoutMs = 20000);

// A file's bytes ("<unreadable>" when it cannot be read), and a file made of
// bytes.
QByteArray readFile(const QString& path);
bool writeFile(const QString& path, const QByteArray& bytes);

// Writes of this process and its children past `bytes` of a file fail as
// on a full disk (EFBIG); a negative count lifts the limit.
void limitFileSize(qint64 bytes);

// The rows of a file under tests/data: its lines but the empty ones and the
// comments ("#").
QStringList dataRows(const QString& name);

// The bytes of a register image.
QByteArray imageBytes(const unsigned char* image, int size = 291);

// Sets up the embedded resources once per test program, and with `english`
// the program's English translation.
void zvTestInit(bool english = false);
