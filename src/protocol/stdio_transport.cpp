// Standard input read as it comes, while the connection wants it; replies
// written to standard output as they are made.
#include "stdio_transport.h"

#include <csignal>
#include <unistd.h>

StdioTransport::StdioTransport(const RpcDispatcher& dispatcher, QObject* parent)
    : FdTransport(dispatcher, STDIN_FILENO, STDOUT_FILENO, false, parent)
{
    // A client that goes away makes the next write fail, which ends the
    // transport, instead of killing the process.
    std::signal(SIGPIPE, SIG_IGN);
}
