"""The users and their passwords, kept as scrypt hashes with a salt of their own. Any process may change them
while the server runs; it reads them anew each time."""

import hashlib
import hmac
import os
import sqlite3
import unicodedata
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path

from vellumar_albums.names import user_name

# About 32 MB and a tenth of a second a check.
SCRYPT_COST = 2**15
SCRYPT_BLOCK = 8
SCRYPT_MEMORY = 64 * 1024 * 1024
LONGEST_PASSWORD = 1024

TABLE = """create table if not exists User
    (Login text primary key, Name text not null, Salt blob not null, Hash blob not null)"""


class AccountError(Exception):
    """A user can't be made or changed; the text says why."""


class Accounts:
    def __init__(self, path: Path) -> None:
        self._path = path
        with self._open() as database:
            database.execute(TABLE)
        # What the password of an unknown user is compared with, so that it takes as long as a known one.
        self._nobody = (os.urandom(16), os.urandom(32))

    def add(self, name: str, password: bytes) -> None:
        stored = user_name(name)
        if not stored:
            raise AccountError('A user name has up to 40 letters and none of <>:"/\\|?*.')
        try:
            with self._open() as database:
                row = (stored.casefold(), stored, *_protect(password))
                database.execute("insert into User values (?, ?, ?, ?)", row)
        except sqlite3.IntegrityError:
            raise AccountError(f"There is a user {stored} already.") from None

    def change_password(self, name: str, password: bytes) -> None:
        salt, digest = _protect(password)
        self._change("update User set Salt = ?, Hash = ? where Login = ?", salt, digest, _key(name))

    def remove(self, name: str) -> None:
        self._change("delete from User where Login = ?", _key(name))

    def names(self) -> list[str]:
        with self._open() as database:
            return [name for (name,) in database.execute("select Name from User order by Login")]

    def check(self, login: str, passwords: list[bytes]) -> str | None:
        """The user's name if one of the passwords is right. Takes as long for users that don't exist."""
        with self._open() as database:
            row = database.execute(
                "select Name, Salt, Hash from User where Login = ?", (_key(login),)
            ).fetchone()
        name, salt, digest = row or (None, *self._nobody)
        right = False
        for password in passwords:
            right |= hmac.compare_digest(_hash(password[:LONGEST_PASSWORD], salt), digest)
        return name if right else None

    def mark_of(self, name: str) -> bytes | None:
        """Changes with the password; nothing if the user is gone."""
        with self._open() as database:
            row = database.execute("select Salt from User where Login = ?", (_key(name),)).fetchone()
        return row[0] if row else None

    def _change(self, statement: str, *values: bytes | str) -> None:
        with self._open() as database:
            if database.execute(statement, values).rowcount == 0:
                raise AccountError("There is no such user.")

    @contextmanager
    def _open(self) -> Iterator[sqlite3.Connection]:
        database = sqlite3.connect(self._path, timeout=10)
        try:
            with database:
                yield database
        finally:
            database.close()


def _key(name: str) -> str:
    return user_name(name).casefold()


def _protect(password: bytes) -> tuple[bytes, bytes]:
    if not 1 <= len(password) <= LONGEST_PASSWORD:
        raise AccountError("A password has 1 to 1024 bytes.")
    salt = os.urandom(16)
    return salt, _hash(password, salt)


def _hash(password: bytes, salt: bytes) -> bytes:
    try:
        # One keyboard composes letters with accents, another doesn't.
        password = unicodedata.normalize("NFC", password.decode()).encode()
    except UnicodeDecodeError:
        pass
    return hashlib.scrypt(password, salt=salt, n=SCRYPT_COST, r=SCRYPT_BLOCK, p=1, maxmem=SCRYPT_MEMORY)
