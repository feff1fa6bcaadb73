// The methods of the scripting protocol on a bench (zv4280ctl serve's
// engine, or the running program): registers read and written, fields
// listed, read and set through the forms' rules, files loaded and saved.
// Each request's params are checked whole before anything is touched, so
// that a refused request writes nothing; a request that finds an operation
// running is answered "busy", or waits for its end when it asks to.
#pragma once

#include "rpc_error.h"

#include <QJsonObject>
#include <QString>

#include <functional>

class CtlField;
class RpcBench;
class RpcDispatcher;
class RpcReply;

class BenchMethods
{
public:
    explicit BenchMethods(RpcBench& bench);

    // Adds every method, session.info included, to a dispatcher.
    void bind(RpcDispatcher& dispatcher);

    // A field as the replies show it: {name, code, text, location} and
    // "estimated": true when its display shows an estimate.
    static QJsonObject fieldJson(const CtlField& field);

private:
    void info(const QJsonObject& params, const RpcReply& reply);
    void read(const QJsonObject& params, const RpcReply& reply);
    void write(const QJsonObject& params, const RpcReply& reply);
    void list(const QJsonObject& params, const RpcReply& reply);
    void get(const QJsonObject& params, const RpcReply& reply);
    void set(const QJsonObject& params, const RpcReply& reply);
    bool chipAsShown();
    void writeShown(const std::function<void()>& setCodes, const std::function<void(const QJsonArray&)>& answer,
                    const RpcReply& reply);
    void load(const QJsonObject& params, const RpcReply& reply);
    void save(const QJsonObject& params, const RpcReply& reply);

    // Runs `work` when no operation runs: now, after the running one when
    // `wait` is set, else the reply is "busy".
    void whenFree(bool wait, const RpcReply& reply, std::function<void()> work);
    // A failed chip operation: stopped, no board, or the board failed.
    RpcError boardError(const QString& what, bool stopped) const;
    // "gui" asked of a server without forms; false after the refusal.
    bool formsServed(const QString& member, const RpcReply& reply) const;

    RpcBench& bench;
};
