// The members of a request checked one by one, each fault named.
#include "rpc_request.h"

namespace {

RpcError invalid(const QString& message)
{
    return {RpcCode::InvalidRequest, message};
}

// What is wrong with a request object besides its id, if anything.
std::optional<RpcError> fault(const QJsonObject& object)
{
    for (auto it = object.begin(); it != object.end(); ++it) {
        const QString& key = it.key();
        if (key != QLatin1String("jsonrpc") && key != QLatin1String("id") && key != QLatin1String("method")
            && key != QLatin1String("params"))
            return invalid(QStringLiteral("unknown member \"%1\" in the request; a request has jsonrpc, "
                                          "method, params and id")
                               .arg(key));
    }
    const QJsonValue params = object.value(QLatin1String("params"));
    if (object.value(QLatin1String("jsonrpc")) != QJsonValue(QStringLiteral("2.0")))
        return invalid(QStringLiteral("\"jsonrpc\" must be \"2.0\""));
    if (!object.value(QLatin1String("method")).isString())
        return invalid(QStringLiteral("\"method\" must be a text"));
    if (params.isArray())
        return RpcError::invalidParams(QStringLiteral("params"),
                                       QStringLiteral("\"params\" must be an object of named members, not an array"));
    if (!params.isUndefined() && !params.isObject())
        return invalid(QStringLiteral("\"params\" must be an object"));
    return std::nullopt;
}

} // namespace

RpcRequest RpcRequest::read(const QJsonValue& message)
{
    RpcRequest request;
    if (!message.isObject()) {
        request.error = invalid(QStringLiteral("a request is a JSON object"));
        return request;
    }
    const QJsonObject object = message.toObject();
    const QJsonValue id = object.value(QLatin1String("id"));
    request.notification = id.isUndefined();
    if (id.isDouble() || id.isString() || id.isNull())
        request.id = id;
    else if (!request.notification)
        request.error = invalid(QStringLiteral("\"id\" must be a number, a text or null"));
    if (!request.error)
        request.error = fault(object);
    request.method = object.value(QLatin1String("method")).toString();
    request.params = object.value(QLatin1String("params")).toObject();
    // An invalid request is answered, with a null id when it had none.
    if (request.error && request.error->code == RpcCode::InvalidRequest)
        request.notification = false;
    return request;
}
