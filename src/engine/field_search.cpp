// Matching fields by name, caption and location.
#include "field_search.h"

#include "catalogue.h"
#include "part.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

// How well a text matches a query; lower is better, -1 no match.
int closeness(const QString& text, const QString& query)
{
    if (text.isEmpty())
        return -1;
    if (text.compare(query, Qt::CaseInsensitive) == 0)
        return 0;
    if (text.startsWith(query, Qt::CaseInsensitive))
        return 1;
    return text.contains(query, Qt::CaseInsensitive) ? 2 : -1;
}

// A location query: register, and the bits D<high> to D<low> asked for
// (7 to 0 when no bit is named).
struct Location
{
    int reg = -1;
    int high = 7, low = 0;
};

Location parseLocation(const QString& query)
{
    static const QRegularExpression pattern(QStringLiteral("^reg\\s*(\\d{1,4})\\s*(?:<?\\s*d([0-7])(?:\\s*-\\s*d([0-7]))?\\s*>?)?$"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = pattern.match(query);
    Location where;
    if (!m.hasMatch())
        return where;
    where.reg = m.captured(1).toInt();
    if (!m.captured(2).isEmpty()) {
        where.high = m.captured(2).toInt();
        where.low = m.captured(3).isEmpty() ? where.high : m.captured(3).toInt();
        if (where.low > where.high)
            std::swap(where.low, where.high);
    }
    return where;
}

// The lowest bit position of `field` among the asked bits, -1 when it has
// none of them. Position p is bit D(7 - p % 8) of register p / 8.
qint64 firstBitIn(const part& field, const Location& where)
{
    const qint64 from = qint64(where.reg) * 8 + (7 - where.high), to = qint64(where.reg) * 8 + (7 - where.low);
    qint64 first = -1;
    for (int s = 0; s < qMin(field.positions.size(), field.widths.size()); ++s) {
        const qint64 start = field.positions.at(s), end = start + field.widths.at(s) - 1;
        if (end < from || start > to)
            continue;
        const qint64 hit = qMax(start, from);
        if (first < 0 || hit < first)
            first = hit;
    }
    return first;
}

} // namespace

QString FieldSearch::caption(const FieldEntry& entry)
{
    QString text = entry.caption.isEmpty() ? entry.checkText : entry.caption;
    return text.replace(QLatin1Char('\n'), QLatin1Char(' ')).simplified();
}

QString FieldSearch::shortName(const FieldEntry& entry)
{
    const QString chipWord = QLatin1Char('_') + entry.record.chip;
    const QString& name = entry.record.name;
    return name.endsWith(chipWord) ? name.left(name.size() - chipWord.size()) : name;
}

QVector<int> FieldSearch::match(const Catalogue& catalogue, const QString& text)
{
    const QString query = text.simplified();
    QVector<int> found;
    if (query.isEmpty())
        return found;
    const QVector<FieldEntry>& fields = catalogue.fields();
    QVector<QPair<qint64, int>> ranked; // rank, field

    const Location where = parseLocation(query);
    if (where.reg >= 0) {
        for (int f = 0; f < fields.size(); ++f) {
            const qint64 bit = firstBitIn(fields.at(f).record, where);
            if (bit >= 0)
                ranked.append({bit, f});
        }
    } else {
        const QStringList words = query.split(QLatin1Char(' '));
        for (int f = 0; f < fields.size(); ++f) {
            const FieldEntry& e = fields.at(f);
            const QString name = shortName(e), label = caption(e), location = buildToolTip(e.record);
            int best = -1;
            for (int c : {closeness(name, query), closeness(e.record.name, query), closeness(label, query),
                          closeness(location, query)})
                if (c >= 0 && (best < 0 || c < best))
                    best = c;
            if (best < 0 && words.size() > 1) {
                const QString all = name + QLatin1Char(' ') + label + QLatin1Char(' ') + location;
                best = 3;
                for (const QString& w : words)
                    if (!all.contains(w, Qt::CaseInsensitive))
                        best = -1;
            }
            if (best >= 0)
                ranked.append({best, f});
        }
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const QPair<qint64, int>& a, const QPair<qint64, int>& b) { return a.first < b.first; });
    found.reserve(ranked.size());
    for (const auto& r : qAsConst(ranked))
        found.append(r.second);
    return found;
}
