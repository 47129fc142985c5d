"""A screen of its own with a window manager, and what a person has in front of it: a mouse, a
keyboard and eyes."""

import os
import re
import subprocess
import tempfile

from waiting import comes, until

SIZE = (1280, 800)


class Screen:
    """An X server without a machine behind it. It is the screen of this process while it stands."""

    def __enter__(self):
        read, write = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "%dx%dx24" % SIZE,
             "-nolisten", "tcp"],
            pass_fds=[write], stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as number:
            os.environ["DISPLAY"] = ":" + number.readline().strip()
        # It has no decorations to draw for the program's own windows, but moves, minimises and
        # activates them as on any desktop.
        self._manager = subprocess.Popen(["openbox", "--sm-disable"], stdin=subprocess.DEVNULL,
                                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        until(lambda: _says(["xdotool", "getwindowfocus"]) is not None, "the screen")
        until(lambda: "_NET_WM_NAME" in (_says(["xprop", "-root", "_NET_SUPPORTED"]) or ""),
              "the window manager")
        return self

    def __exit__(self, *_):
        for process in (self._manager, self._server):
            process.terminate()
            process.wait()


def on_own_bus(command):
    """Runs a command with a session bus of its own, and a folder of its own for the sockets of what
    that starts: the bus of the assistive tools has the same name in each session. Gives its status."""
    with tempfile.TemporaryDirectory(prefix="clipfix-session-") as folder:
        environment = dict(os.environ, XDG_RUNTIME_DIR=folder, GIO_USE_VFS="local")
        return subprocess.run(["dbus-run-session", "--", *command], env=environment,
                              check=False).returncode


def _says(command):
    """What a command prints; nothing where it fails."""
    done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, check=False)
    return done.stdout.decode(errors="replace") if done.returncode == 0 else None


# The mouse.

def point(x, y):
    subprocess.run(["xdotool", "mousemove", str(x), str(y)], check=True)


def click(x, y, times=1):
    subprocess.run(["xdotool", "mousemove", str(x), str(y), "click", "--repeat", str(times),
                    "--delay", "60", "1"], check=True)


def drag(start, end):
    """Presses the button at one place, moves as a hand does, and lets go at the other."""
    steps = 12
    command = ["xdotool", "mousemove", *map(str, start), "mousedown", "1"]
    for step in range(1, steps + 1):
        place = [round(a + (b - a) * step / steps) for a, b in zip(start, end)]
        command += ["sleep", "0.03", "mousemove", *map(str, place)]
    subprocess.run([*command, "sleep", "0.2", "mouseup", "1"], check=True)


# The keyboard.

def key(*names):
    subprocess.run(["xdotool", "key", "--clearmodifiers", *names], check=True)


def write(text):
    subprocess.run(["xdotool", "type", "--clearmodifiers", "--delay", "8", text], check=True)


# The eyes.

def windows(title=None, pid=None):
    """The ids of the windows that can be seen, by title or process."""
    by = ["--name", "^%s$" % title] if title else ["--pid", str(pid)]
    return (_says(["xdotool", "search", "--onlyvisible", *by]) or "").split()


def place(window):
    """Left, top, width and height of a window, without the frame that the desktop drew around."""
    says = _says(["xwininfo", "-id", window])
    if says is None:
        return None
    return tuple(int(re.search(fact + r":\s+(-?\d+)", says)[1])
                 for fact in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))


def active_window():
    return (_says(["xdotool", "getactivewindow"]) or "").strip()


def take_picture(file, area=None):
    """Of the whole screen, or of an area (left, top, width, height) of it."""
    crop = [] if area is None else ["-crop", "%dx%d+%d+%d" % (area[2], area[3], area[0], area[1]),
                                    "+repage"]
    subprocess.run(["import", "-silent", "-window", "root", *crop, file], check=True)


def differing_part(area, first, later):
    """How much of an area differs between two pictures of it, from 0 to 1."""
    done = subprocess.run(["compare", "-metric", "AE", "-fuzz", "10%", first, later, "null:"],
                          stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, check=False)
    return float(done.stderr.split()[0]) / (area[2] * area[3])


def moves(area, patience):
    """Whether what an area shows changes within so many seconds."""
    with tempfile.TemporaryDirectory() as folder:
        first, later = (os.path.join(folder, name) for name in ("first.png", "later.png"))
        take_picture(first, area)

        def changed():
            take_picture(later, area)
            return differing_part(area, first, later) > 0.02
        return comes(changed, patience)
