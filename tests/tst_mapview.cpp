#include "table_named_model.h"
#include "table_triada_model.h"
#include "testsupport.h"

// The map window's table models: the triad view of the program and the named
// view, on bare windows and on the real forms.
class tst_mapview : public QObject
{
    Q_OBJECT
    std::unique_ptr<MainClass> main;
    std::unique_ptr<mapshow> named; // shares the main window's fields
    std::unique_ptr<mapshow> resized; // shown, laid out by one width after another

    static QTableView* table(mapshow* map) { return map->findChild<QTableView*>("RegisterTable"); }
    static QAbstractItemModel* model(mapshow* map) { return table(map)->model(); }
    static TableTriadaModel* triad(mapshow* map) { return qobject_cast<TableTriadaModel*>(model(map)); }
    // What a cell shows: its text and one colour role, "none" where invalid.
    static QString text(const QAbstractItemModel* m, int row, int column)
    {
        const QVariant v = m->index(row, column).data();
        return v.isValid() ? v.toString() : "none";
    }
    static QString colour(const QAbstractItemModel* m, int row, int column, int role = Qt::BackgroundRole)
    {
        const QVariant v = m->index(row, column).data(role);
        return v.isValid() ? v.value<QColor>().name().toUpper() : "none";
    }
    // Cells given as "row column text" or, with a colour role, as "row column colour".
    static void checkCells(const QAbstractItemModel* m, const QStringList& cells, int role = Qt::DisplayRole)
    {
        for (const QString& c : cells) {
            const int row = c.section(' ', 0, 0).toInt(), column = c.section(' ', 1, 1).toInt();
            QCOMPARE(c.section(' ', 0, 1) + ' ' + (role == Qt::DisplayRole ? text(m, row, column) : colour(m, row, column, role)), c);
        }
    }
    // The cells of a dataChanged spy, as "row,column" for one-cell signals.
    static QStringList cells(const QSignalSpy& spy)
    {
        QStringList list;
        for (const QList<QVariant>& signal : spy) {
            const auto from = signal.at(0).toModelIndex(), to = signal.at(1).toModelIndex();
            list << (from == to ? QString("%1,%2").arg(from.row()).arg(from.column()) : "range");
        }
        return list;
    }
    QObject* widget(const QString& stem) const { return main->firstMap()->parts.value(stem + "_ZV4280v2")->widget; }

private slots:
    void initTestCase()
    {
        zvTestInit();
        main.reset(new MainClass);
        QVERIFY(main->firstMap());
        named.reset(new mapshow("ZV4280v2", 291, nullptr, mapshow::NamedView));
        named->parts = main->firstMap()->parts;
        named->bitOwners = main->firstMap()->bitOwners;
    }
    void cleanupTestCase() { resized.reset(), named.reset(), main.reset(); }

    // Cells as "row column text background" with four registers side by side:
    // guiImage 0 = A5, icImage 3 = 01, cfgImage 104 = FF, guiImage 106 = 80,
    // all old copies refreshed afterwards.
    void triadCells()
    {
        mapshow map("ZV4280v2", 291);
        map.guiImage[0] = 0xA5, map.icImage[3] = 0x01, map.cfgImage[104] = 0xFF, map.guiImage[106] = 0x80;
        map.dropOldGUI(), map.dropOldIC(), map.dropOldCfg();
        triad(&map)->resize(600, 400);
        const QAbstractItemModel* m = model(&map);
        QCOMPARE(m->rowCount(), 162);
        for (const QString c : {"0 0 0 none", "0 27 3 none", "1 0 7 #DDDDDD", "1 7 0 #DDDDDD", "1 8 h #FFFF00",
                 "2 0 1 #DDDDDD", "2 1 0 #FFFFFF", "2 8 A5 #FFFF00", "3 34 1 #DDDDDD", "3 35 01 #FFFF00",
                 "4 8 00 #FFFF00", "5 0 none #FFFFFF", "156 0 104 none", "160 0 1 #DDDDDD", "160 8 FF #FFFF00",
                 "158 18 1 #00BFFF", "158 19 0 #FFFFFF", "158 26 80 #FFFF00", "156 27 - none", "157 27 - #DDDDDD",
                 "158 27 - #DDDDDD", "160 34 - #DDDDDD", "158 35 - #FFFF00", "161 0 none #FFFFFF", "161 27 - #DDDDDD"}) {
            const QModelIndex i = m->index(c.section(' ', 0, 0).toInt(), c.section(' ', 1, 1).toInt());
            QCOMPARE(c.section(' ', 0, 1) + ' ' + text(m, i.row(), i.column()) + ' ' + colour(m, i.row(), i.column()), c);
            QCOMPARE(i.data(Qt::TextAlignmentRole).toInt(), 4);
            QVERIFY(!m->flags(i).testFlag(Qt::ItemIsEditable));
        }
    }

    void triadHeaders()
    {
        mapshow map("ZV4280v2", 291);
        const QAbstractItemModel* m = model(&map);
        triad(&map)->resize(600, 400);
        QStringList vertical;
        for (int section : {0, 1, 2, 3, 4, 5, 6, 158, 161})
            vertical << m->headerData(section, Qt::Vertical).toString();
        QCOMPARE(vertical, QStringList({"Reg", "Bit", "Wr", "Rd", "Cfg", "", "Reg", "Wr", ""}));
        QCOMPARE(m->headerData(0, Qt::Horizontal).toString(), QString());
        QVERIFY(!m->headerData(0, Qt::Vertical, Qt::ToolTipRole).isValid());
        TableTriadaModel otherStyle(table(&map), 2, 291, &map);
        QCOMPARE(otherStyle.headerData(2, Qt::Horizontal).toString(), "Value");
        QCOMPARE(otherStyle.headerData(18, Qt::Horizontal).toString(), "D0");
    }

    // A bit is blue on its own line until its own image is refreshed; register
    // 106 is never refreshed.
    void triadChangedBits()
    {
        mapshow map("ZV4280v2", 291);
        const QAbstractItemModel* m = model(&map);
        triad(&map)->resize(150, 400); // one register per block
        map.setBit(map.guiImage, 13, 1), map.setBit(map.icImage, 13, 1);
        map.setBit(map.guiImage, 105 * 8, 1), map.setBit(map.guiImage, 106 * 8, 1);
        checkCells(m, {"8 5 #00BFFF", "9 5 #00BFFF"}, Qt::BackgroundRole); // register 1, D2, on Wr and Rd
        map.dropOldIC();
        checkCells(m, {"8 5 #00BFFF", "9 5 #DDDDDD"}, Qt::BackgroundRole);
        map.dropOldGUI(); // register 105 is the last refreshed
        checkCells(m, {"8 5 #DDDDDD", "8 8 #FFFF00", "632 0 #DDDDDD", "638 0 #00BFFF"}, Qt::BackgroundRole);
        map.setBit(map.guiImage, 13, 0);
        checkCells(m, {"8 5 #00BFFF"}, Qt::BackgroundRole);
    }

    // "width registers rows": one layout after another of the same shown
    // window, by the table's width. The columns share the table's width less
    // 30, at least one register column stays, and a refresh is one reset
    // that keeps the layout.
    void triadLayout_data()
    {
        QTest::addColumn<QString>("row");
        for (const char* r : {"608 4 162", "1288 8 84", "158 1 642", "1928 12 54", "1908 12 54", "760 5 132", "1000 6 108",
                              "10 1 642", "743 4 162", "608 4 162"})
            QTest::newRow(r) << QString(r);
    }
    void triadLayout()
    {
        QFETCH(QString, row);
        const int width = row.section(' ', 0, 0).toInt(), registers = row.section(' ', 1, 1).toInt(),
                  rows = row.section(' ', 2, 2).toInt();
        if (!resized) {
            resized.reset(new mapshow("ZV4280v2", 291));
            QCOMPARE(model(resized.get())->columnCount(), 9); // before the first layout
            resized->show();
            QVERIFY(QTest::qWaitForWindowExposed(resized.get()));
        }
        QTableView* view = table(resized.get());
        QSignalSpy rowsIn(view->model(), &QAbstractItemModel::rowsInserted),
            rowsOut(view->model(), &QAbstractItemModel::rowsRemoved);
        resized->resize(width, 400);
        QCoreApplication::sendPostedEvents();
        for (const QList<QVariant>& told : rowsIn + rowsOut) // from the first row on
            QCOMPARE(told.at(1).toInt(), 0);
        QCOMPARE(resized->width(), qMax(width, 200)); // no narrower than the form allows
        QSignalSpy reset(view->model(), &QAbstractItemModel::modelReset);
        QSignalSpy changed(view->model(), &QAbstractItemModel::dataChanged);
        resized->refreshRegisterView();
        QCOMPARE(reset.count(), 1);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(view->model()->columnCount(), registers * 9);
        QCOMPARE(view->model()->rowCount(), rows);
        const int share = (view->width() - 30) / (registers * 9);
        QCOMPARE(view->columnWidth(0), share - 1);
        QCOMPARE(view->columnWidth(8), share + 8);
        QCOMPARE(view->columnWidth(registers * 9 - 2), share - 1);
        QCOMPARE(view->columnWidth(registers * 9 - 1), share + 8);
        QCOMPARE(view->rowHeight(0), 15);
        QCOMPARE(view->rowHeight(rows - 1), 15);
        for (int block = 0; block < rows; block += 6) {
            for (int c = 0; c < registers * 9; c += 9)
                QCOMPARE(view->columnSpan(block, c), 9);
            QCOMPARE(view->columnSpan(block + 5, 0), registers * 9);
            QCOMPARE(view->columnSpan(block + 2, 0), 1);
            QCOMPARE(view->rowSpan(block, 0), 1);
        }
        QCOMPARE(text(view->model(), rows - 6, (106 % registers) * 9), "106");
    }

    // A widget's change reports the bit's cell and the register's value cell,
    // in each view; a bit already in place reports nothing.
    void dataChangedCells()
    {
        mapshow* map = main->firstMap();
        triad(map)->resize(600, 400); // registers side by side: 4
        auto* check = qobject_cast<QCheckBox*>(widget("TS_EXE")); // register 9, D0
        auto* spin = qobject_cast<QSpinBox*>(widget("ChA_PLL_RDiv")); // register 21, D4 to D0
        check->setChecked(false), spin->setValue(0);
        QSignalSpy triadSpy(model(map), &QAbstractItemModel::dataChanged);
        check->setChecked(true);
        spin->setValue(5);
        QCOMPARE(cells(triadSpy), QStringList({"14,16", "14,17", "32,16", "32,17", "32,14", "32,17"}));
        triadSpy.clear();
        emit check->stateChanged(check->checkState());
        QCOMPARE(triadSpy.count(), 0);
        // Register 107 has "-" cells in the last block; register 200 none.
        triad(map)->bitChanged(107 * 8);
        triad(map)->bitChanged(200 * 8);
        QCOMPARE(cells(triadSpy), QStringList({"158,27", "158,35"}));

        QSignalSpy namedSpy(model(named.get()), &QAbstractItemModel::dataChanged);
        named->applyPartToImage("TS_EXE_ZV4280v2");
        named->applyPartToImage("ChA_PLL_RDiv_ZV4280v2");
        QCOMPARE(cells(namedSpy), QStringList({"9,17", "9,2", "21,17", "21,2", "21,13", "21,2"}));
        QCOMPARE(named->guiImage[9], quint8(0x01));
        QCOMPARE(named->guiImage[21], quint8(0x05));
    }

    // Names, values, and the fields that own the bits.
    void namedCells()
    {
        const QAbstractItemModel* m = model(named.get());
        QCOMPARE(qMakePair(m->rowCount(), m->columnCount()), qMakePair(291, 20));
        checkCells(m, {"0 0 0", "0 1 Version1", "17 1 ChA_Flo_2", "227 1 ", "290 1 INT_Status_12", "290 0 290",
                       "17 6 ChA_Flo<22>", "19 18 ChA_Flo<0>", "6 10 CLK_EN", "6 4 Unused", "21 10 ChA_PLL_RDiv<4>",
                       "21 18 ChA_PLL_RDiv<0>", "6 2 00", "6 19 00"});
        QCOMPARE(m->index(0, 0).data(Qt::TextAlignmentRole).toInt(), 1);
    }

    void namedHeadersAndColours()
    {
        const QAbstractItemModel* m = model(named.get());
        QStringList headers;
        for (int c = 0; c < 20; ++c)
            headers << m->headerData(c, Qt::Horizontal).toString();
        QCOMPARE(headers, QStringList({"Addr", "Name", "Value", "D7", "D7", "D6", "D6", "D5", "D5", "D4", "D4", "D3",
                                       "D3", "D2", "D2", "D1", "D1", "D0", "D0", "Default"}));
        QCOMPARE(m->headerData(3, Qt::Vertical).toString(), QString());

        named->guiImage[30] = 0x40, named->cfgImage[30] = 0xC3;
        checkCells(m, {"30 0 #FFFFFF", "31 0 #EEEEEE"}, Qt::BackgroundRole);
        // D6 differs from its old copy.
        checkCells(m, {"30 5 #FF6666", "30 6 #FF6666", "30 2 #FF6666", "30 3 none", "30 19 none"}, Qt::ForegroundRole);
        checkCells(m, {"30 2 40", "30 19 C3"});
        named->dropOldGUI(); // the old copies of this view are never refreshed
        checkCells(m, {"30 5 #FF6666"}, Qt::ForegroundRole);
        named->guiImage[30] = 0;
    }

    // "stem column edited bit field": a bit cell edit moves the image and the
    // owning widget.
    void namedEdit()
    {
        QAbstractItemModel* m = model(named.get());
        named->guiImage[6] = 0, named->guiImage[21] = 0, named->setPartValue("ChA_PLL_RDiv_ZV4280v2", named->guiImage);
        for (const QString row : {"CLK_EN 9 1 1 1", "CLK_EN 9 0 0 0", "CLK_EN 9 5 1 1", "CLK_EN 9 -3 0 0", "ChA_PLL_RDiv 15 1 1 2",
                                  "ChA_PLL_RDiv 17 5 1 3", "ChA_PLL_RDiv 15 -3 0 1", "ChA_PLL_RDiv 9 1 1 17"}) {
            const QStringList r = row.split(' ');
            const int reg = r[0] == "CLK_EN" ? 6 : 21, column = r[1].toInt();
            QVERIFY(m->flags(m->index(reg, column)).testFlag(Qt::ItemIsEditable));
            QSignalSpy spy(m, &QAbstractItemModel::dataChanged);
            m->setData(m->index(reg, column), r[2]);
            QCOMPARE(QStringList({r[0], r[1], r[2], text(m, reg, column),
                                  QString::number(named->getBit(named->guiImage, reg * 8 + (column - 3) / 2)),
                                  QString::number(named->getPartValue(r[0] + "_ZV4280v2"))}).join(' '), row.section(' ', 0, 3) + ' ' + r[3] + ' ' + r[4]);
            QCOMPARE(cells(spy).first(), QString("%1,%2").arg(reg).arg(column));
        }
    }
    // Every cell takes an edit, and its column picks the bit by halves from
    // the Value column: the name cell before a bit's value cell writes that
    // bit; a bit without a field stays as it is.
    void namedEditOtherCells()
    {
        QAbstractItemModel* m = model(named.get());
        named->guiImage[6] = 0;
        named->setPartValue("CLK_EN_ZV4280v2", named->guiImage);
        const QByteArray before(reinterpret_cast<const char*>(named->guiImage), 291);
        QSignalSpy spy(m, &QAbstractItemModel::dataChanged);
        m->setData(m->index(6, 3), "1"); // position 48
        m->setData(m->index(0, 0), "1"); // position -1
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(named->guiImage), 291), before);
        QCOMPARE(cells(spy), QStringList({"6,3", "0,0"}));
        QVERIFY(m->flags(m->index(6, 8)).testFlag(Qt::ItemIsEditable));
        m->setData(m->index(6, 8), "1"); // writes D4, CLK_EN's bit
        QCOMPARE(named->guiImage[6], quint8(0x10));
        QCOMPARE(named->getPartValue("CLK_EN_ZV4280v2"), 1u);
    }
};

QTEST_MAIN(tst_mapview)
#include "tst_mapview.moc"
