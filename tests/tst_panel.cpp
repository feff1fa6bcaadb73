#include "MainClass.h"
#include "service_block.h"
#include "testbed.h"
#include "testsupport.h"
#include "translation.h"
#include "usb_link.h"

#include <QtTest>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

#include <memory>

// The service panel with simulated boards on the bus.
class tst_panel : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void startValues();
    void pauseFeedsTheWorkersPause();
    void searchListsBoards();
    void selectionTakesEffectOnNextOperation();
    void bitRow_data();
    void bitRow();
    void registerButtons();
    void registerButtonsWithoutBoard();
    void otherInterfacesOutOfReach();
    void englishTexts();

private:
    template <class T>
    T* child(const char* name) const
    {
        T* w = panel->findChild<T*>(name);
        Q_ASSERT(w);
        return w;
    }

    std::unique_ptr<zvsim::Testbed> bus;
    std::unique_ptr<service_block> panel;
};

void tst_panel::initTestCase()
{
    zvTestInit();
    installTranslation(*QCoreApplication::instance());
    if (!zvsim::Testbed::available())
        QSKIP("needs umockdev-wrapper");
}

void tst_panel::init()
{
    bus.reset(new zvsim::Testbed);
    panel.reset(new service_block);
}

void tst_panel::cleanup()
{
    panel.reset();
    bus.reset();
}

void tst_panel::startValues()
{
    const QMap<QString, int> expected = {
        {"interfaceCheck", 0}, {"currentInterface", -1}, {"speedCom", 5}, {"ReadStyle", 2}, {"WriteStyle", 1},
        {"RepeatRead", 0}, {"AutoPause", 0}, {"ChangesOnly", 1}, {"InteractiveRefresh", 1}, {"PauseTimer", 200},
        {"writePause", 200}, {"HexComment", 0}, {"MergeFile", 0}, {"ConfigCheck", 1}, {"StatusBits", 1},
        {"ServiceBits", 1}, {"RegisterNumber", 0}};
    QCOMPARE(panel->settings, expected);
    QCOMPARE(panel->windowTitle(), QStringLiteral("Service settings"));
    QCOMPARE(panel->size(), QSize(330, 300));
    for (const char* hidden : {"Button_ICFILE", "GrRWRegister", "flag_AutoPause", "flag_ReadStyle", "text_read",
                               "flag_WriteStyle", "text_write", "flag_ServiceBits", "flag_StatusBits",
                               "flag_ConfigCheck", "Info", "flag_RepeatRead", "flag_speedCom", "label_TB"})
        QVERIFY2(child<QWidget>(hidden)->isHidden(), hidden);
    for (const char* shown : {"flag_interfaceCheck", "flag_currentInterface", "search_interface", "flag_ChangesOnly",
                              "flag_InteractiveRefresh", "flag_PauseTimer", "flag_HexComment", "flag_MergeFile"})
        QVERIFY2(!child<QWidget>(shown)->isHidden(), shown);
    auto* speeds = child<QComboBox>("flag_speedCom");
    QCOMPARE(speeds->itemText(2), QStringLiteral("256000"));
    QCOMPARE(speeds->itemText(4), QStringLiteral("256000"));
    QVERIFY(child<QSpinBox>("flag_RegisterNumber")->maximum() >= 99999);
}

void tst_panel::pauseFeedsTheWorkersPause()
{
    child<QSpinBox>("flag_PauseTimer")->setValue(750);
    QCOMPARE(panel->settings.value("PauseTimer"), 750);
    QCOMPARE(panel->settings.value("writePause"), 750);
    child<QCheckBox>("flag_ChangesOnly")->setChecked(false);
    QCOMPARE(panel->settings.value("ChangesOnly"), 0);
    child<QCheckBox>("flag_MergeFile")->setChecked(true);
    QCOMPARE(panel->settings.value("MergeFile"), 1);
}

void tst_panel::searchListsBoards()
{
    zvsim::BoardConfig c;
    c.address = 10;
    bus->addBoard(c);
    auto* devices = child<QComboBox>("flag_currentInterface");
    QCOMPARE(devices->count(), 0);
    child<QPushButton>("search_interface")->click();
    QCOMPARE(devices->count(), 1);
    QCOMPARE(devices->itemText(0), QStringLiteral("2976 3 1 a "));
    QCOMPARE(panel->usb->selectedKey, QStringLiteral("2976 3 1 a "));
}

void tst_panel::selectionTakesEffectOnNextOperation()
{
    zvsim::BoardConfig first, second;
    second.address = 6;
    second.product = 7;
    bus->addBoard(first);
    bus->addBoard(second);
    bus->chip(0).setRelease(2);
    bus->chip(1).setRelease(3);
    child<QPushButton>("search_interface")->click();
    auto* devices = child<QComboBox>("flag_currentInterface");
    QCOMPARE(devices->count(), 2);
    for (int i = 0; i < 2; ++i) {
        devices->setCurrentIndex(i);
        const int board = devices->currentText() == QStringLiteral("2976 7 1 6 ") ? 1 : 0;
        quint8 value = 0;
        QVERIFY(panel->usb->readRegister(1, &value));
        QCOMPARE(value & 7, board == 1 ? 3 : 2);
    }
}

void tst_panel::bitRow_data()
{
    QTest::addColumn<int>("value");
    for (int v : {0, 1, 0x80, 0xA5, 0xFF})
        QTest::addRow("%02x", v) << v;
}

void tst_panel::bitRow()
{
    QFETCH(int, value);
    auto* spin = child<QSpinBox>("SpinRegisterValue");
    spin->setValue(value ^ 0xFF);
    spin->setValue(value);
    for (int b = 0; b < 8; ++b)
        QCOMPARE(child<QCheckBox>(qPrintable(QString("cbxRegByte%1").arg(b)))->isChecked(), bool(value & (1 << b)));
    // And back: ticking a box changes the byte by its weight.
    child<QCheckBox>("cbxRegByte3")->setChecked(!(value & 8));
    QCOMPARE(spin->value(), value ^ 8);
    QCOMPARE(spin->displayIntegerBase(), 16);
}

void tst_panel::registerButtons()
{
    bus->addBoard();
    bus->chip(0).setReg(120, 0x3C);
    child<QSpinBox>("flag_RegisterNumber")->setValue(120);
    child<QPushButton>("ButtonReadRegister")->click();
    QCOMPARE(child<QSpinBox>("SpinRegisterValue")->value(), 0x3C);
    child<QSpinBox>("SpinRegisterValue")->setValue(0xC3);
    child<QPushButton>("ButtonWriteRegister")->click();
    QCOMPARE(int(bus->chip(0).reg(120)), 0xC3);
}

void tst_panel::registerButtonsWithoutBoard()
{
    ModalCatcher catcher;
    child<QSpinBox>("SpinRegisterValue")->setValue(0x21);
    child<QPushButton>("ButtonReadRegister")->click();
    QCOMPARE(child<QSpinBox>("SpinRegisterValue")->value(), 0x21);
    child<QPushButton>("ButtonWriteRegister")->click();
    QCOMPARE(catcher.texts, QStringList({"USB interface error 0", "USB interface error 33"}));
}

void tst_panel::otherInterfacesOutOfReach()
{
    // The arrow keys and the wheel on the closed box must not land on the
    // hidden interfaces, which would cut the bench off the board unseen.
    auto* kinds = child<QComboBox>("flag_interfaceCheck");
    kinds->setFocus();
    QTest::keyClick(kinds, Qt::Key_Down);
    QTest::keyClick(kinds, Qt::Key_End);
    QCOMPARE(kinds->currentIndex(), 0);
    QWheelEvent wheel(QPointF(5, 5), kinds->mapToGlobal(QPoint(5, 5)), QPoint(), QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(kinds, &wheel);
    QCOMPARE(kinds->currentIndex(), 0);
    QCOMPARE(panel->usb->interfaceKind, 0);
}

void tst_panel::englishTexts()
{
    QCOMPARE(child<QPushButton>("search_interface")->text(), QStringLiteral("Search"));
    QCOMPARE(child<QCheckBox>("flag_ChangesOnly")->text(), QStringLiteral("Changes only"));
    QCOMPARE(child<QCheckBox>("flag_InteractiveRefresh")->text(), QStringLiteral("Interactive refresh"));
    QCOMPARE(child<QLabel>("text_pause")->text(), QStringLiteral("Read/write pause (ms)"));
    QCOMPARE(child<QComboBox>("flag_ReadStyle")->itemText(2), QStringLiteral("Autoincrement"));
    QCOMPARE(child<QPushButton>("ButtonReadRegister")->text(), QStringLiteral("Read"));
}

QTEST_MAIN(tst_panel)
#include "tst_panel.moc"
