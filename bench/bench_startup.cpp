// Measures the start of the program on a simulated board: from the start of
// a process to the main window shown with "default.hex" applied, and the
// memory the process holds then. The process is this program again, started
// with "child", which starts up as the tool does and reports when it is idle.

#include "bench_support.h"
#include "MainClass.h"
#include "resources_init.h"
#include "testbed.h"
#include "translation.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {


// What the tool's main() does, until the load of "default.hex" has ended.
int child(int argc, char* argv[])
{
    QApplication app(argc, argv);
    zvInitResources();
    installTranslation(app);
    MainClass window;
    window.show();
    while (window.running)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    QCoreApplication::processEvents(); // the window painted once
    std::printf("ready %ld\n", peakRssKb());
    std::fflush(stdout);
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (argc > 1 && QByteArray(argv[1]) == "child")
        return child(argc, argv);

    QCoreApplication app(argc, argv);
    if (!zvsim::Testbed::available()) {
        std::fprintf(stderr, "bench_startup: run it under umockdev-wrapper\n");
        return 1;
    }
    zvsim::Testbed bus;
    bus.addBoard();
    std::vector<double> times;
    long rss = 0;
    for (int run = 0; run < 15; ++run) {
        QProcess process;
        QElapsedTimer clock;
        clock.start();
        process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("child")});
        if (!process.waitForReadyRead(20000))
            return 1;
        times.push_back(clock.nsecsElapsed() / 1e6);
        rss = QByteArray(process.readAll()).trimmed().split(' ').value(1).toLong();
        process.waitForFinished(20000);
    }
    std::printf("%-48s %12.2f ms\n", "start-up to the window with default.hex, median", median(times));
    std::printf("%-48s %12.2f MiB\n", "peak resident memory after start-up", rss / 1024.0);
    return 0;
}
