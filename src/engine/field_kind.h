#pragma once

// What kind of widget edits or shows a field, told by the widget's class name:
// the forms' one rule, shared by the catalogue's generator and the program.

#include <QString>

enum class FieldKind { Check, Combo, Spin, DoubleSpin, Bulb, Readout, Other };

// "QCheckBox" and "QRadioButton" give Check, "QComboBox" Combo, "QSpinBox"
// Spin, "QDoubleSpinBox" DoubleSpin, "QLabel" Bulb (a label field of one bit
// shows a bulb, a wider one its number), "QLineEdit" Readout; any other
// class, Other. Case does not count. The forms hold no radio button and no
// double spin box, but a field may be one.
FieldKind fieldKindOf(const QString& className);
