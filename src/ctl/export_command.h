// zv4280ctl export: register settings of the chip or a .hex file written
// for firmware, as C, CSV or JSON.
#pragma once

#include <QString>

class CtlOutput;
class CtlSession;

class ExportCommand
{
public:
    ExportCommand(CtlSession& session, CtlOutput& out);
    // Source "chip" (the default) or a file; with changesOnly only the
    // registers that differ from the base file (default "default.hex").
    // Writes to `file`, or to stdout when it is empty.
    int run(const QString& format, const QString& source, bool changesOnly, const QString& base, const QString& file);

private:
    CtlSession& session;
    CtlOutput& out;
};
