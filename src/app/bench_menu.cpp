// Find, Compare and Export of the main window.
#include "bench_menu.h"

#include "MainClass.h"
#include "compare_window.h"
#include "export_dialog.h"
#include "field_finder.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

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
    // On the toolbar after the service panel's button, before the progress bar.
    if (auto* bar = main.findChild<QToolBar*>(QStringLiteral("toolBar_RegWindow")))
        bar->insertAction(bar->actions().isEmpty() ? nullptr : bar->actions().last(), compareAction);
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
