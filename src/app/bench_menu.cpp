// Find, Compare and Export of the main window.
#include "bench_menu.h"

#include "MainClass.h"
#include "compare_window.h"
#include "export_dialog.h"
#include "field_finder.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QStyle>
#include <QToolBar>
#include <QToolButton>

BenchMenu::BenchMenu(MainClass& mainWindow) : QObject(&mainWindow), main(mainWindow)
{
    finder = new FieldFinder(main);
    QMenu* menu = main.menuBar()->addMenu(tr("Tools"));
    menu->setObjectName(QStringLiteral("menuTools"));
    auto add = [&](const QString& name, const QString& text, const QKeySequence& keys) {
        QAction* action = menu->addAction(text);
        action->setObjectName(name);
        action->setShortcut(keys);
        // The keys work in every window of the program.
        action->setShortcutContext(Qt::ApplicationShortcut);
        return action;
    };
    findAction = add(QStringLiteral("action_Find"), tr("Find a field…"), QKeySequence(Qt::CTRL | Qt::Key_F));
    compareAction = add(QStringLiteral("action_Compare"), tr("Compare"), QKeySequence(Qt::CTRL | Qt::Key_D));
    exportAction = add(QStringLiteral("action_Export"), tr("Export…"), QKeySequence());
    connect(findAction, &QAction::triggered, finder, &FieldFinder::open);
    connect(compareAction, &QAction::triggered, this, &BenchMenu::openCompare);
    connect(exportAction, &QAction::triggered, this, &BenchMenu::openExport);
    // On the toolbar after the service panel's button, before the progress
    // bar, as an icon alone: the bar must keep room for the progress bar at
    // the window's default width.
    compareAction->setIcon(main.style()->standardIcon(QStyle::SP_FileDialogContentsView));
    compareAction->setToolTip(tr("Compare two settings field by field (Ctrl+D)"));
    if (auto* bar = main.findChild<QToolBar*>(QStringLiteral("toolBar_RegWindow"))) {
        bar->insertAction(bar->actions().isEmpty() ? nullptr : bar->actions().last(), compareAction);
        if (auto* button = qobject_cast<QToolButton*>(bar->widgetForAction(compareAction)))
            button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    }
    const bool forms = main.model() != nullptr;
    compareAction->setEnabled(forms);
    exportAction->setEnabled(forms);
}

void BenchMenu::openCompare()
{
    if (!main.model())
        return;
    if (!compare) {
        compare = new CompareWindow(*main.model(), &main);
        connect(compare, &CompareWindow::findField, finder, &FieldFinder::go);
    }
    compare->refresh();
    compare->show();
    compare->raise();
    compare->activateWindow();
}

void BenchMenu::openExport()
{
    if (!main.model())
        return;
    ExportDialog dialog(*main.model(), &main);
    dialog.exec();
}
