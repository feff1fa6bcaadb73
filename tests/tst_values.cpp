#include "MainClass.h"
#include "engine/form_model.h"
#include "mapshow.h"
#include "part.h"
#include "tables.h"
#include "values/calibration.h"
#include "testsupport.h"
#include <QtTest>
#include <QtWidgets>
#include <random>

// The physical-value rules through the real forms; rows share one window, so each sets what its rule reads.
class tst_values : public QObject
{
    Q_OBJECT
    MainClass* main = nullptr;
    mapshow* map = nullptr;

    const part* field(const QString& stem) const { return map->parts.value(stem + "_ZV4280v2"); }
    QObject* widget(const QString& stem) const { return field(stem) ? field(stem)->widget : nullptr; }
    quint32 image(const QString& stem) const { return map->getBrim(field(stem)->position, field(stem)->width); }
    QWidget* display(const QString& stem) const
    {
        const part* p = main->outputs.value(stem + "_ZV4280v2");
        return p ? qobject_cast<QWidget*>(p->widget) : nullptr;
    }
    QString shown(const QString& stem) const
    {
        QStringList items; // what a combo box without a display shows
        for (auto* c = qobject_cast<QComboBox*>(widget(stem)); c && items.size() < c->count();)
            items << c->itemText(items.size());
        return display(stem) ? display(stem)->property("text").toString() : items.join(',');
    }
    // Sets fields as a user would ("stem=code;..."); a widget already at the
    // value is fired by hand, as the end of a read does it.
    void set(const QString& assignments)
    {
        for (const QString& a : assignments.split(';', Qt::SkipEmptyParts)) {
            const int v = a.section('=', 1).toInt();
            QObject* w = widget(a.section('=', 0, 0));
            if (auto* s = qobject_cast<QSpinBox*>(w))
                s->value() == v ? emit s->valueChanged(v) : s->setValue(v);
            else if (auto* c = qobject_cast<QComboBox*>(w))
                c->currentIndex() == v ? emit c->currentIndexChanged(v) : c->setCurrentIndex(v);
            else if (auto* b = qobject_cast<QCheckBox*>(w))
                b->isChecked() == (v != 0) ? emit b->stateChanged(b->checkState()) : b->setChecked(v != 0);
            else
                QFAIL(qPrintable("not an editing widget: " + a));
        }
    }

private slots:
    void initTestCase()
    {
        zvTestInit();
        main = new MainClass;
        QVERIFY(waitIdle(main));
        QVERIFY((map = main->firstMap()));
    }
    void cleanupTestCase() { delete main; }

    // "stem good bad kept": a frequency too high is refused, the box restored; other boxes are cut to the field.
    void guard_data()
    {
        QTest::addColumn<QString>("row");
        for (const char* r : {"ChA_Flo 8388607 8388608 8388607", "ChD_Flo 200000 8388608 200000",
                              "Fx 65535 65536 65535", "Fx 16000 65536 16000", "ChA_PLL_RDiv 7 40 31"})
            QTest::newRow(r) << QString(r);
    }
    void guard()
    {
        QFETCH(QString, row);
        const QStringList r = row.split(' ');
        auto* box = static_cast<QSpinBox*>(widget(r[0]));
        QVERIFY(box->maximum() >= r[2].toInt()); // the bad value reaches the rule
        set(r[0] + "=" + r[1]);
        QCOMPARE(image(r[0]), r[1].toUInt());
        box->setValue(r[2].toInt());
        QCOMPARE(box->value(), r[3].toInt());
        QCOMPARE(image(r[0]), r[3].toUInt());
    }

    // "assignments|text": the last field assigned shows the text; "assignments|stem=text" names the field.
    void displays_data()
    {
        QTest::addColumn<QString>("row");
        static const char* const rows[] = {
            "ChA_IFA_GC_MD=0;ChA_IFA_OT=0;ChA_IFA_I_Gain=0|1.7dB", "ChA_IFA_GC_MD=1;ChA_IFA_OT=1;ChA_IFA_I_Gain=0|0.0%",
            "ChA_IFA_GC_MD=1;ChA_IFA_OT=0;ChA_IFA_Q_Gain=64|1.4dB", // auto with the analog output stays in dB
            "ChC_IFA_GC_MD=0;ChC_IFA_OT=1;ChC_IFA_I_Gain=1023|59.2dB",
            "ChC_IFA_GC_MD=1;ChC_IFA_OT=1;ChC_IFA_I_Gain=1023|96.0%", "ChB_LPF_Q_BW_ref=0|8.9 MHz",
            "ChC_QF_shift=63|104.9°", "ChB_LNA1_EN_st=0|no active", "ChC_AAD_WORK=1|connected ",
            "ChA_AAD_WORK=0|not connected",
            "ChB_LNA1_CC=7|600µA", "ChA_LNA2_CC=7|450µA", "ChB_PLL_LF_C2=31|624.0pF", "ChD_PLL_LF_R1=31|64kOhm",
            "ChD_PLL_LF_C1=1|39.0pF", "ChB_PLL_SAS_DAC_FS=0;ChB_PLL_SAS_HB=31|2.42V",
            "ChB_PLL_SAS_DAC_FS=1;ChB_PLL_SAS_HB=31|1.00*VCC V", "Fx=16000;ChA_PLL_SAS_ADC_TC=10|8.19 s",
            "Fx=16000;ChA_PLL_SAS_BAND_TC=10|4.10 s", "ChD_IFA_OT=0;ChD_IFA_Q_AGC_LL=227|n/a",
            "ChD_IFA_OT=1;ChD_IFA_Q_AGC_HL=255|99.6%",
            "ChD_IFA_I_GC=511|73.74dB", "ChD_IFA_I_GCst=300|300", "ChD_IFA_AGC_ADC_TC=15|32768",
            "ChD_LNA_AGC_Low=55|306.00mV", "ChD_LNA_AGC_High=56|n/a", "ChD_MIX_AGC_Low=55|301.0mV",
            "ChD_MIX_AGC_High=63|n/a", "ChD_LPF_CF=255|10.8 MHz", "ChD_R_Div=0|unused", "ChD_R_Div=1|1",
            "ChD_RF_AGC_DivR=0|0", "ChD_RF_AGC_DivR=1|2", "ChD_SAS_UB_3=15|1.9 V", "ChD_SAS_SB=12|12.00pt",
            "ChD_Flo=1820001;ChD_QF_S_scale=0;ChD_QF_LS_shift=0|81.20°",
            "ChD_Flo=1820000;ChD_QF_S_scale=0;ChD_QF_LS_shift=0|84.10°",
            // Texts that turn on the fifth significant digit of a factor or an offset.
            // -56 * 9.8f rounds in single precision to -548.79999; in double it would end on 81.42.
            "ChD_Flo=1500000;ChD_QF_S_scale=2;ChD_QF_LS_shift=8|81.43°",
            "ChD_Flo=2000000;ChD_QF_S_scale=0;ChD_QF_LS_shift=2|81.47°",
            "ChD_Flo=2000000;ChD_QF_S_scale=0;ChD_QF_LS_shift=14|83.13°", // 83.125 exactly
            "ChD_IFA_OT=1;ChD_IFA_Q_AGC_LL=16|6.3%", // 6.25 exactly
            "TS_code=539|99.1 °C", "TS_code=541|97.5 °C", // 99.055 and 97.545
            "CLK_OUT_TP=1;PLL_CDiv=4;ChA_Flo=400000;CLK_SOURCE=0;CLK_AMP=1;CLK_AMP=0|CLK_DC=1.70V,1.84V,2.60V,2.75V",
            // A change of mode or output shows the gains and thresholds anew.
            "ChB_IFA_GC_MD=1;ChB_IFA_OT=0;ChB_IFA_Q_Gain=1023;ChB_IFA_OT=1|ChB_IFA_Q_Gain=96.0%",
            "ChD_IFA_OT=0;ChD_IFA_I_AGC_HL=226;ChD_IFA_OT=1|ChD_IFA_I_AGC_HL=88.3%",
            "ChD_IFA_OT=0;ChD_IFA_Q_AGC_LL=128;ChD_IFA_OT=1|ChD_IFA_Q_AGC_LL=50.0%",
            "ChD_IFA_OT=1;ChD_IFA_I_AGC_LL=227;ChD_IFA_OT=0|ChD_IFA_I_AGC_LL=n/a",
            "ChD_IFA_OT=1;ChD_IFA_Q_AGC_HL=0;ChD_IFA_OT=0|ChD_IFA_Q_AGC_HL=0 mV",
            // The temperature at each border.
            "TS_code=504| overheat", "TS_code=505|+110С ATTN", "TS_code=537|+110С ATTN", "TS_code=538|99.8 °C",
            "TS_code=723|-39.9 °C", "TS_code=724|-50С ATTN", "TS_code=749|-50С ATTN", "TS_code=750|not valid",
            // The bands of channel D at their borders, through the tuned band of the RF filter.
            "ChD_Flo=88000;ChD_TRF_RC_regs=0|104.50 110.00", "ChD_Flo=130000;ChD_TRF_RC_regs=4|-",
            "ChD_Flo=130001;ChD_TRF_RC_regs=4|194.27 198.47", "ChD_Flo=350000;ChD_TRF_RC_regs=4|194.27 198.47",
            "ChD_Flo=350001;ChD_TRF_RC_regs=4|691.45 718.43", "ChD_Flo=1160000;ChD_TRF_RC_regs=4|691.45 718.43",
            "ChD_Flo=1160001;ChD_TRF_RC_regs=4|1170 - 1290", "ChD_Flo=1820000;ChD_TRF_RC_regs=4|1170 - 1290",
            "ChD_Flo=1820001;ChD_TRF_RC_regs=4|2340 - 2580",
            // The amplitude words by output type, source and divided rate; the DC
            // levels follow the text of the chosen amplitude, not its index.
            "CLK_OUT_TP=1;PLL_CDiv=4;ChA_Flo=200000;CLK_SOURCE=0|CLK_AMP=420 mV,550 mV,690 mV,770 mV",
            "CLK_OUT_TP=1;PLL_CDiv=4;ChA_Flo=199999;CLK_SOURCE=0|CLK_AMP=470 mV,600 mV,890 mV,1020 mV",
            "CLK_OUT_TP=1;PLL_CDiv=11;ChC_Flo=549999;CLK_SOURCE=2|CLK_AMP=470 mV,600 mV,890 mV,1020 mV",
            "CLK_OUT_TP=1;PLL_CDiv=200;CLK_SOURCE=3;Fx=49999|CLK_AMP=470 mV,600 mV,890 mV,1020 mV",
            "CLK_OUT_TP=1;PLL_CDiv=200;CLK_SOURCE=3;Fx=50000|CLK_AMP=420 mV,550 mV,690 mV,770 mV",
            "CLK_OUT_TP=1;CLK_SOURCE=4|CLK_AMP=~350mV,~460mV,~670mV,~765mV",
            "CLK_SOURCE=0;ChA_Flo=1;CLK_OUT_TP=2|CLK_AMP=290 mV,450 mV,600 mV,750 mV",
            "CLK_OUT_TP=2;CLK_OUT_TP=0;Fx=1|CLK_AMP=290 mV,450 mV,600 mV,750 mV", // CMOS keeps the words
            "CLK_OUT_TP=1;PLL_CDiv=4;ChA_Flo=100000;CLK_SOURCE=0;CLK_AMP=0;ChA_Flo=400000" // 470 mV becomes 420 mV
            "|CLK_DC=1.68V,1.83V,2.58V,2.73V",
            "CLK_OUT_TP=1;CLK_SOURCE=4;CLK_AMP=1;CLK_AMP=0|CLK_DC=1.71V,1.86V,2.61V,2.76V"};
        for (const char* r : rows)
            QTest::newRow(r) << QString(r);
    }
    void displays()
    {
        QFETCH(QString, row);
        const QString assignments = row.section('|', 0, 0), expected = row.section('|', 1);
        set(assignments);
        const QString stem = (expected.contains('=') ? expected : assignments.section(';', -1)).section('=', 0, 0);
        QCOMPARE(shown(stem), expected.section('=', -1));
    }

    // Steps "change|widgets": "stem" must then be open, "!stem" closed, the
    // field's display alike; a caption is named by its object name.
    void enabling_data()
    {
        QTest::addColumn<QStringList>("steps");
        // "settings;box|widget:items ...": each widget stands open for the listed items of the combo box and
        // closed for all its other items; ChX is each of channels A to C.
        for (const char* web : {"CLK_OUT_TP=0;CLK_SOURCE|PLL_CDiv:012 CLK_AMP: CLK_DC: CLK_CMOS_LVL:01234",
                 "CLK_OUT_TP=1;CLK_SOURCE|PLL_CDiv:012 CLK_AMP:01234 CLK_DC:01234 CLK_CMOS_LVL:",
                 "CLK_OUT_TP=2;CLK_SOURCE|PLL_CDiv:012 CLK_AMP:01234 CLK_DC: CLK_CMOS_LVL:",
                 "CLK_OUT_TP=3;CLK_SOURCE|PLL_CDiv:012 CLK_AMP: CLK_DC: CLK_CMOS_LVL:",
                 "CLK_SOURCE=1;CLK_OUT_TP|PLL_CDiv:0123 CLK_AMP:12 CLK_DC:1 CLK_CMOS_LVL:0",
                 "CLK_SOURCE=4;CLK_OUT_TP|PLL_CDiv: CLK_AMP:12 CLK_DC:1 CLK_CMOS_LVL:0",
                 "FS_IN_LVDS_MD|FS_IN_LVDS_R:1 FS_IN_LVDS_R_ON:1 FS_IN_LVDS_RLabelG:1",
                 "ChX_IFA_GC_MD=0;ChX_IFA_OT|ChX_ADC_CLK_TP:1 ChX_IFA_ADC_OL:1 ChX_IFA_I_Gain:01 ChX_IFA_Q_Gain:01",
                 "ChX_IFA_GC_MD=1;ChX_IFA_OT|ChX_ADC_CLK_TP:1 ChX_IFA_ADC_OL:1 ChX_IFA_I_Gain:1 ChX_IFA_Q_Gain:1",
                 "ChX_IFA_OT=0;ChX_IFA_GC_MD|ChX_IFA_I_Gain:0 ChX_IFA_Q_Gain:0 ChX_ADC_CLK_TP: ChX_IFA_ADC_OL:",
                 "ChX_IFA_OT=1;ChX_IFA_GC_MD|ChX_IFA_I_Gain:01 ChX_IFA_Q_Gain:01 ChX_ADC_CLK_TP:01",
                 "ChX_PPF_MODE|ChX_LPF_I_BW_ref:023 ChX_LPF_Q_BW_ref:013", "ChX_PLL_DIV_MD|ChX_PLL_DSM_N:0 ChX_PLL_RDiv:0",
                 "ChD_IFA_OT|ChD_IFA_ADC_CLK_TP:1 ChD_IFA_ADC_OL:1 ChD_IFA_BUF_OP:0",
                 "ChD_IFA_AGC_MD|ChD_IFA_I_GC:01 ChD_IFA_Q_GC:01 ChD_IFA_I_AGC_HL:23 ChD_IFA_Q_AGC_HL:23 "
                 "ChD_IFA_I_AGC_LL:23 ChD_IFA_Q_AGC_LL:23",
                 "ChD_RF_AGC_MODE|ChD_LNA_AGC_PST:0"})
            for (const char* ch : {"ChA", "ChB", "ChC"}) {
                const QString row = QString(web).replace("ChX", ch), box = row.section('|', 0, 0).section(';', -1);
                QStringList steps;
                for (int item = 0; item < qobject_cast<QComboBox*>(widget(box))->count(); ++item) {
                    QStringList widgets;
                    for (const QString& w : row.section('|', 1).split(' '))
                        widgets << (w.section(':', 1).contains(QString::number(item)) ? "" : "!") + w.section(':', 0, 0);
                    steps << QString("%1=%2|%3").arg(row.section('|', 0, 0)).arg(item).arg(widgets.join(' '));
                }
                QTest::newRow(qPrintable(row.section('|', 0, 0))) << steps;
                if (!QByteArray(web).contains("ChX"))
                    break;
            }
        // The detector takes the LNA only with autoselection checked; the LNA box then leaves the type to it.
        QTest::newRow("LNA, autoselection") << QStringList{
            "ChA_AAD_ON=0;ChA_LNA_ON=1;ChA_AAD_LNA_SW=1;ChA_AAD_ON=1|ChA_AAD_LNA_SW !ChA_LNA_ON !ChA_LNA_TP",
            "ChA_AAD_ON=0|!ChA_AAD_LNA_SW ChA_LNA_ON ChA_LNA_TP ChA_LNA_TPLabelG",
            "ChA_LNA_ON=0|ChA_LNA_TP ChA_LNA_TPLabelG"};
        QTest::newRow("LNA, no autoselection") << QStringList{
            "ChB_AAD_LNA_SW=0;ChB_LNA_ON=1;ChB_AAD_ON=1|ChB_AAD_LNA_SW ChB_LNA_ON ChB_LNA_TP",
            "ChB_LNA_ON=0|!ChB_LNA_TP !ChB_LNA_TPLabelG ChB_LNA_ON", "ChB_AAD_LNA_SW=1|!ChB_LNA_ON",
            "ChB_AAD_LNA_SW=0|ChB_LNA_ON"};
    }
    void enabling()
    {
        QFETCH(QStringList, steps);
        for (const QString& step : steps) {
            set(step.section('|', 0, 0));
            for (QString stem : step.section('|', 1).split(' ')) {
                const bool open = !stem.startsWith('!');
                stem.remove('!');
                QWidget* w = field(stem) ? static_cast<QWidget*>(widget(stem)) : main->findWidget(stem);
                QVERIFY2(w && w->isEnabled() == open, qPrintable(step + ": " + stem));
                QVERIFY2(!display(stem) || display(stem)->isEnabled() == open, qPrintable(step + ": " + stem));
            }
        }
    }

    // The tables known in full (tests/data/value_tables.txt), code by code through the displays.
    void tables_data()
    {
        QTest::addColumn<QString>("row");
        QFile file(QStringLiteral(ZV_TEST_DATA "/value_tables.txt"));
        QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
        for (const QString& line : QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts))
            if (!line.startsWith('#'))
                QTest::newRow(qPrintable(line.section('|', 0, 1))) << line;
    }
    void tables()
    {
        QFETCH(QString, row);
        const QStringList entries = row.section('|', 4).split(", ");
        QStringList expected, seen;
        for (int code = 0; code < entries.size(); ++code) {
            bool number = false;
            const double value = entries[code].toDouble(&number);
            expected << (number ? QString::number(value, 'f', row.section('|', 2, 2).toInt()) + row.section('|', 3, 3)
                                : entries[code]);
            set(row.section('|', 1, 1) + QString(";%1=%2").arg(row.section('|', 0, 0)).arg(code));
            seen << shown(row.section('|', 0, 0));
        }
        QCOMPARE(seen, expected);
    }

    // The calibration tables known in part: every documented entry, and their shape between them.
    void calibrationTables()
    {
        const struct { const char* name; const double* entries; int size, step; QVector<double> known; } rows[] = {
            {"ifaGainDb", ifaGainDb.data(), 1024, 64, {1.7, 1.4, 1.8, 1.6, 8.1, 15.5, 24.9, 32.6, 37.9, 44.1, 46.2,
                 53.2, 58.7, 59.0, 59.2, 59.2, 59.2}},
            {"ifaGainPercent", ifaGainPercent.data(), 1024, 64, {0.0, 6.0, 12.0, 18.0, 24.0, 30.0, 35.0, 40.1, 45.1,
                 50.9, 56.8, 62.6, 68.4, 74.6, 81.8, 88.9, 96.0}},
            {"chdIfaGainDb", chdIfaGainDb.data(), 512, 32, {-6.34, -1.34, 3.53, 8.46, 13.51, 18.49, 23.39, 28.37,
                 33.41, 38.40, 43.29, 48.27, 53.32, 58.31, 63.21, 68.20, 73.74}},
            {"chdLpfCutoff", chdLpfCutoff.data(), 256, 16, {2.59, 3.392, 4.155, 4.88, 5.566, 6.214, 6.824, 7.395,
                 7.928, 8.422, 8.878, 9.296, 9.675, 10.016, 10.318, 10.582, 10.795}}};
        for (const auto& t : rows) {
            QVector<double> known; // every step-th entry, then the last
            for (int i = 0; i < t.size; i += t.step)
                known << t.entries[i];
            QCOMPARE(known << t.entries[t.size - 1], t.known);
            for (int i = 1; i < t.size; ++i) {
                const double rise = t.entries[i] - t.entries[i - 1];
                const bool fits = t.entries == ifaGainDb.data() ? t.entries[i] >= 1.2 && t.entries[i] <= 59.5
                                : t.entries == ifaGainPercent.data() ? rise > -1e-9 && rise < 0.2 + 1e-9
                                : t.entries == chdLpfCutoff.data()   ? rise > 0
                                : i % 32 ? rise > 0.1 && rise < 0.25 : -rise > 0.45 - 1e-9 && -rise < 0.61 + 1e-9;
                QVERIFY2(fits, qPrintable(QString("%1 at %2").arg(t.name).arg(i)));
            }
        }
        QCOMPARE(std::count(ifaGainDb.begin(), ifaGainDb.end(), 59.5), 2l);
        QCOMPARE(ifaGainDb[975] + ifaGainDb[1021], 119.0);
        QCOMPARE(*std::min_element(ifaGainDb.begin(), ifaGainDb.end()), 1.2);
    }

    // A display shown from an estimate is italic and says so in its tooltip; a known or measured entry is not.
    void estimatesMarked()
    {
        const QString tip = display("ChD_LPF_CF")->toolTip();
        const struct { const char* set; const char* field; bool estimated; } rows[] = {
            {"ChA_IFA_GC_MD=0;ChA_IFA_OT=0;ChA_IFA_I_Gain=975", "ChA_IFA_I_Gain", false},
            {"ChA_IFA_I_Gain=976", "ChA_IFA_I_Gain", true}, {"ChA_IFA_GC_MD=1;ChA_IFA_OT=1", "ChA_IFA_I_Gain", true},
            {"ChA_IFA_I_Gain=1023", "ChA_IFA_I_Gain", false}, {"ChD_IFA_Q_GC=31", "ChD_IFA_Q_GC", false},
            {"ChD_IFA_Q_GC=30", "ChD_IFA_Q_GC", true}, {"ChD_LPF_CF=17", "ChD_LPF_CF", true},
            {"ChD_LPF_CF=16", "ChD_LPF_CF", false}};
        for (const auto& row : rows) {
            set(row.set);
            QCOMPARE(display(row.field)->font().italic(), row.estimated);
            if (row.estimated)
                QCOMPARE(display(row.field)->toolTip(), QStringLiteral("estimated: no measured calibration for this code"));
        }
        QCOMPARE(display("ChD_LPF_CF")->toolTip(), tip);
        QTemporaryDir dir;
        Calibration measured;
        QVERIFY(writeFile(dir.filePath("c.csv"), "table,index,value\nchdLpfCutoff,17,3.5\n"));
        QCOMPARE(measured.load(dir.filePath("c.csv")), QString());
        main->model()->setCalibration(measured);
        set("ChD_LPF_CF=17");
        main->model()->setCalibration(Calibration());
        QCOMPARE(shown("ChD_LPF_CF"), QStringLiteral("3.5 MHz"));
        QVERIFY(!display("ChD_LPF_CF")->font().italic());
    }

    // A calibration file: each fault named with its line, and then nothing taken; a good file taken, the
    // estimates beside a measured entry on a line to the next anchor, the others as they were.
    void calibrationFile()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("calibration.csv");
        const char* const rows[][2] = {
            {"table,index,value\nchdLpfCutoff,1,3\n\nifaGainDb, 64 ,2.5\r\n", ""},
            {"", ": empty; the first line must be"},
            {"table;index;value\n", ":1: the first line must be \"table,index,value\""},
            {"table,index,value\nifaGain,1,3\n", ":2: no table \"ifaGain\"; the tables are ifaGainDb,"},
            {"table,index,value\nchdLpfCutoff,256,3\n", ":2: index \"256\" is out of range: chdLpfCutoff takes 0 to 255"},
            {"table,index,value\nchdLpfCutoff,-1,3\n", ":2: index \"-1\" is out of range"},
            {"table,index,value\nchdLpfCutoff,1,3,4\n", ":2: \"chdLpfCutoff,1,3,4\" is no table,index,value"},
            {"table,index,value\nchdLpfCutoff,1,3 MHz\n", ":2: value \"3 MHz\" is not a number"},
            {"table,index,value\nchdLpfCutoff,1,inf\n", ":2: value \"inf\" is not a number"},
            {"table,index,value\nchdLpfCutoff,1,3\nchdLpfCutoff,01,4\n", ":3: chdLpfCutoff 1 is given twice (first on line 2)"}};
        for (const auto& row : rows) {
            QVERIFY(writeFile(file, row[0]));
            Calibration c;
            const QString fault = c.load(file);
            QVERIFY2(*row[1] ? fault.startsWith(file + row[1]) : fault.isEmpty(), qPrintable(row[1] + fault));
            QCOMPARE(c.chdLpfCutoff.value(1), *row[1] ? 2.64 : 3.0);
            QCOMPARE(c.chdLpfCutoff.estimated(1), bool(*row[1]));
        }
        const Calibration b; // built in: the known entries are no estimates, all others are
        const struct { const CalibrationTable& table; int step; QVector<int> more; } known[] = {
            {b.ifaGainDb, 64, {975, 1021, 1023}}, {b.ifaGainPercent, 64, {1023}}, {b.chdIfaGainDb, 32, {31, 255, 511}},
            {b.chdLpfCutoff, 16, {255}}};
        for (const auto& k : known)
            for (int code = 0; code < k.table.size(); ++code)
                QCOMPARE(k.table.estimated(code), code % k.step != 0 && !k.more.contains(code));
        Calibration c;
        QVERIFY(c.load(file + "x").startsWith(file + "x: cannot be read"));
        QVERIFY(writeFile(file, rows[0][0]));
        QCOMPARE(c.load(file), QString());
        QCOMPARE(c.chdLpfCutoff.value(2), 3.0 + 0.392 / 15);
        QCOMPARE(c.chdLpfCutoff.value(20), 3.583);
        QCOMPARE(c.ifaGainDb.value(64), 2.5);
        QCOMPARE(c.ifaGainDb.value(96), (2.5 + 1.8) / 2);
        QVERIFY(c.ifaGainDb.estimated(96));
    }

    // A mode change shows the gains anew from the image, not from the boxes.
    void modeRewritesFromImage()
    {
        set("ChB_IFA_GC_MD=1;ChB_IFA_OT=1;ChB_IFA_I_Gain=0");
        map->setBrim(field("ChB_IFA_I_Gain")->position, 10, 960);
        set("ChB_IFA_GC_MD=0");
        QCOMPARE(shown("ChB_IFA_I_Gain"), QStringLiteral("59.2dB"));
    }

    // A field without a rule changes only the image; an unknown sender changes nothing and is reported.
    void changesWithoutRule()
    {
        auto state = [&] {
            QString texts;
            for (const part* p : main->outputs)
                texts += p->widget->property("text").toString() + "|";
            return qMakePair(texts, QByteArray(reinterpret_cast<const char*>(map->guiImage), int(map->registerCount)));
        };
        const auto before = state();
        set(QString("ChA_PLL_CP_CC=%1").arg(image("ChA_PLL_CP_CC") == 0 ? 1 : 0));
        const auto after = state();
        QVERIFY(after.second != before.second);
        QCOMPARE(after.first, before.first);
        ModalCatcher catcher;
        QSpinBox stray;
        stray.setObjectName("strayBox");
        connect(&stray, SIGNAL(valueChanged(int)), main, SLOT(change_Value(int)));
        stray.setValue(5);
        QCOMPARE(catcher.texts, QStringList({"Невозможное событие!"}));
        QVERIFY(state() == after);
    }

    // Pushes random images into all widgets as the end of a read does: the 88 displays with a rule,
    // and no other, hold a value afterwards, and no change ran in circles or asked the user anything.
    void fullPushFillsEveryDisplay()
    {
        ModalCatcher catcher;
        std::mt19937 random(4280);
        for (int round = 0; round < 3; ++round) {
            for (const part* p : main->outputs)
                main->model()->setText(p->widget->objectName(), QString());
            for (quint32 r = 0; r < map->registerCount; ++r)
                map->guiImage[r] = quint8(random());
            for (const QString& key : map->parts.keys())
                map->setPartValue(key, map->guiImage);
            for (const part* p : map->parts)
                if (auto* box = qobject_cast<QSpinBox*>(main->outputs.contains(p->name) ? p->widget : nullptr))
                    emit box->valueChanged(int(map->getPartValue(p->name)));
            QStringList filled;
            for (const part* p : main->outputs)
                if (p->widget->objectName().endsWith("_Expression"))
                    filled << p->widget->property("text").toString();
            filled.removeAll(QString());
            QCOMPARE(filled.size(), 88);
        }
        QVERIFY(catcher.texts.isEmpty());
    }
};

QTEST_MAIN(tst_values)
#include "tst_values.moc"
