// The field catalogue over the tables that the generator made from the forms.
#include "catalogue.h"

#include "catalogue_tables.h"

#include <QHash>

#include <algorithm>

namespace {

// The index of the entry whose name is `name` in a vector sorted by name; -1
// when none.
template <class Vector, class Name>
int find(const Vector& sorted, const QString& name, Name nameOf)
{
    const auto it = std::lower_bound(sorted.cbegin(), sorted.cend(), name,
                                     [&](const auto& entry, const QString& n) { return nameOf(entry) < n; });
    return it != sorted.cend() && nameOf(*it) == name ? int(it - sorted.cbegin()) : -1;
}

} // namespace

const Catalogue& Catalogue::instance()
{
    static const Catalogue catalogue;
    return catalogue;
}

Catalogue::Catalogue()
{
    const CatalogueTables& t = catalogueTables;
    // Texts stand on their static data and equal lists are shared, so that
    // the entries cost few allocations.
    auto text = [&t](quint32 i) {
        return QtCompat::staticText(t.texts[i]);
    };
    QHash<quint32, QStringList> itemLists;
    QHash<quint32, QVector<quint32>> widths;

    fieldList.resize(int(t.fieldCount));
    for (quint32 i = 0; i < t.fieldCount; ++i) {
        const CatalogueTables::Field& row = t.fields[i];
        FieldEntry& f = fieldList[int(i)];
        f.objectName = text(row.objectName);
        part& r = f.record;
        r.name = text(row.key);
        r.chip = text(row.chip);
        r.inverted = row.inverted;
        r.joined = row.joined;
        const CatalogueTables::Segment* segment = t.segments + row.firstSegment;
        r.positions.reserve(int(row.segmentCount));
        for (quint32 s = 0; s < row.segmentCount; ++s) {
            r.positions.append(segment[s].position);
            r.width += qint32(segment[s].width);
        }
        r.position = qint32(r.positions.value(0));
        if (row.segmentCount == 1) {
            QVector<quint32>& one = widths[segment->width];
            if (one.isEmpty())
                one.append(segment->width);
            r.widths = one;
        } else {
            for (quint32 s = 0; s < row.segmentCount; ++s)
                r.widths.append(segment[s].width);
        }
        f.kind = FieldKind(row.kind);
        f.window = text(row.window);
        f.tab = text(row.tab);
        f.group = text(row.group);
        f.groupName = text(row.groupName);
        f.caption = text(row.caption);
        f.captionObject = text(row.captionObject);
        f.checkText = text(row.checkText);
        if (row.itemCount > 0) {
            QStringList& items = itemLists[row.firstItem];
            if (items.isEmpty()) {
                items.reserve(int(row.itemCount));
                for (quint32 k = row.firstItem; k < row.firstItem + row.itemCount; ++k)
                    items.append(text(t.items[k]));
            }
            f.items = items;
        }
        f.minimum = row.minimum;
        f.maximum = row.maximum;
        f.enabled = row.enabled;
        f.ancestorsEnabled = row.ancestorsEnabled;
        f.display = text(row.display);
    }
    byObjectName.resize(int(t.fieldCount));
    std::copy(t.fieldsByObjectName, t.fieldsByObjectName + t.fieldCount, byObjectName.begin());

    displayList.reserve(int(t.displayCount));
    for (quint32 i = 0; i < t.displayCount; ++i) {
        const CatalogueTables::Display& row = t.displays[i];
        displayList.append(DisplayEntry{text(row.objectName), text(row.key), text(row.window),
                            text(row.tab), text(row.group), text(row.text),
                            text(row.tooltipOwner), row.enabled, row.ancestorsEnabled});
    }
    captionList.reserve(int(t.captionCount));
    for (quint32 i = 0; i < t.captionCount; ++i) {
        const CatalogueTables::Caption& row = t.captions[i];
        captionList.append(CaptionEntry{text(row.objectName), text(row.text), text(row.window),
                            row.enabled});
    }
    chip = text(t.chip);
    registers = t.registerCount;
}

const FieldEntry* Catalogue::field(const QString& key) const
{
    const int i = indexOf(key);
    return i < 0 ? nullptr : &fieldList.at(i);
}

int Catalogue::indexOf(const QString& key) const
{
    return find(fieldList, key, [](const FieldEntry& f) -> const QString& { return f.record.name; });
}

const FieldEntry* Catalogue::fieldByObjectName(const QString& name) const
{
    const int i = find(byObjectName, name, [this](int f) -> const QString& { return fieldList.at(f).objectName; });
    return i < 0 ? nullptr : &fieldList.at(byObjectName.at(i));
}

const DisplayEntry* Catalogue::display(const QString& key) const
{
    const int i = find(displayList, key, [](const DisplayEntry& d) -> const QString& { return d.key; });
    return i < 0 ? nullptr : &displayList.at(i);
}

const CaptionEntry* Catalogue::caption(const QString& objectName) const
{
    const int i = find(captionList, objectName, [](const CaptionEntry& c) -> const QString& { return c.objectName; });
    return i < 0 ? nullptr : &captionList.at(i);
}
