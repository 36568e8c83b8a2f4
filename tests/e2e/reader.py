#!/usr/bin/env python3
"""A session as a screen reader has it: which parts there are, what is announced, what it can set.

usage: reader.py PROGRAM
"""

import os
import sys

from desktop import NORMAL_EXIT, SKIPPED, Desktop, make_photo, need, wait_until

PYTHON = "/usr/bin/python3"  # Debian's own, as only that one has Debian's packages
ON_OWN_BUS = "VELLUMAR_TEST_BUS"
PHOTOS = 60
FOCUS = "object:state-changed:focused"
NAME = "object:property-change:accessible-name"
VALUE = "object:property-change:accessible-value"


class Reader:
    """Asks for parts, and remembers what was told."""

    def __init__(self):
        self.told = []  # kind, role and name of each event
        self.listener = Atspi.EventListener.new(self.note)
        for kind in (FOCUS, NAME, VALUE):
            self.listener.register(kind)

    def note(self, event):
        if event.type == FOCUS and not event.detail1:
            return
        try:
            self.told.append((event.type, event.source.get_role_name(), event.source.get_name()))
        except GLib.Error:  # it is gone already
            pass

    def wait(self, condition, what):
        def look():
            while GLib.MainContext.default().iteration(False):
                pass
            try:
                return condition()
            except (GLib.Error, AttributeError):  # a part has gone while it was looked at
                return None

        return wait_until(look, what, 30)

    def hear(self, kind, role, name):
        """Waits for an event of a part whose name begins so, and forgets what came up to it."""
        fits = lambda event: event[:2] == (kind, role) and event[2].startswith(name)
        try:
            del self.told[: self.wait(lambda: [n for n, event in enumerate(self.told, 1) if fits(event)], name)[0]]
        except AssertionError as failure:
            raise AssertionError(f"{failure} of a {role}; told was {self.told}") from None

    def list_parts(self):
        """All parts that show, but for what the toolkit's editor consists of."""
        desktop = Atspi.get_desktop(0)
        found = [desktop.get_child_at_index(i) for i in range(desktop.get_child_count())]
        for part in found:  # which grows meanwhile
            if part.get_role_name() == "text":
                continue
            children = (part.get_child_at_index(i) for i in range(part.get_child_count()))
            found += [child for child in children if child.get_state_set().contains(Atspi.StateType.SHOWING)]
        return found

    def find(self, role, name=""):
        def look():
            parts = self.list_parts()
            return next((p for p in parts if p.get_role_name() == role and p.get_name().startswith(name)), None)

        return self.wait(look, f"the {role} {name}")

    def check_tree(self):
        for part in self.list_parts()[1:]:
            role, name, parent = part.get_role_name(), part.get_name(), part.get_parent()
            where = f"{role} '{name}' in {parent.get_role_name()} '{parent.get_name()}'"
            assert name and role not in ("filler", "unknown"), where
            if parent.get_role_name() != "application":
                assert parent.get_child_at_index(part.get_index_in_parent()) == part, where
            if parent.get_name() in ("About the photo", "Photos to show") and role in ("combo box", "slider", "text"):
                relations = [relation.get_relation_type() for relation in part.get_relation_set()]
                assert Atspi.RelationType.LABELLED_BY in relations, where


def first_search(reader):
    bar = reader.find("progress bar")
    reader.wait(lambda: bar.get_maximum_value() == PHOTOS, "the number of photos")
    dialog = bar.get_parent()
    assert dialog.get_role_name() == "dialog", dialog.get_role_name()
    reader.find("push button", "Stop searching")


def photos(desktop, reader):
    reader.hear(FOCUS, "list item", f"{PHOTOS - 1}, {PHOTOS} of {PHOTOS}")
    reader.check_tree()
    desktop.press("Home")
    reader.hear(FOCUS, "list item", f"00, 1 of {PHOTOS}")
    desktop.press("3")
    reader.hear(VALUE, "slider", "Rating")
    reader.hear(NAME, "list item", f"00, 1 of {PHOTOS}, 3 stars")
    reader.find("slider", "Rating").set_current_value(1)
    desktop.press("m")
    reader.hear(NAME, "list item", f"00, 1 of {PHOTOS}, 1 star, marked for email")
    reader.find("page tab", "1 photo to email").do_action(0)
    reader.find("list", "1 photo to email")
    reader.check_tree()
    reader.find("page tab", "Current photo").do_action(0)
    reader.find("list item", "02").do_action(0)
    reader.hear(FOCUS, "list item", "02, 3 of")


def lists(desktop, reader):
    combo = reader.find("combo box", "Sort by")
    assert combo.get_text(0, -1) == "Roll", combo.get_text(0, -1)
    combo.do_action(0)
    reader.hear(FOCUS, "list item", "Roll")
    assert combo.get_state_set().contains(Atspi.StateType.EXPANDED)
    desktop.press("Up")
    reader.hear(FOCUS, "list item", "Title")
    desktop.press("Escape")
    reader.hear(FOCUS, "combo box", "Sort by")
    assert not combo.get_state_set().contains(Atspi.StateType.EXPANDED)
    reader.find("combo box", "Rated").do_action(0)
    reader.find("list item", "3 stars or better")
    reader.check_tree()
    desktop.press("Escape")
    reader.hear(FOCUS, "combo box", "Rated")


def field_and_full_screen(desktop, reader):
    reader.find("text", "Caption").do_action(0)
    reader.hear(FOCUS, "text", "Caption")
    reader.check_tree()
    desktop.type("by the sea")
    desktop.press("Return")
    reader.hear(FOCUS, "list item", "02, 3 of")
    reader.wait(lambda: reader.find("text", "Caption").get_text(0, -1) == "by the sea", "the caption")
    desktop.press("F11")
    reader.hear(FOCUS, "image", "02")
    assert reader.find("image", "02").get_description() == "by the sea"
    desktop.press("Right")
    reader.hear(FOCUS, "image", "03")
    desktop.press("Escape")
    reader.hear(FOCUS, "list item", "03, 4 of")


def main(program):
    need("Xvfb", "openbox", "xdotool", "cjpeg")
    with Desktop() as desktop:
        make_photo(desktop.pictures / "00.jpg", (200, 40, 40), (4000, 3000))
        for number in range(1, PHOTOS):
            (desktop.pictures / f"{number:02}.jpg").write_bytes((desktop.pictures / "00.jpg").read_bytes())
        reader = Reader()
        child = desktop.start(program, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        first_search(reader)
        photos(desktop, reader)
        lists(desktop, reader)
        field_and_full_screen(desktop, reader)
        assert desktop.end(child) == NORMAL_EXIT, f"the session ended with {child.returncode}"


if __name__ == "__main__":
    if ON_OWN_BUS not in os.environ:
        need("dbus-run-session")
        os.environ[ON_OWN_BUS] = "1"
        os.execvp("dbus-run-session", ["dbus-run-session", "--", PYTHON, "-B", *sys.argv])
    try:
        import gi

        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi, GLib
    except (ImportError, ValueError) as missing:
        print("skipped: not installed:", missing)
        sys.exit(SKIPPED)
    main(sys.argv[1])
