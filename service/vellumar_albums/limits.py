"""Bounds on costly work: how much of it runs at once, and how often one caller may ask for it."""

import threading
import time
from collections import OrderedDict
from collections.abc import Callable, Iterator
from contextlib import contextmanager


class Busy(Exception):
    """Too many wait already; the caller should come back later."""


class Gate:
    """Lets a few run at once and a few wait for them; refuses everybody else."""

    def __init__(self, running: int, waiting: int) -> None:
        self._places = threading.Semaphore(running + waiting)
        self._running = threading.Semaphore(running)

    @contextmanager
    def enter(self) -> Iterator[None]:
        if not self._places.acquire(blocking=False):
            raise Busy
        try:
            with self._running:
                yield
        finally:
            self._places.release()


class Throttle:
    """Allows a key some attempts at once, then one each so many seconds.

    A refused attempt costs nothing, so a key is never locked for longer than one such interval. The table is
    bounded; the keys that were idle for the longest time are forgotten first.
    """

    def __init__(
        self, burst: int, seconds: float, clock: Callable[[], float] = time.monotonic, keys: int = 10_000
    ) -> None:
        self._burst = burst
        self._seconds = seconds
        self._clock = clock
        self._keys = keys
        self._used: OrderedDict[str, tuple[float, float]] = OrderedDict()
        self._lock = threading.Lock()

    def take(self, key: str) -> bool:
        with self._lock:
            now = self._clock()
            used, since = self._used.get(key, (0.0, now))
            used = max(0.0, used - (now - since) / self._seconds)
            if used > self._burst - 1:
                return False
            self._used[key] = (used + 1, now)
            self._used.move_to_end(key)
            if len(self._used) > self._keys:
                self._used.popitem(last=False)
            return True

    def forget(self, key: str) -> None:
        """The attempt was good: the key begins anew."""
        with self._lock:
            self._used.pop(key, None)
