// What the forms show, kept without widgets: each field's value as its
// widget holds it, the enabled state of the fields, displays and captions,
// the texts of the displays and read-only fields, the item texts of the
// combo boxes, and the status bulbs. Every change of a field goes through
// here: the frequency guard, the code committed to guiImage, and the chain
// of rules, in their order. Whoever shows the forms (the main window's
// binding) hears of every change the engine makes and a user's edits come
// back through widgetChanged; zv4280ctl and the tests use the model alone.
#pragma once

#include "catalogue.h"
#include "values/calibration.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

class RegisterImages;

// What a status bulb shows.
enum class Bulb { Unset, Good, Bad, Disabled };

// Hears what the engine changes on the forms. Each call says a new state;
// the model has it already when the call comes.
class FormObserver
{
public:
    virtual ~FormObserver() = default;
    // A field's widget value: a spin box's number, a check box's 0 or 1, a
    // combo box's index (-1: no current item).
    virtual void valueChanged(int field, qint64 value) = 0;
    // A field, display or caption, by object name.
    virtual void enabledChanged(const QString& objectName, bool enabled) = 0;
    // The text of a display, a read-only field or a label field.
    virtual void textChanged(const QString& objectName, const QString& text) = 0;
    // A display now shows an estimate (a calibration entry that nobody
    // measured), or no longer does.
    virtual void estimatedChanged(const QString& objectName, bool estimated) = 0;
    virtual void bulbChanged(int field, Bulb bulb) = 0;
    virtual void itemTextChanged(int field, int index, const QString& text) = 0;
    // A spin box's lowest value.
    virtual void minimumChanged(int field, int minimum) = 0;
};

class FormModel
{
public:
    // Starts as the forms start: spin boxes at their lowest value, combo
    // boxes at their first item, check boxes off, texts and enabled states
    // as the forms give them; then the program's own start state (the
    // temperature code closed, the C-divider at 4 or more).
    explicit FormModel(RegisterImages& images);
    FormModel(const FormModel&) = delete;
    FormModel& operator=(const FormModel&) = delete;

    const Catalogue& catalogue() const { return cat; }
    RegisterImages& images() const { return regs; }
    int fieldCount() const { return fields.size(); }
    // A field by fieldKey ("ChA_PLL_RDiv_ZV4280v2"); -1 when none.
    int indexOf(const QString& key) const { return cat.indexOf(key); }
    const FieldEntry& entry(int field) const { return cat.fields().at(field); }

    // The calibration tables the displays are shown from; a new set shows
    // with each display's next change.
    const Calibration& calibration() const { return tables; }
    void setCalibration(const Calibration& calibration) { tables = calibration; }

    void addObserver(FormObserver* observer);
    void removeObserver(FormObserver* observer);

    // -- a field's widget -----------------------------------------------

    qint64 widgetValue(int field) const { return fields.at(field).value; }
    int minimum(int field) const { return fields.at(field).minimum; }
    int maximum(int field) const { return fields.at(field).maximum; }
    QStringList items(int field) const { return fields.at(field).items; }
    int itemCount(int field) const { return fields.at(field).items.size(); }
    // A combo box's current text; empty with no current item.
    QString currentText(int field) const;
    Bulb bulb(int field) const { return fields.at(field).bulb; }

    // A widget of the forms reported a change with its signal's value (a
    // check box's state 0 or 2, a spin box's number, a combo box's index):
    // the model takes it and runs the change.
    void widgetChanged(int field, int signalValue);
    // Sets a widget as its own setter would (a spin box within its range, a
    // combo box's index or none, a check box on or off); when that changes
    // it, the change runs as if the widget had reported it.
    void setValue(int field, qint64 value);
    void setMinimum(int field, int minimum);
    void setItemText(int field, int index, const QString& text);

    // The code of a field as the image is to hold it (a spin box above its
    // field's reach is cut back first, which is a change of its own).
    quint32 code(int field);
    // The code that the widget would show for an image, and showing it: the
    // field's widget is set from the image, a bulb or read-only field shows
    // it.
    static quint32 imageCode(const FieldEntry& entry, const quint8* image);
    void showImage(int field, const quint8* image);
    // Every field shown from a copy of `image`, in key order.
    void push(const quint8* image);
    // After a load or a failed read: what only the chip can tell (identity,
    // release, status, temperature) shows "n/a" and grey bulbs.
    void markChipOnly();
    // The spin boxes with a display run their change again, so that each
    // display shows its field's code.
    void fireDisplays();

    // -- any object of the forms by object name ------------------------

    // The object's own state, and whether it and its parents are enabled.
    bool ownEnabled(const QString& objectName) const;
    bool isEnabled(const QString& objectName) const;
    void setEnabled(const QString& objectName, bool enabled);
    QString text(const QString& objectName) const;
    // A text, and whether it shows an estimate.
    void setText(const QString& objectName, const QString& text, bool estimated = false);
    bool estimated(const QString& objectName) const { return objects.value(objectName).estimated; }
    // The object that shows key's value: its display, else the field itself
    // when it only shows; empty when none.
    QString outputObject(const QString& key) const;
    // Writes a display or a read-only field (those that hold text).
    void showOutput(const QString& key, const QString& text, bool estimated = false);

    // The change of a field, as the widget's signal brings it: the guard,
    // the code into guiImage, the rules. Nested changes come back here.
    void change(int field, int signalValue);

private:
    struct FieldState
    {
        qint64 value = 0;
        int minimum = 0;
        int maximum = 99;
        QStringList items;
        Bulb bulb = Bulb::Unset;
    };
    struct ObjectState
    {
        int field = -1; // the field the object is, if any
        bool enabled = true;
        bool parentsEnabled = true;
        bool holdsText = false; // a line edit or label
        bool estimated = false; // its text shows an estimate
        QString text;
    };

    bool rangeGuard(int field, int signalValue);
    quint32 applyPartToImage(int field);
    // Stores a widget value; true when it changed, and then the observers
    // hear of it.
    bool store(int field, qint64 value);
    static qint64 signalOf(FieldKind kind, qint64 value);

    const Catalogue& cat;
    RegisterImages& regs;
    Calibration tables;
    QVector<FieldState> fields;
    QHash<QString, ObjectState> objects;
    QHash<QString, QString> outputs; // key -> object that shows it
    QVector<FormObserver*> observers;
};
