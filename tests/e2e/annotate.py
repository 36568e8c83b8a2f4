#!/usr/bin/env python3
"""Photos get stars, titles, captions and subjects by keyboard alone, and the catalog keeps them.

usage: annotate.py PROGRAM [PHOTOS]
"""

import sys

from desktop import NORMAL_EXIT, Desktop, make_photo, need

SORT_BY_ROLL = '"Sort"=dword:000000ea'
CAPTION, SUBJECT = 2, 4


def hue(number):
    return (40 + 150 * (number % 2), 40 + 60 * (number // 2 % 3), 60 + 50 * (number // 6 % 4))


def annotate(desktop, number):
    desktop.wait_for_photo(hue(number))
    desktop.press(str(number % 5))
    desktop.press("F2", "ctrl+a")
    desktop.type(f"Picture: {number}")
    desktop.press("Return", "c")
    desktop.type(f"Rated {number % 5}, month 3")  # letters and digits that are commands elsewhere
    desktop.press("Left", "Tab")  # the caret moves in the text; Tab goes to the subjects
    desktop.type("Lake, Boat" if number == 0 else "la,bo")  # completed from the second photo on
    desktop.press("Return", "Right")


def read_stamps(desktop, kind):
    """The texts of that kind, a list for each photo in the order of the photos."""
    rows = desktop.query(
        "vellumar.db",
        "select a.Filename, coalesce(s.String, t.SortedString) from Asset a join Stamp t using (AssetID) "
        f"left join String s on s.Key = t.IndexInt and s.Category = {kind} "
        f"where t.StampType = {kind} order by a.AssetID, t.rowid",
    )
    texts = {}
    for name, text in rows:
        texts.setdefault(name, []).append(text)
    return texts


def main(program, photos=6):
    need("Xvfb", "openbox", "xdotool", "import", "cjpeg")
    with Desktop() as desktop:
        desktop.set_settings(SORT_BY_ROLL)
        for number in range(photos):
            make_photo(desktop.pictures / f"{number:02}.jpg", hue(number), (320, 240))
        child = desktop.start(program)
        desktop.wait_for_window(child)
        desktop.press("Home")
        for number in range(photos):
            annotate(desktop, number)
        desktop.press("c")
        desktop.type(", kept at the end")
        desktop.press("alt+F4")  # with the field still open
        assert child.wait(20) == NORMAL_EXIT, f"the session ended with {child.returncode}"

        names = [f"Picture_ {number}.jpg" for number in range(photos)]
        rows = desktop.query("vellumar.db", "select Filename, CachedRating from Asset order by AssetID")
        assert rows == [(name, number % 5) for number, name in enumerate(names)], f"titles and stars: {rows}"
        assert sorted(path.name for path in desktop.pictures.iterdir()) == sorted(names)
        captions = {name: [f"Rated {number % 5}, month 3"] for number, name in enumerate(names)}
        captions[names[-1]][0] += ", kept at the end"
        assert read_stamps(desktop, CAPTION) == captions, read_stamps(desktop, CAPTION)
        subjects = {name: ["Lake", "Boat"] for name in names}
        assert read_stamps(desktop, SUBJECT) == subjects, read_stamps(desktop, SUBJECT)


if __name__ == "__main__":
    main(sys.argv[1], *map(int, sys.argv[2:]))
