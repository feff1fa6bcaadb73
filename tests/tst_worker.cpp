#include "boardsupport.h"
#include "clerk.h"
#include "engine/form_model.h"
#include "register_images.h"
#include "translation.h"
#include "usb_link.h"

// The worker on a simulated board with the register images, the forms'
// state and the panel's settings alone: chip read and write, the files to
// and from the chip and the forms, the stop request, faults on the wire.
// How the frames themselves are laid out is for tst_usb to pin.
class tst_worker : public QObject, OnBoard
{
    Q_OBJECT
    std::unique_ptr<RegisterImages> map;
    std::unique_ptr<FormModel> model;
    std::unique_ptr<usb_link> link;
    PanelSettings settings;
    QTemporaryDir dir;
    QList<int> progress; // what the workers reported since the test began, as a progress bar shows it

    using Command = clerk::Command;
    using Style = PanelSettings::Style;
    QString path(const QString& name) const { return dir.filePath(name); }
    QByteArray image(const quint8* i) const { return imageBytes(i, int(map->registerCount)); }
    QByteArray images() const { return image(map->guiImage) + image(map->icImage) + image(map->cfgImage); }
    static void write(const QString& file, const QByteArray& text) { QVERIFY(writeFile(file, text)); }
    int field(const char* stem) const { return model->indexOf(QString(stem) + "_ZV4280v2"); }
    std::unique_ptr<clerk> worker(Command command, const QString& file = QString())
    {
        std::unique_ptr<clerk> w(new clerk(command, file, link.get(), settings, {{map->chipName, map.get()}}));
        if (command == Command::GuiToFile)
            w->save = GuiSave::take(*model, settings);
        connect(w.get(), &clerk::percent_up, this, [this](int p) {
            if (progress.value(progress.size() - 1, -1) != p)
                progress << p;
        });
        return w;
    }
    // Runs a command to its end and gives its end message; a success ends
    // as in the program: a read or a load shows the image in the forms, the
    // displays are recomputed, and a load marks what only the chip can tell.
    QString run(Command command, const QString& file = QString())
    {
        std::unique_ptr<clerk> w = worker(command, file);
        const QStringList ends = runToEnd(w.get());
        if (ends != QStringList{QString()})
            return ends.size() == 1 ? ends.first() : QStringLiteral("<no single end message>");
        if (w->command == Command::ChipToGui || w->command == Command::FileToGui)
            model->push(map->guiImage);
        model->fireDisplays();
        if (w->command == Command::FileToGui)
            model->markChipOnly();
        return QString();
    }
    QString read() { return run(Command::ChipToGui); }
    // A read fills both images with the chip's registers, and every editing
    // field stands for the code guiImage holds (a combo box without an item
    // for its code stands for the code the image keeps).
    void checkReadIn()
    {
        QCOMPARE(image(map->icImage), chip());
        QCOMPARE(image(map->guiImage), chip());
        for (int f = 0; f < model->fieldCount(); ++f)
            if (model->outputObject(model->entry(f).record.name) != model->entry(f).objectName)
                QVERIFY2(model->code(f) == RegisterImages::fieldValue(model->entry(f).record, map->guiImage),
                         qPrintable(model->entry(f).objectName));
    }

private slots:
    void initTestCase()
    {
        installTranslation(*QCoreApplication::instance());
        if (!zvsim::Testbed::available())
            QSKIP("needs umockdev-wrapper");
        map.reset(new RegisterImages(QStringLiteral("ZV4280v2"), 291));
        model.reset(new FormModel(*map));
    }
    void init()
    {
        plugBoard();
        link.reset(new usb_link);
        progress.clear();
        settings = PanelSettings();
        settings.writePauseMs = 0;
    }
    void cleanup()
    {
        link.reset();
        QCOMPARE(unplugBus(), QString());
    }

    // The progress tells the style: one a register, or one a read.
    void readInEachStyle()
    {
        for (Style style : {Style::OneAtATime, Style::Blocks, Style::Autoincrement}) {
            fillChip();
            settings.readStyle = style;
            progress.clear();
            QCOMPARE(read(), QString());
            checkReadIn();
            QList<int> expected{0, 75, 100};
            for (int p = 1; style == Style::OneAtATime && p < 75; ++p)
                expected.insert(p, p);
            QCOMPARE(progress, expected);
        }
    }

    // A chip whose clock output type and source both differ from the forms:
    // the type's rules re-fire the source before the source has been set.
    void readKeepsTheChipsClockCodes()
    {
        fillChip();
        read();
        for (auto [type, source] : {std::pair{0, 0}, {2, 1}, {3, 4}, {1, 2}}) {
            bus->chip(board).setReg(10, quint8((bus->chip(board).reg(10) & 0xE0) | type << 3 | source));
            QCOMPARE(read(), QString());
            QCOMPARE(image(map->guiImage), chip());
            QCOMPARE(model->code(field("CLK_OUT_TP")), quint32(type));
            QCOMPARE(model->code(field("CLK_SOURCE")), quint32(source));
        }
    }

    // A stop request: only a read one register at a time sees it, and then
    // the images stay as they were; a write sees it in its pause.
    void stopRequest()
    {
        for (Style style : {Style::OneAtATime, Style::Blocks, Style::Autoincrement}) {
            read();
            fillChip();
            settings.readStyle = style;
            const QByteArray before = images();
            std::unique_ptr<clerk> w = worker(Command::ChipToGui);
            progress.clear();
            w->interrupted = style != Style::OneAtATime;
            connect(w.get(), &clerk::percent_up, this, [&w](int p) { w->interrupted = w->interrupted || p >= 10; });
            QCOMPARE(runToEnd(w.get()), QStringList{style == Style::OneAtATime ? "Interrupted" : ""});
            QCOMPARE(images() == before, style == Style::OneAtATime);
        }
        settings.writePauseMs = 60000;
        map->guiImage[21] ^= 1;
        bus->clearWireLog();
        std::unique_ptr<clerk> w = worker(Command::GuiToChip);
        QTimer poll; // the stop comes once the write is out
        connect(&poll, &QTimer::timeout, this, [&] { w->interrupted = sent().size() >= 2; });
        poll.start(5);
        QCOMPARE(runToEnd(w.get()), QStringList{"Interrupted"});
        QCOMPARE(sent().size(), 2); // the identity read and the write
    }

    // Release code 1 in the low three bits of register 1 is refused by the
    // commands that reach the chip (1 to 4).
    void chipIdentity()
    {
        settings.readBack = false;
        for (int reg1 : {0x01, 0x09, 0xF9, 0x02, 0x05})
            for (int command = 1; command <= 6; ++command) {
                bus->chip(board).setReg(1, quint8(reg1));
                const QString end = run(Command(command), command == 5 ? QStringLiteral("default.hex") : path("x.hex"));
                QVERIFY2((end == "Incorrect chip") == ((reg1 & 7) == 1 && command <= 4),
                         qPrintable(QString("register 1 = %1, command %2: %3").arg(reg1).arg(command).arg(end)));
            }
    }

    // Commands 7 and 8, one register by number: a failed read or write ends
    // as any failed register operation does, and the value keeps what it
    // held.
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
        settings.registerNumber = number;
        if (fault == "removed")
            bus->removeBoard(board);
        else if (fault == "unplug")
            bus->unplugAfter(board, 2); // after the identity read
        std::unique_ptr<clerk> w(worker(Command(command)));
        w->settings.registerValue = 0x77;
        QTEST(runToEnd(w.get()).value(0), "message");
        const bool done = fault.isEmpty() && number == 12;
        QCOMPARE(w->settings.registerValue, done && command == 7 ? 0x5A : 0x77);
        QCOMPARE(bus->chip(board).reg(12), done && command == 8 ? 0x77 : 0x5A);
    }

    void changesOnlyWrite()
    {
        // A chip not read since its board came is not known: changes only
        // sends every register in the write style.
        bus->removeBoard(board);
        board = bus->addBoard({0x2976, 3, 1, 9});
        settings.readBack = false;
        bus->clearWireLog();
        QCOMPARE(run(Command::GuiToChip), QString());
        QCOMPARE(sent().size(), 1 + 30);
        fillChip();
        read();
        settings.readBack = false;
        bus->clearWireLog();
        const int opens = bus->opens(board);
        QCOMPARE(run(Command::GuiToChip), QString());
        QCOMPARE(sent(), QList<QByteArray>({QByteArray::fromHex("1503800100"), QByteArray::fromHex("1500")}));
        QCOMPARE(bus->opens(board), opens + 1); // the identity read and the write, in one open

        // One field changed: exactly its register, in a block frame, with
        // the empty frame behind it as a count below ten leaves none.
        const int rdiv = field("ChA_PLL_RDiv");
        model->setValue(rdiv, model->widgetValue(rdiv) == 7 ? 9 : 7);
        const quint8 reg21 = map->guiImage[21];
        bus->clearWireLog();
        QCOMPARE(run(Command::GuiToChip), QString());
        QCOMPARE(sent().mid(1), QList<QByteArray>({QByteArray::fromHex("15030015") + char(reg21)}));
        QCOMPARE(bus->chip(board).reg(21), reg21);
        // With no read-back the chip's answer is not in icImage: the same
        // register goes again, with the map's first and last beside it.
        map->guiImage[0] ^= 0x01, map->guiImage[290] ^= 0x80;
        QByteArray frame = QByteArray::fromHex("1509");
        for (int r : {0, 21, 290})
            frame.append(char(r >> 8)).append(char(r)).append(char(map->guiImage[r]));
        bus->clearWireLog();
        run(Command::GuiToChip);
        QCOMPARE(sent().mid(1), QList<QByteArray>({frame}));

        // A read-back of only what was written, in one block frame: register
        // 0, which the chip keeps to itself, comes back as the chip holds it
        // in both images, and the write ends as a read so that the forms
        // show it.
        read();
        settings.readBack = settings.readBackWritten = true, settings.writePauseMs = 0;
        const quint8 kept = map->icImage[0];
        map->guiImage[0] ^= 0x01, map->guiImage[21] ^= 0x01;
        const quint8 reg21now = map->guiImage[21];
        bus->clearWireLog();
        std::unique_ptr<clerk> w(worker(Command::GuiToChip));
        QCOMPARE(runToEnd(w.get()).value(0), QString());
        QCOMPARE(w->command, Command::ChipToGui);
        QCOMPARE(sent().size(), 3);
        QCOMPARE(std::pair(map->guiImage[0], map->icImage[0]), std::pair(kept, kept));
        QCOMPARE(std::pair(map->guiImage[21], map->icImage[21]), std::pair(reg21now, reg21now));
    }

    // A full write in each style, one register at a time, in blocks and by
    // autoincrement: the count of frames tells the style.
    void fullWrite()
    {
        settings.changesOnly = false, settings.readBack = false;
        for (auto [style, frames] : {std::pair{Style::OneAtATime, 291}, {Style::Blocks, 30}, {Style::Autoincrement, 11}}) {
            for (quint32 r = 0; r < map->registerCount; ++r)
                map->guiImage[r] = quint8(random());
            settings.writeStyle = style;
            bus->clearWireLog();
            const QByteArray gui = image(map->guiImage);
            QCOMPARE(run(Command::GuiToChip), QString());
            QCOMPARE(sent().size(), 1 + frames); // after the identity read
            QCOMPARE(chip().mid(6), gui.mid(6));
        }
    }

    void writeReadsBack()
    {
        settings.writePauseMs = 30;
        const int rdiv = field("ChA_PLL_RDiv");
        model->setValue(rdiv, model->widgetValue(rdiv) == 5 ? 6 : 5);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(run(Command::GuiToChip), QString());
        QVERIFY(clock.elapsed() >= 30);
        QCOMPARE(progress, QList<int>({45, 0, 75, 100}));
        checkReadIn();
    }

    // The board fails in the middle of a read: a message, the images as they
    // were, and after a stall or a short reply the next read works.
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
        settings.readStyle = Style(style);
        const QByteArray before = images();
        // The identity read, then three exchanges go through.
        if (fault == "unplug")
            bus->unplugAfter(board, 2 + 2 * 3);
        else
            bus->failTransfer(board, {fault == "stall" ? zvsim::TransferFault::Stall : zvsim::TransferFault::Short,
                                      false, 1 + 3, 3});
        const QString end = read();
        QVERIFY2(end.startsWith(message), qPrintable(end));
        QCOMPARE(images(), before);
        if (fault != "unplug") {
            QCOMPARE(read(), QString());
            QCOMPARE(image(map->guiImage), chip());
        }
    }

    // After a load the chip's own status fields show that
    // they are unknown, and every display with a rule shows its field.
    void loadMarksStatusUnknown()
    {
        std::fill(map->cfgImage, map->cfgImage + map->registerCount, 0xEE);
        QStringList unknownBefore; // displays of the other revision keep their text
        for (const DisplayEntry& d : model->catalogue().displays())
            if (model->text(d.objectName) == "n/a")
                unknownBefore << d.objectName;
            else
                model->setText(d.objectName, QString());
        QCOMPARE(run(Command::FileToGui, "default.hex"), QString());
        QCOMPARE(map->cfgImage[11], quint8(4)); // the C-divider of default.hex
        int bulbs = 0, fields = 0;
        for (int f = 0; f < model->fieldCount(); ++f) {
            const FieldEntry& e = model->entry(f);
            bulbs += e.kind == FieldKind::Bulb && model->bulb(f) == Bulb::Disabled;
            fields += e.kind != FieldKind::Bulb && model->outputObject(e.record.name) == e.objectName
                      && model->text(e.objectName) == "n/a";
        }
        int displays = 0;
        for (const DisplayEntry& d : model->catalogue().displays()) {
            const QString text = model->text(d.objectName);
            QVERIFY2(text != "n/a" || unknownBefore.contains(d.objectName) || d.objectName.startsWith("TS_code"),
                     qPrintable(d.objectName));
            displays += !text.isEmpty();
        }
        QCOMPARE(qMakePair(bulbs, fields), qMakePair(32, 46));
        QCOMPARE(displays, 88);
    }

    // After a read that changed no register no field fires, and yet every
    // display with a rule is written again.
    void readRecomputesDisplays()
    {
        read();
        for (const DisplayEntry& d : model->catalogue().displays())
            model->setText(d.objectName, QString());
        QCOMPARE(model->catalogue().displays().size(), 103);
        QCOMPARE(read(), QString());
        int written = 0;
        for (const DisplayEntry& d : model->catalogue().displays())
            written += !model->text(d.objectName).isEmpty();
        QCOMPARE(written, 88);
    }

    // Each section goes to the chip as one block, in file order, after a
    // pause of its own (a map line or register -1); a register may be
    // written twice, and a value that is no byte goes as a reader reads it.
    void fileToChipInSections()
    {
        write(path("two.hex"),
              ";ZV4280v2\nReg30\t11\n  Reg31 0x22 //x\nReg12 5F5\n// Reg99 77\n;ZV4280.2\nReg30\t33\nReg-1 00\nReg32\t44\n");
        settings.writePauseMs = 60;
        bus->clearWireLog();
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(run(Command::FileToChip, path("two.hex")), QString());
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
        std::unique_ptr<clerk> w = worker(Command::FileToChip, path("sections.hex"));
        connect(w.get(), &clerk::percent_up, this, [&](int) {
            if (replugged < 0) {
                bus->removeBoard(board);
                replugged = bus->addBoard({0x2976, 3, 1, 6});
                fresh = bus->registers(replugged);
            }
        }, Qt::BlockingQueuedConnection);
        QCOMPARE(runToEnd(w.get()),
                 QStringList{"Write block error\nsections 1 of 3 written (10 of 30 registers); the board changed"});
        QCOMPARE(progress, QList<int>{33});
        QCOMPARE(bus->registers(replugged), fresh);

        QByteArray longSection = ";ZV4280v2\n";
        for (int i = 0; i < 2500; ++i)
            longSection += "Reg" + QByteArray::number(i % 291) + " 5A\n";
        write(path("long.hex"), longSection);
        progress.clear();
        QCOMPARE(run(Command::FileToChip, path("long.hex")), QString());
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
        QCOMPARE(run(Command(command), path("refused.hex")), message.replace("FILE", path("refused.hex")));
        QCOMPARE(sent().size(), 1); // the identity read alone
        QCOMPARE(image(map->guiImage) + image(map->cfgImage), images);
    }

    // Where the name of the map in a file is looked at, and what it must be.
    void mapNames_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("configCheck");
        QTest::addColumn<bool>("accepted");
        const QByteArray saved = ";ZV4280\nReg40\t5A\n", exact = ";ZV4280v2\nReg40\t5A\n", bare = "Reg40\t5A\n",
                         other = ";XY12\nReg40\t5A\n";
        for (bool check : {true, false}) {
            QTest::addRow("file to chip, saved by the tool, check %d", check) << 3 << saved << check << !check;
            QTest::addRow("file to chip, exact name, check %d", check) << 3 << exact << check << true;
            QTest::addRow("file to chip, no map line, check %d", check) << 3 << bare << check << true;
            QTest::addRow("file to chip, other map, check %d", check) << 3 << other << check << !check;
            QTest::addRow("file to GUI, saved by the tool, check %d", check) << 5 << saved << check << true;
            QTest::addRow("file to GUI, exact name, check %d", check) << 5 << exact << check << true;
            QTest::addRow("file to GUI, no map line, check %d", check) << 5 << bare << check << !check;
            QTest::addRow("file to GUI, other map, check %d", check) << 5 << other << check << !check;
        }
    }
    void mapNames()
    {
        QFETCH(int, command);
        QFETCH(QByteArray, text);
        QFETCH(bool, accepted);
        QFETCH(bool, configCheck);
        write(path("names.hex"), text);
        settings.configCheck = configCheck;
        bus->chip(board).setReg(40, 0);
        map->guiImage[40] = 0;
        const QByteArray images = image(map->guiImage) + image(map->cfgImage);
        const QString needs = command == 3 ? "\n" + path("names.hex") + " needs the map line ;ZV4280v2" : "";
        QCOMPARE(run(Command(command), path("names.hex")), accepted ? QString() : "RegMap name is incorrect\nor not exist" + needs);
        const quint8 landed = command == 3 ? bus->chip(board).reg(40) : map->guiImage[40];
        QCOMPARE(landed, quint8(accepted ? 0x5A : 0));
        if (!accepted)
            QCOMPARE(image(map->guiImage) + image(map->cfgImage), images);
        if (!accepted && command == 3)
            QCOMPARE(sent().size(), 1); // the identity read alone
    }

    // A file of three registers: cfgImage is that file, guiImage keeps every
    // other register; a later line wins, a register beyond the image is
    // passed over, and a missing file changes nothing.
    void fileToGui()
    {
        std::fill_n(map->guiImage, map->registerCount, quint8(0xEE));
        write(path("three.hex"), ";ZV4280\nReg0\t01\nReg1\t02\nReg2\t03\nReg1\t12\nReg290\t2A\nReg291\t44\nReg99999\t55\n");
        QCOMPARE(run(Command::FileToGui, path("three.hex")), QString());
        QByteArray cfg(int(map->registerCount), 0), gui(int(map->registerCount), char(0xEE));
        cfg[0] = gui[0] = 1, cfg[1] = gui[1] = 0x12, cfg[2] = gui[2] = 3, cfg[290] = gui[290] = 0x2A;
        QCOMPARE(image(map->cfgImage), cfg);
        QCOMPARE(image(map->guiImage), gui);
        QCOMPARE(run(Command::FileToGui, path("missing.hex")), QStringLiteral("\".hex\" file is not available"));
        QCOMPARE(image(map->guiImage), gui);
        QCOMPARE(run(Command::FileToChip, path("missing.hex")), QStringLiteral("\".hex\" file is not available"));
    }

    void chipToFile()
    {
        fillChip();
        QCOMPARE(run(Command::ChipToFile, path("chip.hex")), QString());
        QByteArray expected = ";ZV4280\n";
        for (int r = 0; r < 291; ++r)
            expected += "Reg" + QByteArray::number(r) + '\t'
                        + QByteArray::number(bus->chip(board).reg(r), 16).rightJustified(2, '0').toUpper() + '\n';
        QCOMPARE(readFile(path("chip.hex")), expected);
        // Appended, the file grows by a second section.
        settings.mergeFile = true;
        QCOMPARE(run(Command::ChipToFile, path("chip.hex")), QString());
        QCOMPARE(readFile(path("chip.hex")).count(";ZV4280\n"), 2);
        // No board: the old file stays as it was.
        settings.mergeFile = false;
        bus->removeBoard(board);
        QCOMPARE(run(Command::ChipToFile, path("chip.hex")), QStringLiteral("WINUSB: USB interface error "));
        QCOMPARE(readFile(path("chip.hex")).count(";ZV4280\n"), 2);
    }

    // A disk that fills up: a save of the forms and chip to file say so, and
    // the old file stays; a folder in the way of the file: the save says so.
    void failedSaves()
    {
        settings.comments = true;
        const QByteArray before = ";ZV4280\nReg0\t12\n";
        write(path("gui.hex"), before);
        limitFileSize(2048);
        const QStringList full = {run(Command::GuiToFile, path("gui.hex")), run(Command::ChipToFile, path("gui.hex"))};
        limitFileSize(-1);
        const QString fullMessage = "\"" + path("gui.hex") + "\" could not be written (File too large); the file is as it was";
        QCOMPARE(full, QStringList({fullMessage, fullMessage}));
        QCOMPARE(readFile(path("gui.hex")), before);
        QVERIFY(QDir(dir.path()).mkpath("taken.hex"));
        QCOMPARE(run(Command::GuiToFile, path("taken.hex")), QStringLiteral("\".hex\" file is not available"));
        QCOMPARE(run(Command::ChipToFile, path("no/such.hex")),
                 "\".hex\" file is not available\nthe folder \"" + path("no") + "\" does not exist");
        QVERIFY(QFileInfo(path("taken.hex")).isDir());
    }
};

QTEST_GUILESS_MAIN(tst_worker)
#include "tst_worker.moc"
