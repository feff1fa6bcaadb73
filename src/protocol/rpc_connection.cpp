// Line framing, the order of answers and the length limit of one client.
#include "rpc_connection.h"

#include "rpc_dispatcher.h"

#include <QPointer>

RpcConnection::RpcConnection(const RpcDispatcher& d, QObject* parent) : QObject(parent), dispatcher(d) {}

void RpcConnection::receive(const QByteArray& bytes)
{
    if (closed)
        return;
    pending += bytes;
    process();
}

void RpcConnection::endOfInput()
{
    inputEnded = true;
    process();
}

bool RpcConnection::wantsInput() const
{
    return !waiting && !closed && !inputEnded;
}

// Takes the messages that are in, one at a time; a method that answers at
// once lets the loop go on, one that answers later calls process again.
void RpcConnection::process()
{
    if (looping)
        return;
    looping = true;
    while (!waiting && !closed) {
        int end = pending.indexOf('\n');
        if (end < 0 && pending.size() > kMaxMessage)
            end = pending.size(); // refused below, whether its end comes or not
        if (end < 0 && inputEnded && !pending.isEmpty())
            end = pending.size(); // the last line may lack its end
        if (end < 0) {
            if (inputEnded) {
                closed = true;
                emit finished();
            }
            break;
        }
        QByteArray message = pending.left(end);
        pending.remove(0, end + 1);
        if (message.endsWith('\r'))
            message.chop(1);
        if (message.size() > kMaxMessage) {
            pending.clear();
            closed = true;
            emit send(RpcDispatcher::errorReply(
                          {RpcCode::InvalidRequest,
                           QStringLiteral("the message is longer than 1 MiB (%1 bytes); the connection is closed")
                               .arg(kMaxMessage)})
                      + '\n');
            emit finished();
            break;
        }
        if (message.trimmed().isEmpty())
            continue;
        waiting = true;
        QPointer<RpcConnection> self(this);
        dispatcher.handle(message, [self](const QByteArray& reply) {
            if (self)
                self->answered(reply);
        });
    }
    looping = false;
}

void RpcConnection::answered(const QByteArray& reply)
{
    waiting = false;
    if (!reply.isEmpty())
        emit send(reply + '\n');
    if (looping)
        return;
    process();
    if (wantsInput())
        emit readyForInput();
}
