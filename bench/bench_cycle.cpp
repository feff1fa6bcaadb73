// Measures the F11 cycle on a simulated board: the read of all registers
// (autoincrement, as the program reads) and the push of the new image into
// every widget and display, from the key to the idle program.

#include "bench_support.h"
#include "MainClass.h"
#include "mapshow.h"
#include "resources_init.h"
#include "service_block.h"
#include "usb_link.h"
#include "testbed.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <random>
#include <vector>

namespace {


bool waitIdle(MainClass& window)
{
    QElapsedTimer clock;
    clock.start();
    while (window.running && clock.elapsed() < 20000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return !window.running;
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    zvInitResources();
    if (!zvsim::Testbed::available()) {
        std::fprintf(stderr, "bench_cycle: run it under umockdev-wrapper\n");
        return 1;
    }
    zvsim::Testbed bus;
    const int board = bus.addBoard();
    MainClass window;
    if (!waitIdle(window))
        return 1;
    QAction* read = window.findChild<QAction*>(QStringLiteral("action_ICGUI"));
    // The USB log keeps every frame, closed or not; --no-log measures the
    // link with nobody listening.
    const bool noLog = argc > 1 && QByteArray(argv[1]) == "--no-log";
    if (noLog)
        window.service->usb->setFrameObserver(nullptr);

    std::mt19937 random(4280);
    std::vector<double> cycles;
    for (int run = 0; run < 25; ++run) {
        // New chip contents each time, so that the widgets really change.
        for (int r = 6; r < zvsim::SimulatedChip::kRegisters; ++r)
            bus.chip(board).setReg(r, quint8(random()));
        bus.chip(board).setReg(11, quint8(4 + random() % 250));
        QElapsedTimer clock;
        clock.start();
        read->setChecked(false);
        read->trigger();
        if (!waitIdle(window))
            return 1;
        cycles.push_back(clock.nsecsElapsed() / 1e6);
    }
    std::printf("%-48s %12.2f ms%s\n", "F11: read 291 registers and push, median of 25", median(cycles),
                noLog ? " (no USB log)" : "");
    std::printf("%-48s %12.2f ms\n", "F11: fastest of 25", *std::min_element(cycles.begin(), cycles.end()));
    return 0;
}
