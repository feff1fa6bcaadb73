// One calibration table of the chip: its entries by code, and which of them
// are anchors (known, or measured and loaded from a file). The other entries
// are estimates between the anchors, and the displays shown from them say so.
#pragma once

#include <QVector>

class CalibrationTable
{
public:
    CalibrationTable() = default;
    // The built-in table: its entries, and the codes known among them.
    CalibrationTable(const double* entries, int size, const QVector<int>& knownCodes);

    int size() const { return entries.size(); }
    // A code past the end reads the last entry.
    double value(quint32 code) const { return entries.at(clamp(code)); }
    bool estimated(quint32 code) const { return !anchors.at(clamp(code)); }

    // Measured entries taken in; then each estimate next to a measured
    // anchor lies on the straight line between its two neighbouring anchors,
    // and estimates between built-in anchors stay as they were.
    void measure(const QVector<QPair<int, double>>& measured);

private:
    int clamp(quint32 code) const { return int(qMin<quint32>(code, quint32(entries.size() - 1))); }

    QVector<double> entries;
    QVector<bool> anchors;
};
