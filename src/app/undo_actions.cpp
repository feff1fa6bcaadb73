// The Edit menu's undo and redo.
#include "undo_actions.h"

#include "MainClass.h"
#include "mapshow.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>

namespace {

const QKeySequence kRedoKeys(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);

bool inSpinBox(QObject* object)
{
    for (int depth = 0; object && depth < 3; ++depth, object = object->parent())
        if (qobject_cast<QAbstractSpinBox*>(object))
            return true;
    return false;
}

} // namespace

UndoActions::UndoActions(FormModel& model, MainClass& window)
    : QObject(&window), window(window), steps(model), undo(new QAction(&window)), redo(new QAction(&window))
{
    undo->setObjectName(QStringLiteral("action_Undo"));
    redo->setObjectName(QStringLiteral("action_Redo"));
    undo->setShortcut(QKeySequence::Undo);
    redo->setShortcut(kRedoKeys);
    for (QAction* action : {undo, redo})
        action->setShortcutContext(Qt::ApplicationShortcut);
    connect(undo, &QAction::triggered, this, [this] { step(true); });
    connect(redo, &QAction::triggered, this, [this] { step(false); });
    QMenu* menu = window.menuBar()->addMenu(tr("Edit"));
    menu->addAction(undo);
    menu->addAction(redo);
    steps.setListener([this] { showTexts(); });
    showTexts();
    // A field's edit ends when the focus leaves it: keys typed into a spin
    // box are one step, the next visit another.
    connect(qApp, &QApplication::focusChanged, this, [this] { steps.closeEdit(); });
    qApp->installEventFilter(this);
}

void UndoActions::operationStarted(const QString& fileName)
{
    before = steps.state();
    file = fileName;
    pending = true;
    forget = false;
}

void UndoActions::operationShown(clerk::Command command)
{
    const bool read = command == clerk::Command::ChipToGui;
    if (!pending || (!read && command != clerk::Command::FileToGui))
        return;
    pending = false;
    if (read)
        steps.shown(FormHistory::Kind::Read, tr("read from chip"), before);
    else
        steps.shown(FormHistory::Kind::Load, tr("load of %1").arg(QFileInfo(file).fileName()), before);
    if (forget)
        steps.clear();
}

void UndoActions::step(bool back)
{
    // The worker may be filling the images; the forms wait for its end.
    if (window.running)
        return;
    if (back ? steps.undo() : steps.redo())
        if (mapshow* map = window.firstMap())
            map->refreshRegisterView();
}

void UndoActions::showTexts()
{
    const QString undoText = steps.undoText();
    const QString redoText = steps.redoText();
    undo->setText(undoText.isEmpty() ? tr("Undo") : tr("Undo %1").arg(undoText));
    redo->setText(redoText.isEmpty() ? tr("Redo") : tr("Redo %1").arg(redoText));
    undo->setEnabled(steps.canUndo());
    redo->setEnabled(steps.canRedo());
}

bool UndoActions::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        const QKeySequence pressed(int(key->modifiers()) | key->key());
        if ((key->matches(QKeySequence::Undo) || pressed == kRedoKeys) && inSpinBox(object)) {
            event->ignore();
            return true;
        }
    }
    return false;
}
