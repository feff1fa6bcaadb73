// The file commands of zv4280ctl: a .hex file to the chip, and the chip to
// a .hex file as F6 of the GUI saves it.
#pragma once

#include "odd_lines.h"

#include <QJsonArray>
#include <QString>

class CtlOutput;
class CtlSession;
class RegisterImages;

class FileCommands
{
public:
    FileCommands(CtlSession& session, CtlOutput& out);

    // "load FILE [--pause MS] [--lenient]": the file checked, then the
    // worker's file to chip (command 3). A line that is no plain line
    // refuses the file, unless lenient.
    int load(const QString& file, const QString& pause, bool lenient = false);
    // "save FILE [--all] [--comments] [--changes-only [--base FILE]]": the chip read
    // into the forms (command 1), then the worker's GUI to file (command 6).
    int save(const QString& file, bool comments, bool changesOnly, const QString& base, bool all);

    // The register lines of a file that a load into this map may send; -1
    // with the reason when a load refuses the file.
    // Unless lenient, lines that are no plain lines refuse it too; `odd`
    // (when given) takes them, and `sent` the registers a load writes, in
    // rising order.
    static int check(const QString& file, const RegisterImages& map, bool lenient, QString* refusal,
                     QVector<OddLines::Line>* odd = nullptr, QJsonArray* sent = nullptr);

private:
    // The register lines of a file that a load may send; -1 after a refusal.
    int checkLoad(const QString& file, bool lenient, int* status);
    int boardFailure(const QString& what);

    CtlSession& session;
    CtlOutput& out;
};
