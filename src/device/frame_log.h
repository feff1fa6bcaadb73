// The last frames on the wire, kept for whoever shows them: each frame is
// stored as it passes (from any thread, a copy and no more), numbered, and
// fetched later by number. The oldest go when more than `capacity` arrive.
#pragma once

#include "usb_frame_observer.h"

#include <QByteArray>
#include <QMutex>
#include <QString>
#include <QVector>

#include <deque>

class FrameLog : public UsbFrameObserver
{
public:
    struct Entry
    {
        qint64 number = 0; // 1 for the first frame ever stored
        qint64 msecs = 0;
        bool out = false;
        QByteArray bytes;
        QByteArray request; // for a reply, the frame it answers
    };

    static constexpr int kCapacity = 10000;
    explicit FrameLog(int capacity = kCapacity) : capacity(capacity) {}

    void frame(qint64 msecs, bool out, const quint8* bytes, int length) override;

    // The frames kept that came after frame number `after`, oldest first.
    QVector<Entry> since(qint64 after) const;
    void clear();
    // The line of an entry, as FrameDecoder writes it.
    static QString line(const Entry& entry);

private:
    const int capacity;
    mutable QMutex lock;
    std::deque<Entry> entries;
    qint64 last = 0;
    QByteArray lastRequest;
};
