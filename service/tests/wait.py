"""Waiting for a condition."""

import time


def wait_for(condition, seconds=20):
    end = time.monotonic() + seconds
    while not condition():
        assert time.monotonic() < end, "waited in vain"
        time.sleep(0.005)
