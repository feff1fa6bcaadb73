#include "MainClass.h"
#include "mapshow.h"
#include "part.h"
#include "register_names.h"
#include "testsupport.h"

#include <QtTest>

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QSpinBox>

#include <memory>

// Every window built as the program builds it, compared with the register
// catalogue kept under tests/data.
class tst_catalogue : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void fields();
    void displays();
    void groups();
    void bits();
    void outputs();
    void defaultState();
    void windowButtons_data();
    void windowButtons();
    void bulbsOpenDocks_data();
    void bulbsOpenDocks();
    void names();

private:
    QJsonArray catalogueFields;
    QJsonArray catalogueDisplays;
    MainClass* main = nullptr;
    mapshow* map = nullptr;
};

static QString objectNameOf(const QJsonObject& f)
{
    return QStringLiteral("ZV_%1_ZV4280v2_%2_%3%4")
        .arg(f.value("name").toString())
        .arg(f.value("position").toInt())
        .arg(f.value("width").toInt())
        .arg(f.value("inverted").toBool() ? "_I" : "");
}

void tst_catalogue::initTestCase()
{
    zvTestInit();
    QFile file(QStringLiteral(ZV_TEST_DATA "/register_catalogue.json"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonObject root = QJsonDocument::fromJson(file.readAll()).object();
    catalogueFields = root.value("fields").toArray();
    catalogueDisplays = root.value("expressions").toArray();
    QCOMPARE(catalogueFields.size(), 618);
    QCOMPARE(catalogueDisplays.size(), 103);
    ModalCatcher catcher;
    main = new MainClass;
    QVERIFY2(catcher.texts.isEmpty(), qPrintable(catcher.texts.join(", ")));
    QCOMPARE(main->maps.size(), 1);
    map = main->firstMap();
}

void tst_catalogue::cleanupTestCase()
{
    delete main;
}

void tst_catalogue::fields()
{
    static const QMap<QString, QString> classOfKind = {
        {"check", "QCheckBox"}, {"combo", "QComboBox"}, {"spin", "QSpinBox"}, {"lamp", "QLabel"}, {"read", "QLineEdit"}};
    QCOMPARE(map->parts.size(), 618);
    for (const QJsonValue& v : catalogueFields) {
        const QJsonObject f = v.toObject();
        const QString key = f.value("name").toString() + "_ZV4280v2";
        const part* p = map->parts.value(key);
        QVERIFY2(p, qPrintable(key));
        QCOMPARE(p->widget->objectName(), objectNameOf(f));
        QCOMPARE(QString(p->widget->metaObject()->className()), classOfKind.value(f.value("kind").toString()));
        QCOMPARE(p->position, f.value("position").toInt());
        QCOMPARE(p->width, f.value("width").toInt());
        QCOMPARE(p->inverted, f.value("inverted").toBool());
        QCOMPARE(p->position, f.value("reg").toInt() * 8 + 7 - f.value("msb").toInt());
        // The window the catalogue names holds the widget.
        const QString form = f.value("form").toString();
        QWidget* window = form == "MainClass" ? main : main->windows.value(form);
        QVERIFY2(window && window->isAncestorOf(static_cast<QWidget*>(p->widget)), qPrintable(key));
        if (auto* combo = qobject_cast<QComboBox*>(p->widget)) {
            QStringList items;
            for (int i = 0; i < combo->count(); ++i)
                items << combo->itemText(i);
            QStringList expected;
            for (const QJsonValue& item : f.value("items").toArray())
                expected << item.toString();
            QCOMPARE(items, expected);
        }
        // The scan replaced any tooltip by the register location.
        QCOMPARE(p->widget->property("toolTip").toString(), buildToolTip(*p));
        QVERIFY(p->widget->property("toolTip").toString().startsWith(
            QStringLiteral("Reg%1 <D%2").arg(f.value("reg").toInt()).arg(f.value("msb").toInt())));
    }
}

void tst_catalogue::displays()
{
    for (const QJsonValue& v : catalogueDisplays) {
        const QString name = v.toObject().value("key").toString();
        auto* edit = main->findWidget(name);
        QVERIFY2(edit, qPrintable(name));
        QCOMPARE(QString(edit->metaObject()->className()), QStringLiteral("QLineEdit"));
        QVERIFY(static_cast<QLineEdit*>(edit)->isReadOnly());
        const QString key = name.left(name.indexOf("_Expression"));
        const part* p = map->parts.value(key);
        QVERIFY2(p, qPrintable(key));
        QCOMPARE(QString(p->widget->metaObject()->className()), QStringLiteral("QSpinBox"));
        QCOMPARE(edit->parent(), p->widget->parent());
        QCOMPARE(edit->toolTip(), buildToolTip(*p));
        QVERIFY(main->outputs.contains(key));
        QCOMPARE(main->outputs.value(key)->widget, static_cast<QObject*>(edit));
    }
}

void tst_catalogue::groups()
{
    int checked = 0;
    for (const QJsonValue& v : catalogueFields) {
        const QJsonObject f = v.toObject();
        const QString group = f.value("group").toString();
        if (group.isEmpty())
            continue;
        const QObject* w = map->parts.value(f.value("name").toString() + "_ZV4280v2")->widget;
        const QGroupBox* box = nullptr;
        for (QObject* o = w->parent(); o && !box; o = o->parent())
            box = qobject_cast<QGroupBox*>(o);
        QVERIFY2(box, qPrintable(w->objectName()));
        QCOMPARE(box->title(), group);
        ++checked;
    }
    QVERIFY(checked > 500);
    // Named group boxes of the expert windows.
    const QList<QPair<QString, QString>> named = {
        {"GrMoreEnable_A", "Block enable"}, {"GrMoreSyn", "Synthesizer"}, {"GrMoreLPF_A", "LPF"},
        {"GrMoreChanel_A", "Channel"}, {"GrMoreIFA_B", "IFA"}, {"GrSChB1", "+"}, {"GrSChD1", "+"},
        {"GrMoreEnable_D", "Block Enable"}, {"Gr_moreVCO1", "VCO#2"}, {"Gr_moreDSAS3", "SAS VCO #3"},
        {"groupBox_18", ""}, {"groupBox_20", "IFA"}, {"GrChDMode", "Chanel D Packet Mode Enables"},
        {"groupBox_22", "Voltage detector bounds"}, {"GR_ChDESS", "ChD"}};
    for (const auto& n : named) {
        auto* box = qobject_cast<QGroupBox*>(main->findWidget(n.first));
        QVERIFY2(box, qPrintable(n.first));
        QCOMPARE(box->title(), n.second);
    }
}

void tst_catalogue::bits()
{
    QCOMPARE(map->registerCount, 291u);
    QVector<QString> owner(int(map->registerCount) * 8);
    int covered = 0;
    for (auto it = map->parts.cbegin(); it != map->parts.cend(); ++it) {
        for (int b = 0; b < it.value()->width; ++b) {
            QString& o = owner[it.value()->position + b];
            QVERIFY2(o.isEmpty(), qPrintable(it.key() + " shares a bit with " + o));
            o = it.key();
            ++covered;
        }
    }
    QCOMPARE(covered, 1714);
    QCOMPARE(map->bitOwners.size(), 1714);
    QVERIFY(!owner.last().isEmpty()); // the last bit of register 290 belongs to a field
}

void tst_catalogue::outputs()
{
    int labels = 0, edits = 0, displays = 0;
    for (auto it = main->outputs.cbegin(); it != main->outputs.cend(); ++it) {
        const QObject* w = it.value()->widget;
        const QString cls = w->metaObject()->className();
        if (w->objectName().endsWith("_Expression"))
            ++displays;
        else if (cls == "QLabel")
            ++labels;
        else if (cls == "QLineEdit")
            ++edits;
        else
            QFAIL(qPrintable("not a display: " + it.key()));
    }
    QCOMPARE(displays, 103);
    QCOMPARE(labels, 32);
    QCOMPARE(edits, 46);
}

void tst_catalogue::defaultState()
{
    for (const char* key : {"ChA_LNA1_EN_st", "ChA_AAD_WORK", "ChB_LNA1_EN_st", "ChB_AAD_WORK", "ChC_LNA1_EN_st",
                            "ChC_AAD_WORK", "ChD_IFA_I_GCst", "ChD_IFA_Q_GCst"}) {
        auto* w = static_cast<QWidget*>(map->parts.value(QString(key) + "_ZV4280v2")->widget);
        QVERIFY2(w->isHidden(), key);
    }
    for (const char* name : {"ChD_IFA_I_GCLabelG", "ChD_IFA_Q_GCLabelG", "ChD_IFA_I_GCstLabelG", "ChD_IFA_Q_GCstLabelG",
                             "ButtonGrSChA", "ButtonGrSChB", "ButtonGrSChC", "ButtonGrSChD", "ButtonGrGenServ"}) {
        QWidget* w = main->findWidget(name);
        QVERIFY2(w && w->isHidden(), name);
    }
    QVERIFY(!main->findWidget("ZV_TS_code_ZV4280v2_38_10")->isEnabled());
    QCOMPARE(static_cast<QSpinBox*>(main->findWidget("ZV_PLL_CDiv_ZV4280v2_88_8"))->minimum(), 4);
    QVERIFY(!main->findWidget("ButtonGrAllSS")->isHidden());
    // Spin boxes leave the field's bound to the binding.
    for (const part* p : map->parts)
        if (auto* box = qobject_cast<QSpinBox*>(p->widget))
            QCOMPARE(box->maximum(), 2147483647);
}

void tst_catalogue::windowButtons_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("window");
    for (const char* w : {"GrSChA", "GrSChB", "GrSChC", "GrSChD", "GrGenServ", "GrAllSS"})
        QTest::newRow(w) << QString("Button") + w << QString(w);
}

void tst_catalogue::windowButtons()
{
    QFETCH(QString, button);
    QFETCH(QString, window);
    auto* b = qobject_cast<QPushButton*>(main->findWidget(button));
    QVERIFY(b);
    QWidget* w = main->windows.value(window);
    QVERIFY(!w->isVisible());
    b->click();
    QVERIFY(w->isVisible());
    b->click();
    QVERIFY(!w->isVisible());
}

void tst_catalogue::bulbsOpenDocks_data()
{
    QTest::addColumn<QString>("bulb");
    QTest::addColumn<QString>("dock");
    QTest::newRow("chip") << "ZV_AOK_ZV4280v2_19_1" << "dockMain";
    QTest::newRow("A") << "ZV_ChA_AOK_ZV4280v2_20_1" << "dockA";
    QTest::newRow("B") << "ZV_ChB_AOK_ZV4280v2_21_1" << "dockB";
    QTest::newRow("C") << "ZV_ChC_AOK_ZV4280v2_22_1" << "dockC";
    QTest::newRow("D") << "ZV_ChD_AOK_ZV4280v2_23_1" << "dockD";
}

void tst_catalogue::bulbsOpenDocks()
{
    QFETCH(QString, bulb);
    QFETCH(QString, dock);
    QWidget* b = main->findWidget(bulb);
    QVERIFY(b);
    QWidget* d = main->windows.value(dock);
    QVERIFY(!d->isVisible());
    QTest::mouseClick(b, Qt::LeftButton);
    QVERIFY(d->isVisible());
    QTest::mouseClick(b, Qt::LeftButton);
    QVERIFY(!d->isVisible());
}

void tst_catalogue::names()
{
    QCOMPARE(registerNames.size(), 291);
    QCOMPARE(registerNames.at(0), QStringLiteral("Version1"));
    QCOMPARE(registerNames.at(227), QString());
    QCOMPARE(registerNames.at(290), QStringLiteral("INT_Status_12"));
    QCOMPARE(registerNames.at(54), QStringLiteral("ChB_IFA_Q_Fain1"));
    QCOMPARE(registerNames.at(76), QStringLiteral("ChC_IFA_Q_Fain1"));
    QCOMPARE(registerNames.at(32), QStringLiteral("ChA_IFA_Q_Gain1"));
    for (int r = 252; r <= 255; ++r)
        QCOMPARE(registerNames.at(r), QStringLiteral("DSM_F"));
    QCOMPARE(registerNames.at(107), QStringLiteral("IC_MD_PM"));
    QCOMPARE(registerNames.at(108), QStringLiteral("STM mode"));
    QCOMPARE(registerNames.count(QString()), 1);
}

QTEST_MAIN(tst_catalogue)
#include "tst_catalogue.moc"
