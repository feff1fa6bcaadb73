// What the scripting protocol's methods work on: the engine of
// zv4280ctl serve, or the running program with its windows. The methods
// are the same on both; the bench says how its operations run and whether
// something else runs meanwhile.
#pragma once

#include "clerk.h"

#include <QString>

#include <functional>

class FormModel;
class usb_link;
struct PanelSettings;

class RpcBench
{
public:
    // The end of an operation: the worker's failure text (empty after a
    // success), and whether a user asked it to stop; an operation with no
    // point to stop at ends well all the same, and a request then takes no
    // further step.
    using Ended = std::function<void(const QString& failure, bool stopped)>;

    virtual ~RpcBench() = default;

    // "zv4280ctl" or "zv4280tb", as session.info tells it.
    virtual QString serverName() const = 0;
    // The program's own forms are there: source and target "gui" are served.
    virtual bool showsForms() const = 0;
    // The forms' state that chip and file operations go through.
    virtual FormModel& model() = 0;
    virtual usb_link& link() = 0;
    // A board was chosen by the user rather than found alone on the bus.
    virtual bool boardChosen() const = 0;
    // What the worker's commands run with, unless a method says otherwise.
    virtual PanelSettings settings() const = 0;

    // An operation runs now: a request waits or is answered "busy".
    virtual bool busy() const = 0;
    // Calls `retry` once, after the running operation has ended.
    virtual void whenIdle(std::function<void()> retry) = 0;
    // A worker command, run as the toolbar runs one; `ended` comes once it
    // has ended and the forms show what it brought.
    virtual void run(clerk::Command command, const QString& fileName, const PanelSettings& settings,
                     Ended ended) = 0;
    // Work done at once on the forms' thread, as one operation.
    virtual void step(const std::function<void()>& work) = 0;
};
