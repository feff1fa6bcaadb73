// The forms' state without widgets, and the frame of every field change.
#include "form_model.h"

#include "values/field_rules.h"
#include "register_images.h"

#include <algorithm>
#include <climits>
#include <vector>

namespace {

quint32 invert(const part& p, quint32 value)
{
    return p.inverted ? (value == 0 ? 1u : 0u) : value;
}

} // namespace

FormModel::FormModel(RegisterImages& images) : cat(Catalogue::instance()), regs(images)
{
    const QVector<FieldEntry>& entries = cat.fields();
    fields.resize(entries.size());
    objects.reserve(entries.size() + cat.displays().size() + cat.captions().size());
    for (int f = 0; f < entries.size(); ++f) {
        const FieldEntry& e = entries.at(f);
        FieldState& s = fields[f];
        switch (e.kind) {
        case FieldKind::Spin:
            // The box holds any number its field is given (the field's reach
            // is enforced when its code is read); it starts at its lowest.
            s.minimum = e.minimum;
            s.maximum = INT_MAX;
            s.value = qMax(0, e.minimum);
            break;
        case FieldKind::Combo:
            s.items = e.items;
            s.value = e.items.isEmpty() ? -1 : 0;
            break;
        default:
            break;
        }
        ObjectState& o = objects[e.objectName];
        o.field = f;
        o.enabled = e.enabled;
        o.parentsEnabled = e.ancestorsEnabled;
        o.holdsText = e.kind == FieldKind::Bulb || e.kind == FieldKind::Readout;
        if (o.holdsText)
            outputs.insert(e.record.name, e.objectName);
    }
    for (const DisplayEntry& d : cat.displays()) {
        ObjectState& o = objects[d.objectName];
        o.enabled = d.enabled;
        o.parentsEnabled = d.ancestorsEnabled;
        o.holdsText = true;
        o.text = d.text;
        outputs.insert(d.key, d.objectName);
    }
    for (const CaptionEntry& c : cat.captions()) {
        ObjectState& o = objects[c.objectName];
        o.enabled = c.enabled;
        o.text = c.text;
    }

    // The program's own start: the temperature code is the chip's alone,
    // and the C-divider divides by 4 at least (which moves the box from 0
    // to 4, a change like any other).
    const QString chipWord = QLatin1Char('_') + cat.chipName();
    const int temperature = indexOf(QStringLiteral("TS_code") + chipWord);
    if (temperature >= 0)
        setEnabled(entry(temperature).objectName, false);
    const int cdiv = indexOf(QStringLiteral("PLL_CDiv") + chipWord);
    if (cdiv >= 0)
        setMinimum(cdiv, 4);
}

void FormModel::addObserver(FormObserver* observer)
{
    if (!observers.contains(observer))
        observers.append(observer);
}

void FormModel::removeObserver(FormObserver* observer)
{
    observers.removeAll(observer);
}

QString FormModel::currentText(int field) const
{
    const FieldState& s = fields.at(field);
    return s.value >= 0 && s.value < s.items.size() ? s.items.at(int(s.value)) : QString();
}

// The signal a widget sends for a value: a check box's state is 0 or 2.
qint64 FormModel::signalOf(FieldKind kind, qint64 value)
{
    return kind == FieldKind::Check ? (value ? 2 : 0) : value;
}

bool FormModel::store(int field, qint64 value)
{
    FieldState& s = fields[field];
    if (s.value == value)
        return false;
    s.value = value;
    for (FormObserver* o : qAsConst(observers))
        o->valueChanged(field, value);
    return true;
}

void FormModel::widgetChanged(int field, int signalValue)
{
    store(field, entry(field).kind == FieldKind::Check ? (signalValue != 0 ? 1 : 0) : signalValue);
    change(field, signalValue);
}

void FormModel::setValue(int field, qint64 value)
{
    const FieldEntry& e = entry(field);
    const FieldState& s = fields.at(field);
    qint64 shown;
    switch (e.kind) {
    case FieldKind::Check:
        shown = value != 0 ? 1 : 0;
        break;
    case FieldKind::Combo:
        shown = value >= 0 && value < s.items.size() ? value : -1;
        break;
    case FieldKind::Spin:
        shown = std::clamp<qint64>(value, s.minimum, s.maximum);
        break;
    default:
        return; // the displaying kinds hold no value
    }
    if (store(field, shown))
        change(field, int(signalOf(e.kind, shown)));
}

void FormModel::setMinimum(int field, int minimum)
{
    FieldState& s = fields[field];
    s.minimum = minimum;
    for (FormObserver* o : qAsConst(observers))
        o->minimumChanged(field, minimum);
    if (s.value < minimum)
        setValue(field, minimum);
}

void FormModel::setItemText(int field, int index, const QString& text)
{
    FieldState& s = fields[field];
    if (index < 0 || index >= s.items.size() || s.items.at(index) == text)
        return;
    s.items[index] = text;
    for (FormObserver* o : qAsConst(observers))
        o->itemTextChanged(field, index, text);
}

quint32 FormModel::code(int field)
{
    const FieldEntry& e = entry(field);
    qint64 value = 0;
    switch (e.kind) {
    case FieldKind::Check:
        value = fields.at(field).value;
        break;
    case FieldKind::Combo:
        value = fields.at(field).value;
        // A code for which the list has no item leaves the box without a
        // current item; the image keeps the code it has.
        if (value < 0)
            return RegisterImages::fieldValue(e.record, regs.guiImage);
        break;
    case FieldKind::Spin: {
        value = qMax<qint64>(fields.at(field).value, 0);
        const qint64 limit = e.record.width >= 32 ? qint64(0xFFFFFFFFu) : (qint64(1) << e.record.width) - 1;
        if (value > limit) {
            value = limit;
            setValue(field, qMin<qint64>(limit, INT_MAX));
        }
        break;
    }
    default:
        break;
    }
    return invert(e.record, quint32(value));
}

quint32 FormModel::imageCode(const FieldEntry& e, const quint8* image)
{
    return invert(e.record, RegisterImages::fieldValue(e.record, image));
}

void FormModel::showImage(int field, const quint8* image)
{
    const FieldEntry& e = entry(field);
    const quint32 value = imageCode(e, image);
    switch (e.kind) {
    case FieldKind::Check:
    case FieldKind::Spin:
        setValue(field, value);
        break;
    case FieldKind::Combo:
        // A code the list has no item for leaves the box without a current
        // item, and the image keeps the code: it goes into guiImage first, so
        // that the change the box reports keeps this code and not an older one.
        if (qint64(value) >= itemCount(field))
            regs.writeField(e.record, value);
        setValue(field, value);
        break;
    case FieldKind::Bulb:
        if (e.record.width < 2) {
            FieldState& s = fields[field];
            const Bulb shown = !isEnabled(e.objectName) ? Bulb::Disabled : value ? Bulb::Good : Bulb::Bad;
            objects[e.objectName].text.clear(); // a picture takes the place of any text
            if (s.bulb != shown) {
                s.bulb = shown;
                for (FormObserver* o : qAsConst(observers))
                    o->bulbChanged(field, shown);
            }
        } else {
            setText(e.objectName, QString::number(value));
        }
        break;
    case FieldKind::Readout:
        setText(e.objectName, QString::number(value));
        break;
    case FieldKind::DoubleSpin:
    case FieldKind::Other:
        break;
    }
}

// A rule may re-fire a widget whose turn has not come yet, which would write
// that widget's old value into the image; so every field is shown from a
// copy of the image as it stood before the push.
void FormModel::push(const quint8* image)
{
    const std::vector<quint8> copy(image, image + regs.registerCount);
    for (int f = 0; f < fields.size(); ++f)
        showImage(f, copy.data());
}

void FormModel::markChipOnly()
{
    for (int f = 0; f < fields.size(); ++f) {
        const FieldEntry& e = entry(f);
        if (e.kind == FieldKind::Bulb && e.record.width == 1) {
            objects[e.objectName].text.clear();
            if (fields.at(f).bulb != Bulb::Disabled) {
                fields[f].bulb = Bulb::Disabled;
                for (FormObserver* o : qAsConst(observers))
                    o->bulbChanged(f, Bulb::Disabled);
            }
        } else if (e.kind == FieldKind::Bulb || e.kind == FieldKind::Readout) {
            setText(e.objectName, QStringLiteral("n/a"));
        }
    }
    // The temperature is the chip's alone too.
    showOutput(QStringLiteral("TS_code_") + cat.chipName(), QStringLiteral("n/a"));
}

void FormModel::fireDisplays()
{
    for (const DisplayEntry& d : cat.displays()) {
        const int f = indexOf(d.key);
        if (f >= 0 && entry(f).kind == FieldKind::Spin)
            change(f, int(code(f)));
    }
}

bool FormModel::ownEnabled(const QString& objectName) const
{
    const auto it = objects.constFind(objectName);
    return it == objects.cend() || it->enabled;
}

bool FormModel::isEnabled(const QString& objectName) const
{
    const auto it = objects.constFind(objectName);
    return it == objects.cend() || (it->enabled && it->parentsEnabled);
}

void FormModel::setEnabled(const QString& objectName, bool enabled)
{
    const auto it = objects.find(objectName);
    if (it == objects.end() || it->enabled == enabled)
        return;
    it->enabled = enabled;
    for (FormObserver* o : qAsConst(observers))
        o->enabledChanged(objectName, enabled);
}

QString FormModel::text(const QString& objectName) const
{
    return objects.value(objectName).text;
}

void FormModel::setText(const QString& objectName, const QString& text, bool estimated)
{
    const auto it = objects.find(objectName);
    if (it == objects.end() || !it->holdsText)
        return;
    if (it->field >= 0)
        fields[it->field].bulb = Bulb::Unset; // a text takes the place of a picture
    if (it->text != text) {
        it->text = text;
        for (FormObserver* o : qAsConst(observers))
            o->textChanged(objectName, text);
    }
    if (it->estimated != estimated) {
        it->estimated = estimated;
        for (FormObserver* o : qAsConst(observers))
            o->estimatedChanged(objectName, estimated);
    }
}

QString FormModel::outputObject(const QString& key) const
{
    return outputs.value(key);
}

void FormModel::showOutput(const QString& key, const QString& text, bool estimated)
{
    const QString object = outputs.value(key);
    if (object.isEmpty())
        return;
    // Only line edits take a text from a rule; a bulb stays as it is.
    const int field = objects.value(object).field;
    if (field >= 0 && entry(field).kind == FieldKind::Bulb)
        return;
    setText(object, text, estimated);
}

bool FormModel::rangeGuard(int field, int signalValue)
{
    const FieldEntry& e = entry(field);
    const QString& name = e.record.name;
    qint64 limit = -1;
    if (name.contains(QLatin1String("Flo"), Qt::CaseInsensitive) && name.contains(QLatin1String("Ch"), Qt::CaseInsensitive))
        limit = 8388607;
    else if (name.contains(QLatin1String("Fx_ZV4280")))
        limit = 65535;
    if (limit < 0 || signalValue <= limit)
        return true;
    // The box goes back to the image's code, which comes back here as a
    // change of its own; the image stays as it is.
    if (e.kind == FieldKind::Spin)
        setValue(field, regs.getBrim(e.record.position, e.record.width));
    return false;
}

quint32 FormModel::applyPartToImage(int field)
{
    const quint32 value = code(field);
    regs.writeField(entry(field).record, value);
    return value;
}

void FormModel::change(int field, int signalValue)
{
    if (!rangeGuard(field, signalValue))
        return;
    const quint32 fieldValue = applyPartToImage(field);
    FieldRules::run(*this, entry(field).record.name, fieldValue);
}
