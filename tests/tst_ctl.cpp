#include "MainClass.h"
#include "gui_save.h"
#include "hex_writer.h"
#include "mapshow.h"
#include "service_block.h"
#include "boardsupport.h"
#include "testbed.h"
#include "testsupport.h"
#include "translation.h"
#include <QtTest>
#include <QtWidgets>
#include <cstring>
#include <random>

// zv4280ctl, the real program, run as a child on a simulated board that this
// test owns: the child inherits the emulated bus, so the wire log shows what
// the program sent. It runs with no platform and no display set.
class tst_ctl : public QObject
{
    Q_OBJECT
    std::unique_ptr<zvsim::Testbed> bus;
    int board = 0;
    QTemporaryDir dir;
    std::mt19937 random{4280};

    struct Run
    {
        int exit = -1;
        QByteArray out, err;
        QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }
    };

    Run ctl(const QStringList& args)
    {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
            env.remove(name);
        p.setProcessEnvironment(env);
        p.start(ZV_CTL_PROGRAM, args);
        Run r;
        if (!p.waitForFinished(60000) || p.exitStatus() != QProcess::NormalExit)
            return r;
        r.exit = p.exitCode();
        r.out = p.readAllStandardOutput();
        r.err = p.readAllStandardError();
        return r;
    }
    // With "--json" in front when json is set.
    Run ctl(bool json, QStringList args)
    {
        if (json)
            args.prepend("--json");
        return ctl(args);
    }
    // A run that must end well: exit 0, nothing on stderr, and with --json
    // exactly one document that says ok.
    static bool done(const Run& r, bool json)
    {
        if (r.exit != 0 || !r.err.isEmpty()) {
            qWarning("exit %d, stderr: %s", r.exit, r.err.constData());
            return false;
        }
        if (!json)
            return true;
        QJsonParseError error;
        const QJsonDocument doc = QJsonDocument::fromJson(r.out, &error);
        return error.error == QJsonParseError::NoError && doc.isObject() && r.out.count('\n') == 1
               && doc.object().value("ok") == true;
    }

    QString path(const QString& name) const { return dir.filePath(name); }
    static void write(const QString& file, const QByteArray& text) { QVERIFY(writeFile(file, text)); }
    static QByteArray read(const QString& file) { return readFile(file); }
    QByteArray chip(int b = 0) const { return chipRegisters(bus->chip(b)); }
    void fillChip() { fillChipAtRandom(bus->chip(board), random); }
    // The registers the chip moves by itself (temperature, a lock bit) are
    // left out of comparisons.
    static bool live(int r) { return r == 4 || r == 5 || r == 36; }
    QList<QByteArray> sent() const
    {
        QList<QByteArray> frames;
        for (const zvsim::WireFrame& f : bus->wireLog())
            if (f.out)
                frames << f.bytes;
        return frames;
    }
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
        zvTestInit();
        installTranslation(*QCoreApplication::instance());
        if (!zvsim::Testbed::available())
            QSKIP("needs umockdev-wrapper");
        QVERIFY(dir.isValid());
    }
    void init()
    {
        bus.reset(new zvsim::Testbed);
        board = bus->addBoard();
    }
    void cleanup()
    {
        for (int b = 0; b <= board; ++b) {
            QCOMPARE(bus->claims(b), bus->releases(b));
            QCOMPARE(bus->closes(b), bus->opens(b));
        }
        bus.reset();
    }

    void help()
    {
        const Run all = ctl({"--help"});
        QCOMPARE(all.exit, 0);
        for (const char* text : {"devices", "dump [--style single|block|auto]", "field NAME=CODE...", "--board BUS:ADDRESS",
                                 "0  done", "1  the board failed or is absent", "2  bad usage or bad input",
                                 "3  the read-back differs"})
            QVERIFY2(all.out.contains(text), text);
        const Run one = ctl({"help", "save"});
        QCOMPARE(one.exit, 0);
        QVERIFY(one.out.startsWith("Usage: zv4280ctl [--json] [--board BUS:ADDRESS] save FILE"));
        QCOMPARE(ctl({"dump", "--help"}).out, ctl({"help", "dump"}).out);
        QVERIFY(sent().isEmpty());
    }

    // The grid of i2cdump, and the same values in JSON, in each read style.
    void dump_data()
    {
        QTest::addColumn<QString>("style");
        QTest::addColumn<bool>("json");
        QTest::addColumn<QByteArray>("firstFrame");
        const QByteArray single = QByteArray::fromHex("1503800000"), block = QByteArray::fromHex("151E800000800100"),
                         autoRead = QByteArray::fromHex("151EC000");
        QTest::newRow("default") << QString() << false << autoRead;
        QTest::newRow("default, json") << QString() << true << autoRead;
        QTest::newRow("single") << "single" << false << single;
        QTest::newRow("block, json") << "block" << true << block;
        QTest::newRow("auto") << "auto" << false << autoRead;
    }
    void dump()
    {
        QFETCH(QString, style);
        QFETCH(bool, json);
        QFETCH(QByteArray, firstFrame);
        fillChip();
        QStringList args{"dump"};
        if (!style.isEmpty())
            args << "--style" << style;
        const Run r = ctl(json, args);
        QVERIFY(done(r, json));
        const QByteArray regs = chip();
        QVERIFY(sent().value(1).startsWith(firstFrame)); // after the identity read
        QVERIFY(written().isEmpty());
        if (json) {
            const QJsonArray values = r.json().value("registers").toArray();
            QCOMPARE(values.size(), 291);
            for (int i = 0; i < 291; ++i)
                QCOMPARE(values.at(i).toInt(), int(quint8(regs[i])));
            QCOMPARE(r.json().value("style").toString(), style.isEmpty() ? "auto" : style);
            return;
        }
        const QList<QByteArray> lines = r.out.split('\n');
        QCOMPARE(lines.size(), 1 + 19 + 1);
        QCOMPARE(lines.at(0), QByteArray("      0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f"));
        QCOMPARE(lines.at(19), "120: " + regs.mid(288, 3).toHex(' '));
        for (int row = 0; row < 18; ++row)
            QCOMPARE(lines.at(1 + row), QByteArray::number(row * 16, 16).rightJustified(3, '0') + ": "
                                            + regs.mid(row * 16, 16).toHex(' '));
    }

    // One register as the service panel reads and writes it; a register that
    // keeps its own bits reads back otherwise.
    void singleRegister_data()
    {
        QTest::addColumn<bool>("json");
        QTest::newRow("text") << false;
        QTest::newRow("json") << true;
    }
    void singleRegister()
    {
        QFETCH(bool, json);
        bus->chip(board).setReg(12, 0x5A);
        const Run get = ctl(json, {"get", "12"});
        QVERIFY(done(get, json));
        if (json)
            QCOMPARE(get.json().toVariantMap(), (QVariantMap{{"command", "get"}, {"ok", true}, {"register", 12},
                                                             {"name", "CLK_OUT"}, {"value", 0x5A}}));
        else
            QCOMPARE(get.out, QByteArray("0x5a\n"));
        QCOMPARE(sent(), QList<QByteArray>{QByteArray::fromHex("1503800C00")});

        bus->clearWireLog();
        const Run set = ctl(json, {"set", "0x0c", "165"});
        QVERIFY(done(set, json));
        QCOMPARE(bus->chip(board).reg(12), quint8(0xA5));
        QCOMPARE(sent(), (QList<QByteArray>{QByteArray::fromHex("1503000CA5"), QByteArray::fromHex("1503800C00")}));
        QCOMPARE(json ? set.json().value("value").toInt() : set.out.trimmed().toInt(nullptr, 16), 0xA5);

        const Run kept = ctl(json, {"set", "5", "0x5f"});
        QCOMPARE(kept.exit, 3);
        QVERIFY(kept.err.contains("register 5 reads back 0x"));
        if (json)
            QCOMPARE(kept.json().value("written").toInt(), 0x5F);
    }

    // Boards by bus and address, and the choice among several.
    void boards()
    {
        zvsim::BoardConfig second;
        second.bus = 3;
        second.address = 12;
        second.product = 0x0007;
        board = bus->addBoard(second);
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
        const Run none = ctl({"get", "12"});
        QCOMPARE(none.exit, 1);
        QVERIFY(none.err.contains("2 bridge boards are attached (1:5, 3:12): choose one with --board BUS:ADDRESS"));
        bus->clearWireLog();
        const Run absent = ctl({"--board", "1:6", "dump"});
        QCOMPARE(absent.exit, 1);
        QVERIFY(absent.err.contains("no bridge board at bus 1 address 6; boards at 1:5, 3:12"));
        QVERIFY(sent().isEmpty());
    }

    // Codes as the widgets hold them and the words of the screens; a field
    // that spans two registers; a display field.
    void readFields_data()
    {
        QTest::addColumn<bool>("json");
        QTest::newRow("text") << false;
        QTest::newRow("json") << true;
    }
    void readFields()
    {
        QFETCH(bool, json);
        zvsim::SimulatedChip& c = bus->chip(board);
        c.setReg(21, 0xE0 | 13);                 // ChA_PLL_RDiv, bits D4-D0
        c.setReg(22, 0xF1), c.setReg(23, 0x2C);  // ChA_PLL_DSM_N 0x12C over two registers
        c.setReg(9, 0x02);                       // TS_MD: continuous
        c.setReg(11, 9);                         // PLL_CDiv
        const Run r = ctl(json, {"field", "ChA_PLL_RDiv", "ChA_PLL_DSM_N_ZV4280v2", "TS_MD", "PLL_CDiv", "AOK"});
        QVERIFY(done(r, json));
        QVERIFY(written().isEmpty());
        const QStringList expected{"ChA_PLL_RDiv=13\tR-divider ratio:  13", "ChA_PLL_DSM_N=300\tN-divider ratio:  300",
                                   "TS_MD=1\tMode: continuous", "PLL_CDiv=9\tC-divider ratio:  9", "AOK=1\tAOK: 1"};
        if (!json) {
            QCOMPARE(QString::fromUtf8(r.out).split('\n', Qt::SkipEmptyParts), expected);
            return;
        }
        const QJsonArray fields = r.json().value("fields").toArray();
        QCOMPARE(fields.size(), expected.size());
        QCOMPARE(fields.at(1).toObject().toVariantMap(),
                 (QVariantMap{{"name", "ChA_PLL_DSM_N"}, {"code", 300}, {"text", "N-divider ratio:  300"},
                              {"location", "Reg22 <D3-D0>,Reg23 <D7-D0>"}}));
        for (int i = 0; i < fields.size(); ++i) {
            const QJsonObject f = fields.at(i).toObject();
            QCOMPARE(f.value("name").toString() + '=' + QString::number(f.value("code").toInt()) + '\t'
                         + f.value("text").toString(),
                     expected.at(i));
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
        QTest::newRow("spin box") << QStringList{"ChA_PLL_RDiv=3"} << QList<int>{21} << QList<int>{0x1F}
                                  << QList<int>{3} << false;
        QTest::newRow("two registers") << QStringList{"ChA_PLL_DSM_N=0x12C"} << QList<int>{22, 23}
                                       << QList<int>{0x0F, 0xFF} << QList<int>{0x01, 0x2C} << true;
        QTest::newRow("three fields, three kinds")
            << QStringList{"TS_MD_ZV4280v2=1", "CLK_EN=1", "ChB_PLL_RDiv=30"} << QList<int>{6, 9, 43}
            << QList<int>{0x10, 0x02, 0x1F} << QList<int>{0x10, 0x02, 30} << false;
        QTest::newRow("check box cleared") << QStringList{"CLK_EN=0"} << QList<int>{6} << QList<int>{0x10}
                                           << QList<int>{0} << true;
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
        const Run r = ctl(json, QStringList{"field"} + assignments);
        QVERIFY(done(r, json));

        QList<int> sorted = written();
        std::sort(sorted.begin(), sorted.end());
        QCOMPARE(sorted, registers);
        const QByteArray after = chip();
        for (int reg = 0; reg < 291; ++reg) {
            if (live(reg))
                continue;
            const int i = registers.indexOf(reg);
            const int mask = i < 0 ? 0 : masks[i];
            QCOMPARE(quint8(after[reg]) & ~mask, quint8(before[reg]) & ~mask);
            if (i >= 0)
                QCOMPARE(quint8(after[reg]) & mask, values[i]);
        }
        // Read back after the write: the last frames read the whole chip.
        QVERIFY(sent().last().startsWith(QByteArray::fromHex("150DC118")));
        if (json) {
            const QJsonObject doc = r.json();
            QCOMPARE(doc.value("written").toArray().size(), registers.size());
            for (const QJsonValue f : doc.value("fields").toArray())
                QCOMPARE(f.toObject().value("code"), f.toObject().value("asked"));
        } else {
            QCOMPARE(r.out.count('\n'), assignments.size());
        }
    }

    // The temperature code belongs to the chip: a change of it is written
    // and reads back otherwise.
    void readBackDiffers()
    {
        for (bool json : {false, true}) {
            bus->chip(board).setReg(9, 0);
            const Run r = ctl(json, {"field", "TS_code=5", "TS_MD=1"});
            QCOMPARE(r.exit, 3);
            QVERIFY2(r.err.startsWith("zv4280ctl: field: TS_code reads back ") && r.err.contains(" after 5 was written")
                         && !r.err.contains("TS_MD"),
                     r.err.constData());
            QCOMPARE(bus->chip(board).reg(9) & 0x02, 0x02);
            if (json) {
                QCOMPARE(r.json().value("exit").toInt(), 3);
                QCOMPARE(r.json().value("written").toArray(), (QJsonArray{4, 5, 9}));
                QCOMPARE(r.json().value("fields").toArray().size(), 2);
            } else {
                QVERIFY(r.out.startsWith("TS_code="));
                QVERIFY(r.out.contains("\nTS_MD=1\tMode: continuous\n"));
            }
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

        const Run json = ctl({"fields", "--json", "ChA_PLL_DSM_N", "CLK_EN", "ChD_VCO_CVHI"});
        QVERIFY(done(json, true));
        const QJsonArray fields = json.json().value("fields").toArray();
        QCOMPARE(fields.size(), 3);
        QCOMPARE(fields.at(0).toObject().toVariantMap(),
                 (QVariantMap{{"name", "ChA_PLL_DSM_N"}, {"location", "Reg22 <D3-D0>,Reg23 <D7-D0>"},
                              {"registers", QVariantList{22, 23}}, {"width", 12}, {"kind", "spinbox"},
                              {"editable", true}, {"inverted", false}, {"min", 0}, {"max", 4095}}));
        QCOMPARE(fields.at(1).toObject().value("kind").toString(), QString("checkbox"));
        QCOMPARE(fields.at(1).toObject().value("max").toInt(), 1);
        QCOMPARE(fields.at(2).toObject().value("inverted").toBool(), true);
        QCOMPARE(fields.at(2).toObject().value("editable").toBool(), false);
        QVERIFY(bus->wireLog().isEmpty());
    }

    // Bad input is refused with exit status 2 and a message that says what
    // is allowed, before anything reaches the chip.
    void refused_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("message");
        write(path("other.hex"), ";XY12\nReg40\t5A\n");
        write(path("noregs.hex"), ";ZV4280\n//  Clock settings \n\t   //Reg40 5A\n");
        write(path("beyond.hex"), ";ZV4280\nReg40\t5A\nReg291\t01\n");
        QVERIFY(QDir(dir.path()).mkpath("folder.hex"));
        QTest::newRow("unknown field") << QStringList{"field", "ChA_Nothing=1"}
                                       << "no field \"ChA_Nothing\" (zv4280ctl fields lists them)";
        QTest::newRow("code too large") << QStringList{"field", "ChA_PLL_RDiv=32"}
                                        << "ChA_PLL_RDiv (spin box) takes 0 to 31, not \"32\"";
        QTest::newRow("below the box's minimum") << QStringList{"field", "PLL_CDiv=3"}
                                                 << "PLL_CDiv (spin box) takes 4 to 255, not \"3\"";
        QTest::newRow("no such item") << QStringList{"field", "TS_MD=2"}
                                      << "TS_MD (combo box) takes 0 to 1: 0 single | 1 continuous, not \"2\"";
        QTest::newRow("check box") << QStringList{"field", "CLK_EN=2"} << "CLK_EN (check box) takes 0 or 1, not \"2\"";
        QTest::newRow("not a number") << QStringList{"field", "ChA_PLL_RDiv=-1"} << "takes 0 to 31, not \"-1\"";
        QTest::newRow("read-only field") << QStringList{"field", "ChA_PLL_RDiv=1", "TS_MD=1", "AOK=1"}
                                         << "AOK is a label that only displays what the chip holds";
        QTest::newRow("line edit") << QStringList{"field", "ID=1"} << "ID is a line edit that only displays";
        QTest::newRow("a field twice") << QStringList{"field", "TS_MD=1", "TS_MD_ZV4280v2=0"} << "TS_MD is given twice";
        QTest::newRow("names and codes mixed") << QStringList{"field", "TS_MD", "CLK_EN=1"}
                                               << "give either names to read or NAME=CODE to change";
        QTest::newRow("register 291") << QStringList{"get", "291"} << "no register \"291\": registers are 0 to 290";
        QTest::newRow("set register 291") << QStringList{"set", "291", "1"} << "registers are 0 to 290";
        QTest::newRow("byte too large") << QStringList{"set", "12", "0x100"} << "a value is 0 to 255";
        QTest::newRow("missing file") << QStringList{"load", path("missing.hex")} << "cannot read";
        QTest::newRow("unreadable file") << QStringList{"load", path("folder.hex")} << "cannot read";
        QTest::newRow("refused map name") << QStringList{"load", path("other.hex")}
                                          << "line 1: the map \"XY12\" is not this chip's; a saved file names it \";ZV4280\"";
        QTest::newRow("no register line") << QStringList{"load", path("noregs.hex")} << "holds no register line";
        QTest::newRow("register beyond the chip") << QStringList{"load", path("beyond.hex")}
                                                  << "line 3: no register 291: registers are 0 to 290";
        QTest::newRow("style") << QStringList{"dump", "--style", "fast"} << "--style takes single, block or auto";
        QTest::newRow("option of another command") << QStringList{"dump", "--comments"} << "dump takes no option --comments";
        QTest::newRow("board") << QStringList{"--board", "0x1:5", "dump"} << "--board takes BUS:ADDRESS";
        QTest::newRow("unknown command") << QStringList{"erase"} << "unknown command \"erase\"";
        QTest::newRow("no command") << QStringList{} << "no command given";
    }
    void refused()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, message);
        const QByteArray chipBefore = chip();
        for (bool json : {false, true}) {
            const Run r = ctl(json, args);
            QCOMPARE(r.exit, 2);
            QVERIFY2(r.err.startsWith("zv4280ctl: ") && r.err.contains(message.toUtf8()) && r.err.count('\n') == 1,
                     r.err.constData());
            if (json) {
                QCOMPARE(r.json().value("ok").toBool(true), false);
                QCOMPARE(r.json().value("exit").toInt(), 2);
                QVERIFY(r.json().value("error").toString().contains(message));
            } else {
                QVERIFY(r.out.isEmpty());
            }
        }
        QVERIFY(sent().isEmpty());
        QCOMPARE(chip(), chipBefore);
    }

    // A board that goes away or stalls in the middle of a command.
    void boardFails_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("fault");
        QTest::addColumn<int>("after"); // transfers that go through first
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("json");
        for (bool json : {false, true}) {
            const char* tail = json ? ", json" : "";
            QTest::addRow("no board%s", tail) << QStringList{"dump"} << "removed" << 0 << "no bridge board is attached" << json;
            QTest::addRow("unplugged in a dump%s", tail) << QStringList{"dump"} << "unplug" << 6
                                                         << "LIBUSB_ERROR_NO_DEVICE" << json;
            QTest::addRow("unplugged in a get%s", tail) << QStringList{"get", "3"} << "unplug" << 1
                                                        << "register 3 could not be read" << json;
            // The identity read (2 transfers) and the chip read (22) go
            // through; the write does not.
            QTest::addRow("unplugged before the write%s", tail) << QStringList{"field", "TS_MD=1"} << "unplug" << 26
                                                                << "LIBUSB_ERROR_NO_DEVICE" << json;
            QTest::addRow("stall in a dump%s", tail) << QStringList{"dump", "--style", "block"} << "stall" << 4
                                                     << "LIBUSB_ERROR_PIPE" << json;
            QTest::addRow("stall in a load%s", tail) << QStringList{"load", "LOAD"} << "stall" << 2
                                                     << "Write block error" << json;
            QTest::addRow("stall in a save%s", tail) << QStringList{"save", "SAVE"} << "stall" << 3
                                                     << "LIBUSB_ERROR_PIPE" << json;
        }
    }
    void boardFails()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, fault);
        QFETCH(int, after);
        QFETCH(QString, message);
        QFETCH(bool, json);
        write(path("load.hex"), ";ZV4280\nReg40\t5A\n");
        args.replaceInStrings("LOAD", path("load.hex"));
        args.replaceInStrings("SAVE", path("saved.hex"));
        QFile::remove(path("saved.hex"));
        if (fault == "removed")
            bus->removeBoard(board);
        else if (fault == "unplug")
            bus->unplugAfter(board, after);
        else
            bus->stallNext(board, after);
        const Run r = ctl(json, args);
        QCOMPARE(r.exit, 1);
        QVERIFY2(r.err.startsWith("zv4280ctl: ") && r.err.contains(message.toUtf8()), r.err.constData());
        if (json) {
            QCOMPARE(r.json().value("exit").toInt(), 1);
            QVERIFY(r.json().value("error").toString().contains(message));
        }
        QVERIFY(!QFile::exists(path("saved.hex")));
    }

    // What a save writes, a load brings back.
    void saveAndLoad_data()
    {
        QTest::addColumn<bool>("json");
        QTest::addColumn<bool>("comments");
        QTest::newRow("text") << false << false;
        QTest::newRow("json, comments") << true << true;
    }
    void saveAndLoad()
    {
        QFETCH(bool, json);
        QFETCH(bool, comments);
        fillChip();
        const QByteArray saved = chip();
        QStringList args{"save", path("round.hex")};
        if (comments)
            args << "--comments";
        const Run save = ctl(json, args);
        QVERIFY(done(save, json));
        QVERIFY(written().isEmpty());
        QCOMPARE(read(path("round.hex")).count("\nReg"), 107);
        if (json)
            QCOMPARE(save.json().toVariantMap(), (QVariantMap{{"command", "save"}, {"ok", true}, {"file", path("round.hex")},
                                                              {"comments", comments}, {"changesOnly", false}}));

        fillChip();
        bus->clearWireLog();
        const Run load = ctl(json, {"load", path("round.hex"), "--pause", "0"});
        QVERIFY(done(load, json));
        if (json)
            QCOMPARE(load.json().value("registers").toInt(), 107);
        const QByteArray now = chip();
        for (int r = 0; r <= 106; ++r)
            if (!live(r))
                QCOMPARE(quint8(now[r]), quint8(saved[r]));
        // One section: one block of 107 registers after the identity read.
        QCOMPARE(sent().size(), 1 + 11);
        QCOMPARE(written().size(), 107);
    }

    // The file of "save --comments" is the file of F6 in the GUI with the
    // same chip state in its forms.
    void saveLikeF6_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("comments") << QStringList{"--comments"};
        QTest::newRow("plain") << QStringList{};
    }
    void saveLikeF6()
    {
        QFETCH(QStringList, options);
        fillChip();
        QVERIFY(done(ctl(QStringList{"save", path("ctl.hex")} + options), false));

        MainClass gui;
        QVERIFY(waitIdle(&gui));
        mapshow* map = gui.firstMap();
        // The chip has not moved since the program read it.
        const QByteArray regs = chip();
        std::memcpy(map->icImage, regs.constData(), map->registerCount);
        std::memcpy(map->guiImage, regs.constData(), map->registerCount);
        gui.showOperationResult(1);
        gui.service->setSetting("HexComment", options.isEmpty() ? 0 : 1);
        gui.service->setSetting("ChangesOnly", 0);
        const QString f6 = HexWriter::guiText(GuiSave::take(*map, gui.service->settings));
        QCOMPARE(QString::fromUtf8(read(path("ctl.hex"))), f6);
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
        QStringList regs;
        for (const QByteArray& line : read(path("changes.hex")).split('\n'))
            if (line.startsWith("Reg") && !live(line.mid(3, line.indexOf('\t') - 3).toInt()))
                regs << QString::fromLatin1(line);
        // The identity, the AOK and lock bits of the powered chip, the
        // C-divider of its defaults, and the one register that differs from
        // the base among those that the base names.
        QCOMPARE(regs, (QStringList{"Reg0\t85", "Reg1\tC2", "Reg2\t1F", "Reg11\t04", "Reg14\t20", "Reg21\t2F",
                                    "Reg58\t20"}));
        QVERIFY(written().isEmpty());
    }
};

QTEST_MAIN(tst_ctl)
#include "tst_ctl.moc"
