// A calibration table with its anchors, and the estimates between them.
#include "calibration_table.h"

CalibrationTable::CalibrationTable(const double* values, int size, const QVector<int>& knownCodes)
    : entries(values, values + size), anchors(size, false)
{
    for (int code : knownCodes)
        anchors[code] = true;
}

void CalibrationTable::measure(const QVector<QPair<int, double>>& measured)
{
    QVector<bool> fresh(entries.size(), false);
    for (const auto& m : measured) {
        entries[m.first] = m.second;
        anchors[m.first] = fresh[m.first] = true;
    }
    // The first and the last code are anchors in every built-in table.
    int below = 0;
    for (int above = 1; above < entries.size(); ++above) {
        if (!anchors.at(above))
            continue;
        if (fresh.at(below) || fresh.at(above)) {
            const double step = (entries.at(above) - entries.at(below)) / (above - below);
            for (int code = below + 1; code < above; ++code)
                entries[code] = entries.at(below) + step * (code - below);
        }
        below = above;
    }
}
