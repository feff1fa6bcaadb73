// Reading the register frames back into words.
#include "frame_decoder.h"

#include <QDateTime>

namespace {

constexpr quint8 kFrameType = 0x15;
constexpr quint8 kReadMark = 0x80;
constexpr quint8 kAutoMark = 0x40;

// How a frame is laid out, taken from the request when a reply is read.
struct Layout
{
    bool valid = false;
    bool autoincrement = false;
    bool read = false;
    QVector<int> registers;
};

quint8 at(const QByteArray& bytes, int i)
{
    return quint8(bytes.at(i));
}

int address(quint8 high, quint8 low)
{
    return ((high & ~(kReadMark | kAutoMark)) << 8) | low;
}

Layout layoutOf(const QByteArray& frame, const QByteArray& request)
{
    const QByteArray& head = request.size() == frame.size() ? request : frame;
    Layout layout;
    if (head.size() < 2 || at(head, 0) != kFrameType)
        return layout;
    layout.valid = true;
    if (head.size() < 4)
        return layout; // the empty frame that ends a block
    layout.autoincrement = at(head, 2) & kAutoMark;
    layout.read = at(head, 2) & kReadMark;
    if (layout.autoincrement) {
        const int start = address(at(head, 2), at(head, 3));
        for (int i = 4; i < head.size(); ++i)
            layout.registers.append(start + i - 4);
    } else {
        for (int i = 2; i + 2 < head.size(); i += 3)
            layout.registers.append(address(at(head, i), at(head, i + 1)));
    }
    return layout;
}

// "5F"; a value is written "0x5F".
QString twoDigits(quint8 value)
{
    return QString::number(value, 16).rightJustified(2, QLatin1Char('0')).toUpper();
}

} // namespace

QVector<int> FrameDecoder::registers(const QByteArray& frame, const QByteArray& request)
{
    return layoutOf(frame, request).registers;
}

QString FrameDecoder::meaning(const QByteArray& frame, const QByteArray& request)
{
    const Layout layout = layoutOf(frame, request);
    if (!layout.valid)
        return QStringLiteral("not a register frame");
    QString text;
    const bool reply = request.size() == frame.size();
    // A read request carries no values; its reply and every write do.
    const bool values = !layout.read || reply;
    const QString direction = layout.read ? QStringLiteral("read") : QStringLiteral("write");
    const QVector<int>& regs = layout.registers;
    if (regs.isEmpty()) {
        text = QStringLiteral("empty frame, end of block");
    } else if (layout.autoincrement) {
        text = QStringLiteral("autoincrement %1 reg %2-%3").arg(direction).arg(regs.first()).arg(regs.last());
        if (values) {
            text += QLatin1Char(':');
            for (int i = 4; i < frame.size(); ++i)
                text += QLatin1Char(' ') + twoDigits(at(frame, i));
        }
    } else if (regs.size() == 1) {
        text = QStringLiteral("%1 reg %2").arg(direction).arg(regs.first());
        if (values)
            text += QStringLiteral(" = 0x") + twoDigits(at(frame, 4));
    } else {
        text = QStringLiteral("block %1 reg").arg(direction);
        for (int k = 0; k < regs.size(); ++k) {
            text += QLatin1Char(' ') + QString::number(regs.at(k));
            if (values)
                text += QStringLiteral("=0x") + twoDigits(at(frame, 4 + 3 * k));
        }
    }
    const int stated = at(frame, 1);
    if (stated != frame.size() - 2)
        text += QStringLiteral(" (length byte %1, %2 bytes follow)").arg(stated).arg(frame.size() - 2);
    return text;
}

QString FrameDecoder::line(qint64 msecs, bool out, const QByteArray& frame, const QByteArray& request)
{
    const QString time = QDateTime::fromMSecsSinceEpoch(msecs).toString(QStringLiteral("hh:mm:ss.zzz"));
    return QStringLiteral("%1 %2 %3  %4")
        .arg(time, out ? QStringLiteral("out") : QStringLiteral("in "),
             QString::fromLatin1(frame.toHex(' ').toUpper()), meaning(frame, out ? QByteArray() : request));
}
