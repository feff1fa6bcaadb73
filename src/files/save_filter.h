// The registers that a full save leaves out when the panel's "StatusBits" or
// "ServiceBits" flag is off. Reads widgets: use it on the GUI thread.
#pragma once

#include <QVector>

class mapshow;

class SaveFilter
{
public:
    // One entry per register: true when the register holds fields and all
    // of them are read-only status fields (a QLabel or a QLineEdit).
    static QVector<bool> statusRegisters(const mapshow& map);
    // One entry per register: true when the register holds fields and all
    // of them are on the service and expert windows.
    static QVector<bool> serviceRegisters(const mapshow& map);
    // What a full save leaves out with the two flags: with saveStatus off the
    // status registers, with saveService off the service registers.
    static QVector<bool> leftOut(const mapshow& map, bool saveStatus, bool saveService);
};
