// The local socket's place, its permissions and its clients.
#include "rpc_local_server.h"

#include "fd_transport.h"

#include <QDir>
#include <QFile>
#include <QSocketNotifier>

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

// A folder that is the user's alone: owned by the user, no symbolic link,
// no access for group or others.
bool privateFolder(const QString& folder, QString* error)
{
    struct stat info;
    if (::lstat(QFile::encodeName(folder).constData(), &info) != 0) {
        *error = QStringLiteral("%1: %2").arg(folder, systemError());
        return false;
    }
    if (!S_ISDIR(info.st_mode) || info.st_uid != ::getuid() || (info.st_mode & 077) != 0) {
        *error = QStringLiteral("%1 is not a folder of this user's alone (it must be owned by uid %2 with mode "
                                "0700); no socket is made there")
                     .arg(folder)
                     .arg(::getuid());
        return false;
    }
    return true;
}

// True when the peer of a connected socket runs as this user.
bool sameUser(int descriptor)
{
#ifdef SO_PEERCRED
    struct ucred peer;
    socklen_t size = sizeof peer;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::getuid();
#else
    Q_UNUSED(descriptor)
    return true; // the socket's mode and its folder keep others out
#endif
}

// The address of the socket file `file`; false when the path is too long
// for one.
bool addressOf(const QByteArray& file, sockaddr_un* address)
{
    *address = sockaddr_un{};
    address->sun_family = AF_UNIX;
    if (file.size() >= int(sizeof address->sun_path))
        return false;
    std::memcpy(address->sun_path, file.constData(), size_t(file.size()));
    return true;
}

// False when nothing accepts connections at `address`: a socket that no
// server answers is what a process that has ended left behind. A server
// whose queue is full answers too.
bool answers(const sockaddr_un& address)
{
    const int probe = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (probe < 0)
        return true;
    const bool refused =
        ::connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 && errno == ECONNREFUSED;
    ::close(probe);
    return !refused;
}

} // namespace

RpcLocalServer::RpcLocalServer(const RpcDispatcher& d, QObject* parent) : QObject(parent), dispatcher(d) {}

RpcLocalServer::~RpcLocalServer()
{
    close();
}

QString RpcLocalServer::defaultPath(QString* error)
{
    QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty()) {
        folder = QStringLiteral("/tmp/zv4280tb-%1").arg(::getuid());
        if (::mkdir(QFile::encodeName(folder).constData(), 0700) != 0 && errno != EEXIST) {
            *error = QStringLiteral("cannot make %1: %2").arg(folder, systemError());
            return QString();
        }
    }
    if (!privateFolder(folder, error))
        return QString();
    return QDir(folder).filePath(QStringLiteral("zv4280tb-%1.sock").arg(::getpid()));
}

bool RpcLocalServer::listen(const QString& given, QString* error)
{
    const QString target = QDir::isAbsolutePath(given) ? given : QDir::current().absoluteFilePath(given);
    const QByteArray file = QFile::encodeName(target);
    sockaddr_un address;
    if (!addressOf(file, &address)) {
        *error = QStringLiteral("cannot listen at %1: the path is longer than %2 bytes")
                     .arg(given)
                     .arg(sizeof address.sun_path - 1);
        return false;
    }
    struct stat info;
    if (::lstat(file.constData(), &info) == 0) {
        if (!S_ISSOCK(info.st_mode) || answers(address)) {
            *error = QStringLiteral("%1 is taken: another server or another file is there").arg(given);
            return false;
        }
        ::unlink(file.constData());
    }
    close();
    // The socket's mode is set before it has a name, so that it is 0600
    // from the start.
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const bool bound = fd >= 0 && ::fchmod(fd, 0600) == 0
                       && ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    if (!bound || ::listen(fd, SOMAXCONN) != 0) {
        *error = QStringLiteral("cannot listen at %1: %2").arg(given, systemError());
        if (bound)
            ::unlink(file.constData());
        if (fd >= 0)
            ::close(fd);
        return false;
    }
    ::chmod(file.constData(), 0600);
    listener = fd;
    socketPath = target;
    arrivals = new QSocketNotifier(listener, QSocketNotifier::Read, this);
    connect(arrivals, &QSocketNotifier::activated, this, &RpcLocalServer::accept);
    return true;
}

void RpcLocalServer::close()
{
    if (listener < 0)
        return;
    delete arrivals;
    arrivals = nullptr;
    ::close(listener);
    listener = -1;
    ::unlink(QFile::encodeName(socketPath).constData());
    socketPath.clear();
}

void RpcLocalServer::accept()
{
    for (;;) {
        const int client = ::accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (client < 0 && (errno == EINTR || errno == ECONNABORTED))
            continue;
        if (client < 0)
            return; // none waits
        if (sameUser(client))
            serve(client);
        else
            ::close(client);
    }
}

void RpcLocalServer::serve(int descriptor)
{
    ++connections;
    auto* client = new FdTransport(dispatcher, descriptor, descriptor, true, this);
    connect(client, &FdTransport::finished, this, [this, client] {
        --connections;
        client->deleteLater(); // and its descriptor with it
    });
}
