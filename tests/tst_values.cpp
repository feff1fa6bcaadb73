#include "engine/form_model.h"
#include "engine/image_compare.h"
#include "register_images.h"
#include "values/tables.h"
#include "values/calibration.h"
#include "enginesupport.h"

// The physical-value rules on the forms' state alone; rows share one model, so each sets what its rule reads.
class tst_values : public QObject
{
    Q_OBJECT
    RegisterImages images{QStringLiteral("ZV4280v2"), 291};
    std::unique_ptr<FormModel> model;

    int field(const QString& stem) const { return model->indexOf(stem + "_ZV4280v2"); }
    quint32 image(const QString& stem) const { return RegisterImages::fieldValue(model->entry(field(stem)).record, images.guiImage); }
    QString display(const QString& stem) const { return model->outputObject(stem + "_ZV4280v2"); }
    // What a display shows; a combo box without one shows its items.
    QString shown(const QString& stem) const
    {
        return display(stem).isEmpty() ? model->items(field(stem)).join(',') : model->text(display(stem));
    }
    // Sets fields as a user would ("stem=code;..."); a field already at the
    // value is fired by hand, as the end of a read does it.
    void set(const QString& assignments)
    {
        for (const QString& a : assignments.split(';', Qt::SkipEmptyParts)) {
            const int f = field(a.section('=', 0, 0)), v = a.section('=', 1).toInt();
            QVERIFY2(f >= 0, qPrintable(a));
            model->widgetValue(f) == v ? model->change(f, model->entry(f).kind == FieldKind::Check ? 2 * v : v)
                                       : model->setValue(f, v);
        }
    }

private slots:
    void initTestCase() { model.reset(new FormModel(images)); }

    // "stem good bad kept": a frequency too high is refused, the box restored; other boxes are cut to the field.
    void guard()
    {
        for (const QString row : {"ChA_Flo 8388607 8388608 8388607", "ChD_Flo 200000 8388608 200000",
                                  "Fx 65535 65536 65535", "Fx 16000 65536 16000", "ChA_PLL_RDiv 7 40 31"}) {
            const QStringList r = row.split(' ');
            QVERIFY(model->maximum(field(r[0])) >= r[2].toInt()); // the bad value reaches the rule
            set(r[0] + "=" + r[1]);
            QCOMPARE(image(r[0]), r[1].toUInt());
            model->setValue(field(r[0]), r[2].toInt());
            QCOMPARE(QString("%1 %2 %3 %4").arg(r[0], r[1], r[2]).arg(model->widgetValue(field(r[0]))), row);
            QCOMPARE(image(r[0]), r[3].toUInt());
        }
    }

    // The displays of the fields (tests/data/value_displays.txt): fields set, then what a display shows.
    void displays_data()
    {
        QTest::addColumn<QString>("row");
        for (const QString& row : dataRows("value_displays.txt"))
            QTest::newRow(qPrintable(row)) << row;
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
        // Steps from the rows of tests/data/value_enabling.txt, one step an item of the box.
        for (const QString& web : dataRows("value_enabling.txt"))
            for (const char* ch : {"ChA", "ChB", "ChC"}) {
                const QString row = QString(web).replace("ChX", ch), box = row.section('|', 0, 0).section(';', -1);
                QStringList steps;
                for (int item = 0; item < model->itemCount(field(box)); ++item) {
                    QStringList widgets;
                    for (const QString& w : row.section('|', 1).split(' '))
                        widgets << (w.section(':', 1).contains(QString::number(item)) ? "" : "!") + w.section(':', 0, 0);
                    steps << QString("%1=%2|%3").arg(row.section('|', 0, 0)).arg(item).arg(widgets.join(' '));
                }
                QTest::newRow(qPrintable(row.section('|', 0, 0))) << steps;
                if (!web.contains("ChX"))
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
                const QString object = field(stem) >= 0 ? model->entry(field(stem)).objectName : stem;
                QVERIFY2(model->isEnabled(object) == open, qPrintable(step + ": " + stem));
                QVERIFY2(display(stem).isEmpty() || model->isEnabled(display(stem)) == open, qPrintable(step + ": " + stem));
            }
        }
    }

    // The tables known in full (tests/data/value_tables.txt), code by code through the displays.
    void tables_data()
    {
        QTest::addColumn<QString>("row");
        for (const QString& row : dataRows("value_tables.txt"))
            QTest::newRow(qPrintable(row.section('|', 0, 1))) << row;
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

    // A display shown from an estimate is marked so; a known or measured entry is not.
    void estimatesMarked()
    {
        const struct { const char* set; const char* field; bool estimated; } rows[] = {
            {"ChA_IFA_GC_MD=0;ChA_IFA_OT=0;ChA_IFA_I_Gain=975", "ChA_IFA_I_Gain", false},
            {"ChA_IFA_I_Gain=976", "ChA_IFA_I_Gain", true}, {"ChA_IFA_GC_MD=1;ChA_IFA_OT=1", "ChA_IFA_I_Gain", true},
            {"ChA_IFA_I_Gain=1023", "ChA_IFA_I_Gain", false}, {"ChD_IFA_Q_GC=31", "ChD_IFA_Q_GC", false},
            {"ChD_IFA_Q_GC=30", "ChD_IFA_Q_GC", true}, {"ChD_LPF_CF=17", "ChD_LPF_CF", true},
            {"ChD_LPF_CF=16", "ChD_LPF_CF", false}};
        for (const auto& row : rows) {
            set(row.set);
            QVERIFY2(model->estimated(display(row.field)) == row.estimated, row.set);
        }
        QTemporaryDir dir;
        Calibration measured;
        QVERIFY(writeFile(dir.filePath("c.csv"), "table,index,value\nchdLpfCutoff,17,3.5\n"));
        QCOMPARE(measured.load(dir.filePath("c.csv")), QString());
        model->setCalibration(measured);
        set("ChD_LPF_CF=17");
        model->setCalibration(Calibration());
        QCOMPARE(shown("ChD_LPF_CF"), QStringLiteral("3.5 MHz"));
        QVERIFY(!model->estimated(display("ChD_LPF_CF")));
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
        images.writeField(model->entry(field("ChB_IFA_I_Gain")).record, 960);
        set("ChB_IFA_GC_MD=0");
        QCOMPARE(shown("ChB_IFA_I_Gain"), QStringLiteral("59.2dB"));
    }

    // Two images in field terms: a changed field, one that only displays, bits no field covers as their
    // register; a register one side does not know is left out; the forms shown stay as they are.
    void compareImages()
    {
        const QByteArray forms(reinterpret_cast<const char*>(images.guiImage), int(images.registerCount));
        QByteArray a(int(images.registerCount), 0), b = a;
        b[21] = char(0x8F), b[2] = 0x08, b[11] = 0x02; // a C-divider below its box's minimum shows as it is
        QStringList rows;
        for (const ImageDifference& d : ImageCompare::compare(a, b, model->calibration()))
            rows << QStringList{d.name, d.caption, d.location, QString::number(d.codeA), d.textA,
                                QString::number(d.codeB), d.textB}.join('|');
        QCOMPARE(rows, (QStringList{"ChA_AOK||Reg2 <D3>|0|0|1|1", "PLL_CDiv|C-divider ratio|Reg11 <D7-D0>|0|0|2|2",
                                    "ChA_PLL_RDiv|R-divider ratio|Reg21 <D4-D0>|0|0|15|15",
                                    "ChA_RDIV||Reg21|0|0x00|143|0x8F"}));
        QVector<bool> known(a.size(), true);
        known[21] = false;
        QCOMPARE(ImageCompare::compare(a, b, model->calibration(), known).size(), 2);
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(images.guiImage), int(images.registerCount)), forms);
    }
};

QTEST_GUILESS_MAIN(tst_values)
#include "tst_values.moc"
