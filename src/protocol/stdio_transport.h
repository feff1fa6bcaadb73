// The scripting protocol on standard input and output: one client, served
// until its input ends (zv4280ctl serve).
#pragma once

#include "fd_transport.h"

class StdioTransport : public FdTransport
{
    Q_OBJECT
public:
    explicit StdioTransport(const RpcDispatcher& dispatcher, QObject* parent = nullptr);
};
