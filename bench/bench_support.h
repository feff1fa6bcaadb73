#pragma once

// What the benchmarks share: the median of their runs and the process's peak
// memory.

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <vector>

inline double median(std::vector<double> values)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

// The peak resident memory of this process in KiB, -1 when unknown.
inline long peakRssKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    return -1;
}
