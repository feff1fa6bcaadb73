#include "testbed.h"

#include <QStringList>

#include <glib.h>
#include <umockdev.h>

// The request macros need ioctl.h first.
#include <sys/ioctl.h>
#include <linux/usbdevice_fs.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <future>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

namespace zvsim {

namespace {

QByteArray descriptors(const BoardConfig& c)
{
    const uint8_t device[18] = {0x12, 0x01, 0x00, 0x02, 0x00, 0x00, 0x00, 0x40,
                                uint8_t(c.vendor & 0xFF), uint8_t(c.vendor >> 8),
                                uint8_t(c.product & 0xFF), uint8_t(c.product >> 8),
                                0x00, 0x01, 0x00, 0x00, 0x00, 0x01};
    const uint8_t config[32] = {// configuration
                                0x09, 0x02, 0x20, 0x00, 0x01, 0x01, 0x00, 0x80, 0x32,
                                // interface 0, two endpoints, vendor class
                                0x09, 0x04, 0x00, 0x00, 0x02, 0xFF, 0x00, 0x00, 0x00,
                                // bulk OUT 0x02 and bulk IN 0x81, 64 bytes
                                0x07, 0x05, 0x02, 0x02, 0x40, 0x00, 0x00,
                                0x07, 0x05, 0x81, 0x02, 0x40, 0x00, 0x00};
    return QByteArray(reinterpret_cast<const char*>(device), 18) + QByteArray(reinterpret_cast<const char*>(config), 32);
}

} // namespace

struct Board
{
    int index = 0;
    BoardConfig config;
    QString sysPath;
    QString devNode;
    UMockdevIoctlBase* handler = nullptr;
    SimulatedChip chip;
    // What each open file of the node has in flight, as the kernel keeps it:
    // the chip's answer waiting for the next URB IN, and the URBs to reap.
    struct Client
    {
        QByteArray pendingReply;
        std::deque<UMockdevIoctlData*> completed;
    };
    std::map<UMockdevIoctlClient*, Client> inFlight;
    UMockdevIoctlClient* claimer = nullptr; // the client that holds interface 0
    bool halted[2] = {false, false};        // endpoint OUT, endpoint IN: stalled until cleared
    bool removed = false;
    bool driverBound = false;
    bool refuseClaim = false;
    int unplugAfter = -1;
    int stallAt = -1; // the number of the transfer that stalls
    int shortNext = -1;
    std::optional<TransferFault> fault;
    int opens = 0;
    std::vector<UMockdevIoctlClient*> clients; // every client seen, referenced
    int transfers = 0;
    int claims = 0;
    int releases = 0;
};

struct Testbed::Private
{
    UMockdevTestbed* testbed = nullptr;
    GMainContext* context = nullptr;
    GMainLoop* loop = nullptr;
    GThread* thread = nullptr;
    mutable std::mutex mutex; // guards the boards' state and the wire log
    std::vector<std::unique_ptr<Board>> boards;
    QList<WireFrame> log;

    static gpointer serve(gpointer self)
    {
        auto* p = static_cast<Private*>(self);
        g_main_context_push_thread_default(p->context);
        g_main_loop_run(p->loop);
        g_main_context_pop_thread_default(p->context);
        return nullptr;
    }

    // A client is one open file of the device node: one libusb_open.
    static void connected(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer data)
    {
        auto* b = static_cast<Board*>(data);
        Private* p = ownerOf(b);
        std::lock_guard<std::mutex> guard(p->mutex);
        ++b->opens;
        b->clients.push_back(static_cast<UMockdevIoctlClient*>(g_object_ref(client)));
    }

    static void dropCompleted(Board* b)
    {
        for (auto& c : b->inFlight)
            for (UMockdevIoctlData* urb : c.second.completed)
                umockdev_ioctl_data_unref(urb);
        b->inFlight.clear();
    }

    static int disconnected(const Board* b)
    {
        int n = 0;
        for (UMockdevIoctlClient* c : b->clients)
            n += umockdev_ioctl_client_get_connected(c) ? 0 : 1;
        return n;
    }

    static gboolean ioctl(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer data)
    {
        auto* b = static_cast<Board*>(data);
        Private* p = ownerOf(b);
        std::lock_guard<std::mutex> guard(p->mutex);
        p->handle(b, client);
        return TRUE;
    }

    static Private*& registry()
    {
        static Private* current = nullptr;
        return current;
    }
    static Private* ownerOf(Board*) { return registry(); }

    // Runs work on the serving thread and waits for it: what umockdev attaches
    // there is served there.
    void onServer(const std::function<void()>& work)
    {
        struct Call
        {
            std::function<void()> work;
            std::promise<void> done;
        } call{work, {}};
        std::future<void> finished = call.done.get_future();
        g_main_context_invoke(
            context,
            [](gpointer data) -> gboolean {
                auto* c = static_cast<Call*>(data);
                c->work();
                c->done.set_value();
                return G_SOURCE_REMOVE;
            },
            &call);
        finished.wait();
    }

    void handle(Board* b, UMockdevIoctlClient* client);
    void submit(Board* b, UMockdevIoctlClient* client, UMockdevIoctlData* arg);
};

void Testbed::Private::handle(Board* b, UMockdevIoctlClient* client)
{
    const gulong request = umockdev_ioctl_client_get_request(client);
    UMockdevIoctlData* arg = umockdev_ioctl_client_get_arg(client);
    switch (request) {
    case USBDEVFS_GET_CAPABILITIES: {
        const uint32_t caps = USBDEVFS_CAP_BULK_CONTINUATION | USBDEVFS_CAP_NO_PACKET_SIZE_LIM;
        UMockdevIoctlData* value = umockdev_ioctl_data_resolve(arg, 0, sizeof(caps), nullptr);
        if (value) {
            umockdev_ioctl_data_update(value, 0, reinterpret_cast<guint8*>(const_cast<uint32_t*>(&caps)), sizeof(caps));
            umockdev_ioctl_data_unref(value);
        }
        umockdev_ioctl_client_complete(client, value ? 0 : -1, value ? 0 : EFAULT);
        return;
    }
    case USBDEVFS_GETDRIVER: {
        if (!b->driverBound) {
            umockdev_ioctl_client_complete(client, -1, ENODATA);
            return;
        }
        UMockdevIoctlData* slot = umockdev_ioctl_data_resolve(arg, 0, sizeof(usbdevfs_getdriver), nullptr);
        if (!slot) {
            umockdev_ioctl_client_complete(client, -1, EFAULT);
            return;
        }
        usbdevfs_getdriver info;
        std::memcpy(&info, slot->data, sizeof(info));
        std::strcpy(info.driver, "zvsim-hid");
        umockdev_ioctl_data_update(slot, 0, reinterpret_cast<guint8*>(&info), sizeof(info));
        umockdev_ioctl_data_unref(slot);
        umockdev_ioctl_client_complete(client, 0, 0);
        return;
    }
    case USBDEVFS_IOCTL: {
        UMockdevIoctlData* slot = umockdev_ioctl_data_resolve(arg, 0, sizeof(usbdevfs_ioctl), nullptr);
        usbdevfs_ioctl command{};
        if (slot) {
            std::memcpy(&command, slot->data, sizeof(command));
            umockdev_ioctl_data_unref(slot);
        }
        if (command.ioctl_code == int(USBDEVFS_DISCONNECT)) {
            b->driverBound = false;
            umockdev_ioctl_client_complete(client, 0, 0);
        } else {
            umockdev_ioctl_client_complete(client, -1, ENOTTY);
        }
        return;
    }
    case USBDEVFS_CLAIMINTERFACE: {
        // Another open file that still holds the interface keeps it, as the
        // kernel refuses a second claim.
        const bool taken = b->claimer && b->claimer != client && umockdev_ioctl_client_get_connected(b->claimer);
        if (b->refuseClaim || b->driverBound || taken) {
            umockdev_ioctl_client_complete(client, -1, EBUSY);
        } else {
            ++b->claims;
            b->claimer = client;
            umockdev_ioctl_client_complete(client, 0, 0);
        }
        return;
    }
    case USBDEVFS_RELEASEINTERFACE:
        ++b->releases;
        if (b->claimer == client)
            b->claimer = nullptr;
        umockdev_ioctl_client_complete(client, 0, 0);
        return;
    case USBDEVFS_CLEAR_HALT: {
        UMockdevIoctlData* slot = umockdev_ioctl_data_resolve(arg, 0, sizeof(unsigned int), nullptr);
        unsigned int endpoint = 0;
        if (slot) {
            std::memcpy(&endpoint, slot->data, sizeof(endpoint));
            umockdev_ioctl_data_unref(slot);
        }
        b->halted[(endpoint & 0x80) ? 1 : 0] = false;
        umockdev_ioctl_client_complete(client, slot ? 0 : -1, slot ? 0 : EFAULT);
        return;
    }
    case USBDEVFS_SUBMITURB:
        submit(b, client, arg);
        return;
    case USBDEVFS_REAPURBNDELAY:
    case USBDEVFS_REAPURB: {
        std::deque<UMockdevIoctlData*>& completed = b->inFlight[client].completed;
        if (completed.empty()) {
            umockdev_ioctl_client_complete(client, -1, b->removed ? ENODEV : EAGAIN);
        } else {
            UMockdevIoctlData* urb = completed.front();
            completed.pop_front();
            // The argument points at the caller's slot for the URB's address.
            UMockdevIoctlData* slot = umockdev_ioctl_data_resolve(arg, 0, sizeof(void*), nullptr);
            if (slot) {
                umockdev_ioctl_data_set_ptr(slot, 0, urb);
                umockdev_ioctl_data_unref(slot);
            }
            umockdev_ioctl_data_unref(urb);
            umockdev_ioctl_client_complete(client, slot ? 0 : -1, slot ? 0 : EFAULT);
        }
        return;
    }
    case USBDEVFS_DISCARDURB:
        umockdev_ioctl_client_complete(client, -1, EINVAL);
        return;
    default:
        umockdev_ioctl_client_complete(client, -1, ENOTTY);
        return;
    }
}

// A bulk URB completes at once: a frame OUT is answered by the chip, and the
// answer waits for the next URB IN of the same open file. A stalled endpoint
// answers every URB with a stall until its halt is cleared.
void Testbed::Private::submit(Board* b, UMockdevIoctlClient* client, UMockdevIoctlData* arg)
{
    if (b->removed || (b->unplugAfter >= 0 && b->transfers >= b->unplugAfter)) {
        b->removed = true;
        umockdev_ioctl_client_complete(client, -1, ENODEV);
        return;
    }
    UMockdevIoctlData* urbData = umockdev_ioctl_data_resolve(arg, 0, sizeof(usbdevfs_urb), nullptr);
    if (!urbData) {
        umockdev_ioctl_client_complete(client, -1, EFAULT);
        return;
    }
    usbdevfs_urb urb;
    std::memcpy(&urb, urbData->data, sizeof(urb));
    UMockdevIoctlData* buffer = urb.buffer_length > 0
                                    ? umockdev_ioctl_data_resolve(urbData, offsetof(usbdevfs_urb, buffer),
                                                                  gsize(urb.buffer_length), nullptr)
                                    : nullptr;
    ++b->transfers;
    const bool out = !(urb.endpoint & 0x80);
    std::optional<TransferFault> fault;
    if (b->fault && b->fault->out == out && b->fault->skip-- == 0)
        fault.swap(b->fault);
    if (b->transfers - 1 == b->stallAt || b->halted[out ? 0 : 1]) {
        b->stallAt = -1;
        fault = TransferFault{TransferFault::Stall, out};
    }
    if (!out && b->shortNext >= 0) {
        fault = TransferFault{TransferFault::Short, false, 0, b->shortNext};
        b->shortNext = -1;
    }
    // What crosses the wire: all of it, nothing for a stall, the first bytes of a short transfer.
    int moved = urb.buffer_length;
    const bool stalled = fault && fault->kind == TransferFault::Stall;
    urb.status = 0;
    Board::Client& mine = b->inFlight[client];
    if (stalled) {
        moved = 0;
        urb.status = -EPIPE;
        b->halted[out ? 0 : 1] = true;
    } else if (fault && fault->kind == TransferFault::Short) {
        moved = qMin(fault->bytes, moved);
    } else if (fault) {
        urb.status = -EOVERFLOW;
    }
    if (out) {
        const QByteArray frame = buffer ? QByteArray(reinterpret_cast<const char*>(buffer->data), moved) : QByteArray();
        if (!stalled) {
            log.append({b->index, true, frame});
            mine.pendingReply = b->chip.answer(frame);
        }
        urb.actual_length = moved;
    } else {
        QByteArray reply = mine.pendingReply.left(moved);
        mine.pendingReply.clear();
        urb.actual_length = reply.size();
        if (buffer && !reply.isEmpty())
            umockdev_ioctl_data_update(buffer, 0, reinterpret_cast<guint8*>(reply.data()), reply.size());
        if (!stalled)
            log.append({b->index, false, reply});
    }
    umockdev_ioctl_data_update(urbData, offsetof(usbdevfs_urb, status), reinterpret_cast<guint8*>(&urb.status),
                               sizeof(urb.status));
    umockdev_ioctl_data_update(urbData, offsetof(usbdevfs_urb, actual_length),
                               reinterpret_cast<guint8*>(&urb.actual_length), sizeof(urb.actual_length));
    if (buffer)
        umockdev_ioctl_data_unref(buffer);
    mine.completed.push_back(urbData);
    umockdev_ioctl_client_complete(client, 0, 0);
}

bool Testbed::available()
{
    const char* preload = std::getenv("LD_PRELOAD");
    return preload && std::strstr(preload, "umockdev");
}

Testbed::Testbed() : d(new Private)
{
    d->testbed = umockdev_testbed_new();
    d->context = g_main_context_new();
    d->loop = g_main_loop_new(d->context, FALSE);
    Private::registry() = d.get();
    d->thread = g_thread_new("zvsim", &Private::serve, d.get());
}

Testbed::~Testbed()
{
    // The quit runs on the server thread itself: a quit from here could come
    // before the loop starts running and be lost.
    GSource* stop = g_idle_source_new();
    g_source_set_callback(
        stop,
        [](gpointer loop) -> gboolean {
            g_main_loop_quit(static_cast<GMainLoop*>(loop));
            return G_SOURCE_REMOVE;
        },
        d->loop, nullptr);
    g_source_attach(stop, d->context);
    g_source_unref(stop);
    g_thread_join(d->thread);
    for (auto& b : d->boards) {
        Private::dropCompleted(b.get());
        for (UMockdevIoctlClient* c : b->clients)
            g_object_unref(c);
        if (b->handler) {
            umockdev_testbed_detach_ioctl(d->testbed, b->devNode.toUtf8().constData(), nullptr);
            g_object_unref(b->handler);
        }
    }
    g_main_loop_unref(d->loop);
    g_main_context_unref(d->context);
    g_object_unref(d->testbed);
    Private::registry() = nullptr;
}

int Testbed::addBoard(const BoardConfig& config)
{
    auto board = std::make_unique<Board>();
    Board* b = board.get();
    b->index = int(d->boards.size());
    b->config = config;
    b->driverBound = config.kernelDriver;
    const QString bus = QStringLiteral("%1").arg(config.bus, 3, 10, QLatin1Char('0'));
    const QString dev = QStringLiteral("%1").arg(config.address, 3, 10, QLatin1Char('0'));
    b->devNode = QStringLiteral("/dev/bus/usb/%1/%2").arg(bus, dev);
    b->sysPath = QStringLiteral("/devices/usb%1/%1-%2").arg(config.bus).arg(b->index + 1);

    b->handler = umockdev_ioctl_base_new();
    g_signal_connect_after(b->handler, "handle-ioctl", G_CALLBACK(&Private::ioctl), b);
    g_signal_connect(b->handler, "client-connected", G_CALLBACK(&Private::connected), b);
    // The handler serves in the context of the testbed's own thread.
    GError* error = nullptr;
    d->onServer([&] { umockdev_testbed_attach_ioctl(d->testbed, b->devNode.toUtf8().constData(), b->handler, &error); });
    if (error) {
        g_warning("zvsim: attach_ioctl: %s", error->message);
        g_clear_error(&error);
    }

    const QByteArray desc = descriptors(config);
    QString record;
    record += QStringLiteral("P: %1\n").arg(b->sysPath);
    record += QStringLiteral("N: bus/usb/%1/%2\n").arg(bus, dev);
    record += QStringLiteral("E: SUBSYSTEM=usb\nE: DRIVER=usb\n");
    record += QStringLiteral("E: BUSNUM=%1\nE: DEVNUM=%2\n").arg(bus, dev);
    record += QStringLiteral("E: DEVNAME=%1\nE: DEVTYPE=usb_device\n").arg(b->devNode);
    record += QStringLiteral("A: bConfigurationValue=1\\n\nA: busnum=%1\\n\nA: devnum=%2\\n\nA: speed=12\\n\n")
                  .arg(config.bus)
                  .arg(config.address);
    record += QStringLiteral("H: descriptors=%1\n").arg(QString::fromLatin1(desc.toHex().toUpper()));
    if (!umockdev_testbed_add_from_string(d->testbed, record.toUtf8().constData(), &error)) {
        g_warning("zvsim: add_from_string: %s", error ? error->message : "?");
        g_clear_error(&error);
    }
    std::lock_guard<std::mutex> guard(d->mutex);
    d->boards.push_back(std::move(board));
    return b->index;
}

void Testbed::removeBoard(int board)
{
    Board* b = d->boards.at(size_t(board)).get();
    umockdev_testbed_remove_device(d->testbed, (QStringLiteral("/sys") + b->sysPath).toUtf8().constData());
    std::lock_guard<std::mutex> guard(d->mutex);
    b->removed = true;
}

SimulatedChip& Testbed::chip(int board)
{
    return d->boards.at(size_t(board))->chip;
}

void Testbed::setRegister(int board, int reg, uint8_t value)
{
    std::lock_guard<std::mutex> guard(d->mutex);
    d->boards.at(size_t(board))->chip.setReg(reg, value);
}

QByteArray Testbed::registers(int board) const
{
    std::lock_guard<std::mutex> guard(d->mutex);
    const SimulatedChip& chip = d->boards.at(size_t(board))->chip;
    QByteArray regs(SimulatedChip::kRegisters, '\0');
    for (int r = 0; r < regs.size(); ++r)
        regs[r] = char(chip.reg(r));
    return regs;
}

void Testbed::unplugAfter(int board, int transfers)
{
    std::lock_guard<std::mutex> guard(d->mutex);
    Board* b = d->boards.at(size_t(board)).get();
    b->unplugAfter = b->transfers + transfers;
}

void Testbed::stallNext(int board, int after)
{
    std::lock_guard<std::mutex> guard(d->mutex);
    Board* b = d->boards.at(size_t(board)).get();
    b->stallAt = b->transfers + after;
}

void Testbed::shortNext(int board, int bytes)
{
    std::lock_guard<std::mutex> guard(d->mutex);
    d->boards.at(size_t(board))->shortNext = bytes;
}

void Testbed::failTransfer(int board, const TransferFault& fault)
{
    std::lock_guard<std::mutex> guard(d->mutex);
    d->boards.at(size_t(board))->fault = fault;
}

void Testbed::refuseClaim(int board, bool refuse)
{
    std::lock_guard<std::mutex> guard(d->mutex);
    d->boards.at(size_t(board))->refuseClaim = refuse;
}

int Testbed::opens(int board) const
{
    std::lock_guard<std::mutex> guard(d->mutex);
    return d->boards.at(size_t(board))->opens;
}

// A close reaches the board's handler a moment after libusb has let the
// device go: wait for it, up to two seconds.
int Testbed::closes(int board) const
{
    for (int waited = 0;; ++waited) {
        {
            std::lock_guard<std::mutex> guard(d->mutex);
            const Board* b = d->boards.at(size_t(board)).get();
            const int closed = Private::disconnected(b);
            if (closed >= b->opens || waited >= 2000)
                return closed;
        }
        g_usleep(1000);
    }
}

int Testbed::transfers(int board) const
{
    std::lock_guard<std::mutex> guard(d->mutex);
    return d->boards.at(size_t(board))->transfers;
}

int Testbed::claims(int board) const
{
    std::lock_guard<std::mutex> guard(d->mutex);
    return d->boards.at(size_t(board))->claims;
}

int Testbed::releases(int board) const
{
    std::lock_guard<std::mutex> guard(d->mutex);
    return d->boards.at(size_t(board))->releases;
}

QString Testbed::unreleased() const
{
    QStringList boards;
    for (int board = 0; board < int(d->boards.size()); ++board) {
        const int taken[2] = {opens(board), claims(board)}, given[2] = {closes(board), releases(board)};
        if (taken[0] != given[0] || taken[1] != given[1])
            boards << QStringLiteral("board %1: %2 opens, %3 closes, %4 claims, %5 releases")
                          .arg(board).arg(taken[0]).arg(given[0]).arg(taken[1]).arg(given[1]);
    }
    return boards.join(QStringLiteral("; "));
}

bool Testbed::kernelDriverBound(int board) const
{
    std::lock_guard<std::mutex> guard(d->mutex);
    return d->boards.at(size_t(board))->driverBound;
}

QList<WireFrame> Testbed::wireLog() const
{
    std::lock_guard<std::mutex> guard(d->mutex);
    return d->log;
}

void Testbed::clearWireLog()
{
    std::lock_guard<std::mutex> guard(d->mutex);
    d->log.clear();
}

} // namespace zvsim
