// The registers that a full save leaves out, by the kinds of their fields.
#include "save_filter.h"

#include "mapshow.h"
#include "part.h"

#include <functional>

namespace {

// Per register: it holds at least one field, and `is` holds for all of them.
QVector<bool> registersWhereAll(const mapshow& map, const std::function<bool(const part&)>& is)
{
    const int count = int(map.registerCount);
    QVector<bool> any(count, false);
    QVector<bool> all(count, true);
    for (const part* field : map.parts) {
        const bool yes = is(*field);
        const int ranges = qMin(field->positions.size(), field->widths.size());
        for (int i = 0; i < ranges; ++i) {
            if (field->widths.at(i) == 0)
                continue;
            const qint64 first = qint64(field->positions.at(i)) >> 3;
            const qint64 last = (qint64(field->positions.at(i)) + field->widths.at(i) - 1) >> 3;
            for (qint64 r = first; r <= last && r < count; ++r) {
                any[int(r)] = true;
                all[int(r)] = all.at(int(r)) && yes;
            }
        }
    }
    for (int r = 0; r < count; ++r)
        all[r] = all.at(r) && any.at(r);
    return all;
}

} // namespace

QVector<bool> SaveFilter::statusRegisters(const mapshow& map)
{
    return registersWhereAll(map, [](const part& field) {
        if (!field.widget)
            return false;
        const QString cls = QString::fromLatin1(field.widget->metaObject()->className());
        return cls.contains(QLatin1String("QLabel")) || cls.contains(QLatin1String("QLineEdit"));
    });
}

QVector<bool> SaveFilter::serviceRegisters(const mapshow& map)
{
    return registersWhereAll(map, [](const part& field) {
        static const QStringList windows = {QStringLiteral("GrGenServ"), QStringLiteral("GrAllSS"),
                                            QStringLiteral("GrSChA"),    QStringLiteral("GrSChB"),
                                            QStringLiteral("GrSChC"),    QStringLiteral("GrSChD")};
        const QObject* top = field.widget;
        while (top && top->parent())
            top = top->parent();
        return top && windows.contains(top->objectName());
    });
}

QVector<bool> SaveFilter::leftOut(const mapshow& map, bool saveStatus, bool saveService)
{
    QVector<bool> out(int(map.registerCount), false);
    const QVector<bool> status = saveStatus ? out : statusRegisters(map);
    const QVector<bool> service = saveService ? out : serviceRegisters(map);
    for (int r = 0; r < out.size(); ++r)
        out[r] = status.at(r) || service.at(r);
    return out;
}
