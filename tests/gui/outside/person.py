"""A person in front of the program: sees what stands in its window, and uses it by mouse or by
keyboard."""

import os

import accessible
import desk
import screen
from pages import TITLE_BAR
from waiting import Failure, comes, until

_SAYS_SOMETHING = {"push button", "label", "link", "progress bar", "animation"}
_USABLE = {"push button", "link"}
_CHOOSABLE = {"list item", "table cell", "tree item"}


def _described(thing):
    role, name = thing.role, thing.name
    if role == "push button" and not thing.enabled:
        name += " (disabled)"
    return role, name


class Person:
    """`home` is where the person works, `hand` "mouse" or "keyboard", `album` gets a picture of
    each page that was looked at."""

    def __init__(self, bus, home, media, words, hand="mouse", album=None):
        self.bus, self.home, self.media, self.words = bus, home, media, words
        self.hand, self.album = hand, album
        self.program = None
        self._folder = None

    # Starting and leaving.

    def starts(self, *arguments):
        self.program = desk.Program(self.home, self.bus, *arguments)
        until(lambda: self._look(lambda: self.window), "the window")

    def quits(self):
        """Closes the window from a page on which that is asked first, and says yes."""
        from pages import question
        self.presses_title_bar("IDS_CLOSE")
        self.is_told(question(self.words, "IDS_CLOSE_DLG_MSG"))
        self.answers("IDS_YES", closes=False)
        self.program.ends()

    # Seeing.

    def _look(self, look):
        """What `look` gives; nothing while things come and go under it."""
        try:
            return look()
        except accessible.Gone:
            return None

    @property
    def window(self):
        """The main window."""
        return self._top_level("frame", "Kelvo Clipfix")

    def _top_level(self, role, name=None):
        root = self.program.root
        for window in root.children if root else []:
            if window.showing and window.role == role and name in (None, window.name):
                return window
        return None

    @property
    def message(self):
        """The message window, or a file dialog."""
        return self._top_level("dialog")

    def _in_message(self):
        """Everything in the message window, or file dialog, that stands."""
        message = self.message
        if message is None:
            raise accessible.Gone("no message window")
        return message.everything()

    def _sections(self):
        """Top, centre and bottom; the buttons of the title bar stand among them in the frame."""
        parts = [part for part in self.window.children if part.showing]
        sections = [part for part in parts if part.role not in _SAYS_SOMETHING]
        if len(sections) != 3 or len(parts) != 3 + TITLE_BAR:
            raise Failure("the window has %d parts" % len(parts))
        return sorted(sections, key=lambda section: section.place[1])

    def sees(self, page, called):
        """Waits for a page, and takes its picture."""
        self._sees(page, called, self._page)

    def is_told(self, message, called="message"):
        """Waits for a message window."""
        self._sees(message, called, self._message)

    def _sees(self, awaited, called, look):
        def found():
            return self._look(look)

        def otherwise():
            things = found()
            return called + ": " + ("nothing" if things is None else
                                    "; ".join(awaited.differs_from(*things)))
        until(lambda: (things := found()) is not None and not awaited.differs_from(*things),
              otherwise)
        self.looks(called)

    def looks(self, called):
        """Takes a picture of the screen, where pictures are kept."""
        if self.album:
            self.album.add(called)

    def _page(self):
        return [[_described(thing) for thing in section.everything()
                 if thing.role in _SAYS_SOMETHING] for section in self._sections()]

    def _message(self):
        message = self.message
        return message and (message.name, [_described(thing) for thing in message.everything()
                                           if thing.role in _SAYS_SOMETHING])

    # Doing.

    def presses(self, key, section=None):
        """Uses the control with this text, at whatever place or in one section."""
        self._use(lambda: self._find(self.words[key], self._sections() if section is None
                                     else [self._sections()[section]]), key)

    def presses_title_bar(self, key):
        self._use(lambda: self._find(self.words[key], [self.window], deep=False), key)

    def answers(self, key, closes=True):
        """Uses a button of the message, after which none stands; or where another follows at
        once, that one."""
        self._use(lambda: self._find_among(self.words[key], self._in_message()), key)
        if closes:
            until(lambda: self._look(lambda: self.message is None), "the end of the message")

    def chooses_from_menu(self, *places):
        """Goes down the menu that has just been opened to its entry at a place counted from 1, and
        so on in the menus below it. By keys, since the toolkit tells nobody what stands in a menu
        before it is reached."""
        for depth, place in enumerate(places):
            until(lambda: len(screen.windows(pid=self.program.pid)) == 2 + depth, "the menu")
            self.looks("menu")
            # The first menu has no entry chosen yet, one below it its first.
            for _ in range(place - (1 if depth else 0)):
                screen.key("Down")
            if depth + 1 < len(places):
                screen.key("Right")
        screen.key("Return")

    def drops(self, file):
        """Drags a file from elsewhere on the screen and lets it go over the window."""
        self._folder = desk.FileToDrag(self.home, file)
        screen.drag(self._folder.middle, self._middle(self.window))

    def closes_folder(self):
        """Once the file has been taken."""
        self._folder.end()

    def _find(self, name, places, deep=True):
        for place in places:
            found = self._find_among(name, place.everything() if deep else place.children)
            if found:
                return found
        return None

    @staticmethod
    def _find_among(name, things):
        for thing in things:
            if thing.name == name and thing.role in _USABLE and thing.enabled and thing.showing:
                return thing
        return None

    def _use(self, find, what):
        thing = until(lambda: self._look(find), "control " + what)
        if self.hand == "mouse":
            self._clicks(thing)
        else:
            self._goes_to(thing, what)
            screen.key("space")

    def _clicks(self, thing):
        screen.click(*until(lambda: self._look(lambda: self._middle(thing)), "a place to click"))

    def _middle(self, thing):
        return desk.middle_on_screen(thing, self.message or self.window, self.program.pid)

    def _goes_to(self, thing, what):
        """Presses Tab until the thing has the keyboard."""
        def has_it():
            return self._look(lambda: thing.focused)
        for _ in range(20):
            if has_it():
                return
            before = self._focused_place()
            screen.key("Tab")
            until(lambda: self._focused_place() not in (None, before), "the step of Tab to " + what)
        raise Failure("Tab does not reach " + what)

    def _focused_place(self):
        def look():
            for window in self.program.root.children:
                if window.showing and window.active:
                    for thing in window.everything():
                        if thing.focused:
                            return thing.place
            return None
        return self._look(look)

    # File dialogs.

    def picks(self, file):
        """Chooses a file in the open dialog that stands."""
        self._file_dialog()
        if self.hand == "mouse":
            folder, name = os.path.split(file)
            self._dialog_stands_in(folder)
            # While the list fills, its rows may move away under the mouse.
            until(lambda: self._has_clicked_on(name), "the choice of " + name)
            self._clicks(self._dialog_button("Open"))
        else:
            self._writes_name(file)
        self._file_dialog_is_closed()

    def saves_as(self, name=None):
        """Ends the save dialog with a name, or with the one that it offers."""
        self._file_dialog()
        if name is not None:
            self._writes_name(name)
        elif self.hand == "mouse":
            self._clicks(self._dialog_button("Save"))
        else:
            screen.key("Return")
        self._file_dialog_is_closed()

    def leaves_file_dialog(self):
        self._file_dialog()
        if self.hand == "mouse":
            self._clicks(self._dialog_button("Cancel"))
        else:
            screen.key("Escape")
        self._file_dialog_is_closed()

    def offered_name(self):
        """The name that the save dialog offers."""
        self._file_dialog()
        return until(lambda: self._look(lambda: self._field().text), "the offered name")

    def _file_dialog(self):
        until(lambda: self._look(lambda: self._field().focused and self.message.active),
              "the file dialog")
        self.looks("file dialog")

    def _file_dialog_is_closed(self):
        """A message may stand in its place by then."""
        def no_field():
            message = self.message
            return message is None or all(thing.role != "text" for thing in message.everything())
        until(lambda: self._look(no_field), "the end of the file dialog")

    def _field(self):
        for thing in self._in_message():
            if thing.role == "text" and thing.name.startswith("File"):
                return thing
        raise accessible.Gone("no field for the name")

    def _writes_name(self, name):
        screen.key("ctrl+a")
        screen.write(name)
        until(lambda: self._look(lambda: self._field().text == name), "the name " + name)
        # A list of names that begin alike may have opened below the field; it takes nothing away.
        screen.key("Return")

    def _has_clicked_on(self, name):
        item = self._look(lambda: self._item(name))
        if item:
            self._clicks(item)
        return item and comes(lambda: self._look(lambda: self._field().text == name), 1)

    def _item(self, name):
        for thing in self._in_message():
            if thing.role in _CHOOSABLE and thing.name == name:
                return thing
        return None

    def _dialog_stands_in(self, folder):
        if folder != self.home.videos:
            raise Failure("a mouse alone finds no way to " + folder)

    def _dialog_button(self, name):
        def look():
            for thing in self._in_message():
                if thing.role == "push button" and thing.name.replace("&", "") == name \
                        and thing.enabled:
                    return thing
            return None
        return until(lambda: self._look(look), "button " + name)


class Album:
    """Numbered pictures of what was seen, in a folder."""

    def __init__(self, folder):
        os.makedirs(folder, exist_ok=True)
        self._folder = folder
        self._number = 0

    def add(self, name):
        self._number += 1
        screen.take_picture(os.path.join(self._folder, "%02d %s.png" % (self._number, name)))
