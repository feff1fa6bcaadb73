// Finding a field of the forms by what a user remembers of it: its name, its
// caption as the screens show it, or where it sits ("Reg21", "Reg21 <D4>").
// The find field of the windows, zv4280ctl fields --match and the scripting
// protocol's fields.list all ask this one place.
#pragma once

#include <QString>
#include <QVector>

class Catalogue;
struct FieldEntry;

class FieldSearch
{
public:
    // Indexes into catalogue.fields() of the fields that `text` names,
    // without regard to case; best hits first: a name, caption or location
    // that is the text, then one that starts with it, then one that holds
    // it, then fields that hold every word of it somewhere. A location
    // ("Reg21", "reg 21 <D4>", "Reg21 <D4-D0>") finds the fields on those
    // bits, highest bit first. Empty text finds nothing.
    static QVector<int> match(const Catalogue& catalogue, const QString& text);

    // The caption a field shows: its label's text, or a check box's own.
    static QString caption(const FieldEntry& entry);
    // The name without the chip word: "ChA_PLL_RDiv".
    static QString shortName(const FieldEntry& entry);
};
