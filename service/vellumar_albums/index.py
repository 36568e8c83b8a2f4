"""What is known about the photos beside their bytes. The photos count: a row without a file isn't shown, a
file without a row is shown by its name."""

import logging
import os
import sqlite3
import threading
import time
from collections.abc import Iterator
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path

log = logging.getLogger("vellumar-albums")

TABLE = """create table if not exists Photo
    (User text, Album text, Name text, Caption text, Description text,
     Quantity integer, Product integer, Time real, primary key (User, Album, Name))"""
# The same photo sent again: what it says anew counts, and an order isn't counted twice.
ADD = """insert into Photo values (?, ?, ?, ?, ?, ?, ?, ?) on conflict do update set
    Caption = iif(excluded.Caption = '', Caption, excluded.Caption),
    Description = iif(excluded.Description = '', Description, excluded.Description),
    Quantity = max(Quantity, excluded.Quantity), Product = excluded.Product"""


@dataclass(frozen=True)
class PhotoRow:
    user: str
    album: str
    name: str
    caption: str = ""
    description: str = ""
    quantity: int = 0
    product: int = 0
    time: float = 0.0  # seconds since 1970, when it came


class Index:
    def __init__(self, path: Path) -> None:
        self._lock = threading.Lock()
        try:
            self._database = _open(path)
        except sqlite3.DatabaseError as error:
            if isinstance(error, sqlite3.OperationalError):
                raise  # locked or out of reach, not damaged
            aside = path.with_name(f"{path.name}.damaged-{int(time.time())}")
            os.rename(path, aside)
            log.error(
                "The index is damaged. It is kept as %s, captions and orders in it are not shown.", aside
            )
            self._database = _open(path)

    def add(self, row: PhotoRow, anew: bool) -> None:
        """Anew: the file is a new one, so a row that is there belongs to a photo that is gone."""
        with self._change() as database:
            if anew:
                key = (row.user, row.album, row.name)
                database.execute("delete from Photo where User = ? and Album = ? and Name = ?", key)
            values = (row.caption, row.description, row.quantity, row.product, row.time)
            database.execute(ADD, (row.user, row.album, row.name, *values))

    def album(self, user: str, album: str) -> dict[str, PhotoRow]:
        rows = self._select("where User = ? and Album = ?", user, album)
        return {row.name: row for row in rows}

    def cart(self, user: str) -> list[PhotoRow]:
        return self._select("where User = ? and Quantity > 0 order by Time, Album, Name", user)

    def empty_cart(self, user: str) -> None:
        with self._change() as database:
            database.execute("update Photo set Quantity = 0 where User = ?", (user,))

    def close(self) -> None:
        with self._lock:
            self._database.close()

    def _select(self, clause: str, *values: str) -> list[PhotoRow]:
        with self._lock:
            return [PhotoRow(*row) for row in self._database.execute(f"select * from Photo {clause}", values)]

    @contextmanager
    def _change(self) -> Iterator[sqlite3.Connection]:
        with self._lock, self._database:
            yield self._database


def _open(path: Path) -> sqlite3.Connection:
    database = sqlite3.connect(path, timeout=10, check_same_thread=False)
    try:
        database.execute(TABLE)
        if database.execute("pragma quick_check").fetchone() != ("ok",):
            raise sqlite3.DatabaseError("damaged")
        database.commit()
    except BaseException:
        database.close()
        raise
    return database
