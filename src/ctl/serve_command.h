// zv4280ctl serve: the scripting protocol on standard input and output, or
// on a local socket, on the engine of zv4280ctl: every method of the
// protocol but those of the program's own forms (source and target "gui").
#pragma once

#include "bench_methods.h"
#include "rpc_bench.h"

#include <QString>
#include <QTimer>

class CtlOutput;
class CtlSession;
class RpcDispatcher;

class ServeCommand : public RpcBench
{
public:
    ServeCommand(CtlSession& session, CtlOutput& out);

    // Serves until the input ends; with a path, on a socket there until the
    // process is interrupted or terminated. Gives the exit status.
    int run(const QString& listenPath);

    // Adds the methods to a dispatcher.
    void bind(RpcDispatcher& dispatcher);

    // The bench: requests come one at a time, and each operation runs to
    // its end before the next.
    QString serverName() const override { return QStringLiteral("zv4280ctl"); }
    bool showsForms() const override { return false; }
    FormModel& model() override;
    usb_link& link() override;
    bool boardChosen() const override;
    PanelSettings settings() const override;
    bool busy() const override { return false; }
    void whenIdle(std::function<void()>) override {}
    void run(clerk::Command command, const QString& fileName, const PanelSettings& settings, Ended ended) override;
    void step(const std::function<void()>& work) override;

private:
    // The board stays open through a burst of requests and closes after a
    // short pause or at the end.
    void burst();

    CtlSession& session;
    CtlOutput& out;
    BenchMethods methods;
    QTimer idle;
};
