"""The texts of the interface by key, from a language file; and how paths are shown."""

import re

FIRST = 30  # characters of a long path that are shown
LAST = 25
LIMIT = 60  # a path of so many characters is shortened
REFERENCE_LIMIT = 62
LONGEST_NAME = 30


class Words:
    def __init__(self, folder, language="English"):
        self.language = language
        with open("%s/%s.ini" % (folder, language), encoding="utf-8") as file:
            lines = [line.rstrip("\n") for line in file]
        self._words = dict(line.split("=", 1) for line in lines
                           if "=" in line and not line.startswith(";"))

    def __getitem__(self, key):
        return self._words[key]


def shown(path, limit=LIMIT):
    return path if len(path) < limit else path[:FIRST] + "..." + path[-LAST:]


def shown_name(name):
    return name if len(name) <= LONGEST_NAME else name[:LONGEST_NAME] + "..."


def like(pattern):
    """A text that is only known by its form."""
    return re.compile(pattern)
