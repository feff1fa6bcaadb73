// Fuzzes the scripting protocol's reading of a client's stream: any bytes,
// through the line framing, the message parser and the dispatcher, with
// methods that answer at once, later, never, or with an error. No fault;
// every reply is one line holding a JSON object or array; once the input has
// ended and the late answers are given, the connection finishes.
#include "rpc_connection.h"
#include "rpc_dispatcher.h"

#include <QJsonDocument>

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

std::vector<RpcReply> later;

const RpcDispatcher& methods()
{
    static RpcDispatcher table;
    static bool made = false;
    if (!made) {
        made = true;
        table.add(QStringLiteral("echo"), [](const QJsonObject& params, const RpcReply& reply) { reply.result(params); });
        table.add(QStringLiteral("later"), [](const QJsonObject&, const RpcReply& reply) { later.push_back(reply); });
        table.add(QStringLiteral("never"), [](const QJsonObject&, const RpcReply&) {});
        table.add(QStringLiteral("fail"), [](const QJsonObject& params, const RpcReply& reply) {
            reply.error(RpcCode::BoardFailed, QStringLiteral("failed"), params);
        });
    }
    return table;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    RpcConnection connection(methods());
    bool finished = false;
    QObject::connect(&connection, &RpcConnection::send, [&finished](const QByteArray& line) {
        const QJsonDocument reply = QJsonDocument::fromJson(line);
        if (finished || !line.endsWith('\n') || line.count('\n') != 1 || (!reply.isObject() && !reply.isArray()))
            std::abort();
    });
    QObject::connect(&connection, &RpcConnection::finished, [&finished] { finished = true; });
    const QByteArray input(reinterpret_cast<const char*>(data), int(size));
    connection.receive(input.left(input.size() / 2));
    connection.receive(input.mid(input.size() / 2));
    connection.endOfInput();
    while (!later.empty()) {
        const RpcReply reply = later.back();
        later.pop_back();
        reply.result(QStringLiteral("late"));
    }
    if (!finished)
        std::abort();
    return 0;
}
