// Requests answered by `zv4280ctl serve` on a simulated board, one at a
// time as a script sends them: 1000 of registers.read count 1 (the time of
// all 1000, median over runs, and the median request), reads of the whole
// map, and fields.set of one field with its write, read-back and check; then
// the same reads through the running program's socket (zv4280tb on the
// offscreen platform); beside them, 1000 reads of one register through the
// USB link in this process, which open and close the board for each. The
// board is served by this program's testbed thread, as the launcher serves it.

#include "bench_support.h"
#include "testbed.h"
#include "usb_link.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <cstdio>
#include <vector>

namespace {

// Sends one request and waits for its reply line; false when the server
// gave none or an error.
bool ask(QIODevice& server, const QByteArray& request)
{
    server.write(request + '\n');
    while (!server.canReadLine())
        if (!server.waitForReadyRead(30000))
            return false;
    return !server.readLine().contains("\"error\"");
}

bool measure(QIODevice& server, const char* what, const QByteArray& request, int requests, int runs)
{
    std::vector<double> totals, each;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer all, one;
        all.start();
        for (int i = 0; i < requests; ++i) {
            one.start();
            // A field's request alternates between two codes, so that each
            // one writes.
            if (!ask(server, QByteArray(request).replace("CODE", i % 2 ? "13" : "12"))) {
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
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
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
                   R"({"jsonrpc": "2.0", "id": 1, "method": "registers.read"})", 100, 7)
        && measure(server, "serve: fields.set of one field, verified",
                   R"({"jsonrpc": "2.0", "id": 1, "method": "fields.set", "params": {"values": {"ChA_PLL_RDiv": CODE}}})",
                   50, 5);

    // The program, once its socket answers and its start's load is over.
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("zv4280tb.sock"));
    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedChannels);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    program.setProcessEnvironment(env);
    program.start(QStringLiteral(ZV_PROGRAM), {QStringLiteral("--listen"), path});
    program.waitForStarted();
    QLocalSocket socket;
    while (ok && program.state() == QProcess::Running && socket.state() != QLocalSocket::ConnectedState) {
        socket.connectToServer(path);
        if (!socket.waitForConnected(1000))
            QThread::msleep(20);
    }
    const bool programOk =
        ok
        && ask(socket, R"({"jsonrpc": "2.0", "id": 1, "method": "fields.get", "params": {"names": ["TS_MD"], "source": "gui", "wait": true}})")
        && measure(socket, "program: registers.read count 1",
                   R"({"jsonrpc": "2.0", "id": 1, "method": "registers.read", "params": {"first": 12, "count": 1}})",
                   1000, 7)
        && measure(socket, "program: fields.set of one field, verified",
                   R"({"jsonrpc": "2.0", "id": 1, "method": "fields.set", "params": {"values": {"ChA_PLL_RDiv": CODE}}})",
                   50, 5);
    socket.disconnectFromServer();
    program.terminate();
    program.waitForFinished();
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
    return ok && programOk ? 0 : 1;
}
