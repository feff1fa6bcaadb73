// The comments of a save with comments, read from the live widgets.
#include "comment_builder.h"

#include "hex_format.h"
#include "mapshow.h"
#include "part.h"

#include <QVariant>

namespace {

// The last child of the widget's parent whose object name contains `name`.
const QObject* lastSibling(const QObject* widget, const QString& name)
{
    const QObject* found = nullptr;
    if (const QObject* parent = widget->parent())
        for (const QObject* child : parent->children())
            if (child->objectName().contains(name))
                found = child;
    return found;
}

QString textOf(const QObject* object)
{
    return object ? object->property("text").toString() : QString();
}

QString oneLine(QString text)
{
    return text.replace(QLatin1Char('\n'), QLatin1Char(' '));
}

} // namespace

QString CommentBuilder::fieldText(const mapshow& map, const part& field, qint64 start)
{
    const QObject* w = field.widget;
    if (!w)
        return QString();
    const QString cls = QString::fromLatin1(w->metaObject()->className());
    const QString key = field.name;
    // The caption: "ChA_PLL_LILabelG" for the field "ChA_PLL_LI_ZV4280v2".
    const QString labelName = key.left(key.lastIndexOf(QLatin1Char('_'))) + QLatin1String("LabelG");
    const QString colon = QStringLiteral(": ");

    if (cls.contains(QLatin1String("QCheckBox")))
        return textOf(w) + colon
               + (w->property("checked").toBool() ? QStringLiteral("enabled") : QStringLiteral("disabled"));
    const QObject* label = lastSibling(w, labelName);
    if (cls.contains(QLatin1String("QComboBox")))
        return oneLine(textOf(label)) + colon + w->property("currentText").toString();
    if (cls.contains(QLatin1String("QSpinBox"))) {
        QString text;
        // The phase correction of channel D's quadrature fields, registers 103 to 106.
        if (map.chipName.contains(QLatin1String("4280")) && start >= 824 && start <= 855)
            text = QStringLiteral("IQ phase correction ");
        if (!label)
            return text;
        text += oneLine(textOf(label)) + colon;
        if (const QObject* display = lastSibling(w, key + QLatin1String("_Expression")))
            return text + oneLine(textOf(display)) + QLatin1Char(' ');
        return text + QLatin1Char(' ') + QString::number(w->property("value").toInt());
    }
    if (cls.contains(QLatin1String("QLineEdit")))
        return oneLine(textOf(label)) + colon + textOf(w);
    if (cls.contains(QLatin1String("QLabel"))) {
        // A bulb shows a picture and no text: its bit says what it shows.
        const QString own = textOf(w);
        QString text = textOf(label) + colon + own;
        if (own.isEmpty())
            text += QString::number(map.getBit(map.guiImage, qint32(start)));
        return text;
    }
    return QString();
}

// Fields go in key order. A field stands in the comment of every register
// that it touches, once per range; a separator comes first when the comment
// of the range's first register already holds text.
QStringList CommentBuilder::build(const mapshow& map, bool changesOnly)
{
    const qint64 count = map.registerCount;
    QStringList comments;
    comments.reserve(int(count));
    for (qint64 r = 0; r < count; ++r)
        comments.append(QString());
    const QString separator = HexFormat::commentSeparator();

    for (const part* field : map.parts) {
        const int ranges = qMin(field->positions.size(), field->widths.size());
        if (changesOnly) {
            bool changed = false;
            for (int i = 0; i < ranges; ++i)
                changed = changed
                          || map.isBrimChanged(qint32(field->positions.at(i)), qint32(field->widths.at(i)));
            if (!changed)
                continue;
        }
        for (int i = 0; i < ranges; ++i) {
            const qint64 start = field->positions.at(i);
            const qint64 first = start >> 3;
            const qint64 last = (start + qint64(field->widths.at(i)) - 1) >> 3;
            if (last >= count)
                continue;
            const QString text = fieldText(map, *field, start);
            for (qint64 t = last; t >= first; --t) {
                if (!comments.at(int(first)).isEmpty())
                    comments[int(t)] += separator;
                comments[int(t)] += text;
            }
        }
    }
    return comments;
}
