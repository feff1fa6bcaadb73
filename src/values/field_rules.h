// The chain of rules behind every field change: physical values into the
// displays, enabled states of the dependent fields, and other fields
// re-fired, in the chain's fixed order.
#pragma once

#include <QString>

class FormModel;

class FieldRules
{
public:
    // Runs the chain for the field `key` whose code, as the image holds it,
    // is `fieldValue`. Re-fired fields run their own change, and so their
    // own chain, inside the rule that fires them.
    static void run(FormModel& model, const QString& key, quint32 fieldValue);
};
