// The frames of zv4280ctl --trace.
#include "frame_trace.h"

#include "ctl_output.h"
#include "frame_decoder.h"

void FrameTrace::frame(qint64 msecs, bool out, const quint8* bytes, int length)
{
    const QByteArray frame(reinterpret_cast<const char*>(bytes), length);
    QMutexLocker guard(&lock);
    CtlOutput::printError(FrameDecoder::line(msecs, out, frame, request) + QLatin1Char('\n'));
    if (out)
        request = frame;
}
