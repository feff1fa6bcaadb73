#pragma once

// What kind of widget edits or shows a field, told by the widget's class name:
// the forms' one rule, shared by the catalogue's generator and the program.

#include <QString>

enum class FieldKind { Check, Combo, Spin, Bulb, Readout, Other };

// "QCheckBox" gives Check, "QComboBox" Combo, "QSpinBox" Spin, "QLabel" Bulb
// (every label field has one bit), "QLineEdit" Readout; any other class,
// Other. Case does not count.
FieldKind fieldKindOf(const QString& className);
