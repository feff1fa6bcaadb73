#pragma once

#include <QStringList>

// The 291 register names, indexed by register number; one list for both
// revisions of the chip.
extern const QStringList registerNames;
