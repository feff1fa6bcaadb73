// Two register images side by side in the terms of the forms: one row per
// field whose code differs, with what the screens would show for each, and
// one row per register whose differing bits no field covers.
#pragma once

#include "values/calibration.h"

#include <QByteArray>
#include <QString>
#include <QVector>

struct ImageDifference
{
    int field = -1;        // index into the catalogue's fields; -1 for a register row
    int reg = -1;          // a register row's register; a field row's first register
    QString name;          // "ChA_PLL_RDiv", or the register's name
    QString caption;       // the field's caption; empty for a register row
    QString location;      // "Reg21 <D4-D0>", or "Reg107"
    quint32 codeA = 0, codeB = 0; // the field's code as its widget holds it, or the register's byte
    QString textA, textB;  // what the screens show for each code ("0x5F" for a register)
};

class ImageCompare
{
public:
    // The rows for images a and b (registerCount bytes each), in the order
    // of their first bit. Registers that `known` marks false (a file that
    // leaves them out) are not compared, nor any field that touches one.
    // The texts come from the forms' rules with `calibration`, run on
    // copies: nobody's forms change.
    static QVector<ImageDifference> compare(const QByteArray& a, const QByteArray& b, const Calibration& calibration,
                                            const QVector<bool>& known = {});
};
