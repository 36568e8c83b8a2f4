#!/usr/bin/env python3
"""A session that uploads photos to a service by script.

usage: upload.py PROGRAM
"""

import http.server
import sys
import threading

from desktop import NORMAL_EXIT, Desktop, make_photo, need, wait_until

UPLOAD_BUTTON = (592, 710)  # on a screen of 1280 by 900
HUES = [(200, 40, 40), (40, 160, 50), (50, 70, 200)]


class Service(http.server.BaseHTTPRequestHandler):
    logins, photos = [], []

    def do_GET(self):
        self.logins.append(self.path)
        self.answer(b"<ID>1</ID>")

    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        head = b"Content-Transfer-Encoding: binary\r\n\r\n"
        self.photos.append(body[body.index(head) + len(head) : body.rindex(b"\r\n--")])
        self.answer(b"")

    def answer(self, body):
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


def upload(desktop, program, host):
    opened = desktop.folder / "opened"
    browser = desktop.folder / "xdg-open"
    browser.write_text(f'#!/bin/sh\nprintf "%s\\n" "$@" >>"{opened}"\n')
    browser.chmod(0o755)
    path = f"{desktop.folder}:{desktop.environment['PATH']}"
    child = desktop.start(program, VELLUMAR_SERVICE_HOST=host, PATH=path)
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
    desktop.type("p&q #%41")
    desktop.press("Return")
    address = wait_until(lambda: opened.exists() and opened.read_text(), "the browser", 30)
    assert "Login=Ann%20B&Password=p%26q%20%23%2541&" in Service.logins[0], Service.logins
    assert Service.photos == [(desktop.pictures / f"{i}.jpg").read_bytes() for i in range(len(HUES))]
    assert "/Vellumar/DoLogin.asp?l=Ann%20B&p=p&q%20%23%2541&Album=" in address, address
    desktop.wait_for_query("select count(*) from Asset where ToRemotePrint", [(0,)], "an empty tab")
    assert desktop.end(child) == NORMAL_EXIT


def main(program):
    need("Xvfb", "openbox", "xdotool", "import", "cjpeg")
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Service)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    with Desktop() as desktop:
        for number, hue in enumerate(HUES):
            make_photo(desktop.pictures / f"{number}.jpg", hue)
        upload(desktop, program, f"127.0.0.1:{server.server_port}")


if __name__ == "__main__":
    main(sys.argv[1])
