// Undo and redo of the forms: each step holds what guiImage was before and
// after a hand edit of a field (with all that its rules changed), a load
// into the forms or a read of the chip. Undo and redo show the other image
// through the form model, so the rules and the displays follow as after any
// change; the chip is never touched.
#pragma once

#include <QByteArray>
#include <QString>
#include <QList>

#include <functional>

class FormModel;

class FormHistory
{
public:
    // What a step brought into the forms: a hand edit keeps the "n/a" of
    // the chip-only fields as it is, a load shows it, a read clears it.
    enum class Kind { Edit, Load, Read };

    // The forms as they stand: the image and whether the chip-only fields
    // show "n/a".
    struct State
    {
        QByteArray image;
        bool chipOnly = false;
    };

    explicit FormHistory(FormModel& model, int limit = 500);

    State state() const;

    // A hand edit of a field, as its widget reports it: the model runs the
    // change, and what it changed is one step. Further edits of the same spin
    // box join that step until closeEdit() (keys typed into the box one by
    // one are one edit).
    void edit(int field, int signalValue);
    void closeEdit();
    // A load or read that the forms show now; `before` is the state taken
    // when it began. A step that changed nothing is no step.
    void shown(Kind kind, const QString& what, const State& before);

    bool canUndo() const { return !undoSteps.isEmpty(); }
    bool canRedo() const { return !redoSteps.isEmpty(); }
    // What the next undo or redo brings back, as "ChA_PLL_RDiv" or "read
    // from chip"; empty when there is none.
    QString undoText() const;
    QString redoText() const;
    bool undo();
    bool redo();
    void clear();

    // Called whenever the steps change.
    void setListener(std::function<void()> listener) { changed = std::move(listener); }

private:
    struct Step
    {
        QString what;
        State before;
        State after;
        int field = -1; // the field of a hand edit
    };

    void record(Step step);
    void show(const State& state);
    void tell() const;

    FormModel& forms;
    int limit;
    bool chipOnly = false;
    int openField = -1; // the spin box whose edit the next edit joins
    QList<Step> undoSteps; // a list: the oldest step leaves at no cost
    QList<Step> redoSteps;
    std::function<void()> changed;
};
