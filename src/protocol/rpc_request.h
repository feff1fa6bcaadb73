// One request of the scripting protocol (JSON-RPC 2.0), read from a JSON
// value: its id, method and params, or why it is no request.
#pragma once

#include "rpc_error.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <optional>

struct RpcRequest
{
    QJsonValue id;             // a number, a text or null
    bool notification = false; // no id: nothing is answered
    QString method;
    QJsonObject params;        // {} when the request has none
    // Set when the value is no valid request (-32600), or its params are no
    // object (-32602); id is then the request's when it had a valid one.
    std::optional<RpcError> error;

    static RpcRequest read(const QJsonValue& message);
};
