#include "register_images.h"
#include "enginesupport.h"

// Bit numbering, runs of bits and the comparison of guiImage with icImage on an image of the real size.
class tst_bits : public QObject
{
    Q_OBJECT
    std::unique_ptr<RegisterImages> map;
    QByteArray gui() const { return imageBytes(map->guiImage); }

private slots:
    void init() { map.reset(new RegisterImages(QStringLiteral("ZV4280v2"), 291)); }
    void numbering()
    {
        const struct { int position, reg; char mask; } rows[] = {
            {0, 0, '\x80'}, {7, 0, '\x01'}, {8, 1, '\x80'}, {2320, 290, '\x80'}, {2327, 290, '\x01'}};
        for (const auto& r : rows) {
            map->setBit(map->guiImage, r.position, 1);
            QCOMPARE(gui(), QByteArray(291, 0).replace(r.reg, 1, QByteArray(1, r.mask)));
            QCOMPARE(map->getBit(map->guiImage, r.position), 1);
            QCOMPARE(map->getBrim(r.position, 1), 1u);
            QCOMPARE(map->getBit(map->icImage, r.position), 0);
            map->setBit(map->guiImage, r.position, 0);
            QCOMPARE(gui(), QByteArray(291, 0));
        }
    }
    // A value wider than its run leaves only its low bits, in the run only.
    void runs_data()
    {
        QTest::addColumn<int>("position");
        QTest::addColumn<int>("width");
        QTest::addColumn<quint32>("value");
        QTest::addColumn<QByteArray>("bytes"); // registers from position / 8 on
        QTest::newRow("23 bits from D6 of register 17") << 137 << 23 << 0x123456u << QByteArray::fromHex("123456");
        QTest::newRow("10 bits from D1 of register 4") << 38 << 10 << 0x2A5u << QByteArray::fromHex("02a5");
        QTest::newRow("13-bit identity") << 0 << 13 << 0x1ABCu << QByteArray::fromHex("d5e0");
        QTest::newRow("24 bits, widest field") << 16 << 24 << 0xA5C3E1u << QByteArray::fromHex("a5c3e1");
        QTest::newRow("last register") << 2320 << 8 << 0x81u << QByteArray::fromHex("81");
        QTest::newRow("two bits across a border") << 15 << 2 << 0x2u << QByteArray::fromHex("0100");
        QTest::newRow("5-bit run, 8-bit value") << 171 << 5 << 0xFFu << QByteArray::fromHex("1f");
        QTest::newRow("3-bit run, value 9") << 10 << 3 << 9u << QByteArray::fromHex("08");
        QTest::newRow("width 0") << 100 << 0 << 0xFFFFFFFFu << QByteArray();
    }
    void runs()
    {
        QFETCH(int, position);
        QFETCH(int, width);
        QFETCH(quint32, value);
        QFETCH(QByteArray, bytes);
        map->setBrim(position, width, value);
        QCOMPARE(gui(), QByteArray(291, 0).replace(position / 8, bytes.size(), bytes));
        QCOMPARE(map->getBrim(position, width), value & ((1u << width) - 1));
    }
    void brimChanged()
    {
        for (quint32 r = 0; r < map->registerCount; ++r)
            map->icImage[r] = map->guiImage[r] = quint8(r * 37);
        QVERIFY(!map->isBrimChanged(137, 23));
        for (int bit : {136, 137, 159, 160}) { // around and at both ends of the run
            map->guiImage[bit / 8] ^= 0x80 >> bit % 8;
            QCOMPARE(map->isBrimChanged(137, 23), bit == 137 || bit == 159);
            QVERIFY(!map->isBrimChanged(137, 0));
            map->guiImage[bit / 8] ^= 0x80 >> bit % 8;
        }
    }
};

QTEST_GUILESS_MAIN(tst_bits)
#include "tst_bits.moc"
