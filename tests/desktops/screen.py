"""The X server that shows the whole desktop, a nested compositor's window included: pictures and input."""

import time

import numpy
from PIL import Image
import Xlib.ext
from Xlib import X, XK, display
from Xlib.ext import xtest

# The library fails on the extensions of Xwayland.
Xlib.ext.__extensions__ = [("XTEST", "xtest")]

CHANGED = 24  # in a channel; smaller differences are blinking and blending


class Screen:
    def __init__(self, name):
        self.display = display.Display(name)
        self.root = self.display.screen().root
        size = self.root.get_geometry()
        self.width, self.height = size.width, size.height

    def focus_compositor(self):
        """Without a window manager nothing gives the keyboard to a nested compositor's window."""
        for window in self.root.query_tree().children:
            if window.get_attributes().map_state == 2 and window.get_geometry().width > self.width / 2:
                window.set_input_focus(X.RevertToParent, X.CurrentTime)
                self.display.sync()
                return True
        return False

    def picture(self):
        raw = self.root.get_image(0, 0, self.width, self.height, X.ZPixmap, 0xFFFFFFFF).data
        pixels = numpy.frombuffer(raw, numpy.uint8).reshape(self.height, self.width, 4)
        return pixels[:, :, 2::-1].copy()

    def move(self, x, y):
        # Two movements, as compositors learn a position from the second one only.
        for offset in (1, 0):
            xtest.fake_input(self.display, X.MotionNotify, x=x + offset, y=y + offset)
            self.display.sync()
            time.sleep(0.2)

    def click(self, x, y, button):
        self.move(x, y)
        for kind in (X.ButtonPress, X.ButtonRelease):
            xtest.fake_input(self.display, kind, button)
            self.display.sync()
            time.sleep(0.05)

    def key(self, name):
        code = self.display.keysym_to_keycode(XK.string_to_keysym(name))
        for kind in (X.KeyPress, X.KeyRelease):
            xtest.fake_input(self.display, kind, code)
            self.display.sync()
            time.sleep(0.05)

    def settled(self, still=1.0, limit=60.0):
        """The picture once hardly anything has changed for `still` seconds, or at the limit."""
        end = time.monotonic() + limit
        before, since = self.picture(), time.monotonic()
        while time.monotonic() < end and time.monotonic() - since < still:
            time.sleep(0.1)
            now = self.picture()
            if changed(before, now).sum() > 300:
                before, since = now, time.monotonic()
        return self.picture()


def changed(one, other):
    """Which pixels differ."""
    return (numpy.abs(one.astype(int) - other.astype(int)) > CHANGED).any(axis=2)


def bounds(mask):
    """(left, top, right, bottom) of the rows and columns with more than a few pixels set, or None."""
    rows, columns = numpy.flatnonzero(mask.sum(axis=1) > 2), numpy.flatnonzero(mask.sum(axis=0) > 2)
    if not rows.size or not columns.size:
        return None
    return int(columns[0]), int(rows[0]), int(columns[-1]) + 1, int(rows[-1]) + 1


def save(picture, path, box=None, scale=1):
    image = Image.fromarray(picture)
    if box:
        image = image.crop(box)
    image.resize((image.width * scale, image.height * scale), Image.NEAREST).save(path)
