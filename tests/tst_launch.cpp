#include "testbed.h"
#include "testsupport.h"
#include "usb_link.h"

// Runs as the child of zvsim-launch, as the program does with no board on the
// desk (the end-to-end tests start the program itself so): the launcher's
// control pipe makes the transfers to its board fail.
class tst_launch : public QObject
{
    Q_OBJECT

private slots:
    // The control pipe's stall and fault commands: the next transfer goes
    // wrong, and the operation after it goes through (a stall's halt cleared
    // first). A dump behind each command tells that the launcher has taken it.
    void controlFaults()
    {
        QVERIFY2(zvsim::Testbed::available(), "not started by zvsim-launch");
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
            QCOMPARE(value & 7, 2); // release 2 unless told otherwise
        }
    }
};

QTEST_MAIN(tst_launch)
#include "tst_launch.moc"
