"""The photos on disk: photos/USER/ALBUM/NAME below the data folder, each with the very bytes that came.

Folders are opened one below the other and links are never followed, so no name and no link leads elsewhere.
"""

import os
import secrets
import shutil
import threading
from collections.abc import Iterator
from contextlib import contextmanager
from dataclasses import dataclass, replace
from pathlib import Path

from vellumar_albums import files
from vellumar_albums.index import Index, PhotoRow
from vellumar_albums.names import is_component, numbered

MOST_OF_ONE_NAME = 10_000


class IncomingPhoto:
    """A photo that is being received, under a name of its own. Gone unless the store keeps it."""

    def __init__(self, folder: int) -> None:
        self._folder = folder
        self.name = secrets.token_hex(16)
        self.fd = os.open(self.name, os.O_RDWR | os.O_CREAT | os.O_EXCL | os.O_CLOEXEC, 0o600, dir_fd=folder)
        self.size = 0

    def write(self, data: bytes) -> None:
        files.write_all(self.fd, data)
        self.size += len(data)

    def discard(self) -> None:
        """May be called again, and after the photo was kept."""
        if self.fd < 0:
            return
        os.close(self.fd)
        self.fd = -1
        try:
            os.unlink(self.name, dir_fd=self._folder)
        except FileNotFoundError:
            pass


@dataclass(frozen=True)
class Album:
    name: str
    count: int
    cover: str  # name of its first photo
    time: float


class Store:
    def __init__(self, data: Path, index: Index) -> None:
        self._index = index
        self._data = data
        self._keeping = threading.Lock()
        self._photos = _make_folder(data / "photos")
        self._incoming = _make_folder(data / "incoming")
        for left in os.listdir(self._incoming):  # by a server that was killed
            os.unlink(left, dir_fd=self._incoming)

    def free_space(self) -> int:
        return shutil.disk_usage(self._data).free

    def receive(self) -> IncomingPhoto:
        return IncomingPhoto(self._incoming)

    def keep(self, photo: IncomingPhoto, row: PhotoRow) -> str:
        """Gives the photo its place, flushed to disk, and returns its name there.

        The same bytes under the same name are the same photo, so an upload that is repeated after a lost
        answer makes no second one. Another photo of that name becomes "name (2).jpg".
        """
        os.fsync(photo.fd)
        # One at a time, so that no upload counts on a photo of the same name that another one takes back.
        with self._keeping, self._folder(row.user, row.album, make=True) as folder:
            name, is_new = self._place(photo, row.name, folder)
            try:
                self._index.add(replace(row, name=name), anew=is_new)
            except BaseException:
                if is_new:
                    os.unlink(name, dir_fd=folder)
                raise
        return name

    def albums(self, user: str) -> list[Album]:
        """The newest album first."""
        found = []
        try:
            with self._folder(user) as folder:
                names = [name for name in os.listdir(folder) if is_component(name)]
        except FileNotFoundError:
            return []
        for name in names:
            try:
                photos = self.album(user, name)
            except FileNotFoundError:
                continue
            if photos:
                found.append(Album(name, len(photos), photos[0].name, max(row.time for row in photos)))
        return sorted(found, key=lambda album: (-album.time, album.name))

    def album(self, user: str, album: str) -> list[PhotoRow]:
        """The photos that are there, in the order in which they came. Raises FileNotFoundError."""
        rows = self._index.album(user, album)
        photos = []
        with self._folder(user, album) as folder:
            for entry in os.scandir(folder):
                if is_component(entry.name) and entry.is_file(follow_symlinks=False):
                    photos.append(rows.get(entry.name) or _row_without_index(user, album, entry))
        return sorted(photos, key=lambda row: (row.time, row.name))

    def open(self, user: str, album: str, name: str) -> int:
        """A descriptor for reading, the caller's to close. Raises FileNotFoundError."""
        if not is_component(name):
            raise FileNotFoundError(name)
        with self._folder(user, album) as folder:
            return files.open_regular(name, folder)

    def cart(self, user: str) -> list[PhotoRow]:
        """What is to be printed and is still there."""
        return [row for row in self._index.cart(user) if self._is_there(row)]

    def empty_cart(self, user: str) -> None:
        self._index.empty_cart(user)

    def _is_there(self, row: PhotoRow) -> bool:
        try:
            os.close(self.open(row.user, row.album, row.name))
        except OSError:
            return False
        return True

    def _place(self, photo: IncomingPhoto, name: str, folder: int) -> tuple[str, bool]:
        for number in range(1, MOST_OF_ONE_NAME):
            candidate = numbered(name, number)
            try:
                files.move_without_overwriting(photo.name, self._incoming, candidate, folder)
                os.fsync(folder)
                return candidate, True
            except FileExistsError:
                if _holds(candidate, folder, photo.fd):
                    return candidate, False
        raise FileExistsError(name)

    @contextmanager
    def _folder(self, *names: str, make: bool = False) -> Iterator[int]:
        folder = os.dup(self._photos)
        try:
            for name in names:
                if not is_component(name):
                    raise FileNotFoundError(name)
                if make:
                    _make_below(folder, name)
                try:
                    inner = os.open(name, files.FOLDER_FLAGS, dir_fd=folder)
                except OSError as error:
                    raise FileNotFoundError(name) from error
                os.close(folder)
                folder = inner
            yield folder
        finally:
            os.close(folder)


def _holds(name: str, folder: int, photo: int) -> bool:
    """Whether the file of that name is a photo of the same bytes."""
    try:
        there = files.open_regular(name, folder)
    except OSError:
        return False
    try:
        return files.same_bytes(there, photo)
    finally:
        os.close(there)


def _make_folder(path: Path) -> int:
    path.mkdir(mode=0o700, parents=True, exist_ok=True)
    return os.open(path, os.O_RDONLY | os.O_DIRECTORY | os.O_CLOEXEC)


def _make_below(folder: int, name: str) -> None:
    try:
        os.mkdir(name, 0o700, dir_fd=folder)
    except FileExistsError:
        return
    os.fsync(folder)


def _row_without_index(user: str, album: str, entry: os.DirEntry[str]) -> PhotoRow:
    try:
        return PhotoRow(user, album, entry.name, time=entry.stat(follow_symlinks=False).st_mtime)
    except FileNotFoundError:
        return PhotoRow(user, album, entry.name)
