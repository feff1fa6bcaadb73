#include "engine/form_model.h"
#include "firmware_export.h"
#include "gui_save.h"
#include "hex_format.h"
#include "hex_reader.h"
#include "hex_writer.h"
#include "odd_lines.h"
#include "panel_settings.h"
#include "register_images.h"
#include "register_names.h"
#include "save_filter.h"
#include "enginesupport.h"

// Hex settings files: saves from the forms' state (the comments of every field on them are pinned by
// tst_defaults, which compares the shipped default.hex), what the load commands read from good and
// bad files, and saves that fail (appends: tst_worker).
class tst_hexfile : public QObject
{
    Q_OBJECT
    std::unique_ptr<RegisterImages> map{new RegisterImages(QStringLiteral("ZV4280v2"), 291)};
    std::unique_ptr<FormModel> model{new FormModel(*map)};
    QTemporaryDir dir;

    QString path(const QString& name) const { return dir.filePath(name); }
    // What the load commands find in a file: ";name" for a map line, "n=VV" for a usable register
    // line, "?" for a register line they cannot use, each behind a "!" when the line is no plain line
    // (a lone "!" for any other line); or why they refuse it ("FILE" standing for its path).
    static QString seen(const QString& file)
    {
        QStringList lines, out;
        QString refusal;
        if (!HexReader::readLines(file, &lines, &refusal))
            return refusal.isEmpty() ? "<unreadable>" : refusal.replace(file, "FILE");
        QSet<int> odd;
        for (const OddLines::Line& l : OddLines::find(lines, 291))
            odd << l.number - 1;
        for (int i = 0; i < lines.size(); ++i) {
            const QString& line = lines.at(i), mark = odd.contains(i) ? "!" : "";
            if (HexFormat::classify(line) == HexFormat::LineKind::Map)
                out << mark + ";" + HexFormat::mapName(line);
            else if (HexFormat::classify(line) == HexFormat::LineKind::Register) {
                const auto r = HexFormat::readRegister(line);
                out << mark + (r ? QString("%1=%2").arg(r->number).arg(uint(r->value), 2, 16, QChar('0')).toUpper() : "?");
            } else if (!mark.isEmpty())
                out << mark;
        }
        return out.join(' ');
    }
    // A save of the forms under the panel's flags by name; a flag not named
    // is off, but the status and service registers are kept.
    QString save(const QMap<QString, int>& flags) const
    {
        PanelSettings s;
        s.changesOnly = flags.value("ChangesOnly", 0);
        s.comments = flags.value("HexComment", 0);
        s.statusBits = flags.value("StatusBits", 1);
        s.serviceBits = flags.value("ServiceBits", 1);
        s.allRegisters = flags.value("SaveAll", 0);
        return HexWriter::guiText(GuiSave::take(*model, s));
    }

private slots:
    // The documented example of a full save, registers 9 to 11 at 00, 00, 04, with and without comments; the
    // rest of a save with comments (headings, a comment mark on every register line) is the shipped default.hex
    // that tst_defaults compares.
    void workedExample()
    {
        std::fill_n(map->guiImage, map->registerCount, quint8(0));
        map->guiImage[11] = 4;
        model->push(map->guiImage);
        const QString file = save({{"ChangesOnly", 0}, {"HexComment", 1}});
        const QString example = "//  Temperature sensor \nReg9\t00 //Execute: disabled\n\t   //Mode: single\n"
                                   "//  Clock settings \nReg10\t00 //Clock output type: CMOS\n"
                                   "\t   //Frequency source: PLL \"A\"\nReg11\t04 //C-divider ratio:  4\nReg12\t";
        QVERIFY(file.startsWith(";ZV4280\nReg0\t00 //"));
        QCOMPARE(file.mid(file.indexOf("//  Temperature"), example.size()), example);

        const QString bare = save({{"ChangesOnly", 0}, {"HexComment", 0}});
        QVERIFY(bare.startsWith(";ZV4280\nReg0\t00\n") && bare.endsWith("\nReg106\t00\n"));
        QVERIFY(bare.contains("\nReg8\t00\nReg9\t00\nReg10\t00\nReg11\t04\nReg12\t00\n"));
        QCOMPARE(bare.count('\n'), 108);

        // Changes only: nothing but the map line, then the one register a user changed.
        std::copy_n(map->guiImage, map->registerCount, map->icImage);
        QCOMPARE(save({{"ChangesOnly", 1}, {"HexComment", 1}}), ";ZV4280\n");
        model->setValue(model->indexOf("TS_EXE_ZV4280v2"), 1);
        QCOMPARE(save({{"ChangesOnly", 1}, {"HexComment", 1}}), ";ZV4280\nReg9\t01 //Execute: enabled\n");
        QCOMPARE(save({{"ChangesOnly", 1}, {"HexComment", 0}}), ";ZV4280\nReg9\t01\n");
    }

    // Status registers (ID, release, bulbs) leave a full save when "StatusBits" is off; the service
    // and expert windows hold registers 107 to 290 only, which a save of the GUI reaches with "SaveAll".
    void statusAndServiceRegisters()
    {
        const QVector<bool> status = SaveFilter::statusRegisters(Catalogue::instance()),
                            service = SaveFilter::serviceRegisters(Catalogue::instance());
        for (int r : {0, 1, 2, 80, 81, 145, 290})
            QVERIFY2(status.at(r), qPrintable(QString::number(r)));
        for (int r : {3, 4, 9, 14, 82, 106})
            QVERIFY2(!status.at(r), qPrintable(QString::number(r)));
        QCOMPARE(service.indexOf(true), 107);
        QCOMPARE(service.count(true), 184);

        const QString full = save({{"HexComment", 0}});
        const QString noStatus = save({{"HexComment", 0}, {"StatusBits", 0}});
        QCOMPARE(noStatus.count("\nReg"), 102);
        for (const char* line : {"\nReg0\t", "\nReg1\t", "\nReg2\t", "\nReg80\t", "\nReg81\t"})
            QVERIFY(full.contains(line) && !noStatus.contains(line));
        QCOMPARE(save({{"HexComment", 0}, {"ServiceBits", 0}}), full);
        QCOMPARE(save({{"HexComment", 1}, {"SaveAll", 1}}).count("\nReg"), 291);
    }

    void reader_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("expected");
        QTest::newRow("four equivalent lines") << QByteArray("Reg12 0x5F\nReg12\t5F //text\nReg 12 &5f\nReg12 5F 77\n")
                                               << "12=5F 12=5F 12=5F !12=5F";
        QTest::newRow("indented, trailing blanks") << QByteArray("   Reg3 0A   \n\t\tReg4\t0B\t \n") << "3=0A 4=0B";
        QTest::newRow("lower-case reg") << QByteArray("reg12 5F\nREG12 5F\nReg1 02\n") << "! ! 1=02";
        QTest::newRow("four digits") << QByteArray("Reg7 1234\nReg8\t0x1FF\n") << "!7=34 !8=FF";
        QTest::newRow("comments holding Reg") << QByteArray("//  Reg9 01\n\t   //Reg9 02 & 0x03\n// Reg 5 6\nReg1 02") << "1=02";
        QTest::newRow("map lines") << QByteArray(";\n;ZV4280\n;ZV4280.2\n  ;ZV4280v2 \nReg1 02") << "; ;ZV4280 ;ZV4280v2 ;ZV4280v2 1=02";
        const QString none = "\"FILE\" holds no register line", binary = "\"FILE\" is not a text file";
        QTest::newRow("empty file") << QByteArray() << "\"FILE\" is empty; a settings file holds register lines";
        QTest::newRow("line ends only") << QByteArray("\n\r\n\n") << "\"FILE\" is empty; a settings file holds register lines";
        QTest::newRow("map line and comments only") << QByteArray(";ZV4280\n//  Clock settings \n\t   //Reg40 5A\nReg\n") << none;
        QTest::newRow("unusable register lines")
            << QByteArray("Reg\nReg12\nRegX 5F\nReg12 ZZ\nReg-3 5F\nReg-1 00\nReg99999999999 5F\nReg12 123456789AB\nhi Reg1 2\n")
            << "!? !? !0=5F !12=00 !-3=5F -1=00 !0=5F !12=00 !";
        static const char bytes[] = "\x00\xff\xfe\x01Reg1 1\nReg\x00\n\xc3\x28Reg2 2\nReg5 A1\nReg6 \xff 7\nReg7 5F\x00\n";
        QTest::newRow("binary") << QByteArray(bytes, sizeof bytes - 1) << binary;
        static const char few[] = "Reg5 A1\nReg6 \xff 7\nReg7 5F\x00\nReg8 C3\nReg9 D4\n";
        QTest::newRow("a few lines not UTF-8") << QByteArray(few, sizeof few - 1) << "5=A1 !6=00 !7=00 8=C3 9=D4"; // NUL is no digit
        static const char utf16[] = "\xff\xfeR\0e\0g\0001\0 \0002\0\n\0", bare16[] = "R\0e\0g\0001\0 \0002\0\n\0R\0e\0g\0002\0";
        QTest::newRow("UTF-16") << QByteArray(utf16, sizeof utf16 - 1)
                                << "\"FILE\" is UTF-16 text; a settings file is UTF-8 or plain ASCII";
        QTest::newRow("UTF-16 without a mark") << QByteArray(bare16, sizeof bare16 - 1) << binary;
        QTest::newRow("very long lines") << "Reg5 A1 //" + QByteArray(1 << 18, 'x') + "\n" + QByteArray(1 << 17, ' ')
                                                + "Reg6 B2\nReg7 " + QByteArray(1 << 17, '9') + "\nReg8 C3"
                                         << "5=A1 6=B2 !7=00 8=C3";
        QTest::newRow("over 1 MiB") << "Reg5 A1\n" + QByteArray(HexReader::kLargestFile - 7, '\n')
                                    << "\"FILE\" is larger than 1 MiB; a settings file is a few kilobytes";
        QTest::newRow("CRLF") << QByteArray(";ZV4280\r\nReg1\t02 //a\r\nReg2\t03\r\n") << ";ZV4280 1=02 2=03";
        QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF;ZV4280\nReg1 02") << ";ZV4280 1=02";
    }
    void reader()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, expected);
        QVERIFY(writeFile(path("read.hex"), file));
        QCOMPARE(seen(path("read.hex")), expected);
    }
    // A save that runs out of room says so and leaves the old file byte for byte: a new file is never
    // committed, an append is cut back, a file written over in place gets its old bytes back; when even
    // they do not fit, the message says that the file is damaged.
    void fullDisk_data()
    {
        QTest::addColumn<bool>("append");
        QTest::addColumn<bool>("inPlace");
        QTest::addColumn<int>("oldSize");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("replaced") << false << false << 1000 << "the file is as it was";
        QTest::newRow("appended") << true << false << 1000 << "the file is as it was";
        QTest::newRow("written in place") << false << true << 1000 << "the file is as it was";
        QTest::newRow("in place, no room for the old bytes")
            << false << true << 3000 << "its old content could not be put back: the file is damaged";
    }
    void fullDisk()
    {
        QFETCH(bool, append);
        QFETCH(bool, inPlace);
        QFETCH(int, oldSize);
        QFETCH(QString, outcome);
        const QString file = path("full.hex");
        const QByteArray old = ";ZV4280\n" + QByteArray(oldSize - 8, '/');
        QVERIFY(writeFile(file, old));
        HexWriter writer(file, append, inPlace);
        QVERIFY(writer.open());
        limitFileSize(2048);
        writer.write(QString(5000, 'x'));
        const bool committed = writer.commit();
        limitFileSize(-1);
        QVERIFY(!committed);
        QCOMPARE(writer.errorText(), "\"" + file + "\" could not be written (File too large); " + outcome);
        QCOMPARE(readFile(file) == old, !outcome.contains("damaged"));
    }

    // A save that fails, or is dropped half-way as a crash would drop it, leaves the old file byte for byte.
    void failedSaveKeepsOldFile()
    {
        const QByteArray old = ";ZV4280\nReg0\t12 //600µA\n";
        QDir(dir.path()).mkpath("keep/taken.hex");
        const QString oldFile = path("keep/old.hex");
        QVERIFY(HexWriter::writeFile(oldFile, old, false));
        const QString text = ";ZV4280\nReg0\t34\n";
        for (bool append : {false, true}) {
            QVERIFY(!HexWriter::writeFile(path("keep/taken.hex"), text, append)); // a directory in the way
            QVERIFY(!HexWriter::writeFile(oldFile + "/x.hex", text, append));     // a path under a file
        }
        {
            HexWriter writer(oldFile, false);
            QVERIFY(writer.open());
            QVERIFY(writer.write(text));
        }
        QCOMPARE(readFile(oldFile), old);
        QCOMPARE(QDir(path("keep")).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList({"old.hex", "taken.hex"}));
        QVERIFY(QFileInfo(path("keep/taken.hex")).isDir());
    }

    // The exports for firmware: zlib's CRC-32 over the register writes, pauses left out; the C header
    // compiles as C99 with every warning an error, alone and used; a changes-only export keeps a pause
    // only before a register that stays.
    void firmwareExport()
    {
        QCOMPARE(FirmwareExport::crc32("123456789"), 0xCBF43926u);
        const QVector<HexEntries::Entry> entries{{}, {21, 0x2F}, {9, 0x05}, {}, {290, 0xFF}};
        QCOMPARE(FirmwareExport::writtenPairs(entries), QByteArray::fromHex("00152F0009050122FF"));
        QCOMPARE(HexEntries::changesFrom(entries, QByteArray(291, 0x05)),
                 (QVector<HexEntries::Entry>{{}, {21, 0x2F}, {}, {290, 0xFF}}));
        FirmwareExport::Header header;
        header.source = "odd */ name.hex";
        const QString c = FirmwareExport::text(FirmwareExport::Format::C, entries, header);
        QVERIFY(writeFile(path("zv.h"), c.toUtf8()));
        QVERIFY(writeFile(path("main.c"), "#include \"zv.h\"\nint main(void) { return ZV4280_SETTINGS_COUNT == 5 &&"
                                          " zv4280_settings[0].reg == ZV4280_PAUSE && zv4280_settings[4].value == 0xFF"
                                          " && ZV4280_SETTINGS_CRC32 == " + QByteArray::number(FirmwareExport::crc32(
                                              FirmwareExport::writtenPairs(entries))) + "u ? 0 : 1; }\n"));
        QCOMPARE(QProcess::execute("cc", {"-std=c99", "-Wall", "-Werror", "-x", "c", "-c", path("zv.h"), "-o", path("zv.o")}), 0);
        QCOMPARE(QProcess::execute("cc", {"-std=c99", "-Wall", "-Werror", path("main.c"), "-o", path("main")}), 0);
        QCOMPARE(QProcess::execute(path("main"), {}), 0);
        const QStringList csv = FirmwareExport::text(FirmwareExport::Format::Csv, entries, header).split('\n');
        QCOMPARE(csv.mid(0, 2), (QStringList{"register,name,value", "21," + registerNames.at(21) + ",0x2F"}));
        QCOMPARE(csv.size(), 5);
        const QJsonObject json = QJsonDocument::fromJson(FirmwareExport::text(FirmwareExport::Format::Json, entries,
                                                                              header).toUtf8()).object();
        QCOMPARE(json.value("crc32").toDouble(), double(FirmwareExport::crc32(FirmwareExport::writtenPairs(entries))));
        QCOMPARE(json.value("registers").toArray().size(), 3);
    }
};

QTEST_GUILESS_MAIN(tst_hexfile)
#include "tst_hexfile.moc"
