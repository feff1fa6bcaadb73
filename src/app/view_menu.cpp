// The "View" menu: one entry a window, each showing its window and raising it.
#include "view_menu.h"

#include "MainClass.h"
#include "mapshow.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace {

struct Entry
{
    const char* key; // the window's key in MainClass::windows; "" for a separator
    const char* text;
};

const Entry kEntries[] = {
    {"service", "&Service settings"},
    {"map", "Register &map"},
    {"", ""},
    {"GrGenServ", "&General service"},
    {"GrAllSS", "All service s&tatuses"},
    {"GrSChA", "Channel &A service"},
    {"GrSChB", "Channel &B service"},
    {"GrSChC", "Channel &C service"},
    {"GrSChD", "Channel &D service"},
    {"", ""},
    {"dockMain", "AOK status, c&ommon"},
    {"dockA", "AOK status, channel A"},
    {"dockB", "AOK status, channel B"},
    {"dockC", "AOK status, channel C"},
    {"dockD", "AOK status, channel D"},
};

void open(QWidget* window)
{
    window->show();
    window->raise();
    window->activateWindow();
}

} // namespace

QMenu* ViewMenu::install(MainClass& main)
{
    QMenu* menu = main.menuBar()->addMenu(QStringLiteral("&View"));
    menu->setObjectName(QStringLiteral("menu_View"));
    for (const Entry& e : kEntries) {
        const QString key = QLatin1String(e.key);
        if (key.isEmpty()) {
            menu->addSeparator();
            continue;
        }
        QAction* action = menu->addAction(QLatin1String(e.text));
        action->setObjectName(QStringLiteral("view_") + key);
        if (key == QLatin1String("map")) {
            QObject::connect(action, &QAction::triggered, &main, [&main] {
                if (mapshow* map = main.firstMap()) {
                    open(map);
                    map->refreshRegisterView();
                }
            });
        } else {
            QObject::connect(action, &QAction::triggered, &main, [&main, key] {
                if (QWidget* window = main.windows.value(key))
                    open(window);
            });
        }
    }
    return menu;
}
