// Messages parsed and answered: JSON-RPC 2.0's replies, batches in order.
#include "rpc_dispatcher.h"

#include "rpc_request.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>

#include <memory>

namespace {

QJsonObject replyObject(const QJsonValue& id, const QJsonValue& result, const RpcError* error)
{
    QJsonObject reply{{QStringLiteral("jsonrpc"), QStringLiteral("2.0")}, {QStringLiteral("id"), id}};
    if (error)
        reply.insert(QStringLiteral("error"), error->toJson());
    else
        reply.insert(QStringLiteral("result"), result.isUndefined() ? QJsonValue() : result);
    return reply;
}

QByteArray text(const QJsonValue& reply)
{
    if (reply.isObject())
        return QJsonDocument(reply.toObject()).toJson(QJsonDocument::Compact);
    if (reply.isArray())
        return QJsonDocument(reply.toArray()).toJson(QJsonDocument::Compact);
    return QByteArray();
}

// The requests of a batch, each passed on once the one before it is
// answered; the array of their replies goes out when the last is in. A loop
// takes the requests that are answered at once, so that a long batch of
// them does not nest calls.
struct Batch : std::enable_shared_from_this<Batch>
{
    const RpcDispatcher* dispatcher = nullptr;
    QJsonArray requests;
    QJsonArray replies;
    RpcDispatcher::Done done;
    int next = 0;
    bool waiting = false; // a request is with its method
    bool looping = false;

    void run()
    {
        looping = true;
        while (next < requests.size() && !waiting) {
            waiting = true;
            auto self = shared_from_this();
            dispatcher->call(requests.at(next++), [self](const QJsonValue& reply) {
                if (!reply.isUndefined())
                    self->replies.append(reply);
                self->waiting = false;
                if (!self->looping)
                    self->run();
            });
        }
        looping = false;
        if (next == requests.size() && !waiting)
            done(replies.isEmpty() ? QByteArray() : text(replies));
    }
};

} // namespace

void RpcDispatcher::add(const QString& method, Handler handler)
{
    table.insert(method, std::move(handler));
}

QByteArray RpcDispatcher::errorReply(const RpcError& error)
{
    return text(replyObject(QJsonValue(), QJsonValue(), &error));
}

void RpcDispatcher::handle(const QByteArray& message, Done done) const
{
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(message, &parse);
    QJsonValue value;
    if (document.isObject()) {
        value = document.object();
    } else if (document.isArray()) {
        value = document.array();
    } else {
        // The parser takes only objects and arrays; a lone number or text is
        // JSON all the same, and no request.
        const QJsonDocument wrapped = QJsonDocument::fromJson("[" + message + "]");
        if (!wrapped.isArray() || wrapped.array().size() != 1)
            return done(errorReply({RpcCode::ParseError,
                                    QStringLiteral("the message is no JSON: %1 at byte %2")
                                        .arg(parse.errorString())
                                        .arg(parse.offset)}));
        value = wrapped.array().at(0);
    }

    if (!value.isArray())
        return call(value, [done](const QJsonValue& reply) { done(text(reply)); });
    const QJsonArray requests = value.toArray();
    if (requests.isEmpty() || requests.size() > kMaxBatch)
        return done(errorReply({RpcCode::InvalidRequest,
                                requests.isEmpty() ? QStringLiteral("an empty batch")
                                                   : QStringLiteral("a batch holds at most %1 requests, not %2")
                                                         .arg(kMaxBatch)
                                                         .arg(requests.size())}));
    auto batch = std::make_shared<Batch>();
    batch->dispatcher = this;
    batch->requests = requests;
    batch->done = std::move(done);
    batch->run();
}

void RpcDispatcher::call(const QJsonValue& message, std::function<void(const QJsonValue&)> done) const
{
    const RpcRequest request = RpcRequest::read(message);
    auto finish = [done = std::move(done), id = request.id, notification = request.notification](
                      const QJsonValue& result, const RpcError* error) {
        done(notification ? QJsonValue(QJsonValue::Undefined) : QJsonValue(replyObject(id, result, error)));
    };
    if (request.error)
        return finish(QJsonValue(), &*request.error);
    const auto handler = table.constFind(request.method);
    if (handler == table.constEnd()) {
        const RpcError unknown{RpcCode::MethodNotFound,
                               QStringLiteral("unknown method \"%1\"; this server has %2")
                                   .arg(request.method, methods().join(QStringLiteral(", ")))};
        return finish(QJsonValue(), &unknown);
    }
    handler.value()(request.params, RpcReply(std::move(finish)));
}
