// Measures the map window offscreen: repainting it whole after a chip read
// (new images, old copies dropped, one refresh, a grab of the window), and
// resizing it (layout and the window's own repaint). Medians of many runs,
// in wall time and in the thread's processor time. An argument sets the
// number of runs (few, for a profiler).

#include "bench_support.h"
#include "mapshow.h"
#include "resources_init.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPixmap>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>
#include <vector>

namespace {

double threadMs()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}


// Runs `step` `runs` times and prints the median wall and processor times.
template <class F>
void measure(const QString& what, int runs, F&& step)
{
    std::vector<double> wall, processor;
    QElapsedTimer t;
    for (int i = 0; i < runs; ++i) {
        const double start = threadMs();
        t.start();
        step(i);
        wall.push_back(t.nsecsElapsed() / 1e6);
        processor.push_back(threadMs() - start);
        QApplication::sendPostedEvents(); // what the step left to the event loop
    }
    std::printf("%-52s %9.2f ms wall %9.2f ms cpu\n", qPrintable(what), median(wall), median(processor));
}

// A read as the worker does it: the old copy of guiImage is dropped, the
// chip's bytes are read, the old copy of icImage is dropped, and both images
// take the bytes.
void read(mapshow& map, std::mt19937& random)
{
    map.dropOldGUI();
    std::vector<quint8> chip(map.registerCount);
    for (quint8& byte : chip)
        byte = quint8(random());
    map.dropOldIC();
    std::copy(chip.begin(), chip.end(), map.icImage);
    std::copy(chip.begin(), chip.end(), map.guiImage);
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    zvInitResources();
    std::mt19937 random(4280);
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 101;

    for (const QSize size : {QSize(743, 546), QSize(1920, 1050)}) {
        mapshow map(QStringLiteral("ZV4280v2"), 291);
        map.resize(size);
        map.show();
        QApplication::processEvents();
        const QString window = QStringLiteral(", window %1x%2").arg(size.width()).arg(size.height());
        measure("repaint after a read" + window, runs, [&](int) {
            read(map, random);
            map.refreshRegisterView();
            if (map.grab().isNull())
                std::abort();
        });
        measure("resize by 10 pixels" + window, runs, [&](int i) {
            map.resize(size.width() - (i % 2) * 10, size.height());
            QApplication::sendPostedEvents();
        });
        measure("resize by one register column" + window, runs, [&](int i) {
            map.resize(size.width() - (i % 2) * 150, size.height());
            QApplication::sendPostedEvents();
        });
    }
    return 0;
}
