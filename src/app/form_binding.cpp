// The forms' widgets following the engine's form model.
#include "form_binding.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QSignalBlocker>
#include <QSpinBox>

FormBinding::FormBinding(FormModel& m, const QHash<QString, QWidget*>& objects)
    : model(m), byName(objects), fieldWidgets(m.fieldCount(), nullptr)
{
    for (int f = 0; f < model.fieldCount(); ++f)
        fieldWidgets[f] = byName.value(model.entry(f).objectName);
    model.addObserver(this);
}

FormBinding::~FormBinding()
{
    model.removeObserver(this);
}

qint64 FormBinding::valueOf(const QObject* w)
{
    if (const auto* check = qobject_cast<const QAbstractButton*>(w))
        return check->isChecked() ? 1 : 0;
    if (const auto* combo = qobject_cast<const QComboBox*>(w))
        return combo->currentIndex();
    if (const auto* spin = qobject_cast<const QSpinBox*>(w))
        return spin->value();
    return 0;
}

void FormBinding::showAll()
{
    for (int f = 0; f < model.fieldCount(); ++f) {
        QWidget* w = fieldWidgets.at(f);
        if (!w)
            continue;
        const FieldEntry& e = model.entry(f);
        const QSignalBlocker hold(w);
        if (auto* spin = qobject_cast<QSpinBox*>(w))
            spin->setMinimum(model.minimum(f));
        if (auto* combo = qobject_cast<QComboBox*>(w)) {
            const QStringList items = model.items(f);
            for (int i = 0; i < items.size() && i < combo->count(); ++i)
                combo->setItemText(i, items.at(i));
        }
        valueChanged(f, model.widgetValue(f));
        w->setEnabled(model.ownEnabled(e.objectName));
        if (model.bulb(f) != Bulb::Unset)
            bulbChanged(f, model.bulb(f));
    }
    for (const DisplayEntry& d : model.catalogue().displays())
        if (QWidget* w = byName.value(d.objectName)) {
            w->setEnabled(model.ownEnabled(d.objectName));
            textChanged(d.objectName, model.text(d.objectName));
            if (model.estimated(d.objectName))
                estimatedChanged(d.objectName, true);
        }
    for (const CaptionEntry& c : model.catalogue().captions())
        if (QWidget* w = byName.value(c.objectName))
            w->setEnabled(model.ownEnabled(c.objectName));
}

void FormBinding::valueChanged(int field, qint64 value)
{
    QWidget* w = fieldWidgets.value(field);
    if (!w)
        return;
    const QSignalBlocker hold(w);
    if (auto* check = qobject_cast<QAbstractButton*>(w))
        check->setChecked(value != 0);
    else if (auto* combo = qobject_cast<QComboBox*>(w))
        combo->setCurrentIndex(int(value));
    else if (auto* spin = qobject_cast<QSpinBox*>(w))
        spin->setValue(int(value));
}

void FormBinding::enabledChanged(const QString& objectName, bool enabled)
{
    if (QWidget* w = byName.value(objectName))
        w->setEnabled(enabled);
}

void FormBinding::textChanged(const QString& objectName, const QString& text)
{
    QWidget* w = byName.value(objectName);
    if (auto* edit = qobject_cast<QLineEdit*>(w))
        edit->setText(text);
    else if (auto* label = qobject_cast<QLabel*>(w))
        label->setText(text);
}

void FormBinding::estimatedChanged(const QString& objectName, bool estimated)
{
    QWidget* w = byName.value(objectName);
    if (!w)
        return;
    // A font set, even the same one, sends a change to the widget and its
    // children, which costs a combo box its popup: only a change is set.
    if (w->font().italic() != estimated) {
        QFont font = w->font();
        font.setItalic(estimated);
        w->setFont(font);
    }
    if (estimated) {
        if (!plainToolTips.contains(objectName))
            plainToolTips.insert(objectName, w->toolTip());
        w->setToolTip(QStringLiteral("estimated: no measured calibration for this code"));
    } else {
        w->setToolTip(plainToolTips.take(objectName));
    }
}

void FormBinding::bulbChanged(int field, Bulb bulb)
{
    auto* label = qobject_cast<QLabel*>(fieldWidgets.value(field));
    if (!label)
        return;
    switch (bulb) {
    case Bulb::Good: label->setPixmap(QPixmap(QStringLiteral(":/Bulb-good.png"))); break;
    case Bulb::Bad: label->setPixmap(QPixmap(QStringLiteral(":/Bulb-bad.png"))); break;
    case Bulb::Disabled: label->setPixmap(QPixmap(QStringLiteral(":/Bulb-disabled.png"))); break;
    case Bulb::Unset: break;
    }
}

void FormBinding::itemTextChanged(int field, int index, const QString& text)
{
    if (auto* combo = qobject_cast<QComboBox*>(fieldWidgets.value(field)))
        combo->setItemText(index, text);
}

void FormBinding::minimumChanged(int field, int minimum)
{
    if (auto* spin = qobject_cast<QSpinBox*>(fieldWidgets.value(field))) {
        const QSignalBlocker hold(spin);
        spin->setMinimum(minimum);
    }
}
