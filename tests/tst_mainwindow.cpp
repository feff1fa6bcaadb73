#include "MainClass.h"
#include "mapshow.h"
#include "testsupport.h"
#include "translation.h"

#include <QtTest>

#include <QAction>
#include <QApplication>
#include <QProgressBar>
#include <QToolBar>

// The real main window, built offscreen with the embedded translation.
class tst_mainwindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void actions_data();
    void actions();
    void toolbars();
    void window();

private:
    MainClass* main = nullptr;
};

void tst_mainwindow::initTestCase()
{
    zvTestInit();
    installTranslation(*QCoreApplication::instance());
    main = new MainClass;
}

void tst_mainwindow::cleanupTestCase()
{
    delete main;
}

void tst_mainwindow::actions_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<QString>("key");
    QTest::newRow("F5") << "action_load_default" << "Default" << "Load default.hex (F5)" << "F5";
    QTest::newRow("F6") << "action_GUIFILE" << "GUI -> File" << "Save GUI to File (F6)" << "F6";
    QTest::newRow("F7") << "action_FILEGUI" << "File ->GUI" << "Load file into GUI" << "F7";
    QTest::newRow("F9") << "action_FILEIC" << "Write file directly to IC" << "Write file directly to IC" << "F9";
    QTest::newRow("F10") << "action_GUIIC" << "GUI -> IC" << "Write GUI state to IC (F10)" << "F10";
    QTest::newRow("F11") << "action_ICGUI" << "IC -> GUI" << "Read IC state to GUI (F11)" << "F11";
    QTest::newRow("service") << "action_ExpertMode" << "Service settings" << "Service settings" << "";
    QTest::newRow("map") << "action_table_ZV4280v2" << "Regmap" << "Regmap" << "";
}

void tst_mainwindow::actions()
{
    QFETCH(QString, name);
    auto* action = main->findChild<QAction*>(name);
    QVERIFY(action);
    QTEST(action->text(), "text");
    QTEST(action->toolTip(), "tip");
    QTEST(action->shortcut().toString(), "key");
    if (!QTest::currentDataTag() || QByteArray(QTest::currentDataTag()).startsWith('F'))
        QVERIFY(!action->icon().isNull());
    QCOMPARE(action->isCheckable(), name == "action_ICGUI");
}

void tst_mainwindow::toolbars()
{
    for (const char* name : {"toolBar_file", "toolBar_IC", "toolBar_RegWindow", "toolBar_RegMap"}) {
        auto* bar = main->findChild<QToolBar*>(name);
        QVERIFY2(bar, name);
        QVERIFY(!bar->isMovable());
        QCOMPARE(bar->contextMenuPolicy(), Qt::PreventContextMenu);
    }
    QVERIFY(main->findChild<QToolBar*>("toolBar_RegMap")->isHidden());
    auto* regWindow = main->findChild<QToolBar*>("toolBar_RegWindow");
    // The progress bar rides on the last action of the bar, hidden while idle.
    QVERIFY(main->progressBar);
    QCOMPARE(main->progressBar->maximumWidth(), 100);
    QVERIFY(!regWindow->actions().last()->isVisible());
    QCOMPARE(regWindow->widgetForAction(regWindow->actions().last()), static_cast<QWidget*>(main->progressBar));
    auto* mapBar = main->findChild<QToolBar*>("toolBar_RegMap");
    QCOMPARE(mapBar->actions().size(), 1);
    QCOMPARE(mapBar->actions().first()->text(), QStringLiteral("ZV4280v2"));
    QVERIFY(mapBar->actions().first()->isChecked());
}

void tst_mainwindow::window()
{
    QCOMPARE(main->windowTitle(), QStringLiteral("ZV4280(v2/v3) TB 1.0.3"));
    QCOMPARE(main->lastPath, QDir::currentPath());
    QVERIFY(main->worker == nullptr);
    QCOMPARE(main->maps.size(), 1);
    QStringList expected = {"GrAllSS", "GrGenServ", "GrSChA", "GrSChB", "GrSChC", "GrSChD", "ZV4280v2", "dockA",
                            "dockB", "dockC", "dockD", "dockMain", "mainWindow", "service"};
    QCOMPARE(main->windows.keys(), expected);
}

QTEST_MAIN(tst_mainwindow)
#include "tst_mainwindow.moc"
