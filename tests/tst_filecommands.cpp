#include "boardsupport.h"
#include "clerk.h"
#include "gui_save.h"
#include "operation_status.h"
#include "service_block.h"

// The file commands of the real main window on a simulated board: file to
// chip, chip to file, file to GUI and GUI to file, the map-name tests, and
// the saves that fail.
class tst_filecommands : public QObject, OnBoard
{
    Q_OBJECT
    MainClass* main = nullptr;
    mapshow* map = nullptr;
    QTemporaryDir dir;

    void set(const char* key, int value) { main->service->settings[key] = value; }
    QString path(const QString& name) const { return dir.filePath(name); }
    QByteArray image(const quint8* i) const { return imageBytes(i, int(map->registerCount)); }
    static void write(const QString& file, const QByteArray& text) { QVERIFY(writeFile(file, text)); }
    static QByteArray read(const QString& file) { return readFile(file); }
    // Runs one command in a worker of its own and gives its end message;
    // `progress` hears the progress it reports.
    QString run(int command, const QString& file, QList<int>* progress = nullptr)
    {
        std::unique_ptr<clerk> worker(main->newWorker(clerk::Command(command), main->service->panelSettings(), file));
        if (progress)
            connect(worker.get(), &clerk::percent_up, this, [progress](int p) { *progress << p; });
        const QStringList ends = runToEnd(worker.get());
        return ends.size() == 1 ? ends.first() : QStringLiteral("<no single end message>");
    }
private slots:
    void initTestCase()
    {
        zvTestInit(true);
        if (!zvsim::Testbed::available())
            QSKIP("needs umockdev-wrapper");
        QVERIFY(dir.isValid());
        main = new MainClass;
        QVERIFY(waitIdle(main));
        map = main->firstMap();
    }
    void init()
    {
        plugBoard();
        for (auto [key, value] : {std::pair{"ConfigCheck", 1}, {"PauseTimer", 0}, {"MergeFile", 0},
                                  {"HexComment", 0}, {"ChangesOnly", 0}})
            set(key, value);
    }
    void cleanup()
    {
        QVERIFY(waitIdle(main));
        QCOMPARE(unplugBus(), QString());
    }
    void cleanupTestCase() { delete main; }

    // F6 and F7 through their dialogs, answered as a user types a path: a name without an extension
    // gets ".hex", and with "Merge file" on the dialog does not ask to replace it; the folder of the
    // file becomes the next dialog's; a load titles the window, a refused one leaves the title, and
    // the status line names the lines that are no plain lines.
    void throughDialogs()
    {
        write(path("odd.hex"), ";ZV4280\nReg12 ZZ\nReg40\t5A\n");
        write(path("empty.hex"), "");
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
        QCOMPARE(read(path("dialog.hex")).count(";ZV4280\n"), 2);
        QCOMPARE(catcher.texts, QStringList{"\"" + path("empty.hex") + "\" is empty; a settings file holds register lines"});
        const QString title = "ZV4280(v2/v3) TB 1.0.3" + path("odd.hex");
        QCOMPARE(titles.mid(1) << main->windowTitle(), QStringList({titles.first(), titles.first(), title, title}));
        QVERIFY2(lines[2].endsWith("; 1 line is no plain register line: line 2 \"Reg12 ZZ\""), qPrintable(lines[2]));
        QVERIFY2(lines[3].startsWith("File load failed after "), qPrintable(lines[3]));
    }

    // Each section goes to the chip as one block, in file order, after a
    // pause of its own (a map line or register -1); a register may be
    // written twice, and a value that is no byte goes as a reader reads it.
    void fileToChipInSections()
    {
        write(path("two.hex"),
              ";ZV4280v2\nReg30\t11\n  Reg31 0x22 //x\nReg12 5F5\n// Reg99 77\n;ZV4280.2\nReg30\t33\nReg-1 00\nReg32\t44\n");
        set("PauseTimer", 60);
        bus->clearWireLog();
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(run(3, path("two.hex")), QString());
        QVERIFY(clock.elapsed() >= 180);
        QCOMPARE(sent().mid(1), QList<QByteArray>({QByteArray::fromHex("1509001E11001F22000CF5"),
                                                   QByteArray::fromHex("1503001E33"), QByteArray::fromHex("1503002044")}));
        QCOMPARE(bus->chip(board).reg(30), quint8(0x33));
        QCOMPARE(bus->chip(board).reg(31), quint8(0x22));
    }

    // A board replugged between two sections ends the load there, and the
    // message says how far it got; the new board gets nothing. A long
    // section goes in blocks, with progress after each.
    void fileToChipAcrossAReplug()
    {
        QByteArray text;
        for (int section = 1; section <= 3; ++section) // no map line: no pause before the first
            for (int r = 0; r < 10; ++r)
                text += (r == 0 && section > 1 ? ";ZV4280v2\nReg" : "Reg") + QByteArray::number(20 * section + r) + " "
                        + QByteArray::number(0x11 * section, 16) + "\n";
        write(path("sections.hex"), text);
        // The first section is in when the worker tells its progress; it
        // waits for this slot, which replugs the board.
        int replugged = -1;
        QByteArray fresh;
        QList<int> progress;
        std::unique_ptr<clerk> worker(main->newWorker(clerk::Command::FileToChip, main->service->panelSettings(),
                                                      path("sections.hex")));
        connect(worker.get(), &clerk::percent_up, this, [&](int p) {
            progress << p;
            if (replugged < 0) {
                bus->removeBoard(board);
                replugged = bus->addBoard({0x2976, 3, 1, 6});
                fresh = bus->registers(replugged);
            }
        }, Qt::BlockingQueuedConnection);
        QCOMPARE(runToEnd(worker.get()),
                 QStringList{"Write block error\nsections 1 of 3 written (10 of 30 registers); the board changed"});
        QCOMPARE(progress, QList<int>{33});
        QCOMPARE(bus->registers(replugged), fresh);

        QByteArray longSection = ";ZV4280v2\n";
        for (int i = 0; i < 2500; ++i)
            longSection += "Reg" + QByteArray::number(i % 291) + " 5A\n";
        write(path("long.hex"), longSection);
        progress.clear();
        QCOMPARE(run(3, path("long.hex"), &progress), QString());
        QCOMPARE(progress, (QList<int>{40, 80, 100}));
        QCOMPARE(bus->registers(replugged).at(100), char(0x5A));
    }

    // Files that no load takes are refused whole, before anything is sent
    // or applied: by F5, F7 and F9 alike a file that is none, and by F9 a
    // register line that is no register, with the line named.
    void refusedFiles_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("message"); // FILE stands for the file's path
        // What makes a whole file bad is for tst_hexfile to pin.
        for (int command : {3, 5})
            QTest::addRow("command %d, map line only", command) << command << QByteArray(";ZV4280v2\n") << "\"FILE\" holds no register line";
        const std::pair<const char*, const char*> lines[] = {
            {"Reg99999999999 05", "no register \"99999999999\": registers are 0 to 290"},
            {"Reg16500 01", "no register \"16500\": registers are 0 to 290"},
            {"Reg-2 05", "no register \"-2\": registers are 0 to 290"},
            {"RegX 05", "no register \"X\": registers are 0 to 290"}};
        for (auto [line, why] : lines)
            QTest::addRow("command 3, %s", line) << 3 << ";ZV4280v2\nReg20 55\n" + QByteArray(line) + "\nReg21 66\n"
                                                 << QString("FILE, line 3: %1 (\"%2\")").arg(why, line);
    }
    void refusedFiles()
    {
        QFETCH(int, command);
        QFETCH(QByteArray, text);
        QFETCH(QString, message);
        write(path("refused.hex"), text);
        bus->clearWireLog();
        const QByteArray images = image(map->guiImage) + image(map->cfgImage);
        QCOMPARE(run(command, path("refused.hex")), message.replace("FILE", path("refused.hex")));
        QCOMPARE(sent().size(), 1); // the identity read alone
        QCOMPARE(image(map->guiImage) + image(map->cfgImage), images);
    }

    // Where the name of the map in a file is looked at, and what it must be.
    void mapNames_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("configCheck");
        QTest::addColumn<bool>("accepted");
        const QByteArray saved = ";ZV4280\nReg40\t5A\n", exact = ";ZV4280v2\nReg40\t5A\n", bare = "Reg40\t5A\n",
                         other = ";XY12\nReg40\t5A\n";
        for (int check : {1, 0}) {
            QTest::addRow("file to chip, saved by the tool, check %d", check) << 3 << saved << check << (check == 0);
            QTest::addRow("file to chip, exact name, check %d", check) << 3 << exact << check << true;
            QTest::addRow("file to chip, no map line, check %d", check) << 3 << bare << check << true;
            QTest::addRow("file to chip, other map, check %d", check) << 3 << other << check << (check == 0);
            QTest::addRow("file to GUI, saved by the tool, check %d", check) << 5 << saved << check << true;
            QTest::addRow("file to GUI, exact name, check %d", check) << 5 << exact << check << true;
            QTest::addRow("file to GUI, no map line, check %d", check) << 5 << bare << check << (check == 0);
            QTest::addRow("file to GUI, other map, check %d", check) << 5 << other << check << (check == 0);
        }
    }
    void mapNames()
    {
        QFETCH(int, command);
        QFETCH(QByteArray, text);
        QFETCH(int, configCheck);
        QFETCH(bool, accepted);
        write(path("names.hex"), text);
        set("ConfigCheck", configCheck);
        bus->chip(board).setReg(40, 0);
        map->guiImage[40] = 0;
        const QByteArray images = image(map->guiImage) + image(map->cfgImage);
        const QString needs = command == 3 ? "\n" + path("names.hex") + " needs the map line ;ZV4280v2" : "";
        QCOMPARE(run(command, path("names.hex")), accepted ? QString() : "RegMap name is incorrect\nor not exist" + needs);
        const quint8 landed = command == 3 ? bus->chip(board).reg(40) : map->guiImage[40];
        QCOMPARE(landed, quint8(accepted ? 0x5A : 0));
        if (!accepted)
            QCOMPARE(image(map->guiImage) + image(map->cfgImage), images);
        if (!accepted && command == 3)
            QCOMPARE(sent().size(), 1); // the identity read alone
    }

    // A file of four registers, one of them past 106: cfgImage is that file, guiImage keeps every
    // other register; a later line wins, a register beyond the image is
    // passed over, and a missing file changes nothing.
    void fileToGui()
    {
        std::fill_n(map->guiImage, map->registerCount, quint8(0xEE));
        write(path("three.hex"), ";ZV4280\nReg0\t01\nReg1\t02\nReg2\t03\nReg1\t12\nReg290\t2A\nReg291\t44\nReg99999\t55\n");
        QCOMPARE(run(5, path("three.hex")), QString());
        QByteArray cfg(int(map->registerCount), 0), gui(int(map->registerCount), char(0xEE));
        cfg[0] = gui[0] = 1, cfg[1] = gui[1] = 0x12, cfg[2] = gui[2] = 3, cfg[290] = gui[290] = 0x2A;
        QCOMPARE(image(map->cfgImage), cfg);
        QCOMPARE(image(map->guiImage), gui);
        QCOMPARE(run(5, path("missing.hex")), QStringLiteral("\".hex\" file is not available"));
        QCOMPARE(image(map->guiImage), gui);
        QCOMPARE(run(3, path("missing.hex")), QStringLiteral("\".hex\" file is not available"));
    }

    void chipToFile()
    {
        fillChip();
        QCOMPARE(run(4, path("chip.hex")), QString());
        QByteArray expected = ";ZV4280\n";
        for (int r = 0; r < 291; ++r)
            expected += "Reg" + QByteArray::number(r) + '\t'
                        + QByteArray::number(bus->chip(board).reg(r), 16).rightJustified(2, '0').toUpper() + '\n';
        QCOMPARE(read(path("chip.hex")), expected);
        // Appended, the file grows by a second section.
        set("MergeFile", 1);
        QCOMPARE(run(4, path("chip.hex")), QString());
        QCOMPARE(read(path("chip.hex")).count(";ZV4280\n"), 2);
        // No board: the old file stays as it was.
        set("MergeFile", 0);
        bus->removeBoard(board);
        QCOMPARE(run(4, path("chip.hex")), QStringLiteral("WINUSB: USB interface error "));
        QCOMPARE(read(path("chip.hex")).count(";ZV4280\n"), 2);
    }

    // A disk that fills up: F6 and chip to file say so, and the old file
    // stays; a folder in the way of the file: the save says so. (F6 and F7
    // through their file dialogs are for the end-to-end tests.)
    void failedSaves()
    {
        set("HexComment", 1);
        const QByteArray before = ";ZV4280\nReg0\t12\n";
        write(path("gui.hex"), before);
        limitFileSize(2048);
        const QStringList full = {run(6, path("gui.hex")), run(4, path("gui.hex"))};
        limitFileSize(-1);
        const QString fullMessage = "\"" + path("gui.hex") + "\" could not be written (File too large); the file is as it was";
        QCOMPARE(full, QStringList({fullMessage, fullMessage}));
        QCOMPARE(read(path("gui.hex")), before);
        QVERIFY(QDir(dir.path()).mkpath("taken.hex"));
        QCOMPARE(run(6, path("taken.hex")), QStringLiteral("\".hex\" file is not available"));
        QCOMPARE(run(4, path("no/such.hex")), "\".hex\" file is not available\nthe folder \"" + path("no") + "\" does not exist");
        QVERIFY(QFileInfo(path("taken.hex")).isDir());
    }
};

QTEST_MAIN(tst_filecommands)
#include "tst_filecommands.moc"
