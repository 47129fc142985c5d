"""Damaged films as people bring them, made once for a run."""

import os
import shutil
import subprocess

EMPTINESS = 1 << 30  # bytes


def _ffmpeg(arguments, file):
    subprocess.run(["ffmpeg", "-v", "error", "-y", *arguments.split(), file], check=True,
                   stdin=subprocess.DEVNULL)


def _write(file, data):
    with open(file, "wb") as out:
        out.write(data)
    return file


class Media:
    """Films of 20 seconds, 25 pictures each second, H.264 and AAC, and an AVI; in a folder that can
    be moved into a home."""

    def __init__(self, folder, examples):
        os.makedirs(folder)
        self._shelf = self.folder = folder
        healthy = self.at("healthy.mp4")
        _ffmpeg("-f lavfi -i testsrc2=s=320x240:r=25:d=20 -f lavfi -i sine=f=440:d=20 "
                "-c:v libx264 -preset ultrafast -g 25 -bf 0 -pix_fmt yuv420p -c:a aac -ac 2 "
                "-chunk_duration 500000", healthy)
        with open(healthy, "rb") as file:
            whole = file.read()
        # Without its movie atom a film needs a reference; a whole one can be its own.
        cut = _write(self.cut, whole[:whole.rindex(b"moov") - 4])
        shutil.copy(healthy, self.own_reference)
        _write(self.noise, b"x" * 200000)
        avi = shutil.copy(os.path.join(examples, "damaged.avi"), self.avi)
        # The same films with much emptiness behind them, so that a repair takes its time.
        _lengthen(shutil.copy(cut, self.long_cut))
        _lengthen(shutil.copy(avi, self.long_avi))

    healthy = property(lambda self: self.at("healthy.mp4"))
    cut = property(lambda self: self.at("holiday.mp4"))
    own_reference = property(lambda self: self.at("picnic.MP4"))
    noise = property(lambda self: self.at("noise.mov"))
    avi = property(lambda self: self.at("garden.avi"))
    long_cut = property(lambda self: self.at("long holiday.mp4"))
    long_avi = property(lambda self: self.at("long garden.avi"))

    def at(self, name):
        return os.path.join(self.folder, name)

    def move_to(self, folder):
        os.rename(self.folder, folder)
        self.folder = folder

    def leave(self):
        """Goes back to the shelf, before the home is cleared away."""
        if self.folder != self._shelf:
            os.rename(self.folder, self._shelf)
            self.folder = self._shelf


def _lengthen(file):
    with open(file, "ab") as out:
        out.truncate(os.path.getsize(file) + EMPTINESS)
