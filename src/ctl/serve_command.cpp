// The methods of zv4280ctl serve, and its transports.
#include "serve_command.h"

#include "ctl_board.h"
#include "ctl_output.h"
#include "ctl_session.h"
#include "register_names.h"
#include "rpc_dispatcher.h"
#include "rpc_local_server.h"
#include "rpc_params.h"
#include "stdio_transport.h"
#include "usb_link.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QScopeGuard>
#include <QSocketNotifier>

#include <csignal>
#include <map>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t n = ::write(signalPipe[1], &byte, 1);
}

QString hexByte(int value)
{
    return QStringLiteral("0x%1").arg(value, 2, 16, QLatin1Char('0'));
}

} // namespace

ServeCommand::ServeCommand(CtlSession& s, CtlOutput& o) : session(s), out(o) {}

int ServeCommand::run(const QString& listenPath)
{
    RpcDispatcher dispatcher;
    bind(dispatcher);
    QEventLoop loop;
    if (listenPath.isEmpty()) {
        StdioTransport stdio(dispatcher);
        QObject::connect(&stdio, &StdioTransport::finished, &loop, &QEventLoop::quit);
        loop.exec();
        return int(CtlExit::Done);
    }

    RpcLocalServer server(dispatcher);
    QString error;
    if (!server.listen(listenPath, &error))
        return out.fail(CtlExit::Usage, error);
    // An interrupt or termination ends the loop, so that the socket goes.
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, signalPipe) != 0)
        return out.fail(CtlExit::Usage, QStringLiteral("cannot watch for signals"));
    QSocketNotifier ending(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&ending, &QSocketNotifier::activated, &loop, &QEventLoop::quit);
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    // Clients may connect from here on.
    CtlOutput::printError(QStringLiteral("zv4280ctl: serve: listening at %1\n").arg(server.path()));
    loop.exec();
    return int(CtlExit::Done);
}

void ServeCommand::bind(RpcDispatcher& dispatcher)
{
    using namespace std::placeholders;
    dispatcher.add(QStringLiteral("session.info"), std::bind(&ServeCommand::info, this, _1, _2));
    dispatcher.add(QStringLiteral("registers.read"), std::bind(&ServeCommand::read, this, _1, _2));
    dispatcher.add(QStringLiteral("registers.write"), std::bind(&ServeCommand::write, this, _1, _2));
}

void ServeCommand::info(const QJsonObject& params, const RpcReply& reply)
{
    if (const auto error = RpcParams(params).error())
        return reply.error(*error);
    const auto board = CtlBoard::current(session.link().selectedKey);
    reply.result(QJsonObject{{QStringLiteral("server"), QStringLiteral("zv4280ctl")},
                             {QStringLiteral("version"), QStringLiteral(ZV_VERSION)},
                             {QStringLiteral("board"), board ? QJsonValue(CtlBoard::json(*board)) : QJsonValue()},
                             {QStringLiteral("chip"), QStringLiteral("ZV4280v2")}});
}

void ServeCommand::read(const QJsonObject& params, const RpcReply& reply)
{
    const int registers = registerNames.size();
    RpcParams p(params);
    const int first = p.integer(QStringLiteral("first"), 0, registers - 1, 0);
    const int count = p.integer(QStringLiteral("count"), 1, registers, registers);
    const QString style = p.choice(QStringLiteral("style"),
                                   {QStringLiteral("auto"), QStringLiteral("block"), QStringLiteral("single")},
                                   QStringLiteral("auto"));
    if (first + count > registers)
        p.fail(QStringLiteral("count"), QStringLiteral("\"count\" %1 from register %2 passes the last register, %3; "
                                                       "at most %4 from there")
                                            .arg(count)
                                            .arg(first)
                                            .arg(registers - 1)
                                            .arg(registers - first));
    if (const auto error = p.error())
        return reply.error(*error);

    usb_link& link = session.link();
    std::vector<quint8> values(static_cast<size_t>(count));
    bool ok = true;
    if (style == QLatin1String("single")) {
        for (int i = 0; ok && i < count; ++i)
            ok = link.readRegister(first + i, &values[size_t(i)]);
    } else if (style == QLatin1String("block")) {
        std::vector<int> addresses;
        for (int i = 0; i < count; ++i)
            addresses.push_back(first + i);
        std::vector<quint8> list = link.blockList(addresses);
        ok = link.readBlock(count, list.data());
        const size_t size = link.addressBytes + 1u;
        for (size_t i = 0; i < values.size(); ++i)
            values[i] = list[i * size + size - 1];
    } else {
        ok = link.readAuto(first, count, values.data());
    }
    if (!ok)
        return reply.error(
            boardError(QStringLiteral("registers %1 to %2 could not be read").arg(first).arg(first + count - 1)));
    QJsonArray read;
    for (quint8 v : values)
        read.append(v);
    reply.result(QJsonObject{{QStringLiteral("first"), first}, {QStringLiteral("values"), read}});
}

// The registers are written in one block operation, then read back in one.
void ServeCommand::write(const QJsonObject& params, const RpcReply& reply)
{
    const int registers = registerNames.size();
    RpcParams p(params);
    const QJsonObject asked = p.object(QStringLiteral("values"));
    std::map<int, quint8> values; // in rising order
    for (auto it = asked.begin(); it != asked.end(); ++it) {
        bool number = false;
        const int reg = it.key().toInt(&number);
        int value = 0;
        if (!number || it.key() != QString::number(reg) || reg < 0 || reg >= registers)
            p.fail(QStringLiteral("values"), QStringLiteral("\"values\": \"%1\" is no register; registers are \"0\" "
                                                            "to \"%2\" in decimal")
                                                 .arg(it.key())
                                                 .arg(registers - 1));
        else if (!RpcParams::wholeNumber(it.value(), 0, 255, &value))
            p.fail(QStringLiteral("values"), QStringLiteral("\"values\": register %1 takes a value from 0 to 255, "
                                                            "not %2")
                                                 .arg(reg)
                                                 .arg(RpcParams::quote(it.value())));
        values[reg] = quint8(value);
    }
    if (const auto error = p.error())
        return reply.error(*error);

    std::vector<int> addresses;
    std::vector<quint8> bytes;
    QJsonArray written;
    for (const auto& [reg, value] : values) {
        addresses.push_back(reg);
        bytes.push_back(value);
        written.append(reg);
    }
    const QJsonObject nothing{{QStringLiteral("written"), QJsonArray()}};
    if (addresses.empty())
        return reply.result(QJsonObject{{QStringLiteral("written"), written}, {QStringLiteral("readBack"), QJsonObject()}});

    usb_link& link = session.link();
    // The writes and the read-back go to one board.
    link.holdBoard();
    const auto release = qScopeGuard([&link] { link.releaseBoard(); });
    const int count = int(addresses.size());
    std::vector<quint8> list = link.blockList(addresses, bytes.data());
    if (!link.writeBlock(count, list.data())) {
        RpcError error = boardError(QStringLiteral("the registers could not be written"));
        error.data = nothing;
        if (!link.transferFailure().isEmpty()) {
            // The frames before the one that failed reached the chip.
            error.message += QStringLiteral("; some of them may have been written: read them to see");
            error.data = QJsonObject{{QStringLiteral("written"), QJsonArray()}, {QStringLiteral("uncertain"), written}};
        }
        return reply.error(error);
    }

    list = link.blockList(addresses);
    if (!link.readBlock(count, list.data())) {
        RpcError error = boardError(QStringLiteral("the registers were written, but could not be read back"));
        error.data = QJsonObject{{QStringLiteral("written"), written}};
        return reply.error(error);
    }
    QJsonObject readBack;
    QJsonArray differs;
    QStringList differences;
    const size_t size = link.addressBytes + 1u;
    for (size_t i = 0; i < addresses.size(); ++i) {
        const quint8 value = list[i * size + size - 1];
        readBack.insert(QString::number(addresses[i]), value);
        if (value != bytes[i]) {
            differs.append(addresses[i]);
            differences.append(QStringLiteral("register %1 reads back %2 after %3 was written")
                                   .arg(addresses[i])
                                   .arg(hexByte(value), hexByte(bytes[i])));
        }
    }
    const QJsonObject result{{QStringLiteral("written"), written}, {QStringLiteral("readBack"), readBack}};
    if (differs.isEmpty())
        return reply.result(result);
    QJsonObject data = result;
    data.insert(QStringLiteral("differs"), differs);
    reply.error(RpcCode::ReadBackDiffers,
                differences.join(QStringLiteral("; ")) + QStringLiteral(" (every write was made)"),
                data);
}

RpcError ServeCommand::boardError(const QString& what)
{
    const QString why = CtlBoard::absence(session.boardChosen());
    if (!why.isEmpty())
        return {RpcCode::NoBoard, what + QStringLiteral(": ") + why};
    const QString reason = session.link().reason();
    return {RpcCode::BoardFailed,
            what + (reason.isEmpty() ? QStringLiteral(": the board could not be opened")
                                     : QStringLiteral(" (%1)").arg(reason))};
}
