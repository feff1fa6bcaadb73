#include "MainClass.h"
#include "mapshow.h"
#include "part.h"
#include "testsupport.h"

#include <QtTest>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

#include <random>

// The physical-value rules, through the widgets of the real forms.
class tst_values : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void guard_data();
    void guard();
    void displays_data();
    void displays();
    void amplitudeWords_data();
    void amplitudeWords();
    void dcLevels();
    void clockEnabling();
    void refiring_data();
    void refiring();
    void gainModeRewritesFromImage();
    void thresholdModeRewritesFromImage();
    void lnaWeb();
    void enabling_data();
    void enabling();
    void unknownSender();
    void fieldWithoutRuleTouchesOnlyImage();
    void fullPushFillsEveryDisplay();

private:
    QObject* widget(const QString& stem) const;
    QWidget* display(const QString& stem) const;
    QString shown(const QString& stem) const;
    void set(const QString& stem, int value);
    void setAll(const QString& assignments);

    MainClass* main = nullptr;
    mapshow* map = nullptr;
};

void tst_values::initTestCase()
{
    zvTestInit();
    main = new MainClass;
    map = main->firstMap();
    QVERIFY(map);
}

void tst_values::cleanupTestCase()
{
    delete main;
}

QObject* tst_values::widget(const QString& stem) const
{
    const part* p = map->parts.value(stem + "_ZV4280v2");
    return p ? p->widget : nullptr;
}

QWidget* tst_values::display(const QString& stem) const
{
    const part* p = main->outputs.value(stem + "_ZV4280v2");
    return p ? qobject_cast<QWidget*>(p->widget) : nullptr;
}

QString tst_values::shown(const QString& stem) const
{
    auto* edit = qobject_cast<QLineEdit*>(display(stem));
    return edit ? edit->text() : QStringLiteral("<no display>");
}

// Sets a field's widget as a user would; a widget already at the value is
// fired by hand, as the end of a read does it.
void tst_values::set(const QString& stem, int value)
{
    QObject* w = widget(stem);
    QVERIFY2(w, qPrintable(stem));
    if (auto* spin = qobject_cast<QSpinBox*>(w)) {
        if (spin->value() == value)
            emit spin->valueChanged(value);
        else
            spin->setValue(value);
    } else if (auto* combo = qobject_cast<QComboBox*>(w)) {
        if (combo->currentIndex() == value)
            emit combo->currentIndexChanged(value);
        else
            combo->setCurrentIndex(value);
    } else if (auto* check = qobject_cast<QCheckBox*>(w)) {
        if (check->isChecked() == (value != 0))
            emit check->stateChanged(check->checkState());
        else
            check->setChecked(value != 0);
    } else {
        QFAIL(qPrintable("not an editing widget: " + stem));
    }
}

void tst_values::setAll(const QString& assignments)
{
    for (const QString& a : assignments.split(';', Qt::SkipEmptyParts)) {
        const QStringList kv = a.split('=');
        set(kv.at(0).trimmed(), kv.at(1).toInt());
    }
}

void tst_values::guard_data()
{
    QTest::addColumn<QString>("stem");
    QTest::addColumn<int>("good");
    QTest::addColumn<int>("bad");
    QTest::addColumn<int>("kept"); // what box and image hold after the bad value
    for (const char* ch : {"ChA", "ChB", "ChC", "ChD"})
        QTest::newRow(ch) << QString(ch) + "_Flo" << 8388607 << 8388608 << 8388607;
    QTest::newRow("Fx") << "Fx" << 65535 << 65536 << 65535;
    // Other spin boxes are cut to the field instead.
    QTest::newRow("5-bit field") << "ChA_PLL_RDiv" << 7 << 40 << 31;
}

void tst_values::guard()
{
    QFETCH(QString, stem);
    QFETCH(int, good);
    QFETCH(int, bad);
    QFETCH(int, kept);
    auto* box = qobject_cast<QSpinBox*>(widget(stem));
    QVERIFY(box);
    const part* p = map->parts.value(stem + "_ZV4280v2");
    set(stem, good);
    QCOMPARE(map->getBrim(p->position, p->width), quint32(good));
    box->setValue(bad);
    QCOMPARE(box->value(), kept);
    QCOMPARE(map->getBrim(p->position, p->width), quint32(kept));
}

void tst_values::displays_data()
{
    QTest::addColumn<QString>("setup");
    QTest::addColumn<QString>("stem");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");

    // Temperature at each border.
    const QList<QPair<int, QString>> temperature = {
        {0, " overheat"}, {504, " overheat"}, {505, "+110С ATTN"}, {537, "+110С ATTN"}, {538, "99.8 °C"},
        {723, "-39.9 °C"}, {724, "-50С ATTN"}, {749, "-50С ATTN"}, {750, "not valid"}, {1023, "not valid"}};
    for (const auto& t : temperature)
        QTest::addRow("temperature %d", t.first) << "" << "TS_code" << t.first << t.second;

    // Gains, cut-offs and phases of channels A to C.
    QTest::newRow("gain dB") << "ChA_IFA_GC_MD=0;ChA_IFA_OT=0" << "ChA_IFA_I_Gain" << 0 << "1.7dB";
    QTest::newRow("gain percent") << "ChA_IFA_GC_MD=1;ChA_IFA_OT=1" << "ChA_IFA_I_Gain" << 0 << "0.0%";
    QTest::newRow("gain auto, analog") << "ChA_IFA_GC_MD=1;ChA_IFA_OT=0" << "ChA_IFA_Q_Gain" << 64 << "1.4dB";
    QTest::newRow("gain top dB") << "ChC_IFA_GC_MD=0;ChC_IFA_OT=1" << "ChC_IFA_I_Gain" << 1023 << "59.2dB";
    QTest::newRow("gain top percent") << "ChC_IFA_GC_MD=1;ChC_IFA_OT=1" << "ChC_IFA_I_Gain" << 1023 << "96.0%";
    QTest::newRow("gain highest") << "ChB_IFA_GC_MD=0;ChB_IFA_OT=0" << "ChB_IFA_Q_Gain" << 975 << "59.5dB";
    QTest::newRow("cut-off top") << "" << "ChA_LPF_I_BW_ref" << 127 << "37.1 MHz";
    QTest::newRow("cut-off bottom") << "" << "ChB_LPF_Q_BW_ref" << 0 << "8.9 MHz";
    QTest::newRow("phase middle") << "" << "ChA_QF_shift" << 32 << "90.0°";
    QTest::newRow("phase top") << "" << "ChC_QF_shift" << 63 << "104.9°";

    // Antenna and LNA.
    QTest::newRow("LNA unexpected") << "" << "ChA_LNA1_EN_st" << 3 << "unexp";
    QTest::newRow("LNA none") << "" << "ChB_LNA1_EN_st" << 0 << "no active";
    QTest::newRow("antenna connected") << "" << "ChC_AAD_WORK" << 1 << "connected ";
    QTest::newRow("antenna not connected") << "" << "ChA_AAD_WORK" << 0 << "not connected";
    QTest::newRow("LNA1 current 0") << "" << "ChA_LNA1_CC" << 0 << "250µA";
    QTest::newRow("LNA1 current 7") << "" << "ChB_LNA1_CC" << 7 << "600µA";
    QTest::newRow("LNA2 current 0") << "" << "ChC_LNA2_CC" << 0 << "100µA";
    QTest::newRow("LNA2 current 7") << "" << "ChA_LNA2_CC" << 7 << "450µA";

    // Loop filter, SAS voltages and time constants.
    QTest::newRow("C1 0") << "" << "ChA_PLL_LF_C1" << 0 << "19.5pF";
    QTest::newRow("C2 31") << "" << "ChB_PLL_LF_C2" << 31 << "624.0pF";
    QTest::newRow("D R1 0") << "" << "ChD_PLL_LF_R1" << 0 << "2kOhm";
    QTest::newRow("D R1 31") << "" << "ChD_PLL_LF_R1" << 31 << "64kOhm";
    QTest::newRow("D C1 1") << "" << "ChD_PLL_LF_C1" << 1 << "39.0pF";
    QTest::newRow("SAS HB, 2.5 V scale") << "ChB_PLL_SAS_DAC_FS=0" << "ChB_PLL_SAS_HB" << 31 << "2.42V";
    QTest::newRow("SAS HB, VCC scale") << "ChB_PLL_SAS_DAC_FS=1" << "ChB_PLL_SAS_HB" << 31 << "1.00*VCC V";
    QTest::newRow("SAS ADC out") << "ChC_PLL_SAS_DAC_FS=0" << "ChC_PLL_SAS_ADC_OUT" << 10 << "0.78V";
    QTest::newRow("ADC time constant 0") << "Fx=16000" << "ChA_PLL_SAS_ADC_TC" << 0 << "0.01 s";
    QTest::newRow("ADC time constant 10") << "Fx=16000" << "ChA_PLL_SAS_ADC_TC" << 10 << "8.19 s";
    QTest::newRow("band time constant 0") << "Fx=16000" << "ChA_PLL_SAS_BAND_TC" << 0 << "0.01 s";
    QTest::newRow("band time constant 10") << "Fx=16000" << "ChA_PLL_SAS_BAND_TC" << 10 << "4.10 s";

    // Channel D.
    QTest::newRow("threshold analog 226") << "ChD_IFA_OT=0" << "ChD_IFA_I_AGC_HL" << 226 << "601 mV";
    QTest::newRow("threshold analog 227") << "ChD_IFA_OT=0" << "ChD_IFA_Q_AGC_LL" << 227 << "n/a";
    QTest::newRow("threshold analog 0") << "ChD_IFA_OT=0" << "ChD_IFA_I_AGC_LL" << 0 << "0 mV";
    QTest::newRow("threshold ADC 255") << "ChD_IFA_OT=1" << "ChD_IFA_Q_AGC_HL" << 255 << "99.6%";
    QTest::newRow("D gain 0") << "" << "ChD_IFA_I_GC" << 0 << "-6.34dB";
    QTest::newRow("D gain 31") << "" << "ChD_IFA_Q_GC" << 31 << "-0.87dB";
    QTest::newRow("D gain 256") << "" << "ChD_IFA_Q_GC" << 256 << "33.41dB";
    QTest::newRow("D gain 511") << "" << "ChD_IFA_I_GC" << 511 << "73.74dB";
    QTest::newRow("D gain status") << "" << "ChD_IFA_I_GCst" << 300 << "300";
    QTest::newRow("AGC time constant 0") << "" << "ChD_IFA_AGC_TC" << 0 << "1";
    QTest::newRow("AGC ADC time constant 15") << "" << "ChD_IFA_AGC_ADC_TC" << 15 << "32768";
    QTest::newRow("LNA AGC 0") << "" << "ChD_LNA_AGC_High" << 0 << "43.86mV";
    QTest::newRow("LNA AGC 55") << "" << "ChD_LNA_AGC_Low" << 55 << "306.00mV";
    QTest::newRow("LNA AGC beyond table") << "" << "ChD_LNA_AGC_High" << 56 << "n/a";
    QTest::newRow("mixer AGC 55") << "" << "ChD_MIX_AGC_Low" << 55 << "301.0mV";
    QTest::newRow("mixer AGC beyond table") << "" << "ChD_MIX_AGC_High" << 63 << "n/a";
    QTest::newRow("D cut-off 0") << "" << "ChD_LPF_CF" << 0 << "2.6 MHz";
    QTest::newRow("D cut-off 255") << "" << "ChD_LPF_CF" << 255 << "10.8 MHz";
    QTest::newRow("FM phase") << "" << "ChD_QF_FM_shift" << 32 << "90.00°";
    QTest::newRow("VHF phase") << "" << "ChD_QF_VHF_shift" << 0 << "76.00°";
    QTest::newRow("UHF phase") << "" << "ChD_QF_UHF_shift" << 63 << "105.70°";
    QTest::newRow("LS phase centre") << "ChD_Flo=2000000;ChD_QF_S_scale=3" << "ChD_QF_LS_shift" << 64 << "90.00°";
    QTest::newRow("LS phase, high scale") << "ChD_Flo=2000000;ChD_QF_S_scale=0" << "ChD_QF_LS_shift" << 0 << "81.20°";
    QTest::newRow("LS phase, low scale") << "ChD_Flo=1500000;ChD_QF_S_scale=0" << "ChD_QF_LS_shift" << 0 << "84.10°";
    // -56 * 9.8f rounds in single precision to -548.79999; in double it would end on 81.42.
    QTest::newRow("LS phase, single-precision product") << "ChD_Flo=1500000;ChD_QF_S_scale=2" << "ChD_QF_LS_shift" << 8
                                                         << "81.43°";
    QTest::newRow("RF gain FM") << "ChD_Flo=100000" << "ChD_LNA_AGC_PST" << 0 << "-15.80dB";
    QTest::newRow("RF gain S 14") << "ChD_Flo=2000000" << "ChD_LNA_AGC_PST" << 14 << "18.10dB";
    QTest::newRow("RF gain S 15") << "ChD_Flo=2000000" << "ChD_LNA_AGC_PST" << 15 << "18.10dB";
    QTest::newRow("RF gain UHF 9") << "ChD_Flo=600000" << "ChD_LNA_AGC_PST" << 9 << "10.30dB";
    QTest::newRow("R divider 0") << "" << "ChD_R_Div" << 0 << "unused";
    QTest::newRow("R divider 1") << "" << "ChD_R_Div" << 1 << "1";
    QTest::newRow("RF AGC divider 0") << "" << "ChD_RF_AGC_DivR" << 0 << "0";
    QTest::newRow("RF AGC divider 1") << "" << "ChD_RF_AGC_DivR" << 1 << "2";
    QTest::newRow("RF AGC divider 15") << "" << "ChD_RF_AGC_DivR" << 15 << "32768";
    QTest::newRow("SAS lower bound 0") << "" << "ChD_SAS_LB_1" << 0 << "0.4 V";
    QTest::newRow("SAS upper bound 15") << "" << "ChD_SAS_UB_3" << 15 << "1.9 V";
    QTest::newRow("SAS subband") << "" << "ChD_SAS_SB" << 12 << "12.00pt";

    // The bands of channel D, through the tuned band of the RF filter.
    const QList<QPair<int, QString>> bands = {
        {100000, "-"}, {130000, "-"}, {130001, "194.27 198.47"}, {200000, "194.27 198.47"},
        {350000, "194.27 198.47"}, {350001, "691.45 718.43"}, {1160000, "691.45 718.43"},
        {1160001, "1170 - 1290"}, {1820000, "1170 - 1290"}, {1820001, "2340 - 2580"}};
    for (const auto& b : bands)
        QTest::addRow("band at %d kHz", b.first) << QString("ChD_Flo=%1").arg(b.first) << "ChD_TRF_RC_regs" << 4
                                                 << b.second;
    QTest::newRow("FM band 0") << "ChD_Flo=88000" << "ChD_TRF_RC_regs" << 0 << "104.50 110.00";
}

void tst_values::displays()
{
    QFETCH(QString, setup);
    QFETCH(QString, stem);
    QFETCH(int, code);
    setAll(setup);
    set(stem, code);
    QTEST(shown(stem), "text");
}

void tst_values::amplitudeWords_data()
{
    QTest::addColumn<QString>("setup");
    QTest::addColumn<QStringList>("words");
    const QStringList low = {"470 mV", "600 mV", "890 mV", "1020 mV"};
    const QStringList high = {"420 mV", "550 mV", "690 mV", "770 mV"};
    const QStringList lvds = {"290 mV", "450 mV", "600 mV", "750 mV"};
    const QStringList external = {"~350mV", "~460mV", "~670mV", "~765mV"};
    QTest::newRow("PLL A, 50000 kHz") << "CLK_OUT_TP=1;PLL_CDiv=4;ChA_Flo=200000;CLK_SOURCE=0" << high;
    QTest::newRow("PLL A, 49999 kHz") << "CLK_OUT_TP=1;PLL_CDiv=4;ChA_Flo=199999;CLK_SOURCE=0" << low;
    QTest::newRow("PLL B, divider 10") << "CLK_OUT_TP=1;PLL_CDiv=10;ChB_Flo=500000;CLK_SOURCE=1" << high;
    QTest::newRow("PLL C, divider 11") << "CLK_OUT_TP=1;PLL_CDiv=11;ChC_Flo=549999;CLK_SOURCE=2" << low;
    QTest::newRow("TCXO 49999") << "CLK_OUT_TP=1;PLL_CDiv=200;CLK_SOURCE=3;Fx=49999" << low;
    QTest::newRow("TCXO 50000") << "CLK_OUT_TP=1;PLL_CDiv=200;CLK_SOURCE=3;Fx=50000" << high;
    QTest::newRow("external") << "CLK_OUT_TP=1;CLK_SOURCE=4;Fx=60000;ChA_Flo=1" << external;
    QTest::newRow("LVDS, any source") << "CLK_SOURCE=0;ChA_Flo=1;CLK_OUT_TP=2" << lvds;
    QTest::newRow("LVDS, TCXO") << "CLK_SOURCE=3;Fx=60000;CLK_OUT_TP=2" << lvds;
    // CMOS keeps the words the list had.
    QTest::newRow("CMOS keeps words") << "CLK_OUT_TP=2;CLK_OUT_TP=0;Fx=1" << lvds;
}

void tst_values::amplitudeWords()
{
    QFETCH(QString, setup);
    setAll(setup);
    auto* amp = qobject_cast<QComboBox*>(widget("CLK_AMP"));
    QStringList words;
    for (int i = 0; i < amp->count(); ++i)
        words << amp->itemText(i);
    QTEST(words, "words");
}

void tst_values::dcLevels()
{
    auto* amp = qobject_cast<QComboBox*>(widget("CLK_AMP"));
    auto* dc = qobject_cast<QComboBox*>(widget("CLK_DC"));
    auto levels = [&] {
        QStringList l;
        for (int i = 0; i < dc->count(); ++i)
            l << dc->itemText(i);
        return l;
    };
    setAll("CLK_OUT_TP=1;PLL_CDiv=4;ChA_Flo=100000;CLK_SOURCE=0;CLK_AMP=0");
    QCOMPARE(amp->currentText(), QStringLiteral("470 mV"));
    QCOMPARE(levels(), QStringList({"1.68V", "1.83V", "2.58V", "2.73V"}));
    // A frequency that swaps the words under the current item leaves the levels.
    set("ChA_Flo", 400000);
    QCOMPARE(amp->currentText(), QStringLiteral("420 mV"));
    QCOMPARE(levels(), QStringList({"1.68V", "1.83V", "2.58V", "2.73V"}));
    setAll("CLK_SOURCE=4;CLK_AMP=1;CLK_AMP=0");
    QCOMPARE(amp->currentText(), QStringLiteral("~350mV"));
    QCOMPARE(levels(), QStringList({"1.71V", "1.86V", "2.61V", "2.76V"}));
}

void tst_values::clockEnabling()
{
    auto enabled = [&](const char* stem) { return static_cast<QWidget*>(widget(stem))->isEnabled(); };
    setAll("CLK_OUT_TP=1;CLK_SOURCE=3");
    QVERIFY(!enabled("PLL_CDiv"));
    QVERIFY(enabled("CLK_AMP"));
    set("CLK_SOURCE", 1);
    QVERIFY(enabled("PLL_CDiv"));
    set("CLK_OUT_TP", 0);
    QVERIFY(!enabled("CLK_AMP"));
    QVERIFY(!enabled("CLK_DC"));
    QVERIFY(enabled("CLK_CMOS_LVL"));
    set("CLK_OUT_TP", 2);
    QVERIFY(enabled("CLK_AMP"));
    QVERIFY(!enabled("CLK_DC"));
    QVERIFY(!enabled("CLK_CMOS_LVL"));
    set("CLK_OUT_TP", 1);
    QVERIFY(enabled("CLK_AMP"));
    QVERIFY(enabled("CLK_DC"));
    // A source without a PLL disables the divider also through a type change.
    setAll("CLK_SOURCE=4;CLK_OUT_TP=3");
    QVERIFY(!enabled("PLL_CDiv"));
    QVERIFY(!enabled("CLK_AMP"));
    // The termination of the sampling input is open only for LVDS.
    QWidget* caption = main->findWidget("FS_IN_LVDS_RLabelG");
    set("FS_IN_LVDS_MD", 1);
    QVERIFY(enabled("FS_IN_LVDS_R") && enabled("FS_IN_LVDS_R_ON") && caption->isEnabled());
    set("FS_IN_LVDS_MD", 0);
    QVERIFY(!enabled("FS_IN_LVDS_R") && !enabled("FS_IN_LVDS_R_ON") && !caption->isEnabled());
}

// Which widgets a change fires again, each once: every level runs the chain
// from its start, so a change of Fx runs the amplitude rule three times.
void tst_values::refiring_data()
{
    QTest::addColumn<QString>("stem");
    QTest::addColumn<int>("outputType");
    QTest::addColumn<int>("source");
    QTest::newRow("Fx") << "Fx" << 1 << 1;
    QTest::newRow("output type") << "CLK_OUT_TP" << 0 << 1;
    QTest::newRow("channel A frequency") << "ChA_Flo" << 0 << 1;
    QTest::newRow("channel D frequency") << "ChD_Flo" << 0 << 1;
    QTest::newRow("source") << "CLK_SOURCE" << 0 << 0;
    QTest::newRow("no rule") << "ChA_PLL_CP_CC" << 0 << 0;
}

void tst_values::refiring()
{
    QFETCH(QString, stem);
    QFETCH(int, outputType);
    QFETCH(int, source);
    setAll("CLK_SOURCE=0;CLK_OUT_TP=1");
    QSignalSpy typeSpy(widget("CLK_OUT_TP"), SIGNAL(currentIndexChanged(int)));
    QSignalSpy sourceSpy(widget("CLK_SOURCE"), SIGNAL(currentIndexChanged(int)));
    auto* box = qobject_cast<QSpinBox*>(widget(stem));
    if (box)
        box->setValue(box->value() + 1);
    else
        set(stem, 1);
    QCOMPARE(typeSpy.count(), outputType + (stem == "CLK_OUT_TP" ? 1 : 0));
    QCOMPARE(sourceSpy.count(), source + (stem == "CLK_SOURCE" ? 1 : 0));
}

void tst_values::gainModeRewritesFromImage()
{
    setAll("ChB_IFA_GC_MD=0;ChB_IFA_OT=0;ChB_IFA_I_Gain=0;ChB_IFA_Q_Gain=1023");
    QCOMPARE(shown("ChB_IFA_I_Gain"), QStringLiteral("1.7dB"));
    set("ChB_IFA_GC_MD", 1);
    // "auto" with the analog output closes the gains and keeps dB.
    QVERIFY(!static_cast<QWidget*>(widget("ChB_IFA_I_Gain"))->isEnabled());
    QVERIFY(!display("ChB_IFA_Q_Gain")->isEnabled());
    set("ChB_IFA_OT", 1);
    QVERIFY(static_cast<QWidget*>(widget("ChB_IFA_I_Gain"))->isEnabled());
    QVERIFY(display("ChB_IFA_Q_Gain")->isEnabled());
    QCOMPARE(shown("ChB_IFA_I_Gain"), QStringLiteral("0.0%"));
    QCOMPARE(shown("ChB_IFA_Q_Gain"), QStringLiteral("96.0%"));
    // The displays follow the image, not the boxes.
    map->setBrim(map->parts.value("ChB_IFA_I_Gain_ZV4280v2")->position, 10, 960);
    set("ChB_IFA_GC_MD", 0);
    QCOMPARE(shown("ChB_IFA_I_Gain"), QStringLiteral("59.2dB"));
    QCOMPARE(static_cast<QSpinBox*>(widget("ChB_IFA_I_Gain"))->value(), 0);
    // The ADC widgets follow the output type.
    QVERIFY(static_cast<QWidget*>(widget("ChB_ADC_CLK_TP"))->isEnabled());
    set("ChB_IFA_OT", 0);
    QVERIFY(!static_cast<QWidget*>(widget("ChB_ADC_CLK_TP"))->isEnabled());
    QVERIFY(!static_cast<QWidget*>(widget("ChB_IFA_ADC_OL"))->isEnabled());
}

void tst_values::thresholdModeRewritesFromImage()
{
    setAll("ChD_IFA_OT=0;ChD_IFA_I_AGC_HL=226;ChD_IFA_Q_AGC_HL=0;ChD_IFA_I_AGC_LL=227;ChD_IFA_Q_AGC_LL=128");
    set("ChD_IFA_OT", 1);
    QCOMPARE(shown("ChD_IFA_I_AGC_HL"), QStringLiteral("88.3%"));
    QCOMPARE(shown("ChD_IFA_Q_AGC_HL"), QStringLiteral("0.0%"));
    QCOMPARE(shown("ChD_IFA_I_AGC_LL"), QStringLiteral("88.7%"));
    QCOMPARE(shown("ChD_IFA_Q_AGC_LL"), QStringLiteral("50.0%"));
    QVERIFY(static_cast<QWidget*>(widget("ChD_IFA_ADC_OL"))->isEnabled());
    QVERIFY(!static_cast<QWidget*>(widget("ChD_IFA_BUF_OP"))->isEnabled());
    set("ChD_IFA_OT", 0);
    QCOMPARE(shown("ChD_IFA_I_AGC_HL"), QStringLiteral("601 mV"));
    QCOMPARE(shown("ChD_IFA_I_AGC_LL"), QStringLiteral("n/a"));
    QVERIFY(static_cast<QWidget*>(widget("ChD_IFA_BUF_OP"))->isEnabled());
}

void tst_values::lnaWeb()
{
    auto on = [&](const QString& stem) { return static_cast<QWidget*>(widget(stem))->isEnabled(); };
    QWidget* typeCaption = main->findWidget("ChA_LNA_TPLabelG");
    QVERIFY(typeCaption);
    // Detector off, autoselection checked, LNA on.
    setAll("ChA_AAD_ON=0;ChA_LNA_ON=1;ChA_AAD_LNA_SW=1");
    // Turning the detector on hands the LNA to it.
    set("ChA_AAD_ON", 1);
    QVERIFY(on("ChA_AAD_LNA_SW"));
    QVERIFY(!on("ChA_LNA_ON"));
    QVERIFY(!on("ChA_LNA_TP"));
    QVERIFY(!typeCaption->isEnabled());
    // Off again: the LNA is the user's, the type open as the LNA is on.
    set("ChA_AAD_ON", 0);
    QVERIFY(!on("ChA_AAD_LNA_SW"));
    QVERIFY(on("ChA_LNA_ON"));
    QVERIFY(on("ChA_LNA_TP"));
    QVERIFY(typeCaption->isEnabled());
    // With autoselection checked, the LNA box leaves the type to the state of
    // the autoselection box: disabled, so the type stays open.
    set("ChA_LNA_ON", 0);
    QVERIFY(on("ChA_LNA_TP"));
    QVERIFY(typeCaption->isEnabled());
    // Detector off, autoselection not checked: only the autoselection box moves.
    setAll("ChB_AAD_LNA_SW=0;ChB_LNA_ON=1;ChB_AAD_ON=1");
    QVERIFY(on("ChB_AAD_LNA_SW"));
    QVERIFY(on("ChB_LNA_ON"));
    QVERIFY(on("ChB_LNA_TP"));
    set("ChB_LNA_ON", 0);
    QVERIFY(!on("ChB_LNA_TP"));
    QVERIFY(!main->findWidget("ChB_LNA_TPLabelG")->isEnabled());
    QVERIFY(on("ChB_LNA_ON"));
    // With the detector on, autoselection takes the LNA away and gives it back.
    set("ChB_AAD_LNA_SW", 1);
    QVERIFY(!on("ChB_LNA_ON"));
    set("ChB_AAD_LNA_SW", 0);
    QVERIFY(on("ChB_LNA_ON"));
}

void tst_values::enabling_data()
{
    QTest::addColumn<QString>("stem");
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("open");
    QTest::addColumn<QStringList>("closed");
    QTest::newRow("IQ") << "ChA_PPF_MODE" << 0 << QStringList{"ChA_LPF_I_BW_ref", "ChA_LPF_Q_BW_ref"} << QStringList{};
    QTest::newRow("upper sideband") << "ChA_PPF_MODE" << 1 << QStringList{"ChA_LPF_Q_BW_ref"}
                                    << QStringList{"ChA_LPF_I_BW_ref"};
    QTest::newRow("lower sideband") << "ChC_PPF_MODE" << 2 << QStringList{"ChC_LPF_I_BW_ref"}
                                    << QStringList{"ChC_LPF_Q_BW_ref"};
    QTest::newRow("both sidebands") << "ChB_PPF_MODE" << 3 << QStringList{"ChB_LPF_I_BW_ref", "ChB_LPF_Q_BW_ref"}
                                    << QStringList{};
    QTest::newRow("fractional-N") << "ChB_PLL_DIV_MD" << 1 << QStringList{}
                                  << QStringList{"ChB_PLL_DSM_N", "ChB_PLL_RDiv"};
    QTest::newRow("integer-N") << "ChB_PLL_DIV_MD" << 0 << QStringList{"ChB_PLL_DSM_N", "ChB_PLL_RDiv"}
                               << QStringList{};
    const QStringList gains = {"ChD_IFA_I_GC", "ChD_IFA_Q_GC"};
    const QStringList thresholds = {"ChD_IFA_I_AGC_HL", "ChD_IFA_Q_AGC_HL", "ChD_IFA_I_AGC_LL", "ChD_IFA_Q_AGC_LL"};
    for (int mode = 0; mode < 4; ++mode)
        QTest::addRow("D IF AGC mode %d", mode) << "ChD_IFA_AGC_MD" << mode << (mode <= 1 ? gains : thresholds)
                                                << (mode <= 1 ? thresholds : gains);
    QTest::newRow("D RF manual") << "ChD_RF_AGC_MODE" << 0 << QStringList{"ChD_LNA_AGC_PST"} << QStringList{};
    QTest::newRow("D RF auto") << "ChD_RF_AGC_MODE" << 1 << QStringList{} << QStringList{"ChD_LNA_AGC_PST"};
}

void tst_values::enabling()
{
    QFETCH(QString, stem);
    QFETCH(int, code);
    QFETCH(QStringList, open);
    QFETCH(QStringList, closed);
    set(stem, code);
    for (const QString& s : open) {
        QVERIFY2(static_cast<QWidget*>(widget(s))->isEnabled(), qPrintable(s));
        if (display(s))
            QVERIFY2(display(s)->isEnabled(), qPrintable(s));
    }
    for (const QString& s : closed) {
        QVERIFY2(!static_cast<QWidget*>(widget(s))->isEnabled(), qPrintable(s));
        if (display(s) && s.contains("LPF") + s.contains("AGC") + s.contains("_GC"))
            QVERIFY2(!display(s)->isEnabled(), qPrintable(s));
    }
}

void tst_values::unknownSender()
{
    ModalCatcher catcher;
    QSpinBox stray;
    stray.setObjectName("strayBox");
    connect(&stray, SIGNAL(valueChanged(int)), main, SLOT(change_Value(int)));
    const QByteArray before(reinterpret_cast<const char*>(map->guiImage), int(map->registerCount));
    stray.setValue(5);
    QCOMPARE(catcher.texts, QStringList({"Невозможное событие!"}));
    QCOMPARE(QByteArray(reinterpret_cast<const char*>(map->guiImage), int(map->registerCount)), before);
}

void tst_values::fieldWithoutRuleTouchesOnlyImage()
{
    QMap<QString, QString> texts;
    for (auto it = main->outputs.cbegin(); it != main->outputs.cend(); ++it)
        if (auto* e = qobject_cast<QLineEdit*>(it.value()->widget))
            texts.insert(it.key(), e->text());
    const part* p = map->parts.value("ChA_PLL_CP_CC_ZV4280v2");
    QVERIFY(p);
    const quint32 old = map->getBrim(p->position, p->width);
    set("ChA_PLL_CP_CC", old == 0 ? 1 : 0);
    QVERIFY(map->getBrim(p->position, p->width) != old);
    for (auto it = texts.cbegin(); it != texts.cend(); ++it)
        QCOMPARE(static_cast<QLineEdit*>(main->outputs.value(it.key())->widget)->text(), it.value());
}

// Pushes random images into all widgets as the end of a read does, and checks
// that every display with a rule holds a value afterwards, and that no change
// ran in circles (the push returns) or asked the user anything.
void tst_values::fullPushFillsEveryDisplay()
{
    static const QStringList withoutRule = {
        "ChB_LPF_OscRef", "ChC_LPF_OscRef", "ChB_MIX_CC_regs", "ChC_MIX_CC_regs", "ChB_PLL_DSM_F",
        "ChC_PLL_DSM_F", "ChD_DSM_F_regs", "ChD_DSM_N_regs", "ChD_IFA_I_AGC_ADC_OUT", "ChD_IFA_Q_AGC_ADC_OUT",
        "ChD_MIX_LS_CC", "ChD_MIX_UHF_CC", "ChD_MIX_VHF_CC", "ChD_SAS_LB", "ChD_SAS_UB"};
    ModalCatcher catcher;
    std::mt19937 random(4280);
    for (int round = 0; round < 3; ++round) {
        for (quint32 r = 0; r < map->registerCount; ++r)
            map->guiImage[r] = quint8(random());
        for (auto it = map->parts.cbegin(); it != map->parts.cend(); ++it)
            map->setPartValue(it.key(), map->guiImage);
        for (auto it = main->outputs.cbegin(); it != main->outputs.cend(); ++it) {
            const part* p = map->parts.value(it.key());
            if (p && QLatin1String(p->widget->metaObject()->className()) == QLatin1String("QSpinBox"))
                emit static_cast<QSpinBox*>(p->widget)->valueChanged(int(map->getPartValue(it.key())));
        }
        int filled = 0;
        for (auto it = main->outputs.cbegin(); it != main->outputs.cend(); ++it) {
            if (!it.value()->widget->objectName().endsWith("_Expression"))
                continue;
            const QString stem = it.key().chopped(QStringLiteral("_ZV4280v2").size());
            if (withoutRule.contains(stem))
                continue;
            const QString text = static_cast<QLineEdit*>(it.value()->widget)->text();
            QVERIFY2(!text.isEmpty(), qPrintable(stem));
            ++filled;
        }
        QCOMPARE(filled, 88);
    }
    QVERIFY(catcher.texts.isEmpty());
    // Every editing widget shows what the image holds.
    for (auto it = map->parts.cbegin(); it != map->parts.cend(); ++it) {
        const QString cls = it.value()->widget->metaObject()->className();
        if (cls == "QSpinBox" || cls == "QCheckBox")
            QCOMPARE(map->getPartValue(it.key()),
                     it.value()->inverted ? 1 - map->getBrim(it.value()->position, 1)
                                          : map->getBrim(it.value()->position, it.value()->width));
    }
}

QTEST_MAIN(tst_values)
#include "tst_values.moc"
