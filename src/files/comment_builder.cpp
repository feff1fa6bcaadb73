// The comments of a save with comments, read from the form model.
#include "comment_builder.h"

#include "engine/form_model.h"
#include "engine/register_images.h"
#include "hex_format.h"

namespace {

QString oneLine(QString text)
{
    return text.replace(QLatin1Char('\n'), QLatin1Char(' '));
}

} // namespace

QString CommentBuilder::fieldText(const FormModel& model, int field, qint64 start)
{
    const FieldEntry& e = model.entry(field);
    const QString colon = QStringLiteral(": ");
    switch (e.kind) {
    case FieldKind::Check:
        return e.checkText + colon + (model.widgetValue(field) ? QStringLiteral("enabled") : QStringLiteral("disabled"));
    case FieldKind::Combo:
        return oneLine(e.caption) + colon + model.currentText(field);
    case FieldKind::Spin: {
        QString text;
        // The phase correction of channel D's quadrature fields, registers 103 to 106.
        if (model.catalogue().chipName().contains(QLatin1String("4280")) && start >= 824 && start <= 855)
            text = QStringLiteral("IQ phase correction ");
        if (e.captionObject.isEmpty())
            return text;
        text += oneLine(e.caption) + colon;
        if (!e.display.isEmpty())
            return text + oneLine(model.text(e.display)) + QLatin1Char(' ');
        return text + QLatin1Char(' ') + QString::number(model.widgetValue(field));
    }
    case FieldKind::Readout:
        return oneLine(e.caption) + colon + model.text(e.objectName);
    case FieldKind::Bulb: {
        // A bulb shows a picture and no text: its bit says what it shows.
        const QString own = model.text(e.objectName);
        QString text = e.caption + colon + own;
        if (own.isEmpty())
            text += QString::number(RegisterImages::getBit(model.images().guiImage, qint32(start)));
        return text;
    }
    case FieldKind::DoubleSpin:
    case FieldKind::Other:
        break;
    }
    return QString();
}

// Fields go in key order. A field stands in the comment of every register
// that it touches, once per range; a separator comes first when the comment
// of the range's first register already holds text.
QStringList CommentBuilder::build(const FormModel& model, bool changesOnly)
{
    const qint64 count = model.images().registerCount;
    QStringList comments;
    comments.reserve(int(count));
    for (qint64 r = 0; r < count; ++r)
        comments.append(QString());
    const QString separator = HexFormat::commentSeparator();

    for (int f = 0; f < model.fieldCount(); ++f) {
        const part& field = model.entry(f).record;
        if (changesOnly && !model.images().isFieldChanged(field))
            continue;
        const int ranges = qMin(field.positions.size(), field.widths.size());
        for (int i = 0; i < ranges; ++i) {
            const qint64 start = field.positions.at(i);
            const qint64 first = start >> 3;
            const qint64 last = (start + qint64(field.widths.at(i)) - 1) >> 3;
            if (last >= count)
                continue;
            const QString text = fieldText(model, f, start);
            for (qint64 t = last; t >= first; --t) {
                if (!comments.at(int(first)).isEmpty())
                    comments[int(t)] += separator;
                comments[int(t)] += text;
            }
        }
    }
    return comments;
}
