#!/usr/bin/env python3
"""Kills the program at random moments of rotating and correcting photos over and over: every photo, or the
copy of its earlier bytes, must be one of its whole versions.

usage: edit_kill.py PROGRAM [ROUNDS [SEED]]
"""

import random
import signal
import subprocess
import sys
import time

from desktop import NORMAL_EXIT, Desktop, make_photo, need, read_ppm

SORT_BY_TITLE = '"Sort"=dword:000000e9'
NO_TIP = '"DontShowAddFolderTip"=dword:00000001'
HUES = [(180, 60, 60), (60, 150, 70), (70, 90, 170), (170, 160, 60)]
SIZE = (1200, 800)
KEYS = ["r", "l", "f", "Right", "Left", "r", "f"]


def decode(path):
    """Width, height and pixels; none if the file doesn't decode without a complaint."""
    picture = subprocess.run(["djpeg", "-ppm"], input=path.read_bytes(), capture_output=True)
    if picture.returncode != 0 or picture.stderr:
        return None
    return read_ppm(picture.stdout)


def check_whole(path):
    picture = decode(path)
    assert picture is not None, f"{path.name} doesn't decode"
    width, height, pixels = picture
    assert sorted((width, height)) == sorted(SIZE), f"{path.name} is {width} by {height}"
    # A photo of one colour is of one colour in each of its versions, turned or corrected.
    corners = [pixels[3 * offset : 3 * offset + 3] for offset in (0, width - 1, width * height - 1)]
    assert all(max(abs(a - b) for a, b in zip(corners[0], corner)) <= 3 for corner in corners), path.name


def check_folder(folder):
    names = {path.name for path in folder.iterdir()}
    for number in range(len(HUES)):
        photo, original = folder / f"{number}.jpg", folder / f"{number}.jpg.orig"
        assert photo.name in names, f"{photo.name} is gone"
        for path in (photo, original):
            if path.exists():
                check_whole(path)


def main(program, rounds=4, seed=None):
    need("Xvfb", "openbox", "xdotool", "import", "cjpeg", "djpeg")
    seed = int(time.time()) if seed is None else seed
    print("seed", seed)
    chance = random.Random(seed)
    with Desktop() as desktop:
        desktop.set_settings(NO_TIP, SORT_BY_TITLE)
        for number, hue in enumerate(HUES):
            make_photo(desktop.pictures / f"{number}.jpg", hue, SIZE)
        for _ in range(rounds):
            child = desktop.start(program)
            desktop.wait_for_window(child)
            time.sleep(0.3)
            deadline = time.monotonic() + chance.uniform(0.2, 2.0)
            while time.monotonic() < deadline:
                desktop.press(chance.choice(KEYS))
            child.send_signal(signal.SIGKILL)
            child.wait()
            check_folder(desktop.pictures)
        child = desktop.start(program)
        desktop.wait_for_window(child)
        assert desktop.end(child) == NORMAL_EXIT
        rows = desktop.query("vellumar.db", "select count(*), count(distinct Filename) from Asset")
        assert rows == [(len(HUES), len(HUES))], f"the catalog holds {rows}"


if __name__ == "__main__":
    main(sys.argv[1], *map(int, sys.argv[2:]))
