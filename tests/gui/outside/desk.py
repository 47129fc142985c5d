"""A desktop of the test's own: a home, the installed programs, and the programs that run."""

import os
import shutil
import signal
import subprocess

import accessible
import screen
from waiting import Failure, PATIENCE, until

# What the desktop would open a page or a folder with; here it notes what it was asked for.
_OPENER = """#!/bin/sh
printf '%s\\n' "$1" >> "$HOME/opened"
"""


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

    @property
    def runs(self):
        return self._process.poll() is None

    def has_not_complained(self):
        with open(self._complaints, encoding="utf-8", errors="replace") as file:
            complaints = file.read()
        if complaints:
            raise Failure("on standard error:\n" + complaints)

    def kill(self):
        if self.runs:
            self._process.send_signal(signal.SIGKILL)
            self._process.wait()


class FileToDrag:
    """A window with one file in it, as a folder's window shows it. Gives the place to drag from."""

    def __init__(self, home, file):
        self._command = [os.path.join(home.build, "file_to_drag"), file]
        self._environment = home.environment

    def __enter__(self):
        self._process = subprocess.Popen(self._command, env=self._environment,
                                         stdin=subprocess.DEVNULL)
        window = until(lambda: screen.windows(pid=self._process.pid), "the file to drag")[0]
        left, top, width, height = until(lambda: screen.place(window), "its place")
        return left + width // 2, top + height // 2

    def __exit__(self, *_):
        # It ends by itself once the file was let go.
        if self._process.wait(PATIENCE) != 0:
            raise Failure("the file was not taken")


def program_of_player(bus, home):
    """The accessible root of the player, once it runs."""
    path = os.path.join(home.programs, "kc-mplayer")
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            if os.readlink("/proc/%s/exe" % pid) == path:
                return bus.program(int(pid))
        except OSError:
            continue
    return None


def no_player_runs(bus, home):
    return until(lambda: program_of_player(bus, home) is None, "the end of the player")
