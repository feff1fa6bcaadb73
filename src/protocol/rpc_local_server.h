// The scripting protocol on a local socket, for scripts that drive a running
// program: $XDG_RUNTIME_DIR/zv4280tb-<pid>.sock by default, or a path of the
// caller's choice. The socket has mode 0600 and stands in a folder only the
// user can enter, and a client of another user is dropped on arrival, so no
// one else can connect. Each client is an FdTransport of its own; the
// socket is removed when the server goes.
#pragma once

#include <QObject>
#include <QString>

class QSocketNotifier;
class RpcDispatcher;

class RpcLocalServer : public QObject
{
    Q_OBJECT
public:
    explicit RpcLocalServer(const RpcDispatcher& dispatcher, QObject* parent = nullptr);
    ~RpcLocalServer() override;

    // The default socket of this process: in $XDG_RUNTIME_DIR, or when it is
    // not set in /tmp/zv4280tb-<uid>/, made 0700 if it is not there. Empty
    // with a message when the folder is not the user's alone.
    static QString defaultPath(QString* error);

    // Listens at `path` (a relative one from the working folder); false
    // with a message when the path is taken, its folder does not exist or
    // the socket cannot be made.
    bool listen(const QString& path, QString* error);
    QString path() const { return socketPath; }

    // Clients served now.
    int clients() const { return connections; }

private:
    void accept();
    void serve(int descriptor);
    void close();

    const RpcDispatcher& dispatcher;
    int listener = -1;
    QSocketNotifier* arrivals = nullptr;
    QString socketPath;
    int connections = 0;
};
