"""Scripts for the ZV4280 bench tool: a client of its scripting protocol.

The protocol is JSON-RPC 2.0, one message a line. Two servers speak it:
``zv4280ctl serve``, a process of its own on standard input and output, and
the running program ``zv4280tb`` on a local socket.

    import zv4280

    with zv4280.spawn() as chip:               # zv4280ctl serve, as a child
        print(chip.session_info()["board"])
        chip.registers_write({21: 0x0C})
        print(chip.registers_read(first=21, count=1)["values"])

    with zv4280.connect() as tool:             # the one zv4280tb running
        ...

A failed request raises ``zv4280.Error`` with the server's code, message and
data (what was written all the same, if anything). Standard library only.
"""

import glob
import itertools
import json
import os
import socket
import subprocess

__all__ = ["Error", "Client", "connect", "spawn", "socket_folder",
           "PARSE_ERROR", "INVALID_REQUEST", "METHOD_NOT_FOUND", "INVALID_PARAMS",
           "NO_BOARD", "BOARD_FAILED", "READ_BACK_DIFFERS", "BUSY", "FILE_ERROR"]

# The error codes: JSON-RPC's, then the bench's.
PARSE_ERROR = -32700
INVALID_REQUEST = -32600
METHOD_NOT_FOUND = -32601
INVALID_PARAMS = -32602
NO_BOARD = -32001
BOARD_FAILED = -32002
READ_BACK_DIFFERS = -32003
BUSY = -32004
FILE_ERROR = -32005


class Error(Exception):
    """A request the server refused or failed: its code, message and data."""

    def __init__(self, code, message, data=None):
        super().__init__(f"{message} ({code})")
        self.code = code
        self.message = message
        self.data = data


class Client:
    """One connection to a server: requests go out one at a time and each
    waits for its reply. Methods carry the protocol's names with "_" for
    ".", and ``call`` sends any method."""

    def __init__(self, reader, writer, closer):
        self._reader = reader
        self._writer = writer
        self._closer = closer
        self._ids = itertools.count(1)

    def call(self, method, **params):
        """Sends a request and gives its result; raises Error on an error
        reply, ConnectionError when the server has gone."""
        ident = next(self._ids)
        message = {"jsonrpc": "2.0", "id": ident, "method": method}
        if params:
            message["params"] = params
        self.send_line(json.dumps(message).encode())
        reply = self.receive()
        if reply.get("id") != ident:
            raise ConnectionError(f"a reply to request {reply.get('id')!r} came for request {ident}")
        if "error" in reply:
            error = reply["error"]
            raise Error(error.get("code"), error.get("message"), error.get("data"))
        return reply.get("result")

    def send_line(self, line):
        """Sends one message as it stands (bytes, without the line end)."""
        self._writer.write(line + b"\n")
        self._writer.flush()

    def receive(self):
        """The next reply; raises ConnectionError when the server closed."""
        line = self._reader.readline()
        if not line:
            raise ConnectionError("the server closed the connection")
        return json.loads(line)

    def session_info(self):
        return self.call("session.info")

    # wait=True: against the program, a request that comes while an
    # operation runs waits for its end instead of failing with BUSY.

    def registers_read(self, first=None, count=None, style=None, wait=None):
        return self.call("registers.read", **_given(first=first, count=count, style=style, wait=wait))

    def registers_write(self, values, wait=None):
        """values: register number to value, e.g. {21: 0x0C}."""
        return self.call("registers.write", values={str(r): v for r, v in values.items()}, **_given(wait=wait))

    def fields_list(self, match=None):
        return self.call("fields.list", **_given(match=match))

    def fields_get(self, names, source=None, wait=None):
        """source: "chip" (the default), "gui" (the program's forms) or a .hex file's path."""
        return self.call("fields.get", names=list(names), **_given(source=_path(source), wait=wait))

    def fields_set(self, values, target=None, wait=None):
        """values: field name to code, e.g. {"ChA_PLL_RDiv": 13}; target "chip" or "gui"."""
        return self.call("fields.set", values=dict(values), **_given(target=target, wait=wait))

    def file_load(self, path, target=None, wait=None, lenient=None):
        """lenient=True takes lines that are no plain register lines as they read."""
        return self.call("file.load", path=os.fspath(path), **_given(target=target, wait=wait, lenient=lenient))

    def file_save(self, path, source=None, comments=None, wait=None):
        return self.call("file.save", path=os.fspath(path), **_given(source=source, comments=comments, wait=wait))

    def close(self):
        """Ends the connection; a spawned server ends with it."""
        if self._closer:
            closer, self._closer = self._closer, None
            closer()

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()


def _given(**params):
    return {k: v for k, v in params.items() if v is not None}


def _path(source):
    return source if source is None or isinstance(source, str) else os.fspath(source)


def spawn(ctl="zv4280ctl", *args):
    """A ``zv4280ctl serve`` child over pipes; args go before "serve", e.g.
    spawn("zv4280ctl", "--board", "1:5")."""
    child = subprocess.Popen([ctl, *args, "serve"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def close():
        child.stdin.close()
        try:
            child.wait(timeout=10)
        except subprocess.TimeoutExpired:
            child.kill()
            child.wait()
        child.stdout.close()

    return Client(child.stdout, child.stdin, close)


def socket_folder():
    """Where the program makes its socket: $XDG_RUNTIME_DIR, or else
    /tmp/zv4280tb-UID."""
    return os.environ.get("XDG_RUNTIME_DIR") or f"/tmp/zv4280tb-{os.getuid()}"


def connect(path=None):
    """A connection to the running program: the socket at path, or with no
    path the one zv4280tb-*.sock in socket_folder() that answers."""
    if path is not None:
        return _attach(_open_socket(os.fspath(path)))
    folder = socket_folder()
    answering = []
    for candidate in sorted(glob.glob(os.path.join(folder, "zv4280tb-*.sock"))):
        try:
            answering.append((candidate, _open_socket(candidate)))
        except OSError:
            pass  # left by a program that has ended
    if len(answering) != 1:
        for _, sock in answering:
            sock.close()
        if not answering:
            raise ConnectionError(f"no running zv4280tb answers in {folder}: start the program, "
                                  "or give connect() the path of its socket")
        raise ConnectionError(f"{len(answering)} zv4280tb are running ("
                              + ", ".join(p for p, _ in answering)
                              + "): give connect() the path of one")
    return _attach(answering[0][1])


def _open_socket(path):
    sock = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
    try:
        sock.connect(path)
    except OSError:
        sock.close()
        raise
    return sock


def _attach(sock):
    reader = sock.makefile("rb")
    writer = sock.makefile("wb")

    def close():
        writer.close()
        reader.close()
        sock.close()

    return Client(reader, writer, close)
