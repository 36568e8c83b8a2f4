#!/usr/bin/env python3
"""A session as a screen reader has it: the tree of parts, what is announced, and what it can do.

usage: reader.py PROGRAM
"""

import os
import sys

from desktop import NORMAL_EXIT, SKIPPED, Desktop, make_photo, need, wait_until

PYTHON = "/usr/bin/python3"  # Debian's own, as only that one has Debian's packages
ON_OWN_BUS = "VELLUMAR_TEST_BUS"
PHOTOS = 60
EVENTS = ("object:state-changed:focused", "object:property-change:accessible-name", "object:property-change:accessible-value")


class Reader:
    """Asks for parts, and remembers what was told."""

    def __init__(self):
        self.told = []  # kind, role and name of each event
        self.listener = Atspi.EventListener.new(self.note)
        for event in EVENTS:
            self.listener.register(event)

    def note(self, event):
        if event.type != EVENTS[0] or event.detail1:
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
            except GLib.Error:  # a part has gone while it was looked at
                return None

        return wait_until(look, what, 30)

    def wait_for_event(self, kind, role, name):
        """Waits for an event that begins with that, and forgets what came up to it."""

        def find():
            for number, event in enumerate(self.told):
                if event[0] == kind and event[1] == role and event[2].startswith(name):
                    return number + 1
            return None

        try:
            del self.told[: self.wait(find, f"{kind} of {role} {name}")]
        except AssertionError as failure:
            raise AssertionError(f"{failure}; told was {self.told}") from None

    def list_parts(self):
        """All parts that show."""
        desktop = Atspi.get_desktop(0)
        found = [desktop.get_child_at_index(i) for i in range(desktop.get_child_count())]
        for part in found:  # which grows meanwhile
            children = (part.get_child_at_index(i) for i in range(part.get_child_count()))
            found += [child for child in children if child.get_state_set().contains(Atspi.StateType.SHOWING)]
        return found

    def find(self, role, name=""):
        def look():
            parts = self.list_parts()
            return next((p for p in parts if p.get_role_name() == role and p.get_name().startswith(name)), None)

        return self.wait(look, f"{role} {name}")


def check_tree(reader):
    for part in reader.list_parts():
        role, name = part.get_role_name(), part.get_name()
        parent = part.get_parent()
        assert name and role not in ("filler", "unknown"), f"{role} '{name}' in {parent.get_role_name()} {parent.get_name()}"
        if part.get_index_in_parent() >= 0:
            assert parent.get_child_at_index(part.get_index_in_parent()) == part, f"{name} is elsewhere in its parent"
        if role in ("combo box", "slider", "text") and name != "Position in the filmstrip":
            relations = {relation.get_relation_type() for relation in part.get_relation_set()}
            assert Atspi.RelationType.LABELLED_BY in relations, f"{role} {name} without a label"


def first_search(reader):
    bar = reader.find("progress bar")
    reader.wait(lambda: bar.get_maximum_value() == PHOTOS, "the number of photos")
    dialog = bar.get_parent()
    names = [dialog.get_child_at_index(i).get_name() for i in range(dialog.get_child_count())]
    assert dialog.get_role_name() == "dialog" and "Stop searching" in names, names


def photos(desktop, reader):
    focus, name, value = EVENTS
    last = reader.find("list item", f"{PHOTOS - 1:02}, {PHOTOS} of {PHOTOS}")
    reader.wait(lambda: last.get_state_set().contains(Atspi.StateType.FOCUSED), "the focus on the photo")
    check_tree(reader)
    desktop.press("Home")
    reader.wait_for_event(focus, "list item", f"00, 1 of {PHOTOS}")
    desktop.press("Right")
    reader.wait_for_event(focus, "list item", f"01, 2 of {PHOTOS}")
    desktop.press("3")
    reader.wait_for_event(value, "slider", "Rating")
    reader.wait_for_event(name, "list item", f"01, 2 of {PHOTOS}, 3 stars")
    reader.find("slider", "Rating").set_current_value(1)
    desktop.press("m")
    reader.wait_for_event(name, "list item", f"01, 2 of {PHOTOS}, 1 star, marked for email")
    reader.find("page tab", "1 photo to email")
    reader.find("list item", "02").do_action(0)
    reader.wait_for_event(focus, "list item", "02, 3 of")


def lists_and_fields(desktop, reader):
    focus = EVENTS[0]
    combo = reader.find("combo box", "Sort by")
    assert combo.get_text(0, -1) == "Roll", combo.get_text(0, -1)
    combo.do_action(0)
    reader.wait_for_event(focus, "list item", "Roll")
    assert combo.get_state_set().contains(Atspi.StateType.EXPANDED)
    desktop.press("Up")
    reader.wait_for_event(focus, "list item", "Title")
    desktop.press("Escape")
    reader.wait_for_event(focus, "combo box", "Sort by")
    assert not combo.get_state_set().contains(Atspi.StateType.EXPANDED)
    rated = reader.find("combo box", "Rated")
    rated.do_action(0)
    reader.find("list item", "3 stars or better")
    desktop.press("Escape")
    reader.wait_for_event(focus, "combo box", "Rated")

    reader.find("text", "Caption").do_action(0)
    reader.wait_for_event(focus, "text", "Caption")
    desktop.type("by the sea")
    desktop.press("Return")
    reader.wait_for_event(focus, "list item", "02, 3 of")
    reader.wait(lambda: reader.find("text", "Caption").get_text(0, -1) == "by the sea", "the caption")

    desktop.press("F11")
    reader.wait_for_event(focus, "image", "02")
    assert reader.find("image", "02").get_description() == "by the sea"
    desktop.press("Right")
    reader.wait_for_event(focus, "image", "03")
    desktop.press("Escape")
    reader.wait_for_event(focus, "list item", "03, 4 of")


def main(program):
    need("Xvfb", "openbox", "xdotool", "cjpeg", "dbus-run-session")
    with Desktop() as desktop:
        make_photo(desktop.pictures / "00.jpg", (200, 40, 40), (4000, 3000))
        for number in range(1, PHOTOS):
            (desktop.pictures / f"{number:02}.jpg").write_bytes((desktop.pictures / "00.jpg").read_bytes())
        reader = Reader()
        child = desktop.start(program, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        first_search(reader)
        desktop.wait_for_window(child)
        photos(desktop, reader)
        lists_and_fields(desktop, reader)
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
