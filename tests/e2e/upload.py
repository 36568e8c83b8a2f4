#!/usr/bin/env python3
"""A session that uploads photos to an album server and opens the album.

usage: upload.py PROGRAM
"""

import pathlib
import re
import subprocess
import sys
import urllib.request

from desktop import NORMAL_EXIT, Desktop, make_photo, need, wait_until

SERVER = ["/usr/bin/python3", pathlib.Path(__file__).parents[2] / "service" / "vellumar-albums"]
UPLOAD_BUTTON = (592, 710)  # on a screen of 1280 by 900
HUES = [(200, 40, 40), (40, 160, 50), (50, 70, 200)]
PASSWORD = "p&q #%41"


def start_server(desktop, data):
    """Returns the host and the port."""
    command = [*SERVER, "--data", data]
    subprocess.run([*command, "add-user", "Ann B"], input=PASSWORD.encode(), check=True)
    server = subprocess.Popen([*command, "--listen", "127.0.0.1:0"], stdout=subprocess.PIPE)
    desktop.children.append(server)
    return re.search(r"//(.*)/", server.stdout.readline().decode())[1]


def upload(desktop, program):
    albums = desktop.folder / "albums"
    opened = desktop.folder / "opened"
    browser = desktop.folder / "xdg-open"
    browser.write_text(f'#!/bin/sh\nprintf "%s\\n" "$@" >>"{opened}"\n')
    browser.chmod(0o755)
    path = f"{desktop.folder}:{desktop.environment['PATH']}"
    child = desktop.start(program, VELLUMAR_SERVICE_HOST=start_server(desktop, albums), PATH=path)
    desktop.wait_for_window(child)
    for number, hue in enumerate(HUES):
        desktop.press("Right" if number else "Home")
        desktop.wait_for_photo(hue)
        desktop.press("u")
    desktop.press("F6")
    desktop.click(*UPLOAD_BUTTON)
    desktop.wait_for_dialog("Login to Quillara")
    desktop.type("Ann B")
    desktop.press("Tab")
    desktop.type(PASSWORD)
    desktop.press("Return")
    address = wait_until(lambda: opened.exists() and opened.read_text(), "the browser", 30)
    photos = sorted((albums / "photos" / "Ann B").glob("*/*"))
    assert [photo.read_bytes() for photo in photos] == [(desktop.pictures / p.name).read_bytes() for p in photos]
    browser = urllib.request.build_opener(urllib.request.HTTPCookieProcessor())
    assert b"3 photos" in browser.open(address.strip()).read(), address
    desktop.wait_for_query("select count(*) from Asset where ToRemotePrint", [(0,)], "an empty tab")
    assert desktop.end(child) == NORMAL_EXIT


def main(program):
    need("Xvfb", "openbox", "xdotool", "import", "cjpeg")
    with Desktop() as desktop:
        for number, hue in enumerate(HUES):
            make_photo(desktop.pictures / f"{number}.jpg", hue)
        upload(desktop, program)


if __name__ == "__main__":
    main(sys.argv[1])
