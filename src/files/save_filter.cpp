// The registers that a full save leaves out, by the kinds of their fields.
#include "save_filter.h"

#include "engine/catalogue.h"

#include <functional>

namespace {

// Per register: it holds at least one field, and `is` holds for all of them.
QVector<bool> registersWhereAll(const Catalogue& catalogue, const std::function<bool(const FieldEntry&)>& is)
{
    const int count = int(catalogue.registerCount());
    QVector<bool> any(count, false);
    QVector<bool> all(count, true);
    for (const FieldEntry& entry : catalogue.fields()) {
        const bool yes = is(entry);
        for (int r : registersOf(entry.record)) {
            if (r >= count)
                break;
            any[r] = true;
            all[r] = all.at(r) && yes;
        }
    }
    for (int r = 0; r < count; ++r)
        all[r] = all.at(r) && any.at(r);
    return all;
}

} // namespace

QVector<bool> SaveFilter::statusRegisters(const Catalogue& catalogue)
{
    return registersWhereAll(catalogue, [](const FieldEntry& field) {
        return field.kind == FieldKind::Bulb || field.kind == FieldKind::Readout;
    });
}

QVector<bool> SaveFilter::serviceRegisters(const Catalogue& catalogue)
{
    return registersWhereAll(catalogue, [](const FieldEntry& field) {
        static const QStringList windows = {QStringLiteral("GrGenServ"), QStringLiteral("GrAllSS"),
                                            QStringLiteral("GrSChA"),    QStringLiteral("GrSChB"),
                                            QStringLiteral("GrSChC"),    QStringLiteral("GrSChD")};
        return windows.contains(field.window);
    });
}

QVector<bool> SaveFilter::leftOut(const Catalogue& catalogue, bool saveStatus, bool saveService)
{
    QVector<bool> out(int(catalogue.registerCount()), false);
    const QVector<bool> status = saveStatus ? out : statusRegisters(catalogue);
    const QVector<bool> service = saveService ? out : serviceRegisters(catalogue);
    for (int r = 0; r < out.size(); ++r)
        out[r] = status.at(r) || service.at(r);
    return out;
}
