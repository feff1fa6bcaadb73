#include "mapshow.h"
#include "part.h"

#include <QtTest>

#include <memory>

class tst_fieldkey : public QObject
{
    Q_OBJECT

private slots:
    void parse_data();
    void parse();
    void rejects_data();
    void rejects();
    void toolTip_data();
    void toolTip();
};

using Nums = QVector<quint32>;
Q_DECLARE_METATYPE(Nums)

void tst_fieldkey::parse_data()
{
    QTest::addColumn<QString>("objectName");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("chip");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("inverted");
    QTest::addColumn<bool>("joined");
    QTest::addColumn<Nums>("positions");
    QTest::addColumn<Nums>("widths");

    QTest::newRow("identity") << "ZV_ID_ZV4280v2_0_13" << "ID_ZV4280v2" << "ZV4280v2" << 0 << 13 << false
                              << false << Nums{0} << Nums{13};
    QTest::newRow("several words") << "ZV_ChA_PLL_RDiv_ZV4280v2_171_5" << "ChA_PLL_RDiv_ZV4280v2" << "ZV4280v2"
                                   << 171 << 5 << false << false << Nums{171} << Nums{5};
    QTest::newRow("inverted") << "ZV_ChD_VCO_CVHI_ZV4280v2_645_1_I" << "ChD_VCO_CVHI_ZV4280v2" << "ZV4280v2" << 645
                              << 1 << true << false << Nums{645} << Nums{1};
    QTest::newRow("joined segments") << "ZV_A_ZV4280v2_10p20_3p4" << "A_ZV4280v2" << "ZV4280v2" << 10 << 7 << false
                                     << true << Nums{10, 20} << Nums{3, 4};
    QTest::newRow("other chip word") << "ZV_X_Y_ZV4280v1_2327_1" << "X_Y_ZV4280v1" << "ZV4280v1" << 2327 << 1
                                     << false << false << Nums{2327} << Nums{1};
    // The mark test looks for the letter anywhere in the last token.
    QTest::newRow("I in width token") << "ZV_A_B_ZV4280v2_5_1I" << "A_B" << "B" << 0 << 5 << true
                                      << false << Nums{0} << Nums{5};
    // Unreadable numbers count as 0.
    QTest::newRow("unreadable numbers") << "ZV_A_ZV4280v2_x1_w" << "A_ZV4280v2" << "ZV4280v2" << 0 << 0 << false
                                        << false << Nums{0} << Nums{0};
}

void tst_fieldkey::parse()
{
    QFETCH(QString, objectName);
    std::unique_ptr<part> p(mapshow::ParseObjName(objectName));
    QVERIFY(p);
    QTEST(p->name, "name");
    QTEST(p->chip, "chip");
    QTEST(p->position, "position");
    QTEST(p->width, "width");
    QTEST(p->inverted, "inverted");
    QTEST(p->joined, "joined");
    QTEST(p->positions, "positions");
    QTEST(p->widths, "widths");
    QVERIFY(p->widget == nullptr);
}

void tst_fieldkey::rejects_data()
{
    QTest::addColumn<QString>("objectName");
    QTest::newRow("caption") << "ChA_PLL_RDivLabelG";
    QTest::newRow("layout") << "horizontalLayout_11";
    QTest::newRow("empty") << "";
    QTest::newRow("lower-case prefix") << "zv_X_ZV4280v2_1_1";
    QTest::newRow("no words") << "ZV_ZV4280v2_1_1";
    QTest::newRow("no width") << "ZV_A_ZV4280v2_1";
    QTest::newRow("prefix only") << "ZV";
    QTest::newRow("inverted, too short") << "ZV_ZV4280v2_1_1_I";
    QTest::newRow("display") << "ChA_PLL_LF_C1_ZV4280v2_Expression";
}

void tst_fieldkey::rejects()
{
    QFETCH(QString, objectName);
    std::unique_ptr<part> p(mapshow::ParseObjName(objectName));
    QVERIFY(!p);
}

void tst_fieldkey::toolTip_data()
{
    QTest::addColumn<QString>("objectName");
    QTest::addColumn<QString>("tip");
    QTest::newRow("one register") << "ZV_ChA_PLL_RDiv_ZV4280v2_171_5" << "Reg21 <D4-D0>";
    QTest::newRow("one bit") << "ZV_AOK_ZV4280v2_19_1" << "Reg2 <D4>";
    QTest::newRow("three registers") << "ZV_ChA_Flo_ZV4280v2_137_23"
                                     << "Reg17 <D6-D0>,Reg18 <D7-D0>,Reg19 <D7-D0>";
    QTest::newRow("two registers") << "ZV_TS_code_ZV4280v2_38_10" << "Reg4 <D1-D0>,Reg5 <D7-D0>";
    QTest::newRow("ends on D0, next starts at D7") << "ZV_X_ZV4280v2_15_2" << "Reg1 <D0>,Reg2 <D7>";
    QTest::newRow("identity") << "ZV_ID_ZV4280v2_0_13" << "Reg0 <D7-D0>,Reg1 <D7-D3>";
    QTest::newRow("whole register") << "ZV_PLL_CDiv_ZV4280v2_88_8" << "Reg11 <D7-D0>";
    QTest::newRow("last bit of the image") << "ZV_X_ZV4280v2_2327_1" << "Reg290 <D0>";
    QTest::newRow("segments") << "ZV_A_ZV4280v2_10p20_3p4" << "Reg1 <D5-D3>Reg2 <D3-D0>";
}

void tst_fieldkey::toolTip()
{
    QFETCH(QString, objectName);
    std::unique_ptr<part> p(mapshow::ParseObjName(objectName));
    QVERIFY(p);
    QTEST(buildToolTip(*p), "tip");
}

QTEST_APPLESS_MAIN(tst_fieldkey)
#include "tst_fieldkey.moc"
