#include "testbed.h"
#include "usb_link.h"

#include <QtTest>

#include <memory>
#include <vector>

// The transport and the frames, through the real libusb talking to simulated
// boards on an emulated bus.
class tst_usb : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void examples_data();
    void examples();
    void readBlock_data();
    void readBlock();
    void writeBlockCopiesBackFullFrames();
    void autoincrement_data();
    void autoincrement();
    void interfaceKinds();
    void deviceChoice_data();
    void deviceChoice();
    void kernelDriverDetached();
    void claimRefused();
    void faults_data();
    void faults();
    void chipValuesRoundTrip();

private:
    QList<QByteArray> framesOut() const;
    QList<QByteArray> framesIn() const;

    std::unique_ptr<zvsim::Testbed> bus;
    std::unique_ptr<usb_link> link;
};

static QByteArray hex(const char* text)
{
    return QByteArray::fromHex(QByteArray(text).replace(' ', ""));
}

void tst_usb::initTestCase()
{
    if (!zvsim::Testbed::available())
        QSKIP("needs umockdev-wrapper");
}

void tst_usb::init()
{
    bus.reset(new zvsim::Testbed);
    link.reset(new usb_link);
}

void tst_usb::cleanup()
{
    link.reset();
    bus.reset();
}

QList<QByteArray> tst_usb::framesOut() const
{
    QList<QByteArray> frames;
    for (const zvsim::WireFrame& f : bus->wireLog())
        if (f.out)
            frames << f.bytes;
    return frames;
}

QList<QByteArray> tst_usb::framesIn() const
{
    QList<QByteArray> frames;
    for (const zvsim::WireFrame& f : bus->wireLog())
        if (!f.out)
            frames << f.bytes;
    return frames;
}

// The four frames of the protocol description, byte for byte.
void tst_usb::examples_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("read 0x0105") << "read" << hex("15 03 81 05 00");
    QTest::newRow("write AB to 0x0105") << "write" << hex("15 03 01 05 AB");
    QTest::newRow("block of registers 0 to 9")
        << "block" << hex("15 1E 80 00 00 80 01 00 80 02 00 80 03 00 80 04 00 80 05 00 80 06 00 80 07 00 80 08 00 80 09 00");
    QTest::newRow("autoincrement read of 3 from 0") << "auto" << hex("15 05 C0 00");
}

void tst_usb::examples()
{
    QFETCH(QString, operation);
    QFETCH(QByteArray, frame);
    bus->addBoard();
    bus->chip(0).setReg(3, 0x5A);
    if (operation == "read") {
        quint8 value = 0xEE;
        QVERIFY(link->readRegister(0x0105, &value));
        QCOMPARE(value, quint8(0)); // beyond the chip's registers
        QCOMPARE(framesOut(), QList<QByteArray>{frame});
        QCOMPARE(framesIn().value(0).size(), 5);
    } else if (operation == "write") {
        const quint8 value = 0xAB;
        QVERIFY(link->writeRegister(0x0105, &value));
        QCOMPARE(framesOut(), QList<QByteArray>{frame});
    } else if (operation == "block") {
        std::vector<quint8> elements(30, 0);
        for (int i = 0; i < 10; ++i)
            elements[size_t(3 * i + 1)] = quint8(i);
        QVERIFY(link->readBlock(10, elements.data()));
        QCOMPARE(framesOut().value(0), frame);
        QCOMPARE(framesIn().value(0).size(), 32);
        QCOMPARE(int(elements[3 * 3 + 2]), 0x5A);
    } else {
        quint8 buffer[3] = {0, 0, 0};
        QVERIFY(link->readAuto(0, 3, buffer));
        QCOMPARE(framesOut().size(), 1);
        QCOMPARE(framesOut().first().size(), 7);
        QCOMPARE(framesOut().first().left(4), frame);
        QCOMPARE(int(buffer[0]), int(bus->chip(0).reg(0)));
        QCOMPARE(int(buffer[1]), int(bus->chip(0).reg(1)));
    }
    QCOMPARE(bus->opens(0), 1);
    QCOMPARE(bus->closes(0), 1);
}

void tst_usb::readBlock_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QList<int>>("lengths");
    QTest::newRow("107") << 107 << QList<int>{32, 32, 32, 32, 32, 32, 32, 32, 32, 32, 23};
    QTest::newRow("10") << 10 << QList<int>{32, 2};
    QTest::newRow("20") << 20 << QList<int>{32, 32, 2};
    QTest::newRow("0") << 0 << QList<int>{2};
}

void tst_usb::readBlock()
{
    QFETCH(int, count);
    QFETCH(QList<int>, lengths);
    bus->addBoard();
    for (int r = 0; r < 291; ++r)
        if (r > 5)
            bus->chip(0).setReg(r, quint8(r * 7));
    std::vector<quint8> elements(size_t(3 * count + 3), 0xEE);
    for (int i = 0; i < count; ++i) {
        elements[size_t(3 * i)] = quint8(i >> 8);
        elements[size_t(3 * i + 1)] = quint8(i & 0xFF);
    }
    QVERIFY(link->readBlock(count, elements.data()));
    QList<int> seen;
    for (const QByteArray& f : framesOut())
        seen << f.size();
    QCOMPARE(seen, lengths);
    QCOMPARE(framesOut().last().left(2), QByteArray::fromHex(QByteArray::number((lengths.last() - 2), 16).rightJustified(2, '0')).prepend('\x15'));
    for (int i = 6; i < count; ++i)
        QCOMPARE(int(elements[size_t(3 * i + 2)]), (i * 7) & 0xFF);
    QCOMPARE(int(elements[size_t(3 * count + 2)]), 0xEE); // nothing written past the list
    QCOMPARE(bus->opens(0), 1);
    QCOMPARE(bus->closes(0), 1);
}

void tst_usb::writeBlockCopiesBackFullFrames()
{
    bus->addBoard();
    const int count = 13;
    std::vector<quint8> elements(size_t(3 * count));
    for (int i = 0; i < count; ++i) {
        elements[size_t(3 * i)] = 0;
        elements[size_t(3 * i + 1)] = quint8(i == 0 ? 1 : 10 + i); // register 1 keeps its identity
        elements[size_t(3 * i + 2)] = quint8(0x30 + i);
    }
    const quint8 identity = bus->chip(0).reg(1);
    QVERIFY(link->writeBlock(count, elements.data()));
    const QList<QByteArray> out = framesOut();
    QCOMPARE(out.size(), 2);
    QCOMPARE(out[0].left(5), hex("15 1E 00 01 30"));
    QCOMPARE(out[1], hex("15 09 00 14 3A 00 15 3B 00 16 3C"));
    // The full frame's answers came back: register 1 answers what it holds.
    QCOMPARE(int(elements[2]), 0x30);
    QCOMPARE(int(bus->chip(0).reg(1)), int(identity));
    QCOMPARE(int(bus->chip(0).reg(11)), 0x31);
    QCOMPARE(int(bus->chip(0).reg(22)), 0x3C);
    // The last frame's answer is dropped: the caller's values stay.
    QCOMPARE(int(elements[3 * 12 + 2]), 0x3C);
}

void tst_usb::autoincrement_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("count");
    QTest::addColumn<QList<QByteArray>>("heads"); // first four bytes of each frame
    QTest::newRow("107 from 0") << 0 << 107
                                << QList<QByteArray>{hex("15 1E C0 00"), hex("15 1E C0 1C"), hex("15 1E C0 38"),
                                                     hex("15 19 C0 54")};
    QTest::newRow("none") << 0 << 0 << QList<QByteArray>{};
    QTest::newRow("over 0xFF") << 0x0123 << 2 << QList<QByteArray>{hex("15 04 C1 23")};
    QTest::newRow("across 256") << 250 << 30 << QList<QByteArray>{hex("15 1E C0 FA"), hex("15 04 C1 16")};
}

void tst_usb::autoincrement()
{
    QFETCH(int, start);
    QFETCH(int, count);
    QFETCH(QList<QByteArray>, heads);
    bus->addBoard();
    for (int r = 6; r < 291; ++r)
        bus->chip(0).setReg(r, quint8(r ^ 0x55));
    std::vector<quint8> buffer(size_t(count + 1), 0xEE);
    QVERIFY(link->readAuto(start, count, buffer.data()));
    QList<QByteArray> seen;
    for (const QByteArray& f : framesOut())
        seen << f.left(4);
    QCOMPARE(seen, heads);
    for (int i = 0; i < count; ++i) {
        const int r = start + i;
        if (r >= 6)
            QCOMPARE(int(buffer[size_t(i)]), r < 291 ? (r ^ 0x55) & 0xFF : 0);
    }
    QCOMPARE(int(buffer[size_t(count)]), 0xEE);
    QCOMPARE(bus->opens(0), 1);
    QCOMPARE(bus->closes(0), 1);

    // The same run written back goes out with the write mark.
    bus->clearWireLog();
    QVERIFY(link->writeAuto(start, count, buffer.data()));
    for (const QByteArray& f : framesOut())
        QCOMPARE(quint8(f[2]) & 0xC0, 0x40);
    QCOMPARE(framesOut().size(), heads.size());
}

void tst_usb::interfaceKinds()
{
    bus->addBoard();
    quint8 value = 0x77;
    quint8 elements[6] = {0, 7, 0x11, 0, 8, 0x22};
    quint8 buffer[4] = {1, 2, 3, 4};
    link->interfaceKind = 1;
    QVERIFY(!link->readRegister(7, &value));
    QVERIFY(!link->writeRegister(7, &value));
    QVERIFY(!link->readBlock(2, elements));
    QVERIFY(!link->writeBlock(2, elements));
    QVERIFY(!link->readAuto(0, 4, buffer));
    QVERIFY(!link->writeAuto(0, 4, buffer));
    link->interfaceKind = 3;
    QVERIFY(!link->readRegister(7, &value));
    QVERIFY(link->readBlock(2, elements));
    QVERIFY(link->writeBlock(2, elements));
    QVERIFY(!link->readAuto(0, 4, buffer));
    QCOMPARE(value, quint8(0x77));
    QCOMPARE(QByteArray(reinterpret_cast<char*>(elements), 6), hex("00 07 11 00 08 22"));
    QCOMPARE(bus->opens(0), 0);
    QVERIFY(bus->wireLog().isEmpty());
}

void tst_usb::deviceChoice_data()
{
    QTest::addColumn<QList<int>>("vendors");   // one board per entry
    QTest::addColumn<QString>("selected");
    QTest::addColumn<int>("opened");           // board index, -1 none
    QTest::addColumn<QStringList>("listed");
    QTest::newRow("no board") << QList<int>{} << "" << -1 << QStringList{};
    QTest::newRow("one board, no selection") << QList<int>{0x2976} << "" << 0 << QStringList{"2976 3 1 5 "};
    QTest::newRow("one board, stale selection") << QList<int>{0x2976} << "2976 3 1 9 " << 0
                                                << QStringList{"2976 3 1 5 "};
    QTest::newRow("two boards, no selection") << QList<int>{0x2976, 0x2976} << "" << -1
                                              << QStringList{"2976 3 1 5 ", "2976 4 1 a "};
    QTest::newRow("two boards, second selected") << QList<int>{0x2976, 0x2976} << "2976 4 1 a " << 1
                                                 << QStringList{"2976 3 1 5 ", "2976 4 1 a "};
    QTest::newRow("another vendor only") << QList<int>{0x1234} << "" << -1 << QStringList{};
}

void tst_usb::deviceChoice()
{
    QFETCH(QList<int>, vendors);
    QFETCH(QString, selected);
    QFETCH(int, opened);
    QFETCH(QStringList, listed);
    for (int i = 0; i < vendors.size(); ++i) {
        zvsim::BoardConfig c;
        c.vendor = quint16(vendors[i]);
        c.product = quint16(3 + i);
        c.address = quint8(5 + 5 * i);
        bus->addBoard(c);
    }
    QVERIFY(link->scanDevices());
    QStringList found = link->deviceList;
    found.sort();
    QCOMPARE(found, listed);
    link->selectedKey = selected;
    quint8 value = 0;
    QCOMPARE(link->readRegister(1, &value), opened >= 0);
    for (int i = 0; i < vendors.size(); ++i) {
        QCOMPARE(bus->opens(i), i == opened ? 1 : 0);
        QCOMPARE(bus->closes(i), i == opened ? 1 : 0);
    }
    QCOMPARE(link->statusText, opened >= 0 ? QString() : QStringLiteral("Refresh device list"));
    if (opened >= 0)
        QCOMPARE(value, bus->chip(opened).reg(1));
}

void tst_usb::kernelDriverDetached()
{
    zvsim::BoardConfig c;
    c.kernelDriver = true;
    bus->addBoard(c);
    QVERIFY(bus->kernelDriverBound(0));
    quint8 value = 0;
    QVERIFY(link->readRegister(1, &value));
    QVERIFY(!bus->kernelDriverBound(0));
    QCOMPARE(value, bus->chip(0).reg(1));
}

void tst_usb::claimRefused()
{
    bus->addBoard();
    bus->refuseClaim(0, true);
    quint8 value = 0x42;
    QVERIFY(!link->readRegister(1, &value));
    QCOMPARE(value, quint8(0x42));
    QCOMPARE(bus->opens(0), bus->closes(0));
    bus->refuseClaim(0, false);
    QVERIFY(link->readRegister(1, &value));
}

// A board that fails in the middle of an operation: the operation says so,
// the caller's buffer keeps what it held, and the device is let go.
void tst_usb::faults_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("operation");
    for (const char* op : {"block", "auto", "register"}) {
        QTest::addRow("unplugged, %s", op) << "unplug" << op;
        QTest::addRow("stalled, %s", op) << "stall" << op;
        QTest::addRow("short, %s", op) << "short" << op;
    }
}

void tst_usb::faults()
{
    QFETCH(QString, fault);
    QFETCH(QString, operation);
    bus->addBoard();
    const int afterTransfers = operation == "register" ? 1 : 5;
    if (fault == "unplug") {
        bus->unplugAfter(0, afterTransfers);
    } else {
        // Let the first frames pass, then fail the next one.
        bus->unplugAfter(0, 1000);
    }
    std::vector<quint8> buffer(400, 0xEE);
    for (int i = 0; i < 107; ++i) {
        buffer[size_t(3 * i)] = 0;
        buffer[size_t(3 * i + 1)] = quint8(i);
    }
    const std::vector<quint8> before = buffer;
    if (fault == "stall")
        bus->stallNext(0);
    else if (fault == "short")
        bus->shortNext(0, 3);
    bool ok = true;
    if (operation == "block")
        ok = link->readBlock(107, buffer.data());
    else if (operation == "auto")
        ok = link->readAuto(0, 107, buffer.data());
    else
        ok = link->readRegister(1, buffer.data());
    QVERIFY(!ok);
    QVERIFY(buffer == before);
    QCOMPARE(bus->opens(0), 1);
    QCOMPARE(bus->closes(0), 1);
}

void tst_usb::chipValuesRoundTrip()
{
    bus->addBoard();
    bus->chip(0).setRelease(3);
    std::vector<quint8> data(291);
    for (int r = 0; r < 291; ++r)
        data[size_t(r)] = quint8(r * 13 + 1);
    QVERIFY(link->writeAuto(0, 291, data.data()));
    std::vector<quint8> back(291, 0);
    QVERIFY(link->readAuto(0, 291, back.data()));
    // Apart from the chip's own status (identity, temperature, channel B's
    // lock bit), the registers hold what was written.
    for (int r = 6; r < 291; ++r)
        if (r != 36)
            QCOMPARE(int(back[size_t(r)]), int(data[size_t(r)]));
    QCOMPARE(back[1] & 7, 3);
    QCOMPARE(bus->opens(0), 2);
    QCOMPARE(bus->closes(0), 2);
}

QTEST_GUILESS_MAIN(tst_usb)
#include "tst_usb.moc"
