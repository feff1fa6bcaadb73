#include "testsupport.h"

// The scan of all windows on a test form that holds the awkward cases.
class tst_scan : public QObject
{
    Q_OBJECT

    QWidget testWin, otherWin;
    ModalCatcher catcher;
    std::unique_ptr<MainClass> main;
    mapshow* v2 = nullptr;
    QSpinBox* spin = nullptr;

    template <class W = QWidget> W* find(const char* name) { return testWin.findChild<W*>(name); }

private slots:
    void initTestCase()
    {
        zvTestInit();
        auto add = [](auto* w, const char* name) { w->setObjectName(name); return w; };
        QWidget* group = new QWidget(&testWin);
        spin = add(new QSpinBox(group), "ZV_ChA_PLL_LF_C1_ZV4280v2_900_5");
        spin->setToolTip("ChA_PLL_LF_C1: Reg112+3 (5)\n");
        // A sibling that contains the search text but does not parse comes first.
        add(new QLabel(group), "capZV_ChA_PLL_LF_C1_ZV4280v2_900_5");
        add(new QLineEdit(group), "ChA_PLL_LF_C1_ZV4280v2_Expression");
        add(new QLineEdit(&testWin), "Lonely_ZV4280v2_Expression");
        for (const char* name : {"ZV_Dup_ZV4280v2_1000_1", "ZV_Dup_ZV4280v2_1001_1", "ZV_Other_ZV4280v1_5_3",
                                 "ZV_Far_ZV4280v2_2400_1"})
            add(new QCheckBox(&testWin), name);
        add(new QLabel(&testWin), "ZV_Lamp_ZV4280v2_1100_1");
        add(new QLineEdit(&testWin), "ZV_Read_ZV4280v2_1101_3");
        add(new QComboBox(&testWin), "ZV_Pick_ZV4280v2_1104_2")->addItems({"a", "b", "c"});
        add(new QDoubleSpinBox(&testWin), "ZV_Dbl_ZV4280v2_1200_8");
        add(new QPushButton(&testWin), "ButtonOtherWin");
        add(new QPushButton(&testWin), "Button_ICFILE");
        main.reset(new MainClass({{"TestWin", &testWin}, {"OtherWin", &otherWin}}, nullptr));
        QVERIFY(v2 = main->maps.value("ZV4280v2"));
    }

    void scanResult()
    {
        QCOMPARE(catcher.texts.count("Совпадение имён!"), 1);
        QCOMPARE(catcher.texts.count("Больше одной карты регистров?!"), 1);
        QCOMPARE(main->maps.keys(), QStringList({"ZV4280v1", "ZV4280v2"}));
        QCOMPARE(main->firstMap()->chipName, QStringLiteral("ZV4280v1"));
        // A field that ends on a register's last bit needs no more; one bit further takes one register more.
        QCOMPARE(main->maps.value("ZV4280v1")->registerCount, 1u);
        QCOMPARE(v2->registerCount, 301u);
        const QList<QAction*> bar = main->findChild<QToolBar*>("toolBar_RegWindow")->actions();
        QCOMPARE(bar.at(0)->objectName() + ' ' + bar.at(1)->objectName() + ' ' + bar.at(2)->objectName(),
                 QStringLiteral("action_table_ZV4280v2 action_table_ZV4280v1 action_ExpertMode"));
        QVERIFY(main->maps.value("ZV4280v1")->parts.contains("Other_ZV4280v1"));
        // The later of the two widgets with one key owns the field and its bits.
        QCOMPARE(v2->parts.value("Dup_ZV4280v2")->widget, find<QObject>("ZV_Dup_ZV4280v2_1001_1"));
        QCOMPARE(v2->bitOwners.value(1001).widget, find<QObject>("ZV_Dup_ZV4280v2_1001_1"));
        for (int b = 0; b < 5; ++b)
            QCOMPARE(v2->bitOwners.value(900 + b).widget == spin ? v2->bitOwners.value(900 + b).label : "?",
                     QString::number(4 - b));
        QVERIFY(!v2->bitOwners.contains(905) && !v2->bitOwners.contains(899) && v2->bitOwners.contains(1100));
        QCOMPARE(v2->bitOwners.value(1100).label, QString()); // one-bit fields carry no bit number
        QStringList fromTestWin;
        for (auto it = main->outputs.cbegin(); it != main->outputs.cend(); ++it) {
            const QObject* w = it.value()->widget;
            if (testWin.isAncestorOf(static_cast<const QWidget*>(w)))
                fromTestWin << it.key();
            if (auto* edit = qobject_cast<const QLineEdit*>(w))
                QVERIFY2(edit->isReadOnly(), qPrintable(it.key()));
            if (!w->objectName().endsWith("_Expression")) // a field, kept as the same record as in its map
                QVERIFY2((qobject_cast<const QLabel*>(w) || qobject_cast<const QLineEdit*>(w)) &&
                         main->maps.value(it.value()->chip)->parts.value(it.key()) == it.value(), qPrintable(it.key()));
        }
        QCOMPARE(fromTestWin,
                 QStringList({"ChA_PLL_LF_C1_ZV4280v2", "Lamp_ZV4280v2", "Lonely_ZV4280v2", "Read_ZV4280v2"}));
        // Tooltips name the registers; a display takes its spin box's, a lonely one none.
        const QString loop = "Reg112 <D3-D0>,Reg113 <D7>";
        for (const auto& t : QList<QPair<const char*, QString>>{{"ZV_ChA_PLL_LF_C1_ZV4280v2_900_5", loop},
                 {"ChA_PLL_LF_C1_ZV4280v2_Expression", loop}, {"Lonely_ZV4280v2_Expression", ""},
                 {"ZV_Lamp_ZV4280v2_1100_1", "Reg137 <D3>"}, {"ZV_Dbl_ZV4280v2_1200_8", "Reg150 <D7-D0>"}})
            QVERIFY2(find(t.first)->toolTip() == t.second, t.first);
        for (bool open : {true, false}) {
            find<QPushButton>("ButtonOtherWin")->click();
            QCOMPARE(otherWin.isVisible(), open);
        }
        find<QPushButton>("Button_ICFILE")->click(); // names no window: nothing opens
        QVERIFY(!otherWin.isVisible());
    }

    void editsReachTheImage()
    {
        spin->setValue(99);
        QCOMPARE(spin->value(), 31);
        QCOMPARE(v2->getBrim(900, 5), 31u);
        find<QComboBox>("ZV_Pick_ZV4280v2_1104_2")->setCurrentIndex(2);
        QCOMPARE(v2->getBrim(1104, 2), 2u);
        find<QCheckBox>("ZV_Far_ZV4280v2_2400_1")->setChecked(true);
        QCOMPARE(v2->getBit(v2->guiImage, 2400), 1);
        find<QCheckBox>("ZV_Dup_ZV4280v2_1000_1")->setChecked(true);
        QCOMPARE(v2->getBit(v2->guiImage, 1000), 0); // it applies the field the later widget owns
    }
};

QTEST_MAIN(tst_scan)
#include "tst_scan.moc"
