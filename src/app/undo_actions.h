// Undo and redo of the forms in the windows: the Edit menu's two entries,
// Ctrl+Z and Ctrl+Shift+Z from every window, whose texts say what they bring
// back ("Undo ChA_PLL_RDiv", "Undo read from chip"), over the engine's
// FormHistory. The main window hands it the hand edits and the operations
// that show a new image.
#pragma once

#include "clerk.h"
#include "engine/form_history.h"

#include <QObject>

class FormModel;
class MainClass;
class QAction;

class UndoActions : public QObject
{
    Q_OBJECT

public:
    UndoActions(FormModel& model, MainClass& window);

    FormHistory& history() { return steps; }
    QAction* undoAction() const { return undo; }
    QAction* redoAction() const { return redo; }

    // An operation starts: the forms as they stand are what its undo brings
    // back, should it end in the forms.
    void operationStarted(const QString& fileName);
    // The forms now show what an operation brought (a read or a load is a
    // step; anything else changed no image).
    void operationShown(clerk::Command command);
    // The operation started last, if any, is no step (the start-up load):
    // what it shows starts the history.
    void forgetOperation() { forget = pending; }

protected:
    // A spin box would take Ctrl+Z for its own text; the forms' undo goes
    // first.
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void step(bool back);
    void showTexts();

    MainClass& window;
    FormHistory steps;
    QAction* undo;
    QAction* redo;
    FormHistory::State before;
    QString file;
    bool pending = false;
    bool forget = false;
};
