// What the chip alone writes: the registers and fields that a user's change
// cannot reach, because the chip puts its own state there (identity, status
// bits, the temperature code). zv4280ctl refuses to set those fields, and a
// save of the changes leaves those registers out.
#pragma once

#include <QString>
#include <QVector>

class Catalogue;
struct FieldEntry;

class ChipOwned
{
public:
    // One entry per register of the catalogue: true when the chip alone
    // writes it. That is a register that holds fields, and either all of
    // them only show (bulbs and read-outs), or its name tells it is the
    // identity, a status or the temperature ("Version1", "ChA_status",
    // "INT_Status_3", "Temp_0").
    static const QVector<bool>& registers();
    // A field that only shows, or that has a bit in such a register.
    static bool field(const FieldEntry& entry);
    // The first register of the field that the chip alone writes, as
    // "register 4, Temp_0"; empty when none.
    static QString ownerOf(const FieldEntry& entry);

private:
    static QVector<bool> build(const Catalogue& catalogue);
};
