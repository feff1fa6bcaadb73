#include "part.h"
#include "enginesupport.h"

#include <numeric>

using Nums = QVector<quint32>;
Q_DECLARE_METATYPE(Nums)

static std::optional<part> read(const QString& n) { return parseFieldName(n); }

class tst_fieldkey : public QObject
{
    Q_OBJECT

private slots:
    void parse_data()
    {
        QTest::addColumn<QString>("objectName");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("chip");
        QTest::addColumn<bool>("inverted");
        QTest::addColumn<Nums>("positions");
        QTest::addColumn<Nums>("widths");
        QTest::newRow("identity") << "ZV_ID_ZV4280v2_0_13" << "ID_ZV4280v2" << "ZV4280v2" << false << Nums{0} << Nums{13};
        QTest::newRow("several words") << "ZV_ChA_PLL_RDiv_ZV4280v1_171_5" << "ChA_PLL_RDiv_ZV4280v1" << "ZV4280v1"
                                       << false << Nums{171} << Nums{5};
        QTest::newRow("inverted") << "ZV_ChD_VCO_CVHI_ZV4280v2_645_1_I" << "ChD_VCO_CVHI_ZV4280v2" << "ZV4280v2"
                                  << true << Nums{645} << Nums{1};
        QTest::newRow("joined") << "ZV_A_ZV4280v2_10p20_3p4" << "A_ZV4280v2" << "ZV4280v2" << false << Nums{10, 20} << Nums{3, 4};
    }
    void parse()
    {
        QFETCH(QString, objectName);
        QFETCH(Nums, positions);
        QFETCH(Nums, widths);
        const auto p = read(objectName);
        QVERIFY(p);
        QTEST(p->name, "name");
        QTEST(p->chip, "chip");
        QTEST(p->inverted, "inverted");
        QCOMPARE(p->positions, positions);
        QCOMPARE(p->widths, widths);
        QCOMPARE(p->position, qint32(positions.first()));
        QCOMPARE(p->width, qint32(std::accumulate(widths.begin(), widths.end(), 0u)));
        QCOMPARE(p->joined, widths.size() > 1);
    }
    void rejects()
    {
        for (const char* n : {"", "ChA_PLL_RDivLabelG", "horizontalLayout_11", "ChA_PLL_LF_C1_ZV4280v2_Expression",
                              "zv_X_ZV4280v2_1_1", "ZV", "ZV_ZV4280v2_1", "ZV_1_1_I"})
            QVERIFY2(!read(n), n);
        // Three tokens are enough: the chip word is the one two before the
        // width, and the name ends with it.
        for (auto [n, chip] : {std::pair{"ZV_ZV4280v2_1_1", "ZV4280v2"}, {"ZV_A_ZV4280v2_1", "A"}, {"ZV_A_ZV4280v2_10_1I", "A"}}) {
            const auto p = read(n);
            QVERIFY2(p && p->chip == chip && p->name == chip, n);
        }
    }
    void toolTip()
    {
        const QPair<const char*, const char*> rows[] = {
            {"ZV_ChA_PLL_RDiv_ZV4280v2_171_5", "Reg21 <D4-D0>"},
            {"ZV_AOK_ZV4280v2_19_1", "Reg2 <D4>"},
            {"ZV_ID_ZV4280v2_0_13", "Reg0 <D7-D0>,Reg1 <D7-D3>"},
            {"ZV_TS_code_ZV4280v2_38_10", "Reg4 <D1-D0>,Reg5 <D7-D0>"},
            {"ZV_ChA_Flo_ZV4280v2_137_23", "Reg17 <D6-D0>,Reg18 <D7-D0>,Reg19 <D7-D0>"},
            {"ZV_X_ZV4280v2_15_2", "Reg1 <D0>,Reg2 <D7>"},
            {"ZV_X_ZV4280v2_2327_1", "Reg290 <D0>"},
            {"ZV_A_ZV4280v2_10p20_3p4", "Reg1 <D5-D3>Reg2 <D3-D0>"},
        };
        for (const auto& row : rows) {
            const auto p = read(row.first);
            QVERIFY2(p, row.first);
            QCOMPARE(buildToolTip(*p), QString(row.second));
        }
    }
};

QTEST_APPLESS_MAIN(tst_fieldkey)
#include "tst_fieldkey.moc"
