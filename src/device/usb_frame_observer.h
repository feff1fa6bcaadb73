// Hears every frame that usb_link moves over the wire, on the thread that
// moves it: a request as it goes out, its reply as it came in.
#pragma once

#include <QtGlobal>

class UsbFrameObserver
{
public:
    virtual ~UsbFrameObserver() = default;
    // msecs: the time, milliseconds since the epoch; out: towards the board.
    virtual void frame(qint64 msecs, bool out, const quint8* bytes, int length) = 0;
};
