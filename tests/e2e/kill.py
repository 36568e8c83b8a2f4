#!/usr/bin/env python3
"""Kills the program at random moments of an import and looks at what the next start makes of it.

usage: kill.py PROGRAM [ROUNDS [SEED]]
"""

import itertools
import random
import shutil
import signal
import sqlite3
import subprocess
import sys
import time

from desktop import NORMAL_EXIT, Desktop, is_near, make_photo, need, read_ppm

STEPS = (20, 70, 120, 170, 220)
PHOTOS = 100


def make_photos(folder):
    """Photos of a colour each. Returns the colours by file name."""
    colours = dict(zip((f"{i:03}.jpg" for i in range(PHOTOS)), itertools.product(STEPS, repeat=3)))
    for name, colour in colours.items():
        make_photo(folder / name, colour, (1024, 768))
    return colours


def check_whole(path):
    """Looks at a copy, with its journal if one stands, so that the program finds what the kill left."""
    if not path.exists():
        return
    copy = path.parent.parent / "copy"
    shutil.rmtree(copy, ignore_errors=True)
    shutil.copytree(path.parent, copy)
    with sqlite3.connect(copy / path.name) as database:
        answer = database.execute("pragma integrity_check").fetchall()
    assert answer == [("ok",)], f"{path.name}: {answer}"


def check_pairs(desktop, colours):
    """Every photo stands once in the catalog, with the thumbnail of its own colour."""
    assets = desktop.query("vellumar.db", "select AssetID, Filename from Asset")
    assert sorted(name for _, name in assets) == sorted(colours), "a photo is missing or stands twice"
    thumbnails = dict(desktop.query("vellumar.thumbs", "select ID, Thumbnail from Cache"))
    for asset, name in assets:
        picture = subprocess.run(["djpeg", "-ppm"], input=thumbnails[asset], stdout=subprocess.PIPE, check=True)
        width, height, pixels = read_ppm(picture.stdout)
        middle = 3 * (height // 2 * width + width // 2)
        shown = tuple(pixels[middle : middle + 3])
        assert is_near(shown, colours[name]), f"{name} of {colours[name]} has a thumbnail of {shown}"


def run_to_the_end(desktop, program):
    started = time.monotonic()
    child = desktop.start(program)
    desktop.wait_for_window(child)
    seconds = time.monotonic() - started
    assert desktop.end(child) == NORMAL_EXIT, f"the session ended with {child.returncode}"
    return seconds


def main(program, rounds=30, seed=None):
    need("Xvfb", "openbox", "xdotool", "cjpeg", "djpeg")
    seed = seed if seed is not None else random.randrange(1 << 30)
    print("seed", seed, flush=True)
    moments = random.Random(seed)
    with Desktop() as desktop:
        colours = make_photos(desktop.pictures)
        seconds = run_to_the_end(desktop, program)
        check_pairs(desktop, colours)
        for number in range(rounds):
            # In turn, everything is imported anew and the thumbnails alone are remade.
            for file in desktop.data.glob("vellumar.thumbs*" if number % 3 == 2 else "*"):
                file.unlink()
            child = desktop.start(program)
            time.sleep(moments.uniform(0, seconds))
            child.send_signal(signal.SIGKILL)
            child.wait()
            check_whole(desktop.data / "vellumar.db")
            check_whole(desktop.data / "vellumar.thumbs")
            run_to_the_end(desktop, program)
            check_pairs(desktop, colours)


if __name__ == "__main__":
    main(sys.argv[1], *(int(argument) for argument in sys.argv[2:]))
