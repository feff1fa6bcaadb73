// One client of the scripting protocol on file descriptors: its input read
// as it comes while the connection wants it, its replies written to its
// output. Standard input and output (zv4280ctl serve) and each client of
// the local socket are served by it.
#pragma once

#include <QByteArray>
#include <QObject>

class QSocketNotifier;
class RpcConnection;
class RpcDispatcher;

class FdTransport : public QObject
{
    Q_OBJECT
public:
    // Serves the client that writes to `input` and reads `output` (one
    // descriptor for a socket), both closed when the transport goes if
    // `owned`. On a blocking output a reply is written whole before the
    // next; on a non-blocking one what the client does not take yet waits
    // here, so that a client that does not read holds up no one else.
    FdTransport(const RpcDispatcher& dispatcher, int input, int output, bool owned, QObject* parent = nullptr);
    ~FdTransport() override;

signals:
    // The client is done: its input ended and every message is answered,
    // or a message was refused, and the replies are out; or the output is
    // gone.
    void finished();

private:
    void readSome();
    void write(const QByteArray& line);
    void flush();
    void resume();
    void end();

    const int input;
    const int output;
    const bool owned;
    bool outputIsSocket = false;
    RpcConnection* connection = nullptr;
    QSocketNotifier* reading = nullptr;
    QSocketNotifier* writing = nullptr; // made when the output is first full
    QByteArray unsent; // replies the output has not taken, from `sent` on
    int sent = 0;
    bool answered = false; // the connection has finished
    bool ended = false;
};
