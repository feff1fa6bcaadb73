// What a frame on the wire means, in words: read or write, single, block
// (triples) or autoincrement, the registers and the values; and the one line
// a frame is logged as, in the GUI's USB log and by zv4280ctl --trace.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

class FrameDecoder
{
public:
    // A reply has the layout of its request, so it is read along with the
    // request it answers (its addresses and direction); without one it is
    // read on its own.
    static QString meaning(const QByteArray& frame, const QByteArray& request = QByteArray());
    // The registers the frame reads or writes.
    static QVector<int> registers(const QByteArray& frame, const QByteArray& request = QByteArray());
    // "14:03:07.219 out 15 03 81 05 00  read reg 261": the local time, the
    // direction ("out" to the board, "in" from it), the bytes, the meaning.
    static QString line(qint64 msecs, bool out, const QByteArray& frame, const QByteArray& request = QByteArray());
};
