// SIGINT and SIGTERM through a socket pair to the event loop: the handler
// only writes a byte, the loop reads it and says so.
#include "termination_watch.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t n = ::write(signalPipe[1], &byte, 1);
}

} // namespace

TerminationWatch::TerminationWatch(QObject* parent) : QObject(parent) {}

bool TerminationWatch::start()
{
    if (signalPipe[0] < 0 && ::socketpair(AF_UNIX, SOCK_STREAM, 0, signalPipe) != 0)
        return false;
    auto* ending = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(ending, &QSocketNotifier::activated, this, &TerminationWatch::requested);
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    return true;
}
