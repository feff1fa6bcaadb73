// Opening and letting go of the bridge board for one register operation.
#include "usb_session.h"

#include "usb_link.h"

#include <libusb.h>

#include <QElapsedTimer>
#include <QMap>
#include <QThread>

#include <memory>

namespace {

// The device list of one operation, freed with the devices it holds.
struct DeviceListFree
{
    void operator()(libusb_device** list) const { libusb_free_device_list(list, 1); }
};
using DeviceList = std::unique_ptr<libusb_device*, DeviceListFree>;

// The bridge boards of a device list by key; complete is false when a
// device's descriptor could not be read.
QMap<QString, libusb_device*> bridgesOn(libusb_device** devices, ssize_t n, bool* complete)
{
    QMap<QString, libusb_device*> bridges;
    *complete = false;
    for (ssize_t i = 0; i < n; ++i) {
        libusb_device_descriptor d;
        if (libusb_get_device_descriptor(devices[i], &d) < 0)
            return bridges;
        if (d.idVendor != usb_link::kBridgeVendor)
            continue;
        bridges.insert(usb_link::deviceKey(d.idVendor, d.idProduct, quint8(libusb_get_bus_number(devices[i])),
                                           quint8(libusb_get_device_address(devices[i]))),
                       devices[i]);
    }
    *complete = true;
    return bridges;
}

} // namespace

UsbSession::UsbSession(usb_link& owner) : link(owner)
{
    link.lock.lock();
    openDevice();
}

UsbSession::~UsbSession()
{
    closeDevice();
}

// Opens the board named by selectedKey, or the only board when there is just
// one (while a board is held, that board alone), and claims its interface 0.
void UsbSession::openDevice()
{
    link.failure.clear();
    link.refused.clear();
    link.handle = nullptr;
    // A board kept open serves on, unless a held board is another, or
    // another board was chosen meanwhile.
    const bool held = link.holds > 0 && !link.heldKey.isEmpty();
    if (link.kept && (held ? link.heldKey == link.keptKey
                           : link.selectedKey.isEmpty() || link.selectedKey == link.keptKey)) {
        handle = link.kept;
        claimed = true;
        link.handle = handle;
        if (link.holds > 0)
            link.heldKey = link.keptKey;
        return;
    }
    link.closeBoard();
    started = libusb_init(nullptr) >= 0;
    if (!started)
        return;
    QString chosenKey;
    {
        libusb_device** devices = nullptr;
        const ssize_t n = libusb_get_device_list(nullptr, &devices);
        if (n < 0)
            return;
        const DeviceList list(devices);
        bool complete = false;
        const QMap<QString, libusb_device*> bridges = bridgesOn(devices, n, &complete);
        if (!complete)
            return;
        link.seen = bridges.keys();
        if (link.holds > 0 && !link.heldKey.isEmpty()) {
            if (!heldBoardThere(bridges))
                return;
            chosenKey = link.heldKey;
        } else if (bridges.contains(link.selectedKey)) {
            chosenKey = link.selectedKey;
        } else if (bridges.size() == 1) {
            chosenKey = bridges.firstKey();
        } else {
            link.statusText = QStringLiteral("Refresh device list");
            return;
        }
        if (libusb_open(bridges.value(chosenKey), &handle) != 0)
            handle = nullptr;
    }
    if (!handle)
        return;
    if (libusb_kernel_driver_active(handle, 0) == 1)
        libusb_detach_kernel_driver(handle, 0);
    int claim = libusb_claim_interface(handle, 0);
    // Another program that serves a script keeps the board between two of
    // its requests and lets go of it after a short pause: wait for that.
    QElapsedTimer patience;
    patience.start();
    while (claim == LIBUSB_ERROR_BUSY && patience.elapsed() < usb_link::kClaimPatienceMs) {
        QThread::msleep(5);
        claim = libusb_claim_interface(handle, 0);
    }
    if (claim != 0) {
        // No transfer ever follows a claim that failed.
        if (claim == LIBUSB_ERROR_BUSY)
            link.refused = QStringLiteral("the board is in use by another program");
        return;
    }
    claimed = true;
    ++link.changes; // while nobody held it, anyone may have written the chip
    link.handle = handle;
    if (link.holds > 0 && link.heldKey.isEmpty())
        link.heldKey = chosenKey;
    // A script's burst, or an operation of several steps, goes on with the
    // board open.
    if (link.keep || link.holds > 0) {
        link.kept = handle;
        link.keptKey = chosenKey;
    }
    if (link.stalled) {
        libusb_clear_halt(handle, usb_link::kEndpointOut);
        libusb_clear_halt(handle, usb_link::kEndpointIn);
        link.stalled = false;
    }
}

// False, with the refusal said, when the held board is not among the
// bridges on the bus.
bool UsbSession::heldBoardThere(const QMap<QString, libusb_device*>& bridges)
{
    if (bridges.contains(link.heldKey))
        return true;
    link.refused = bridges.isEmpty() ? QStringLiteral("the board has left the bus") : QStringLiteral("the board changed");
    return false;
}

// The interface released, the board closed, libusb ended and the link let
// go, as far as each was taken.
void UsbSession::closeDevice()
{
    if (claimed && handle == link.kept) {
        // Kept open for the next operation, unless a transfer failed: a held
        // board that has gone from the bus meanwhile is told of as an open
        // would tell it.
        link.handle = nullptr;
        if (!link.failure.isEmpty() || (!link.keep && link.holds == 0))
            link.closeBoard();
        if (!link.failure.isEmpty() && link.holds > 0 && !link.heldKey.isEmpty()
            && link.lastTransferResult == LIBUSB_ERROR_NO_DEVICE && libusb_init(nullptr) >= 0) {
            // A fresh look at the bus: the board's list of the open session
            // may not have caught up with the bus yet.
            libusb_device** devices = nullptr;
            const ssize_t n = libusb_get_device_list(nullptr, &devices);
            if (n >= 0) {
                const DeviceList list(devices);
                bool complete = false;
                const QMap<QString, libusb_device*> bridges = bridgesOn(devices, n, &complete);
                if (complete)
                    heldBoardThere(bridges);
            }
            libusb_exit(nullptr);
        }
        link.lock.unlock();
        return;
    }
    if (claimed)
        libusb_release_interface(handle, 0);
    if (handle)
        libusb_close(handle);
    link.handle = nullptr;
    if (started)
        libusb_exit(nullptr);
    link.lock.unlock();
}
