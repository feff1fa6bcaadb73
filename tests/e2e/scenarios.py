#!/usr/bin/python3
# End-to-end scenarios: the built program on a simulated board under a
# virtual X server, driven with keys and clicks and read back from its
# windows. One scenario a run:
#   scenarios.py NAME --launcher zvsim-launch --program zv4280tb --defaults default.hex [--build DIR]

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

# Fields by their register location, as their tooltips give it.
C_DIVIDER = "Reg11 <D7-D0>"
FX = "Reg7 <D7-D0>,Reg8 <D7-D0>"
CHIP_ID = "Reg0 <D7-D0>,Reg1 <D7-D3>"
RELEASE = "Reg1 <D2-D0>"
TEMPERATURE = "Reg4 <D1-D0>,Reg5 <D7-D0>"
AOK = "Reg2 <D4>"

MAP_TITLE = "ZV4280(v2/v3)"
PANEL_TITLE = "Service settings"


class Stopped(BaseException):
    pass


class Bench:
    """The desk, the program in a working folder of its own, and the steps
    a person takes in the main window."""

    def __init__(self, args, default_hex=None, command=None, workdir=None, desk=None):
        self.args = args
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
            # Every start loads the folder's default.hex; its end shows in the
            # chip's own fields ("n/a"). A key pressed before it would only
            # stop the load.
            self.wait_shown("text", CHIP_ID, "n/a")
        except BaseException:
            self.desk.close()
            raise

    def close(self):
        self.program.stop()
        self.desk.close()

    # -- reading the main window ---------------------------------------------

    def shown(self, role, tooltip, root=None):
        return self.desk.text(self.desk.field(root or self.frame, role, tooltip))

    def wait_shown(self, role, tooltip, expected, timeout=15.0):
        wait_for(f'the {role} of "{tooltip}" to show "{expected}"',
                 lambda: self.shown(role, tooltip) == expected, timeout)

    def no_message(self):
        boxes = [w for w in self.app_windows() if w.getRoleName() in ("alert", "dialog")]
        check(not boxes, "a message box is open: " + ", ".join(
            self.desk.text(a) for b in boxes for a in self.desk.find_all(b, lambda a: a.getRoleName() == "label")))

    def close_message(self, expected):
        """Waits for the message box, checks its text and closes it with Enter."""
        _, text = self.program.message()
        check(text == expected, f"the message reads {text!r}, not {expected!r}")
        self.desk.key("Return")
        wait_for("the message box to close",
                 lambda: not [w for w in self.app_windows() if w.getRoleName() in ("alert", "dialog")])

    def app_windows(self):
        app = self.program.app
        return [w for w in (app.getChildAtIndex(i) for i in range(app.childCount))
                if w is not None and self.desk.showing(w)]

    # -- acting on it --------------------------------------------------------

    def key(self, key):
        """A function key pressed in the main window."""
        self.desk.key(key, window=self.program.main)

    def set_spin(self, tooltip, value):
        """Types a value into a spin box as a person does: click, select all,
        type, Tab."""
        box = self.desk.field(self.frame, "spin button", tooltip)
        self.click(box)
        self.desk.key("ctrl+a")
        self.desk.type(str(value))
        self.desk.key("Tab")
        self.wait_shown("spin button", tooltip, str(value))

    def click(self, acc, window=None):
        """A click on a widget of a window (the main window by default),
        raised first: with no window manager all windows open at the top
        left corner, one over the other."""
        self.desk.focus(window or self.program.main)
        self.desk.click_on(acc)

    def answer_file_dialog(self, title, path):
        """Types the full path into the file dialog and accepts it."""
        dialog = self.desk.window("^" + re.escape(title) + "$")
        self.desk.focus(dialog)
        self.desk.key("ctrl+a")
        self.desk.type(path)
        self.desk.key("Return")
        wait_for(f'the dialog "{title}" to close', lambda: not self.desk.windows("^" + re.escape(title) + "$"))

    def read_chip(self):
        """F11 and the end of the read."""
        self.key("F11")
        self.program.idle()

    def open_window(self, button, title):
        self.click(self.desk.named(self.frame, "push button", button))
        wid = self.desk.window("^" + re.escape(title) + "$")
        return wid, self.desk.top(self.program.app, title)


def default_with(defaults, changes):
    """The shipped default.hex with some registers changed."""
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
    """Start-up shows the main window with the working folder's default.hex
    applied, and the status fields that only the chip can tell as "n/a"."""
    bench = Bench(args, default_with(args.defaults, {11: 0x07, 7: 0x01, 8: 0x2C}))
    try:
        bench.wait_shown("spin button", C_DIVIDER, "7")
        check(bench.shown("spin button", FX) == "300", "Fx does not show the loaded 300")
        check(bench.shown("text", CHIP_ID) == "n/a", "the chip ID is not n/a after the load")
        check(bench.shown("text", RELEASE) == "n/a", "the release is not n/a after the load")
        bench.no_message()
        bench.program.check_quiet()
    finally:
        bench.close()


def read(args):
    """F11 fills the window with what the chip holds."""
    bench = Bench(args)
    try:
        bench.wait_shown("spin button", C_DIVIDER, "4")
        bench.program.board("set 11 0c", "register 11 set")
        bench.program.board("set 7 02", "register 7 set")
        bulb = bench.desk.field(bench.frame, "image", AOK)
        before = colour_name(bench.desk.colour(bulb, 0.3, 0.7))
        check(before == "grey", f"the AOK bulb is {before} after the load, not grey (disabled)")
        bench.read_chip()
        bench.wait_shown("text", CHIP_ID, "4280")
        check(bench.shown("text", RELEASE) == "2", "the release is not 2")
        check(bench.shown("spin button", C_DIVIDER) == "12", "the C-divider does not show the chip's 12")
        check(bench.shown("spin button", FX) == "512", "Fx does not show the chip's 512")
        after = colour_name(bench.desk.colour(bulb, 0.3, 0.7))
        check(after == "green", f"the AOK bulb is {after} after the read, not green")
        temperature = bench.shown("text", TEMPERATURE)
        check(re.fullmatch(r"-?\d+\.\d °C", temperature), f"the temperature reads {temperature!r}")
        bench.no_message()
        bench.program.check_quiet()
    finally:
        bench.close()


def write(args):
    """A field changed in the window and F10: the chip holds the register."""
    bench = Bench(args)
    try:
        bench.wait_shown("spin button", C_DIVIDER, "4")
        check(bench.program.chip()[11] == 0x04, "the chip does not start with the C-divider 4")
        bench.set_spin(C_DIVIDER, 6)
        bench.key("F10")
        wait_for("the chip to hold 06 in register 11", lambda: bench.program.chip()[11] == 0x06)
        bench.program.idle()
        bench.no_message()
        check(bench.shown("spin button", C_DIVIDER) == "6", "the window lost the written value")
        bench.program.check_quiet()
    finally:
        bench.close()


def files(args):
    """F6 saves the window's state with comments, F7 loads it back."""
    bench = Bench(args)
    try:
        saved = os.path.join(bench.desk.tmp, "saved settings.hex")
        bench.wait_shown("spin button", C_DIVIDER, "4")
        bench.set_spin(C_DIVIDER, 6)
        # A full save with comments: the panel's "Changes only" off and
        # "Add comments" on.
        wid, window = bench.open_window("Service settings", PANEL_TITLE)
        for name, wanted in (("Changes only", False), ("Add comments", True)):
            box = bench.desk.named(window, "check box", name)
            bench.click(box, wid)
            wait_for(f'"{name}" {"on" if wanted else "off"}', lambda: bench.desk.checked(box) == wanted)
        bench.key("F6")
        bench.answer_file_dialog("Save .hex", saved)
        wait_for("the saved file", lambda: len(read_hex(saved)) == 107)
        bench.program.idle()
        with open(saved, encoding="utf-8") as f:
            text = f.read()
        check(text.startswith(";ZV4280\n"), "the file does not start with the map line")
        check("\nReg11\t06 //C-divider ratio:  6\n" in text, "register 11 is not saved as 06 with its comment")
        check('\n// Channel "A" \nReg14\t' in text, "the heading of channel A is missing")
        check(bench.desk.windows("^" + re.escape(TITLE) + "$"), "F6 changed the title")

        bench.set_spin(C_DIVIDER, 9)
        bench.key("F7")
        bench.answer_file_dialog("Open .hex", saved)
        bench.desk.window("^" + re.escape(TITLE + saved) + "$")
        bench.wait_shown("spin button", C_DIVIDER, "6")
        bench.program.idle()
        bench.no_message()
        bench.program.check_quiet()
    finally:
        bench.close()


def unplug(args):
    """With the board gone F11 says so and keeps the values; a board plugged
    in again, at a new address, is read with no further step."""
    bench = Bench(args)
    try:
        bench.program.board("set 11 0c", "register 11 set")
        bench.read_chip()
        bench.wait_shown("text", CHIP_ID, "4280")
        check(bench.shown("spin button", C_DIVIDER) == "12", "the first read did not show the chip")

        bench.program.board("unplug", "unplugged the board at address 5")
        bench.key("F11")
        bench.close_message("Interface error 5 ")
        check(bench.shown("text", CHIP_ID) == "4280", "the chip ID did not stay")
        check(bench.shown("spin button", C_DIVIDER) == "12", "the C-divider did not stay")
        # A write finds no board at all before it starts.
        bench.set_spin(C_DIVIDER, 7)
        bench.key("F10")
        bench.close_message("Refresh device list")

        bench.program.board("plug", "plugged a board in at address 6")
        bench.key("F10")
        wait_for("the new board's chip to hold 07 in register 11", lambda: bench.program.chip()[11] == 0x07)
        bench.program.idle()
        bench.program.board("set 11 0a", "register 11 set")
        bench.read_chip()
        bench.wait_shown("spin button", C_DIVIDER, "10")
        check(bench.shown("text", CHIP_ID) == "4280", "the replugged board's chip ID")
        bench.no_message()
        bench.program.check_quiet()
    finally:
        bench.close()


def panel(args):
    """The service panel's search lists the board, and finds it again at its
    new address after a replug."""
    bench = Bench(args)
    try:
        wid, window = bench.open_window("Service settings", PANEL_TITLE)
        devices = bench.desk.find(window, "the device box",
                                  lambda a: a.getRoleName() == "combo box" and a.name != "Atmel")
        check(devices.name == "", f"the device box is not empty before a search: {devices.name!r}")
        search = bench.desk.named(window, "push button", "Search")
        bench.click(search, wid)
        wait_for("the board in the device box", lambda: devices.name == "2976 3 1 5 ")

        bench.program.board("unplug", "unplugged")
        bench.program.board("plug", "plugged a board in at address 6")
        bench.click(search, wid)
        wait_for("the replugged board in the device box", lambda: devices.name == "2976 3 1 6 ")
        bench.read_chip()
        bench.wait_shown("text", CHIP_ID, "4280")
        bench.no_message()
        bench.program.check_quiet()
    finally:
        bench.close()


def map_window(args):
    """The map window opens from the toolbar and follows a read: the chip's
    new byte shows on the read line and its changed bits are marked."""
    bench = Bench(args)
    try:
        bench.wait_shown("spin button", C_DIVIDER, "4")
        wid, window = bench.open_window("Regmap", MAP_TITLE)
        table = bench.desk.find(window, "the register table", lambda a: a.getRoleName() == "table")
        grid = table.queryTable()

        def cell(reg, line, x=8):
            # Blocks of six lines (number, bit, Wr, Rd, Cfg, spacer), nine
            # columns a register (bits 7 to 0 and the byte in hex).
            per_row = grid.nColumns // 9
            return grid.getAccessibleAt(reg // per_row * 6 + line, reg % per_row * 9 + x)

        wait_for("the table laid out", lambda: grid.nColumns >= 9 and cell(11, 0).name == "11")
        check([cell(11, line).name for line in (2, 3, 4)] == ["04", "00", "04"],
              "register 11 does not read Wr 04, Rd 00, Cfg 04 after the load")

        bench.program.board("set 11 0b", "register 11 set")
        bench.read_chip()
        wait_for("the read line of register 11 to show 0B", lambda: cell(11, 3).name == "0B")
        check(cell(11, 2).name == "0B", "the Wr line did not follow the read")
        check(cell(11, 4).name == "04", "the Cfg line changed with a read")
        # Bit 3 of register 11 (column 4) went from 0 to 1 on the read line:
        # its cell is marked in blue; bit 7 (column 0) stayed 0 and is white.
        bench.desk.focus(wid)
        changed = colour_name(bench.desk.colour(cell(11, 3, 4), right=0.3))
        still = colour_name(bench.desk.colour(cell(11, 3, 0), right=0.3))
        check(changed == "blue", f"the changed bit is {changed}, not blue")
        check(still == "white", f"the unchanged bit is {still}, not white")
        bench.no_message()
        bench.program.check_quiet()
    finally:
        bench.close()


def windows(args):
    """Every window a person can open comes up; the function keys reach the
    program from the other windows, where F11 starts no read; closing the
    main window ends the program, and nothing was said on stderr."""
    bench = Bench(args)
    desk = bench.desk
    try:
        bench.wait_shown("spin button", C_DIVIDER, "4")
        # The status bulbs open the docks: the main one, then one a channel tab.
        # The main dock and channel D's have no window title: they are told
        # by their number.
        shown = len(bench.app_windows())
        for tab, bulb in ((None, "Reg2 <D4>"), ("Channel A", "Reg2 <D3>"), ("Channel B", "Reg2 <D2>"),
                          ("Channel C", "Reg2 <D1>"), ("Channel D", "Reg2 <D0>")):
            if tab:
                bench.click(desk.named(bench.frame, "page tab", tab))
            before = len(bench.app_windows())
            bench.click(desk.field(bench.frame, "image", bulb))
            wait_for(f"a dock from the bulb of {bulb}", lambda: len(bench.app_windows()) > before)
        check(len(bench.app_windows()) == shown + 5, "the bulbs opened five docks")
        map_wid, _ = bench.open_window("Regmap", MAP_TITLE)
        bench.open_window("Service settings", PANEL_TITLE)

        # F5 in a dock loads the defaults as in the main window.
        bench.set_spin(C_DIVIDER, 9)
        desk.key("F5", window=desk.window("^AOK A$"))
        bench.wait_shown("spin button", C_DIVIDER, "4")
        bench.program.idle()

        # F11 in the map window only stops a running operation.
        bench.program.board("set 11 0d", "register 11 set")
        desk.key("F11", window=map_wid)
        time.sleep(1)
        check(bench.shown("spin button", C_DIVIDER) == "4", "F11 in the map window read the chip")
        check(bench.shown("text", CHIP_ID) == "n/a", "F11 in the map window read the chip")
        bench.read_chip()
        bench.wait_shown("spin button", C_DIVIDER, "13")

        desk.close_window(bench.program.main)
        code = wait_for("the program to end", lambda: bench.program.proc.poll() is not None and (
            bench.program.proc.returncode,), timeout=15)[0]
        check(code == 0, f"the program ended with status {code}")
        bench.program.check_quiet()
    finally:
        bench.close()


def installed(args):
    """`cmake --install` into a fresh prefix lays the tool out, and the
    installed start script runs it in the user's working folder, seeded with
    the shipped default.hex, where it reads the board."""
    check(args.build, "--build is needed")
    desk = Desk()
    try:
        prefix = os.path.join(desk.tmp, "prefix")
        subprocess.run(["cmake", "--install", args.build, "--prefix", prefix], check=True,
                       stdout=subprocess.DEVNULL)
        for path in ("bin/zv4280tb", "bin/zv4280tb-session"):
            check(os.access(os.path.join(prefix, path), os.X_OK), f"{path} is not an installed program")
        for path in ("share/zv4280tb/default.hex", "share/applications/zv4280tb.desktop",
                     "share/icons/hicolor/scalable/apps/zv4280tb.svg", "share/icons/hicolor/64x64/apps/zv4280tb.png",
                     "lib/udev/rules.d/60-zv4280.rules"):
            check(os.path.isfile(os.path.join(prefix, path)), f"{path} is not installed")
        with open(os.path.join(prefix, "share/applications/zv4280tb.desktop")) as f:
            entry = dict(line.strip().split("=", 1) for line in f if "=" in line)
        check(entry.get("Exec") == "zv4280tb-session" and entry.get("Icon") == "zv4280tb",
              "the desktop entry does not start the installed script with the installed icon")
        with open(os.path.join(prefix, "lib/udev/rules.d/60-zv4280.rules")) as f:
            rules = f.read()
        check('ATTR{idVendor}=="2976", MODE="0660", GROUP="plugdev"' in rules and 'TAG+="uaccess"' in rules,
              "the udev rule does not open the bridge boards to plugdev and the seat")
    except BaseException:
        desk.close()
        raise

    # Started from elsewhere, as a desktop starts it: the folder ~/zv4280 is
    # made and seeded, and the program reads its default.hex there.
    bench = Bench(args, command=[args.launcher, os.path.join(prefix, "bin/zv4280tb-session")],
                  workdir=os.path.join(prefix, "bin"), desk=desk)
    try:
        folder = os.path.join(bench.desk.home, "zv4280")
        check(read_hex(os.path.join(folder, "default.hex")) == read_hex(args.defaults),
              "~/zv4280/default.hex is not the shipped one")
        # A load succeeded: no message, and the chip's own fields say "n/a".
        bench.wait_shown("text", CHIP_ID, "n/a")
        bench.no_message()
        bench.program.board("set 11 05", "register 11 set")
        bench.read_chip()
        bench.wait_shown("text", CHIP_ID, "4280")
        bench.wait_shown("spin button", C_DIVIDER, "5")
        bench.program.check_quiet()
    finally:
        bench.close()


SCENARIOS = {
    "installed": installed,
    "windows": windows,
    "startup": startup,
    "read": read,
    "write": write,
    "files": files,
    "unplug": unplug,
    "panel": panel,
    "map": map_window,
}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("scenario", choices=sorted(SCENARIOS))
    parser.add_argument("--launcher", required=True)
    parser.add_argument("--program", required=True)
    parser.add_argument("--defaults", required=True)
    parser.add_argument("--build", help="the build folder, for the scenario of the install")
    args = parser.parse_args()
    for name in ("launcher", "program", "defaults", "build"):
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
