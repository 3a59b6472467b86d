"""The agent's tray icon as the session bus, or a tray of the X screen, knows it."""

import json
import os
import subprocess
import time

import dbus
from Xlib import error

from screen import display

PREFIX = "org.kde.StatusNotifierItem-"


def wait_until(condition, limit=30):
    end = time.monotonic() + limit
    while time.monotonic() < end:
        found = condition()
        if found:
            return found
        time.sleep(0.1)
    return None


class BusItem:
    """The item that is registered with a watcher."""

    def __init__(self):
        self.bus = dbus.SessionBus()

    def name(self):
        return next((str(name) for name in self.bus.list_names() if name.startswith(PREFIX)), None)

    def click(self, title):
        menu = dbus.Interface(self.bus.get_object(self.name(), "/MenuBar"), "com.canonical.dbusmenu")
        _, layout = menu.GetLayout(0, -1, ["label"])
        for number, properties, _ in layout[2]:
            if str(properties.get("label", "")) == title:
                return menu.Event(number, "clicked", dbus.String(""), dbus.UInt32(0))
        raise LookupError(title)


def x_windows(window):
    yield window
    try:
        children = window.query_tree().children
    except error.XError:
        return
    for child in children:
        yield from x_windows(child)


def visible_windows(screen_name):
    """The title, the class and (x, y, width, height) on the screen of each window that is shown."""
    connection = display.Display(screen_name)
    root = connection.screen().root
    for window in x_windows(root):
        try:
            if window.get_attributes().map_state != 2:
                continue
            size = window.get_geometry()
            place = root.translate_coords(window, 0, 0)
            names = (window.get_wm_name(), *(window.get_wm_class() or ()))
            yield names, (place.x, place.y, size.width, size.height)
        except error.XError:
            continue


def sway_windows(container):
    for child in container["nodes"] + container["floating_nodes"]:
        yield child
        yield from sway_windows(child)


def window_named(text):
    """(x, y, width, height) of the program's window with this title."""
    if "DISPLAY" not in os.environ:
        tree = json.loads(subprocess.check_output(["swaymsg", "--raw", "--type", "get_tree"]))
        return next((tuple(window["rect"].values()) for window in sway_windows(tree) if window["name"] == text), None)
    return next((place for names, place in visible_windows(os.environ["DISPLAY"]) if text in names), None)


def docked_icon(screen_name):
    for names, place in visible_windows(screen_name):
        if "Tovalin" in names and 10 <= place[2] <= 64 and 10 <= place[3] <= 64:
            return place
    return None
