// zv4280ctl diff A B: two sources of register settings (a .hex file or
// "chip") compared field by field, with diff's exit status.
#pragma once

#include <QString>

class CtlOutput;
class CtlSession;

class DiffCommand
{
public:
    DiffCommand(CtlSession& session, CtlOutput& out);
    // 0 when the two agree, 1 when they differ, 2 on bad input or a failed
    // board.
    int run(const QString& a, const QString& b);

private:
    CtlSession& session;
    CtlOutput& out;
};
