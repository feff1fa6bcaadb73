// Fields by name for zv4280ctl: kind, codes, and the words of the screens.
#include "ctl_field.h"

#include "comment_builder.h"
#include "ctl_options.h"
#include "engine/chip_owned.h"
#include "engine/form_model.h"
#include "engine/register_images.h"

#include <algorithm>

namespace {

// A name without the chip word ("_ZV4280v2"), whatever its case.
QString bareName(const QString& name, const QString& chip)
{
    const QString chipWord = QLatin1Char('_') + chip;
    return name.endsWith(chipWord, Qt::CaseInsensitive) ? name.left(name.size() - chipWord.size()) : name;
}

// Edits that turn one text into the other, letters compared without case.
int distance(const QString& a, const QString& b)
{
    QVector<int> row(b.size() + 1);
    for (int j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (int i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int above = row[j];
            const bool same = a.at(i - 1).toLower() == b.at(j - 1).toLower();
            row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + (same ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

} // namespace

CtlField::CtlField(FormModel& owner, const QString& name) : model(&owner)
{
    const QString chip = owner.catalogue().chipName();
    const QString bare = bareName(name, chip);
    int found = owner.indexOf(bare + QLatin1Char('_') + chip);
    for (int f = 0; found < 0 && f < owner.fieldCount(); ++f)
        if (bareName(owner.entry(f).record.name, chip).compare(bare, Qt::CaseInsensitive) == 0)
            found = f;
    if (found >= 0)
        *this = CtlField(owner, found);
}

QStringList CtlField::nearest(const FormModel& model, const QString& name)
{
    const QString chip = model.catalogue().chipName();
    const QString bare = bareName(name, chip);
    const int reach = std::max(2, int(bare.size()) / 3);
    QList<QPair<int, QString>> near;
    QStringList containing;
    for (int f = 0; f < model.fieldCount(); ++f) {
        const QString candidate = bareName(model.entry(f).record.name, chip);
        const int d = distance(bare, candidate);
        if (d <= reach)
            near.append({d, candidate});
        else if (bare.size() >= 3 && candidate.contains(bare, Qt::CaseInsensitive))
            containing.append(candidate);
    }
    std::sort(near.begin(), near.end());
    QStringList names;
    for (const auto& n : qAsConst(near))
        names.append(n.second);
    names += containing;
    return names.mid(0, 3);
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
    return bareName(record().name, record().chip);
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

QString CtlField::refusal(bool enabledNow) const
{
    if (!editable())
        return QStringLiteral("%1 is a %2 that only displays what the chip holds; "
                              "check boxes, combo boxes and spin boxes can be set")
            .arg(name(), kindWords());
    const FieldEntry& entry = model->entry(index);
    const QString owner = ChipOwned::ownerOf(entry);
    if (!owner.isEmpty())
        return QStringLiteral("%1 is written by the chip alone (%2) and cannot be set").arg(name(), owner);
    if (enabledNow && !model->isEnabled(entry.objectName))
        return QStringLiteral("%1 is disabled in the forms and cannot be set now").arg(name());
    return QString();
}

bool CtlField::codeOf(const QString& text, quint32* code) const
{
    qint64 number = -1;
    if (CtlOptions::number(text, &number)) {
        if (number < lowest() || number > highest())
            return false;
        *code = quint32(number);
        return true;
    }
    const QStringList list = items();
    for (int i = 0; i < list.size(); ++i)
        if (list.at(i) == text) {
            *code = quint32(i);
            return true;
        }
    for (int i = 0; i < list.size(); ++i)
        if (list.at(i).trimmed().compare(text.trimmed(), Qt::CaseInsensitive) == 0) {
            *code = quint32(i);
            return true;
        }
    return false;
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

QString CtlField::refusal(const QString& given, quint32* code) const
{
    const QString why = refusal(false);
    if (!why.isEmpty())
        return why;
    if (!codeOf(given, code))
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
