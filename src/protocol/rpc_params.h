// Strict reading of a method's params: each member is asked for by name with
// its type and range, and the first fault (a wrong type, a value out of
// range, a member the method does not take) becomes the error that names
// the member.
//
//     RpcParams p(params);
//     const int first = p.integer("first", 0, 290, 0);
//     const QString style = p.choice("style", {"auto", "block", "single"}, "auto");
//     if (const auto error = p.error())
//         return reply.error(*error);
#pragma once

#include "rpc_error.h"

#include <QJsonObject>
#include <QStringList>

#include <optional>

class RpcParams
{
public:
    explicit RpcParams(const QJsonObject& params);

    // A whole number from lowest to highest; fallback when the member is absent.
    int integer(const QString& name, int lowest, int highest, int fallback);
    // One of the texts of `choices`; fallback when absent.
    QString choice(const QString& name, const QStringList& choices, const QString& fallback);
    // An object; required.
    QJsonObject object(const QString& name);
    // true or false; fallback when absent.
    bool boolean(const QString& name, bool fallback);
    // A text that is not empty; required unless a fallback is given.
    QString text(const QString& name, const QString& fallback = QString());
    // An array of texts, not empty; required.
    QStringList texts(const QString& name);
    // Records a fault that a method finds itself, unless one is recorded.
    void fail(const QString& member, const QString& message);

    // The first fault, or a member that nothing asked for.
    std::optional<RpcError> error() const;

    // A whole number from lowest to highest in a JSON value, e.g. a member of
    // an object member; false when it is none.
    static bool wholeNumber(const QJsonValue& value, int lowest, int highest, int* number);
    // A value as the messages quote it, cut short when long.
    static QString quote(const QJsonValue& value);

private:
    QJsonValue take(const QString& name);

    QJsonObject params;
    QStringList asked;
    std::optional<RpcError> first;
};
