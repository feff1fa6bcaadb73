#include "boardsupport.h"
#include "frame_decoder.h"
#include "frame_log.h"
#include "usb_link.h"

// What the test board holds in register r; 0 beyond the chip's registers.
static quint8 pattern(int r) { return r < 291 ? quint8(r * 7 + 1) : 0; }
// Registers the chip fills itself: identity, temperature, channel B's lock bit.
static bool chipOwned(int r) { return r < 6 || r == 36; }

// The transport and its frames, through the real libusb to simulated boards.
class tst_usb : public QObject
{
    Q_OBJECT

    std::unique_ptr<zvsim::Testbed> bus;
    std::unique_ptr<usb_link> link;
    std::vector<quint8> buf, before;

    QList<int> uses(int board) const { return {bus->opens(board), bus->closes(board)}; }

    // Runs `op` on a fresh caller's buffer (kept in `before` too): block
    // elements carry their addresses, writes carry AB, AC, ..., the rest is EE.
    bool run(const QString& op, int first, int count)
    {
        const bool block = op.endsWith("Block");
        buf.assign(size_t(3 * count + 3), 0xEE);
        for (int i = 0; i < count; ++i) {
            if (block) {
                buf[size_t(3 * i)] = quint8((first + i) >> 8);
                buf[size_t(3 * i + 1)] = quint8(first + i);
            }
            if (!op.startsWith("read"))
                buf[size_t(block ? 3 * i + 2 : i)] = quint8(0xAB + i);
        }
        before = buf;
        quint8* p = buf.data();
        return op == "read"         ? link->readRegister(first, p)
               : op == "write"      ? link->writeRegister(first, p)
               : op == "readBlock"  ? link->readBlock(count, p)
               : op == "writeBlock" ? link->writeBlock(count, p)
               : op == "readAuto"   ? link->readAuto(first, count, p)
                                    : link->writeAuto(first, count, p);
    }

private slots:
    void initTestCase() { if (!zvsim::Testbed::available()) QSKIP("needs umockdev-wrapper"); }
    void init() { bus.reset(new zvsim::Testbed), link.reset(new usb_link); }
    // Every test, passing or failing, lets go of each board as often as it took it.
    void cleanup()
    {
        const QString unreleased = bus->unreleased();
        link.reset(), bus.reset();
        QCOMPARE(unreleased, QString());
    }

    // The frames of each operation, from tests/data/usb_frames.txt.
    void frames_data()
    {
        QTest::addColumn<QString>("row");
        for (const QString& row : dataRows("usb_frames.txt"))
            QTest::newRow(qPrintable(row.section('|', 0, 0))) << row;
    }
    void frames()
    {
        QFETCH(QString, row);
        const QStringList f = row.split('|');
        const QString op = f[1];
        const int first = f[2].toInt(nullptr, 0), count = f[3].toInt();
        const QByteArray head = QByteArray::fromHex(f[5].toLatin1()), tail = QByteArray::fromHex(f[6].toLatin1());
        bus->addBoard({0x2976, 3, 1, 5, true}); // a kernel driver holds interface 0
        QVERIFY(bus->kernelDriverBound(0));
        for (int r = 0; r < 291; ++r)
            if (!chipOwned(r))
                bus->chip(0).setReg(r, pattern(r));
        FrameLog log;
        link->setFrameObserver(&log);
        QVERIFY(run(op, first, count));
        const QList<QByteArray> out = sentFrames(*bus);
        // The log hears each frame and its reply.
        const QVector<FrameLog::Entry> heard = log.since(0);
        QCOMPARE(heard.size(), 2 * out.size());
        QCOMPARE(heard.value(0).bytes, out.value(0));
        if (!f.value(7).isEmpty())
            QCOMPARE(FrameDecoder::meaning(heard[0].bytes), f[7]);
        if (!f.value(8).isEmpty())
            QCOMPARE(FrameDecoder::meaning(heard[1].bytes, heard[1].request), f[8]);
        QStringList lengths;
        for (const QByteArray& frame : out)
            lengths << QString::number(frame.size());
        QCOMPARE(lengths.join(' '), f[4]);
        QCOMPARE(out.value(0).left(head.size()), head);
        QCOMPARE(out.value(out.size() - 1).left(tail.size()), tail);
        // Writes reach the chip and leave the caller's values; reads fill the list only.
        const bool reading = op.startsWith("read");
        const int step = op.endsWith("Block") ? 3 : 1, at = step - 1;
        for (int i = 0; i < count; ++i)
            if (!reading)
                QCOMPARE(int(bus->chip(0).reg(first + i)), 0xAB + i);
            else if (!chipOwned(first + i))
                QCOMPARE(int(buf[size_t(step * i + at)]), int(pattern(first + i)));
        QVERIFY(reading || buf == before);
        QCOMPARE(buf[size_t(step * count + at)], before[size_t(step * count + at)]);
        QCOMPARE(uses(0), (QList<int>{1, 1}));
        QVERIFY(!bus->kernelDriverBound(0));
    }

    // The chip's answers to a written block come back into the list from full
    // frames only; registers 0, 1 and 5, and two bits of 4, keep the chip's values.
    void writeBlockCopiesBackFullFrames()
    {
        bus->addBoard();
        const int addresses[13] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 5, 0}, own[4] = {0, 1, 4, 5};
        quint8 held[4];
        for (int k = 0; k < 4; ++k)
            held[k] = bus->chip(0).reg(own[k]);
        std::vector<quint8> list;
        for (int a : addresses)
            list.insert(list.end(), {0, quint8(a), 0x77});
        QVERIFY(link->writeBlock(13, list.data()));
        for (int i = 0; i < 13; ++i)
            QCOMPARE(int(list[size_t(3 * i + 2)]), i < 10 ? int(bus->chip(0).reg(addresses[i])) : 0x77);
        for (int k = 0; k < 4; ++k)
            QCOMPARE(bus->chip(0).reg(own[k]), k == 2 ? quint8(0x74 | (held[2] & 3)) : held[k]);
    }

    // Only the bridge boards are served: on any other interface every
    // operation is refused without touching the bus.
    void interfaceKinds()
    {
        bus->addBoard();
        for (int kind : {1, 3}) {
            link->interfaceKind = kind;
            for (const char* op : {"read", "write", "readBlock", "writeBlock", "readAuto", "writeAuto"}) {
                QVERIFY2(!run(op, 7, 2), op);
                QVERIFY2(buf == before, op);
            }
        }
        QCOMPARE(bus->opens(0), 0);
    }

    void deviceChoice_data()
    {
        QTest::addColumn<QList<int>>("vendors"); // one board per entry
        QTest::addColumn<QString>("selected");
        QTest::addColumn<int>("opened"); // board index, -1 none
        QTest::addColumn<QStringList>("listed");
        const QStringList one{"2976 3 1 5 "}, two{"2976 3 1 5 ", "2976 4 1 a "};
        QTest::newRow("no board") << QList<int>{} << "" << -1 << QStringList{};
        QTest::newRow("one board, no selection") << QList<int>{0x2976} << "" << 0 << one;
        QTest::newRow("one board, stale selection") << QList<int>{0x2976} << "2976 3 1 9 " << 0 << one;
        QTest::newRow("two boards, no selection") << QList<int>{0x2976, 0x2976} << "" << -1 << two;
        QTest::newRow("two boards, second selected") << QList<int>{0x2976, 0x2976} << "2976 4 1 a " << 1 << two;
        QTest::newRow("another vendor only") << QList<int>{0x1234} << "" << -1 << QStringList{};
    }
    void deviceChoice()
    {
        QFETCH(QList<int>, vendors);
        QFETCH(int, opened);
        for (int i = 0; i < vendors.size(); ++i)
            bus->addBoard({quint16(vendors[i]), quint16(3 + i), 1, quint8(5 + 5 * i), false});
        QVERIFY(link->scanDevices());
        link->deviceList.sort();
        QTEST(link->deviceList, "listed");
        QFETCH(QString, selected);
        link->selectedKey = selected;
        quint8 value = 0x42;
        QCOMPARE(link->readRegister(1, &value), opened >= 0);
        for (int i = 0; i < vendors.size(); ++i)
            QCOMPARE(uses(i), (QList<int>{i == opened, i == opened}));
        QCOMPARE(link->statusText, opened >= 0 ? QString() : QStringLiteral("Refresh device list"));
        QCOMPARE(value, opened >= 0 ? bus->chip(opened).reg(1) : quint8(0x42));
    }

    // A board that fails in mid-operation, refuses the claim of interface 0
    // (held by another program), or a register number beyond what a frame
    // carries: the operation says so, the caller's buffer keeps what it held,
    // and no transfer follows the failed one (an IN after a lost frame would
    // wait out its timeout). Blocks fail in their third frame. A stalled
    // endpoint stays halted until the next operation clears it.
    void faults_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("op");
        for (const char* op : {"read", "write", "readBlock", "writeBlock", "readAuto", "writeAuto"})
            for (const char* fault : {"unplug", "stall in", "short in", "overflow in", "stall out", "short out",
                                      "overflow out", "claim", "register 16500"})
                QTest::addRow("%s, %s", fault, op) << fault << op;
    }
    void faults()
    {
        QFETCH(QString, fault);
        QFETCH(QString, op);
        const int skip = op == "read" || op == "write" ? 0 : 2;
        const bool out = fault.endsWith("out"), beyond = fault.startsWith("register");
        bus->addBoard();
        if (fault == "unplug")
            bus->unplugAfter(0, 2 * skip + 1);
        for (auto kind : {zvsim::TransferFault::Stall, zvsim::TransferFault::Short, zvsim::TransferFault::Overflow})
            if (fault.startsWith(QStringList{"stall", "short", "overflow"}.at(kind)))
                bus->failTransfer(0, {kind, out, skip, 3});
        bus->refuseClaim(0, fault == "claim");
        QVERIFY(!run(op, beyond ? 16500 : 0, 107));
        QVERIFY(buf == before);
        QCOMPARE(uses(0), (QList<int>{!beyond, !beyond}));
        QCOMPARE(bus->transfers(0), fault == "claim" || beyond ? 0 : 2 * skip + (out || fault == "unplug" ? 1 : 2));
        QCOMPARE(link->refusal(), fault == "claim" ? "the board is in use by another program" : "");
        if (beyond)
            QCOMPARE(link->transferFailure(), "register number 16500 is out of range, 0 to 16383");
        if (fault.startsWith("stall"))
            QVERIFY(run(op, 0, 107));
    }

    // An operation of several steps holds the board it reached first: it
    // goes on with that board beside another, and fails when it has gone,
    // whatever else is on the bus. Once let go, the single board is used.
    void heldBoard_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<QString>("refusal");
        QTest::newRow("none") << "" << "";
        QTest::newRow("another board beside it") << "add" << "";
        QTest::newRow("replugged at a new address") << "replug" << "the board changed";
        QTest::newRow("pulled out") << "remove" << "the board has left the bus";
    }
    void heldBoard()
    {
        QFETCH(QString, change);
        QFETCH(QString, refusal);
        bus->addBoard();
        link->holdBoard();
        link->holdBoard(); // holds nest
        quint8 value = 0;
        QVERIFY(link->readRegister(1, &value));
        link->releaseBoard();
        if (change == "replug" || change == "remove")
            bus->removeBoard(0);
        if (change == "replug" || change == "add")
            bus->addBoard({0x2976, 3, 1, 6});
        QCOMPARE(link->readRegister(1, &value), refusal.isEmpty());
        QCOMPARE(link->refusal(), refusal);
        link->releaseBoard();
        QCOMPARE(link->readRegister(1, &value), change != "add" && change != "remove");
    }
};

QTEST_GUILESS_MAIN(tst_usb)
#include "tst_usb.moc"
