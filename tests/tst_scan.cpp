#include "MainClass.h"
#include "mapshow.h"
#include "part.h"
#include "testsupport.h"

#include <QtTest>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QToolBar>
#include <QVBoxLayout>

// The scan of all windows on a test form that holds the awkward cases.
class tst_scan : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void messages();
    void maps();
    void outputsHoldOnlyDisplays();
    void displays_data();
    void displays();
    void fieldWidgets();
    void bitOwners();
    void windowButtons();
    void editsReachTheImage();

private:
    template <class W>
    W* add(QWidget* parent, const QString& name)
    {
        auto* w = new W(parent);
        w->setObjectName(name);
        if (parent->layout())
            parent->layout()->addWidget(w);
        return w;
    }

    QWidget* testWin = nullptr;
    QWidget* otherWin = nullptr;
    MainClass* main = nullptr;
    ModalCatcher* catcher = nullptr;
};

void tst_scan::initTestCase()
{
    zvTestInit();
    testWin = new QWidget;
    testWin->setObjectName("TestWin");
    new QVBoxLayout(testWin);
    auto* group = add<QGroupBox>(testWin, "GrLoop");
    new QVBoxLayout(group);
    auto* spin = add<QSpinBox>(group, "ZV_ChA_PLL_LF_C1_ZV4280v2_900_5");
    spin->setToolTip("ChA_PLL_LF_C1: Reg112+3 (5)\n");
    add<QLabel>(group, "ChA_PLL_LF_C1LabelG");
    // A sibling that contains the search text but does not parse comes first.
    add<QLabel>(group, "capZV_ChA_PLL_LF_C1_ZV4280v2_900_5");
    add<QLineEdit>(group, "ChA_PLL_LF_C1_ZV4280v2_Expression");
    add<QLineEdit>(testWin, "Lonely_ZV4280v2_Expression");
    add<QCheckBox>(testWin, "ZV_Dup_ZV4280v2_1000_1");
    add<QCheckBox>(testWin, "ZV_Dup_ZV4280v2_1001_1");
    add<QCheckBox>(testWin, "ZV_Other_ZV4280v1_5_1");
    add<QLabel>(testWin, "ZV_Lamp_ZV4280v2_1100_1");
    add<QLineEdit>(testWin, "ZV_Read_ZV4280v2_1101_3");
    add<QComboBox>(testWin, "ZV_Pick_ZV4280v2_1104_2")->addItems({"a", "b", "c"});
    add<QDoubleSpinBox>(testWin, "ZV_Dbl_ZV4280v2_1200_8");
    add<QCheckBox>(testWin, "ZV_Far_ZV4280v2_2400_3");
    add<QPushButton>(testWin, "ButtonOtherWin");
    add<QPushButton>(testWin, "Button_ICFILE");
    otherWin = new QWidget;
    otherWin->setObjectName("OtherWin");

    catcher = new ModalCatcher(this);
    main = new MainClass({{"TestWin", testWin}, {"OtherWin", otherWin}}, nullptr);
}

void tst_scan::cleanupTestCase()
{
    delete main;
    delete testWin;
    delete otherWin;
}

void tst_scan::messages()
{
    QCOMPARE(catcher->texts.count("Совпадение имён!"), 1);
    QCOMPARE(catcher->texts.count("Больше одной карты регистров?!"), 1);
}

void tst_scan::maps()
{
    QCOMPARE(main->maps.keys(), QStringList({"ZV4280v1", "ZV4280v2"}));
    QCOMPARE(main->firstMap()->chipName, QStringLiteral("ZV4280v1"));
    QCOMPARE(main->maps.value("ZV4280v1")->registerCount, 1u);
    // The highest bit is 2402 (2400, 3 bits): 2403 bits make 301 registers.
    QCOMPARE(main->maps.value("ZV4280v2")->registerCount, 301u);
    QCOMPARE(main->windows.value("ZV4280v2"), static_cast<QWidget*>(main->maps.value("ZV4280v2")));
    QCOMPARE(main->maps.value("ZV4280v2")->windowTitle(), QStringLiteral("ZV4280(v2/v3)"));
    // Each map has its "Regmap" action, inserted before the bar's first action.
    auto* bar = main->findChild<QToolBar*>("toolBar_RegWindow");
    QVERIFY(bar);
    QStringList names;
    for (QAction* a : bar->actions())
        names << a->objectName();
    QCOMPARE(names.mid(0, 3), QStringList({"action_table_ZV4280v2", "action_table_ZV4280v1", "action_ExpertMode"}));
    // The later of the two widgets with one key owns the field.
    const part* dup = main->maps.value("ZV4280v2")->parts.value("Dup_ZV4280v2");
    QVERIFY(dup);
    QCOMPARE(dup->widget->objectName(), QStringLiteral("ZV_Dup_ZV4280v2_1001_1"));
    QVERIFY(main->maps.value("ZV4280v1")->parts.contains("Other_ZV4280v1"));
}

void tst_scan::outputsHoldOnlyDisplays()
{
    for (auto it = main->outputs.cbegin(); it != main->outputs.cend(); ++it) {
        const QObject* w = it.value()->widget;
        QVERIFY(w);
        const QString cls = w->metaObject()->className();
        const bool display = w->objectName().endsWith("_Expression");
        QVERIFY2(display || cls == "QLabel" || cls == "QLineEdit", qPrintable(it.key()));
        if (!display) {
            // A display field is in parts as well, as the same record.
            const mapshow* map = main->maps.value(it.value()->chip);
            QVERIFY(map);
            QCOMPARE(map->parts.value(it.key()), it.value());
        }
    }
    for (const char* key : {"ChA_PLL_LF_C1_ZV4280v2", "Lonely_ZV4280v2", "Lamp_ZV4280v2", "Read_ZV4280v2"})
        QVERIFY2(main->outputs.contains(key), key);
    for (const char* key : {"Dup_ZV4280v2", "Pick_ZV4280v2", "Dbl_ZV4280v2", "Far_ZV4280v2"})
        QVERIFY2(!main->outputs.contains(key), key);
}

void tst_scan::displays_data()
{
    QTest::addColumn<QString>("objectName");
    QTest::addColumn<QString>("tip");
    QTest::newRow("beside its spin box") << "ChA_PLL_LF_C1_ZV4280v2_Expression" << "Reg112 <D3-D0>,Reg113 <D7>";
    QTest::newRow("no sibling") << "Lonely_ZV4280v2_Expression" << "";
}

void tst_scan::displays()
{
    QFETCH(QString, objectName);
    auto* edit = testWin->findChild<QLineEdit*>(objectName);
    QVERIFY(edit);
    QVERIFY(edit->isReadOnly());
    QTEST(edit->toolTip(), "tip");
}

void tst_scan::fieldWidgets()
{
    auto* spin = testWin->findChild<QSpinBox*>("ZV_ChA_PLL_LF_C1_ZV4280v2_900_5");
    QCOMPARE(spin->toolTip(), QStringLiteral("Reg112 <D3-D0>,Reg113 <D7>"));
    QCOMPARE(spin->maximum(), 2147483647);
    QVERIFY(testWin->findChild<QLineEdit*>("ZV_Read_ZV4280v2_1101_3")->isReadOnly());
    QCOMPARE(testWin->findChild<QLabel*>("ZV_Lamp_ZV4280v2_1100_1")->toolTip(), QStringLiteral("Reg137 <D3>"));
    // A double spin box is a field without a connection.
    auto* dbl = testWin->findChild<QDoubleSpinBox*>("ZV_Dbl_ZV4280v2_1200_8");
    QVERIFY(main->maps.value("ZV4280v2")->parts.contains("Dbl_ZV4280v2"));
    QCOMPARE(dbl->toolTip(), QStringLiteral("Reg150 <D7-D0>"));
}

void tst_scan::bitOwners()
{
    const mapshow* map = main->maps.value("ZV4280v2");
    const QObject* spin = testWin->findChild<QSpinBox*>("ZV_ChA_PLL_LF_C1_ZV4280v2_900_5");
    for (int b = 0; b < 5; ++b) {
        QVERIFY(map->bitOwners.contains(900 + b));
        QCOMPARE(map->bitOwners.value(900 + b).widget, spin);
        QCOMPARE(map->bitOwners.value(900 + b).label, QString::number(4 - b));
    }
    QVERIFY(!map->bitOwners.contains(905));
    QVERIFY(!map->bitOwners.contains(899));
    QCOMPARE(map->bitOwners.value(1100).label, QString());
    QCOMPARE(map->bitOwners.value(1001).widget->objectName(), QStringLiteral("ZV_Dup_ZV4280v2_1001_1"));
}

void tst_scan::windowButtons()
{
    auto* button = testWin->findChild<QPushButton*>("ButtonOtherWin");
    QVERIFY(!otherWin->isVisible());
    button->click();
    QVERIFY(otherWin->isVisible());
    button->click();
    QVERIFY(!otherWin->isVisible());
    // "ICFILE" names no window: the button has no connection.
    auto* icfile = testWin->findChild<QPushButton*>("Button_ICFILE");
    QCOMPARE(icfile->metaObject()->indexOfSignal("clicked()") >= 0, true);
    icfile->click();
    QVERIFY(!otherWin->isVisible());
}

void tst_scan::editsReachTheImage()
{
    mapshow* map = main->maps.value("ZV4280v2");
    auto* spin = testWin->findChild<QSpinBox*>("ZV_ChA_PLL_LF_C1_ZV4280v2_900_5");
    spin->setValue(0x15);
    QCOMPARE(map->getBrim(900, 5), 0x15u);
    spin->setValue(99);
    QCOMPARE(spin->value(), 31);
    QCOMPARE(map->getBrim(900, 5), 31u);
    auto* combo = testWin->findChild<QComboBox*>("ZV_Pick_ZV4280v2_1104_2");
    combo->setCurrentIndex(2);
    QCOMPARE(map->getBrim(1104, 2), 2u);
    auto* check = testWin->findChild<QCheckBox*>("ZV_Far_ZV4280v2_2400_3");
    check->setChecked(true);
    QCOMPARE(map->getBrim(2400, 3), 1u);
    // The earlier widget of a doubled key stays connected, but its change
    // goes to the field of its own name: the same key and bit run.
    auto* first = testWin->findChild<QCheckBox*>("ZV_Dup_ZV4280v2_1000_1");
    first->setChecked(true);
    QCOMPARE(map->getBit(map->guiImage, 1000), 0);
}

QTEST_MAIN(tst_scan)
#include "tst_scan.moc"
