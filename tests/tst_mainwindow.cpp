#include "app/usb_log_dock.h"
#include "testsupport.h"

#include <thread>

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
    // The actions' texts and keys are the form's own; the end-to-end tests
    // press the keys. Only F11's action is checkable (repeat read).
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
        for (QAction* a : main->findChildren<QAction*>(QRegularExpression("^action_")))
            QVERIFY2(a->isCheckable() == (a->objectName() == "action_ICGUI"), qPrintable(a->objectName()));
        QCOMPARE(main->windows.keys(), QStringList({"GrAllSS", "GrGenServ", "GrSChA", "GrSChB", "GrSChC", "GrSChD",
            "ZV4280v2", "dockA", "dockB", "dockC", "dockD", "dockMain", "mainWindow", "service"}));
    }

    // The USB log takes frames from any thread while closed, shows them when
    // opened, filters them by register (number or name) and saves what shows.
    void usbLog()
    {
        UsbLogDock* dock = main->usbLog;
        QVERIFY(dock->isHidden());
        main->show();
        const quint8 read21[] = {0x15, 0x03, 0x80, 0x15, 0x00}, write12[] = {0x15, 0x03, 0x00, 0x0C, 0x5A};
        std::thread([&] { dock->frames().frame(0, true, read21, 5), dock->frames().frame(0, true, write12, 5); }).join();
        main->findChild<QAction*>("usbLogToggle")->trigger();
        auto* list = dock->findChild<QPlainTextEdit*>("usbLogList");
        QCOMPARE(list->blockCount(), 2);
        for (const char* filter : {"ChA_RDIV", "0x15", "reg21"}) {
            dock->setFilter(filter);
            QVERIFY2(list->toPlainText().endsWith("read reg 21") && list->blockCount() == 1, filter);
        }
        QTemporaryDir dir;
        QCOMPARE(dock->save(dir.filePath("log.txt")), QString());
        QFile saved(dir.filePath("log.txt"));
        QVERIFY(saved.open(QIODevice::ReadOnly));
        QCOMPARE(saved.readAll(), list->toPlainText().toUtf8() + "\n");
    }

    // The View menu opens every window, one entry each; closing the main window closes them all with it.
    void closingTheMainWindowClosesAll()
    {
        const auto entries = main->findChildren<QAction*>(QRegularExpression("^view_"));
        QCOMPARE(entries.size(), main->windows.size() - 1);
        for (QAction* entry : entries)
            entry->trigger();
        for (auto it = main->windows.cbegin(); it != main->windows.cend(); ++it)
            QVERIFY2(it.value()->isVisible() || it.value() == main.get(), qPrintable(it.key()));
        main->show();
        QVERIFY(main->close());
        for (auto it = main->windows.cbegin(); it != main->windows.cend(); ++it)
            QVERIFY2(!it.value()->isVisible(), qPrintable(it.key()));
    }
};

QTEST_MAIN(tst_mainwindow)
#include "tst_mainwindow.moc"
