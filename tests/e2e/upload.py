#!/usr/bin/env python3
"""A session that uploads photos to a service by script, whose last answer doesn't come.

usage: upload.py PROGRAM
"""

import http.server
import sys
import threading
import urllib.parse

from desktop import NORMAL_EXIT, Desktop, make_photo, need, wait_until

UPLOAD_BUTTON = (592, 710)  # on a screen of 1280 by 900
HUES = [(200, 40, 40), (40, 160, 50), (50, 70, 200), (210, 190, 30)]


class Service(http.server.ThreadingHTTPServer):
    """Takes the photos but the last one, whose connection it leaves open."""

    daemon_threads = True

    def __init__(self):
        super().__init__(("127.0.0.1", 0), Handler)
        self.logins = []
        self.photos = []
        self.ended = threading.Event()
        threading.Thread(target=self.serve_forever, daemon=True).start()


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        address = urllib.parse.urlsplit(self.path)
        self.server.logins.append(dict(urllib.parse.parse_qsl(address.query)))
        self._answer(b"<ID>1</ID>")

    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        head = b"Content-Transfer-Encoding: binary\r\n\r\n"
        self.server.photos.append(body[body.index(head) + len(head) : body.rindex(b"\r\n--")])
        if len(self.server.photos) >= len(HUES):
            self.server.ended.wait()
            return
        self._answer(b"")

    def _answer(self, body):
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


def add_browser(desktop):
    """A program that notes the addresses which it is given. The file of these addresses."""
    folder = desktop.folder / "bin"
    opened = desktop.folder / "opened"
    folder.mkdir()
    browser = folder / "xdg-open"
    browser.write_text(f'#!/bin/sh\nprintf "%s\\n" "$@" >>"{opened}"\n')
    browser.chmod(0o755)
    desktop.environment["PATH"] = f"{folder}:{desktop.environment['PATH']}"
    return opened


def upload(desktop, program, service):
    paths = [desktop.pictures / f"{number}.jpg" for number in range(len(HUES))]
    for path, hue in zip(paths, HUES):
        make_photo(path, hue)
    opened = add_browser(desktop)
    child = desktop.start(program, VELLUMAR_SERVICE_HOST=f"127.0.0.1:{service.server_port}")
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
    desktop.type("p&q")
    desktop.press("Return")
    wait_until(lambda: len(service.photos) == len(HUES), "all photos", 30)
    desktop.press("u", "Escape")  # the first key is lost
    address = wait_until(lambda: opened.exists() and opened.read_text(), "the browser", 20)

    assert service.logins[0]["Login"] == "Ann B" and service.logins[0]["Password"] == "p&q", service.logins
    assert service.photos == [path.read_bytes() for path in paths], "the photos aren't as they are on the disk"
    assert "/Vellumar/DoLogin.asp?l=Ann%20B&p=p&q&Album=" in address, address
    rows = [("3.jpg",)]
    desktop.wait_for_query("select Filename from Asset where ToRemotePrint", rows, "the photo that is left")
    return child


def main(program):
    need("Xvfb", "openbox", "xdotool", "import", "cjpeg")
    with Service() as service, Desktop() as desktop:
        child = upload(desktop, program, service)
        # The program ends while an upload waits for its answer.
        desktop.click(*UPLOAD_BUTTON)
        desktop.wait_for_dialog("Login to Quillara")
        desktop.type("p")
        desktop.press("Return")
        wait_until(lambda: len(service.photos) > len(HUES), "the photo that is left", 30)
        assert desktop.end(child) == NORMAL_EXIT, "a stop signal must end an upload and the session"
        service.ended.set()
        service.shutdown()


if __name__ == "__main__":
    main(sys.argv[1])
