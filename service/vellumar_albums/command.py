"""The command line of the album server."""

import argparse
import getpass
import logging
import os
import signal
import socket
import sqlite3
import sys
from pathlib import Path
from types import FrameType

from vellumar_albums.accounts import AccountError
from vellumar_albums.application import make_application
from vellumar_albums.home import Home, open_accounts
from vellumar_albums.intake import IntakeDesk
from vellumar_albums.webserver import make_server

ABOUT = "Takes the photos that Vellumar uploads, keeps them as they are and shows them in a browser."
COMMANDS = """commands:
  serve                  run the server; this is what happens without a command
  add-user NAME          make a user; the password is asked for, or read from standard input
  change-password NAME   give a user another password; ends the user's sessions
  remove-user NAME       close an account; the user's photos stay on the disk
  list-users             print the names of all users

files, below the data folder:
  photos/USER/ALBUM/     the photos, as they came
  accounts.db            the users, with their passwords as scrypt hashes
  index.db               captions, descriptions and orders
  thumbnails/            reduced pictures; can be deleted at any time

The program sends passwords and photos over plain HTTP, readable by everybody on the way. Run the server on
a network that you trust, or behind a proxy that speaks TLS.
"""
USER_COMMANDS = ("add-user", "change-password", "remove-user")


def main() -> int:
    parser = _make_parser()
    options = parser.parse_args()
    if (options.name is not None) != (options.command in USER_COMMANDS):
        parser.error(f"{options.command} takes {'a' if options.command in USER_COMMANDS else 'no'} user name")
    try:
        return _serve(options) if options.command == "serve" else _change_users(options)
    except BlockingIOError:
        print(f"vellumar-albums: another server runs over {options.data}", file=sys.stderr)
    except (AccountError, OSError, ValueError, sqlite3.Error) as error:
        print(f"vellumar-albums: {error}", file=sys.stderr)
    return 1


def _make_parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="vellumar-albums",
        description=ABOUT,
        epilog=COMMANDS,
        formatter_class=argparse.RawDescriptionHelpFormatter,
    )
    choices = ["serve", *USER_COMMANDS, "list-users"]
    parser.add_argument(
        "command", nargs="?", default="serve", choices=choices, metavar="COMMAND", help="see below"
    )
    parser.add_argument("name", nargs="?", metavar="NAME", help="a user's name")
    base = Path(os.environ.get("XDG_DATA_HOME") or Path.home() / ".local" / "share")
    parser.add_argument(
        "--data",
        type=Path,
        default=base / "vellumar-albums",
        metavar="FOLDER",
        help="where all data lives (%(default)s)",
    )
    parser.add_argument(
        "--listen", default="127.0.0.1:8080", metavar="HOST:PORT",
        help="0.0.0.0:8080 serves the whole network (%(default)s)",
    )  # fmt: skip
    parser.add_argument(
        "--largest-photo",
        type=_positive,
        default=200,
        metavar="MB",
        help="what is larger is refused (%(default)s)",
    )
    parser.add_argument(
        "--most-uploads",
        type=_positive,
        default=8,
        metavar="N",
        help="uploads at the same time (%(default)s)",
    )
    parser.add_argument(
        "--trusted-proxy", metavar="ADDRESS", help="a proxy whose X-Forwarded-For and -Proto headers count"
    )
    return parser


def _serve(options: argparse.Namespace) -> int:
    logging.basicConfig(level=logging.INFO, format="%(message)s", stream=sys.stderr)
    logging.getLogger("waitress").setLevel(logging.ERROR)
    home = Home(options.data)
    desk = IntakeDesk(home.store, home.member_of, options.largest_photo * 1_000_000, options.most_uploads)
    server = make_server(make_application(home), desk, options.listen, options.trusted_proxy)
    signal.signal(signal.SIGTERM, _end)
    host = server.effective_host
    shown = socket.gethostname() if host in ("0.0.0.0", "::") else f"[{host}]" if ":" in host else host
    print(f"Albums are at http://{shown}:{server.effective_port}/", flush=True)
    if not home.accounts.names():
        print("There is no user yet: vellumar-albums add-user NAME makes one.", flush=True)
    server.run()
    home.close()
    return 0


def _change_users(options: argparse.Namespace) -> int:
    accounts = open_accounts(options.data)
    if options.command == "list-users":
        print(*accounts.names(), sep="\n")
    elif options.command == "remove-user":
        accounts.remove(options.name)
    elif options.command == "add-user":
        accounts.add(options.name, _ask_password())
    else:
        accounts.change_password(options.name, _ask_password())
    return 0


def _ask_password() -> bytes:
    if not sys.stdin.isatty():
        return sys.stdin.buffer.readline().rstrip(b"\r\n")
    password = getpass.getpass("Password: ")
    if getpass.getpass("Once more: ") != password:
        raise AccountError("The two passwords differ.")
    return password.encode("utf-8", "surrogateescape")


def _positive(text: str) -> int:
    if not text.isdecimal() or int(text) < 1:
        raise argparse.ArgumentTypeError("has to be a number from 1")
    return int(text)


def _end(_signal: int, _frame: FrameType | None) -> None:
    raise SystemExit
