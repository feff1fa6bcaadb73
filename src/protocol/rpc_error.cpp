// The "error" member of a reply.
#include "rpc_error.h"

QJsonObject RpcError::toJson() const
{
    QJsonObject error{{QStringLiteral("code"), int(code)}, {QStringLiteral("message"), message}};
    if (!data.isUndefined())
        error.insert(QStringLiteral("data"), data);
    return error;
}

RpcError RpcError::invalidParams(const QString& member, const QString& message)
{
    return {RpcCode::InvalidParams, message, QJsonObject{{QStringLiteral("member"), member}}};
}
