// Settings files as lists of register writes and pauses.
#include "hex_entries.h"

#include "hex_format.h"
#include "hex_reader.h"

bool HexEntries::read(const QString& path, const QString& chipName, quint32 registerCount, QVector<Entry>* entries,
                      QString* error, QVector<OddLines::Line>* odd)
{
    QStringList lines;
    QString refusal;
    if (!HexReader::readLines(path, &lines, &refusal)) {
        *error = refusal.isEmpty() ? QStringLiteral("cannot read \"%1\"").arg(path) : refusal;
        return false;
    }
    entries->clear();
    for (int i = 0; i < lines.size(); ++i) {
        const QString& line = lines.at(i);
        switch (HexFormat::classify(line)) {
        case HexFormat::LineKind::Map:
            if (HexFormat::loadedMapName(line) != chipName) {
                *error = HexFormat::refusedLine(path, i + 1, line,
                                                QStringLiteral("the map \"%1\" is not this chip's; a saved file names it \"%2\"")
                                                    .arg(HexFormat::mapName(line), HexFormat::mapLine(chipName)));
                return false;
            }
            entries->append(Entry());
            break;
        case HexFormat::LineKind::Register: {
            const QString fault = HexFormat::numberFault(line, int(registerCount));
            if (!fault.isEmpty()) {
                *error = HexFormat::refusedLine(path, i + 1, line, fault);
                return false;
            }
            const auto r = HexFormat::readRegister(line);
            entries->append(r->number < 0 ? Entry() : Entry{r->number, r->value});
            break;
        }
        case HexFormat::LineKind::Other:
            break;
        }
    }
    const QVector<OddLines::Line> found = OddLines::find(lines, int(registerCount));
    if (odd)
        *odd = found;
    else if (!found.isEmpty()) {
        *error = QStringLiteral("\"%1\": %2").arg(path, OddLines::describe(found, 5));
        return false;
    }
    return true;
}

QByteArray HexEntries::image(const QVector<Entry>& entries, quint32 registerCount, QVector<bool>* present)
{
    QByteArray bytes(int(registerCount), 0);
    if (present)
        present->fill(false, int(registerCount));
    for (const Entry& e : entries) {
        if (e.isPause() || quint32(e.reg) >= registerCount)
            continue;
        bytes[e.reg] = char(e.value);
        if (present)
            (*present)[e.reg] = true;
    }
    return bytes;
}

QVector<HexEntries::Entry> HexEntries::ofImage(const QByteArray& image, int last)
{
    QVector<Entry> entries{Entry()};
    for (int r = 0; r <= last && r < image.size(); ++r)
        entries.append({r, quint8(image.at(r))});
    return entries;
}

QVector<HexEntries::Entry> HexEntries::changesFrom(const QVector<Entry>& entries, const QByteArray& base)
{
    QVector<Entry> kept;
    bool pausePending = false;
    for (const Entry& e : entries) {
        if (e.isPause()) {
            pausePending = true;
        } else if (e.reg >= base.size() || quint8(base.at(e.reg)) != e.value) {
            if (pausePending)
                kept.append(Entry());
            pausePending = false;
            kept.append(e);
        }
    }
    return kept;
}
