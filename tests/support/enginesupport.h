#pragma once

// Helpers shared by the tests, the engine's alone among them: QtCore and
// QtTest, no widget.

#include <QtTest>

#include <memory>
#include <random>

class clerk;

// Runs a worker to its end, its messages arriving on this thread as the main
// window receives them, and gives its end messages: exactly one when all is
// well.
QStringList runToEnd(clerk* worker, int timeoutMs = 20000);

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
