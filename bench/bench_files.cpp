// Measures the hex files on the real forms: a save of the GUI with comments
// (comment building, text, writing a file) as F6 does it, and the reading
// side of F7 on that file (lines, register parsing, filling the images).
// Medians over repeated runs.

#include "bench_support.h"
#include "MainClass.h"
#include "gui_save.h"
#include "hex_format.h"
#include "hex_reader.h"
#include "hex_writer.h"
#include "mapshow.h"
#include "part.h"
#include "resources_init.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMap>
#include <QSpinBox>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <random>
#include <vector>

namespace {


void report(const char* what, double value, const char* unit)
{
    std::printf("%-52s %12.3f %s\n", what, value, unit);
}

double ms(const QElapsedTimer& t)
{
    return t.nsecsElapsed() / 1e6;
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    zvInitResources();

    auto* window = new MainClass;
    mapshow* map = window->firstMap();
    QTemporaryDir dir;
    if (!map || !dir.isValid())
        return 1;

    // A random chip state in every widget, displays filled, as after a read.
    std::mt19937 random(4280);
    for (quint32 r = 0; r < map->registerCount; ++r)
        map->guiImage[r] = quint8(random());
    for (auto it = map->parts.cbegin(); it != map->parts.cend(); ++it)
        map->setPartValue(it.key(), map->guiImage);
    for (auto it = window->outputs.cbegin(); it != window->outputs.cend(); ++it) {
        const part* p = map->parts.value(it.key());
        if (p && QLatin1String(p->widget->metaObject()->className()) == QLatin1String("QSpinBox"))
            emit static_cast<QSpinBox*>(p->widget)->valueChanged(int(map->getPartValue(it.key())));
    }

    const QMap<QString, int> settings = {{QStringLiteral("ChangesOnly"), 0}, {QStringLiteral("HexComment"), 1}};
    const QString file = dir.filePath(QStringLiteral("bench.hex"));
    const int runs = 41;
    std::vector<double> take, text, write, save, read;
    QString saved;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer all, t;
        all.start();
        t.start();
        const GuiSave s = GuiSave::take(*map, settings);
        take.push_back(ms(t));
        t.restart();
        saved = HexWriter::guiText(s);
        text.push_back(ms(t));
        t.restart();
        if (!HexWriter::writeFile(file, saved, false))
            return 1;
        write.push_back(ms(t));
        save.push_back(ms(all));
    }

    // The reading side of F7: every line, register lines parsed, later values
    // replacing earlier ones, then copied into guiImage and cfgImage.
    int registersRead = 0;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer t;
        t.start();
        QStringList lines;
        QString refusal;
        if (!HexReader::readLines(file, &lines, &refusal))
            return 1;
        QMap<qint32, quint8> values;
        for (const QString& line : qAsConst(lines))
            if (HexFormat::classify(line) == HexFormat::LineKind::Register)
                if (const auto r = HexFormat::readRegister(line))
                    values[r->number] = r->value;
        std::vector<quint8> buffer(map->registerCount, 0);
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            if (quint32(it.key()) < map->registerCount)
                buffer[size_t(it.key())] = map->guiImage[it.key()] = it.value();
        std::copy(buffer.begin(), buffer.end(), map->cfgImage);
        read.push_back(ms(t));
        registersRead = values.size();
    }

    std::printf("medians of %d runs; file of %d bytes, %d lines, %d registers\n", runs, int(saved.toUtf8().size()),
                int(saved.count(QLatin1Char('\n'))), registersRead);
    report("F6 with comments, whole (take + text + write)", median(save), "ms");
    report("  comments, images and filters from the widgets", median(take), "ms");
    report("  text of the file", median(text), "ms");
    report("  writing the file (replaced whole)", median(write), "ms");
    report("F7 reading side (lines, parsing, images)", median(read), "ms");
    delete window;
    return 0;
}
