"""The table of states: what stands in the window on each page, and in each message. Written by
hand, so that it is an opinion of its own and not the program's."""

from words import REFERENCE_LIMIT, like, shown, shown_name

# The buttons of the title bar stand on every page.
TITLE_BAR = 6


class Page:
    """The title, and what stands in the centre and at the bottom, each as "role text". A text may
    be a pattern; "(disabled)" ends one that cannot be used."""

    def __init__(self, title, centre, bottom):
        self.title, self.centre, self.bottom = title, centre, bottom

    def differs_from(self, title, centre, bottom):
        """What is otherwise, in words; nothing where all is as it should be."""
        told = []
        if title != [("label", self.title)]:
            told.append("title: %s" % title)
        for section, awaited, found in (("centre", self.centre, centre),
                                        ("bottom", self.bottom, bottom)):
            told += _compare(section, awaited, found)
        return told


def _compare(where, awaited, found):
    left = list(found)
    told = []
    for role, text in awaited:
        match = next((f for f in left if f[0] == role and _is(text, f[1])), None)
        if match is None:
            told.append("%s: no %s %s" % (where, role, text))
        else:
            left.remove(match)
    return told + ["%s: %s %s too much" % (where, *thing) for thing in left]


def _is(text, found):
    return text == found if isinstance(text, str) else text.fullmatch(found) is not None


def button(text):
    return "push button", text


def disabled(text):
    return "push button", text + " (disabled)"


def label(text):
    return "label", text


def link(text):
    return "link", text


_TIME = r" ?\d\d:\d\d:\d\d"


def _progress(words, *status):
    """What the centre shows while something runs. The status is one of those given."""
    return [("animation", words["IDS_BUSY"]), ("progress bar", words["IDS_PROGRESS"]),
            label(like("|".join(_literal(text) for text in status))),
            label(like(r"\d{1,3}%")),
            label(words["IDS_START_TIME"]), label(like(_TIME)),
            label(words["IDS_ELAPSED_TIME"]), label(like(_TIME))]


def _literal(text):
    return "".join("\\" + c if not c.isalnum() else c for c in text)


def corrupted(path):
    return label("Corrupted File: " + shown(path))


def healthy(path):
    return label("Healthy File: " + shown(path, REFERENCE_LIMIT))


def path_of_avi(path):
    return label("Path: " + shown(path))


def home(words):
    return Page(words["IDS_SELECT_VIDEO"], [button(words["IDS_ADD_FILE"])],
                [label(words["IDS_CLICK_ADD"])])


def chosen(words, file_label):
    return Page(words["IDS_SELECT_VIDEO"], [],
                [button(words["IDS_REPAIR"]), button(words["IDS_BACK"]),
                 label(words["IDS_FILE_SELECTED"]), file_label])


def need_reference(words, path):
    return Page(words["IDS_SELECT_REFERNCE_HEADER"],
                [button(words["IDS_CHOOSE_REFERENCE_MOV_FILE"]), link(words["IDS_WHY_HEALTHY"])],
                [disabled(words["IDS_REPAIR"]), button(words["IDS_BACK"]),
                 corrupted(path), label(words["IDS_SELECT_REFERENCE"])])


def reference_chosen(words, path, reference):
    return Page(words["IDS_SELECT_REFERNCE_HEADER"],
                [button(words["IDS_CHOOSE_REFERENCE_MOV_FILE"]), link(words["IDS_WHY_HEALTHY"])],
                [button(words["IDS_REPAIR"]), button(words["IDS_BACK"]),
                 corrupted(path), healthy(reference)])


def _repairing(words, status, labels, pause):
    return Page(words["IDS_REPAIRING_VIDEO"], _progress(words, *status),
                [button(words[pause]), button(words["IDS_CANCEL"]), *labels])


def _steps_of_mov(words):
    return (words["IDS_PLEASE_WAIT_ANALYSING"], "Analyzing video file...",
            "Locating audio / video data forks..", "Writing audio / video data forks..")


def repairing_mov(words, path, pause="IDS_PAUSE"):
    return _repairing(words, _steps_of_mov(words),
                      [label(words["IDS_FILE_SELECTED"]), corrupted(path)], pause)


def repairing_with_reference(words, path, reference, pause="IDS_PAUSE"):
    return _repairing(words, _steps_of_mov(words), [corrupted(path), healthy(reference)], pause)


def repairing_avi(words, path, pause="IDS_PAUSE"):
    return _repairing(words, (words["IDS_PLEASE_WAIT"],),
                      [label(words["IDS_FILE_SELECTED"]), path_of_avi(path)], pause)


def finished(words, name, size, tracks, codec, timing, duration):
    values = [shown_name(name), size, tracks, codec, timing, duration]
    captions = ["IDS_FILE_NAME", "IDS_SIZE", "IDS_TRACK", "IDS_CODEC", "IDS_US_PER_FRAME",
                "IDS_DURATION"]
    grid = [label(words[caption]) for caption in captions]
    grid += [label(": " + v if isinstance(v, str) else like(": " + v.pattern)) for v in values]
    return Page(words["IDS_REPAIRED_DETAILS"], [*grid, button(words["IDS_PREVIEW"])],
                [button(words["IDS_HOME"]), button(words["IDS_PREVIEW"]),
                 button(words["IDS_SAVE"])])


def saving(words, destination):
    return Page(words["IDS_SAVING_VIDEO"], _progress(words, words["IDS_PLEASE_WAIT_SAVING"]),
                [button(words["IDS_CANCEL"]),
                 label("%s: %s" % (words["IDS_DESTINATION"], shown(destination)))])


# Messages: their title, and everything in them, the close box last.

class Message:
    def __init__(self, title, things):
        self.title, self.things = title, things

    def differs_from(self, title, things):
        told = [] if title == self.title else ["title: " + title]
        return told + _compare("message", [label(self.title), *self.things], things)


def question(words, key):
    return Message(words["IDS_CONFIRMATION"],
                   [label(words[key]), button(words["IDS_YES"]), button(words["IDS_NO"]),
                    button(words["IDS_CLOSE"])])


def note(words, key):
    return Message(words["IDS_INFORMATION"],
                   [label(words[key]), button(words["IDS_OK"]), button(words["IDS_CLOSE"])])


def note_with_link(words, key):
    return Message(words["IDS_INFORMATION"],
                   [label(words[key]), link(words["IDS_CLICK_HERE"]),
                    label(words["IDS_CLICK_HERE_1"]), label(words["IDS_CLICK_HERE_2"]),
                    button(words["IDS_CANCEL"]), button(words["IDS_SHARE"]),
                    button(words["IDS_CLOSE"])])
