// The relay between standard input and output and the program's socket.
#include "attach_command.h"

#include "ctl_output.h"
#include "rpc_request.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// A connected socket, or -1.
int connectTo(const QString& path)
{
    const QByteArray file = QFile::encodeName(path);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (file.size() >= int(sizeof address.sun_path))
        return -1;
    std::memcpy(address.sun_path, file.constData(), size_t(file.size()));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd >= 0 && ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        ::close(fd);
        return -1;
    }
    return fd;
}

bool writeAll(int fd, const char* data, qint64 size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size_t(size));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data += n;
        size -= n;
    }
    return true;
}

} // namespace

QString AttachCommand::findSocket(QString* error)
{
    QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty())
        folder = QStringLiteral("/tmp/zv4280tb-%1").arg(::getuid());
    QStringList answering;
    const QStringList sockets = QDir(folder).entryList({QStringLiteral("zv4280tb-*.sock")}, QDir::System, QDir::Name);
    for (const QString& name : sockets) {
        const QString path = QDir(folder).filePath(name);
        const int fd = connectTo(path);
        if (fd >= 0) {
            ::close(fd);
            answering.append(path);
        }
    }
    if (answering.size() == 1)
        return answering.first();
    *error = answering.isEmpty()
                 ? QStringLiteral("no running zv4280tb answers in %1: start the program, or give --attach the "
                                  "path of its socket")
                       .arg(folder)
                 : QStringLiteral("%1 zv4280tb are running (%2): give --attach the path of one")
                       .arg(answering.size())
                       .arg(answering.join(QStringLiteral(", ")));
    return QString();
}

int AttachCommand::repliesFor(const QByteArray& line)
{
    if (line.trimmed().isEmpty())
        return 0;
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (document.isObject())
        return RpcRequest::read(document.object()).notification ? 0 : 1;
    if (!document.isArray())
        return 1; // an error reply
    const QJsonArray batch = document.array();
    for (const QJsonValue& request : batch)
        if (!RpcRequest::read(request).notification)
            return 1;
    return batch.isEmpty() ? 1 : 0;
}

int AttachCommand::run(const QString& given)
{
    QString error;
    const QString path = given.isEmpty() ? findSocket(&error) : given;
    if (path.isEmpty()) {
        CtlOutput::printError(QStringLiteral("zv4280ctl: ") + error + QLatin1Char('\n'));
        return int(CtlExit::Board);
    }
    const int server = connectTo(path);
    if (server < 0) {
        CtlOutput::printError(QStringLiteral("zv4280ctl: cannot connect to %1: %2\n")
                                  .arg(path, QString::fromLocal8Bit(std::strerror(errno))));
        return int(CtlExit::Board);
    }

    // The socket is written only when it takes more, and standard input is
    // read only while little waits to be sent, so that a program that stops
    // reading while its replies pile up never finds this end blocked in a
    // write: the replies are always read.
    const int flags = ::fcntl(server, F_GETFL);
    ::fcntl(server, F_SETFL, flags | O_NONBLOCK);
    QByteArray line;    // input not yet taken, up to its line end
    QByteArray pending; // whole lines not yet sent
    qint64 expected = 0, received = 0;
    bool inputOpen = true, serverOpen = true;
    char buffer[65536];
    while (serverOpen && (inputOpen || !pending.isEmpty() || received < expected)) {
        const bool takeInput = inputOpen && pending.size() < int(sizeof buffer);
        pollfd watched[2] = {{server, short(POLLIN | (pending.isEmpty() ? 0 : POLLOUT)), 0}, {STDIN_FILENO, POLLIN, 0}};
        if (::poll(watched, takeInput ? 2 : 1, -1) < 0) {
            if (errno == EINTR)
                continue;
            break;
        }
        if (watched[0].revents & (POLLIN | POLLHUP | POLLERR)) {
            const ssize_t n = ::read(server, buffer, sizeof buffer);
            if (n < 0 && (errno == EINTR || errno == EAGAIN))
                continue;
            if (n <= 0 || !writeAll(STDOUT_FILENO, buffer, n))
                break; // the program closed the connection
            received += std::count(buffer, buffer + n, '\n');
        }
        if (!pending.isEmpty() && (watched[0].revents & POLLOUT)) {
            const ssize_t n = ::send(server, pending.constData(), size_t(pending.size()), MSG_NOSIGNAL);
            if (n > 0)
                pending.remove(0, int(n));
            else if (n < 0 && errno != EINTR && errno != EAGAIN)
                serverOpen = false;
        }
        if (takeInput && watched[1].revents != 0) {
            const ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
            if (n < 0 && errno == EINTR)
                continue;
            inputOpen = n > 0;
            line.append(buffer, n > 0 ? int(n) : 0);
            if (!inputOpen && !line.isEmpty() && !line.endsWith('\n'))
                line.append('\n'); // the last line, without its end
            for (int end; (end = line.indexOf('\n')) >= 0; line.remove(0, end + 1)) {
                expected += repliesFor(line.left(end));
                pending.append(line.constData(), end + 1);
            }
        }
    }
    ::close(server);
    return int(CtlExit::Done);
}
