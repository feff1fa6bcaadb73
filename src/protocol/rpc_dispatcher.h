// The methods of the scripting protocol by name, and the answer to one
// message: a request, a notification or a batch, each request passed to its
// method once the one before it is answered.
//
// A method is added with its name and a handler, which gets the params (an
// object, {} when the request had none) and an RpcReply to answer with, now
// or when its operation ends:
//
//     dispatcher.add("registers.read", [this](const QJsonObject& params, const RpcReply& reply) {
//         RpcParams p(params);
//         ...
//         reply.result(QJsonObject{{"first", first}, {"values", values}});
//     });
#pragma once

#include "rpc_reply.h"

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>

class RpcDispatcher
{
public:
    using Handler = std::function<void(const QJsonObject& params, const RpcReply& reply)>;
    // The reply to a message, without its line end; empty when there is none
    // to send (a notification, or a batch of them).
    using Done = std::function<void(const QByteArray& reply)>;

    // The most requests a batch may hold.
    static constexpr int kMaxBatch = 1000;

    void add(const QString& method, Handler handler);
    QStringList methods() const { return table.keys(); }

    // Answers one message through `done`, at once or later, exactly once.
    void handle(const QByteArray& message, Done done) const;

    // A reply to a message that never reached a method (id null).
    static QByteArray errorReply(const RpcError& error);

    // Answers one request (not a batch): `done` gets the reply object, or
    // an undefined value for a notification.
    void call(const QJsonValue& message, std::function<void(const QJsonValue& reply)> done) const;

private:
    QMap<QString, Handler> table;
};
