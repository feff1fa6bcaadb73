// zv4280ctl as a whole: the command line read, the board chosen, and the
// command run to its exit status.
#pragma once

#include <QStringList>

class CtlProgram
{
public:
    // Takes Qt's plain event loop, and keeps Qt's complaint
    // about a missing session runtime folder off stderr. Call it before the
    // application object is made.
    static void prepareEnvironment();

    // Runs the command of the program's arguments; gives the exit status.
    static int run(const QStringList& programArguments);
};
