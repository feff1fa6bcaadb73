#include "app/operation_status.h"
#include "app/undo_actions.h"
#include "app/usb_log_dock.h"
#include "boardsupport.h"
#include "gui_rpc_service.h"
#include "testsupport.h"
#include "engine/form_model.h"
#include "service_block.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

// A script on the program's socket: lines sent, a reply awaited while the window's loop turns.
struct ScriptClient
{
    int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
    explicit ScriptClient(const QString& path)
    {
        sockaddr_un at{};
        at.sun_family = AF_UNIX;
        qstrncpy(at.sun_path, QFile::encodeName(path).constData(), sizeof at.sun_path);
        QCOMPARE(::connect(fd, reinterpret_cast<sockaddr*>(&at), sizeof at), 0);
    }
    ~ScriptClient() { ::close(fd); }
    void send(const QByteArray& lines) { QCOMPARE(::write(fd, lines.data(), size_t(lines.size())), ssize_t(lines.size())); }
    bool answered() { char c; return ::recv(fd, &c, 1, MSG_PEEK) > 0; }
    QJsonObject reply()
    {
        QByteArray line;
        char c = 0;
        (void)QTest::qWaitFor([&] { while (::read(fd, &c, 1) == 1 && c != '\n') line += c; return c == '\n'; }, 20000);
        return QJsonDocument::fromJson(line).object();
    }
};

// The real main window on a simulated board, offscreen with the embedded
// translation: what only the window shows of the engine's work (the keys
// and actions, the progress bar, message boxes, file dialogs, a change of a
// widget reaching the forms and what the rules make of it arriving on the
// widgets). The operations themselves are tst_worker's.
class tst_mainwindow : public QObject, OnBoard
{
    Q_OBJECT
    MainClass* main = nullptr;
    QTemporaryDir dir;

    QString path(const QString& name) const { return dir.filePath(name); }
    QAction* action(const char* name) const { return main->findChild<QAction*>(name); }
    bool progressShown() const { return main->findChild<QToolBar*>("toolBar_RegWindow")->actions().last()->isVisible(); }
    void set(const char* key, int value) { main->service->settings[key] = value; }
    // A field's widget by its stem.
    template <class W = QWidget> W* widget(const QString& stem) const
    {
        const int f = main->model()->indexOf(stem + "_ZV4280v2");
        return f < 0 ? nullptr : qobject_cast<W*>(main->findWidget(main->model()->entry(f).objectName));
    }

private slots:
    void initTestCase()
    {
        zvTestInit(true);
        if (!zvsim::Testbed::available())
            QSKIP("needs umockdev-wrapper");
        plugBoard();
        main = new MainClass;
        QVERIFY(waitIdle(main));
        bus.reset();
    }
    void init()
    {
        plugBoard();
        for (auto [key, value] : {std::pair{"ReadStyle", 2}, {"PauseTimer", 0}, {"RepeatRead", 0}})
            set(key, value);
    }
    void cleanup()
    {
        QVERIFY(waitIdle(main));
        QCOMPARE(unplugBus(), QString());
    }
    void cleanupTestCase() { delete main; }

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

    // The progress bar shows while an operation runs; any command then only
    // stops it, and the stop's message comes in a box. A load shows its
    // status bulbs grey.
    void operationInTheWindow()
    {
        set("ReadStyle", 0);
        action("action_ICGUI")->setChecked(false);
        ModalCatcher catcher;
        action("action_ICGUI")->trigger();
        QVERIFY(main->worker && progressShown());
        QTRY_VERIFY(main->progressBar->value() >= 10);
        action("action_load_default")->trigger();
        QVERIFY(waitIdle(main));
        QCOMPARE(catcher.texts, QStringList{"Interrupted"});
        QVERIFY(!progressShown() && !action("action_ICGUI")->isChecked());
        action("action_load_default")->trigger();
        QVERIFY(waitIdle(main));
        QCOMPARE(main->windowTitle(), QStringLiteral("ZV4280(v2/v3) TB 1.0.3"));
        const QImage disabled = QPixmap(":/Bulb-disabled.png").toImage();
        int bulbs = 0;
        for (const part* p : main->outputs)
            if (auto* bulb = qobject_cast<QLabel*>(p->widget))
                bulbs += bulb->pixmap(Qt::ReturnByValue).toImage() == disabled;
        QCOMPARE(bulbs, 32);
    }

    // A box's change reaches the forms; the text, mark and enabled states
    // the rules give arrive on the widgets. An unknown sender changes
    // nothing and is reported.
    void changesThroughWidgets()
    {
        auto* box = widget<QSpinBox>("ChD_LPF_CF");
        auto* shown = qobject_cast<QLineEdit*>(main->findWidget("ChD_LPF_CF_ZV4280v2_Expression"));
        QVERIFY(box && shown);
        const QString tip = shown->toolTip();
        box->setValue(17);
        QVERIFY(shown->font().italic());
        QCOMPARE(shown->toolTip(), QStringLiteral("estimated: no measured calibration for this code"));
        box->setValue(16);
        QCOMPARE(shown->text(), main->model()->text(shown->objectName()));
        QVERIFY(!shown->font().italic());
        QCOMPARE(shown->toolTip(), tip);
        auto *aad = widget<QCheckBox>("ChA_AAD_ON"), *sw = widget<QCheckBox>("ChA_AAD_LNA_SW");
        QVERIFY(aad && sw);
        aad->setChecked(true), sw->setChecked(true);
        QVERIFY(!widget("ChA_LNA_ON")->isEnabled());
        aad->setChecked(false);
        QVERIFY(widget("ChA_LNA_ON")->isEnabled());
        ModalCatcher catcher;
        QSpinBox stray;
        stray.setObjectName("strayBox");
        connect(&stray, SIGNAL(valueChanged(int)), main, SLOT(change_Value(int)));
        stray.setValue(5);
        QCOMPARE(catcher.texts, QStringList({"Невозможное событие!"}));
    }

    // F6 and F7 through their dialogs, answered as a user types a path: a name without an extension
    // gets ".hex", and with "Merge file" on the dialog does not ask to replace it; the folder of the
    // file becomes the next dialog's; a load titles the window, a refused one leaves the title, and
    // the status line names the lines that are no plain lines.
    void throughDialogs()
    {
        QVERIFY(writeFile(path("odd.hex"), ";ZV4280\nReg12 ZZ\nReg40\t5A\n"));
        QVERIFY(writeFile(path("empty.hex"), ""));
        QStringList titles, lines;
        ModalCatcher catcher;
        for (const char* typed : {"dialog", "dialog", "odd.hex", "empty.hex"}) {
            auto* poll = new QTimer(this);
            connect(poll, &QTimer::timeout, [this, poll, typed] {
                for (QWidget* w : QApplication::topLevelWidgets())
                    if (auto* dialog = qobject_cast<QFileDialog*>(w); dialog && dialog->isVisible()) {
                        dialog->findChild<QLineEdit*>("fileNameEdit")->setText(path(typed));
                        QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
                        poll->deleteLater();
                    }
            });
            poll->start(20);
            main->lastPath = QDir::rootPath();
            titles << main->windowTitle();
            QString(typed) == "dialog" ? main->on_action_GUIFILE_triggered() : main->on_action_FILEGUI_triggered();
            QVERIFY(waitIdle(main));
            QCOMPARE(main->lastPath, dir.path() + "/");
            lines << main->operationStatus->text();
            set("MergeFile", 1);
        }
        set("MergeFile", 0);
        QCOMPARE(readFile(path("dialog.hex")).count(";ZV4280\n"), 2);
        QCOMPARE(catcher.texts, QStringList{"\"" + path("empty.hex") + "\" is empty; a settings file holds register lines"});
        const QString title = "ZV4280(v2/v3) TB 1.0.3" + path("odd.hex");
        QCOMPARE(titles.mid(1) << main->windowTitle(), QStringList({titles.first(), titles.first(), title, title}));
        QVERIFY2(lines[2].endsWith("; 1 line is no plain register line: line 2 \"Reg12 ZZ\""), qPrintable(lines[2]));
        QVERIFY2(lines[3].startsWith("File load failed after "), qPrintable(lines[3]));
    }

    void repeatRead()
    {
        set("RepeatRead", 1), set("AutoPause", 1);
        bus->clearWireLog();
        auto reads = [&] { return sent().count(QByteArray::fromHex("151EC000") + QByteArray(28, 0)); };
        // When each operation starts (the bar set to 0) and ends (100).
        QElapsedTimer clock;
        clock.start();
        QList<QPair<int, qint64>> marks;
        main->progressBar->reset(); // whatever the last operation left, the start's 0 is a change
        auto mark = connect(main->progressBar, &QProgressBar::valueChanged, [&](int v) {
            if (v == 0 || v == 100)
                marks << qMakePair(v, clock.elapsed());
        });
        action("action_ICGUI")->setChecked(false);
        action("action_ICGUI")->trigger();
        QTRY_VERIFY_WITH_TIMEOUT(reads() >= 2, 5000);
        QVERIFY(action("action_ICGUI")->isChecked());
        action("action_ICGUI")->trigger(); // F11 ends it
        QVERIFY(waitIdle(main));
        disconnect(mark);
        // The stop has been dealt with; no read may follow a pause later.
        const int stopped = reads(), started = main->operationsStarted;
        QTest::qWait(1500);
        QCOMPARE(main->operationsStarted, started);
        // Each read starts a pause after the end of the one before.
        QVERIFY(marks.size() >= 4);
        QCOMPARE(QList<int>({marks.at(0).first, marks.at(1).first, marks.at(2).first}), QList<int>({0, 100, 0}));
        QVERIFY2(marks.at(2).second - marks.at(1).second >= 900, qPrintable(QString::number(marks.at(2).second - marks.at(1).second)));

        // A failure ends it too, with the action unchecked.
        set("AutoPause", 0);
        ModalCatcher catcher;
        action("action_ICGUI")->trigger();
        QTRY_VERIFY(reads() >= stopped + 2);
        bus->unplugAfter(board, 0);
        QTRY_COMPARE(catcher.texts.size(), 1); // the failure's box, closed
        QVERIFY(!main->running && !action("action_ICGUI")->isChecked());
        // With no pause a next read would be the next event.
        const int done = main->operationsStarted;
        QCoreApplication::processEvents();
        QCOMPARE(main->operationsStarted, done);
        bus->removeBoard(board);
        board = bus->addBoard({0x2976, 3, 1, 9});
    }

    // A repeat-read timer that fires while a failure's message waits for the
    // user only stops what has already ended: no read starts behind the box,
    // even once the ended worker is gone.
    void repeatTimerBehindFailure()
    {
        set("RepeatRead", 1);
        bus->unplugAfter(board, 0);
        bool boxSeen = false, startedBehind = false;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || boxSeen)
                return;
            boxSeen = true;
            QVERIFY(QTest::qWaitFor([&] { return main->worker.isNull(); }, 1000));
            action("action_ICGUI")->setChecked(true);
            QMetaObject::invokeMethod(main, "on_action_ICGUI_triggered", Qt::DirectConnection);
            startedBehind = !main->worker.isNull();
            box->done(0);
        });
        poll.start(5);
        action("action_GUIIC")->trigger();
        QTRY_VERIFY_WITH_TIMEOUT(boxSeen, 5000);
        QVERIFY(waitIdle(main));
        QVERIFY(!startedBehind && !action("action_ICGUI")->isChecked());
    }

    // A read that fails leaves nothing standing for the chip: grey bulbs, and the failure stays in
    // the status line after its box.
    void failedRead()
    {
        bus->unplugAfter(board, 0);
        ModalCatcher catcher;
        action("action_ICGUI")->setChecked(false);
        action("action_ICGUI")->trigger();
        QVERIFY(waitIdle(main));
        QCOMPARE(catcher.texts.size(), 1);
        QCOMPARE(main->model()->bulb(main->model()->indexOf("AOK_ZV4280v2")), Bulb::Disabled);
        QVERIFY2(main->operationStatus->text().startsWith("Chip read failed after "), qPrintable(main->operationStatus->text()));
        QVERIFY(!main->worker && !progressShown());
    }

    // A hand edit is one step with what its rules change (keys typed into a spin box are one edit), a
    // load another; Ctrl+Z and Ctrl+Shift+Z, even in a spin box, show the images again through the
    // rules and start no operation, so the chip is never written.
    void undoRedo()
    {
        QAction* undo = main->undo()->undoAction();
        FormModel* m = main->model();
        auto image = [m] { return QByteArray(reinterpret_cast<const char*>(m->images().guiImage), 291); };
        auto lnaOpen = [this] { return widget("ChA_LNA_ON")->isEnabled(); };
        auto shown = [m] { return m->text(m->outputObject("ChA_PLL_RDiv_ZV4280v2")); };
        auto* aad = widget<QCheckBox>("ChA_AAD_ON");
        auto* rdiv = widget<QSpinBox>("ChA_PLL_RDiv");
        rdiv->window()->show();
        QApplication::setActiveWindow(rdiv->window());
        aad->setChecked(false);
        widget<QCheckBox>("ChA_LNA_ON")->setChecked(true);
        widget<QCheckBox>("ChA_AAD_LNA_SW")->setChecked(true);
        aad->setChecked(true);
        widget<QComboBox>("ChA_PLL_DIV_MD")->setCurrentIndex(0);
        rdiv->setValue(5);
        const QByteArray before = image();
        const QString display = shown();
        const int started = main->operationsStarted;
        aad->setChecked(false);
        QVERIFY(lnaOpen());
        rdiv->selectAll();
        QTest::keyClicks(rdiv, "12");
        QCOMPARE(undo->text(), QStringLiteral("Undo ChA_PLL_RDiv"));
        QTest::keyClick(rdiv, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(shown(), display);
        QCOMPARE(undo->text(), QStringLiteral("Undo ChA_AAD_ON"));
        QTest::keyClick(rdiv, Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(!lnaOpen());
        QCOMPARE(image(), before);
        QTest::keyClick(rdiv, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(lnaOpen());
        const QByteArray edited = image();
        main->on_action_load_default_triggered();
        QVERIFY(waitIdle(main));
        QVERIFY(image() != edited);
        QCOMPARE(undo->text(), QStringLiteral("Undo load of default.hex"));
        undo->trigger();
        QCOMPARE(image(), edited);
        QCOMPARE(main->operationsStarted, started + 1);
    }

    // The USB log takes frames from any thread while closed, shows them when
    // opened, filters them by register (number or name) and saves what shows.
    void usbLog()
    {
        UsbLogDock* dock = main->usbLog;
        QVERIFY(dock->isHidden());
        dock->clear();
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

    // Scripts and the toolbar take turns. While F10 waits out its pause a request is answered "busy",
    // or with "wait" runs after the end, the waiting ones in their order, each once. F11 during a
    // request's chip read stops the request before it writes, even when the read goes on to its end.
    void requestsTakeTurns()
    {
        GuiRpcService service(*main);
        QString error;
        QVERIFY2(service.listen(path("tb.sock"), &error), qPrintable(error));
        auto call = [](const char* method, const QByteArray& params) {
            return "{\"jsonrpc\": \"2.0\", \"id\": 1, \"method\": \"" + QByteArray(method) + "\", \"params\": {" + params
                   + "}}\n";
        };
        // Answered once the server holds the request behind it.
        const QByteArray info = call("session.info", "");
        auto write40 = [&](int v) {
            return info + call("registers.write", "\"wait\": true, \"values\": {\"40\": " + QByteArray::number(v) + "}");
        };
        set("InteractiveRefresh", 1), set("PauseTimer", 3600000), set("ChangesOnly", 0);
        action("action_GUIIC")->trigger();
        const int gui41 = main->model()->images().guiImage[41];
        ScriptClient busy(service.path()), first(service.path()), second(service.path()), third(service.path());
        busy.send(call("registers.write", "\"values\": {\"41\": " + QByteArray::number(gui41 ^ 0xFF) + "}"));
        const QJsonObject refused = busy.reply()["error"].toObject();
        QCOMPARE(refused["code"].toInt(), -32004);
        QVERIFY2(refused["message"].toString().contains("add \"wait\": true"), qPrintable(refused["message"].toString()));
        first.send(write40(1)), first.reply();
        second.send(info + call("registers.read", "\"wait\": true, \"first\": 40, \"count\": 1")), second.reply();
        third.send(write40(2)), third.reply();
        QVERIFY(main->running && !first.answered() && !second.answered() && !third.answered());
        ModalCatcher catcher;
        action("action_GUIIC")->trigger();
        QCOMPARE(first.reply()["result"].toObject()["written"].toArray(), QJsonArray{40});
        QCOMPARE(second.reply()["result"].toObject()["values"].toArray(), QJsonArray{1});
        QCOMPARE(third.reply()["result"].toObject()["readBack"].toObject(), QJsonObject({{"40", 2}}));
        QCOMPARE(catcher.texts, QStringList{"Interrupted"});
        QCOMPARE(int(quint8(chip()[40])), 2);
        QCOMPARE(int(quint8(chip()[41])), gui41);
        set("ChangesOnly", 1);

        const char rdiv = chip()[21];
        auto press = connect(main->progressBar, &QProgressBar::valueChanged, this, [this](int v) {
            if (v == 75)
                action("action_ICGUI")->trigger();
        });
        first.send(call("fields.set", "\"values\": {\"ChA_PLL_RDiv\": " + QByteArray::number((rdiv & 0x1F) ^ 1) + "}"));
        const QJsonObject stopped = first.reply()["error"].toObject();
        QCOMPARE(stopped["code"].toInt(), -32004);
        QVERIFY2(stopped["message"].toString().contains("stopped by a key"), qPrintable(stopped["message"].toString()));
        QCOMPARE(chip()[21], rdiv);
        QVERIFY(!action("action_ICGUI")->isChecked() && !main->running);
        // A load stopped in its pause leaves the section before it on the chip, and says so.
        QVERIFY(writeFile(path("paused.hex"), "Reg40 11\nReg41 22\nReg42 33\nReg-1 00\nReg43 44\n"));
        const char reg43 = chip()[43];
        first.send(call("file.load", "\"path\": \"" + path("paused.hex").toUtf8() + "\""));
        const QJsonObject cut = first.reply()["error"].toObject();
        disconnect(press);
        QCOMPARE(cut["code"].toInt(), -32004);
        QCOMPARE(cut["data"].toObject()["uncertain"].toArray(), (QJsonArray{40, 41, 42, 43}));
        QCOMPARE(chip().mid(40, 4), QByteArray::fromHex("112233") + reg43);
    }

    // The View menu opens every window, one entry each; closing the main window closes them all with it.
    void closingTheMainWindowClosesAll()
    {
        const auto entries = main->findChildren<QAction*>(QRegularExpression("^view_"));
        QCOMPARE(entries.size(), main->windows.size() - 1);
        for (QAction* entry : entries)
            entry->trigger();
        for (auto it = main->windows.cbegin(); it != main->windows.cend(); ++it)
            QVERIFY2(it.value()->isVisible() || it.value() == main, qPrintable(it.key()));
        main->show();
        QVERIFY(main->close());
        for (auto it = main->windows.cbegin(); it != main->windows.cend(); ++it)
            QVERIFY2(!it.value()->isVisible(), qPrintable(it.key()));
    }
};

QTEST_MAIN(tst_mainwindow)
#include "tst_mainwindow.moc"
