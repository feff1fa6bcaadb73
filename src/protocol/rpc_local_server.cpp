// The local socket's place, its permissions and its clients.
#include "rpc_local_server.h"

#include "rpc_connection.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// The most a socket's buffer holds of a client's input before the
// connection takes it; the rest waits in the client.
constexpr qint64 kReadChunk = 65536;

// A folder that is the user's alone: owned by the user, no symbolic link,
// no access for group or others.
bool privateFolder(const QString& folder, QString* error)
{
    struct stat info;
    if (::lstat(QFile::encodeName(folder).constData(), &info) != 0) {
        *error = QStringLiteral("%1: %2").arg(folder, QString::fromLocal8Bit(std::strerror(errno)));
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
bool sameUser(qintptr descriptor)
{
#ifdef SO_PEERCRED
    struct ucred peer;
    socklen_t size = sizeof peer;
    return ::getsockopt(int(descriptor), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::getuid();
#else
    Q_UNUSED(descriptor)
    return true; // the socket's mode and its folder keep others out
#endif
}

} // namespace

RpcLocalServer::RpcLocalServer(const RpcDispatcher& d, QObject* parent) : QObject(parent), dispatcher(d) {}

RpcLocalServer::~RpcLocalServer()
{
    if (server)
        server->close(); // removes the socket
}

QString RpcLocalServer::defaultPath(QString* error)
{
    QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty()) {
        folder = QStringLiteral("/tmp/zv4280tb-%1").arg(::getuid());
        if (::mkdir(QFile::encodeName(folder).constData(), 0700) != 0 && errno != EEXIST) {
            *error = QStringLiteral("cannot make %1: %2").arg(folder, QString::fromLocal8Bit(std::strerror(errno)));
            return QString();
        }
    }
    if (!privateFolder(folder, error))
        return QString();
    return QDir(folder).filePath(QStringLiteral("zv4280tb-%1.sock").arg(::getpid()));
}

bool RpcLocalServer::listen(const QString& socketPath, QString* error)
{
    const QByteArray file = QFile::encodeName(socketPath);
    struct stat info;
    if (::lstat(file.constData(), &info) == 0) {
        // A socket that no server answers is what a process that has ended
        // left behind; anything else stays where it is.
        QLocalSocket probe;
        probe.connectToServer(socketPath);
        if (!S_ISSOCK(info.st_mode) || probe.waitForConnected(1000)
            || probe.error() != QLocalSocket::ConnectionRefusedError) {
            *error = QStringLiteral("%1 is taken: another server or another file is there").arg(socketPath);
            return false;
        }
        ::unlink(file.constData());
    }
    delete server;
    server = new QLocalServer(this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server->listen(socketPath)) {
        *error = QStringLiteral("cannot listen at %1: %2").arg(socketPath, server->errorString());
        delete server;
        server = nullptr;
        return false;
    }
    ::chmod(file.constData(), 0600); // made 0700; a socket needs no x bit
    connect(server, &QLocalServer::newConnection, this, &RpcLocalServer::accept);
    return true;
}

QString RpcLocalServer::path() const
{
    return server ? server->fullServerName() : QString();
}

void RpcLocalServer::accept()
{
    while (QLocalSocket* socket = server->nextPendingConnection()) {
        if (!sameUser(socket->socketDescriptor())) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
        serve(socket);
    }
}

void RpcLocalServer::serve(QLocalSocket* socket)
{
    ++connections;
    socket->setReadBufferSize(kReadChunk);
    auto* connection = new RpcConnection(dispatcher, socket);
    auto pump = [socket, connection] {
        while (connection->wantsInput() && socket->bytesAvailable() > 0)
            connection->receive(socket->read(kReadChunk));
    };
    connect(socket, &QLocalSocket::readyRead, connection, pump);
    connect(connection, &RpcConnection::readyForInput, socket, pump);
    connect(connection, &RpcConnection::send, socket, [socket](const QByteArray& line) { socket->write(line); });
    connect(connection, &RpcConnection::finished, socket, &QLocalSocket::disconnectFromServer);
    connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
        --connections;
        socket->deleteLater(); // and its connection with it
    });
}
