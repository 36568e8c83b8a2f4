#!/usr/bin/env python3
"""Kills the program, or fails one of its calls, at each call that changes or reads a file, in the middle of
each command that changes something. After the next start the photos, their rows and their thumbnails must be
as before the command or as after it, all of them alike; nothing is left over; a refusal has been told.

usage: fault_sweep.py SESSION SHIM [STEP [COMMAND[:HOW]...]]

Meets every STEP-th call, each one if STEP is 1. Prints what went wrong, and how often.
"""

import hashlib
import os
import pathlib
import shutil
import sqlite3
import subprocess
import sys
import tempfile

from desktop import NO_TIP, NORMAL_EXIT, need

HOWS = ["kill", "eio", "late", "full", "read"]
# The command, and what the session is told to do before it and for it.
COMMANDS = {
    "R": ("start", "R"),
    "F": ("start", "F"),
    "undo": ("F", "F"),
    "rename": ("start", "rename"),
    "rate": ("start", "rate"),
    "caption": ("start", "caption"),
    "delete": ("start", "delete"),
    "import": ("start", "start"),
    "start": ("start", "start"),
}
CAPTION_TYPES = "select Filename, StampType, SortedString, IndexInt from Stamp join Asset using (AssetID)"
HANGS = 124


def make_photo(path, seed):
    """A dull picture, so that there is something to correct."""
    width, height = 240, 160
    pixels = bytes(
        80 + (x * (5 + seed) // 16 + y * channel // 4) % 70
        for y in range(height)
        for x in range(width)
        for channel in range(3)
    )
    picture = b"P6 %d %d 255\n" % (width, height) + pixels
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(subprocess.run(["cjpeg"], input=picture, capture_output=True, check=True).stdout)


def digest(data):
    return hashlib.sha1(bytes(data or b"")).hexdigest()[:8]


def replace_folder(target, source):
    shutil.rmtree(target, ignore_errors=True)
    shutil.copytree(source, target, symlinks=True, ignore=shutil.ignore_patterns("run"))


class Home:
    """A home folder, and what a person would find in it. The catalog holds whole paths, so a home is only ever
    used at one place."""

    def __init__(self, folder):
        self.folder = folder
        self.pictures = folder / "Pictures"
        self.data = folder / ".local" / "share" / "Vellumar Photo Organizer"

    def make(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        settings = self.folder / ".config" / "Vellumar Photo Organizer" / "settings"
        settings.parent.mkdir(parents=True)
        settings.write_text(NO_TIP + "\n")

    def run(self, session, command, **environment):
        runtime = self.folder / "run"
        runtime.mkdir(mode=0o700, exist_ok=True)
        kept = {key: value for key, value in os.environ.items() if not key.startswith(("XDG_", "QT_", "SWEEP_"))}
        settings = {**kept, "HOME": str(self.folder), "XDG_RUNTIME_DIR": str(runtime), **environment}
        try:
            return subprocess.run(
                [session, command], env=settings, capture_output=True, text=True, errors="replace", timeout=30
            )
        except subprocess.TimeoutExpired:
            return subprocess.CompletedProcess(command, HANGS, stdout="")

    def query(self, file, statement):
        with sqlite3.connect(self.data / file) as database:
            return sorted(database.execute(statement).fetchall())

    def look(self):
        """Facts that must be as before a command or as after it."""
        names = dict(self.query("vellumar.db", "select AssetID, Filename from Asset"))
        thumbnails = self.query("vellumar.thumbs", "select ID, Thumbnail from Cache")
        files = {path.name: digest(path.read_bytes()) for path in self.pictures.iterdir() if path.name[0] != "."}
        # A kill may leave an original copy of a photo that has not been corrected yet; it does no harm.
        for name in [name for name in files if name.endswith(".orig")]:
            if files[name] == files.get(name.removesuffix(".orig")):
                del files[name]
        return {
            "files": files,
            "rows": self.query("vellumar.db", "select Filename, CachedRating, Missing, Tossed from Asset"),
            "stamps": self.query("vellumar.db", CAPTION_TYPES),
            "thumbnails": {names[number]: digest(blob) for number, blob in thumbnails if number in names},
        }

    def leftovers(self):
        return sorted(path.name for path in self.folder.rglob(".vellumar-*"))


class Sweep:
    def __init__(self, folder, session, shim):
        self.folder = folder
        self.home = Home(folder / "home")
        self.kept = folder / "kept"
        self.session = session
        self.shim = shim

    def prepare(self, command):
        """Makes the home that the command begins in. What it holds then, and what it holds afterwards."""
        first, then = COMMANDS[command]
        self.home.make()
        for number in range(2):
            make_photo(self.home.pictures / f"{number}.jpg", number)
        self.home.run(self.session, "start")
        if first != "start":
            self.home.run(self.session, first)
        if command == "import":
            make_photo(self.home.pictures / "2.jpg", 2)
        replace_folder(self.kept, self.home.folder)
        before = self.home.look()
        self.home.run(self.session, then)
        self.home.run(self.session, "start")
        return before, self.home.look()

    def meet(self, command, how, call):
        """Runs the command with the fault. How the program ended, and the number of calls."""
        replace_folder(self.home.folder, self.kept)
        count = self.folder / "count"
        count.write_text("0")
        then = COMMANDS[command][1]
        environment = dict(SWEEP_ROOT=str(self.home.folder), SWEEP_AT=str(call), SWEEP_HOW=how, SWEEP_COUNT=str(count))
        if then != "start":
            environment["SWEEP_WAIT"] = "1"
        run = self.home.run(self.session, then, LD_PRELOAD=self.shim, **environment)
        return run, int(count.read_text())

    def judge(self, run, how, before, after):
        wrong = []
        if how != "kill":
            if run.returncode not in (0, NORMAL_EXIT):
                wrong.append("hangs" if run.returncode == HANGS else f"died with {run.returncode}")
            elif run.returncode != NORMAL_EXIT and not (how == "read" and run.stdout):  # a catalog that can't be read
                wrong.append("ended: " + run.stdout.strip())
        again = self.home.run(self.session, "start")
        if again.returncode != NORMAL_EXIT or again.stdout:
            wrong.append(f"next start: {again.returncode} {again.stdout.strip()}")
        found = self.home.look()
        sides = {fact: "before" if value == before[fact] else "after" for fact, value in found.items()}
        for fact, value in found.items():
            if value not in (before[fact], after[fact]):
                wrong.append(f"{fact} are neither as before nor as after: {value}")
        changed = {fact for fact in found if before[fact] != after[fact]}
        taken = {sides[fact] for fact in changed}
        if len(taken) > 1:
            wrong.append("half done: " + ", ".join(f"{fact} {sides[fact]}" for fact in sorted(changed)))
        if how != "kill" and taken == {"before"} and not run.stdout and run.returncode == NORMAL_EXIT:
            wrong.append("refused without a word")
        if self.home.leftovers():
            wrong.append("left over: " + ", ".join(self.home.leftovers()))
        return wrong

    def sweep(self, command, hows, step):
        """Rows of command, how, calls met, calls at which something went wrong."""
        before, after = self.prepare(command)
        assert command == "start" or before != after, f"{command} changes nothing"
        for how in hows:
            run, calls = self.meet(command, how, 0)
            assert run.returncode == NORMAL_EXIT, run
            met = range(1 + (step - 1) // 2, calls + 1, step)
            failed = 0
            for call in met:
                run, _ = self.meet(command, how, call)
                wrong = self.judge(run, how, before, after)
                for line in wrong:
                    print(f"{command}:{how}:{call}: {line}", flush=True)
                failed += bool(wrong)
            yield command, how, len(met), failed


def main(session, shim, step="7", *wanted):
    need("cjpeg")
    chosen = [name.partition(":") for name in wanted] or [(command, "", "") for command in COMMANDS]
    table = []
    with tempfile.TemporaryDirectory(prefix="vellumar-sweep-") as folder:
        sweep = Sweep(pathlib.Path(folder), session, shim)
        for command, _, how in chosen:
            table += sweep.sweep(command, [how] if how else HOWS, int(step))
    for command, how, met, failed in table:
        print(f"{command:8} {how:5} {met:5} met {failed:5} wrong")
    assert not any(failed for *_, failed in table), "see above"


if __name__ == "__main__":
    main(*sys.argv[1:])
