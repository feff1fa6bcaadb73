// The program's side of the scripting protocol: its socket, and requests
// run as the window's operations.
#include "gui_rpc_service.h"

#include "MainClass.h"
#include "engine/form_model.h"
#include "rpc_local_server.h"
#include "service_block.h"
#include "termination_watch.h"
#include "usb_link.h"

#include <QCoreApplication>

GuiRpcService::GuiRpcService(MainClass& w, QObject* parent) : QObject(parent), window(w), methods(*this)
{
    methods.bind(dispatcher);
    // Waiting requests try again once the window's loop has dealt with the
    // end, so that the next step of a request under way comes first.
    connect(&window, &MainClass::operationEnded, this, &GuiRpcService::retryWaiting, Qt::QueuedConnection);
    // A script's requests find the board open from one to the next; a pause
    // lets go of it, once no operation runs.
    idle.setSingleShot(true);
    idle.setInterval(usb_link::kBurstIdleMs);
    connect(&idle, &QTimer::timeout, this, [this] {
        if (window.running)
            idle.start();
        else
            link().keepOpen(false);
    });
}

// The board a script's requests kept open is let go with the service.
GuiRpcService::~GuiRpcService()
{
    link().keepOpen(false);
}

bool GuiRpcService::listen(const QString& given, QString* error)
{
    const QString path = given.isEmpty() ? RpcLocalServer::defaultPath(error) : given;
    if (path.isEmpty())
        return false;
    server = new RpcLocalServer(dispatcher, this);
    if (!server->listen(path, error))
        return false;
    auto* ending = new TerminationWatch(this);
    if (ending->start())
        connect(ending, &TerminationWatch::requested, qApp, &QCoreApplication::quit);
    return true;
}

QString GuiRpcService::path() const
{
    return server ? server->path() : QString();
}

FormModel& GuiRpcService::model()
{
    return *window.model();
}

usb_link& GuiRpcService::link()
{
    return *window.service->usb;
}

bool GuiRpcService::boardChosen() const
{
    return !window.service->usb->selectedKey.isEmpty();
}

PanelSettings GuiRpcService::settings() const
{
    return window.service->panelSettings();
}

bool GuiRpcService::busy() const
{
    return window.running;
}

void GuiRpcService::whenIdle(std::function<void()> retry)
{
    waiting.push_back(std::move(retry));
}

void GuiRpcService::retryWaiting()
{
    // Each tries once; one that finds the window busy again waits anew.
    std::vector<std::function<void()>> now;
    now.swap(waiting);
    for (const auto& retry : now)
        retry();
}

void GuiRpcService::burst()
{
    link().keepOpen(true);
    idle.start();
}

void GuiRpcService::run(clerk::Command command, const QString& fileName, const PanelSettings& settings, Ended ended)
{
    burst();
    if (!window.startScripted(command, settings, fileName, ended))
        ended(tr("another operation runs"), true);
}

void GuiRpcService::step(const std::function<void()>& work)
{
    burst();
    window.runScripted(work);
}
