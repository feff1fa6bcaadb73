#!/usr/bin/python3
# End-to-end scenarios: the built program on a simulated board under a
# virtual X server, driven with keys and clicks and read back from its
# windows. One scenario a run:
#   scenarios.py NAME --launcher zvsim-launch --program zv4280tb --defaults default.hex [--build DIR] [--deb FILE]

import argparse
import os
import re
import shutil
import signal
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from desk import TITLE, Desk, Failure, Program, check, colour_name, read_hex, wait_for  # noqa: E402

# Fields by their kind and their register location, as their tooltips give it.
C_DIVIDER = ("spin button", "Reg11 <D7-D0>")
CHIP_ID = ("text", "Reg0 <D7-D0>,Reg1 <D7-D3>")
TEMPERATURE = ("text", "Reg4 <D1-D0>,Reg5 <D7-D0>")
AOK = ("image", "Reg2 <D4>")

MAP_TITLE = "ZV4280(v2/v3)"
PANEL_TITLE = "Service settings"


class Stopped(BaseException):
    pass


class Bench:
    # The desk, the program in a working folder of its own, and the steps
    # a person takes in its windows. As a context, it ends with a check that
    # no message box is open and that the program said nothing.

    def __init__(self, args, default_hex=None, command=None, workdir=None, desk=None):
        self.desk = desk or Desk()
        self.workdir = workdir or os.path.join(self.desk.tmp, "work")
        os.makedirs(self.workdir, exist_ok=True)
        if default_hex is not None:
            with open(os.path.join(self.workdir, "default.hex"), "w") as f:
                f.write(default_hex)
        elif not workdir:
            shutil.copy(args.defaults, os.path.join(self.workdir, "default.hex"))
        try:
            self.program = Program(self.desk, command or [args.launcher, args.program], self.workdir)
            self.frame = self.program.frame
        except BaseException:
            self.desk.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, failure, *_):
        try:
            if not failure:
                if self.program.proc.poll() is None:
                    self.program.check_no_message()
                self.program.check_quiet()
        finally:
            self.program.stop()
            self.desk.close()

    # -- reading the windows ---------------------------------------------------

    def shown(self, field):
        return self.desk.text(self.desk.field(self.frame, *field))

    def check_shown(self, expected):
        # Checks what fields show: field -> text.
        for field, text in expected.items():
            now = self.shown(field)
            check(now == text, f'the {field[0]} of "{field[1]}" shows {now!r}, not {text!r}')

    def device_box(self, panel):
        return self.desk.find(panel, "the device box", lambda a: a.getRoleName() == "combo box" and a.name != "Atmel")

    # -- acting on them --------------------------------------------------------

    def set_spin(self, field, value):
        # Types a value into a spin box as a person does: click, select all,
        # type, Tab.
        self.click(self.desk.field(self.frame, *field))
        self.desk.key("ctrl+a")
        self.desk.type(str(value))
        self.desk.key("Tab")
        wait_for(f'"{field[1]}" to show {value}', lambda: self.shown(field) == str(value))

    def click(self, acc, window=None):
        # A click on a widget of a window (the main window by default),
        # raised first: with no window manager all windows open at the top
        # left corner, one over the other.
        self.desk.focus(window or self.program.main)
        self.desk.click_on(acc)

    def run(self, *keys, window=None, dialog=None, message=None):
        # Function keys pressed in a window (the main window by default) that
        # start one operation, its file dialog answered with (title, path) by
        # typing the path, the box of its failure checked and closed, and the
        # end of the operation.
        with self.program.operation():
            self.desk.key(*keys, window=window or self.program.main)
            if dialog:
                title = "^" + re.escape(dialog[0]) + "$"
                self.desk.focus(self.desk.window(title))
                self.desk.key("ctrl+a")
                self.desk.type(dialog[1])
                self.desk.key("Return")
                wait_for(f"the dialog {title} to close", lambda: not self.desk.windows(title))
            if message:
                self.program.close_message(message)

    def read_chip(self):
        self.run("F11")

    def open_window(self, button, title):
        self.click(self.desk.named(self.frame, "push button", button))
        wid = self.desk.window("^" + re.escape(title) + "$")
        return wid, self.desk.top(self.program.app, title)


def default_with(defaults, changes):
    # The shipped default.hex with some registers changed.
    lines = []
    with open(defaults, encoding="utf-8") as f:
        for line in f:
            m = re.match(r"Reg(\d+)\t", line)
            if m and int(m.group(1)) in changes:
                line = f"Reg{m.group(1)}\t{changes[int(m.group(1))]:02X}\n"
            lines.append(line)
    return "".join(lines)


# -- the scenarios -----------------------------------------------------------

def startup(args):
    # Start-up shows the main window with the working folder's default.hex
    # applied, and the status fields that only the chip can tell as "n/a".
    with Bench(args, default_with(args.defaults, {11: 0x07})) as bench:
        bench.check_shown({C_DIVIDER: "7", CHIP_ID: "n/a"})


def read(args):
    # F11 fills the window with what the chip holds, and the AOK bulb turns
    # green on the screen.
    with Bench(args) as bench:
        bench.program.set_register(11, 0x0C)
        bench.read_chip()
        bench.check_shown({CHIP_ID: "4280", C_DIVIDER: "12"})
        temperature = bench.shown(TEMPERATURE)
        check(re.fullmatch(r"-?\d+\.\d °C", temperature), f"the temperature reads {temperature!r}")
        bulb = bench.desk.field(bench.frame, *AOK)
        wait_for("the AOK bulb to turn green", lambda: colour_name(bench.desk.colour(bulb, 0.3, 0.7)) == "green")


def files(args):
    # F6 saves the window's settings with comments to a file typed into its
    # dialog; F7 loads them back and shows the file in the title.
    with Bench(args) as bench:
        saved = os.path.join(bench.desk.tmp, "saved settings.hex")
        bench.set_spin(C_DIVIDER, 6)
        # A full save with comments: the panel's "Changes only" off and
        # "Add comments" on.
        wid, panel = bench.open_window("Service settings", PANEL_TITLE)
        for name, wanted in (("Changes only", False), ("Add comments", True)):
            box = bench.desk.named(panel, "check box", name)
            bench.click(box, wid)
            wait_for(f'"{name}" {"on" if wanted else "off"}', lambda: bench.desk.checked(box) == wanted)
        bench.run("F6", dialog=("Save .hex", saved))
        with open(saved, encoding="utf-8") as f:
            text = f.read()
        check(text.startswith(";ZV4280\n") and "\nReg11\t06 //C-divider ratio:  6\n" in text
              and len(read_hex(saved)) == 107, "the file is no full save with comments holding register 11 as 06")

        bench.set_spin(C_DIVIDER, 9)
        bench.run("F7", dialog=("Open .hex", saved))
        bench.check_shown({C_DIVIDER: "6"})
        check(bench.desk.windows("^" + re.escape(TITLE + saved) + "$"), "the title does not name the loaded file")


def unplug(args):
    # A value typed into the window and F10 reach the chip. With the board
    # gone F11 says so and keeps the values (those of default.hex), and F10
    # finds no board; a board plugged in again, at a new address, is written
    # and read with no further step.
    with Bench(args) as bench:
        program = bench.program
        program.board("unplug", "unplugged the board at address 5")
        bench.run("F11", message="Interface error 5 ")
        bench.check_shown({CHIP_ID: "n/a", C_DIVIDER: "4"})
        bench.set_spin(C_DIVIDER, 7)
        bench.run("F10", message="Refresh device list")

        program.board("plug", "plugged a board in at address 6")
        bench.run("F10")
        check(program.chip()[11] == 0x07, "the new board's chip does not hold 07 in register 11")
        program.set_register(11, 0x0A)
        bench.read_chip()
        bench.check_shown({CHIP_ID: "4280", C_DIVIDER: "10"})


def panel(args):
    # The service panel lists the board as it opens, and its search finds it
    # again at its new address after a replug (where the unplug scenario
    # reads it).
    with Bench(args) as bench:
        wid, window = bench.open_window("Service settings", PANEL_TITLE)
        devices = bench.device_box(window)
        search = bench.desk.named(window, "push button", "Search")
        wait_for("the board in the device box", lambda: devices.name == "2976 3 1 5 ")

        bench.program.board("unplug", "unplugged")
        bench.program.board("plug", "plugged a board in at address 6")
        bench.click(search, wid)
        wait_for("the replugged board in the device box", lambda: devices.name == "2976 3 1 6 ")


def map_window(args):
    # The map window opens from the toolbar and follows a read: the chip's
    # new byte shows on the read line and its changed bits are marked.
    with Bench(args) as bench:
        wid, window = bench.open_window("Regmap", MAP_TITLE)
        grid = bench.desk.find(window, "the register table", lambda a: a.getRoleName() == "table").queryTable()

        def cell(reg, line, x=8):
            # Blocks of six lines (number, bit, Wr, Rd, Cfg, spacer), nine
            # columns a register (bits 7 to 0 and the byte in hex).
            per_row = grid.nColumns // 9
            return grid.getAccessibleAt(reg // per_row * 6 + line, reg % per_row * 9 + x)

        wait_for("the table laid out", lambda: grid.nColumns >= 9 and cell(11, 0).name == "11")
        bench.program.set_register(11, 0x0B)
        bench.read_chip()
        lines = [cell(11, line).name for line in (2, 3, 4)]
        check(lines == ["0B", "0B", "04"], f"register 11 reads Wr, Rd, Cfg {lines} after the read, not 0B, 0B, 04")
        # Bit 3 of register 11 (column 4) went from 0 to 1 on the read line:
        # its cell turns blue; bit 7 (column 0) stayed 0 and is white.
        bench.desk.focus(wid)
        wait_for("the changed bit in blue", lambda: colour_name(bench.desk.colour(cell(11, 3, 4), right=0.3)) == "blue")
        still = colour_name(bench.desk.colour(cell(11, 3, 0), right=0.3))
        check(still == "white", f"the unchanged bit is {still}, not white")


def windows(args):
    # Every window a person can open comes up; the function keys reach the
    # program from the other windows, where F11 starts no read; closing the
    # main window ends the program.
    with Bench(args) as bench:
        desk, program = bench.desk, bench.program
        # The status bulbs open the docks: the main one, then one a channel
        # tab. Two docks have no window title: they are counted.
        for tab, bulb in ((None, "Reg2 <D4>"), ("Channel A", "Reg2 <D3>"), ("Channel B", "Reg2 <D2>"),
                          ("Channel C", "Reg2 <D1>"), ("Channel D", "Reg2 <D0>")):
            if tab:
                bench.click(desk.named(bench.frame, "page tab", tab))
            before = len(program.windows())
            bench.click(desk.field(bench.frame, "image", bulb))
            wait_for(f"a dock from the bulb of {bulb}", lambda: len(program.windows()) > before)
        map_wid, _ = bench.open_window("Regmap", MAP_TITLE)
        bench.open_window("Service settings", PANEL_TITLE)

        bench.set_spin(C_DIVIDER, 9)
        bench.run("F5", window=desk.window("^AOK A$"))
        bench.check_shown({C_DIVIDER: "4"})

        # F11 in the map window starts no read: the F5 behind it finds the
        # program idle and is the one operation that runs (a read would show
        # the chip's 13 and its ID).
        program.set_register(11, 0x0D)
        started = program.operations()[0]
        bench.run("F11", "F5", window=map_wid)
        check(program.operations()[0] == started + 1, "F11 in the map window started an operation")
        bench.check_shown({C_DIVIDER: "4", CHIP_ID: "n/a"})
        bench.read_chip()
        bench.check_shown({C_DIVIDER: "13"})

        desk.close_window(program.main)
        code = wait_for("the program to end", lambda: program.proc.poll() is not None and (program.proc.returncode,))
        check(code[0] == 0, f"the program ended with status {code[0]}")


def installed(args):
    # `cmake --install` into a fresh prefix (or the .deb, unpacked) lays the
    # tool out, and the installed start script runs it in the user's working
    # folder, seeded with the shipped default.hex, where it reads the board.
    check(args.build or args.deb, "--build or --deb is needed")
    desk = Desk()
    try:
        if args.deb:
            root = os.path.join(desk.tmp, "root")
            subprocess.run(["dpkg-deb", "-x", args.deb, root], check=True)
            prefix, rules = os.path.join(root, "usr"), os.path.join(root, "lib/udev/rules.d/60-zv4280.rules")
            shipped = ["lib/python3/dist-packages/zv4280.py", "share/man/man1/zv4280ctl.1.gz",
                       "share/doc/zv4280tb/copyright"]
        else:
            prefix = os.path.join(desk.tmp, "prefix")
            subprocess.run(["cmake", "--install", args.build, "--prefix", prefix], check=True,
                           stdout=subprocess.DEVNULL)
            rules, shipped = os.path.join(prefix, "lib/udev/rules.d/60-zv4280.rules"), []
        for path in ("bin/zv4280tb", "bin/zv4280tb-session", "bin/zv4280ctl"):
            check(os.access(os.path.join(prefix, path), os.X_OK), f"{path} is not an installed program")
        for path in ["share/zv4280tb/default.hex", "share/applications/zv4280tb.desktop",
                     "share/icons/hicolor/scalable/apps/zv4280tb.svg", "share/icons/hicolor/64x64/apps/zv4280tb.png",
                     rules] + shipped:
            check(os.path.isfile(os.path.join(prefix, path)), f"{path} is not installed")
        with open(os.path.join(prefix, "share/applications/zv4280tb.desktop")) as f:
            entry = dict(line.strip().split("=", 1) for line in f if "=" in line)
        check(entry.get("Exec") == "zv4280tb-session" and entry.get("Icon") == "zv4280tb",
              "the desktop entry does not start the installed script with the installed icon")
        with open(rules) as f:
            rules = f.read()
        check('ATTR{idVendor}=="2976", MODE="0660", GROUP="plugdev"' in rules and 'TAG+="uaccess"' in rules,
              "the udev rule does not open the bridge boards to plugdev and the seat")
    except BaseException:
        desk.close()
        raise

    # Started from elsewhere, as a desktop starts it: the folder ~/zv4280 is
    # made and seeded, and the program loads its default.hex there (the
    # chip's own fields then say "n/a") and reads the board.
    with Bench(args, command=[args.launcher, os.path.join(prefix, "bin/zv4280tb-session")],
               workdir=os.path.join(prefix, "bin"), desk=desk) as bench:
        check(read_hex(os.path.join(desk.home, "zv4280", "default.hex")) == read_hex(args.defaults),
              "~/zv4280/default.hex is not the shipped one")
        bench.check_shown({CHIP_ID: "n/a"})
        bench.program.set_register(11, 0x05)
        bench.read_chip()
        bench.check_shown({CHIP_ID: "4280", C_DIVIDER: "5"})


SCENARIOS = dict({f.__name__: f for f in (installed, windows, startup, read, files, unplug, panel)}, map=map_window)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("scenario", choices=sorted(SCENARIOS))
    for name in ("--launcher", "--program", "--defaults"):
        parser.add_argument(name, required=True)
    parser.add_argument("--build", help="the build folder, for the scenario of the install")
    parser.add_argument("--deb", help="the package, for the scenario of the install from it")
    args = parser.parse_args()
    for name in ("launcher", "program", "defaults", "build", "deb"):
        if getattr(args, name):
            setattr(args, name, os.path.abspath(getattr(args, name)))
    start = time.monotonic()

    # A scenario that hangs, or is told to end, still takes its X server,
    # buses and program down with it; ctest's own timeout would leave them
    # running. Stopped is no Exception, so that no wait swallows it.
    def stopped(number, _):
        raise Stopped("the scenario took longer than 100 s" if number == signal.SIGALRM else "terminated")
    signal.signal(signal.SIGALRM, stopped)
    signal.signal(signal.SIGTERM, stopped)
    signal.alarm(100)
    try:
        SCENARIOS[args.scenario](args)
    except (Failure, Stopped, subprocess.SubprocessError) as failure:
        print(f"e2e {args.scenario}: FAILED: {failure}")
        return 1
    print(f"e2e {args.scenario}: passed in {time.monotonic() - start:.1f} s")
    return 0


if __name__ == "__main__":
    sys.exit(main())
