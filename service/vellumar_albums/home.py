"""All that the pages work on, built once over one data folder."""

import fcntl
import os
from pathlib import Path

from vellumar_albums.accounts import Accounts
from vellumar_albums.index import Index
from vellumar_albums.logins import Logins
from vellumar_albums.pictures import Pictures
from vellumar_albums.store import Store


def open_accounts(data: Path) -> Accounts:
    os.umask(0o077)
    data.mkdir(parents=True, exist_ok=True)
    return Accounts(data / "accounts.db")


class Home:
    def __init__(self, data: Path) -> None:
        """Raises BlockingIOError if another server runs over this folder."""
        data = data.absolute()
        self.accounts = open_accounts(data)
        self._lock = os.open(data / "lock", os.O_RDWR | os.O_CREAT | os.O_CLOEXEC, 0o600)
        fcntl.flock(self._lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        self.logins = Logins(self.accounts)
        self.index = Index(data / "index.db")
        self.store = Store(data, self.index)
        self.pictures = Pictures(data / "thumbnails", self.store)

    def member_of(self, token: str) -> str | None:
        return self.logins.user_of(self.logins.members, token)

    def close(self) -> None:
        self.pictures.close()
        self.index.close()
        os.close(self._lock)
