// The methods of zv4280ctl serve, and its transports.
#include "serve_command.h"

#include "ctl_output.h"
#include "ctl_session.h"
#include "rpc_dispatcher.h"
#include "rpc_local_server.h"
#include "stdio_transport.h"
#include "termination_watch.h"
#include "usb_link.h"

#include <QEventLoop>
#include <QScopeGuard>

ServeCommand::ServeCommand(CtlSession& s, CtlOutput& o) : session(s), out(o), methods(*this)
{
    idle.setSingleShot(true);
    idle.setInterval(usb_link::kBurstIdleMs);
    QObject::connect(&idle, &QTimer::timeout, [this] { session.link().closeBoard(); });
}

int ServeCommand::run(const QString& listenPath)
{
    RpcDispatcher dispatcher;
    bind(dispatcher);
    const auto closing = qScopeGuard([this] { session.link().keepOpen(false); });
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
    TerminationWatch ending;
    if (!ending.start())
        return out.fail(CtlExit::Usage, QStringLiteral("cannot watch for signals"));
    QObject::connect(&ending, &TerminationWatch::requested, &loop, &QEventLoop::quit);
    // Clients may connect from here on.
    CtlOutput::printError(QStringLiteral("zv4280ctl: serve: listening at %1\n").arg(server.path()));
    loop.exec();
    return int(CtlExit::Done);
}

void ServeCommand::bind(RpcDispatcher& dispatcher)
{
    methods.bind(dispatcher);
}

FormModel& ServeCommand::model()
{
    return session.model();
}

usb_link& ServeCommand::link()
{
    return session.link();
}

bool ServeCommand::boardChosen() const
{
    return session.boardChosen();
}

PanelSettings ServeCommand::settings() const
{
    return session.settings;
}

void ServeCommand::burst()
{
    session.link().keepOpen(true);
    idle.start();
}

void ServeCommand::run(clerk::Command command, const QString& fileName, const PanelSettings& settings, Ended ended)
{
    burst();
    session.settings = settings;
    ended(session.run(command, fileName), false);
}

void ServeCommand::step(const std::function<void()>& work)
{
    burst();
    work();
}
