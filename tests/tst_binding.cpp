#include "testsupport.h"

// Widgets bound to their fields on a small form of their own. A spin box
// above its field is cut to it through the real forms in tst_scan.
class tst_binding : public QObject
{
    Q_OBJECT
    std::unique_ptr<mapshow> map;
    std::unique_ptr<QWidget> form;
    std::vector<std::unique_ptr<part>> records;
    QString bind(QWidget* w, const QString& objectName)
    {
        part* p = records.emplace_back(mapshow::ParseObjName(objectName)).get();
        w->setParent(form.get());
        p->widget = w;
        return map->parts.insert(p->name, p).key();
    }
    QByteArray gui() const { return imageBytes(map->guiImage); }
    static QByteArray image(int reg = 0, const QByteArray& bytes = {}) { return QByteArray(291, 0).replace(reg, bytes.size(), bytes); }
private slots:
    void initTestCase() { zvTestInit(); }
    void init() { form.reset(new QWidget); map.reset(new mapshow(QStringLiteral("ZV4280v2"), 291)); records.clear(); }
    void roundTrip_data()
    {
        QTest::addColumn<QString>("cls");
        QTest::addColumn<QString>("objectName");
        QTest::addColumn<quint32>("code");   // the field's code in the image
        QTest::addColumn<QVariant>("shown"); // what the widget shows
        QTest::newRow("check box") << "QCheckBox" << "ZV_CLK_EN_ZV4280v2_51_1" << 1u << QVariant(true);
        QTest::newRow("inverted, 1") << "QCheckBox" << "ZV_ChA_AAD_SHORT_ZV4280v2_118_1_I" << 1u << QVariant(false);
        QTest::newRow("inverted, 0") << "QCheckBox" << "ZV_ChA_AAD_SHORT_ZV4280v2_118_1_I" << 0u << QVariant(true);
        QTest::newRow("radio button") << "QRadioButton" << "ZV_R_ZV4280v2_200_1" << 1u << QVariant(true);
        QTest::newRow("combo box") << "QComboBox" << "ZV_CLK_SOURCE_ZV4280v2_85_3" << 4u << QVariant(4);
        QTest::newRow("spin box, 3 registers") << "QSpinBox" << "ZV_ChA_Flo_ZV4280v2_137_23" << 0x6543A1u << QVariant(0x6543A1);
        QTest::newRow("double spin box") << "QDoubleSpinBox" << "ZV_D_ZV4280v2_300_10" << 777u << QVariant(777.0);
    }
    void roundTrip()
    {
        QFETCH(QString, cls);
        QFETCH(QString, objectName);
        QFETCH(quint32, code);
        QWidget* w = cls == "QCheckBox" ? new QCheckBox : cls == "QRadioButton" ? new QRadioButton : cls == "QComboBox" ? new QComboBox
                   : cls == "QSpinBox" ? new QSpinBox : static_cast<QWidget*>(new QDoubleSpinBox);
        if (auto* c = qobject_cast<QComboBox*>(w)) c->addItems({"a", "b", "c", "d", "e", "f", "g", "h"});
        w->setProperty("maximum", 1e9); // spin boxes only
        const QString key = bind(w, objectName);
        map->setBrim(map->parts[key]->position, map->parts[key]->width, code);
        const QByteArray before = gui();
        map->setPartValue(key, map->guiImage);
        QTEST(w->property(cls == "QComboBox" ? "currentIndex" : w->metaObject()->userProperty().name()), "shown");
        QCOMPARE(map->getPartValue(key), code);
        map->setBrim(map->parts[key]->position, map->parts[key]->width, ~code);
        QCOMPARE(map->applyPartToImage(key), code);
        QCOMPARE(gui(), before);
    }
    void comboWithoutItemKeepsImage()
    {
        auto* combo = new QComboBox;
        combo->addItems({"PLL A", "PLL B", "PLL C", "TCXO", "external"});
        const QString key = bind(combo, "ZV_CLK_SOURCE_ZV4280v2_85_3");
        map->setBrim(85, 3, 6);
        map->setPartValue(key, map->guiImage);
        QCOMPARE(combo->currentIndex(), -1);
        QCOMPARE(map->getPartValue(key), 6u);
        QCOMPARE(map->applyPartToImage(key), 6u);
        QCOMPARE(gui(), image(10, "\x06"));
    }
    void bulbs()
    {
        auto* bulb = new QLabel;
        const QString key = bind(bulb, "ZV_AOK_ZV4280v2_19_1");
        for (const auto& [code, enabled, picture] : std::initializer_list<std::tuple<quint32, bool, QString>>{
                 {1, true, "good"}, {0, true, "bad"}, {1, false, "disabled"}, {0, false, "disabled"}}) {
            bulb->setEnabled(enabled);
            map->setBrim(19, 1, code);
            map->setPartValue(key, map->guiImage);
            const QImage expected = QPixmap(":/Bulb-" + picture + ".png").toImage();
            QVERIFY(!expected.isNull());
            QCOMPARE(bulb->pixmap(Qt::ReturnByValue).toImage(), expected);
        }
    }
    void displaysShowCodeAndReadAsZero()
    {
        map->setBrim(0, 13, 4280); // the top two bits hold 2
        const std::tuple<QWidget*, const char*, const char*> rows[] = {
            {new QLabel, "ZV_L_ZV4280v2_0_2", "2"}, {new QLineEdit, "ZV_ID_ZV4280v2_0_13", "4280"}};
        for (const auto& [w, objectName, text] : rows) {
            const QString key = bind(w, objectName);
            map->setPartValue(key, map->guiImage);
            QCOMPARE(w->property("text").toString(), QString(text));
            QCOMPARE(map->getPartValue(key), 0u);
        }
    }
    // Segments 10..12 and 20..23, the last one holding the low bits; shown from cfgImage.
    void multiSegmentFromOtherImage()
    {
        auto* box = new QSpinBox;
        const QString key = bind(box, "ZV_A_ZV4280v2_10p20_3p4");
        map->cfgImage[1] = 0x28, map->cfgImage[2] = 0x0B; // 101, 1011
        map->setPartValue(key, map->cfgImage);
        QCOMPARE(box->value(), 0x5B);
        QCOMPARE(gui(), image());
        QCOMPARE(map->applyPartToImage(key), 0x5Bu);
        QCOMPARE(gui(), image(1, "\x28\x0b"));
    }
    void unknownKeyIsNoOp()
    {
        map->setPartValue("nothing_ZV4280v2", map->guiImage);
        QCOMPARE(map->getPartValue("nothing_ZV4280v2"), 0u);
        QCOMPARE(map->applyPartToImage("nothing_ZV4280v2"), 0u);
        QCOMPARE(gui(), image());
    }
};

QTEST_MAIN(tst_binding)
#include "tst_binding.moc"
