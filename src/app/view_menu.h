// The main window's "View" menu: it opens every window of the program, the
// service panel, the register map, the service and expert windows and the
// status docks, whose toolbar buttons stay hidden.
#pragma once

class MainClass;
class QMenu;

class ViewMenu
{
public:
    // Adds the menu to the window's menu bar; each entry's action is named
    // "view_" and the window's key ("view_GrSChA", "view_service").
    static QMenu* install(MainClass& main);
};
