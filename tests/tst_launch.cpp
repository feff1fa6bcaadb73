#include "service_block.h"
#include "testbed.h"
#include "testsupport.h"
#include "usb_link.h"

#include <QComboBox>
#include <QFile>
#include <QTemporaryDir>
#include <QPushButton>
#include <QtTest>

// Runs as the child of zvsim-launch, as the program does with no board on the desk:
// the service panel finds the one simulated board on the inherited bus and reads it,
// and the launcher's control pipe makes its transfers fail.
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

    // The control pipe's stall and fault commands: the next transfer goes
    // wrong, and the operation after it goes through (a stall's halt cleared
    // first). A dump behind each command tells that the launcher has taken it.
    void controlFaults()
    {
        QTemporaryDir dir;
        QFile control(qEnvironmentVariable("ZV_LAUNCH_CONTROL"));
        QVERIFY(control.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        usb_link link;
        const std::pair<const char*, const char*> faults[] = {
            {"stall", "LIBUSB_ERROR_PIPE"}, {"fault short 3", "short reply, 3 of 5 bytes"}, {"fault overflow", "LIBUSB_ERROR_OVERFLOW"}};
        for (auto [command, failure] : faults) {
            const QString taken = dir.filePath(command);
            control.write(QByteArray(command) + "\ndump " + taken.toUtf8() + "\n");
            QTRY_VERIFY(QFile::exists(taken));
            quint8 value = 0;
            QVERIFY(!link.readRegister(1, &value));
            QCOMPARE(link.transferFailure(), QString(failure));
            QVERIFY(link.readRegister(1, &value));
        }
    }
};

QTEST_MAIN(tst_launch)
#include "tst_launch.moc"
