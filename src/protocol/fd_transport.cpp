// Reading while the connection wants input, and writing that never waits
// on a non-blocking output.
#include "fd_transport.h"

#include "rpc_connection.h"

#include <QSocketNotifier>

#include <cerrno>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The most replies kept for a client that does not read them; beyond it
// its messages wait unread until it takes some.
constexpr int kMaxUnsent = 16 << 20;

} // namespace

FdTransport::FdTransport(const RpcDispatcher& dispatcher, int in, int out, bool own, QObject* parent)
    : QObject(parent), input(in), output(out), owned(own)
{
    struct stat info;
    outputIsSocket = ::fstat(output, &info) == 0 && S_ISSOCK(info.st_mode);
    connection = new RpcConnection(dispatcher, this);
    reading = new QSocketNotifier(input, QSocketNotifier::Read, this);
    connect(reading, &QSocketNotifier::activated, this, &FdTransport::readSome);
    connect(connection, &RpcConnection::send, this, &FdTransport::write);
    connect(connection, &RpcConnection::readyForInput, this, &FdTransport::resume);
    connect(connection, &RpcConnection::finished, this, [this] {
        answered = true;
        reading->setEnabled(false);
        if (unsent.isEmpty())
            end();
    });
}

FdTransport::~FdTransport()
{
    delete reading; // before their descriptors close
    delete writing;
    if (owned) {
        ::close(input);
        if (output != input)
            ::close(output);
    }
}

void FdTransport::readSome()
{
    if (!connection->wantsInput() || unsent.size() - sent > kMaxUnsent) {
        reading->setEnabled(false); // until the answer is out
        return;
    }
    char buffer[65536];
    const ssize_t n = ::read(input, buffer, sizeof buffer);
    if (n < 0 && (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK))
        return;
    if (n <= 0)
        connection->endOfInput();
    else
        connection->receive(QByteArray(buffer, int(n)));
    // A method that waits for its operation in an event loop of its own may
    // have had this called and the input stopped meanwhile.
    resume();
}

void FdTransport::resume()
{
    if (!ended)
        reading->setEnabled(connection->wantsInput() && unsent.size() - sent <= kMaxUnsent);
}

void FdTransport::write(const QByteArray& line)
{
    if (ended)
        return;
    unsent += line;
    if (!writing || !writing->isEnabled())
        flush();
}

void FdTransport::flush()
{
    while (sent < unsent.size()) {
        const char* data = unsent.constData() + sent;
        const size_t size = size_t(unsent.size() - sent);
        // A client that has gone makes the write fail instead of raising
        // SIGPIPE.
        const ssize_t n = outputIsSocket ? ::send(output, data, size, MSG_NOSIGNAL) : ::write(output, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            if (!writing) {
                writing = new QSocketNotifier(output, QSocketNotifier::Write, this);
                connect(writing, &QSocketNotifier::activated, this, &FdTransport::flush);
            }
            writing->setEnabled(true);
            if (sent > unsent.size() / 2) {
                unsent.remove(0, sent);
                sent = 0;
            }
            return;
        }
        if (n <= 0) {
            end();
            return;
        }
        sent += int(n);
    }
    unsent.clear();
    sent = 0;
    if (writing)
        writing->setEnabled(false);
    if (answered)
        end();
    else
        resume();
}

void FdTransport::end()
{
    if (ended)
        return;
    ended = true;
    reading->setEnabled(false);
    if (writing)
        writing->setEnabled(false);
    unsent.clear();
    sent = 0;
    emit finished();
}
