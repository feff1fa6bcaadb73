#pragma once

#include <QObject>
#include <QString>
#include <QVector>

#include <optional>

// One register field, as its widget's object name defines it:
// ZV_<words>_<chip>_<positions>_<widths>[_I]. The record made by the scan
// of the main window lives to the end of the process.
struct part
{
    QString name;               // fieldKey, e.g. "ChA_PLL_RDiv_ZV4280v2"
    qint32 width = 0;           // sum of widths
    qint32 position = 0;        // first entry of positions
    QObject* widget = nullptr;  // filled by the scan
    QString chip;               // chip word, e.g. "ZV4280v2"
    bool inverted = false;      // image holds the opposite of the widget
    bool joined = false;        // several segments ("p" in the width token)
    QVector<quint32> widths;    // width of each segment
    QVector<quint32> positions; // first bit position of each segment
};

// The field an object name defines, or nothing when the name is no field
// name. QtCore only: the catalogue's generator reads the forms with it.
std::optional<part> parseFieldName(const QString& objectName);

// The registers that a field's bits touch, in rising order, each once.
QVector<int> registersOf(const part& field);

// Register location of a field, e.g. "Reg21 <D4-D0>" or
// "Reg17 <D6-D0>,Reg18 <D7-D0>,Reg19 <D7-D0>".
QString buildToolTip(const part& p);
