// zv4280ctl --attach [PATH]: standard input and output joined to the
// running program's scripting socket, so that whatever drives zv4280ctl
// serve drives the program the same way, one request a line. Without a
// path, the one zv4280tb socket in the runtime folder that answers.
#pragma once

#include <QString>

class AttachCommand
{
public:
    // Relays until the input has ended and every request on it is
    // answered, or the program closes the connection. Gives the exit status.
    static int run(const QString& path);

    // The socket of the one program running; empty with a message when
    // none answers, or several do.
    static QString findSocket(QString* error);

    // The replies a message on a line asks for: 1, or 0 for notifications
    // and empty lines.
    static int repliesFor(const QByteArray& line);
};
