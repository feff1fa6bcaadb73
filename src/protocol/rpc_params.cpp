// Params read member by member; the first fault is kept.
#include "rpc_params.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

RpcParams::RpcParams(const QJsonObject& p) : params(p) {}

QJsonValue RpcParams::take(const QString& name)
{
    asked.append(name);
    return params.value(name);
}

int RpcParams::integer(const QString& name, int lowest, int highest, int fallback)
{
    const QJsonValue value = take(name);
    int number = fallback;
    if (!value.isUndefined() && !wholeNumber(value, lowest, highest, &number))
        fail(name, QStringLiteral("\"%1\" must be a whole number from %2 to %3, not %4")
                       .arg(name)
                       .arg(lowest)
                       .arg(highest)
                       .arg(quote(value)));
    return number;
}

QString RpcParams::choice(const QString& name, const QStringList& choices, const QString& fallback)
{
    const QJsonValue value = take(name);
    if (value.isUndefined())
        return fallback;
    if (!value.isString() || !choices.contains(value.toString())) {
        fail(name, QStringLiteral("\"%1\" must be one of \"%2\", not %3")
                       .arg(name, choices.join(QStringLiteral("\", \"")), quote(value)));
        return fallback;
    }
    return value.toString();
}

QJsonObject RpcParams::object(const QString& name)
{
    const QJsonValue value = take(name);
    if (!value.isObject())
        fail(name, value.isUndefined() ? QStringLiteral("\"%1\" is missing").arg(name)
                                       : QStringLiteral("\"%1\" must be an object, not %2").arg(name, quote(value)));
    return value.toObject();
}

bool RpcParams::boolean(const QString& name, bool fallback)
{
    const QJsonValue value = take(name);
    if (value.isUndefined())
        return fallback;
    if (!value.isBool())
        fail(name, QStringLiteral("\"%1\" must be true or false, not %2").arg(name, quote(value)));
    return value.toBool(fallback);
}

QString RpcParams::text(const QString& name, const QString& fallback)
{
    const QJsonValue value = take(name);
    if (value.isUndefined() && !fallback.isEmpty())
        return fallback;
    if (!value.isString() || value.toString().isEmpty())
        fail(name, value.isUndefined() ? QStringLiteral("\"%1\" is missing").arg(name)
                                       : QStringLiteral("\"%1\" must be a text that is not empty, not %2")
                                             .arg(name, quote(value)));
    return value.toString();
}

QStringList RpcParams::texts(const QString& name)
{
    const QJsonValue value = take(name);
    QStringList list;
    for (const QJsonValue& item : value.toArray())
        list.append(item.toString());
    bool allTexts = value.isArray() && !list.isEmpty();
    for (const QJsonValue& item : value.toArray())
        allTexts = allTexts && item.isString();
    if (!allTexts)
        fail(name, value.isUndefined() ? QStringLiteral("\"%1\" is missing").arg(name)
                                       : QStringLiteral("\"%1\" must be an array of texts, not %2")
                                             .arg(name, quote(value)));
    return list;
}

void RpcParams::fail(const QString& member, const QString& message)
{
    if (!first)
        first = RpcError::invalidParams(member, message);
}

std::optional<RpcError> RpcParams::error() const
{
    if (first)
        return first;
    for (auto it = params.begin(); it != params.end(); ++it)
        if (!asked.contains(it.key()))
            return RpcError::invalidParams(
                it.key(), asked.isEmpty()
                              ? QStringLiteral("unknown member \"%1\": the method takes no params").arg(it.key())
                              : QStringLiteral("unknown member \"%1\": the method takes %2")
                                    .arg(it.key(), asked.join(QStringLiteral(", "))));
    return std::nullopt;
}

bool RpcParams::wholeNumber(const QJsonValue& value, int lowest, int highest, int* number)
{
    if (!value.isDouble())
        return false;
    const double d = value.toDouble();
    if (!(d >= lowest && d <= highest) || std::floor(d) != d)
        return false;
    *number = int(d);
    return true;
}

QString RpcParams::quote(const QJsonValue& value)
{
    // A one-element array makes any value a document.
    QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    text = text.mid(1, text.size() - 2);
    if (text.size() > 40)
        text = text.left(37) + "...";
    return QString::fromUtf8(text);
}
