// The frames kept for the USB log.
#include "frame_log.h"

#include "frame_decoder.h"

void FrameLog::frame(qint64 msecs, bool out, const quint8* bytes, int length)
{
    QByteArray copy(reinterpret_cast<const char*>(bytes), length);
    QMutexLocker guard(&lock);
    Entry entry{++last, msecs, out, copy, out ? QByteArray() : lastRequest};
    if (out)
        lastRequest = copy;
    entries.push_back(std::move(entry));
    while (int(entries.size()) > capacity)
        entries.pop_front();
}

QVector<FrameLog::Entry> FrameLog::since(qint64 after) const
{
    QMutexLocker guard(&lock);
    // The numbers run without a gap up to the last one.
    const qint64 newer = qBound<qint64>(0, last - after, qint64(entries.size()));
    QVector<Entry> found;
    found.reserve(int(newer));
    for (auto it = entries.end() - newer; it != entries.end(); ++it)
        found.append(*it);
    return found;
}

void FrameLog::clear()
{
    QMutexLocker guard(&lock);
    entries.clear();
}

QString FrameLog::line(const Entry& entry)
{
    return FrameDecoder::line(entry.msecs, entry.out, entry.bytes, entry.request);
}
