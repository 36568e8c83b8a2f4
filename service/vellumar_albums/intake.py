"""Takes uploads off the wire. Each is written to its file as it arrives; memory holds a few kilobytes of it.

An upload that is refused is still read to its end, so that the client is sure to see the answer.
"""

import logging
import re
import sqlite3
import threading
from collections.abc import Callable
from dataclasses import dataclass

from vellumar_albums.files import NO_ROOM
from vellumar_albums.multipart import LARGEST_HEAD, FormError, UploadParser
from vellumar_albums.store import IncomingPhoto, Store

log = logging.getLogger("vellumar-albums")

# What stays free on the disk, for the index and for everybody else.
SPARE_ROOM = 64 * 1024 * 1024
BOUNDARY = re.compile(r'multipart/form-data; *boundary="?([^"\r\n]{1,100})"?$')


@dataclass(frozen=True)
class Refusal:
    status: int
    text: str


NO_SPACE = Refusal(507, "There is no room left for photos.")
TOO_LARGE = Refusal(413, "The photo is too large.")
CROWDED = Refusal(503, "Too many photos are being received; try again.")
NO_MEMBER = Refusal(403, "This member id is unknown or has expired; log in again.")
NO_FORM = Refusal(400, "This is not the form of an upload.")
FAILED = Refusal(500, "The photo can't be stored.")


def refusal_of(error: Exception) -> Refusal:
    """What a client is told when its photo can't be written, or not be noted in the index."""
    if (
        getattr(error, "errno", None) in NO_ROOM
        or getattr(error, "sqlite_errorcode", None) == sqlite3.SQLITE_FULL
    ):
        return NO_SPACE
    return FAILED


class IntakeDesk:
    """Gives out the places for uploads and knows how much room the running ones will take."""

    def __init__(
        self, store: Store, member_of: Callable[[str], str | None], largest_photo: int, most_at_once: int
    ) -> None:
        self.store = store
        self.member_of = member_of
        self.largest_photo = largest_photo
        self._most_at_once = most_at_once
        self._lock = threading.Lock()
        self._running = 0
        self._promised = 0

    def enter(self, size: int) -> Refusal | None:
        with self._lock:
            if size > self.largest_photo + LARGEST_HEAD:
                return TOO_LARGE
            if self._running >= self._most_at_once:
                return CROWDED
            if self.store.free_space() < self._promised + size + SPARE_ROOM:
                return NO_SPACE
            self._running += 1
            self._promised += size
            return None

    def leave(self, size: int) -> None:
        with self._lock:
            self._running -= 1
            self._promised -= size


class Upload:
    """The body of one upload: the web server gives it the bytes, the page of the upload takes the result."""

    error = None  # the web server asks for it
    completed = False

    def __init__(self, desk: IntakeDesk, content_type: str, length: int) -> None:
        self._desk = desk
        self._length = length
        self._left = length
        self._entered = False
        self.fields: dict[str, bytes] = {}
        self.filename = b""
        self.user = ""
        self.photo: IncomingPhoto | None = None
        self.refusal: Refusal | None = None
        boundary = BOUNDARY.match(content_type)
        if boundary is None:
            self.refusal = NO_FORM
            return
        self._parser = UploadParser(boundary[1].encode("latin-1"), self._on_photo, self._on_data)

    def received(self, data: bytes) -> int:
        """Takes the bytes of the body and tells how many they were."""
        taken = data[: self._left]
        self._left -= len(taken)
        self._guard(lambda: self._parser.feed(taken))
        if self._left == 0:
            self.completed = True
            self._guard(self._parser_end)
        return len(taken)

    def __len__(self) -> int:
        return self._length

    def getfile(self) -> "Upload":
        return self

    def getbuf(self) -> "Upload":
        return self

    def close(self) -> None:
        """Called when the answer is out, or the connection broken; what wasn't kept is gone."""
        if self.photo is not None:
            self.photo.discard()
        if self._entered:
            self._entered = False
            self._desk.leave(self._length)

    def _parser_end(self) -> None:
        self._parser.finish()
        if self.photo is None or self.photo.size == 0:
            raise FormError("The photo is empty.")

    def _on_photo(self, fields: dict[str, bytes], filename: bytes) -> None:
        self.fields, self.filename = fields, filename
        user = self._desk.member_of(fields.get("MemberID", b"").decode("latin-1"))
        # A stranger takes no place and no room.
        self.refusal = NO_MEMBER if user is None else self._desk.enter(self._length)
        if self.refusal is None:
            self._entered = True
            self.user = user or ""
            self.photo = self._desk.store.receive()

    def _on_data(self, data: bytes) -> None:
        if self.photo is not None and self.refusal is None:
            self.photo.write(data)

    def _guard(self, step: Callable[[], None]) -> None:
        if self.refusal is not None:
            return
        try:
            step()
        except FormError as error:
            self._refuse(Refusal(400, str(error)))
        except (OSError, sqlite3.Error) as error:
            log.error("An upload can't be written: %s", error)
            self._refuse(refusal_of(error))

    def _refuse(self, refusal: Refusal) -> None:
        self.refusal = refusal
        self.close()
