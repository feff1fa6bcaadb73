// One client of the scripting protocol on a byte stream: messages are lines
// (UTF-8, "\n"-terminated), answered strictly in order: the next message is
// taken only once the one before it is answered. The transport feeds what it
// reads and reads only while the connection wants input, so that a client
// that sends faster than the methods answer waits in its own buffers, and a
// message longer than 1 MiB is refused without being read whole.
#pragma once

#include <QByteArray>
#include <QObject>

class RpcDispatcher;

class RpcConnection : public QObject
{
    Q_OBJECT
public:
    // The longest message taken, without its line end.
    static constexpr int kMaxMessage = 1 << 20;

    explicit RpcConnection(const RpcDispatcher& dispatcher, QObject* parent = nullptr);

    // Bytes of the stream, as they come.
    void receive(const QByteArray& bytes);
    // The stream has ended: what is left is answered, then finished().
    void endOfInput();
    // True while no message waits for its answer and the connection is open:
    // the transport may read.
    bool wantsInput() const;

signals:
    // A reply, with its line end, to be written out.
    void send(const QByteArray& line);
    // The last message taken is answered: read again.
    void readyForInput();
    // Nothing more will be sent: close the stream. After the end of input,
    // or after a message too long to take.
    void finished();

private:
    void process();
    void answered(const QByteArray& reply);

    const RpcDispatcher& dispatcher;
    QByteArray pending; // read and not yet taken
    bool waiting = false; // a message is with the dispatcher
    bool looping = false;
    bool inputEnded = false;
    bool closed = false;
};
