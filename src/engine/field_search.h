// Finding fields by a word a user types: a part of a field's name or of its
// caption, or the register it sits in ("Reg21"), in any case.
#pragma once

#include <QString>
#include <QVector>

class Catalogue;

class FieldSearch
{
public:
    // The indexes into catalogue.fields() of the fields that match, in
    // catalogue order; every field for an empty text.
    static QVector<int> match(const Catalogue& catalogue, const QString& text);
};
