// Fields by name, caption or register.
#include "field_search.h"

#include "catalogue.h"

QVector<int> FieldSearch::match(const Catalogue& catalogue, const QString& text)
{
    const QString word = text.trimmed();
    QVector<int> found;
    const QVector<FieldEntry>& fields = catalogue.fields();
    for (int i = 0; i < fields.size(); ++i) {
        const FieldEntry& f = fields.at(i);
        bool hit = word.isEmpty() || f.record.name.contains(word, Qt::CaseInsensitive)
                   || f.caption.contains(word, Qt::CaseInsensitive);
        for (int r : registersOf(f.record))
            hit = hit || QStringLiteral("Reg%1").arg(r).compare(word, Qt::CaseInsensitive) == 0;
        if (hit)
            found.append(i);
    }
    return found;
}
