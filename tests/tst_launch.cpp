#include "service_block.h"
#include "testbed.h"
#include "testsupport.h"
#include "usb_link.h"

#include <QComboBox>
#include <QPushButton>
#include <QtTest>

// Runs as the child of zvsim-launch, as the program does with no board on the desk:
// the service panel finds the one simulated board on the inherited bus and reads it.
class tst_launch : public QObject
{
    Q_OBJECT

private slots:
    void panelFindsTheBoard()
    {
        zvTestInit(true);
        QVERIFY2(zvsim::Testbed::available(), "not started by zvsim-launch");
        service_block panel;
        auto* devices = panel.findChild<QComboBox*>("flag_currentInterface");
        panel.findChild<QPushButton*>("search_interface")->click();
        QCOMPARE(devices->count(), 1);
        QVERIFY(devices->itemText(0).startsWith(QStringLiteral("2976 3 ")));
        QCOMPARE(panel.usb->selectedKey, devices->itemText(0));
        quint8 value = 0;
        QVERIFY(panel.usb->readRegister(1, &value));
        QCOMPARE(value & 7, 2); // release 2 unless told otherwise
    }
};

QTEST_MAIN(tst_launch)
#include "tst_launch.moc"
