#include "bench_menu.h"
#include "catalogue.h"
#include "field_finder.h"
#include "field_search.h"
#include "testsupport.h"
#include "ui_MainClass.h"
#include "windows.h"

// The register catalogue kept under tests/data, the field catalogue made
// from the forms at build time, and every window built as the program builds
// it: the three agree.
class tst_catalogue : public QObject
{
    Q_OBJECT

    QJsonObject tables;
    const Catalogue& catalogue = Catalogue::instance();
    MainClass* main = nullptr;
    mapshow* map = nullptr;

private slots:
    void initTestCase()
    {
        zvTestInit();
        QFile file(QStringLiteral(ZV_TEST_DATA "/register_catalogue.json"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        tables = QJsonDocument::fromJson(file.readAll()).object();
        QCOMPARE(tables.value("fields").toArray().size(), 618);
        QCOMPARE(tables.value("expressions").toArray().size(), 103);
        ModalCatcher catcher;
        main = new MainClass;
        QVERIFY2(catcher.texts.isEmpty(), qPrintable(catcher.texts.join(", ")));
        QCOMPARE(main->maps.size(), 1);
        map = main->firstMap();
    }

    void cleanupTestCase() { delete main; }

    // No widget is built for this.
    void catalogueHoldsTheRegisterMap()
    {
        const QMap<QString, FieldKind> kinds = {{"check", FieldKind::Check}, {"combo", FieldKind::Combo},
            {"spin", FieldKind::Spin}, {"lamp", FieldKind::Bulb}, {"read", FieldKind::Readout}};
        QCOMPARE(catalogue.fields().size(), 618);
        QCOMPARE(catalogue.displays().size(), 103);
        QCOMPARE(catalogue.registerCount(), 291u);
        QCOMPARE(catalogue.chipName(), QStringLiteral("ZV4280v2"));
        int bits = 0;
        for (const QJsonValue& v : tables.value("fields").toArray()) {
            const QJsonObject f = v.toObject();
            const QString key = f.value("name").toString() + "_ZV4280v2", form = f.value("form").toString();
            const FieldEntry* e = catalogue.field(key);
            QVERIFY2(e && catalogue.fieldByObjectName(e->objectName) == e, qPrintable(key));
            const int position = f.value("reg").toInt() * 8 + 7 - f.value("msb").toInt(), width = f.value("width").toInt();
            QCOMPARE(e->objectName, QStringLiteral("ZV_%1_%2_%3%4").arg(key).arg(position).arg(width)
                                        .arg(f.value("inverted").toBool() ? "_I" : ""));
            QCOMPARE(e->record.position, position);
            QCOMPARE(e->record.width, width);
            QCOMPARE(e->record.inverted, f.value("inverted").toBool());
            QVERIFY2(e->kind == kinds.value(f.value("kind").toString()), qPrintable(key));
            QCOMPARE(e->window, form == "MainClass" ? "mainWindow" : form);
            QCOMPARE(QJsonArray::fromStringList(e->items), f.value("items").toArray());
            if (!f.value("group").toString().isEmpty())
                QCOMPARE(e->group, f.value("group").toString());
            bits += width;
        }
        QCOMPARE(bits, 1714); // no two fields share a bit
        for (const QJsonValue& v : tables.value("expressions").toArray()) {
            const QJsonObject x = v.toObject();
            const QString name = x.value("key").toString(), form = x.value("form").toString();
            const DisplayEntry* d = catalogue.display(name.left(name.indexOf("_Expression")));
            QVERIFY2(d && d->objectName == name, qPrintable(name));
            QCOMPARE(d->window, form == "MainClass" ? "mainWindow" : form);
            QCOMPARE(d->group, x.value("group").toString());
            // Beside the spin box of its field, whose location its tooltip tells.
            const FieldEntry* f = catalogue.field(d->key);
            QVERIFY2(f && f->kind == FieldKind::Spin && f->display == name && d->tooltipOwner == f->objectName,
                     qPrintable(name));
        }
        QVERIFY(!catalogue.field("ID") && catalogue.indexOf("ZV_ID_ZV4280v2_0_13") < 0
                && !catalogue.fieldByObjectName("ID_ZV4280v2") && !catalogue.display("ID_ZV4280v2")
                && !catalogue.caption("ID"));
    }

    // What the scan finds, and the windows built alone as their forms make
    // them (the scan and the default state change ranges, the rules items).
    void scanFindsTheCatalogue()
    {
        QWidget holder;
        auto* mainAlone = new QMainWindow(&holder);
        Ui::MainClass form;
        form.setupUi(mainAlone);
        QMap<QString, QWidget*> alone = {{"mainWindow", mainAlone}};
        for (QWidget* w : QList<QWidget*>{new dockA(&holder), new dockB(&holder), new dockC(&holder),
                 new dockD(&holder), new dockMain(&holder), new GrAllSS(&holder), new GrGenServ(&holder),
                 new GrSChA(&holder), new GrSChB(&holder), new GrSChC(&holder), new GrSChD(&holder)})
            alone.insert(w->objectName(), w);
        auto twin = [&](const QString& window, const QString& name) {
            return alone.contains(window) ? alone.value(window)->findChild<QWidget*>(name) : nullptr;
        };
        // The last child of the widget's parent whose object name holds `text`,
        // as saved comments find a caption.
        auto lastSibling = [](const QObject* w, const QString& text) {
            const QObject* found = nullptr;
            for (const QObject* c : w->parent()->children())
                found = c->objectName().contains(text) ? c : found;
            return found;
        };
        auto flag = [](bool b) { return QString::number(b); };
        // Tab, group box title and name, own enabled state and the ancestors'.
        auto where = [&](const QWidget* t) {
            QString tab, group, groupName;
            for (const QWidget* o = t->parentWidget(); o; o = o->parentWidget()) {
                auto* box = qobject_cast<const QGroupBox*>(o);
                if (box && groupName.isEmpty()) {
                    group = box->title();
                    groupName = box->objectName();
                }
                // A tab's page stands in the tab widget's stack.
                auto* tabs = qobject_cast<QTabWidget*>(o->parentWidget() ? o->parentWidget()->parentWidget() : nullptr);
                if (tabs && tab.isEmpty())
                    tab = tabs->tabText(tabs->indexOf(const_cast<QWidget*>(o)));
            }
            return QStringList{tab, group, groupName, flag(!t->testAttribute(Qt::WA_ForceDisabled)),
                               flag(t->parentWidget()->isEnabled())};
        };

        QStringList keys;
        for (const FieldEntry& e : catalogue.fields())
            keys << e.record.name;
        QCOMPARE(keys, map->parts.keys());
        for (const FieldEntry& e : catalogue.fields()) {
            const part* p = map->parts.value(e.record.name);
            auto* w = static_cast<QWidget*>(p->widget);
            const QByteArray key = e.record.name.toLatin1();
            QCOMPARE(w->objectName(), e.objectName);
            QVERIFY2(p->positions == e.record.positions && p->widths == e.record.widths
                         && p->inverted == e.record.inverted && p->chip == e.record.chip, key);
            QVERIFY2(fieldKindOf(w->metaObject()->className()) == e.kind, key);
            QVERIFY2(main->windows.value(e.window)->isAncestorOf(w), key);
            QCOMPARE(w->toolTip(), buildToolTip(e.record));
            if (e.kind == FieldKind::Spin) // the field's width bounds it, not the box
                QCOMPARE(w->property("maximum").toInt(), 2147483647);

            const QWidget* t = twin(e.window, e.objectName);
            QVERIFY2(t, key);
            QCOMPARE(where(t), (QStringList{e.tab, e.group, e.groupName, flag(e.enabled), flag(e.ancestorsEnabled)}));
            const QObject* caption = lastSibling(t, e.record.name.left(e.record.name.lastIndexOf('_')) + "LabelG");
            QCOMPARE(caption ? caption->property("text").toString() : QString(), e.caption);
            const QObject* display = lastSibling(t, e.record.name + "_Expression");
            QCOMPARE(display ? display->objectName() : QString(), e.display);
            QCOMPARE(e.kind == FieldKind::Check ? t->property("text").toString() : QString(), e.checkText);
            QStringList items;
            if (auto* combo = qobject_cast<const QComboBox*>(t))
                for (int i = 0; i < combo->count(); ++i)
                    items << combo->itemText(i);
            QCOMPARE(items, e.items);
            if (auto* spin = qobject_cast<const QSpinBox*>(t))
                QCOMPARE(qMakePair(spin->minimum(), spin->maximum()), qMakePair(e.minimum, e.maximum));
        }

        int displays = 0, shown = 0;
        for (auto it = main->outputs.cbegin(); it != main->outputs.cend(); ++it) {
            auto* w = qobject_cast<QLineEdit*>(it.value()->widget);
            const QByteArray key = it.key().toLatin1();
            if (!it.value()->widget->objectName().endsWith("_Expression")) { // a field that only shows
                const FieldEntry* f = catalogue.field(it.key());
                QVERIFY2(f && (f->kind == FieldKind::Bulb || f->kind == FieldKind::Readout), key);
                ++shown;
                continue;
            }
            ++displays;
            const DisplayEntry* d = catalogue.display(it.key());
            QVERIFY2(w && w->isReadOnly() && d && d->objectName == w->objectName(), key);
            const std::optional<part> owner = parseFieldName(d->tooltipOwner);
            QCOMPARE(w->toolTip(), owner ? buildToolTip(*owner) : QString());
            const QWidget* t = twin(d->window, d->objectName);
            QVERIFY2(t && t->property("text").toString() == d->text, key);
            QStringList place = where(t);
            place.removeAt(2);
            QCOMPARE(place, (QStringList{d->tab, d->group, flag(d->enabled), flag(d->ancestorsEnabled)}));
        }
        QCOMPARE(displays, catalogue.displays().size());
        QCOMPARE(shown, 78);

        int captions = 0;
        for (const QWidget* window : qAsConst(alone))
            for (const QObject* o : window->findChildren<QObject*>())
                captions += o->objectName().endsWith("LabelG") || o->objectName().endsWith("Lab");
        QCOMPARE(catalogue.captions().size(), captions);
        for (const CaptionEntry& c : catalogue.captions()) {
            const QWidget* t = twin(c.window, c.objectName);
            QVERIFY2(t && t->property("text").toString() == c.text && where(t).at(3) == flag(c.enabled)
                         && catalogue.caption(c.objectName) == &c, qPrintable(c.objectName));
        }

        QCOMPARE(map->registerCount, catalogue.registerCount());
        QCOMPARE(map->bitOwners.size(), 1714);
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

    // Each expert window's button opens it and closes it again (the status
    // bulbs open the docks in the end-to-end tests).
    void expertWindowsOpenAndClose()
    {
        for (const QString name : {"GrSChA", "GrSChB", "GrSChC", "GrSChD", "GrGenServ", "GrAllSS"}) {
            auto* button = qobject_cast<QPushButton*>(main->findWidget("Button" + name));
            QVERIFY2(button && !main->windows.value(name)->isVisible(), qPrintable(name));
            for (bool open : {true, false}) {
                button->click();
                QCOMPARE(main->windows.value(name)->isVisible(), open);
            }
        }
    }

    // Ctrl+F: hits by name, caption or location, best first; choosing one brings it before the user,
    // on a tab not shown or in an expert window still closed.
    void findField()
    {
        auto hits = [this](const QString& text) {
            QStringList names;
            for (int f : FieldSearch::match(catalogue, text))
                names << FieldSearch::shortName(catalogue.fields().at(f));
            return names.join(' ');
        };
        QVERIFY(hits("").isEmpty());
        QCOMPARE(hits("reg21 <d4>"), "ChA_PLL_RDiv");
        QVERIFY(hits("R-DIVIDER RATIO").startsWith("ChA_PLL_RDiv ChB_PLL_RDiv ChC_PLL_RDiv"));
        QVERIFY(hits("chd lna_s").startsWith("ChD_LNA_S_EN"));
        for (const QString name : {"ZV_ChB_PLL_RDiv_ZV4280v2_347_5", "ZV_ChD_LNA_S_EN_ZV4280v2_1827_1"}) {
            QWidget* w = main->findWidget(name);
            QVERIFY2(w && !w->isVisible(), qPrintable(name));
            QVERIFY(main->tools->finder->go(catalogue.indexOf(catalogue.fieldByObjectName(name)->record.name)));
            QVERIFY(w->isVisible() && w->window()->focusWidget() == w && w->property("findMark").toBool());
            QTRY_VERIFY(!w->property("findMark").toBool());
            w->window()->hide();
        }
    }
};

QTEST_MAIN(tst_catalogue)
#include "tst_catalogue.moc"
