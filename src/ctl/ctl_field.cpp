// Fields by name for zv4280ctl: kind, codes, and the words of the screens.
#include "ctl_field.h"

#include "comment_builder.h"
#include "engine/form_model.h"
#include "engine/register_images.h"

CtlField::CtlField(FormModel& owner, const QString& name) : model(&owner)
{
    const QString chipWord = QLatin1Char('_') + owner.catalogue().chipName();
    const int found = owner.indexOf(name.endsWith(chipWord) ? name : name + chipWord);
    if (found >= 0)
        *this = CtlField(owner, found);
}

CtlField::CtlField(FormModel& owner, int field) : model(&owner), index(field)
{
    switch (owner.entry(field).kind) {
    case FieldKind::Check: widgetKind = Kind::CheckBox; break;
    case FieldKind::Combo: widgetKind = Kind::ComboBox; break;
    case FieldKind::Spin: widgetKind = Kind::SpinBox; break;
    case FieldKind::Readout: widgetKind = Kind::LineEdit; break;
    case FieldKind::Bulb:
    case FieldKind::DoubleSpin:
    case FieldKind::Other: widgetKind = Kind::Label; break;
    }
}

const part& CtlField::record() const
{
    return model->entry(index).record;
}

QString CtlField::name() const
{
    const part& field = record();
    const QString chipWord = QLatin1Char('_') + field.chip;
    return field.name.endsWith(chipWord) ? field.name.left(field.name.size() - chipWord.size()) : field.name;
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
        return quint32(qMax(0, model->minimum(index)));
    return 0;
}

quint32 CtlField::highest() const
{
    switch (widgetKind) {
    case Kind::CheckBox:
        return 1;
    case Kind::ComboBox:
        return quint32(qMax(0, model->itemCount(index) - 1));
    default:
        return record().width >= 32 ? 0xFFFFFFFFu : (1u << record().width) - 1;
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

QString CtlField::refusal(qint64 code, const QString& given) const
{
    if (!editable())
        return QStringLiteral("%1 is a %2 that only displays what the chip holds; "
                              "check boxes, combo boxes and spin boxes can be set")
            .arg(name(), kindWords());
    if (code < qint64(lowest()) || code > qint64(highest()))
        return QStringLiteral("%1 (%2) takes %3, not \"%4\"").arg(name(), kindWords(), allowed(), given);
    return QString();
}

QStringList CtlField::items() const
{
    return widgetKind == Kind::ComboBox ? model->items(index) : QStringList();
}

QList<int> CtlField::registers() const
{
    return registersOf(record()).toList();
}

quint32 CtlField::code() const
{
    const part& field = record();
    const quint32 bits = RegisterImages::fieldValue(field, model->images().guiImage);
    return field.inverted ? (bits == 0 ? 1u : 0u) : bits;
}

void CtlField::setCode(quint32 value) const
{
    if (editable())
        model->setValue(index, widgetKind == Kind::CheckBox ? (value != 0 ? 1 : 0) : qint64(value));
}

bool CtlField::estimated() const
{
    return model->estimated(model->entry(index).display);
}

QString CtlField::text() const
{
    return CommentBuilder::fieldText(*model, index, record().position);
}
