// A failed request as the scripting protocol answers it: a code, a message
// that names what was wrong, and data that says what was done all the same.
#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

// The error codes: JSON-RPC's own, then those of the bench.
enum class RpcCode : int {
    ParseError = -32700,     // the message is no JSON
    InvalidRequest = -32600, // JSON, but no request (or too long a message)
    MethodNotFound = -32601,
    InvalidParams = -32602,  // a member of a wrong type, unknown or out of range
    InternalError = -32603,  // the method ended without an answer
    NoBoard = -32001,        // no bridge board, or several and none chosen
    BoardFailed = -32002,    // the board failed to open or a transfer failed part-way
    ReadBackDiffers = -32003,
    Busy = -32004,           // another operation runs
    FileError = -32005,      // a file cannot be read or written
};

struct RpcError
{
    RpcCode code = RpcCode::InternalError;
    QString message;
    QJsonValue data = QJsonValue::Undefined; // left out of the reply when undefined

    // The "error" member of a reply.
    QJsonObject toJson() const;
    // An invalid parameter, named in the message and in data's "member".
    static RpcError invalidParams(const QString& member, const QString& message);
};
