// Requests answered by `zv4280ctl serve` on a simulated board, one at a
// time as a script sends them: 1000 of registers.read count 1 (the time of
// all 1000, median over runs, and the median request), and reads of the
// whole map; beside them, 1000 reads of one register through the USB link in
// this process, which open and close the board as each request does, without
// the protocol. The board is served by this program's testbed thread, as the
// launcher serves it.

#include "bench_support.h"
#include "testbed.h"
#include "usb_link.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>

#include <cstdio>
#include <vector>

namespace {

// Sends one request and waits for its reply line; false when the server
// gave none or an error.
bool ask(QProcess& server, const QByteArray& request)
{
    server.write(request + '\n');
    while (!server.canReadLine())
        if (!server.waitForReadyRead(30000))
            return false;
    return !server.readLine().contains("\"error\"");
}

bool measure(QProcess& server, const char* what, const QByteArray& request, int requests, int runs)
{
    std::vector<double> totals, each;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer all, one;
        all.start();
        for (int i = 0; i < requests; ++i) {
            one.start();
            if (!ask(server, request)) {
                std::fprintf(stderr, "bench_serve: %s got no result\n", what);
                return false;
            }
            each.push_back(one.nsecsElapsed() / 1e6);
        }
        totals.push_back(all.nsecsElapsed() / 1e6);
    }
    std::printf("%-44s %9.1f ms for %d  (a request %.3f ms, median of %d runs)\n", what, median(totals), requests,
                median(each), runs);
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    if (!zvsim::Testbed::available()) {
        std::fprintf(stderr, "bench_serve: run it under umockdev-wrapper\n");
        return 1;
    }
    zvsim::Testbed bus;
    bus.addBoard();
    QProcess server;
    server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    server.start(QStringLiteral(ZV_CTL_PROGRAM), {QStringLiteral("serve")});
    if (!server.waitForStarted())
        return 1;
    const bool ok =
        measure(server, "serve: registers.read count 1",
                R"({"jsonrpc": "2.0", "id": 1, "method": "registers.read", "params": {"first": 12, "count": 1}})",
                1000, 7)
        && measure(server, "serve: registers.read of all 291",
                   R"({"jsonrpc": "2.0", "id": 1, "method": "registers.read"})", 100, 7);
    std::vector<double> linkTotals;
    for (int run = 0; ok && run < 7; ++run) {
        usb_link link;
        quint8 value = 0;
        QElapsedTimer all;
        all.start();
        for (int i = 0; i < 1000; ++i)
            link.readRegister(12, &value);
        linkTotals.push_back(all.nsecsElapsed() / 1e6);
    }
    std::printf("%-44s %9.1f ms for 1000\n", "usb_link readRegister alone", median(linkTotals));
    server.closeWriteChannel();
    server.waitForFinished();
    return ok ? 0 : 1;
}
