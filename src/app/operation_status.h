// The main window's status line: how each operation ended, in one line
// (what was done, how many registers, which board, how long), or what made
// it fail, which stays there after its message box has been closed. The
// lines of a loaded file that are no plain lines are named in it, and all of
// them in its tooltip.
#pragma once

#include "clerk.h"

#include <QElapsedTimer>
#include <QLabel>

class OperationStatus : public QLabel
{
    Q_OBJECT

public:
    // What an ended operation did, taken from its worker.
    struct Outcome
    {
        clerk::Command command = clerk::Command::ChipToGui; // as started
        QString fileName;
        int read = 0;
        int written = 0;
        QString board;
        QString remark;
        QVector<OddLines::Line> oddLines;
    };
    static Outcome outcomeOf(const clerk* worker, clerk::Command started);

    explicit OperationStatus(QWidget* parent = nullptr);

    void started();
    // failure: the worker's end text, empty when it ended well.
    void ended(const Outcome& outcome, const QString& failure);

private:
    QElapsedTimer clock;
};
