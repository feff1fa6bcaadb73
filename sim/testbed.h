#pragma once

#include "simulated_chip.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstdint>
#include <memory>

namespace zvsim {

// A bridge board as the bus shows it.
struct BoardConfig
{
    uint16_t vendor = 0x2976;
    uint16_t product = 0x0003;
    uint8_t bus = 1;
    uint8_t address = 5;
    bool kernelDriver = false; // a driver holds interface 0
};

// How one bulk transfer goes wrong: it stalls and moves nothing; it ends
// short after `bytes` bytes without an error; or it moves every byte and
// still reports an error (an overflow). A stalled or short frame OUT reaches
// the chip only as far as it got. A stalled endpoint stays halted, every
// transfer on it stalling, until the host clears the halt.
struct TransferFault
{
    enum Kind { Stall, Short, Overflow } kind = Stall;
    bool out = false; // direction of the transfer that goes wrong
    int skip = 0;     // transfers of that direction that go through first
    int bytes = 0;    // Short: the bytes moved
};

// One bulk transfer as it crossed the wire.
struct WireFrame
{
    int board = 0;
    bool out = false; // host to board
    QByteArray bytes;
};

// Emulated USB bridge boards for the real libusb: a umockdev testbed with one
// usbfs device node per board and a handler that plays the bridge and the
// chip behind it. The process must run under umockdev-wrapper. The handler
// runs on a thread of its own, so that a caller may block in libusb while the
// board answers.
class Testbed
{
public:
    Testbed();
    ~Testbed();
    Testbed(const Testbed&) = delete;
    Testbed& operator=(const Testbed&) = delete;

    // True when the process runs under umockdev-wrapper.
    static bool available();

    int addBoard(const BoardConfig& config = BoardConfig());
    void removeBoard(int board);
    // The chip behind a board. Its registers may be read and set directly
    // while no program talks to the board; while one does, use
    // setRegister and registers, which wait for the exchange in progress.
    SimulatedChip& chip(int board);
    void setRegister(int board, int reg, uint8_t value);
    QByteArray registers(int board) const;

    // Faults, each for the given board. A second open file of a board's node
    // cannot claim interface 0 while the first holds it (EBUSY).
    void unplugAfter(int board, int transfers); // later transfers fail: no device
    // The next transfer stalls; with `after`, the one after that many more,
    // in either direction.
    void stallNext(int board, int after = 0);
    void shortNext(int board, int bytes);       // the next IN transfer moves only this many bytes
    void failTransfer(int board, const TransferFault& fault);
    void refuseClaim(int board, bool refuse);

    int opens(int board) const;
    int closes(int board) const;
    int transfers(int board) const;
    bool kernelDriverBound(int board) const;
    int claims(int board) const;
    int releases(int board) const;
    // The boards that were not let go as often as they were taken (opens
    // against closes, claims against releases), e.g. "board 0: 2 opens, 1
    // close"; empty when every board is.
    QString unreleased() const;

    QList<WireFrame> wireLog() const;
    void clearWireLog();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace zvsim
