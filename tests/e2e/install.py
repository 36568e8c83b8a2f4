#!/usr/bin/env python3
"""Installs the program into a scratch folder and looks at what the desktop will find there.

usage: install.py BUILD-FOLDER
"""

import configparser
import pathlib
import subprocess
import sys
import tempfile

from desktop import need


def check_names(installed):
    """One id names the entry, the icons, and, in the program, its windows."""
    (entry,) = (installed / "share/applications").iterdir()
    parser = configparser.ConfigParser(interpolation=None)
    parser.read(entry)
    values = parser["Desktop Entry"]
    assert values["Icon"] == entry.stem, values["Icon"]
    program = installed / "bin" / values["Exec"].split()[0]
    assert entry.stem.encode("utf-16-le") in program.read_bytes(), "the program's windows have another id"
    icons = sorted(path.name for path in (installed / "share/icons").rglob("*.*g"))
    assert icons == [f"{entry.stem}.png"] * 9 + [f"{entry.stem}.svg"], icons


def check_answers(installed):
    """Without a display, a home or a terminal."""
    program = installed / "bin" / "vellumar"
    version = subprocess.run([program, "--version"], env={}, capture_output=True, text=True, check=True).stdout
    metainfo = next((installed / "share/metainfo").iterdir()).read_text()
    assert f'<release version="{version.split()[-1]}"' in metainfo, version
    refused = subprocess.run([program, "--nonsense"], env={}, capture_output=True, text=True)
    assert refused.returncode == 2 and not refused.stdout and "--nonsense" in refused.stderr, refused


def check_manual_page(page):
    shown = subprocess.run(["man", "--warnings", "-l", page], capture_output=True, text=True, check=True)
    assert "EXIT STATUS" in shown.stdout and not shown.stderr, shown.stderr


def main():
    need("cmake", "desktop-file-validate", "appstreamcli", "man")
    with tempfile.TemporaryDirectory(prefix="vellumar-install-") as scratch:
        installed = pathlib.Path(scratch) / "usr"
        subprocess.run(["cmake", "--install", sys.argv[1], "--prefix", installed], stdout=subprocess.DEVNULL, check=True)
        check_names(installed)
        check_answers(installed)
        subprocess.run(["desktop-file-validate", *(installed / "share/applications").iterdir()], check=True)
        subprocess.run(["appstreamcli", "validate-tree", "--no-net", scratch], check=True)
        check_manual_page(installed / "share/man/man1/vellumar.1.gz")


main()
