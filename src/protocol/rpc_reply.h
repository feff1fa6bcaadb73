// The way a method answers its request, at once or later: a method that
// starts an operation keeps its RpcReply and answers when the operation
// ends. The connection takes its next request only once this one is
// answered. Answer on the thread that serves the connection (from a worker,
// through a queued signal); a second answer is dropped, and a request whose
// every RpcReply is gone unanswered gets an internal error.
#pragma once

#include "rpc_error.h"

#include <QJsonValue>

#include <functional>
#include <memory>

class RpcReply
{
public:
    // deliver gets the result, or the error when `error` is set.
    using Deliver = std::function<void(const QJsonValue& result, const RpcError* error)>;

    explicit RpcReply(Deliver deliver);

    void result(const QJsonValue& value) const;
    void error(const RpcError& error) const;
    void error(RpcCode code, const QString& message, const QJsonValue& data = QJsonValue::Undefined) const;
    bool answered() const;

private:
    struct State;
    std::shared_ptr<State> state;
};
