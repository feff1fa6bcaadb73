"""The Python client against zv4280ctl serve on the simulated board, over
the server's pipes and over its local socket, and against the running
program under Xvfb. Runs under zvsim-launch, whose control pipe plugs a
second board in or makes a transfer fail."""

import os
import socket
import subprocess
import sys
import time

import pytest

import zv4280

CTL = os.environ["ZV_CTL"]


@pytest.fixture(scope="module")
def program():
    # The program on its own screen, its socket in the desk's runtime folder.
    sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "e2e"))
    import desk
    screen = desk.Desk()
    child = subprocess.Popen([os.environ["ZV_PROGRAM"]], env=screen.env, start_new_session=True)
    yield os.path.join(screen.env["XDG_RUNTIME_DIR"], f"zv4280tb-{child.pid}.sock")
    desk.stop(child)
    screen.close()


@pytest.fixture(params=["pipes", "socket", "program"])
def server(request, tmp_path, monkeypatch):
    if request.param == "program":
        path = request.getfixturevalue("program")
        while not os.path.exists(path):  # the socket comes once the window is up
            time.sleep(0.05)
        with zv4280.connect(path) as client:
            client.name = "zv4280tb"
            client.fields_get(["TS_MD"], source="gui", wait=True)  # the start's load is over
            yield client
        return
    if request.param == "pipes":
        with zv4280.spawn(CTL) as client:
            client.name = "zv4280ctl"
            yield client
        return
    # connect() finds the one socket in the runtime folder that answers; a
    # file left by an ended program is passed over.
    monkeypatch.setenv("XDG_RUNTIME_DIR", str(tmp_path))
    (tmp_path / "zv4280tb-1.sock").touch()
    path = tmp_path / "zv4280tb-2.sock"
    child = subprocess.Popen([CTL, "serve", "--listen", str(path)], stderr=subprocess.PIPE, text=True)
    assert child.stderr.readline() == f"zv4280ctl: serve: listening at {path}\n"
    assert path.stat().st_mode & 0o777 == 0o600
    with zv4280.connect() as client:
        client.name = "zv4280ctl"
        yield client
    child.terminate()
    child.communicate()
    assert child.returncode == 0 and not path.exists()


def test_registers(server):
    assert server.session_info() == {
        "server": server.name, "version": os.environ["ZV_VERSION"], "chip": "ZV4280v2",
        "board": {"bus": 1, "address": 5, "vendor": "2976", "product": "0003"}}
    assert server.registers_write({40: 0x5A, 12: 0xA5, 290: 7}) == {
        "written": [12, 40, 290], "readBack": {"12": 0xA5, "40": 0x5A, "290": 7}}
    whole = server.registers_read()["values"]
    assert len(whole) == 291 and (whole[12], whole[40], whole[290]) == (0xA5, 0x5A, 7)
    for style in ("auto", "block", "single"):
        assert server.registers_read(first=39, count=2, style=style) == {"first": 39, "values": whole[39:41]}

    # The chip keeps register 0 to itself: the write is made and reported.
    with pytest.raises(zv4280.Error) as refused:
        server.registers_write({0: whole[0] ^ 0xFF, 41: 3})
    assert refused.value.code == zv4280.READ_BACK_DIFFERS
    assert refused.value.data == {"written": [0, 41], "readBack": {"0": whole[0], "41": 3}, "differs": [0]}

    # A notification is carried out and not answered; a batch is answered
    # in one array, in order.
    server.send_line(b'{"jsonrpc": "2.0", "method": "registers.write", "params": {"values": {"41": 4}}}')
    server.send_line(b'[{"jsonrpc": "2.0", "id": "a", "method": "registers.read", "params": {"first": 41, '
                     b'"count": 1}}, 5, {"jsonrpc": "2.0", "method": "session.info"}]')
    assert [(r["id"], r.get("result"), r.get("error", {}).get("code")) for r in server.receive()] == [
        ("a", {"first": 41, "values": [4]}, None), (None, None, zv4280.INVALID_REQUEST)]


@pytest.mark.parametrize("line, code, words", [
    ('{"jsonrpc": "2.0", "id": 1, "method": "session.info"', zv4280.PARSE_ERROR, "no JSON"),
    ('{"id": 1, "method": "session.info"}', zv4280.INVALID_REQUEST, '"jsonrpc" must be "2.0"'),
    ('{"jsonrpc": "2.0", "id": [1], "method": "session.info"}', zv4280.INVALID_REQUEST, '"id"'),
    ('[]', zv4280.INVALID_REQUEST, "empty batch"),
    ('{"jsonrpc": "2.0", "id": 1, "method": "fields.lst"}', zv4280.METHOD_NOT_FOUND, '"fields.lst"'),
    ('{"jsonrpc": "2.0", "id": 1, "method": "registers.read", "params": [0, 1]}', zv4280.INVALID_PARAMS, "array"),
    ('{"jsonrpc": "2.0", "id": 1, "method": "registers.read", "params": {"first": "12"}}',
     zv4280.INVALID_PARAMS, '"first" must be a whole number from 0 to 290, not "12"'),
    ('{"jsonrpc": "2.0", "id": 1, "method": "registers.read", "params": {"first": 290, "count": 2}}',
     zv4280.INVALID_PARAMS, '"count" 2 from register 290'),
    ('{"jsonrpc": "2.0", "id": 1, "method": "registers.read", "params": {"style": "fast"}}',
     zv4280.INVALID_PARAMS, '"style" must be one of'),
    ('{"jsonrpc": "2.0", "id": 1, "method": "registers.write", "params": {"values": {"20": 1, "30": 256}}}',
     zv4280.INVALID_PARAMS, "register 30 takes a value from 0 to 255, not 256"),
    ('{"jsonrpc": "2.0", "id": 1, "method": "registers.write", "params": {"values": {"20": 1, "0x1f": 1}}}',
     zv4280.INVALID_PARAMS, '"0x1f" is no register'),
    ('{"jsonrpc": "2.0", "id": 1, "method": "registers.write", "params": {"values": {"20": 1}, "verify": true}}',
     zv4280.INVALID_PARAMS, 'unknown member "verify"'),
    ('{"jsonrpc": "2.0", "id": 1, "method": "fields.set", "params": {"values": {"ChA_PLL_RDiv": 3, "TS_MD": 2}}}',
     zv4280.INVALID_PARAMS, 'TS_MD (combo box) takes 0 to 1: 0 single | 1 continuous, not "2"'),
    ('{"jsonrpc": "2.0", "id": 1, "method": "fields.set", "params": {"values": {"ChA_PLL_RDiv": 3, "ChA_PLL": 1}}}',
     zv4280.INVALID_PARAMS, 'no field "ChA_PLL"'),
    ('{"jsonrpc": "2.0", "id": 1, "method": "fields.set", "params": {"values": {"ChA_PLL_RDiv": 3.5}}}',
     zv4280.INVALID_PARAMS, 'takes 0 to 31, not "3.5"'),
    ('{"jsonrpc": "2.0", "id": 1, "method": "file.load", "params": {"path": "BAD"}}', zv4280.FILE_ERROR, "Reg30 999"),
    ('{"jsonrpc": "2.0", "id": 1, "method": "file.save", "params": {"path": "SAVED/x.hex"}}', zv4280.FILE_ERROR,
     "no such folder"),
])
def test_bad_input(server, tmp_path, line, code, words):
    bad = tmp_path / "bad.hex"
    bad.write_text(";ZV4280v2\nReg20 01\nReg30 999\n")
    line = line.replace("BAD", str(bad)).replace("SAVED", str(tmp_path / "saved.hex"))
    server.registers_write({20: 0xEE, 30: 0xEE})
    before = server.registers_read(first=20, count=11)
    server.send_line(line.encode())
    error = server.receive()["error"]
    assert error["code"] == code and words in error["message"], error
    assert server.registers_read(first=20, count=11) == before
    assert not (tmp_path / "saved.hex").exists()


def test_sweep(server, tmp_path):
    assert [f["name"] for f in server.fields_list(match="reg21")["fields"]] == ["ChA_PLL_RDiv"]
    forms = server.name == "zv4280tb"
    for code in (1, 13, 31, 0):
        done = server.fields_set({"ChA_PLL_RDiv": code})
        assert done["fields"][0]["code"] == code and done["written"] in ([21], [])
        assert server.registers_read(first=21, count=1)["values"][0] & 0x1F == code
        if forms:  # the program's forms show the step
            assert server.fields_get(["ChA_PLL_RDiv"], source="gui")["fields"][0]["code"] == code
    # A register written beside the forms: the next field write reads the
    # chip first instead of trusting what it last read.
    reg = server.registers_read(first=21, count=1)["values"][0]
    server.registers_write({21: reg ^ 0x1F})
    assert server.fields_set({"ChA_PLL_RDiv": 0})["written"] == [21]
    assert server.registers_read(first=21, count=1)["values"][0] == reg
    server.fields_set({"ChA_PLL_RDiv": 9})
    path = server.file_save(tmp_path / "swept.hex", comments=True)["path"]
    server.fields_set({"ChA_PLL_RDiv": 2})
    assert server.fields_get(["ChA_PLL_RDiv"], source=path)["fields"][0]["code"] == 9
    assert server.file_load(path)["registers"] == 107
    assert server.fields_get(["ChA_PLL_RDiv"])["fields"][0]["text"] == "R-divider ratio:  9"


def test_huge_message(server):
    server.send_line(b'{"jsonrpc": "2.0", "id": 1, "method": "session.info", "params": {"x": "'
                     + b"x" * (1 << 20) + b'"}}')
    error = server.receive()["error"]
    assert error["code"] == zv4280.INVALID_REQUEST and "1 MiB" in error["message"]
    with pytest.raises(ConnectionError):
        server.receive()


def test_client_that_does_not_read(program):
    # Its replies wait in the program, which answers the next client.
    while not os.path.exists(program):
        time.sleep(0.05)
    with socket.socket(socket.AF_UNIX) as silent:
        silent.connect(program)
        silent.sendall(b'{"jsonrpc": "2.0", "id": 1, "method": "fields.list", "params": {"match": "_"}}\n' * 40)
        with zv4280.connect(program) as client:
            assert client.session_info()["server"] == "zv4280tb"


# Each command is followed by a dump, whose file tells that the launcher has
# taken both.
@pytest.mark.parametrize("command, code, data, after", [
    ("plug", zv4280.NO_BOARD, {"written": []}, "unplug"),
    ("fault short 3", zv4280.BOARD_FAILED, {"written": [], "uncertain": [12, 40]}, None),
])
def test_board_trouble(tmp_path, command, code, data, after):
    def launcher(line, name):
        with open(os.environ["ZV_LAUNCH_CONTROL"], "w") as control:
            control.write(f"{line}\ndump {tmp_path / name}\n")
        while not (tmp_path / name).exists():
            time.sleep(0.01)

    with zv4280.spawn(CTL) as server:
        launcher(command, "taken")
        with pytest.raises(zv4280.Error) as failed:
            server.registers_write({12: 1, 40: 2})
        assert (failed.value.code, failed.value.data) == (code, data)
        if after:
            launcher(after, "back")
        assert server.registers_write({12: 3}) == {"written": [12], "readBack": {"12": 3}}
