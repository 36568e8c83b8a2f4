"""The pictures that pages show: made once for each photo and kept. They can be lost at any time."""

import hashlib
import logging
import os
import queue
import secrets
import struct
import subprocess
import sys
import threading
from pathlib import Path

from vellumar_albums import reduce_picture
from vellumar_albums.limits import Busy, Gate
from vellumar_albums.store import Store

log = logging.getLogger("vellumar-albums")

LARGE, SMALL = "large", "small"
# More than the maker's own limit of processor time, for a machine that is busy.
MAKER_SECONDS = 60


class Pictures:
    def __init__(self, folder: Path, store: Store) -> None:
        folder.mkdir(mode=0o700, parents=True, exist_ok=True)
        for left in folder.glob("*.part"):
            left.unlink()
        self._folder = folder
        self._store = store
        self._gate = Gate(running=2, waiting=10)
        self._wanted: queue.Queue[tuple[str, str, str] | None] = queue.Queue(maxsize=5000)
        self._closing = False
        self._maker = threading.Thread(target=self._make_ahead, daemon=True)
        self._maker.start()

    def make_ahead(self, user: str, album: str, name: str) -> None:
        """Makes the pictures of a new photo soon, before anybody asks for them."""
        try:
            self._wanted.put_nowait((user, album, name))
        except queue.Full:
            pass  # they are made when they are asked for

    def close(self) -> None:
        self._closing = True
        self._wanted.put(None)
        self._maker.join()

    def find(self, user: str, album: str, name: str, size: str) -> Path | None:
        """The file of a picture, or nothing if the photo can't be shown.

        Raises FileNotFoundError if there is no such photo, Busy if too many are being made.
        """
        photo = self._store.open(user, album, name)
        try:
            about = os.fstat(photo)
            named = f"{user}/{album}/{name}/{about.st_size}/{about.st_mtime_ns}"
            key = hashlib.sha256(named.encode("utf-8", "surrogateescape")).hexdigest()[:32]
            wanted = self._folder / f"{key}-{size}.jpg"
            refused = self._folder / f"{key}-refused"
            if not wanted.exists() and not refused.exists():
                with self._gate.enter():
                    if not wanted.exists() and not refused.exists():
                        self._make(photo, key, refused)
            return wanted if wanted.exists() else None
        finally:
            os.close(photo)

    def _make_ahead(self) -> None:
        while (wanted := self._wanted.get()) is not None and not self._closing:
            try:
                self.find(*wanted, size=SMALL)
            except (OSError, Busy):
                pass  # the photo is gone, or browsers are asking for others just now

    def _make(self, photo: int, key: str, refused: Path) -> None:
        made = _run_maker(photo)
        try:
            self._folder.mkdir(mode=0o700, exist_ok=True)
            if not made:
                refused.touch(mode=0o600)
            for size, data in made.items():
                part = self._folder / f"{secrets.token_hex(8)}.part"
                part.write_bytes(data)
                part.rename(self._folder / f"{key}-{size}.jpg")
        except OSError as error:
            log.warning("A picture can't be kept: %s", error.strerror)


def _run_maker(photo: int) -> dict[str, bytes]:
    """Both pictures, or none if the photo can't be shown."""
    command = [sys.executable, "-I", reduce_picture.__file__]
    try:
        done = subprocess.run(command, stdin=photo, capture_output=True, timeout=MAKER_SECONDS, check=False)
    except subprocess.TimeoutExpired:
        return {}
    if done.returncode != 0:
        return {}
    made, rest = {}, done.stdout
    for size in (LARGE, SMALL):
        (length,) = struct.unpack(">I", rest[:4])
        made[size], rest = rest[4 : 4 + length], rest[4 + length :]
    return made
