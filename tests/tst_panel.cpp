#include "boardsupport.h"
#include "testsupport.h"
#include "service_block.h"
#include "usb_link.h"

// The service panel with simulated boards on the bus.
class tst_panel : public QObject
{
    Q_OBJECT
    std::unique_ptr<zvsim::Testbed> bus;
    std::unique_ptr<service_block> panel;
    template <class T = QWidget> T* w(const QString& name) const { return panel->findChild<T*>(name); }

private slots:
    void initTestCase()
    {
        zvTestInit(true);
        if (!zvsim::Testbed::available())
            QSKIP("needs umockdev-wrapper");
    }
    void init() { bus.reset(new zvsim::Testbed), panel.reset(new service_block); }
    // Every test lets go of each board as often as it took it.
    void cleanup()
    {
        const QString unreleased = bus->unreleased();
        panel.reset(), bus.reset();
        QCOMPARE(unreleased, QString());
    }

    void startValuesAndTexts()
    {
        const QMap<QString, int> expected = {{"interfaceCheck", 0}, {"currentInterface", -1}, {"speedCom", 5},
            {"ReadStyle", 2}, {"WriteStyle", 1}, {"RepeatRead", 0}, {"AutoPause", 0}, {"ChangesOnly", 1},
            {"InteractiveRefresh", 1}, {"PauseTimer", 200}, {"HexComment", 0}, {"MergeFile", 0},
            {"ConfigCheck", 1}, {"StatusBits", 1}, {"ServiceBits", 1}, {"SaveAll", 0}, {"RegisterNumber", 0}};
        QCOMPARE(panel->settings, expected);
        QVERIFY(panel->panelSettings() == PanelSettings()); // what zv4280ctl starts with
        QCOMPARE(panel->windowTitle(), QStringLiteral("Service settings"));
        QCOMPARE(panel->size(), QSize(330, 300));
        for (const char* n : {"Button_ICFILE", "GrRWRegister", "flag_AutoPause", "flag_ReadStyle", "text_read",
                              "flag_WriteStyle", "text_write", "flag_ServiceBits", "flag_StatusBits",
                              "flag_ConfigCheck", "Info", "flag_RepeatRead", "flag_speedCom", "label_TB"})
            QVERIFY2(w(n)->isHidden(), n);
        QVERIFY(!w("flag_currentInterface")->isHidden() && !w("search_interface")->isHidden());
        QVERIFY(w("Info")->toolTip().contains("<p>5 - не выбран интерфейс</p>")); // it has no translation
        w<QSpinBox>("flag_PauseTimer")->setValue(750);
        QCOMPARE(panel->panelSettings().writePauseMs, 750);
        w<QCheckBox>("flag_SaveAll")->setChecked(true);
        QVERIFY(panel->panelSettings().allRegisters);
    }

    // Two boards with different release codes: each selection applies to the next access.
    void searchAndSelection()
    {
        zvsim::BoardConfig first{0x2976, 3, 1, 10}, second{0x2976, 7, 1, 6};
        bus->chip(bus->addBoard(first)).setRelease(2), bus->chip(bus->addBoard(second)).setRelease(3);
        auto* devices = w<QComboBox>("flag_currentInterface");
        w<QPushButton>("search_interface")->click();
        QVERIFY(devices->count() == 2 && devices->findText("2976 3 1 a ") >= 0);
        for (int i : {0, 1, 0}) {
            devices->setCurrentIndex(i);
            QCOMPARE(panel->usb->selectedKey, devices->currentText());
            quint8 value = 0;
            QVERIFY(panel->usb->readRegister(1, &value));
            QCOMPARE(value & 7, devices->currentText() == QStringLiteral("2976 7 1 6 ") ? 3 : 2);
        }
    }

    void bitRow()
    {
        auto* spin = w<QSpinBox>("SpinRegisterValue");
        QCOMPARE(spin->displayIntegerBase(), 16);
        for (int value : {0, 1, 0x80, 0xA5, 0xFF}) {
            spin->setValue(value ^ 0xFF), spin->setValue(value);
            for (int b = 0; b < 8; ++b)
                QCOMPARE(w<QCheckBox>(QString("cbxRegByte%1").arg(b))->isChecked(), bool(value & (1 << b)));
            w<QCheckBox>("cbxRegByte3")->setChecked(!(value & 8));
            QCOMPARE(spin->value(), value ^ 8);
        }
    }

    // With no board the register buttons show a message; with one, Read
    // shows the register's value and Write sends the value of the bit boxes.
    void registerButtons()
    {
        ModalCatcher catcher;
        auto* value = w<QSpinBox>("SpinRegisterValue");
        auto click = [this](const char* n) { w<QPushButton>(n)->click(); };
        value->setValue(0x21);
        click("ButtonReadRegister"), click("ButtonWriteRegister");
        QCOMPARE(value->value(), 0x21);
        QCOMPARE(catcher.texts, QStringList({"USB interface error 0", "USB interface error 33"}));
        zvsim::SimulatedChip& chip = bus->chip(bus->addBoard());
        for (auto [reg, held, asked] : {std::tuple{120, 0x1D, 0xB4}, {290, 0x61, 0x0E}}) {
            chip.setReg(reg, quint8(held));
            w<QSpinBox>("flag_RegisterNumber")->setValue(reg);
            click("ButtonReadRegister");
            QCOMPARE(value->value(), held);
            for (int b = 0; b < 8; ++b)
                w<QCheckBox>(QString("cbxRegByte%1").arg(b))->setChecked(asked & (1 << b));
            bus->clearWireLog();
            click("ButtonWriteRegister");
            QCOMPARE(sentFrames(*bus), QList<QByteArray>({QByteArray::fromHex("1503") + char(reg >> 8) + char(reg) + char(asked)}));
        }
        QCOMPARE(catcher.texts.size(), 2);
    }

    // Landing on a hidden interface would cut the bench off the board unseen.
    void otherInterfacesOutOfReach()
    {
        auto* kinds = w<QComboBox>("flag_interfaceCheck");
        QTest::keyClick(kinds, Qt::Key_Down), QTest::keyClick(kinds, Qt::Key_End);
        QWheelEvent wheel({5, 5}, {5, 5}, {}, {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(kinds, &wheel);
        QCOMPARE(kinds->currentIndex(), 0);
        QCOMPARE(panel->usb->interfaceKind, 0);
    }
};

QTEST_MAIN(tst_panel)
#include "tst_panel.moc"
