"""A desktop of the test's own: a home, the installed programs, and the programs that run."""

import contextlib
import os
import shutil
import signal
import subprocess
import tempfile

import accessible
import screen
from waiting import Failure, PATIENCE, Skipped, until

# What the desktop would open a page or a folder with; here it notes what it was asked for.
_OPENER = """#!/bin/sh
printf '%s\\n' "$1" >> "$HOME/opened"
"""


_CONTROLS_OF_PLAYER = 110  # no more than this, below the picture


class Home:
    """A person's home with nothing in it, and the programs beside it as they are unpacked."""

    def __init__(self, folder, build, source):
        self.folder, self.build = folder, build
        self.programs = os.path.join(folder, "Kelvo Clipfix")
        self.videos = os.path.join(folder, "Videos")
        for name in ("Kelvo Clipfix", "bin", "config", "data", "cache"):
            os.makedirs(os.path.join(folder, name), exist_ok=True)
        os.makedirs(os.path.join(folder, "runtime"), mode=0o700, exist_ok=True)
        for program in ("kelvo-clipfix", "kc-mplayer"):
            shutil.copy(os.path.join(build, program), self.programs)
        shutil.copytree(os.path.join(source, "Lang"), os.path.join(self.programs, "Lang"))
        shutil.copytree(os.path.join(source, "docs/help"), os.path.join(self.programs, "help"))
        opener = os.path.join(folder, "bin", "xdg-open")
        with open(opener, "w", encoding="ascii") as file:
            file.write(_OPENER)
        os.chmod(opener, 0o755)
        self.environment = self._environment()

    def _environment(self):
        kept = {name: value for name, value in os.environ.items()
                if name in ("DISPLAY", "LSAN_OPTIONS", "ASAN_OPTIONS", "UBSAN_OPTIONS")}
        kept.update(HOME=self.folder, PATH=self.folder + "/bin:/usr/bin:/bin", LANG="C.UTF-8",
                    QT_QPA_PLATFORM="xcb", LIBGL_ALWAYS_SOFTWARE="1")
        for variable, folder in (("RUNTIME_DIR", "runtime"), ("CONFIG_HOME", "config"),
                                 ("DATA_HOME", "data"), ("CACHE_HOME", "cache")):
            kept["XDG_" + variable] = os.path.join(self.folder, folder)
        accessible.prepare_environment(kept)
        return kept

    @property
    def work_folder(self):
        return os.path.join(self.programs, "$tp")

    def results(self):
        """The files in the work folder."""
        folder = self.work_folder
        return sorted(os.listdir(folder)) if os.path.isdir(folder) else []

    @contextlib.contextmanager
    def slow_disk(self):
        """Another disk, to which nothing can be written until it is let; gives its folder and the
        way to let it."""
        other = "/dev/shm"
        shim = os.path.join(self.build, "libfailing_machine.so")
        if not os.path.exists(shim) or os.stat(other).st_dev == os.stat(self.folder).st_dev:
            raise Skipped("no other disk, or none that can be slow")
        gate = os.path.join(self.folder, "gate")
        with tempfile.TemporaryDirectory(dir=other) as folder, open(gate, "wb"):
            before = dict(self.environment)
            self.environment.update(
                LD_PRELOAD=shim, GATED_FOLDER=folder, GATE=gate,
                ASAN_OPTIONS=before.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0")
            try:
                yield folder, lambda: os.unlink(gate)
            finally:
                self.environment = before

    def end_all(self):
        """Ends what still runs of the programs that were started from here."""
        for pid in map(int, filter(str.isdigit, os.listdir("/proc"))):
            if (_path_of(pid) or "").startswith(self.programs + "/"):
                os.kill(pid, signal.SIGKILL)

    def opened(self):
        """The pages and folders that the desktop was asked to open, in turn."""
        try:
            with open(os.path.join(self.folder, "opened"), encoding="utf-8") as file:
                return file.read().split("\n")[:-1]
        except FileNotFoundError:
            return []


class Program:
    """The window's program while it runs."""

    def __init__(self, home, bus, *arguments):
        self._complaints = os.path.join(home.folder, "complaints")
        with open(self._complaints, "ab") as complaints:
            self._process = subprocess.Popen(
                [os.path.join(home.programs, "kelvo-clipfix"), *arguments], env=home.environment,
                cwd=home.folder, stdin=subprocess.DEVNULL, stdout=complaints, stderr=complaints)
        self.pid = self._process.pid
        self._bus = bus
        self._root = None

    @property
    def root(self):
        """Its accessible root, as soon as it has one."""
        if self._root is None:
            self._root = self._bus.program(self.pid)
        return self._root

    def ends(self, code=0):
        """Waits for its end, and demands that it has never complained."""
        try:
            found = self._process.wait(PATIENCE)
        except subprocess.TimeoutExpired as still:
            raise Failure("the program does not end") from still
        self.has_not_complained()
        if found != code:
            raise Failure("the program ended with %d" % found)

    def has_not_complained(self):
        with open(self._complaints, encoding="utf-8", errors="replace") as file:
            complaints = file.read()
        if complaints:
            raise Failure("on standard error:\n" + complaints)


class FileToDrag:
    """A window with one file in it, as a folder's window shows it."""

    def __init__(self, home, file):
        self._process = subprocess.Popen([os.path.join(home.build, "file_to_drag"), file],
                                         env=home.environment, stdin=subprocess.DEVNULL)

    @property
    def middle(self):
        """The place to drag from."""
        window = until(lambda: screen.windows(pid=self._process.pid), "the file to drag")[0]
        left, top, width, height = until(lambda: screen.place(window), "its place")
        return left + width // 2, top + height // 2

    def end(self):
        self._process.kill()
        self._process.wait()


def middle_on_screen(thing, window, pid):
    """Where on the screen a thing in a window of a process is. A window that the desktop has just
    put in its place may itself believe for a while that it stands elsewhere; the screen knows."""
    left, top, width, height = window.place
    for one in screen.windows(pid=pid):
        real = screen.place(one)
        if real and real[2:] == (width, height):
            x, y = thing.middle
            return real[0] + x - left, real[1] + y - top
    return None


class Player:
    """The preview player that somebody else has started."""

    def __init__(self, bus, home):
        self._bus, self._path = bus, os.path.join(home.programs, "kc-mplayer")
        self.pid = until(self._find_pid, "the player")
        self._root = until(lambda: bus.program(self.pid), "the player's window")

    def _find_pid(self):
        return next((pid for pid in map(int, filter(str.isdigit, os.listdir("/proc")))
                     if _path_of(pid) == self._path), None)

    @property
    def runs(self):
        return _path_of(self.pid) == self._path

    def find(self, role, name):
        for thing in self._root.children[0].everything():
            if thing.role == role and thing.name == name:
                return thing
        return None

    def click(self, name):
        window = self._root.children[0]
        button = until(lambda: self.find("push button", name), "button " + name)
        screen.click(*until(lambda: middle_on_screen(button, window, self.pid), name))

    def plays(self):
        """Whether its picture moves."""
        until(lambda: self.find("slider", "Position").enabled, "a film in the player")
        window = until(lambda: screen.windows(pid=self.pid), "the player's window")[0]

        def moves():
            # A short film may have come to its end by now, where it stands.
            if self.find("push button", "Play again"):
                self.click("Play again")
            else:
                self.find("slider", "Position").value = 0
            left, top, width, height = screen.place(window)
            return screen.moves((left, top, width, height - _CONTROLS_OF_PLAYER), patience=2)
        return until(moves, "a picture that moves")


def _path_of(pid):
    try:
        return os.readlink("/proc/%d/exe" % pid)
    except OSError:
        return None
