// The chip's calibration tables: the IF gain of channels A to C in dB and in
// percent, and the IF gain and the LPF cut-off of channel D. Built in are the
// entries known for the chip and estimates between them; a file of measured
// entries ("table,index,value" a line) replaces what it gives.
#pragma once

#include "calibration_table.h"

#include <QString>

class Calibration
{
public:
    // The built-in tables.
    Calibration();

    CalibrationTable ifaGainDb;
    CalibrationTable ifaGainPercent;
    CalibrationTable chdIfaGainDb;
    CalibrationTable chdLpfCutoff;

    // Takes the measured entries of a file. A faulty file changes nothing:
    // the text names the file and each faulty line; empty when all is well.
    QString load(const QString& path);
    // The file a start loads: the one given, else "calibration.csv" in the
    // current folder (beside "default.hex") when there is one; empty for none.
    static QString startFile(const QString& given);
};
