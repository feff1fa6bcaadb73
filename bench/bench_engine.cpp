// Measures the field engine on the real forms: the field catalogue's first
// use and its lookups, parsing object names, bit runs, building the main window (scan and binding), and pushing a whole
// image into all widgets as the end of a chip read does.

#include "bench_support.h"
#include "MainClass.h"
#include "catalogue.h"
#include "mapshow.h"
#include "part.h"
#include "resources_init.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QCheckBox>
#include <QComboBox>
#include <QSpinBox>

#include <cstdio>
#include <memory>
#include <random>

namespace {


template <class F>
double perCallNs(int count, F&& f)
{
    QElapsedTimer t;
    t.start();
    for (int i = 0; i < count; ++i)
        f(i);
    return double(t.nsecsElapsed()) / count;
}

void report(const char* what, double value, const char* unit)
{
    std::printf("%-48s %12.2f %s\n", what, value, unit);
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    zvInitResources();

    // First, while nothing has touched the catalogue: its one build.
    QElapsedTimer first;
    first.start();
    const Catalogue& catalogue = Catalogue::instance();
    report("Catalogue::instance(), first use", first.nsecsElapsed() / 1e3, "us");

    volatile quintptr sink = 0;
    const QVector<FieldEntry>& fields = catalogue.fields();
    report("Catalogue::field, by key", perCallNs(200000, [&](int i) {
               sink = sink + quintptr(catalogue.field(fields.at(i % fields.size()).record.name));
           }), "ns");
    report("Catalogue::fieldByObjectName", perCallNs(200000, [&](int i) {
               sink = sink + quintptr(catalogue.fieldByObjectName(fields.at(i % fields.size()).objectName));
           }), "ns");
    report("ParseObjName, one field name", perCallNs(200000, [&](int) {
               std::unique_ptr<part> p(mapshow::ParseObjName(QStringLiteral("ZV_ChA_PLL_RDiv_ZV4280v2_171_5")));
               sink = sink + quintptr(p->width);
           }), "ns");

    mapshow bare(QStringLiteral("ZV4280v2"), 291);
    report("getBrim, 23 bits over 3 registers", perCallNs(1000000, [&](int i) {
               sink = sink + bare.getBrim(137 + (i & 7), 23);
           }), "ns");
    report("setBrim, 23 bits over 3 registers", perCallNs(1000000, [&](int i) {
               bare.setBrim(137, 23, quint32(i));
           }), "ns");

    QElapsedTimer t;
    t.start();
    auto* window = new MainClass;
    report("MainClass construction (windows, scan, binding)", t.nsecsElapsed() / 1e6, "ms");
    while (window->worker) // the load of default.hex that every start runs
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    mapshow* map = window->firstMap();
    if (!map)
        return 1;
    report("fields bound", map->parts.size(), "");

    // A full read's push: random images, every field shown in key order,
    // then the spin boxes with a display fired.
    std::mt19937 random(4280);
    const int rounds = 20;
    double total = 0;
    for (int round = 0; round < rounds; ++round) {
        for (quint32 r = 0; r < map->registerCount; ++r)
            map->guiImage[r] = quint8(random());
        t.restart();
        for (auto it = map->parts.cbegin(); it != map->parts.cend(); ++it)
            map->setPartValue(it.key(), map->guiImage);
        for (auto it = window->outputs.cbegin(); it != window->outputs.cend(); ++it) {
            const part* p = map->parts.value(it.key());
            if (p && QLatin1String(p->widget->metaObject()->className()) == QLatin1String("QSpinBox"))
                emit static_cast<QSpinBox*>(p->widget)->valueChanged(int(map->getPartValue(it.key())));
        }
        total += t.nsecsElapsed() / 1e6;
    }
    report("push of a random image into all widgets", total / rounds, "ms");

    // One change of each editing widget, as a hand makes it: the box takes
    // another value and change_Value runs with its rules.
    int changes = 0;
    t.restart();
    for (int round = 0; round < 5; ++round) {
        for (const part* p : map->parts) {
            if (auto* spin = qobject_cast<QSpinBox*>(p->widget)) {
                spin->setValue(spin->value() == 1 ? 2 : 1);
            } else if (auto* combo = qobject_cast<QComboBox*>(p->widget)) {
                if (combo->count() < 2)
                    continue;
                combo->setCurrentIndex(combo->currentIndex() == 1 ? 0 : 1);
            } else if (auto* check = qobject_cast<QCheckBox*>(p->widget)) {
                check->setChecked(!check->isChecked());
            } else {
                continue;
            }
            ++changes;
        }
    }
    report("one widget change through change_Value, mean", t.nsecsElapsed() / 1e3 / changes, "us");
    report("peak resident memory", peakRssKb() / 1024.0, "MiB");
    delete window;
    return int(sink & 0);
}
