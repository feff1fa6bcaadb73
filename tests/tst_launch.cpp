#include "service_block.h"
#include "testbed.h"
#include "testsupport.h"
#include "translation.h"
#include "usb_link.h"

#include <QtTest>

#include <QComboBox>
#include <QPushButton>

// Runs as the child of zvsim-launch, the way the program itself runs with no
// board on the desk: the simulated board must be on the bus it inherited,
// and the service panel must find and use it.
class tst_launch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        zvTestInit();
        installTranslation(*QCoreApplication::instance());
        QVERIFY2(zvsim::Testbed::available(), "not started by zvsim-launch");
    }

    void oneBoardOnTheBus()
    {
        usb_link link;
        QVERIFY(link.scanDevices());
        QCOMPARE(link.deviceList.size(), 1);
        QVERIFY(link.deviceList.first().startsWith(QStringLiteral("2976 3 ")));
        quint8 value = 0;
        QVERIFY(link.readRegister(1, &value));
        QCOMPARE(value & 7, 2); // release 2 unless told otherwise
    }

    void panelSearchFindsIt()
    {
        service_block panel;
        auto* devices = panel.findChild<QComboBox*>("flag_currentInterface");
        panel.findChild<QPushButton*>("search_interface")->click();
        QCOMPARE(devices->count(), 1);
        QCOMPARE(panel.usb->selectedKey, devices->itemText(0));
        quint8 before = 0, after = 0;
        QVERIFY(panel.usb->readRegister(60, &before));
        const quint8 changed = quint8(before ^ 0x5A);
        QVERIFY(panel.usb->writeRegister(60, &changed));
        QVERIFY(panel.usb->readRegister(60, &after));
        QCOMPARE(after, changed);
    }
};

QTEST_MAIN(tst_launch)
#include "tst_launch.moc"
