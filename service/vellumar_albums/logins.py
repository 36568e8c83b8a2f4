"""Who may come in: password checks, slowed and bounded, and the tokens that stand for a checked password."""

import hashlib
import ipaddress
import logging
import secrets
import threading
import time
from collections import OrderedDict
from collections.abc import Callable

from vellumar_albums.accounts import Accounts
from vellumar_albums.limits import Gate, Throttle

HOUR = 3600.0

log = logging.getLogger("vellumar-albums")


class TooManyAttempts(Exception):
    """This address has to wait some seconds before its next attempt."""


class Tokens:
    """Random texts that stand for a user until they haven't been used for a while. Lives in memory only."""

    def __init__(
        self, lifetime: float, most_per_user: int, clock: Callable[[], float] = time.monotonic
    ) -> None:
        self._lifetime = lifetime
        self._most_per_user = most_per_user
        self._clock = clock
        self._lock = threading.Lock()
        # By hash, so that a look-up tells nothing by its time. The one used last stands last.
        self._known: OrderedDict[bytes, tuple[str, bytes, float]] = OrderedDict()

    def issue(self, user: str, mark: bytes) -> str:
        token = secrets.token_hex(24)
        with self._lock:
            own = [key for key, (owner, _, _) in self._known.items() if owner == user]
            for key in own[: max(0, len(own) + 1 - self._most_per_user)]:
                del self._known[key]
            self._known[_key(token)] = (user, mark, self._clock())
        return token

    def find(self, token: str) -> tuple[str, bytes] | None:
        """User and mark; each use begins the lifetime anew."""
        with self._lock:
            now = self._clock()
            while self._known and next(iter(self._known.values()))[2] < now - self._lifetime:
                self._known.popitem(last=False)
            found = self._known.get(_key(token))
            if found is None:
                return None
            user, mark, _ = found
            self._known[_key(token)] = (user, mark, now)
            self._known.move_to_end(_key(token))
            return user, mark

    def drop(self, token: str) -> None:
        with self._lock:
            self._known.pop(_key(token), None)


class Logins:
    def __init__(self, accounts: Accounts) -> None:
        self._accounts = accounts
        self._gate = Gate(running=2, waiting=4)
        self._by_user_and_address = Throttle(burst=5, seconds=3)
        self._by_address = Throttle(burst=30, seconds=1)
        # Sessions of browsers, and member ids that the program sends with each photo.
        self.sessions = Tokens(lifetime=12 * HOUR, most_per_user=40)
        self.members = Tokens(lifetime=12 * HOUR, most_per_user=40)

    def check(self, login: str, passwords: list[bytes], address: str) -> str | None:
        """The user's name, or nothing if the password is wrong. Raises TooManyAttempts and Busy."""
        network = _network(address)
        pair = hashlib.sha256(f"{network} {login.casefold()}".encode("utf-8", "replace")).hexdigest()
        if not self._by_user_and_address.take(pair) or not self._by_address.take(network):
            raise TooManyAttempts
        with self._gate.enter():
            user = self._accounts.check(login, passwords)
        if user is None:
            # Without the name: people type their password there.
            log.info("a login from %s failed", address)
            return None
        log.info("%s logged in from %s", user, address)
        self._by_user_and_address.forget(pair)
        return user

    def issue(self, tokens: Tokens, user: str) -> str:
        return tokens.issue(user, self._accounts.mark_of(user) or b"")

    def user_of(self, tokens: Tokens, token: str) -> str | None:
        """The user of a token, if the user is still there with the same password."""
        found = tokens.find(token)
        if found is None or self._accounts.mark_of(found[0]) != found[1]:
            return None
        return found[0]


def _key(token: str) -> bytes:
    return hashlib.sha256(token.encode("utf-8", "replace")).digest()


def _network(address: str) -> str:
    """One IPv6 client has many addresses, so its network counts."""
    try:
        known = ipaddress.ip_address(address.partition("%")[0])
    except ValueError:
        return address
    return str(known) if known.version == 4 else str(ipaddress.ip_network((known, 64), strict=False))
