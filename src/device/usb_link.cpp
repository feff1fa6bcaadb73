#include "usb_link.h"

#include "usb_frame_observer.h"
#include "usb_session.h"

#include <libusb.h>

#include <QDateTime>

#include <cstring>
#include <vector>

usb_link::usb_link() = default;

QString usb_link::deviceKey(quint16 vendor, quint16 product, quint8 bus, quint8 address)
{
    return QString::number(vendor, 16) + QLatin1Char(' ') + QString::number(product, 16) + QLatin1Char(' ')
           + QString::number(bus, 16) + QLatin1Char(' ') + QString::number(address, 16) + QLatin1Char(' ');
}

bool usb_link::parseDeviceKey(const QString& key, quint16* vendor, quint16* product, quint8* bus, quint8* address)
{
    const QStringList numbers = key.split(QLatin1Char(' '));
    if (numbers.size() != 5 || !numbers.last().isEmpty())
        return false;
    bool ok[4] = {};
    const uint values[4] = {numbers[0].toUInt(&ok[0], 16), numbers[1].toUInt(&ok[1], 16),
                            numbers[2].toUInt(&ok[2], 16), numbers[3].toUInt(&ok[3], 16)};
    if (!ok[0] || !ok[1] || !ok[2] || !ok[3] || values[0] > 0xFFFF || values[1] > 0xFFFF || values[2] > 0xFF
        || values[3] > 0xFF)
        return false;
    *vendor = quint16(values[0]);
    *product = quint16(values[1]);
    *bus = quint8(values[2]);
    *address = quint8(values[3]);
    return true;
}

bool usb_link::scanDevices()
{
    QMutexLocker guard(&lock);
    deviceList.clear();
    if (libusb_init(nullptr) < 0)
        return false;
    libusb_device** list = nullptr;
    const ssize_t n = libusb_get_device_list(nullptr, &list);
    if (n < 0) {
        libusb_exit(nullptr);
        return false;
    }
    for (ssize_t i = 0; i < n; ++i) {
        libusb_device_descriptor d;
        if (libusb_get_device_descriptor(list[i], &d) < 0 || d.idVendor != kBridgeVendor)
            continue;
        deviceList.append(deviceKey(d.idVendor, d.idProduct, quint8(libusb_get_bus_number(list[i])),
                                    quint8(libusb_get_device_address(list[i]))));
    }
    libusb_free_device_list(list, 1);
    libusb_exit(nullptr);
    seen = deviceList;
    seen.sort();
    return true;
}

// With no device open a transfer moves nothing and says so; libusb is never
// handed a null handle.
int usb_link::bulkOut(quint8* data, int length)
{
    int transferred = 0;
    if (!handle) {
        lastTransferResult = LIBUSB_ERROR_NO_DEVICE;
        return 0;
    }
    lastTransferResult = libusb_bulk_transfer(handle, kEndpointOut, data, length, &transferred, kTimeoutMs);
    return transferred;
}

int usb_link::bulkIn(quint8* data, int length)
{
    int transferred = 0;
    if (!handle) {
        lastTransferResult = LIBUSB_ERROR_NO_DEVICE;
        return 0;
    }
    lastTransferResult = libusb_bulk_transfer(handle, kEndpointIn, data, length, &transferred, kTimeoutMs);
    return transferred;
}

// One frame out and its reply in, both whole and without a libusb error
// (a reply longer than asked is an overflow error with a full count).
bool usb_link::exchange(quint8* out, quint8* in, int length)
{
    for (bool toBoard : {true, false}) {
        const int moved = toBoard ? bulkOut(out, length) : bulkIn(in, length);
        if (UsbFrameObserver* observer = frameObserver.load(std::memory_order_acquire))
            if (toBoard || moved > 0)
                observer->frame(QDateTime::currentMSecsSinceEpoch(), toBoard, toBoard ? out : in,
                                toBoard ? length : moved);
        if (lastTransferResult != 0) {
            // A stalled endpoint stays halted until the next open clears it.
            stalled = stalled || lastTransferResult == LIBUSB_ERROR_PIPE;
            failure = QString::fromLatin1(libusb_error_name(lastTransferResult));
            return false;
        }
        if (moved != length) {
            failure = QStringLiteral("short %1, %2 of %3 bytes")
                          .arg(toBoard ? QStringLiteral("frame") : QStringLiteral("reply"))
                          .arg(moved)
                          .arg(length);
            return false;
        }
    }
    return true;
}

// An operation the chosen interface does not serve: no transfer, so no
// transfer failure either.
bool usb_link::refuse()
{
    QMutexLocker guard(&lock);
    failure.clear();
    refused.clear();
    return false;
}

QString usb_link::transferFailure() const
{
    QMutexLocker guard(&lock);
    return failure;
}

QString usb_link::currentStatusText() const
{
    QMutexLocker guard(&lock);
    return statusText;
}

QString usb_link::refusal() const
{
    QMutexLocker guard(&lock);
    return refused;
}

QString usb_link::reason() const
{
    QMutexLocker guard(&lock);
    return refused.isEmpty() ? failure : refused;
}

void usb_link::holdBoard()
{
    QMutexLocker guard(&lock);
    ++holds;
}

void usb_link::releaseBoard()
{
    QMutexLocker guard(&lock);
    if (holds > 0 && --holds == 0) {
        heldKey.clear();
        if (!keep)
            closeBoard();
    }
}

QString usb_link::heldBoard() const
{
    QMutexLocker guard(&lock);
    return heldKey;
}

QStringList usb_link::boardsSeen() const
{
    QMutexLocker guard(&lock);
    return seen;
}

void usb_link::keepOpen(bool on)
{
    QMutexLocker guard(&lock);
    keep = on;
    if (!on)
        closeBoard();
}

QString usb_link::keptBoard() const
{
    QMutexLocker guard(&lock);
    return kept ? keptKey : QString();
}

void usb_link::closeBoard()
{
    QMutexLocker guard(&lock);
    if (!kept)
        return;
    libusb_release_interface(kept, 0);
    libusb_close(kept);
    libusb_exit(nullptr);
    kept = nullptr;
}

bool usb_link::addressesFit(int first, int last)
{
    const int outside = first < 0 ? first : qMax(first, kLastAddress + 1);
    if (first >= 0 && last <= kLastAddress)
        return true;
    QMutexLocker guard(&lock);
    refused.clear();
    failure = QStringLiteral("register number %1 is out of range, 0 to %2").arg(outside).arg(kLastAddress);
    return false;
}

bool usb_link::singleRegister(int address, quint8 mark, quint8 data, quint8* reply)
{
    quint8 frame[5] = {frameType, 3, quint8((address >> 8) | mark), quint8(address & 0xFF), data};
    std::memset(reply, 0, 5);
    if (!addressesFit(address, address))
        return false;
    const UsbSession session(*this);
    return session.isOpen() && exchange(frame, reply, 5);
}

bool usb_link::readRegister(int address, quint8* value)
{
    if (interfaceKind != 0)
        return refuse();
    quint8 reply[5];
    if (!singleRegister(address, readFlag, 0, reply))
        return false;
    *value = reply[4];
    return true;
}

bool usb_link::writeRegister(int address, const quint8* value)
{
    if (interfaceKind != 0)
        return refuse();
    ++changes;
    quint8 reply[5];
    return singleRegister(address, writeFlag, *value, reply);
}

int usb_link::elementAddress(const quint8* element) const
{
    return addressBytes == 1 ? element[0] : (element[0] << 8) | element[1];
}

// The elements are frames' worth of triples: ten to a full frame, then always
// one last frame with the rest, which for a multiple of ten is the bare 15 00.
// A read stores every answered value; a write copies the chip's answers back
// over the values of the full frames only.
bool usb_link::block(int count, quint8* elements, bool write)
{
    if (interfaceKind != 0 || count < 0)
        return refuse();
    int lowest = 0, highest = 0;
    for (int i = 0; i < count; ++i) {
        const int address = elementAddress(elements + i * elementSize());
        lowest = i == 0 ? address : qMin(lowest, address);
        highest = qMax(highest, address);
    }
    if (!addressesFit(lowest, highest))
        return false;
    const UsbSession session(*this);
    if (!session.isOpen())
        return false;
    if (write)
        ++changes;
    const int perFrame = (frameSize - 2) / 3;
    std::vector<quint8> out(static_cast<size_t>(frameSize)), in(static_cast<size_t>(frameSize));
    std::vector<quint8> values(static_cast<size_t>(count));
    std::vector<bool> answered(static_cast<size_t>(count), false);
    bool ok = true;
    int done = 0;
    const quint8 mark = write ? writeFlag : readFlag;
    while (ok) {
        const int n = qMin(perFrame, count - done);
        out[0] = frameType;
        out[1] = quint8(n * 3);
        for (int k = 0; k < n; ++k) {
            const quint8* e = elements + (done + k) * elementSize();
            const int address = elementAddress(e);
            out[size_t(2 + 3 * k)] = quint8((address >> 8) | mark);
            out[size_t(3 + 3 * k)] = quint8(address & 0xFF);
            out[size_t(4 + 3 * k)] = write ? e[addressBytes] : 0;
        }
        const int length = 2 + 3 * n;
        ok = exchange(out.data(), in.data(), length);
        if (ok && (!write || n == perFrame))
            for (int k = 0; k < n; ++k) {
                values[size_t(done + k)] = in[size_t(4 + 3 * k)];
                answered[size_t(done + k)] = true;
            }
        done += n;
        if (n < perFrame)
            break; // the last frame, full or empty, has gone
    }
    if (!ok)
        return false;
    for (int i = 0; i < count; ++i)
        if (answered[size_t(i)])
            elements[i * elementSize() + addressBytes] = values[size_t(i)];
    return true;
}

std::vector<quint8> usb_link::blockList(const std::vector<int>& addresses, const quint8* values) const
{
    std::vector<quint8> list;
    list.reserve(addresses.size() * size_t(elementSize()));
    for (size_t i = 0; i < addresses.size(); ++i) {
        const int a = addresses[i];
        if (addressBytes == 2)
            list.push_back(quint8(a >> 8));
        list.push_back(quint8(a & 0xFF));
        list.push_back(values ? values[i] : 0);
    }
    return list;
}

bool usb_link::readBlock(int count, quint8* elements)
{
    return block(count, elements, false);
}

bool usb_link::writeBlock(int count, quint8* elements)
{
    return block(count, elements, true);
}

// Autoincrement frames of up to frameSize - 4 registers from start on: each
// frame carries the first address and the data (written from source, or
// read into target once every frame has come back whole).
bool usb_link::autoincrement(int start, int count, const quint8* source, quint8* target)
{
    if (interfaceKind != 0)
        return refuse();
    if (count > 0 && !addressesFit(start, start + count - 1))
        return false;
    const UsbSession session(*this);
    if (!session.isOpen())
        return false;
    if (source)
        ++changes;
    const int perFrame = frameSize - 4;
    const quint8 direction = source ? writeFlag : readFlag;
    std::vector<quint8> out(static_cast<size_t>(frameSize), 0), in(static_cast<size_t>(frameSize));
    std::vector<quint8> values(static_cast<size_t>(qMax(count, 0)));
    bool ok = true;
    for (int done = 0; ok && done < count;) {
        const int address = start + done;
        const int n = qMin(count - done, perFrame);
        out[0] = frameType;
        out[1] = quint8(n + 2);
        out[2] = quint8((address >> 8) | autoFlag | direction);
        out[3] = quint8(address & 0xFF);
        if (source)
            std::memcpy(out.data() + 4, source + done, size_t(n));
        ok = exchange(out.data(), in.data(), 4 + n);
        if (ok)
            std::memcpy(values.data() + done, in.data() + 4, size_t(n));
        done += n;
    }
    if (ok && target && count > 0)
        std::memcpy(target, values.data(), size_t(count));
    return ok;
}

bool usb_link::readAuto(int start, int count, quint8* buffer)
{
    return autoincrement(start, count, nullptr, buffer);
}

bool usb_link::writeAuto(int start, int count, const quint8* data)
{
    return autoincrement(start, count, data, nullptr);
}
