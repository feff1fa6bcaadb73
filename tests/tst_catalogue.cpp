#include "MainClass.h"
#include "mapshow.h"
#include "part.h"
#include "register_names.h"
#include "testsupport.h"

#include <QtTest>

#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

// Every window built as the program builds it, compared with the register
// catalogue kept under tests/data.
class tst_catalogue : public QObject
{
    Q_OBJECT

    QJsonObject catalogue;
    MainClass* main = nullptr;
    mapshow* map = nullptr;

private slots:
    void initTestCase()
    {
        zvTestInit();
        QFile file(QStringLiteral(ZV_TEST_DATA "/register_catalogue.json"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        catalogue = QJsonDocument::fromJson(file.readAll()).object();
        QCOMPARE(catalogue.value("fields").toArray().size(), 618);
        QCOMPARE(catalogue.value("expressions").toArray().size(), 103);
        ModalCatcher catcher;
        main = new MainClass;
        QVERIFY2(catcher.texts.isEmpty(), qPrintable(catcher.texts.join(", ")));
        QCOMPARE(main->maps.size(), 1);
        map = main->firstMap();
    }

    void cleanupTestCase() { delete main; }

    void fields()
    {
        const QMap<QString, QString> classOfKind = {{"check", "QCheckBox"}, {"combo", "QComboBox"},
            {"spin", "QSpinBox"}, {"lamp", "QLabel"}, {"read", "QLineEdit"}};
        QCOMPARE(map->parts.size(), 618);
        int bits = 0;
        for (const QJsonValue& v : catalogue.value("fields").toArray()) {
            const QJsonObject f = v.toObject();
            const QString key = f.value("name").toString() + "_ZV4280v2";
            const part* p = map->parts.value(key);
            QVERIFY2(p, qPrintable(key));
            auto* w = static_cast<QWidget*>(p->widget);
            const int reg = f.value("reg").toInt(), msb = f.value("msb").toInt();
            QCOMPARE(w->objectName(), QStringLiteral("ZV_%1_%2_%3%4").arg(key).arg(f.value("position").toInt())
                                          .arg(f.value("width").toInt()).arg(f.value("inverted").toBool() ? "_I" : ""));
            QCOMPARE(QString(w->metaObject()->className()), classOfKind.value(f.value("kind").toString()));
            QCOMPARE(p->position, reg * 8 + 7 - msb);
            QCOMPARE(p->width, f.value("width").toInt());
            bits += p->width;
            QCOMPARE(p->inverted, f.value("inverted").toBool());
            QVERIFY2(main->windows.value(f.value("form").toString(), main)->isAncestorOf(w), qPrintable(key));
            if (auto* combo = qobject_cast<QComboBox*>(w)) {
                QJsonArray items;
                for (int i = 0; i < combo->count(); ++i)
                    items << combo->itemText(i);
                QCOMPARE(QJsonValue(items), f.value("items"));
            }
            if (auto* spin = qobject_cast<QSpinBox*>(w)) // the binding keeps the field's bound
                QCOMPARE(spin->maximum(), 2147483647);
            QVERIFY2(w->toolTip().startsWith(QStringLiteral("Reg%1 <D%2").arg(reg).arg(msb)), qPrintable(key));
            const QGroupBox* box = nullptr;
            for (QObject* o = w->parent(); o && !box; o = o->parent())
                box = qobject_cast<QGroupBox*>(o);
            if (!f.value("group").toString().isEmpty())
                QCOMPARE(box ? box->title() : "(no group box)", f.value("group").toString());
        }
        for (const auto& n : QList<QPair<QString, QString>>{{"GrMoreEnable_A", "Block enable"}, {"GrMoreLPF_A", "LPF"},
                 {"GrMoreChanel_A", "Channel"}, {"GrSChD1", "+"}, {"GrMoreEnable_D", "Block Enable"},
                 {"GrChDMode", "Chanel D Packet Mode Enables"}, {"GR_ChDESS", "ChD"}}) {
            auto* box = qobject_cast<QGroupBox*>(main->findWidget(n.first));
            QCOMPARE(box ? box->title() : "(no group box " + n.first + ")", n.second);
        }
        // The group boxes of the expert windows, in the order of their forms.
        for (const auto& w : QList<QPair<QString, QString>>{{"GrGenServ", "GrGenServ1 GrCFBLVDS GrROB GrChDMode"},
                 {"GrSChA", "GrMoreEnable_A GrMoreAAD_A GrMoreSyn GrMoreVCO GrMoreSAS GrMoreStat GrMoreDCM_A "
                            "GrMorePFD_A GrMoreLF_A GrMoreChanel_A GrMoreMixer_A GrMorePPF_A GrMoreIFA_A GrMoreLPF_A"},
                 {"GrSChC", "GrSChC1 GrMoreEnable_C GrMoreAAD_C GrMoreSyn_C GrMoreVCO_C GrMoreSAS_C GrMoreStat_C "
                            "GrMoreDCM_C GrMorePFD_C GrMoreLF_C GrMoreChanel_C GrMoreMixer_C GrMorePPF_C GrMoreIFA_C "
                            "GrMoreLPF_C"},
                 {"GrSChD", "GrSChD1 GrMoreEnable_D groupBox_10 Gr_moreVCO Gr_moreVCO0 Gr_moreVCO1 Gr_moreVCO2 "
                            "Gr_moreDSAS Gr_moreDSAS1 Gr_moreDSAS2 Gr_moreDSAS3 groupBox_11 groupBox_14 Gr_moreDLF "
                            "Gr_moreDChaSet groupBox_21 groupBox_5 groupBox_16 groupBox_17 groupBox_18 groupBox_15 "
                            "groupBox_19 groupBox_20"}}) {
            QStringList boxes;
            for (const QGroupBox* box : main->windows.value(w.first)->findChildren<QGroupBox*>())
                boxes << box->objectName();
            QCOMPARE(boxes.join(' '), w.second);
        }
        // The full text of a field's location is for tst_fieldkey to pin. No
        // two fields share a bit.
        QCOMPARE(map->registerCount, 291u);
        QCOMPARE(bits, 1714);
        QCOMPARE(map->bitOwners.size(), 1714);
    }

    void displaysAndOutputs()
    {
        for (const QJsonValue& v : catalogue.value("expressions").toArray()) {
            const QString name = v.toObject().value("key").toString(), key = name.left(name.indexOf("_Expression"));
            auto* edit = qobject_cast<QLineEdit*>(main->findWidget(name));
            QVERIFY2(edit && edit->isReadOnly(), qPrintable(name));
            const part* p = map->parts.value(key);
            QVERIFY2(p && qobject_cast<QSpinBox*>(p->widget), qPrintable(key));
            QCOMPARE(edit->parent(), p->widget->parent());
            QCOMPARE(edit->toolTip(), static_cast<QWidget*>(p->widget)->toolTip());
            QVERIFY2(main->outputs.contains(key) && main->outputs[key]->widget == edit, qPrintable(key));
        }
        QMap<QString, int> kinds;
        for (const part* p : qAsConst(main->outputs))
            ++kinds[p->widget->objectName().endsWith("_Expression") ? "display" : p->widget->metaObject()->className()];
        QCOMPARE(kinds, (QMap<QString, int>{{"display", 103}, {"QLabel", 32}, {"QLineEdit", 46}}));
    }

    void defaultState()
    {
        for (const QString key : {"ChA_LNA1_EN_st", "ChA_AAD_WORK", "ChB_AAD_WORK", "ChC_LNA1_EN_st", "ChD_IFA_I_GCst"})
            QVERIFY2(static_cast<QWidget*>(map->parts.value(key + "_ZV4280v2")->widget)->isHidden(), qPrintable(key));
        for (const char* name : {"ButtonGrSChA", "ButtonGrSChD", "ButtonGrGenServ"})
            QVERIFY2(main->findWidget(name) && main->findWidget(name)->isHidden(), name);
        for (const char* name : {"ChD_IFA_I_GCLabelG", "ChD_IFA_Q_GCLabelG", "ChD_IFA_I_GCstLabelG",
                                 "ChD_IFA_Q_GCstLabelG", "ButtonGrAllSS"}) // channel D's gains keep their captions
            QVERIFY2(main->findWidget(name) && !main->findWidget(name)->isHidden(), name);
        QVERIFY(!main->findWidget("ZV_TS_code_ZV4280v2_38_10")->isEnabled());
        QCOMPARE(static_cast<QSpinBox*>(main->findWidget("ZV_PLL_CDiv_ZV4280v2_88_8"))->minimum(), 4);
    }

    void windowsOpenAndClose()
    {
        for (const auto& c : QList<QPair<QString, QString>>{{"ButtonGrSChA", "GrSChA"}, {"ButtonGrSChB", "GrSChB"},
             {"ButtonGrSChC", "GrSChC"}, {"ButtonGrSChD", "GrSChD"}, {"ButtonGrGenServ", "GrGenServ"},
             {"ButtonGrAllSS", "GrAllSS"}, {"ZV_AOK_ZV4280v2_19_1", "dockMain"}, {"ZV_ChA_AOK_ZV4280v2_20_1", "dockA"},
             {"ZV_ChB_AOK_ZV4280v2_21_1", "dockB"}, {"ZV_ChC_AOK_ZV4280v2_22_1", "dockC"},
             {"ZV_ChD_AOK_ZV4280v2_23_1", "dockD"}}) {
            QWidget *t = main->findWidget(c.first), *w = main->windows.value(c.second);
            QVERIFY2(t && w && !w->isVisible(), qPrintable(c.first));
            for (bool open : {true, false}) {
                if (auto* b = qobject_cast<QPushButton*>(t))
                    b->click();
                else // a bulb: the main window's event filter opens its dock
                    QTest::mouseClick(t, Qt::LeftButton);
                QVERIFY2(w->isVisible() == open, qPrintable(c.first));
            }
        }
    }

    void names()
    {
        QCOMPARE(registerNames.size(), 291);
        QCOMPARE(registerNames.count(QString()), 1);
        for (const auto& r : QList<QPair<int, QString>>{{0, "Version1"}, {290, "INT_Status_12"}, {227, ""},
                 {54, "ChB_IFA_Q_Fain1"}, {32, "ChA_IFA_Q_Gain1"}, {255, "DSM_F"}, {108, "STM mode"}})
            QCOMPARE(registerNames.at(r.first), r.second);
    }
};

QTEST_MAIN(tst_catalogue)
#include "tst_catalogue.moc"
