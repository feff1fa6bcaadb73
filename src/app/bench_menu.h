// The main window's "Tools" menu and its keys, in every window: find a field
// (Ctrl+F), compare two settings (Ctrl+D, also on the toolbar) and export
// for firmware.
#pragma once

#include <QObject>

class CompareWindow;
class FieldFinder;
class MainClass;
class QAction;

class BenchMenu : public QObject
{
    Q_OBJECT

public:
    explicit BenchMenu(MainClass& main);

    FieldFinder* finder = nullptr;
    CompareWindow* compare = nullptr; // made when first opened
    QAction* findAction = nullptr;
    QAction* compareAction = nullptr;
    QAction* exportAction = nullptr;

    void openCompare();
    void openExport();

private:
    MainClass& main;
};
