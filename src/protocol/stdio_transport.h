// The scripting protocol on standard input and output: one client, served
// until its input ends (zv4280ctl serve).
#pragma once

#include <QObject>

class QSocketNotifier;
class RpcConnection;
class RpcDispatcher;

class StdioTransport : public QObject
{
    Q_OBJECT
public:
    explicit StdioTransport(const RpcDispatcher& dispatcher, QObject* parent = nullptr);

signals:
    // Input has ended and every message is answered, or output is gone.
    void finished();

private:
    void readSome();
    void write(const QByteArray& line);

    RpcConnection* connection = nullptr;
    QSocketNotifier* input = nullptr;
};
