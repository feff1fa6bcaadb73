// Finding the lines of a settings file that are no plain lines.
#include "odd_lines.h"

#include "hex_format.h"

namespace {

bool plain(const QString& line, int registerCount)
{
    switch (HexFormat::classify(line)) {
    case HexFormat::LineKind::Map:
        return true;
    case HexFormat::LineKind::Other:
        return line.isEmpty() || line.startsWith(QLatin1String("//"));
    case HexFormat::LineKind::Register:
        break;
    }
    if (!HexFormat::chipLineFault(line, registerCount).isEmpty())
        return false;
    // Behind the number and the value only a comment may stand.
    const QStringList pieces = HexFormat::readerText(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    return pieces.size() < 3 || pieces.at(2).startsWith(QLatin1String("//"));
}

} // namespace

QVector<OddLines::Line> OddLines::find(const QStringList& lines, int registerCount)
{
    QVector<Line> odd;
    for (int i = 0; i < lines.size(); ++i)
        if (!plain(lines.at(i), registerCount))
            odd.append({i + 1, lines.at(i)});
    return odd;
}

QString OddLines::describe(const QVector<Line>& odd, int shown)
{
    QStringList parts;
    for (int i = 0; i < odd.size() && i < shown; ++i)
        parts.append(QStringLiteral("line %1 \"%2\"").arg(odd.at(i).number).arg(odd.at(i).text));
    const QString count = odd.size() == 1 ? QStringLiteral("1 line is") : QStringLiteral("%1 lines are").arg(odd.size());
    QString text = count + QStringLiteral(" no plain register line: ") + parts.join(QStringLiteral(", "));
    if (odd.size() > shown)
        text += QStringLiteral(" and %1 more").arg(odd.size() - shown);
    return text;
}
