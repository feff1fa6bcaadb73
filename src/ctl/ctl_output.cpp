// Text and JSON output of zv4280ctl, and its messages.
#include "ctl_output.h"

#include <QJsonDocument>

#include <cstdio>

CtlOutput::CtlOutput(const QString& commandName, bool jsonOutput) : command(commandName), asJson(jsonOutput)
{
    document.insert(QStringLiteral("command"), command);
}

void CtlOutput::line(const QString& text)
{
    lines.append(text);
}

void CtlOutput::set(const QString& key, const QJsonValue& value)
{
    document.insert(key, value);
}

int CtlOutput::done()
{
    if (asJson) {
        document.insert(QStringLiteral("ok"), true);
        printDocument();
    } else if (!lines.isEmpty()) {
        print(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    }
    return int(CtlExit::Done);
}

int CtlOutput::fail(CtlExit status, const QString& text)
{
    // One line, whatever the worker's text holds ("...incorrect\nor not exist").
    const QString message = text.simplified();
    if (!asJson)
        for (const QString& text : qAsConst(lines))
            print(text + QLatin1Char('\n'));
    printError(QStringLiteral("zv4280ctl: ") + (command.isEmpty() ? QString() : command + QStringLiteral(": "))
               + message + QLatin1Char('\n'));
    if (asJson) {
        document.insert(QStringLiteral("ok"), false);
        document.insert(QStringLiteral("exit"), int(status));
        document.insert(QStringLiteral("error"), message);
        printDocument();
    }
    return int(status);
}

void CtlOutput::printDocument()
{
    print(QString::fromUtf8(QJsonDocument(document).toJson(QJsonDocument::Compact)) + QLatin1Char('\n'));
}

void CtlOutput::print(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

void CtlOutput::printError(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fflush(stderr);
}
