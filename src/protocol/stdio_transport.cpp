// Standard input read as it comes, while the connection wants it; replies
// written to standard output as they are made.
#include "stdio_transport.h"

#include "rpc_connection.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <unistd.h>

StdioTransport::StdioTransport(const RpcDispatcher& dispatcher, QObject* parent) : QObject(parent)
{
    // A client that goes away makes the next write fail, which ends the
    // transport, instead of killing the process.
    std::signal(SIGPIPE, SIG_IGN);
    connection = new RpcConnection(dispatcher, this);
    input = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
    connect(input, &QSocketNotifier::activated, this, &StdioTransport::readSome);
    connect(connection, &RpcConnection::send, this, &StdioTransport::write);
    connect(connection, &RpcConnection::readyForInput, input, [this] { input->setEnabled(true); });
    connect(connection, &RpcConnection::finished, this, [this] {
        input->setEnabled(false);
        emit finished();
    });
}

void StdioTransport::readSome()
{
    if (!connection->wantsInput()) {
        input->setEnabled(false); // until the answer is out
        return;
    }
    char buffer[65536];
    const ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (n < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (n <= 0)
        connection->endOfInput();
    else
        connection->receive(QByteArray(buffer, int(n)));
    // A method that waits for its operation in an event loop of its own may
    // have had this called and the input stopped meanwhile.
    input->setEnabled(connection->wantsInput());
}

void StdioTransport::write(const QByteArray& line)
{
    const char* data = line.constData();
    qint64 left = line.size();
    while (left > 0) {
        const ssize_t n = ::write(STDOUT_FILENO, data, size_t(left));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            input->setEnabled(false);
            emit finished();
            return;
        }
        data += n;
        left -= n;
    }
}
