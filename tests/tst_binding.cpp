#include "mapshow.h"
#include "part.h"
#include "testsupport.h"

#include <QtTest>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QRadioButton>
#include <QSpinBox>

#include <cstring>
#include <memory>
#include <vector>

// Moves values between widgets of every class and the images.
class tst_binding : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zvTestInit(); }
    void init();
    void cleanup();
    void roundTrip_data();
    void roundTrip();
    void spinBoxClampedToWidth();
    void comboWithoutItemKeepsImage();
    void bulbs_data();
    void bulbs();
    void displaysReadAsZero();
    void multiSegment();
    void unknownKey();
    void otherImages();

private:
    QWidget* bind(QWidget* w, const QString& objectName);
    QString keyOf(const QString& objectName);

    mapshow* map = nullptr;
    QWidget* form = nullptr;
    std::vector<std::unique_ptr<part>> records;
};

void tst_binding::init()
{
    map = new mapshow(QStringLiteral("ZV4280v2"), 291);
    form = new QWidget;
}

void tst_binding::cleanup()
{
    delete form;
    delete map;
    records.clear();
}

QWidget* tst_binding::bind(QWidget* w, const QString& objectName)
{
    w->setParent(form);
    w->setObjectName(objectName);
    part* p = mapshow::ParseObjName(objectName);
    Q_ASSERT(p);
    p->widget = w;
    map->parts.insert(p->name, p);
    records.emplace_back(p);
    return w;
}

QString tst_binding::keyOf(const QString& objectName)
{
    std::unique_ptr<part> p(mapshow::ParseObjName(objectName));
    return p->name;
}

static QWidget* makeWidget(const QString& cls)
{
    if (cls == "QCheckBox")
        return new QCheckBox;
    if (cls == "QRadioButton")
        return new QRadioButton;
    if (cls == "QComboBox") {
        auto* c = new QComboBox;
        c->addItems({"a", "b", "c", "d", "e", "f", "g", "h"});
        return c;
    }
    if (cls == "QSpinBox") {
        auto* s = new QSpinBox;
        s->setMaximum(2147483647);
        return s;
    }
    if (cls == "QDoubleSpinBox") {
        auto* s = new QDoubleSpinBox;
        s->setMaximum(1e9);
        s->setDecimals(0);
        return s;
    }
    return nullptr;
}

// image -> widget -> image, for each editing class.
void tst_binding::roundTrip_data()
{
    QTest::addColumn<QString>("cls");
    QTest::addColumn<QString>("objectName");
    QTest::addColumn<quint32>("code");     // the field's code in the image
    QTest::addColumn<QVariant>("shown");   // what the widget shows
    QTest::newRow("check box") << "QCheckBox" << "ZV_CLK_EN_ZV4280v2_51_1" << 1u << QVariant(true);
    QTest::newRow("check box inverted, image 1") << "QCheckBox" << "ZV_ChA_AAD_SHORT_ZV4280v2_118_1_I" << 1u
                                                  << QVariant(false);
    QTest::newRow("check box inverted, image 0") << "QCheckBox" << "ZV_ChA_AAD_SHORT_ZV4280v2_118_1_I" << 0u
                                                  << QVariant(true);
    QTest::newRow("radio button") << "QRadioButton" << "ZV_R_ZV4280v2_200_1" << 1u << QVariant(true);
    QTest::newRow("combo box") << "QComboBox" << "ZV_CLK_SOURCE_ZV4280v2_85_3" << 4u << QVariant(4);
    QTest::newRow("spin box over three registers") << "QSpinBox" << "ZV_ChA_Flo_ZV4280v2_137_23" << 0x6543A1u
                                                    << QVariant(0x6543A1);
    QTest::newRow("spin box at its maximum") << "QSpinBox" << "ZV_Fx_ZV4280v2_56_16" << 65535u << QVariant(65535);
    QTest::newRow("double spin box") << "QDoubleSpinBox" << "ZV_D_ZV4280v2_300_10" << 777u << QVariant(777.0);
}

void tst_binding::roundTrip()
{
    QFETCH(QString, cls);
    QFETCH(QString, objectName);
    QFETCH(quint32, code);
    QFETCH(QVariant, shown);
    QWidget* w = bind(makeWidget(cls), objectName);
    const QString key = keyOf(objectName);
    const part* p = map->parts.value(key);

    // Image to widget.
    map->setBrim(p->position, p->width, code);
    QByteArray before(reinterpret_cast<const char*>(map->guiImage), int(map->registerCount));
    map->setPartValue(key, map->guiImage);
    if (cls == "QCheckBox" || cls == "QRadioButton")
        QCOMPARE(static_cast<QAbstractButton*>(w)->isChecked(), shown.toBool());
    else if (cls == "QComboBox")
        QCOMPARE(static_cast<QComboBox*>(w)->currentIndex(), shown.toInt());
    else if (cls == "QSpinBox")
        QCOMPARE(static_cast<QSpinBox*>(w)->value(), shown.toInt());
    else
        QCOMPARE(static_cast<QDoubleSpinBox*>(w)->value(), shown.toDouble());

    // Widget to image: the same code comes back, nothing else moves.
    QCOMPARE(map->getPartValue(key), code);
    std::memset(map->guiImage, 0, map->registerCount);
    QCOMPARE(map->applyPartToImage(key), code);
    QCOMPARE(QByteArray(reinterpret_cast<const char*>(map->guiImage), int(map->registerCount)), before);
}

void tst_binding::spinBoxClampedToWidth()
{
    auto* box = static_cast<QSpinBox*>(bind(makeWidget("QSpinBox"), "ZV_ChA_PLL_RDiv_ZV4280v2_171_5"));
    const QString key = keyOf(box->objectName());
    box->setValue(40);
    QCOMPARE(map->applyPartToImage(key), 31u);
    QCOMPARE(box->value(), 31);
    QCOMPARE(map->getBrim(171, 5), 31u);
    QCOMPARE(int(map->guiImage[21]), 0x1F);
    // A huge number is cut the same way and leaves the neighbours alone.
    box->setValue(2147483647);
    QCOMPARE(map->applyPartToImage(key), 31u);
    QCOMPARE(int(map->guiImage[20]), 0);
    QCOMPARE(int(map->guiImage[22]), 0);
}

void tst_binding::comboWithoutItemKeepsImage()
{
    auto* combo = new QComboBox;
    combo->addItems({"PLL A", "PLL B", "PLL C", "TCXO", "external"});
    bind(combo, "ZV_CLK_SOURCE_ZV4280v2_85_3");
    const QString key = keyOf(combo->objectName());
    map->setBrim(85, 3, 6);
    map->setPartValue(key, map->guiImage);
    QCOMPARE(combo->currentIndex(), -1);
    QCOMPARE(map->getPartValue(key), 6u);
    QCOMPARE(map->applyPartToImage(key), 6u);
    QCOMPARE(map->getBrim(85, 3), 6u);
    QCOMPARE(int(map->guiImage[10]), 6);
    // The user picks an item: that code goes in.
    combo->setCurrentIndex(1);
    QCOMPARE(map->applyPartToImage(key), 1u);
    QCOMPARE(map->getBrim(85, 3), 1u);
}

void tst_binding::bulbs_data()
{
    QTest::addColumn<quint32>("code");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("picture");
    QTest::newRow("on") << 1u << true << ":/Bulb-good.png";
    QTest::newRow("off") << 0u << true << ":/Bulb-bad.png";
    QTest::newRow("disabled, on") << 1u << false << ":/Bulb-disabled.png";
    QTest::newRow("disabled, off") << 0u << false << ":/Bulb-disabled.png";
}

void tst_binding::bulbs()
{
    QFETCH(quint32, code);
    QFETCH(bool, enabled);
    QFETCH(QString, picture);
    auto* bulb = static_cast<QLabel*>(bind(new QLabel, "ZV_AOK_ZV4280v2_19_1"));
    bulb->setEnabled(enabled);
    map->setBrim(19, 1, code);
    map->setPartValue(keyOf(bulb->objectName()), map->guiImage);
    const QPixmap expected(picture);
    QVERIFY(!expected.isNull());
    QCOMPARE(bulb->pixmap(Qt::ReturnByValue).toImage(), expected.toImage());
}

void tst_binding::displaysReadAsZero()
{
    auto* label = static_cast<QLabel*>(bind(new QLabel, "ZV_L_ZV4280v2_400_3"));
    auto* edit = static_cast<QLineEdit*>(bind(new QLineEdit, "ZV_ID_ZV4280v2_0_13"));
    map->setBrim(400, 3, 5);
    map->setBrim(0, 13, 4280);
    map->setPartValue("L_ZV4280v2", map->guiImage);
    map->setPartValue("ID_ZV4280v2", map->guiImage);
    QCOMPARE(label->text(), QStringLiteral("5"));
    QCOMPARE(edit->text(), QStringLiteral("4280"));
    QCOMPARE(map->getPartValue("L_ZV4280v2"), 0u);
    QCOMPARE(map->getPartValue("ID_ZV4280v2"), 0u);
}

void tst_binding::multiSegment()
{
    // Segments 10..12 and 20..23: the last segment holds the low bits.
    auto* box = static_cast<QSpinBox*>(bind(makeWidget("QSpinBox"), "ZV_A_ZV4280v2_10p20_3p4"));
    box->setValue(0x5B); // 101 1011
    QCOMPARE(map->applyPartToImage("A_ZV4280v2"), 0x5Bu);
    QCOMPARE(map->getBrim(10, 3), 5u);
    QCOMPARE(map->getBrim(20, 4), 0xBu);
    QCOMPARE(map->getBrim(13, 7), 0u);
    box->setValue(0);
    map->setPartValue("A_ZV4280v2", map->guiImage);
    QCOMPARE(box->value(), 0x5B);
}

void tst_binding::unknownKey()
{
    QCOMPARE(map->getPartValue("nothing_ZV4280v2"), 0u);
    QCOMPARE(map->applyPartToImage("nothing_ZV4280v2"), 0u);
    map->setPartValue("nothing_ZV4280v2", map->guiImage);
}

void tst_binding::otherImages()
{
    // A file's value shown from cfgImage lands in guiImage with the next apply.
    auto* box = static_cast<QSpinBox*>(bind(makeWidget("QSpinBox"), "ZV_PLL_CDiv_ZV4280v2_88_8"));
    map->cfgImage[11] = 0x42;
    map->setPartValue("PLL_CDiv_ZV4280v2", map->cfgImage);
    QCOMPARE(box->value(), 0x42);
    QCOMPARE(int(map->guiImage[11]), 0);
    map->applyPartToImage("PLL_CDiv_ZV4280v2");
    QCOMPARE(int(map->guiImage[11]), 0x42);
}

QTEST_MAIN(tst_binding)
#include "tst_binding.moc"
