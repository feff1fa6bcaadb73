// What zv4280ctl tells its caller: text lines or one JSON document on
// stdout, messages on stderr, and the exit status, all through one place.
#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>

// The exit status of zv4280ctl.
enum class CtlExit {
    Done = 0,    // done
    Board = 1,   // the board failed or is absent
    Usage = 2,   // bad usage or bad input; nothing was written to the chip
    Differs = 3, // the read-back differs from what was written
};

class CtlOutput
{
public:
    // Output of one command; with json the text lines are dropped and one
    // document goes out instead.
    CtlOutput(const QString& command, bool json);

    bool json() const { return asJson; }
    // A line of the text output.
    void line(const QString& text);
    // A member of the JSON document.
    void set(const QString& key, const QJsonValue& value);

    // Ends the command well: prints what it gathered and gives 0.
    int done();
    // Ends the command with a failure: the lines gathered so far go out, the
    // message goes to stderr as
    // "zv4280ctl: COMMAND: message", and with json the document says it too
    // ("ok": false, "exit", "error"). Gives the exit status.
    int fail(CtlExit status, const QString& message);

    // Writes text to stdout or stderr in UTF-8.
    static void print(const QString& text);
    static void printError(const QString& text);

private:
    void printDocument();

    QString command;
    bool asJson = false;
    QStringList lines;
    QJsonObject document;
};
