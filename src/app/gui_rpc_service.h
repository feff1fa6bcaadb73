// The running program serves the scripting protocol on a local socket: the
// requests work on the main window's forms and chip through the same
// operations as the toolbar keys, so that the forms follow what a script
// does and the window counts each request's operations. A request that
// comes while an operation runs is answered "busy", or waits its turn.
#pragma once

#include "bench_methods.h"
#include "rpc_bench.h"
#include "rpc_dispatcher.h"

#include <QObject>
#include <QTimer>
#include <QString>

#include <functional>
#include <vector>

class MainClass;
class RpcLocalServer;

class GuiRpcService : public QObject, public RpcBench
{
    Q_OBJECT
public:
    explicit GuiRpcService(MainClass& window, QObject* parent = nullptr);
    ~GuiRpcService() override;

    // Listens at `path`, or at the default socket when it is empty; false
    // with the reason when it cannot. The socket goes when the service
    // goes, and the program ends on an interrupt or termination so that
    // it does go.
    bool listen(const QString& path, QString* error);
    QString path() const;

    QString serverName() const override { return QStringLiteral("zv4280tb"); }
    bool showsForms() const override { return true; }
    FormModel& model() override;
    usb_link& link() override;
    bool boardChosen() const override;
    PanelSettings settings() const override;
    bool busy() const override;
    void whenIdle(std::function<void()> retry) override;
    void run(clerk::Command command, const QString& fileName, const PanelSettings& settings, Ended ended) override;
    void step(const std::function<void()>& work) override;

private:
    void retryWaiting();
    void burst();

    MainClass& window;
    RpcDispatcher dispatcher;
    BenchMethods methods;
    RpcLocalServer* server = nullptr;
    std::vector<std::function<void()>> waiting;
    QTimer idle;
};
