#include "boardsupport.h"
#include "testsupport.h"
#include "gui_save.h"
#include "hex_writer.h"
#include "service_block.h"
#include "usb_link.h"
#include "usb_session.h"

// zv4280ctl, the real program, run as a child on a simulated board that this
// test owns: the child inherits the emulated bus, so the wire log shows what
// the program sent. It runs with no platform and no display set. How the
// worker frames its reads and writes is for tst_usb and tst_worker to pin.
class tst_ctl : public QObject, OnBoard
{
    Q_OBJECT
    QTemporaryDir dir;

    // A run of the program, its end awaited.
    struct Run
    {
        int exit = -1;
        QByteArray out, err;
        explicit Run(QProcess& p)
        {
            if (p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit)
                exit = p.exitCode(), out = p.readAllStandardOutput(), err = p.readAllStandardError();
        }
        QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }
        // Says how the run ended when it is not as the caller asked.
        bool as(bool asked) const { return asked || (qWarning("exit %d, stderr: %s", exit, err.constData()), false); }
    };
    static void start(QProcess& p, const QStringList& args)
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
            env.remove(name);
        p.setProcessEnvironment(env);
        p.start(ZV_CTL_PROGRAM, args);
    }
    // With "--json" in front when json is set.
    static Run ctl(const QStringList& args, bool json = false)
    {
        QProcess p;
        start(p, json ? QStringList{"--json"} + args : args);
        return Run(p);
    }
    // A run that must end well: exit 0, nothing on stderr, and with --json
    // exactly one document that says ok.
    static bool done(const Run& r, bool json)
    {
        return r.as(r.exit == 0 && r.err.isEmpty() && (!json || (r.out.count('\n') == 1 && r.json().value("ok") == true)));
    }
    // A run that ends with this exit status and one line on stderr that holds
    // the message; with --json a document that says the same.
    static bool failed(const Run& r, bool json, int exit, const QString& message)
    {
        const QJsonObject doc = r.json();
        return r.as(r.exit == exit && r.err.startsWith("zv4280ctl: ") && r.err.contains(message.toUtf8())
                    && r.err.count('\n') == 1 && (!json || (doc.value("ok") == false && doc.value("exit") == exit
                                                             && doc.value("error").toString().contains(message))));
    }

    QString path(const QString& name) const { return dir.filePath(name); }
    static void write(const QString& file, const QByteArray& text) { QVERIFY(writeFile(file, text)); }
    // The registers the chip moves by itself (temperature, a lock bit) are
    // left out of comparisons.
    static constexpr int live[] = {4, 5, 36};
    // Registers written, frame by frame: triples with the write mark, or an
    // autoincrement write.
    QList<int> written() const
    {
        QList<int> regs;
        for (const QByteArray& f : sent()) {
            if (f.size() >= 4 && (quint8(f[2]) & 0x40)) {
                if (!(quint8(f[2]) & 0x80))
                    for (int i = 4; i < f.size(); ++i)
                        regs << ((quint8(f[2]) & 0x3F) << 8 | quint8(f[3])) + i - 4;
                continue;
            }
            for (int k = 2; k + 2 < f.size(); k += 3)
                if (!(quint8(f[k]) & 0x80))
                    regs << ((quint8(f[k]) << 8) | quint8(f[k + 1]));
        }
        return regs;
    }

private slots:
    void initTestCase()
    {
        zvTestInit(true);
        if (!zvsim::Testbed::available())
            QSKIP("needs umockdev-wrapper");
        QVERIFY(dir.isValid());
    }
    void init() { plugBoard(); }
    void cleanup() { QCOMPARE(unplugBus(), QString()); }

    void help()
    {
        const Run all = ctl({"--help"});
        QVERIFY(done(all, false));
        for (const char* text : {"dump [--style single|block|auto]", "field NAME=CODE...", "--board BUS:ADDRESS",
                                 "3  the read-back differs"})
            QVERIFY2(all.out.contains(text), text);
        QVERIFY(ctl({"help", "save"}).out.startsWith("Usage: zv4280ctl [--json] [--board BUS:ADDRESS] save FILE"));
        QCOMPARE(ctl({"dump", "--help"}).out, ctl({"help", "dump"}).out);
        QVERIFY(sent().isEmpty());
    }

    // The grid of i2cdump, and the same values in JSON, in each read style.
    void dump()
    {
        for (const QString style : {"", "single", "block"})
            for (bool json : {false, true}) {
                fillChip();
                const Run r = ctl(style.isEmpty() ? QStringList{"dump"} : QStringList{"dump", "--style", style}, json);
                QVERIFY(done(r, json));
                const QByteArray regs = chip();
                QByteArray grid = "      0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f\n", values;
                for (int row = 0; row < 291; row += 16)
                    grid += QByteArray::number(row, 16).rightJustified(3, '0') + ": " + regs.mid(row, 16).toHex(' ') + '\n';
                for (const QJsonValue v : r.json().value("registers").toArray())
                    values += char(v.toInt());
                QCOMPARE(json ? values : r.out, json ? regs : grid);
                QCOMPARE(r.json().value("style").toString(), json ? style.isEmpty() ? "auto" : style : "");
            }
        QVERIFY(written().isEmpty());
    }

    // One register as the service panel reads and writes it: a write is read
    // back, and a register that keeps its own bits reads back otherwise.
    void singleRegister()
    {
        bus->chip(board).setReg(12, 0x5A);
        QCOMPARE(ctl({"get", "12"}).out, QByteArray("0x5a\n"));
        // --trace: each frame and its reply on stderr, as the GUI's USB log shows them.
        const Run traced = ctl({"--trace", "get", "12"});
        QCOMPARE(traced.out, QByteArray("0x5a\n"));
        const QString time = "\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d ";
        QVERIFY2(QRegularExpression("^" + time + "out 15 03 80 0C 00  read reg 12\n" + time
                                    + "in  15 03 80 0C 5A  read reg 12 = 0x5A\n$").match(QString::fromLatin1(traced.err)).hasMatch(),
                 traced.err.constData());
        const Run get = ctl({"get", "12"}, true);
        QVERIFY(done(get, true));
        QCOMPARE(get.json().toVariantMap(), (QVariantMap{{"command", "get"}, {"ok", true}, {"register", 12},
                                                         {"name", "CLK_OUT"}, {"value", 0x5A}}));
        bus->clearWireLog();
        const Run set = ctl({"set", "0x0c", "165"});
        QVERIFY(done(set, false));
        QCOMPARE(set.out, QByteArray("0xa5\n"));
        QCOMPARE(bus->chip(board).reg(12), quint8(0xA5));
        QCOMPARE(sent(), (QList<QByteArray>{QByteArray::fromHex("1503000CA5"), QByteArray::fromHex("1503800C00")}));
        const Run kept = ctl({"set", "5", "0x5f"}, true);
        QVERIFY(failed(kept, true, 3, "register 5 reads back 0x"));
        const QVariantMap k = kept.json().toVariantMap();
        QCOMPARE(QVariantList({k["command"], k["register"], k["name"], k["written"]}), QVariantList({"set", 5, "Temp_1", 0x5F}));
        QVERIFY(k["error"].toString().contains(QString("back 0x%1 after").arg(k["value"].toInt(), 2, 16, QChar('0'))));
    }

    // Boards by bus and address, and the choice among several.
    void boards()
    {
        board = bus->addBoard({0x2976, 0x0007, 3, 12});
        bus->chip(0).setReg(12, 0x11);
        bus->chip(1).setReg(12, 0x22);

        const Run list = ctl({"devices"});
        QVERIFY(done(list, false));
        QCOMPARE(list.out, QByteArray("Bus 001 Device 005: ID 2976:0003  --board 1:5\n"
                                      "Bus 003 Device 012: ID 2976:0007  --board 3:12\n"));
        const Run listJson = ctl({"devices", "--json"});
        QVERIFY(done(listJson, true));
        const QJsonArray devices = listJson.json().value("devices").toArray();
        QCOMPARE(devices.size(), 2);
        QCOMPARE(devices.at(1).toObject().toVariantMap(),
                 (QVariantMap{{"bus", 3}, {"address", 12}, {"vendor", "2976"}, {"product", "0007"}}));

        QCOMPARE(ctl({"--board", "3:12", "get", "12"}).out, QByteArray("0x22\n"));
        QCOMPARE(ctl({"get", "12", "--board", "1:5"}).out, QByteArray("0x11\n"));
        QVERIFY(failed(ctl({"get", "12"}), false, 1,
                       "2 bridge boards are attached (1:5, 3:12): choose one with --board BUS:ADDRESS"));
        bus->clearWireLog();
        QVERIFY(failed(ctl({"--board", "1:6", "dump"}), false, 1,
                       "no bridge board at bus 1 address 6; boards at 1:5, 3:12"));
        QVERIFY(sent().isEmpty());
    }

    // Codes as the widgets hold them and the words of the screens; a field
    // that spans two registers; a display field.
    void readFields()
    {
        zvsim::SimulatedChip& c = bus->chip(board);
        c.setReg(21, 0xE0 | 13);                 // ChA_PLL_RDiv, bits D4-D0
        c.setReg(22, 0xF1), c.setReg(23, 0x2C);  // ChA_PLL_DSM_N 0x12C over two registers
        c.setReg(9, 0x02);                       // TS_MD: continuous
        c.setReg(11, 9);                         // PLL_CDiv
        const QStringList args{"field", "ChA_PLL_RDiv", "ChA_PLL_DSM_N_ZV4280v2", "TS_MD", "PLL_CDiv", "AOK"};
        const Run text = ctl(args), json = ctl(args, true);
        QVERIFY(done(text, false));
        QVERIFY(done(json, true));
        QVERIFY(written().isEmpty());
        QCOMPARE(text.out, QByteArray("ChA_PLL_RDiv=13\tR-divider ratio:  13\nChA_PLL_DSM_N=300\tN-divider ratio:  300\n"
                                      "TS_MD=1\tMode: continuous\nPLL_CDiv=9\tC-divider ratio:  9\nAOK=1\tAOK: 1\n"));
        const QJsonArray fields = json.json().value("fields").toArray();
        QCOMPARE(fields.size(), 5);
        QCOMPARE(fields.at(1).toObject().toVariantMap(),
                 (QVariantMap{{"name", "ChA_PLL_DSM_N"}, {"code", 300}, {"text", "N-divider ratio:  300"},
                              {"location", "Reg22 <D3-D0>,Reg23 <D7-D0>"}}));
    }

    // An estimated display says so in JSON; a measured calibration file takes its place, and a faulty one
    // is told of on stderr while the built-in tables serve.
    void calibration()
    {
        bus->chip(board).setReg(92, 17); // ChD_LPF_CF
        write(path("good.csv"), "table,index,value\nchdLpfCutoff,17,3.5\n");
        write(path("bad.csv"), "table,index,value\nchdLpfCutoff,17,x\n");
        const struct { QStringList options; const char* text; const char* err; } rows[] = {
            {{}, "3.4 MHz", ""}, {{"--calibration", path("good.csv")}, "3.5 MHz", ""},
            {{"--calibration", path("bad.csv")}, "3.4 MHz", "bad.csv:2: value \"x\" is not a number"}};
        for (const auto& row : rows) {
            const Run r = ctl(row.options + QStringList{"field", "ChD_LPF_CF"}, true);
            const QJsonObject f = r.json().value("fields").toArray().at(0).toObject();
            QVERIFY2(f.value("text").toString().contains(row.text), qPrintable(f.value("text").toString()));
            QCOMPARE(f.value("estimated").toVariant(), row.text == QLatin1String("3.4 MHz") ? QVariant(true) : QVariant());
            QCOMPARE(r.exit, 0);
            QCOMPARE(r.err.isEmpty(), !*row.err);
            QVERIFY(r.err.contains(row.err));
        }
    }

    // A change writes exactly the registers of the fields asked, changes
    // only their bits, and reads the chip back.
    void writeFields_data()
    {
        QTest::addColumn<QStringList>("assignments");
        QTest::addColumn<QList<int>>("registers");
        QTest::addColumn<QList<int>>("masks");   // the fields' bits in those registers
        QTest::addColumn<QList<int>>("values");  // what they must hold
        QTest::addColumn<bool>("json");
        QTest::newRow("spin box, any case") << QStringList{"cha_pll_rdiv=3"} << QList<int>{21} << QList<int>{0x1F}
                                            << QList<int>{3} << false;
        QTest::newRow("combo box by its text") << QStringList{"CLK_SOURCE=pll \"B\""} << QList<int>{10}
                                               << QList<int>{0x07} << QList<int>{1} << false;
        QTest::newRow("integer-N, then two registers, json")
            << QStringList{"ChA_PLL_DIV_MD=0", "ChA_PLL_DSM_N=0x12C"} << QList<int>{20, 22, 23}
            << QList<int>{0x01, 0x0F, 0xFF} << QList<int>{0x00, 0x01, 0x2C} << true;
        QTest::newRow("four fields, three kinds, a register past 255, json")
            << QStringList{"TS_MD_ZV4280v2=1", "CLK_EN=1", "ChB_PLL_DIV_MD=0", "ChB_PLL_RDiv=30", "ChD_DcocFastAlways=1"}
            << QList<int>{6, 9, 42, 43, 267} << QList<int>{0x10, 0x02, 0x01, 0x1F, 0x08}
            << QList<int>{0x10, 0x02, 0x00, 30, 0x08}
            << true;
    }
    void writeFields()
    {
        QFETCH(QStringList, assignments);
        QFETCH(QList<int>, registers);
        QFETCH(QList<int>, masks);
        QFETCH(QList<int>, values);
        QFETCH(bool, json);
        fillChip();
        // The fields start away from the codes asked.
        for (int i = 0; i < registers.size(); ++i)
            bus->chip(board).setReg(registers[i], quint8((bus->chip(board).reg(registers[i]) & ~masks[i])
                                                         | (~values[i] & masks[i])));
        const QByteArray before = chip();
        const Run r = ctl(QStringList{"field"} + assignments, json);
        QVERIFY(done(r, json));

        QList<int> sorted = written();
        std::sort(sorted.begin(), sorted.end());
        QCOMPARE(sorted, registers);
        QByteArray expected = before, after = chip();
        for (int i = 0; i < registers.size(); ++i)
            expected[registers[i]] = char((before[registers[i]] & ~masks[i]) | values[i]);
        for (int r : live)
            after[r] = expected[r];
        QCOMPARE(after, expected);
        if (json) {
            const QJsonObject doc = r.json();
            QJsonArray wire; // the registers the write frames carried
            for (int reg : sorted)
                wire.append(reg);
            QCOMPARE(doc.value("written").toArray(), wire);
            for (const QJsonValue f : doc.value("fields").toArray())
                QCOMPARE(f.toObject().value("code"), f.toObject().value("asked"));
        } else {
            QCOMPARE(r.out.count('\n'), assignments.size());
        }
    }

    // Every field, and what it takes; no board is needed.
    void listFields()
    {
        bus->removeBoard(board);
        const Run text = ctl({"fields"});
        QVERIFY(done(text, false));
        const QList<QByteArray> lines = text.out.split('\n');
        QCOMPARE(lines.size(), 618 + 1);
        QVERIFY(lines.contains("TS_MD\tReg9 <D1>\tcombo box\t0 to 1: 0 single | 1 continuous"));
        QVERIFY(lines.contains("PLL_CDiv\tReg11 <D7-D0>\tspin box\t4 to 255"));
        QVERIFY(lines.contains("AOK\tReg2 <D4>\tlabel\tdisplays only"));
        QVERIFY(lines.contains("TS_code\tReg4 <D1-D0>,Reg5 <D7-D0>\tspin box\twritten by the chip alone"));

        const Run json = ctl({"fields", "--json", "ChA_PLL_DSM_N", "CLK_EN", "ChD_VCO_CVHI", "TS_MD"});
        QVERIFY(done(json, true));
        const QJsonArray fields = json.json().value("fields").toArray();
        QCOMPARE(fields.size(), 4);
        QCOMPARE(fields.at(0).toObject().toVariantMap(),
                 (QVariantMap{{"name", "ChA_PLL_DSM_N"}, {"location", "Reg22 <D3-D0>,Reg23 <D7-D0>"},
                              {"registers", QVariantList{22, 23}}, {"width", 12}, {"kind", "spinbox"},
                              {"editable", true}, {"inverted", false}, {"min", 0}, {"max", 4095}}));
        QCOMPARE(fields.at(1).toObject().value("kind").toString(), QString("checkbox"));
        QCOMPARE(fields.at(1).toObject().value("max").toInt(), 1);
        QCOMPARE(fields.at(2).toObject().value("inverted").toBool(), true);
        QCOMPARE(fields.at(2).toObject().value("editable").toBool(), false);
        QCOMPARE(fields.at(3).toObject().value("items").toArray(), QJsonArray({"single", "continuous"}));
        QVERIFY(bus->wireLog().isEmpty());
    }

    // Bad input is refused with exit status 2 and a message that says what
    // is allowed, before anything reaches the chip; a board that is absent,
    // goes away or stalls in the middle of a command ends it with status 1.
    void failures_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("fault");
        QTest::addColumn<int>("after"); // transfers that go through first
        QTest::addColumn<bool>("json");
        // Files the load refuses (what makes a file bad is for tst_hexfile and
        // tst_filecommands to pin), and one it takes.
        write(path("other.hex"), ";XY12\nReg40\t5A\n");
        write(path("noregs.hex"), ";ZV4280\n//  Clock settings \n\t   //Reg40 5A\n");
        write(path("beyond.hex"), ";ZV4280\nReg40\t5A\nReg291\t01\n");
        write(path("load.hex"), ";ZV4280\nReg40\t5A\n");
        write(path("odd.hex"), ";ZV4280\nReg12 ZZ\nReg40\t5A\n");
        for (QString row : dataRows("ctl_failures.txt")) {
            const QStringList f = row.replace("DIR/", dir.path() + "/").split('\t');
            for (bool json : {false, true})
                QTest::addRow("%s%s", qPrintable(f[0]), json ? ", json" : "")
                    << f.value(1).split(' ', Qt::SkipEmptyParts) << f.value(2) << f.value(3) << f.value(4).toInt() << json;
        }
    }
    void failures()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, message);
        QFETCH(QString, fault);
        QFETCH(int, after);
        QFETCH(bool, json);
        // A save that fails leaves the file as it was: none, or the old one.
        const QByteArray old = fault == "full" ? ";ZV4280\nReg0\t12\n" : "<unreadable>";
        QFile::remove(path("saved.hex"));
        if (fault == "full")
            write(path("saved.hex"), old);
        const QByteArray chipBefore = chip();
        usb_link holder; // another program, that holds the board
        std::optional<UsbSession> held;
        if (fault == "removed")
            bus->removeBoard(board);
        else if (fault == "unplug")
            bus->unplugAfter(board, after);
        else if (fault == "stall")
            bus->stallNext(board, after);
        else if (fault == "busy")
            QVERIFY(held.emplace(holder).isOpen());
        limitFileSize(fault == "full" ? 4096 : -1);
        const Run r = ctl(args, json);
        limitFileSize(-1);
        held.reset();
        QVERIFY(failed(r, json, fault.isEmpty() || fault == "full" || fault == "read" ? 2 : 1, message));
        QCOMPARE(readFile(path("saved.hex")), old);
        if (fault.isEmpty() || fault == "read") {
            QVERIFY(json || r.out.isEmpty());
            QVERIFY(fault == "read" ? written().isEmpty() : sent().isEmpty());
            QCOMPARE(chip(), chipBefore);
        }
    }

    // Two programs at one board at once: one that finds it claimed says so
    // at once, and neither hangs nor crashes.
    void twoAtOnce()
    {
        for (int round = 0; round < 3; ++round) {
            QProcess p[2];
            for (QProcess& one : p)
                start(one, {"dump"});
            for (QProcess& one : p) {
                const Run r(one);
                QVERIFY(r.exit == 0 ? r.out.count('\n') == 20 : failed(r, false, 1, "the board is in use by another program"));
            }
        }
    }

    // The file of "save" is the file of F6 in the GUI with the same chip state
    // in its forms, and a load brings that state back; with --all, registers
    // 0 to 290.
    void saveAndLoad()
    {
        for (bool json : {false, true}) {
            const bool comments = json;
            fillChip();
            QStringList args{"save", path("round.hex")};
            if (comments)
                args << "--comments" << "--all";
            const int count = comments ? 291 : 107;
            const Run save = ctl(args, json);
            QVERIFY(done(save, json));
            QVERIFY(written().isEmpty());
            const QByteArray saved = chip(); // as the program read it
            if (json)
                QCOMPARE(save.json().toVariantMap(), (QVariantMap{{"command", "save"}, {"ok", true}, {"file", path("round.hex")},
                                                                  {"comments", comments}, {"changesOnly", false}, {"all", true}}));
            MainClass gui;
            QVERIFY(waitIdle(&gui));
            mapshow* map = gui.firstMap();
            std::copy_n(saved.constData(), map->registerCount, map->icImage);
            std::copy_n(saved.constData(), map->registerCount, map->guiImage);
            gui.showOperationResult(clerk::Command::ChipToGui);
            PanelSettings settings;
            settings.comments = comments;
            settings.changesOnly = false;
            settings.allRegisters = comments;
            const QString f6 = HexWriter::guiText(GuiSave::take(*gui.model(), settings));
            QCOMPARE(QString::fromUtf8(readFile(path("round.hex"))), f6);

            fillChip();
            const Run load = ctl({"load", path("round.hex"), "--pause", "0"}, json);
            QVERIFY(done(load, json));
            if (json)
                QCOMPARE(load.json().toVariantMap(), (QVariantMap{{"command", "load"}, {"ok", true}, {"file", path("round.hex")},
                                                                  {"registers", count}}));
            QByteArray now = chip();
            for (int r : live)
                now[r] = saved[r];
            QCOMPARE(now.left(count), saved.left(count));
            QCOMPARE(written().size(), count);
            bus->clearWireLog();
        }
        // With --lenient a line that is no plain line goes as it reads, and is named.
        write(path("odd.hex"), ";ZV4280\nReg12 ZZ\nReg40\t5A\n");
        bus->chip(board).setReg(12, 0x77);
        const Run lenient = ctl({"load", path("odd.hex"), "--pause", "0", "--lenient"}, true);
        QVERIFY(done(lenient, true));
        QCOMPARE(lenient.json().value("oddLines").toVariant(), (QVariantList{QVariantMap{{"line", 2}, {"text", "Reg12 ZZ"}}}));
        QCOMPARE(bus->chip(board).reg(12), quint8(0));
    }

    // Only the registers where the chip differs from the base file.
    void saveChangesOnly()
    {
        write(path("base.hex"), ";ZV4280\nReg20\t11\nReg21\t22\nReg22\t33\n");
        zvsim::SimulatedChip& c = bus->chip(board);
        c.setReg(20, 0x11), c.setReg(21, 0x2F), c.setReg(22, 0x33), c.setReg(23, 0x00);
        const Run r = ctl({"--json", "save", path("changes.hex"), "--changes-only", "--base", path("base.hex")});
        QVERIFY(done(r, true));
        QCOMPARE(r.json().value("base").toString(), path("base.hex"));
        // The C-divider of the chip's defaults, and the one register that
        // differs from the base among those that the base names; not the
        // identity, status and temperature registers that the chip writes.
        QCOMPARE(readFile(path("changes.hex")), QByteArray(";ZV4280\nReg11\t04\nReg21\t2F\n"));
        QVERIFY(written().isEmpty());
    }

    // diff in field terms with diff's exit status, a file's missing registers not compared; export of
    // a file for firmware, its pauses kept; the fields Ctrl+F finds.
    void diffExportMatch()
    {
        write(path("a.hex"), ";ZV4280\nReg21\t0D\nReg110\t00\n");
        write(path("b.hex"), ";ZV4280\nReg21\t2F\nReg110\t00\n;ZV4280\nReg9\t01\n");
        bus->chip(board).setReg(21, 0x0D);
        const Run same = ctl({"diff", path("a.hex"), "chip"});
        QVERIFY(same.as(same.exit == 0 && same.out.isEmpty()));
        const Run text = ctl({"diff", path("a.hex"), path("b.hex")});
        QVERIFY(text.as(text.exit == 1));
        QCOMPARE(text.out, "ChA_PLL_RDiv\tReg21 <D4-D0>\tR-divider ratio\t13\t13\t15\t15\n"
                           "ChA_RDIV\tReg21\t\t13\t0x0D\t47\t0x2F\n");
        const Run json = ctl({"--json", "diff", path("b.hex"), path("a.hex")});
        QCOMPARE(json.json().value("differences").toArray().size(), 2);
        QCOMPARE(json.json().value("equal").toBool(), false);

        const Run c = ctl({"--json", "export", "--format", "c", "--source", path("b.hex"), "-o", path("b.h")});
        QVERIFY(done(c, true));
        QCOMPARE(c.json().value("registers").toInt(), 3);
        const QByteArray header = readFile(path("b.h"));
        QVERIFY(header.contains("{ ZV4280_PAUSE, 0x00 }, /* pause */\n    {  21, 0x2F }, /* ChA_RDIV */\n    { 110, 0x00 }"));
        QCOMPARE(header.count("ZV4280_PAUSE, 0x00"), 2);
        const Run csv = ctl({"export", "--format", "csv"});
        QVERIFY(done(csv, false));
        QCOMPARE(csv.out.count('\n'), 1 + 107);
        QVERIFY(csv.out.contains("\n21,ChA_RDIV,0x0D\n"));

        QVERIFY(ctl({"fields", "--match", "reg21 <d4>"}).out.startsWith("ChA_PLL_RDiv\tReg21 <D4-D0>\tspin box"));
        QCOMPARE(ctl({"fields", "--match", "no such field"}).out, QByteArray());
    }
};

QTEST_MAIN(tst_ctl)
#include "tst_ctl.moc"
