// Fields by name for zv4280ctl: kind, codes, and the words of the screens.
#include "ctl_field.h"

#include "comment_builder.h"
#include "mapshow.h"
#include "part.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

#include <algorithm>

CtlField::CtlField(mapshow& owner, const QString& name) : map(&owner)
{
    const QString chipWord = QLatin1Char('_') + owner.chipName;
    const QString key = name.endsWith(chipWord) ? name : name + chipWord;
    if (const part* p = owner.parts.value(key))
        *this = CtlField(owner, *p);
}

CtlField::CtlField(mapshow& owner, const part& record) : map(&owner), field(&record)
{
    const QObject* w = record.widget;
    if (qobject_cast<const QCheckBox*>(w))
        widgetKind = Kind::CheckBox;
    else if (qobject_cast<const QComboBox*>(w))
        widgetKind = Kind::ComboBox;
    else if (qobject_cast<const QSpinBox*>(w))
        widgetKind = Kind::SpinBox;
    else if (qobject_cast<const QLineEdit*>(w))
        widgetKind = Kind::LineEdit;
    else
        widgetKind = Kind::Label;
}

QString CtlField::name() const
{
    const QString chipWord = QLatin1Char('_') + field->chip;
    return field->name.endsWith(chipWord) ? field->name.left(field->name.size() - chipWord.size()) : field->name;
}

namespace {

// The words of each kind: for JSON, and for people.
struct KindNames
{
    CtlField::Kind kind;
    const char* key;
    const char* words;
};
const KindNames kKindNames[] = {
    {CtlField::Kind::CheckBox, "checkbox", "check box"}, {CtlField::Kind::ComboBox, "combobox", "combo box"},
    {CtlField::Kind::SpinBox, "spinbox", "spin box"},    {CtlField::Kind::Label, "label", "label"},
    {CtlField::Kind::LineEdit, "lineedit", "line edit"},
};

const KindNames& namesOf(CtlField::Kind kind)
{
    for (const KindNames& n : kKindNames)
        if (n.kind == kind)
            return n;
    return kKindNames[3];
}

} // namespace

QString CtlField::kindKey() const
{
    return QLatin1String(namesOf(widgetKind).key);
}

QString CtlField::kindWords() const
{
    return QLatin1String(namesOf(widgetKind).words);
}

bool CtlField::editable() const
{
    return widgetKind == Kind::CheckBox || widgetKind == Kind::ComboBox || widgetKind == Kind::SpinBox;
}

quint32 CtlField::lowest() const
{
    if (widgetKind == Kind::SpinBox)
        return quint32(qMax(0, static_cast<const QSpinBox*>(field->widget)->minimum()));
    return 0;
}

quint32 CtlField::highest() const
{
    switch (widgetKind) {
    case Kind::CheckBox:
        return 1;
    case Kind::ComboBox:
        return quint32(qMax(0, static_cast<const QComboBox*>(field->widget)->count() - 1));
    default:
        return field->width >= 32 ? 0xFFFFFFFFu : (1u << field->width) - 1;
    }
}

QString CtlField::allowed() const
{
    if (widgetKind == Kind::CheckBox)
        return QStringLiteral("0 or 1");
    const QString range = QStringLiteral("%1 to %2").arg(lowest()).arg(highest());
    if (widgetKind != Kind::ComboBox)
        return range;
    QStringList numbered;
    const QStringList list = items();
    for (int i = 0; i < list.size(); ++i)
        numbered.append(QStringLiteral("%1 %2").arg(i).arg(list.at(i)));
    return range + QStringLiteral(": ") + numbered.join(QStringLiteral(" | "));
}

QStringList CtlField::items() const
{
    QStringList list;
    if (const auto* box = qobject_cast<const QComboBox*>(field->widget))
        for (int i = 0; i < box->count(); ++i)
            list.append(box->itemText(i));
    return list;
}

QList<int> CtlField::registers() const
{
    QList<int> list;
    for (int s = 0; s < field->positions.size() && s < field->widths.size(); ++s) {
        const qint64 start = field->positions.at(s);
        for (qint64 r = start >> 3; r <= (start + qint64(field->widths.at(s)) - 1) >> 3; ++r)
            if (!list.contains(int(r)))
                list.append(int(r));
    }
    std::sort(list.begin(), list.end());
    return list;
}

quint32 CtlField::code() const
{
    const quint32 bits = map->fieldImageValue(*field, map->guiImage);
    return field->inverted ? (bits == 0 ? 1u : 0u) : bits;
}

void CtlField::setCode(quint32 value) const
{
    QObject* w = field->widget;
    switch (widgetKind) {
    case Kind::CheckBox:
        static_cast<QCheckBox*>(w)->setChecked(value != 0);
        break;
    case Kind::ComboBox:
        static_cast<QComboBox*>(w)->setCurrentIndex(int(value));
        break;
    case Kind::SpinBox:
        static_cast<QSpinBox*>(w)->setValue(int(value));
        break;
    default:
        break;
    }
}

QString CtlField::text() const
{
    return CommentBuilder::fieldText(*map, *field, field->position);
}
