#include "mapshow.h"
#include "engine/field_kind.h"
#include "part.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QRadioButton>
#include <QSpinBox>

// Moving a field's value between its widget and an image. Widget classes are
// told apart by the class name of their meta-object, as the catalogue tells
// them.

namespace {

FieldKind kindOf(const QObject* w)
{
    return fieldKindOf(QLatin1String(w->metaObject()->className()));
}

quint32 invert(const part& p, quint32 value)
{
    return p.inverted ? (value == 0 ? 1u : 0u) : value;
}

} // namespace

quint32 mapshow::getPartValue(const QString& fieldKey)
{
    const part* p = parts.value(fieldKey);
    if (!p || !p->widget)
        return 0;
    QObject* w = p->widget;
    qint64 value = 0;
    switch (kindOf(w)) {
    case FieldKind::Check:
        value = static_cast<QAbstractButton*>(w)->isChecked() ? 1 : 0;
        break;
    case FieldKind::Combo:
        value = static_cast<QComboBox*>(w)->currentIndex();
        // A code for which the list has no item leaves the box without a
        // current item; the image keeps the code it has.
        if (value < 0)
            return fieldImageValue(*p, guiImage);
        break;
    case FieldKind::Spin: {
        auto* box = static_cast<QSpinBox*>(w);
        value = box->value();
        if (value < 0)
            value = 0;
        const qint64 limit = p->width >= 32 ? qint64(0xFFFFFFFFu) : (qint64(1) << p->width) - 1;
        if (value > limit) {
            value = limit;
            box->setValue(int(qMin<qint64>(limit, 2147483647)));
        }
        break;
    }
    case FieldKind::DoubleSpin:
        value = qint64(static_cast<QDoubleSpinBox*>(w)->value());
        break;
    case FieldKind::Bulb:
    case FieldKind::Readout:
    case FieldKind::Other:
        value = 0;
        break;
    }
    return invert(*p, quint32(value));
}

void mapshow::setPartValue(const QString& fieldKey, const quint8* image)
{
    const part* p = parts.value(fieldKey);
    if (!p || !p->widget || !image)
        return;
    const quint32 value = invert(*p, fieldImageValue(*p, image));
    QObject* w = p->widget;
    switch (kindOf(w)) {
    case FieldKind::Check:
        static_cast<QAbstractButton*>(w)->setChecked(value != 0);
        break;
    case FieldKind::Combo: {
        auto* box = static_cast<QComboBox*>(w);
        // A code the list has no item for leaves the box without a current
        // item, and the image keeps the code: it goes into guiImage first, so
        // that the change the box reports keeps this code and not an older one.
        if (int(value) >= box->count())
            writeField(*p, value);
        box->setCurrentIndex(int(value));
        break;
    }
    case FieldKind::Spin:
        static_cast<QSpinBox*>(w)->setValue(int(value));
        break;
    case FieldKind::DoubleSpin:
        static_cast<QDoubleSpinBox*>(w)->setValue(value);
        break;
    case FieldKind::Bulb: {
        auto* label = static_cast<QLabel*>(w);
        if (p->width < 2) {
            label->setPixmap(QPixmap(value ? QStringLiteral(":/Bulb-good.png") : QStringLiteral(":/Bulb-bad.png")));
            if (!label->isEnabled())
                label->setPixmap(QPixmap(QStringLiteral(":/Bulb-disabled.png")));
        } else {
            label->setText(QString::number(value));
        }
        break;
    }
    case FieldKind::Readout:
        static_cast<QLineEdit*>(w)->setText(QString::number(value));
        break;
    case FieldKind::Other:
        break;
    }
}

quint32 mapshow::applyPartToImage(const QString& fieldKey)
{
    const part* p = parts.value(fieldKey);
    if (!p)
        return 0;
    const quint32 result = getPartValue(fieldKey);
    writeField(*p, result);
    return result;
}
