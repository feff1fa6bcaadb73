#include "mapshow.h"
#include "testsupport.h"

#include <QtTest>

#include <cstring>

// Bit numbering, runs of bits and the comparison of guiImage with icImage on
// an image of the real size.
class tst_bits : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zvTestInit(); }
    void init();
    void cleanup();
    void numbering_data();
    void numbering();
    void runs_data();
    void runs();
    void setBrimWritesOnlyTheRun_data();
    void setBrimWritesOnlyTheRun();
    void brimChanged_data();
    void brimChanged();

private:
    mapshow* map = nullptr;
};

void tst_bits::init()
{
    map = new mapshow(QStringLiteral("ZV4280v2"), 291);
}

void tst_bits::cleanup()
{
    delete map;
    map = nullptr;
}

void tst_bits::numbering_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("reg");
    QTest::addColumn<int>("mask");
    QTest::newRow("first bit is D7 of register 0") << 0 << 0 << 0x80;
    QTest::newRow("position 7 is D0 of register 0") << 7 << 0 << 0x01;
    QTest::newRow("position 8 is D7 of register 1") << 8 << 1 << 0x80;
    QTest::newRow("D4 of register 2") << 19 << 2 << 0x10;
    QTest::newRow("last bit of the image") << 2327 << 290 << 0x01;
    QTest::newRow("first bit of the last register") << 2320 << 290 << 0x80;
}

void tst_bits::numbering()
{
    QFETCH(int, position);
    QFETCH(int, reg);
    QFETCH(int, mask);
    map->setBit(map->guiImage, position, 1);
    for (quint32 r = 0; r < map->registerCount; ++r)
        QCOMPARE(int(map->guiImage[r]), int(r) == reg ? mask : 0);
    QCOMPARE(map->getBit(map->guiImage, position), 1);
    QCOMPARE(map->getBrim(position, 1), 1u);
    // Other images are untouched, and clearing restores zero.
    QCOMPARE(map->getBit(map->icImage, position), 0);
    map->setBit(map->guiImage, position, 0);
    QCOMPARE(int(map->guiImage[reg]), 0);
}

void tst_bits::runs_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("width");
    QTest::addColumn<quint32>("value");
    QTest::addColumn<QByteArray>("bytes"); // registers from position / 8 on
    QTest::newRow("23 bits from D6 of register 17") << 137 << 23 << 0x7FFFFFu << QByteArray::fromHex("7fffff");
    QTest::newRow("23-bit pattern") << 137 << 23 << 0x123456u << QByteArray::fromHex("123456");
    QTest::newRow("10 bits from D1 of register 4") << 38 << 10 << 0x2A5u << QByteArray::fromHex("02a5");
    QTest::newRow("13-bit identity") << 0 << 13 << 0x1ABCu << QByteArray::fromHex("d5e0");
    QTest::newRow("16 bits over registers 7 and 8") << 56 << 16 << 0xBEEFu << QByteArray::fromHex("beef");
    QTest::newRow("24 bits, widest field") << 16 << 24 << 0xA5C3E1u << QByteArray::fromHex("a5c3e1");
    QTest::newRow("last register") << 2320 << 8 << 0x81u << QByteArray::fromHex("81");
    QTest::newRow("two bits across a border") << 15 << 2 << 0x2u << QByteArray::fromHex("0100");
}

void tst_bits::runs()
{
    QFETCH(int, position);
    QFETCH(int, width);
    QFETCH(quint32, value);
    QFETCH(QByteArray, bytes);
    map->setBrim(position, width, value);
    QCOMPARE(map->getBrim(position, width), value);
    const QByteArray image(reinterpret_cast<const char*>(map->guiImage), int(map->registerCount));
    QCOMPARE(image.mid(position / 8, bytes.size()), bytes);
    // Nothing outside the run's registers changed.
    QCOMPARE(image.count('\0') + bytes.size() - bytes.count('\0'), int(map->registerCount));
}

void tst_bits::setBrimWritesOnlyTheRun_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("width");
    QTest::addColumn<quint32>("value");
    QTest::addColumn<quint32>("expected");
    QTest::newRow("5-bit run, 8-bit value") << 171 << 5 << 0xFFu << 0x1Fu;
    QTest::newRow("3-bit run, value 9") << 10 << 3 << 9u << 1u;
    QTest::newRow("width 0") << 100 << 0 << 0xFFFFFFFFu << 0u;
}

void tst_bits::setBrimWritesOnlyTheRun()
{
    QFETCH(int, position);
    QFETCH(int, width);
    QFETCH(quint32, value);
    QFETCH(quint32, expected);
    std::memset(map->guiImage, 0, map->registerCount);
    map->setBrim(position, width, value);
    QCOMPARE(map->getBrim(position, width), expected);
    // The bits just before and after the run stay clear.
    if (position > 0)
        QCOMPARE(map->getBit(map->guiImage, position - 1), 0);
    QCOMPARE(map->getBit(map->guiImage, position + width), 0);
}

void tst_bits::brimChanged_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("flipBit"); // position flipped in guiImage, -1 none
    QTest::addColumn<bool>("changed");
    QTest::newRow("same images") << 137 << 23 << -1 << false;
    QTest::newRow("bit inside the run") << 137 << 23 << 159 << true;
    QTest::newRow("bit just behind the run") << 137 << 23 << 160 << false;
    QTest::newRow("bit just before the run") << 137 << 23 << 136 << false;
    QTest::newRow("width 0") << 137 << 0 << 137 << false;
}

void tst_bits::brimChanged()
{
    QFETCH(int, position);
    QFETCH(int, width);
    QFETCH(int, flipBit);
    for (quint32 r = 0; r < map->registerCount; ++r)
        map->icImage[r] = map->guiImage[r] = quint8(r * 37);
    if (flipBit >= 0)
        map->setBit(map->guiImage, flipBit, 1 - map->getBit(map->guiImage, flipBit));
    QTEST(map->isBrimChanged(position, width), "changed");
}

QTEST_MAIN(tst_bits)
#include "tst_bits.moc"
