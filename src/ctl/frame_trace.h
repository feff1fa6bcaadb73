// zv4280ctl --trace: every frame on the wire as a line on standard error,
// in the words of the GUI's USB log, as it passes.
#pragma once

#include "usb_frame_observer.h"

#include <QByteArray>
#include <QMutex>

class FrameTrace : public UsbFrameObserver
{
public:
    void frame(qint64 msecs, bool out, const quint8* bytes, int length) override;

private:
    QMutex lock;
    QByteArray request; // the last frame out, which a reply answers
};
