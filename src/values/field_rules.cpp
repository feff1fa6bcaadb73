// The chain of rules behind every field change, on the forms' state.
#include "field_rules.h"

#include "engine/form_model.h"
#include "engine/register_images.h"
#include "values/tables.h"

#include <QVarLengthArray>

#include <cmath>

// The chain's order is part of its meaning: nested changes (a re-fired
// field comes back through FormModel::change) run inside the rule that
// fired them.

namespace {

const QString kChip = QStringLiteral("_ZV4280v2");
const char* const kChannels[] = {"ChA", "ChB", "ChC"};

QString fixed(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

// One run of the chain: the changed field and the forms it acts on.
struct Rules
{
    Rules(FormModel& m, const QString& k, quint32 v) : model(m), key(k), fieldValue(v)
    {
        for (int at = key.indexOf(kChip); at >= 0; at = key.indexOf(kChip, at + 1))
            chipAt.append(at);
    }

    FormModel& model;
    const QString& key; // the changed field's fieldKey
    quint32 fieldValue; // the code as the image holds it
    QVarLengthArray<int, 2> chipAt; // where the chip word stands in the key

    // A test names a field by its stem (in one or two pieces); it matches
    // when the key contains the stem with the chip word behind it, which is
    // in effect that one key. Every change runs some 130 of these tests, so
    // they look at the key where the chip word stands instead of building
    // the text.
    bool is(QLatin1String a, QLatin1String b = QLatin1String()) const
    {
        for (int at : chipAt)
            if (endsAt(b, at) && endsAt(a, at - b.size()))
                return true;
        return false;
    }
    // The key holds `text` right before position `end`; compared from the
    // back, where keys differ most.
    bool endsAt(QLatin1String text, int end) const
    {
        if (end < text.size())
            return false;
        const QChar* k = key.constData() + end;
        for (int i = text.size() - 1; i >= 0; --i)
            if (*--k != QLatin1Char(text.at(i)))
                return false;
        return true;
    }
    bool is(const char* a, const char* b = "") const { return is(QLatin1String(a), QLatin1String(b)); }
    // The key is exactly this field's.
    bool isExactly(const char* stem) const
    {
        const QLatin1String s(stem);
        return key.size() == s.size() + kChip.size() && key.startsWith(s) && key.endsWith(kChip);
    }

    int fieldOf(const QString& stem) const { return model.indexOf(stem + kChip); }
    bool isKind(int field, FieldKind kind) const { return field >= 0 && model.entry(field).kind == kind; }
    // The object name of a field's widget, of any kind or of one kind.
    QString fieldWidget(const QString& stem) const
    {
        const int f = fieldOf(stem);
        return f >= 0 ? model.entry(f).objectName : QString();
    }
    QString fieldWidget(const QString& stem, FieldKind kind) const
    {
        const int f = fieldOf(stem);
        return isKind(f, kind) ? model.entry(f).objectName : QString();
    }
    QString display(const QString& stem) const { return model.outputObject(stem + kChip); }
    quint32 value(const QString& stem) const
    {
        const int f = fieldOf(stem);
        return f >= 0 ? model.code(f) : 0;
    }
    // A combo box's index; -1 for no combo box.
    int index(const QString& stem) const
    {
        const int f = fieldOf(stem);
        return isKind(f, FieldKind::Combo) ? int(model.widgetValue(f)) : -1;
    }
    bool checked(const QString& stem) const
    {
        const int f = fieldOf(stem);
        return isKind(f, FieldKind::Check) && model.widgetValue(f) != 0;
    }

    // Writes a display; every key a rule shows has one.
    void showOutput(const QString& k, const QString& text, bool estimated = false) const
    {
        model.showOutput(k, text, estimated);
    }
    void show(const QString& text) const { showOutput(key, text); }
    // A calibration table's entry, marked when it is an estimate.
    void showEntry(const QString& k, const CalibrationTable& table, quint32 code, int decimals, const QString& unit) const
    {
        showOutput(k, fixed(table.value(code), decimals) + unit, table.estimated(code));
    }

    void enable(const QString& objectName, bool on) const
    {
        if (!objectName.isEmpty())
            model.setEnabled(objectName, on);
    }
    // A field's widget and, where it has one, its display.
    void enableWithDisplay(const QString& stem, bool on) const
    {
        enable(fieldWidget(stem), on);
        enable(display(stem), on);
    }

    // Re-fires a combo box as if its index had changed, without changing it.
    void refire(const QString& stem) const
    {
        const int f = fieldOf(stem);
        if (isKind(f, FieldKind::Combo))
            model.change(f, int(model.widgetValue(f)));
    }

    // Row 1.
    void amplitudeList() const
    {
        const int amp = fieldOf(QStringLiteral("CLK_AMP"));
        if (!isKind(amp, FieldKind::Combo))
            return;
        const QString ampWidget = model.entry(amp).objectName;
        const quint32 source = value(QStringLiteral("CLK_SOURCE"));
        const quint32 fx = value(QStringLiteral("Fx"));
        const quint32 type = value(QStringLiteral("CLK_OUT_TP"));
        const std::array<QString, 4>* words = nullptr;
        if (type == 0 || type == 3) {
            enable(ampWidget, false);
            return;
        }
        enable(ampWidget, true);
        if (type == 2) {
            words = &lvdsWords;
        } else if (type == 1) {
            quint32 dividedRate = 0;
            if (source <= 2) {
                const quint32 divider = qMax<quint32>(value(QStringLiteral("PLL_CDiv")), 4u);
                dividedRate = value(QLatin1String(kChannels[source]) + QStringLiteral("_Flo")) / divider;
            } else if (source == 3) {
                dividedRate = fx;
            } else if (source == 4) {
                words = &externalWords;
            } else {
                return;
            }
            if (!words)
                words = dividedRate > 49999 ? &highRateWords : &lowRateWords;
        } else {
            return;
        }
        for (int i = 0; i < 4 && i < model.itemCount(amp); ++i)
            model.setItemText(amp, i, words->at(size_t(i)));
    }

    // Row 2; true when the chain ends here.
    bool clockSource() const
    {
        const int cdiv = fieldOf(QStringLiteral("PLL_CDiv"));
        const QString cdivWidget = fieldWidget(QStringLiteral("PLL_CDiv"), FieldKind::Spin);
        if (!cdivWidget.isEmpty() && model.widgetValue(cdiv) == 0)
            model.setValue(cdiv, 4);
        const int type = index(QStringLiteral("CLK_OUT_TP"));
        const bool ampOn = type == 1 || type == 2;
        const bool fixedSource = fieldValue == 3 || fieldValue == 4;
        enable(cdivWidget, !fixedSource);
        enable(fieldWidget(QStringLiteral("CLK_AMP")), ampOn);
        return fixedSource;
    }

    // Rows 3 and 8.
    void samplingInput() const
    {
        const bool lvds = fieldValue == 1;
        enable(fieldWidget(QStringLiteral("FS_IN_LVDS_R")), lvds);
        enable(fieldWidget(QStringLiteral("FS_IN_LVDS_R_ON")), lvds);
        enable(QStringLiteral("FS_IN_LVDS_RLabelG"), lvds);
    }

    // Row 5.
    void clockOutputType() const
    {
        enable(fieldWidget(QStringLiteral("CLK_AMP")), fieldValue == 1);
        enable(fieldWidget(QStringLiteral("CLK_DC")), fieldValue == 1);
        enable(fieldWidget(QStringLiteral("CLK_CMOS_LVL")), fieldValue == 0);
        refire(QStringLiteral("CLK_SOURCE"));
    }

    // Row 7: the DC levels follow the chosen amplitude's own text.
    void dcLevels() const
    {
        const int amp = fieldOf(QStringLiteral("CLK_AMP"));
        const int dc = fieldOf(QStringLiteral("CLK_DC"));
        if (!isKind(amp, FieldKind::Combo) || !isKind(dc, FieldKind::Combo))
            return;
        static const double base[4] = {1.8, 1.95, 2.7, 2.85};
        for (int i = 0; i < 4 && i < model.itemCount(dc); ++i) {
            QString text = model.currentText(amp);
            text.remove(QStringLiteral("mV"), Qt::CaseSensitive);
            text.remove(QLatin1Char('~'), Qt::CaseSensitive);
            const int mv = text.trimmed().toInt();
            const double level = base[i] - mv * 0.00025;
            model.setItemText(dc, i, fixed(level, 2) + QLatin1Char('V'));
        }
    }

    // Gain of channels A to C.
    void showGain(const QString& k, const QString& ch, quint32 code) const
    {
        const Calibration& c = model.calibration();
        if (index(ch + QStringLiteral("_IFA_GC_MD")) == 1 && index(ch + QStringLiteral("_IFA_OT")) == 1)
            showEntry(k, c.ifaGainPercent, code, 1, QStringLiteral("%"));
        else
            showEntry(k, c.ifaGainDb, code, 1, QStringLiteral("dB"));
    }

    // Threshold text of channel D.
    QString thresholdText(quint32 code) const
    {
        code = qMin<quint32>(code, quint32(agcThresholdMv.size() - 1));
        if (index(QStringLiteral("ChD_IFA_OT")) == 1)
            return fixed(code * 0.390625, 1) + QLatin1Char('%');
        const QString text = fixed(agcThresholdMv[code], 0) + QStringLiteral(" mV");
        return text.contains(QLatin1String("-1")) ? QStringLiteral("n/a") : text;
    }

    // A code read from guiImage at a field's own run.
    quint32 imageCode(const QString& stem, qint32 width) const
    {
        const int f = fieldOf(stem);
        return f >= 0 ? model.images().getBrim(model.entry(f).record.position, width) : 0;
    }

    // Row 13: the detector, autoselection and LNA boxes of one channel.
    void lnaWeb(const char* channel) const
    {
        const bool detector = is(channel, "_AAD_ON"), lna = is(channel, "_LNA_ON"),
                   autoSwitch = is(channel, "_AAD_LNA_SW");
        if (!detector && !lna && !autoSwitch)
            return;
        const QLatin1String ch(channel);
        const QString lnaOnStem = ch + QStringLiteral("_LNA_ON");
        const QString autoStem = ch + QStringLiteral("_AAD_LNA_SW");
        const QString lnaOn = fieldWidget(lnaOnStem, FieldKind::Check);
        const QString autoSelect = fieldWidget(autoStem, FieldKind::Check);
        const QString type = fieldWidget(ch + QStringLiteral("_LNA_TP"));
        const QString typeCaption = ch + QStringLiteral("_LNA_TPLabelG");
        auto open = [&](bool on) {
            enable(lnaOn, on);
            const bool typeOn = on && checked(lnaOnStem);
            enable(type, typeOn);
            enable(typeCaption, typeOn);
        };
        if (detector) {
            enable(autoSelect, fieldValue != 0);
            if (checked(autoStem))
                open(fieldValue == 0);
        }
        if (lna) {
            bool on = fieldValue != 0;
            if (checked(autoStem))
                on = !model.isEnabled(autoSelect);
            enable(type, on);
            enable(typeCaption, on);
        }
        if (autoSwitch)
            open(fieldValue == 0);
    }

    // Row 22: the SAS voltages, in the scale of the channel's DAC.
    QString sasVoltage(const QString& ch) const
    {
        if (value(ch + QStringLiteral("_PLL_SAS_DAC_FS")) == 0)
            return fixed(fieldValue * 0.07806451612903226, 2) + QLatin1Char('V');
        return fixed(fieldValue * 0.032258063554763794, 2) + QStringLiteral("*VCC V");
    }
};

} // namespace

void FieldRules::run(FormModel& model, const QString& key, quint32 fieldValue)
{
    const Rules r(model, key, fieldValue);
    const auto stem = [](const char* ch, const char* rest) { return QLatin1String(ch) + QLatin1String(rest); };

    // Output clock and reference.
    for (const char* k : {"CLK_SOURCE", "ChA_Flo", "ChB_Flo", "ChC_Flo", "Fx", "PLL_CDiv", "CLK_OUT_TP"})
        if (r.isExactly(k)) {
            r.amplitudeList();
            break;
        }
    if (r.is("CLK_SOURCE") && r.clockSource())
        return;
    if (r.is("FS_IN_LVDS_MD"))
        r.samplingInput();
    if (r.is("Fx"))
        r.refire(QStringLiteral("CLK_OUT_TP"));
    if (r.is("CLK_OUT_TP"))
        r.clockOutputType();
    if (key.contains(QLatin1String("_Flo_")))
        r.refire(QStringLiteral("CLK_SOURCE"));
    if (r.is("CLK_AMP"))
        r.dcLevels();
    if (r.is("FS_IN_LVDS_MD"))
        r.samplingInput();

    // Row 9: the ADC widgets follow the output type.
    for (const char* ch : kChannels)
        if (r.is(ch, "_IFA_OT")) {
            r.enable(r.fieldWidget(stem(ch, "_ADC_CLK_TP")), fieldValue != 0);
            r.enable(r.fieldWidget(stem(ch, "_IFA_ADC_OL")), fieldValue != 0);
        }
    if (r.is("ChD_IFA_OT")) {
        r.enable(r.fieldWidget(QStringLiteral("ChD_IFA_ADC_CLK_TP")), fieldValue != 0);
        r.enable(r.fieldWidget(QStringLiteral("ChD_IFA_ADC_OL")), fieldValue != 0);
        r.enable(r.fieldWidget(QStringLiteral("ChD_IFA_BUF_OP")), fieldValue == 0);
    }

    // Row 10: gains and thresholds shown anew from the image.
    for (const char* ch : kChannels)
        if (r.is(ch, "_IFA_OT") || r.is(ch, "_IFA_GC_MD"))
            for (const char* g : {"_IFA_I_Gain", "_IFA_Q_Gain"})
                r.showGain(stem(ch, g) + kChip, QLatin1String(ch), r.imageCode(stem(ch, g), 10));
    if (r.is("ChD_IFA_OT") || r.is("ChD_IFA_AGC_MD"))
        for (const char* t : {"ChD_IFA_I_AGC_HL", "ChD_IFA_Q_AGC_HL", "ChD_IFA_I_AGC_LL", "ChD_IFA_Q_AGC_LL"})
            r.showOutput(QLatin1String(t) + kChip, r.thresholdText(r.imageCode(QLatin1String(t), 8)));

    // Rows 11 and 12: antenna status.
    for (const char* ch : kChannels)
        if (r.is(ch, "_LNA1_EN_st"))
            r.show(lnaStateWords[qMin<quint32>(fieldValue, 3)]);
    for (const char* ch : kChannels)
        if (r.is(ch, "_AAD_WORK"))
            r.show(fieldValue == 0 ? QStringLiteral("not connected") : QStringLiteral("connected "));

    // Row 13.
    for (const char* ch : kChannels)
        r.lnaWeb(ch);

    // Row 14: the sidebands that the polyphase filter drops close their cut-off.
    for (const char* ch : kChannels)
        if (r.is(ch, "_PPF_MODE")) {
            r.enableWithDisplay(stem(ch, "_LPF_I_BW_ref"), fieldValue != 1);
            r.enableWithDisplay(stem(ch, "_LPF_Q_BW_ref"), fieldValue != 2);
        }

    // Row 15: dividers are edited by hand in integer-N only.
    for (const char* ch : kChannels)
        if (r.is(ch, "_PLL_DIV_MD")) {
            r.enable(r.fieldWidget(stem(ch, "_PLL_DSM_N")), fieldValue == 0);
            r.enable(r.fieldWidget(stem(ch, "_PLL_RDiv")), fieldValue == 0);
        }

    // Row 16: the gain fields close in "auto" with the analog output.
    for (const char* ch : kChannels)
        if (r.is(ch, "_IFA_GC_MD") || r.is(ch, "_IFA_OT")) {
            const bool on = r.index(stem(ch, "_IFA_GC_MD")) <= r.index(stem(ch, "_IFA_OT"));
            r.enableWithDisplay(stem(ch, "_IFA_I_Gain"), on);
            r.enableWithDisplay(stem(ch, "_IFA_Q_Gain"), on);
        }

    // Rows 17 to 19: gain, cut-off and phase of channels A to C.
    for (const char* ch : kChannels)
        if (r.is(ch, "_IFA_I_Gain") || r.is(ch, "_IFA_Q_Gain"))
            r.showGain(key, QLatin1String(ch), fieldValue);
    for (const char* ch : kChannels)
        if (r.is(ch, "_LPF_I_BW_ref") || r.is(ch, "_LPF_Q_BW_ref"))
            r.show(fixed(lpfBandwidth[qMin<quint32>(fieldValue, 127)], 1) + QStringLiteral(" MHz"));
    for (const char* ch : kChannels)
        if (r.is(ch, "_QF_shift"))
            r.show(fixed(qfShiftDegrees[qMin<quint32>(fieldValue, 63)], 1) + QStringLiteral("°"));

    // Rows 20 to 22, channel by channel: LNA currents, loop filter, SAS.
    for (const char* ch : kChannels) {
        if (r.is(ch, "_LNA1_CC"))
            r.show(fixed(fieldValue * 50 + 250, 0) + QStringLiteral("µA"));
        if (r.is(ch, "_LNA2_CC"))
            r.show(fixed(fieldValue * 50 + 100, 0) + QStringLiteral("µA"));
        if (r.is(ch, "_PLL_LF_C1") || r.is(ch, "_PLL_LF_C2"))
            r.show(fixed(fieldValue * 19.5 + 19.5, 1) + QStringLiteral("pF"));
        if (r.is(ch, "_PLL_LF_R1"))
            r.show(fixed(fieldValue * 2 + 2, 0) + QStringLiteral("kOhm"));
        for (const char* v : {"_PLL_SAS_ADC_OUT", "_PLL_SAS_DAC_IN", "_PLL_SAS_HB", "_PLL_SAS_LB"})
            if (r.is(ch, v))
                r.show(r.sasVoltage(QLatin1String(ch)));
        if (r.is(ch, "_PLL_SAS_ADC_TC")) {
            const double fx = r.value(QStringLiteral("Fx"));
            r.show(fixed(std::pow(2.0, double(fieldValue) + 1) * 64 / fx, 2) + QStringLiteral(" s"));
        }
        if (r.is(ch, "_PLL_SAS_BAND_TC")) {
            const double fx = r.value(QStringLiteral("Fx"));
            r.show(fixed((std::pow(2.0, double(fieldValue)) + 1) * 64 / fx, 2) + QStringLiteral(" s"));
        }
    }

    // Channel D.
    if (r.is("ChD_IFA_AGC_ADC_TC") || r.is("ChD_IFA_AGC_TC"))
        r.show(fixed(std::pow(2.0, double(fieldValue)), 0));
    for (const char* t : {"ChD_IFA_I_AGC_HL", "ChD_IFA_I_AGC_LL", "ChD_IFA_Q_AGC_HL", "ChD_IFA_Q_AGC_LL"})
        if (r.is(t))
            r.show(r.thresholdText(fieldValue));
    if (r.is("ChD_IFA_I_GC") || r.is("ChD_IFA_Q_GC"))
        r.showEntry(key, model.calibration().chdIfaGainDb, fieldValue, 2, QStringLiteral("dB"));
    if (r.is("ChD_IFA_I_GCst") || r.is("ChD_IFA_Q_GCst"))
        r.show(fixed(fieldValue, 0));
    if (r.is("ChD_IFA_AGC_MD")) {
        r.enableWithDisplay(QStringLiteral("ChD_IFA_I_GC"), fieldValue <= 1);
        r.enableWithDisplay(QStringLiteral("ChD_IFA_Q_GC"), fieldValue <= 1);
        for (const char* t : {"ChD_IFA_I_AGC_HL", "ChD_IFA_Q_AGC_HL", "ChD_IFA_I_AGC_LL", "ChD_IFA_Q_AGC_LL"})
            r.enableWithDisplay(QLatin1String(t), fieldValue > 1);
    }
    if (r.is("ChD_RF_AGC_MODE"))
        r.enableWithDisplay(QStringLiteral("ChD_LNA_AGC_PST"), fieldValue == 0);
    // The AGC bound tables hold 56 codes; the six-bit fields reach 63.
    if (r.is("ChD_LNA_AGC_High") || r.is("ChD_LNA_AGC_Low"))
        r.show(fieldValue < chdLnaAgcMv.size() ? fixed(chdLnaAgcMv[fieldValue], 2) + QStringLiteral("mV")
                                               : QStringLiteral("n/a"));
    if (r.is("ChD_LPF_CF"))
        r.showEntry(key, model.calibration().chdLpfCutoff, fieldValue, 1, QStringLiteral(" MHz"));
    if (r.is("ChD_MIX_AGC_High") || r.is("ChD_MIX_AGC_Low"))
        r.show(fieldValue < chdMixAgcMv.size() ? fixed(chdMixAgcMv[fieldValue], 1) + QStringLiteral("mV")
                                               : QStringLiteral("n/a"));
    if (r.is("ChD_PLL_LF_C1") || r.is("ChD_PLL_LF_C2"))
        r.show(fixed(fieldValue * 19.5 + 19.5, 1) + QStringLiteral("pF"));
    if (r.is("ChD_PLL_LF_R1"))
        r.show(fixed(fieldValue * 2 + 2, 0) + QStringLiteral("kOhm"));
    if (r.is("ChD_QF_FM_shift"))
        r.show(fixed(chdQfShiftFm[qMin<quint32>(fieldValue, 63)], 2) + QStringLiteral("°"));
    if (r.is("ChD_QF_LS_shift")) {
        const quint32 flo = r.value(QStringLiteral("ChD_Flo"));
        const quint32 scale = qMin<quint32>(r.value(QStringLiteral("ChD_QF_S_scale")), 3);
        const float s = flo > 1820000u ? chdQfScaleHigh[scale] : chdQfScaleLow[scale];
        // The code less 64 times the single-precision scale is a product in
        // single precision; the rest is worked out in double.
        const float scaled = float(int(fieldValue) - 64) * s;
        const double phase = double(scaled) * 0.015625 + 90.0;
        r.show(fixed(phase, 2) + QStringLiteral("°"));
    }
    if (r.is("ChD_QF_UHF_shift"))
        r.show(fixed(chdQfShiftUhf[qMin<quint32>(fieldValue, 63)], 2) + QStringLiteral("°"));
    if (r.is("ChD_QF_VHF_shift"))
        r.show(fixed(chdQfShiftVhf[qMin<quint32>(fieldValue, 63)], 2) + QStringLiteral("°"));
    if (r.is("ChD_LNA_AGC_PST")) {
        const int band = chdBand(r.value(QStringLiteral("ChD_Flo")));
        r.show(fixed(chdRfGainDb[size_t(band - 1)][qMin<quint32>(fieldValue, 15)], 2) + QStringLiteral("dB"));
    }
    if (r.is("ChD_R_Div"))
        r.show(fieldValue == 0 ? QStringLiteral("unused") : fixed(fieldValue, 0));
    if (r.is("ChD_RF_AGC_DivR"))
        r.show(fieldValue == 0 ? fixed(0, 0) : fixed(std::pow(2.0, double(fieldValue)), 0));
    for (const char* b : {"ChD_SAS_LB_1", "ChD_SAS_LB_2", "ChD_SAS_LB_3", "ChD_SAS_UB_1", "ChD_SAS_UB_2", "ChD_SAS_UB_3"})
        if (r.is(b))
            r.show(fixed(fieldValue * 0.1 + 0.4, 1) + QStringLiteral(" V"));
    if (r.is("ChD_SAS_SB"))
        r.show(fixed(fieldValue, 2) + QStringLiteral("pt"));
    if (r.is("ChD_TRF_RC_regs")) {
        const quint32 code = qMin<quint32>(fieldValue, 15);
        switch (chdBand(r.value(QStringLiteral("ChD_Flo")))) {
        case 5: r.show(QStringLiteral("2340 - 2580")); break;
        case 4: r.show(QStringLiteral("1170 - 1290")); break;
        case 3: r.show(trfBandUhf[code]); break;
        case 2: r.show(trfBandVhf[code]); break;
        default: r.show(trfBandFm[code]); break;
        }
    }

    // Row 34: the temperature sensor, linear over its valid range.
    if (r.is("TS_code")) {
        const float t = float(506.0 - fieldValue * 0.755);
        QString text;
        if (t < -60.0f)
            text = QStringLiteral("not valid");
        else if (t < -40.0f)
            text = QStringLiteral("-50С ATTN");
        else if (t < 100.0f)
            text = fixed(double(t), 1) + QStringLiteral(" °C");
        else if (t < 125.0f)
            text = QStringLiteral("+110С ATTN");
        else
            text = QStringLiteral(" overheat");
        r.showOutput(QStringLiteral("TS_code") + kChip, text);
    }
}
