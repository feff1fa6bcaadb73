// One register operation's hold on the bridge board: made, it locks the
// link, starts libusb, chooses and opens the board and claims its interface
// 0; its end lets go of all of it in reverse order, on every path out of the
// operation. Within an operation of several steps (usb_link::holdBoard) or a
// script's burst (usb_link::keepOpen) the board stays open from one step to
// the next and is let go when the hold or the burst ends.
#pragma once

#include <QMap>
#include <QString>

struct libusb_device;
struct libusb_device_handle;
class usb_link;

class UsbSession
{
public:
    explicit UsbSession(usb_link& link);
    ~UsbSession();
    UsbSession(const UsbSession&) = delete;
    UsbSession& operator=(const UsbSession&) = delete;

    // True when the board is open and its interface 0 claimed: the
    // operation may exchange frames.
    bool isOpen() const { return claimed; }

private:
    void openDevice();
    bool heldBoardThere(const QMap<QString, libusb_device*>& bridges);
    void closeDevice();

    usb_link& link;
    bool started = false; // libusb_init went through
    libusb_device_handle* handle = nullptr;
    bool claimed = false;
};
