// One register field as zv4280ctl names and sets it, on the engine's form
// model: its widget's kind, the codes it takes, and its code as the widget
// holds it.
#pragma once

#include <QString>
#include <QStringList>

class FormModel;
struct part;

class CtlField
{
public:
    enum class Kind { CheckBox, ComboBox, SpinBox, Label, LineEdit };

    // The field of a name with or without the chip word ("ChA_PLL_RDiv" or
    // "ChA_PLL_RDiv_ZV4280v2"), in any case ("cha_pll_rdiv"); not valid when
    // the model has none.
    CtlField(FormModel& model, const QString& name);
    // A field of the model by its index.
    CtlField(FormModel& model, int field);
    // The names nearest to one the model lacks, without the chip word, the
    // nearest first; empty when none is near.
    static QStringList nearest(const FormModel& model, const QString& name);

    bool valid() const { return index >= 0; }
    const part& record() const;
    // The name without the chip word.
    QString name() const;
    Kind kind() const { return widgetKind; }
    // "checkbox", "combobox", ...; and in words, "check box", ...
    QString kindKey() const;
    QString kindWords() const;
    // Labels and line edits only display what the chip holds.
    bool editable() const;
    // Why the field cannot be set now, in words; empty when it can: it only
    // displays, the chip alone writes it (the temperature code, status bits),
    // or, with enabledNow, the forms show it disabled as they stand.
    QString refusal(bool enabledNow) const;
    // The codes the field takes: 0 or 1 for a check box, an item's index for
    // a combo box, from the box's minimum (at least 0) to 2^width - 1 for a
    // spin box. A display field spans its bits.
    quint32 lowest() const;
    quint32 highest() const;
    // The codes in words: "0 or 1", "4 to 255", "0 to 1: 0 single | 1 continuous".
    QString allowed() const;
    // A combo box's items.
    QStringList items() const;
    // The code a text gives: a number (decimal, or hexadecimal behind "0x"),
    // or for a combo box an item's text ("PLL \"A\""; case and the blanks
    // around it do not count). False when the text gives none in the range.
    bool codeOf(const QString& text, quint32* code) const;
    // Why the field cannot be set to a code (as the user gave it: a number,
    // or a combo box's item text), or empty when it can, with the code; the
    // forms' enabled state is not asked (see refusal(bool)).
    QString refusal(const QString& given, quint32* code) const;
    // Registers that the field's bits touch, in rising order.
    QList<int> registers() const;

    // The code as the widget holds it (a check box's state, not the bit of
    // an inverted field); for a display field, what its bits show.
    quint32 code() const;
    // Sets the widget to a code as a user would, so that the field's rules
    // run and guiImage takes it.
    void setCode(quint32 code) const;
    // What the screens show for the field, with its caption and unit, as a
    // saved comment says it: "R-divider ratio:  13".
    QString text() const;
    // The field's display shows an estimate of the calibration tables.
    bool estimated() const;

private:
    FormModel* model = nullptr;
    int index = -1;
    Kind widgetKind = Kind::Label;
};
