# A desk for the end-to-end tests: a virtual X server with an accessibility
# bus, the real program on a simulated board, and the ways a person reads its
# windows (texts over AT-SPI, screenshots) and drives them (keys and clicks).

import contextlib
import ctypes
import os
import re
import select
import shutil
import signal
import subprocess
import tempfile
import time

SCREEN = "1280x1024x24"
TITLE = "ZV4280(v2/v3) TB 1.0.3"

# What the program may write on its output: nothing; the launcher's answers
# come the same way.
LAUNCHER_LINE = re.compile(r"^zvsim-launch: ")


class Failure(AssertionError):
    pass


# Sanitizer builds run the program several times slower; their tests say by
# how much, and every wait grows with it.
SLOWDOWN = float(os.environ.get("ZV_E2E_SLOWDOWN", "1"))


def wait_for(what, condition, timeout=15.0, step=0.05):
    # Polls condition() until it gives a true value, which is returned.
    timeout *= SLOWDOWN
    end = time.monotonic() + timeout
    last_error = None
    while True:
        try:
            value = condition()
            if value:
                return value
        except Exception as error:  # a widget that is going away, a file half there
            last_error = error
        if time.monotonic() > end:
            detail = f" (last error: {last_error})" if last_error else ""
            raise Failure(f"timed out after {timeout:.0f} s waiting for {what}{detail}")
        time.sleep(step)


def check(condition, message):
    if not condition:
        raise Failure(message)


def read_hex(path):
    # Register number -> value of a .hex file; comment lines are skipped.
    with open(path, encoding="utf-8", errors="replace") as f:
        found = [re.match(r"\s*Reg(\d+)\s+([0-9A-Fa-f]+)", line) for line in f]
    return {int(m.group(1)): int(m.group(2), 16) & 0xFF for m in found if m}


def stop(proc, timeout=10):
    # Ends a process started in a session of its own, with all that it
    # started in that session.
    for sig in (signal.SIGTERM, signal.SIGKILL):
        if proc.poll() is not None:
            return
        try:
            os.killpg(proc.pid, sig)
            proc.wait(timeout)
        except (ProcessLookupError, subprocess.TimeoutExpired):
            pass


class Desk:
    # One virtual screen with a session bus and an accessibility bus.
    #
    # The program's windows are found by title with xdotool, their widgets over
    # AT-SPI; input goes through the X server's test extension as a person's
    # keys and clicks would.

    def __init__(self):
        self.tmp = tempfile.mkdtemp(prefix="zv-e2e-")
        self.home = os.path.join(self.tmp, "home")
        runtime = os.path.join(self.tmp, "run")
        os.makedirs(self.home)
        os.makedirs(runtime, mode=0o700)
        self.procs = []
        self.env = dict(os.environ)
        for name in ("QT_QPA_PLATFORM", "QT_QPA_PLATFORMTHEME", "WAYLAND_DISPLAY", "SESSION_MANAGER"):
            self.env.pop(name, None)
        self.env.update(XDG_RUNTIME_DIR=runtime, HOME=self.home, XDG_CONFIG_HOME=os.path.join(self.home, ".config"),
                        QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", LANG="C.UTF-8", LC_ALL="C.UTF-8")
        try:
            self._start_x()
            self._start_buses()
        except BaseException:
            self.close()
            raise
        os.environ.update({k: self.env[k] for k in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR")})
        # Imported once the buses are up: the library finds them at import.
        import pyatspi
        self.atspi = pyatspi

    # -- set-up and tear-down ------------------------------------------------

    def _start_x(self):
        # -noreset: the server keeps its root window properties (the
        # accessibility bus's address) when a short-lived client leaves.
        read_end, write_end = os.pipe()
        xvfb = subprocess.Popen(["Xvfb", "-displayfd", str(write_end), "-noreset", "-nolisten", "tcp",
                                 "-screen", "0", SCREEN], pass_fds=[write_end],
                                stdout=subprocess.DEVNULL, stderr=open(os.path.join(self.tmp, "xvfb.log"), "w"),
                                start_new_session=True)
        os.close(write_end)
        self.procs.append(xvfb)
        # The server writes the number and then a newline; the pipe stays
        # open until both have come, else the server dies on the second write.
        with os.fdopen(read_end, "rb") as pipe:
            number = pipe.readline().decode().strip() if select.select([pipe], [], [], 20)[0] else ""
        check(number.isdigit(), "Xvfb did not start")
        self.env["DISPLAY"] = ":" + number

    def _start_buses(self):
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address=1"], env=self.env,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                               start_new_session=True)
        self.procs.append(bus)
        self.env["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()
        check(self.env["DBUS_SESSION_BUS_ADDRESS"], "no session bus")
        # The accessibility bus starts on demand and puts its address on the
        # root window, where Qt looks for it first.
        self.run(["gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus",
                  "--method", "org.a11y.Bus.GetAddress"])
        wait_for("the accessibility bus's address on the root window", lambda: "unix:" in subprocess.run(
            ["xprop", "-root", "AT_SPI_BUS"], env=self.env, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
            text=True).stdout, timeout=10)

    def close(self):
        for proc in reversed(self.procs):
            stop(proc)
        if not os.environ.get("ZV_E2E_KEEP"):
            shutil.rmtree(self.tmp, ignore_errors=True)

    def run(self, args, timeout=30, **kw):
        return subprocess.run(args, env=self.env, check=True, stdout=subprocess.PIPE, text=True, timeout=timeout,
                              **kw).stdout

    # -- windows and input ---------------------------------------------------

    def windows(self, title):
        # X window ids of the visible windows whose title matches (a regex).
        out = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title], env=self.env,
                             stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
        return out.split()

    def window(self, title, timeout=15.0):
        return wait_for(f'a window titled "{title}"', lambda: self.windows(title), timeout)[0]

    def focus(self, wid):
        self.run(["xdotool", "windowraise", wid, "windowfocus", "--sync", wid])

    def key(self, *keys, window=None):
        if window:
            self.focus(window)
        self.run(["xdotool", "key", "--delay", "30", *keys])

    def type(self, text):
        self.run(["xdotool", "type", "--delay", "10", text])

    def click(self, x, y, button=1):
        self.run(["xdotool", "mousemove", str(x), str(y), "click", str(button)])

    def close_window(self, wid):
        # Asks a window to close, as a window manager's close button does
        # (WM_DELETE_WINDOW); there is no window manager on this screen.
        x11, c = ctypes.cdll.LoadLibrary("libX11.so.6"), ctypes
        for name, result, args in (("XOpenDisplay", c.c_void_p, [c.c_char_p]), ("XFlush", c.c_int, [c.c_void_p]),
                                   ("XInternAtom", c.c_ulong, [c.c_void_p, c.c_char_p, c.c_int]),
                                   ("XSendEvent", c.c_int, [c.c_void_p, c.c_ulong, c.c_int, c.c_long, c.c_void_p]),
                                   ("XCloseDisplay", c.c_int, [c.c_void_p])):
            getattr(x11, name).restype, getattr(x11, name).argtypes = result, args

        class ClientMessage(ctypes.Structure):
            _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                        ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                        ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("pad", ctypes.c_long * 12)]

        display = x11.XOpenDisplay(self.env["DISPLAY"].encode())
        check(display, "cannot open the display")
        try:
            event = ClientMessage(type=33, window=int(wid), format=32,  # ClientMessage
                                  message_type=x11.XInternAtom(display, b"WM_PROTOCOLS", 0))
            event.data[0] = x11.XInternAtom(display, b"WM_DELETE_WINDOW", 0)
            x11.XSendEvent(display, int(wid), 0, 0, ctypes.byref(event))
            x11.XFlush(display)
        finally:
            x11.XCloseDisplay(display)

    def screenshot(self, path, wid=None):
        self.run(["import", "-window", wid or "root", path])

    # -- widgets over AT-SPI -------------------------------------------------

    @staticmethod
    def children(acc):
        return [c for c in (acc.getChildAtIndex(i) for i in range(acc.childCount)) if c is not None]

    def app(self, name, timeout=15.0):
        return wait_for(f"the application {name} on the accessibility bus", lambda: next(
            (a for a in self.children(self.atspi.Registry.getDesktop(0)) if a.name == name), None), timeout)

    def top(self, app, title, timeout=15.0):
        # The accessible of a top-level window of app by its title.
        return wait_for(f'the window "{title}" over AT-SPI', lambda: next(
            (w for w in self.children(app) if w.name == title and self.showing(w)), None), timeout)

    def showing(self, acc):
        return acc.getState().contains(self.atspi.STATE_SHOWING)

    def find_all(self, root, match):
        # Widgets under root, in order, that match() accepts; none is looked
        # for under a widget not showing, nor in tables and lists, which hold
        # one accessible a cell or an item (read them through their own
        # interfaces instead).
        found, stack = [], [root]
        while stack:
            acc = stack.pop()
            if match(acc):
                found.append(acc)
            if acc is root or (self.showing(acc) and acc.getRoleName() not in ("table", "list", "tree table")):
                stack.extend(reversed(self.children(acc)))
        return found

    def find(self, root, what, match, timeout=10.0):
        # The one showing widget under root that match() accepts.
        def one():
            hits = [a for a in self.find_all(root, match) if self.showing(a)]
            if len(hits) > 1:
                raise Failure(f"{len(hits)} widgets are {what}")
            return hits[0] if hits else None
        return wait_for(what, one, timeout)

    def field(self, root, role, tooltip):
        # A field's widget by its kind and its tooltip (the register location).
        return self.find(root, f'the {role} of "{tooltip}"',
                         lambda a: a.getRoleName() == role and a.description == tooltip)

    def named(self, root, role, name):
        return self.find(root, f'the {role} "{name}"', lambda a: a.getRoleName() == role and a.name == name)

    @staticmethod
    def text(acc):
        try:
            t = acc.queryText()
            return t.getText(0, t.characterCount)
        except NotImplementedError:
            return acc.name

    def checked(self, acc):
        return acc.getState().contains(self.atspi.STATE_CHECKED)

    def click_on(self, acc):
        box = acc.queryComponent().getExtents(self.atspi.DESKTOP_COORDS)
        self.click(box.x + box.width // 2, box.y + box.height // 2)

    def colour(self, acc, left=0.0, right=1.0):
        # The mean colour of a widget as it stands on the screen, over the
        # share of its width from left to right.
        box = acc.queryComponent().getExtents(self.atspi.DESKTOP_COORDS)
        x0, x1 = box.x + int(box.width * left), box.x + max(int(box.width * right), 1)
        ppm = subprocess.run(["import", "-window", "root", "-crop", f"{x1 - x0}x{box.height}+{x0}+{box.y}", "-depth", "8",
                              "ppm:-"], env=self.env, stdout=subprocess.PIPE, check=True).stdout
        pixels = re.match(rb"P6\s+\d+\s+\d+\s+\d+\s(.*)", ppm, re.S).group(1)  # header, then the RGB bytes
        return tuple(sum(pixels[c::3]) // max(len(pixels) // 3, 1) for c in range(3))


def colour_name(rgb):
    # A colour as a person would call it, with a wide tolerance.
    r, g, b = rgb
    if r > 230 and g > 230 and b > 230:
        return "white"
    if max(r, g, b) - min(r, g, b) < 25:
        return "grey"
    if b > 180 and g > 130 and r < 90:
        return "blue"
    if g > r + 40 and g > b + 40:
        return "green"
    if r > g + 60 and r > b + 60:
        return "red"
    return f"rgb{rgb}"


class Program:
    # The program on a simulated board, started by the launcher in a working
    # folder with the launcher's control pipe beside it.

    def __init__(self, desk, command, workdir):
        # command: the launcher and what it starts.
        self.desk = desk
        self.workdir = workdir
        self.log = os.path.join(desk.tmp, "output.log")
        self.control = os.path.join(desk.tmp, "board.ctl")
        args = [command[0], "--control", self.control, *command[1:]]
        with open(self.log, "w") as log:
            self.proc = subprocess.Popen(args, cwd=workdir, env=desk.env, stdin=subprocess.DEVNULL,
                                         stdout=log, stderr=subprocess.STDOUT, start_new_session=True)
        desk.procs.append(self.proc)
        self.main = desk.window("^" + re.escape(TITLE))
        self.app = desk.app("zv4280tb")
        self.frame = desk.top(self.app, TITLE)
        wait_for("the launcher's control pipe", lambda: os.path.exists(self.control))
        # The load of default.hex that every start runs: a key pressed before
        # its end would only stop it.
        self.idle()

    # -- the simulated board -------------------------------------------------

    def board(self, command, answer):
        # Sends a command to the launcher and waits for its answer.
        seen = self.output().count("zvsim-launch: " + answer)
        with open(self.control, "w") as pipe:
            pipe.write(command + "\n")
        wait_for(f'the launcher to answer "{answer}"', lambda: self.output().count("zvsim-launch: " + answer) > seen)

    def set_register(self, reg, value):
        # Sets a register of the simulated chip.
        self.board(f"set {reg} {value:02x}", f"register {reg} set")

    def chip(self):
        # The registers the simulated chip holds now.
        path = os.path.join(self.desk.tmp, "chip.hex")
        if os.path.exists(path):
            os.remove(path)
        self.board("dump " + path, "dumped the registers")
        return read_hex(path)

    # -- what the program says and does ------------------------------------

    def output(self):
        with open(self.log, encoding="utf-8", errors="replace") as f:
            return f.read()

    def check_quiet(self):
        # Nothing on stdout and stderr but the launcher's answers: no Qt
        # warning ("QObject::connect: ...", "QWidget::...") among them.
        lines = [line for line in self.output().splitlines() if line.strip() and not LAUNCHER_LINE.match(line)]
        check(not lines, "the program wrote on its output:\n  " + "\n  ".join(lines[:20]))

    def operations(self):
        # (started, ended): the operations the program counts, as its main
        # window tells accessibility tools. One ends once its end message has
        # been dealt with, a failure's box closed.
        m = re.fullmatch(r"operations: (\d+) started, (\d+) ended", self.frame.description)
        check(m, f"the main window tells no count of operations: {self.frame.description!r}")
        return int(m.group(1)), int(m.group(2))

    def idle(self, timeout=30.0):
        # Waits until every operation started has ended.
        wait_for("the end of the running operation", lambda: len(set(self.operations())) == 1, timeout)

    @contextlib.contextmanager
    def operation(self, timeout=30.0):
        # Around the steps that start one operation (a key, a file dialog
        # answered, a failure's box closed): waits for its end, with no other
        # one running.
        ended = self.operations()[1]
        yield
        wait_for("the end of the operation", lambda: (lambda s, e: e > ended and s == e)(*self.operations()), timeout)

    def windows(self):
        # The accessibles of the program's showing top-level windows.
        return [w for w in self.desk.children(self.app) if self.desk.showing(w)]

    def boxes(self):
        # The texts of the message boxes on screen.
        return [label.name for w in self.windows() if w.getRoleName() in ("alert", "dialog")
                for label in self.desk.find_all(w, lambda a: a.getRoleName() == "label" and a.name)[:1]]

    def close_message(self, expected):
        # Waits for the message box, checks its text and closes it with Enter.
        text = wait_for("a message box", self.boxes)[0]
        check(text == expected, f"the message reads {text!r}, not {expected!r}")
        self.desk.key("Return")
        wait_for("the message box to close", lambda: not self.boxes())

    def check_no_message(self):
        check(not self.boxes(), "a message box is open: " + ", ".join(self.boxes()))

    def stop(self):
        stop(self.proc)
