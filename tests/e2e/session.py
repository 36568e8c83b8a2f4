#!/usr/bin/env python3
"""Whole sessions of the program: first start, keys, second start, close, next start.

usage: session.py PROGRAM
"""

import sys

from desktop import NORMAL_EXIT, Desktop, make_photo, need

HUES = [(200, 40, 40), (40, 160, 50), (50, 70, 200), (210, 190, 30), (150, 50, 180)]


def first_and_next_session(desktop, program):
    for number, hue in enumerate(HUES):
        make_photo(desktop.pictures / f"{number}.jpg", hue)

    child = desktop.start(program)
    desktop.wait_for_window(child)
    desktop.wait_for_photo(HUES[4])  # the first roll is shown from its end
    desktop.press("Home")
    desktop.wait_for_photo(HUES[0])
    desktop.press("Right", "Right")
    desktop.wait_for_photo(HUES[2])
    desktop.press("End")
    desktop.wait_for_photo(HUES[4])

    second = desktop.start(program)
    assert second.wait(20) == 0, "a second start must end with 0"
    assert child.poll() is None, "the first one must go on"

    desktop.press("alt+F4")
    assert child.wait(20) == NORMAL_EXIT, f"a closed session must end with {NORMAL_EXIT}, not {child.returncode}"
    rows = desktop.query("vellumar.db", "select Filename, RollID from Asset order by AssetID")
    assert rows == [(f"{number}.jpg", 0) for number in range(len(HUES))], f"the catalog holds {rows}"

    make_photo(desktop.pictures / "new" / "5.jpg", (20, 150, 160))
    child = desktop.start(program)
    desktop.wait_for_window(child)
    desktop.wait_for_photo((20, 150, 160))  # the session opens on the new roll
    desktop.press("Home")
    desktop.wait_for_photo(HUES[0])
    assert desktop.end(child) == NORMAL_EXIT, "a stop signal must end the session in the normal way"

    rows = desktop.query("vellumar.db", "select count(*), max(RollID) from Asset")
    assert rows == [(len(HUES) + 1, 1)], f"one photo was to be added: {rows}"
    rows = desktop.query("vellumar.thumbs", "select count(*) from Cache where length(Thumbnail) > 0")
    assert rows == [(len(HUES) + 1,)], f"thumbnails: {rows}"


def other_screens(program):
    for size, scale in [((800, 600), "1"), ((1600, 1200), "2")]:
        with Desktop(size) as desktop:
            make_photo(desktop.pictures / "one.jpg", HUES[3])
            child = desktop.start(program, QT_SCALE_FACTOR=scale)
            desktop.wait_for_window(child)
            desktop.wait_for_photo(HUES[3])
            assert desktop.end(child) == NORMAL_EXIT, f"a screen of {size} at {scale}"


def main(program):
    need("Xvfb", "openbox", "xdotool", "import", "cjpeg")
    with Desktop() as desktop:
        first_and_next_session(desktop, program)
    other_screens(program)


if __name__ == "__main__":
    main(sys.argv[1])
