#include "MainClass.h"
#include "testsupport.h"
#include <QtTest>
#include <QtWidgets>

// The real main window, built offscreen with the embedded translation.
class tst_mainwindow : public QObject
{
    Q_OBJECT
    std::unique_ptr<MainClass> main;
private slots:
    void initTestCase()
    {
        zvTestInit(true);
        main.reset(new MainClass);
        QVERIFY(waitIdle(main.get()));
    }
    void actions_data()
    {
        for (const char* column : {"text", "tip", "key"})
            QTest::addColumn<QString>(column);
        QTest::newRow("action_load_default") << "Default" << "Load default.hex (F5)" << "F5";
        QTest::newRow("action_GUIFILE") << "GUI -> File" << "Save GUI to File (F6)" << "F6";
        QTest::newRow("action_FILEGUI") << "File ->GUI" << "Load file into GUI" << "F7";
        QTest::newRow("action_FILEIC") << "Write file directly to IC" << "Write file directly to IC" << "F9";
        QTest::newRow("action_GUIIC") << "GUI -> IC" << "Write GUI state to IC (F10)" << "F10";
        QTest::newRow("action_ICGUI") << "IC -> GUI" << "Read IC state to GUI (F11)" << "F11";
        QTest::newRow("action_ExpertMode") << "Service settings" << "Service settings" << "";
        QTest::newRow("action_table_ZV4280v2") << "Regmap" << "Regmap" << "";
    }
    void actions()
    {
        auto* action = main->findChild<QAction*>(QTest::currentDataTag());
        QVERIFY(action);
        QTEST(action->text(), "text");
        QTEST(action->toolTip(), "tip");
        QTEST(action->shortcut().toString(), "key");
        QVERIFY(action->shortcut().isEmpty() || !action->icon().isNull());
        QCOMPARE(action->isCheckable(), action->objectName() == "action_ICGUI");
    }

    void toolbarsAndWindows()
    {
        for (const char* name : {"toolBar_file", "toolBar_IC", "toolBar_RegWindow", "toolBar_RegMap"}) {
            auto* bar = main->findChild<QToolBar*>(name);
            QVERIFY2(bar && !bar->isMovable() && bar->contextMenuPolicy() == Qt::PreventContextMenu, name);
            QCOMPARE(bar->isHidden(), QByteArray(name) == "toolBar_RegMap");
        }
        auto* regWindow = main->findChild<QToolBar*>("toolBar_RegWindow");
        QVERIFY(!regWindow->actions().last()->isVisible());
        QCOMPARE(regWindow->widgetForAction(regWindow->actions().last()), static_cast<QWidget*>(main->progressBar));
        QCOMPARE(main->windowTitle(), QStringLiteral("ZV4280(v2/v3) TB 1.0.3"));
        QCOMPARE(main->windows.keys(), QStringList({"GrAllSS", "GrGenServ", "GrSChA", "GrSChB", "GrSChC", "GrSChD",
            "ZV4280v2", "dockA", "dockB", "dockC", "dockD", "dockMain", "mainWindow", "service"}));
    }

    // Closing the main window closes the panel, the docks, the map and the expert windows with it.
    void closingTheMainWindowClosesAll()
    {
        for (QWidget* window : qAsConst(main->windows))
            window->show();
        QVERIFY(main->close());
        for (auto it = main->windows.cbegin(); it != main->windows.cend(); ++it)
            QVERIFY2(!it.value()->isVisible(), qPrintable(it.key()));
    }
};

QTEST_MAIN(tst_mainwindow)
#include "tst_mainwindow.moc"
