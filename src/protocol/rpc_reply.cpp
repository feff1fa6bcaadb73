// One answer to one request, whichever copy of the reply gives it.
#include "rpc_reply.h"

struct RpcReply::State
{
    Deliver deliver;
    bool answered = false;

    void answer(const QJsonValue& result, const RpcError* error)
    {
        if (answered)
            return;
        answered = true;
        deliver(result, error);
    }

    ~State()
    {
        const RpcError lost{RpcCode::InternalError, QStringLiteral("the method ended without an answer")};
        answer(QJsonValue(), &lost);
    }
};

RpcReply::RpcReply(Deliver deliver) : state(std::make_shared<State>())
{
    state->deliver = std::move(deliver);
}

void RpcReply::result(const QJsonValue& value) const
{
    state->answer(value, nullptr);
}

void RpcReply::error(const RpcError& error) const
{
    state->answer(QJsonValue(), &error);
}

void RpcReply::error(RpcCode code, const QString& message, const QJsonValue& data) const
{
    error(RpcError{code, message, data});
}

bool RpcReply::answered() const
{
    return state->answered;
}
