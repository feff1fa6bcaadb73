#include "engine/form_model.h"
#include "boardsupport.h"
#include "clerk.h"
#include "service_block.h"

// The operations of the real main window on a simulated board: chip read and
// write, the stop request, faults on the wire, repeat read, the end of an
// operation in the widgets, and the function keys of every window. How the
// frames themselves are laid out is for tst_usb to pin.
class tst_worker : public QObject, OnBoard
{
    Q_OBJECT
    MainClass* main = nullptr;
    mapshow* map = nullptr;
    QList<int> progress; // the progress bar's values since the test began

    QAction* action(const char* name) const { return main->findChild<QAction*>(name); }
    bool progressShown() const { return main->findChild<QToolBar*>("toolBar_RegWindow")->actions().last()->isVisible(); }
    void set(const char* key, int value) { main->service->settings[key] = value; }
    // A worker for a command, with the panel's settings.
    clerk* worker(int command, const QString& file = QString())
    {
        return main->newWorker(clerk::Command(command), main->service->panelSettings(), file);
    }
    QByteArray image(const quint8* i) const { return imageBytes(i, int(map->registerCount)); }
    QByteArray images() const { return image(map->guiImage) + image(map->icImage) + image(map->cfgImage); }
    // Runs one command from its action and returns the messages it showed.
    QStringList run(const char* actionName)
    {
        ModalCatcher catcher;
        action(actionName)->trigger();
        return waitIdle(main) ? catcher.texts : QStringList{"still running"};
    }
    QStringList read() { return action("action_ICGUI")->setChecked(false), run("action_ICGUI"); }
    // A read fills both images with the chip's registers, and every editing
    // widget stands for the code guiImage holds (a combo box without an item
    // for its code stands for the code the image keeps).
    void checkReadIn()
    {
        QCOMPARE(image(map->icImage), chip());
        QCOMPARE(image(map->guiImage), chip());
        for (const part* p : map->parts)
            if (!main->outputs.contains(p->name))
                QVERIFY2(map->getPartValue(p->name) == map->getBrim(p->position, p->width), qPrintable(p->name));
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
        map = main->firstMap();
        bus.reset();
        connect(main->progressBar, &QProgressBar::valueChanged, this, [this](int value) { progress << value; });
    }
    void init()
    {
        plugBoard();
        progress.clear();
        for (auto [key, value] : {std::pair{"ReadStyle", 2}, {"WriteStyle", 1}, {"ChangesOnly", 1},
                                  {"InteractiveRefresh", 1}, {"PauseTimer", 0}, {"RepeatRead", 0}})
            set(key, value);
    }
    void cleanup()
    {
        QVERIFY(waitIdle(main));
        QCOMPARE(unplugBus(), QString());
    }
    void cleanupTestCase() { delete main; }

    // The progress bar's values tell the style: one a register, or one a read.
    void readInEachStyle()
    {
        for (int style : {0, 1, 2}) {
            fillChip();
            set("ReadStyle", style);
            progress.clear();
            QCOMPARE(read(), QStringList());
            checkReadIn();
            QList<int> expected{0, 75, 100};
            for (int p = 1; style == 0 && p < 75; ++p)
                expected.insert(p, p);
            QCOMPARE(progress, expected);
            QVERIFY(!progressShown() && !action("action_ICGUI")->isChecked());
        }
    }

    // A chip whose clock output type and source both differ from the widgets:
    // the type's rules re-fire the source before the source has been set.
    void readKeepsTheChipsClockCodes()
    {
        fillChip();
        read();
        for (auto [type, source] : {std::pair{0, 0}, {2, 1}, {3, 4}, {1, 2}}) {
            bus->chip(board).setReg(10, quint8((bus->chip(board).reg(10) & 0xE0) | type << 3 | source));
            QCOMPARE(read(), QStringList());
            QCOMPARE(image(map->guiImage), chip());
            QCOMPARE(map->getPartValue("CLK_OUT_TP_ZV4280v2"), quint32(type));
            QCOMPARE(map->getPartValue("CLK_SOURCE_ZV4280v2"), quint32(source));
        }
    }

    // Any command while an operation runs only stops it (F5 here loads
    // nothing); only a read one register at a time sees the request.
    void stopRequest()
    {
        for (int style : {0, 1, 2}) {
            read();
            fillChip();
            set("ReadStyle", style);
            std::fill(map->cfgImage, map->cfgImage + map->registerCount, 0xEE);
            const QByteArray before = images();
            ModalCatcher catcher;
            action("action_ICGUI")->trigger();
            QVERIFY(main->worker && progressShown());
            if (style == 0)
                QTRY_VERIFY(main->progressBar->value() >= 10);
            action("action_load_default")->trigger();
            QVERIFY(waitIdle(main));
            QCOMPARE(catcher.texts, style == 0 ? QStringList{"Interrupted"} : QStringList());
            QCOMPARE(images() == before, style == 0);
            QCOMPARE(image(map->cfgImage), QByteArray(int(map->registerCount), char(0xEE)));
            QVERIFY(!action("action_ICGUI")->isChecked());
        }
    }

    // Release code 1 in the low three bits of register 1 is refused by the
    // commands that reach the chip (1 to 4).
    void chipIdentity()
    {
        set("InteractiveRefresh", 0);
        QTemporaryDir dir;
#include "engine/form_model.h"
    }

    // Commands 7 and 8, one register by number: a failed read or write ends
    // as any failed register operation does, and "RegisterValue" keeps what
    // it held.
    void singleRegister_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("message");
        for (int command : {7, 8}) {
            QTest::addRow("command %d", command) << command << 12 << "" << "";
            QTest::addRow("command %d, no board", command) << command << 12 << "removed" << "Interface error 5 ";
            QTest::addRow("command %d, unplugged", command) << command << 12 << "unplug" << "USB transfer error: LIBUSB_ERROR_NO_DEVICE";
            QTest::addRow("command %d, register 16500", command)
                << command << 16500 << "" << "USB transfer error: register number 16500 is out of range, 0 to 16383";
        }
    }
    void singleRegister()
    {
        QFETCH(int, command);
        QFETCH(int, number);
        QFETCH(QString, fault);
        bus->chip(board).setReg(12, 0x5A);
        set("RegisterNumber", number);
        if (fault == "removed")
            bus->removeBoard(board);
        else if (fault == "unplug")
            bus->unplugAfter(board, 2); // after the identity read
        std::unique_ptr<clerk> w(worker(command));
        w->settings.registerValue = 0x77;
        QTEST(runToEnd(w.get()).value(0), "message");
        const bool done = fault.isEmpty() && number == 12;
        QCOMPARE(w->settings.registerValue, done && command == 7 ? 0x5A : 0x77);
        QCOMPARE(bus->chip(board).reg(12), done && command == 8 ? 0x77 : 0x5A);
    }

#include "engine/form_model.h"
    void changesOnlyWrite()
    {
        fillChip();
        read();
        set("InteractiveRefresh", 0);
        bus->clearWireLog();
        const int opens = bus->opens(board);
        QCOMPARE(run("action_GUIIC"), QStringList());
        QCOMPARE(sent(), QList<QByteArray>({QByteArray::fromHex("1503800100"), QByteArray::fromHex("1500")}));
        QCOMPARE(bus->opens(board), opens + 2); // the identity read and the write

        // One field changed: exactly its register, in a block frame, with
        // the empty frame behind it as a count below ten leaves none.
        auto* rdiv = qobject_cast<QSpinBox*>(map->parts.value("ChA_PLL_RDiv_ZV4280v2")->widget);
        rdiv->setValue(rdiv->value() == 7 ? 9 : 7);
        const quint8 reg21 = map->guiImage[21];
        bus->clearWireLog();
        QCOMPARE(run("action_GUIIC"), QStringList());
        QCOMPARE(sent().mid(1), QList<QByteArray>({QByteArray::fromHex("15030015") + char(reg21)}));
        QCOMPARE(bus->chip(board).reg(21), reg21);
        // With no read-back the chip's answer is not in icImage: the same
        // register goes again, with the map's first and last beside it.
        map->guiImage[0] ^= 0x01, map->guiImage[290] ^= 0x80;
        QByteArray frame = QByteArray::fromHex("1509");
        for (int r : {0, 21, 290})
            frame.append(char(r >> 8)).append(char(r)).append(char(map->guiImage[r]));
        bus->clearWireLog();
        run("action_GUIIC");
        QCOMPARE(sent().mid(1), QList<QByteArray>({frame}));
    }

    // A full write in each style, one register at a time, in blocks and by
    // autoincrement: the count of frames tells the style.
    void fullWrite()
    {
        set("ChangesOnly", 0), set("InteractiveRefresh", 0);
        for (auto [style, frames] : {std::pair{0, 291}, {1, 30}, {2, 11}}) {
            for (quint32 r = 0; r < map->registerCount; ++r)
                map->guiImage[r] = quint8(random());
            set("WriteStyle", style);
            bus->clearWireLog();
            const QByteArray gui = image(map->guiImage);
            QCOMPARE(run("action_GUIIC"), QStringList());
            QCOMPARE(sent().size(), 1 + frames); // after the identity read
            QCOMPARE(chip().mid(6), gui.mid(6));
        }
    }

    void writeReadsBack()
    {
        set("PauseTimer", 30);
        auto* rdiv = qobject_cast<QSpinBox*>(map->parts.value("ChA_PLL_RDiv_ZV4280v2")->widget);
        rdiv->setValue(rdiv->value() == 5 ? 6 : 5);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(run("action_GUIIC"), QStringList());
        QVERIFY(clock.elapsed() >= 30);
        QCOMPARE(progress, QList<int>({0, 45, 0, 75, 100}));
        checkReadIn();

        // A stop once the write is out ends the operation in the pause.
        set("PauseTimer", 60000);
        rdiv->setValue(rdiv->value() + 1);
        ModalCatcher catcher;
        bus->clearWireLog();
        action("action_GUIIC")->trigger();
        QTRY_COMPARE(sent().size(), 2); // the identity read and the write
        action("action_GUIIC")->trigger();
        QVERIFY(waitIdle(main, 3000));
        QCOMPARE(catcher.texts, QStringList({"Interrupted"}));
    }

    // The board fails in the middle of a read: a message, the images as they
    // were, and after a stall or a short reply the next read works. A board
    // plugged in again is for the end-to-end tests to read.
    void faults_data()
    {
        QTest::addColumn<int>("style");
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("message");
        for (int style : {0, 1, 2}) {
            QTest::addRow("unplugged, style %d", style) << style << "unplug" << "USB transfer error: LIBUSB_ERROR_NO_DEVICE";
            QTest::addRow("stall, style %d", style) << style << "stall" << "USB transfer error: LIBUSB_ERROR_PIPE";
            QTest::addRow("short reply, style %d", style) << style << "short" << "USB transfer error: short reply, 3 of ";
        }
    }
    void faults()
    {
        QFETCH(int, style);
        QFETCH(QString, fault);
        QFETCH(QString, message);
        read();
        fillChip();
        set("ReadStyle", style);
        const QByteArray before = images();
        // The identity read, then three exchanges go through.
        if (fault == "unplug")
            bus->unplugAfter(board, 2 + 2 * 3);
        else
            bus->failTransfer(board, {fault == "stall" ? zvsim::TransferFault::Stall : zvsim::TransferFault::Short,
                                      false, 1 + 3, 3});
        const QStringList messages = read();
        QVERIFY2(messages.size() == 1 && messages.first().startsWith(message), qPrintable(messages.join('|')));
        QCOMPARE(images(), before);
        QVERIFY(!main->worker && !progressShown());
        if (fault != "unplug") {
            QCOMPARE(read(), QStringList());
            QCOMPARE(image(map->guiImage), chip());
        }
    }

    // After F5 has loaded the file the chip's own status fields show that
    // they are unknown; the displays keep what the rules made of the file.
    void loadMarksStatusUnknown()
    {
        std::fill(map->cfgImage, map->cfgImage + map->registerCount, 0xEE);
        QStringList unknownBefore; // displays of the other revision keep their text
        for (const part* p : main->outputs)
            if (p->widget->property("text").toString() == "n/a")
                unknownBefore << p->widget->objectName();
        QCOMPARE(run("action_load_default"), QStringList());
        QCOMPARE(map->cfgImage[11], quint8(4)); // the C-divider of default.hex
        QCOMPARE(main->windowTitle(), QStringLiteral("ZV4280(v2/v3) TB 1.0.3"));
        const QImage disabled = QPixmap(":/Bulb-disabled.png").toImage();
        int bulbs = 0, fields = 0;
        for (const part* p : main->outputs) {
            const QString name = p->widget->objectName(), text = p->widget->property("text").toString();
            if (auto* bulb = qobject_cast<QLabel*>(p->widget))
                bulbs += bulb->pixmap(Qt::ReturnByValue).toImage() == disabled;
            else if (!name.endsWith("_Expression"))
                fields += text == "n/a";
            else
                QVERIFY2(text != "n/a" || unknownBefore.contains(name), qPrintable(name));
        }
        QCOMPARE(qMakePair(bulbs, fields), qMakePair(32, 46));
    }

    // After a read that changed no register no widget fires, and yet every
    // display with a rule is written again.
    void readRecomputesDisplays()
    {
        read();
        QList<QLineEdit*> displays;
        for (const part* p : main->outputs)
            if (p->widget->objectName().endsWith("_Expression"))
                displays << qobject_cast<QLineEdit*>(p->widget), main->model()->setText(p->widget->objectName(), QString());
        QCOMPARE(displays.size(), 103);
        QCOMPARE(read(), QStringList());
        QCOMPARE(int(std::count_if(displays.begin(), displays.end(), [](QLineEdit* d) { return !d->text().isEmpty(); })), 88);
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

    void functionKeysInEveryWindow()
    {
        for (const char* window : {"dockA", "service", "ZV4280v2"}) {
            QWidget* w = main->windows.value(window);
            QWidget* target = window == QByteArray("ZV4280v2") ? w->findChild<QTableView*>("RegisterTable") : w;
            QTest::keyClick(target, Qt::Key_F5);
            QVERIFY2(main->worker, window);
            QVERIFY(waitIdle(main));
            // F11 goes past the action: unchecked, it starts nothing.
            QTest::keyClick(target, Qt::Key_F11);
            QVERIFY2(!main->worker, window);
        }
    }
};

QTEST_MAIN(tst_worker)
#include "tst_worker.moc"
