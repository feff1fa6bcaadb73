// The kind of a field's widget, from its class name.
#include "field_kind.h"

FieldKind fieldKindOf(const QString& className)
{
    static const struct {
        const char* className;
        FieldKind kind;
    } kinds[] = {{"QCheckBox", FieldKind::Check},   {"QRadioButton", FieldKind::Check},
                 {"QComboBox", FieldKind::Combo},   {"QSpinBox", FieldKind::Spin},
                 {"QDoubleSpinBox", FieldKind::DoubleSpin}, {"QLabel", FieldKind::Bulb},
                 {"QLineEdit", FieldKind::Readout}};
    for (const auto& k : kinds)
        if (className.compare(QLatin1String(k.className), Qt::CaseInsensitive) == 0)
            return k.kind;
    return FieldKind::Other;
}
