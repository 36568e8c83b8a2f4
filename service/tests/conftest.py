"""A server over a folder of its own, with the users anna and ben, and what a client sends it."""

import io
import socket
import sys
import threading
import time
from http.client import HTTPConnection, HTTPResponse
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

from vellumar_albums import accounts, intake  # noqa: E402
from vellumar_albums.application import make_application  # noqa: E402
from vellumar_albums.home import Home  # noqa: E402
from vellumar_albums.webserver import make_server  # noqa: E402

BOUNDARY = b"----------qUiLlArAfOrMbOuNdArY$"
PASSWORDS = {"anna": b"right", "ben": b"b&n=100%#+ \xc3\xb6"}
ALBUM = "November 5, 2026"


def make_jpeg(orientation=1, size=(60, 40)):
    """The left half is red, the right half blue."""
    from PIL import Image

    picture = Image.new("RGB", size, "blue")
    picture.paste("red", (0, 0, size[0] // 2, size[1]))
    exif = Image.Exif()
    exif[0x0112] = orientation
    out = io.BytesIO()
    picture.save(out, "JPEG", exif=exif)
    return out.getvalue()


def form(member, photo, filename=b"/home/anna/Pictures/Boats.jpg", **fields):
    """The body of an upload, byte for byte as the program sends it."""
    values = {"MemberID": member, "AlbumName": ALBUM, "WatermarkSize": 0, "Quantity": 0, "ProductID": 2}
    values |= {"DirectPrint": "N", "Caption": "Boats"} | fields
    body = b""
    for name, value in values.items():
        value = value if isinstance(value, bytes) else str(value).encode()
        body += b'--%s\nContent-Disposition: form-data; name="%s"' % (BOUNDARY, name.encode())
        body += b"\r\n\r\n%s\r\n" % value
    body += b'--%s\nContent-Disposition: form-data; name="File1"; filename="%s"\r\n' % (BOUNDARY, filename)
    body += b"Content-Type: image/jpeg\r\nContent-Transfer-Encoding: binary\r\n\r\n"
    return body + photo + b"\r\n--%s--\r\n\r\n" % BOUNDARY


def head(length):
    return (
        b"POST /MemUploadUtilitySend.asp HTTP/1.1\r\nHost: localhost:8080\r\nUser-Agent: quillaraOrg/1.0\r\n"
        b"Content-Type: multipart/form-data; boundary=%s\r\nContent-Length: %d\r\n\r\n" % (BOUNDARY, length)
    )


class RunningServer:
    def __init__(self, data: Path, largest_photo: int = 10_000_000, most_uploads: int = 4) -> None:
        self.data = data
        self.home = Home(data)
        for name, password in PASSWORDS.items():
            if name not in self.home.accounts.names():
                self.home.accounts.add(name, password)
        self.desk = intake.IntakeDesk(self.home.store, self.home.member_of, largest_photo, most_uploads)
        application = make_application(self.home)
        self.server = make_server(application, self.desk, "127.0.0.1:0")
        self._thread = threading.Thread(target=self._run)
        self._thread.start()

    def _run(self):
        while self.server._map and not getattr(self, "ended", False):
            self.server.asyncore.loop(timeout=0.05, map=self.server._map, count=1, use_poll=True)

    def stop(self):
        self.ended = True
        self._thread.join()
        self.server.task_dispatcher.shutdown()
        for part in list(self.server._map.values()):
            part.close()
        self.home.close()

    def connect(self):
        return socket.create_connection(("127.0.0.1", int(self.server.effective_port)), timeout=60)

    def get(self, path, cookie="", method="GET", body=None, **headers):
        """Status, headers and body."""
        connection = HTTPConnection("127.0.0.1", int(self.server.effective_port), timeout=60)
        headers = {name.replace("_", "-"): value for name, value in headers.items()} | {"Cookie": cookie}
        connection.request(method, path, body, headers)
        answer = connection.getresponse()
        found = answer.status, answer.headers, answer.read()
        connection.close()
        return found

    def answer_on(self, connection):
        answer = HTTPResponse(connection)
        answer.begin()
        return answer.status, answer.read()

    def send(self, body):
        with self.connect() as connection:
            connection.sendall(head(len(body)) + body)
            return self.answer_on(connection)

    def member(self, user="anna"):
        return self.home.logins.issue(self.home.logins.members, user)

    def cookie(self, user="anna"):
        return "vellumar_session=" + self.home.logins.issue(self.home.logins.sessions, user)

    def stored(self, user="anna"):
        """Album and name of each photo on the disk, with its bytes."""
        files = (self.data / "photos" / user).glob("*/*")
        return {f"{file.parent.name}/{file.name}": file.read_bytes() for file in files}

    def incoming(self):
        return list((self.data / "incoming").iterdir())


@pytest.fixture(autouse=True)
def _cheap_passwords(monkeypatch):
    monkeypatch.setattr(accounts, "SCRYPT_COST", 2**10)
    monkeypatch.setattr(intake, "SPARE_ROOM", 0)


@pytest.fixture
def server(tmp_path):
    running = RunningServer(tmp_path / "data")
    yield running
    running.stop()


def wait_for(condition, seconds=60):
    end = time.monotonic() + seconds
    while not condition():
        assert time.monotonic() < end, "waited in vain"
        time.sleep(0.005)
