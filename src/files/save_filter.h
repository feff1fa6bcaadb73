// The registers that a full save leaves out when the panel's "StatusBits" or
// "ServiceBits" flag is off, by the fields of the catalogue.
#pragma once

#include <QVector>

class Catalogue;

class SaveFilter
{
public:
    // One entry per register: true when the register holds fields and all
    // of them are read-only status fields (bulbs and read-outs).
    static QVector<bool> statusRegisters(const Catalogue& catalogue);
    // One entry per register: true when the register holds fields and all
    // of them are on the service and expert windows.
    static QVector<bool> serviceRegisters(const Catalogue& catalogue);
    // What a full save leaves out with the two flags: with saveStatus off the
    // status registers, with saveService off the service registers.
    static QVector<bool> leftOut(const Catalogue& catalogue, bool saveStatus, bool saveService);
};
