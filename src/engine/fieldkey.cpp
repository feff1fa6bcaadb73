// Field names and register locations, QtCore only: the program and the
// catalogue's generator share them.
#include "part.h"

#include <QStringList>
#include <QVarLengthArray>

#include <algorithm>

// Field names are read from the end: [mark] width position chip words... "ZV".
namespace {

// A run of the name as QString::toUInt and toInt read it; a run of a few
// digits, as every form's names have, is read without a copy.
quint32 unsignedAt(const QString& name, int from, int to)
{
    quint32 value = 0;
    if (to - from < 1 || to - from > 9)
        return name.mid(from, to - from).toUInt(nullptr, 10);
    for (int i = from; i < to; ++i) {
        const ushort c = name.at(i).unicode();
        if (c < '0' || c > '9')
            return name.mid(from, to - from).toUInt(nullptr, 10);
        value = value * 10 + (c - '0');
    }
    return value;
}

qint32 signedAt(const QString& name, int from, int to)
{
    for (int i = from; i < to; ++i)
        if (name.at(i) < QLatin1Char('0') || name.at(i) > QLatin1Char('9'))
            return name.mid(from, to - from).toInt(nullptr, 10);
    return to - from >= 1 && to - from <= 9 ? qint32(unsignedAt(name, from, to)) : name.mid(from, to - from).toInt(nullptr, 10);
}

// Calls each(from, to) for every run of [from, to) between the marks,
// empty runs included, as QString::split makes them.
template <typename Each>
void runs(const QString& name, int from, int to, QChar mark, Each each)
{
    for (;;) {
        int cut = from;
        while (cut < to && name.at(cut) != mark)
            ++cut;
        each(from, cut);
        if (cut >= to)
            return;
        from = cut + 1;
    }
}

} // namespace

std::optional<part> parseFieldName(const QString& name)
{
    if (name.isEmpty())
        return std::nullopt;
    // Where each token between the underscores begins and ends.
    QVarLengthArray<int, 24> starts, ends;
    runs(name, 0, name.size(), QLatin1Char('_'), [&](int from, int to) {
        starts.append(from);
        ends.append(to);
    });
    if (ends[0] != 2 || !name.startsWith(QLatin1String("ZV")))
        return std::nullopt;
    auto tokenHas = [&](int token, QChar c) {
        for (int i = starts[token]; i < ends[token]; ++i)
            if (name.at(i) == c)
                return true;
        return false;
    };

    int cursor = starts.size() - 1;
    const bool inverted = tokenHas(cursor, QLatin1Char('I'));
    if (inverted)
        --cursor;
    // Behind "ZV" there must be at least a chip word, a position and a width;
    // the chip word is whatever stands two before the width.
    if (cursor < 3)
        return std::nullopt;

    std::optional<part> p(std::in_place);
    p->inverted = inverted;
    p->joined = tokenHas(cursor, QLatin1Char('p'));
    runs(name, starts[cursor], ends[cursor], QLatin1Char('p'), [&](int from, int to) {
        const quint32 w = unsignedAt(name, from, to);
        p->widths.append(w);
        // Summed as unsigned: an absurd width wraps instead of overflowing.
        p->width = static_cast<qint32>(static_cast<quint32>(p->width) + w);
    });
    bool first = true;
    runs(name, starts[cursor - 1], ends[cursor - 1], QLatin1Char('p'), [&](int from, int to) {
        if (first)
            p->position = signedAt(name, from, to);
        first = false;
        p->positions.append(unsignedAt(name, from, to));
    });

    const int chipIndex = cursor - 2;
    p->chip = name.mid(starts[chipIndex], ends[chipIndex] - starts[chipIndex]);
    p->name = name.mid(starts[1], ends[chipIndex] - starts[1]);
    return p;
}

QString buildToolTip(const part& p)
{
    QString text;
    const int segments = qMin(p.positions.size(), p.widths.size());
    for (int i = 0; i < segments; ++i) {
        if (p.widths.at(i) == 0)
            continue;
        const qint64 s = p.positions.at(i);
        const qint64 e = s + p.widths.at(i) - 1;
        qint64 c = s;
        while (c / 8 <= e / 8) {
            QString closing;
            qint64 low;
            if (c == e) {
                closing = QStringLiteral(">");
                low = e % 8;
            } else if (c / 8 == e / 8) {
                closing = QStringLiteral("-D") + QString::number(7 - e % 8) + QLatin1Char('>');
                low = c % 8;
            } else {
                low = c % 8;
                closing = low == 7 ? QStringLiteral(">") : QStringLiteral("-D0>");
            }
            text += QStringLiteral("Reg") + QString::number(c / 8) + QStringLiteral(" <D")
                    + QString::number(7 - low) + closing + QLatin1Char(',');
            c = c - c % 8 + 8;
        }
        text.chop(1);
    }
    return text;
}

QVector<int> registersOf(const part& field)
{
    QVector<int> list;
    for (int s = 0; s < field.positions.size() && s < field.widths.size(); ++s) {
        if (field.widths.at(s) == 0)
            continue;
        const qint64 start = field.positions.at(s);
        for (qint64 r = start >> 3; r <= (start + qint64(field.widths.at(s)) - 1) >> 3; ++r)
            list.append(int(r));
    }
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
    return list;
}
