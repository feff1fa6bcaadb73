// The register commands of zv4280ctl, in the manner of i2cdump, i2cget and
// i2cset: the whole chip as a grid, and one register read or written.
#pragma once

#include <QStringList>

class CtlOptions;
class CtlOutput;
class CtlSession;

class RegisterCommands
{
public:
    RegisterCommands(CtlSession& session, CtlOutput& out);

    // "dump": the chip read by the worker (command 1) in the chosen style.
    int dump(const QString& style);
    // "get REGISTER" and "set REGISTER VALUE": one register through the USB
    // link, as the service panel reads and writes it.
    int get(const QString& registerText);
    int set(const QString& registerText, const QString& valueText);

private:
    // The register number of an argument, 0 to 290; false after a refusal.
    bool registerNumber(const QString& text, int* number, int* status);
    int boardFailure(const QString& what);
    // " (LIBUSB_ERROR_NO_DEVICE)" after a failed transfer, else empty.
    QString transferDetail() const;

    CtlSession& session;
    CtlOutput& out;
};
