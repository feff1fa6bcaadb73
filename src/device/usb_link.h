#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>

#include <atomic>
#include <vector>

struct libusb_device_handle;
class UsbFrameObserver;

// The USB transport to the bridge board. Every register operation outside an
// operation of several steps is a whole cycle of its own: libusb is
// initialised, the board found and opened, its interface 0 claimed, the
// frames exchanged, and everything released again, so no connection state
// survives between operations and a replugged board needs no reconnect. The
// cycle is held by a UsbSession, which lets go of the board on every path out
// of the operation.
//
// A register has a 16-bit address and an 8-bit value. A frame is the type
// byte 0x15, the payload length, and the payload: triples (address high with
// the direction mark, address low, data) or, by autoincrement, one address
// and up to 28 data bytes. A reply has the layout of its request.
//
// Operations from the service panel (GUI thread) and from the worker never
// interleave on the device: each one holds the link's lock for its cycle.
// A transfer that fails, times out or moves fewer bytes than asked ends the
// operation with false, and the caller's buffers keep what they held. An
// address outside 0 to 0x3FFF is refused before any transfer: the two high
// bits of the address high byte are the frame's read and autoincrement marks.
// After a stall the next operation clears the halt of both endpoints first.
class usb_link
{
public:
    usb_link();

    quint8 frameType = 0x15;
    quint8 writeFlag = 0x00;
    quint8 readFlag = 0x80;
    quint8 autoFlag = 0x40;
    quint8 addressBytes = 2;
    qint8 frameSize = 32;
    QStringList deviceList;
    QString statusText;
    QString selectedKey;
    // The open board, while a session holds it.
    libusb_device_handle* handle = nullptr;
    // The interface the panel chose; only the bridge boards (0) are served,
    // every register operation of another kind is refused.
    qint32 interfaceKind = 0;
    // The libusb result of the last bulk transfer (0 when it went through).
    int lastTransferResult = 0;

    // Why the last register operation's transfers failed, e.g. "LIBUSB_ERROR_NO_DEVICE"
    // or "short reply, 3 of 32 bytes"; empty when they went through or when
    // the device could not be opened at all.
    QString transferFailure() const;
    // statusText, read safely from any thread.
    QString currentStatusText() const;
    // Why the last register operation found no board it may use although the
    // bus shows one: "the board is in use by another program", "the board
    // changed"; empty otherwise.
    QString refusal() const;
    // The refusal, else the transfer failure: why the last register
    // operation failed, in a few words; empty when it found no board.
    QString reason() const;

    // An operation of several steps holds the board: from holdBoard() on,
    // every register operation goes to the board (bus and address) that the
    // first of them opened, which stays open and claimed until the last hold
    // ends, and fails with "the board changed" when that one has left the
    // bus, whatever else is plugged in. Holds nest; releaseBoard() ends the
    // one taken last.
    void holdBoard();
    void releaseBoard();
    // The board held (its key), once the first operation of the hold has
    // opened it; empty otherwise.
    QString heldBoard() const;
    // The bridge boards on the bus as the last register operation or device
    // scan found them (keys in rising order).
    QStringList boardsSeen() const;

    // A burst of operations (a script's requests) keeps the board open from
    // one operation to the next, until closeBoard() or keepOpen(false); a
    // transfer that fails closes it, so that the next operation opens the
    // board anew and finds it replugged or gone.
    void keepOpen(bool keep);
    void closeBoard();
    // The board kept open now (its key), or empty.
    QString keptBoard() const;
    // A count that moves whenever the chip may have changed by other hands
    // than this link's last reader: at every fresh open of a board (while
    // it was let go another program may have written it) and at every write.
    quint64 chipChanges() const { return changes.load(); }

    // The vendor identifier of every bridge board; the product may be any.
    static constexpr quint16 kBridgeVendor = 0x2976;
    static constexpr unsigned kTimeoutMs = 5000;
    // How long an open waits for a board that another program holds: longer
    // than a serving program keeps the board after a script's last request.
    static constexpr int kClaimPatienceMs = 400;
    // The pause after a script's last request after which a serving program
    // lets go of the board it kept open.
    static constexpr int kBurstIdleMs = 100;
    static constexpr unsigned char kEndpointOut = 0x02;
    static constexpr unsigned char kEndpointIn = 0x81;
    // The highest register address a frame carries.
    static constexpr int kLastAddress = 0x3FFF;

    // "2976 3 1 a ": vendor, product, bus, address in lower-case hex, each
    // followed by a blank.
    static QString deviceKey(quint16 vendor, quint16 product, quint8 bus, quint8 address);
    // The four numbers of a key that deviceKey made; false for any other text.
    static bool parseDeviceKey(const QString& key, quint16* vendor, quint16* product, quint8* bus, quint8* address);

    // Who hears every frame from now on (null: nobody). The observer must
    // outlive the operations that run while it is set.
    void setFrameObserver(UsbFrameObserver* observer) { frameObserver.store(observer); }

    bool scanDevices();
    int bulkOut(quint8* data, int length);
    int bulkIn(quint8* data, int length);

    bool readRegister(int address, quint8* value);
    bool writeRegister(int address, const quint8* value);
    bool readBlock(int count, quint8* elements);
    bool writeBlock(int count, quint8* elements);
    bool readAuto(int start, int count, quint8* buffer);
    bool writeAuto(int start, int count, const quint8* data);

    // The element list of a block operation over these registers: (address
    // high, address low, value) each, or (address, value) with one address
    // byte; the values are 0 when none are given. Element i's value stands
    // at byte i * (addressBytes + 1) + addressBytes.
    std::vector<quint8> blockList(const std::vector<int>& addresses, const quint8* values = nullptr) const;

private:
    friend class UsbSession;

    // One exchange of a frame of `length` bytes; true when both directions
    // moved the whole frame.
    bool exchange(quint8* out, quint8* in, int length);
    bool singleRegister(int address, quint8 mark, quint8 data, quint8* reply);
    bool block(int count, quint8* elements, bool write);
    bool autoincrement(int start, int count, const quint8* source, quint8* target);
    bool refuse();
    int elementSize() const { return addressBytes + 1; }
    int elementAddress(const quint8* element) const;
    // False, with the failure said, when a register from first to last has
    // no address in a frame.
    bool addressesFit(int first, int last);

    mutable QRecursiveMutex lock;
    QString failure;
    QString refused;
    int holds = 0;
    QString heldKey;     // the board held, once the first operation opened it
    QStringList seen;    // the boards on the bus at the last look
    bool stalled = false; // an endpoint stalled: the next open clears the halts
    std::atomic<UsbFrameObserver*> frameObserver{nullptr};
    bool keep = false;
    libusb_device_handle* kept = nullptr; // open and claimed between operations
    std::atomic<quint64> changes{0};
    QString keptKey;
};
