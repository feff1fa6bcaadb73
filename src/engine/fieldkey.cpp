// Field names and register locations, QtCore only: the program and the
// catalogue's generator share them.
#include "part.h"

#include <QStringList>

#include <algorithm>

// Field names are read from the end: [mark] width position chip words... "ZV".
std::optional<part> parseFieldName(const QString& name)
{
    if (name.isEmpty())
        return std::nullopt;
    const QStringList tokens = name.split(QLatin1Char('_'));
    if (tokens.first() != QLatin1String("ZV"))
        return std::nullopt;

    int cursor = tokens.size() - 1;
    const bool inverted = tokens.at(cursor).contains(QLatin1Char('I'));
    if (inverted)
        --cursor;
    // Behind "ZV" there must be at least a chip word, a position and a width;
    // the chip word is whatever stands two before the width.
    if (cursor < 3)
        return std::nullopt;

    std::optional<part> p(std::in_place);
    p->inverted = inverted;
    const QString& widthToken = tokens.at(cursor);
    p->joined = widthToken.contains(QLatin1Char('p'));
    const QStringList widthPieces = widthToken.split(QLatin1Char('p'));
    for (const QString& piece : widthPieces) {
        const quint32 w = piece.toUInt(nullptr, 10);
        p->widths.append(w);
        // Summed as unsigned: an absurd width wraps instead of overflowing.
        p->width = static_cast<qint32>(static_cast<quint32>(p->width) + w);
    }
    const QStringList positionPieces = tokens.at(cursor - 1).split(QLatin1Char('p'));
    p->position = positionPieces.first().toInt(nullptr, 10);
    for (const QString& piece : positionPieces)
        p->positions.append(piece.toUInt(nullptr, 10));

    const int chipIndex = cursor - 2;
    p->chip = tokens.at(chipIndex);
    p->name = tokens.mid(1, chipIndex).join(QLatin1Char('_'));
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
