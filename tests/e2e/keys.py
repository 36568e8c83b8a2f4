#!/usr/bin/env python3
"""A session by keyboard and mouse, as a user has it, checked in the catalog after the window is closed.

usage: keys.py PROGRAM [FULL-SCREEN-ENTRIES]
"""

import random
import sys
import time

from desktop import NORMAL_EXIT, Desktop, is_near, make_photo, need, wait_until

HUES = [(200, 40, 40), (40, 160, 50), (50, 70, 200), (210, 190, 30), (150, 50, 180), (30, 160, 170), (90, 90, 90)]
NEW_HUE = (240, 150, 200)
SORT_BY_TITLE = '"Sort"=dword:000000e9'
CELL_PITCH = 151
SCREEN = (1280, 900)
STRIP_MIDDLE_Y = 900 - 156 + 50
EMAIL_BUTTON = (373, 709)
DATE_BUTTON = (1248, 281)
FOLDER_CONTROL = (1240, 653)
STRIP_GROUND = (161, 163, 165)


def press_and_wait(desktop, hue, *keys):
    desktop.press(*keys)
    desktop.wait_for_photo(HUES[hue])


def mark_and_rate(desktop):
    desktop.wait_for_photo(HUES[0])
    desktop.press("3")
    press_and_wait(desktop, 1, "Right")
    desktop.press("m")
    press_and_wait(desktop, 2, "space")
    desktop.press("alt+2")
    press_and_wait(desktop, 4, "Right", "Right")
    desktop.press("shift+m")  # marks the photos from the one marked before
    desktop.press("u")
    press_and_wait(desktop, 6, "End")
    desktop.press("Delete")
    desktop.wait_for_photo(HUES[5])  # what was before the last one


def walk_by_mouse(desktop):
    desktop.click(SCREEN[0] // 2 - 2 * CELL_PITCH, STRIP_MIDDLE_Y)
    desktop.wait_for_photo(HUES[3])
    desktop.press("4")  # keys work after a click in the strip
    desktop.click(400, 300)
    press_and_wait(desktop, 2, "Left")  # and after one on the photo
    desktop.click(500, 400, 2)
    time.sleep(1)
    press_and_wait(desktop, 3, "Right")  # in full screen
    desktop.press("1")  # the panel isn't there to rate on
    desktop.press("Escape")
    time.sleep(1)
    press_and_wait(desktop, 4, "Right")
    desktop.press("1")


def hold_keys(desktop):
    press_and_wait(desktop, 0, "Home")
    desktop.hold("m", 1.2)  # is on and off again if a repeat counts
    desktop.hold("c", 1.2)  # opens the caption, and types nothing
    desktop.type("month 3")  # letters and digits that are commands elsewhere
    desktop.press("Left")  # the caret moves
    desktop.type("m")
    desktop.press("Return")
    press_and_wait(desktop, 5, "End")
    desktop.hold("Delete", 1.2)
    desktop.wait_for_photo(HUES[4])


def click_beside_open_lists(desktop):
    """A click that closes a list or a menu also does what it does there, once."""
    for number in range(6):
        desktop.click(*(FOLDER_CONTROL if number % 2 else DATE_BUTTON))
        time.sleep(0.3)
        desktop.click(*EMAIL_BUTTON)
        desktop.wait_for_query(
            "select ToEmail from Asset where Filename = '4.jpg'", [(number % 2,)], f"click {number} beside a list"
        )


def walk_by_tab(desktop):
    """What is otherwise done by mouse, from the window's focus and back to it."""
    desktop.press("Tab", "Right", "Right")  # on the stars
    desktop.wait_for_query("select CachedRating from Asset where Filename = '4.jpg'", [(3,)], "the stars")
    desktop.press(*["Tab"] * 4)
    desktop.type("feast")
    press_and_wait(desktop, 3, "Return", "Left")
    desktop.press("e", "alt+Down", "Return", "Return")  # takes the event from the list
    events = "select count(*) from Stamp where StampType = 5"
    desktop.wait_for_query(events, [(2,)], "the event of the list")
    desktop.press("ctrl+f")
    desktop.type("month")
    press_and_wait(desktop, 0, "Return")
    desktop.press("ctrl+f", "BackSpace", "Return")
    desktop.press(*["shift+Tab"] * 11, "F4", "m", "Return")  # sort by month
    desktop.wait_for_setting('"Sort"=dword:000000e2')
    press_and_wait(desktop, 3, "shift+Tab", "Down")  # rated with four stars
    make_photo(desktop.pictures / "7.jpg", NEW_HUE)
    desktop.press("Up", "shift+Tab", "shift+Tab", "space", "Home", "Return")  # search for photos again
    wait_until(lambda: is_near(desktop.colour_at(0.5, 0.4), NEW_HUE), "the new photo", 10)
    desktop.press(*["Tab"] * 4, "Right", "Right", "Tab", "Right", "Tab", "Return")  # clear one of the email page
    desktop.wait_for_query("select ToEmail from Asset where Filename = '1.jpg'", [(0,)], "the cleared mark")
    desktop.press("shift+Tab", "shift+Tab", "Home", *["Tab"] * 9, "Return")  # the help button
    desktop.wait_for_dialog("Information")
    press_and_wait(desktop, 0, "Escape", "Tab", "Home")


def enter_and_leave_full_screen(desktop, window, entries=8):
    """The window and what it shows agree, however soon the desktop is asked for something else."""
    desktop.press("Home")
    (desktop.pictures / "0.jpg").write_bytes(b"no picture")  # nothing is decoded between the keys
    desktop.press("Right", "Home")
    chance = random.Random(7)
    full = False
    for _ in range(entries):
        for _ in range(chance.randint(1, 4)):
            desktop.press("F11")
            full = not full
            time.sleep(chance.uniform(0, 0.4))
        time.sleep(1.5)
        fills = desktop.window_size(window) == SCREEN
        has_strip = is_near(desktop.colour_at(0.02, 0.995), STRIP_GROUND, 6)
        assert (fills, has_strip) == (full, not full), f"full screen {full}: fills it {fills}, strip {has_strip}"
    if full:
        desktop.press("F11")


def main(program, entries=8):
    need("Xvfb", "openbox", "xdotool", "import", "cjpeg")
    with Desktop(SCREEN) as desktop:
        for number, hue in enumerate(HUES):
            make_photo(desktop.pictures / f"{number}.jpg", hue)
        child = desktop.start(program)
        desktop.wait_for_window(child)
        assert desktop.end(child) == NORMAL_EXIT

        desktop.set_settings(SORT_BY_TITLE)
        child = desktop.start(program)
        window = desktop.wait_for_window(child)
        mark_and_rate(desktop)
        walk_by_mouse(desktop)
        hold_keys(desktop)
        click_beside_open_lists(desktop)
        walk_by_tab(desktop)
        enter_and_leave_full_screen(desktop, window, entries)
        desktop.press("ctrl+q")
        assert child.wait(20) == NORMAL_EXIT, f"the session ended with {child.returncode}"

        rows = desktop.query(
            "vellumar.db", "select CachedRating, ToEmail, ToRemotePrint, Tossed from Asset order by Filename"
        )
        expected = [(3, 1, 0, 0), (0, 0, 0, 0), (2, 1, 0, 0), (4, 1, 0, 0), (3, 1, 1, 0), (0, 0, 0, 1), (0, 0, 0, 1)]
        expected.append((0, 0, 0, 0))
        assert rows == expected, f"the catalog holds {rows}"
        captions = desktop.query("vellumar.db", "select SortedString from Stamp where StampType = 2")
        assert captions == [("month m3",)], f"captions: {captions}"


if __name__ == "__main__":
    main(sys.argv[1], *map(int, sys.argv[2:]))
