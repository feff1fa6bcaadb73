// SIGINT and SIGTERM turned into a Qt signal, so that a server's event loop
// ends in the ordinary way and its socket file goes with it.
#pragma once

#include <QObject>

class TerminationWatch : public QObject
{
    Q_OBJECT
public:
    explicit TerminationWatch(QObject* parent = nullptr);
    // Installs the handlers; false when the signals cannot be watched.
    bool start();

signals:
    void requested();
};
