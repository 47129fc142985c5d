"""What the programs on the screen tell assistive tools, read from the accessibility bus."""

import os

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

_ACCESSIBLE = "org.a11y.atspi.Accessible"
_ROOT = "/org/a11y/atspi/accessible/root"
_CALL_MILLISECONDS = 20000
_COORDINATES_OF_SCREEN = 0

# Numbers of states in the bit set that an object gives.
ACTIVE = 1
ENABLED = 8
FOCUSED = 12
SHOWING = 25


class Gone(Exception):
    """The object, or its program, is not there any more."""


class Bus:
    """The bus of the assistive tools of this session."""

    def __init__(self):
        session = Gio.bus_get_sync(Gio.BusType.SESSION)
        address = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress",
                                    None, None, Gio.DBusCallFlags.NONE, -1, None).unpack()[0]
        flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
                 | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
        self._bus = Gio.DBusConnection.new_for_address_sync(address, flags)

    def call(self, name, path, interface, method, arguments=None):
        try:
            answer = self._bus.call_sync(name, path, interface, method, arguments, None,
                                         Gio.DBusCallFlags.NONE, _CALL_MILLISECONDS, None)
        except GLib.Error as error:
            raise Gone(error.message) from error
        return answer.unpack()

    def program(self, pid):
        """The root object of the program with this process id, once it is known to the bus."""
        registered = self.call("org.a11y.atspi.Registry", _ROOT, _ACCESSIBLE, "GetChildren")[0]
        for name, path in registered:
            try:
                of = self.call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                               "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                               GLib.Variant("(s)", (name,)))[0]
            except Gone:
                continue
            if of == pid:
                return Thing(self, name, path)
        return None


class Thing:
    """One accessible object: a window, a control, a text."""

    def __init__(self, bus, name, path):
        self._bus, self._name, self._path = bus, name, path

    def _call(self, interface, method, arguments=None):
        return self._bus.call(self._name, self._path, interface, method, arguments)

    def _property(self, interface, name):
        return self._call("org.freedesktop.DBus.Properties", "Get",
                          GLib.Variant("(ss)", (interface, name)))[0]

    @property
    def children(self):
        return [Thing(self._bus, *child)
                for child in self._call(_ACCESSIBLE, "GetChildren")[0]]

    @property
    def name(self):
        return self._property(_ACCESSIBLE, "Name")

    @property
    def role(self):
        return self._call(_ACCESSIBLE, "GetRoleName")[0]

    def _has(self, state):
        low, high = self._call(_ACCESSIBLE, "GetState")[0]
        return bool((low | high << 32) >> state & 1)

    @property
    def showing(self):
        return self._has(SHOWING)

    @property
    def enabled(self):
        return self._has(ENABLED)

    @property
    def focused(self):
        return self._has(FOCUSED)

    @property
    def active(self):
        return self._has(ACTIVE)

    @property
    def place(self):
        """Left, top, width and height on the screen."""
        return self._call("org.a11y.atspi.Component", "GetExtents",
                          GLib.Variant("(u)", (_COORDINATES_OF_SCREEN,)))[0]

    @property
    def middle(self):
        left, top, width, height = self.place
        return left + width // 2, top + height // 2

    @property
    def text(self):
        """What stands in a text field."""
        return self._call("org.a11y.atspi.Text", "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    @property
    def value(self):
        return self._property("org.a11y.atspi.Value", "CurrentValue")

    @value.setter
    def value(self, number):
        self._call("org.freedesktop.DBus.Properties", "Set",
                   GLib.Variant("(ssv)", ("org.a11y.atspi.Value", "CurrentValue",
                                          GLib.Variant("d", number))))

    @property
    def greatest_value(self):
        return self._property("org.a11y.atspi.Value", "MaximumValue")

    def everything(self):
        """This and all that is in it and can be seen, from outside to inside."""
        found = [self]
        for child in self.children:
            if child.showing:
                found += child.everything()
        return found


def prepare_environment(environment):
    """Lets a program of the toolkit speak to assistive tools although no reader of the screen
    asked for it."""
    environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
    environment["QT_ACCESSIBILITY"] = "1"
    environment["DBUS_SESSION_BUS_ADDRESS"] = os.environ["DBUS_SESSION_BUS_ADDRESS"]
