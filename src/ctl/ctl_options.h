// The command line of zv4280ctl: global options, the command and its
// arguments and options, and the help texts that describe them.
#pragma once

#include <QString>
#include <QStringList>

class CtlOptions
{
public:
    QString command;        // "dump", "field", ...; empty when none was given
    QStringList arguments;  // the command's arguments
    bool json = false;      // --json
    QString board;          // --board BUS:ADDRESS, as given
    QString calibration;    // --calibration FILE
    bool trace = false;     // --trace: every frame on standard error
    bool help = false;      // --help, or the command "help"
    QString style;          // dump --style single|block|auto
    bool comments = false;  // save --comments
    bool changesOnly = false; // save --changes-only
    bool all = false;       // save --all
    QString base;           // save --base FILE
    QString pause;          // load --pause MS, as given
    QString listen;         // serve --listen PATH
    QString match;          // fields --match TEXT
    QString format;         // export --format c|csv|json
    QString source;         // export --source chip|FILE
    QString output;         // export -o FILE
    bool lenient = false;   // load --lenient

    // Reads the arguments of the program (the program's name first); false
    // with a message on bad usage.
    bool parse(const QStringList& programArguments, QString* error);

    // The program's help, and a command's; empty for an unknown command.
    static QString programHelp();
    static QString commandHelp(const QString& command);

    // A number as the commands take it: decimal, or hexadecimal behind "0x".
    static bool number(const QString& text, qint64* value);
};
