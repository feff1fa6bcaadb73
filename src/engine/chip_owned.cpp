// The registers and fields that only the chip writes, from the catalogue.
#include "chip_owned.h"

#include "catalogue.h"
#include "register_names.h"

#include <QRegularExpression>

namespace {

bool onlyShows(const FieldEntry& entry)
{
    return entry.kind == FieldKind::Bulb || entry.kind == FieldKind::Readout;
}

} // namespace

QVector<bool> ChipOwned::build(const Catalogue& catalogue)
{
    static const QRegularExpression chipWords(QStringLiteral("status|^Temp_|^Version"),
                                              QRegularExpression::CaseInsensitiveOption);
    const int count = int(catalogue.registerCount());
    QVector<bool> any(count, false), allShow(count, true), owned(count, false);
    for (const FieldEntry& entry : catalogue.fields())
        for (int r : registersOf(entry.record)) {
            if (r >= count)
                break;
            any[r] = true;
            allShow[r] = allShow.at(r) && onlyShows(entry);
        }
    for (int r = 0; r < count; ++r)
        owned[r] = any.at(r) && (allShow.at(r) || registerNames.value(r).contains(chipWords));
    return owned;
}

const QVector<bool>& ChipOwned::registers()
{
    static const QVector<bool> owned = build(Catalogue::instance());
    return owned;
}

QString ChipOwned::ownerOf(const FieldEntry& entry)
{
    for (int r : registersOf(entry.record))
        if (registers().value(r, false))
            return QStringLiteral("register %1, %2").arg(r).arg(registerNames.value(r));
    return QString();
}

bool ChipOwned::field(const FieldEntry& entry)
{
    return onlyShows(entry) || !ownerOf(entry).isEmpty();
}
