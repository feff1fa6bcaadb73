// zv4280ctl serve: the scripting protocol on standard input and output, or
// on a local socket, with the methods that need no forms: session.info,
// registers.read and registers.write, each a register operation of the USB
// link. The field and file methods are not served here (-32601).
#pragma once

#include <QString>

class CtlOutput;
class CtlSession;
class RpcDispatcher;
class RpcReply;
struct RpcError;
class QJsonObject;

class ServeCommand
{
public:
    ServeCommand(CtlSession& session, CtlOutput& out);

    // Serves until the input ends; with a path, on a socket there until the
    // process is interrupted or terminated. Gives the exit status.
    int run(const QString& listenPath);

    // Adds the methods to a dispatcher.
    void bind(RpcDispatcher& dispatcher);

private:
    void info(const QJsonObject& params, const RpcReply& reply);
    void read(const QJsonObject& params, const RpcReply& reply);
    void write(const QJsonObject& params, const RpcReply& reply);
    // A failed register operation: no board, or the board failed.
    RpcError boardError(const QString& what);

    CtlSession& session;
    CtlOutput& out;
};
