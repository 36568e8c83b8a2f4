"""Names of users, albums and photos on disk. Whatever a client sends becomes one component of a path."""

import os
import re
import unicodedata

# A file system takes 255 bytes; the rest is for " (2)" behind a name.
LONGEST_NAME = 200
FORBIDDEN = re.compile(r'[<>:"/\\|?*]')
# Marks that turn the direction of writing can make one name look like another.
DIRECTION_MARKS = frozenset("\u061c\u200e\u200f\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069\ufeff")
DEVICES = re.compile(r"(con|prn|aux|nul|com[0-9¹²³]|lpt[0-9¹²³])(\.|$)", re.IGNORECASE)


def is_component(name: str) -> bool:
    """Whether a name can stand below a folder of photos and in a link: it is proper text, and leads neither
    out of the folder nor to a hidden file."""
    try:
        name.encode()
    except UnicodeEncodeError:
        return False
    return (
        0 < len(os.fsencode(name)) <= 255
        and not name.startswith(".")
        and "/" not in name
        and "\0" not in name
    )


def safe_name(text: str, fallback: str) -> str:
    """A name that every usual file system takes, as close to the text as possible."""
    plain = "".join("_" if _is_control(letter) else letter for letter in unicodedata.normalize("NFC", text))
    plain = FORBIDDEN.sub("_", plain).lstrip(". ").rstrip(". ")
    if DEVICES.match(plain):
        plain = "_" + plain
    return _shorten(plain) or fallback


def user_name(sent: str) -> str:
    """The spelling of a user's name under which it is stored; empty if it can't be one."""
    name = unicodedata.normalize("NFC", sent).strip()
    return name if len(name) <= 40 and safe_name(name, "") == name else ""


def album_name(sent: bytes) -> str:
    return safe_name(sent.decode("utf-8", "replace"), "Album")


def photo_name(sent: bytes) -> str:
    """The name of a photo from the path that the client sent, of its own system or of another one."""
    path = sent.decode("utf-8", "replace")
    return safe_name(re.split(r"/" if path.startswith("/") else r"[/\\]", path)[-1], "photo.jpg")


def numbered(name: str, number: int) -> str:
    """The name itself for 1, "name (2).jpg" for 2."""
    stem, extension = os.path.splitext(name)
    return name if number == 1 else f"{stem} ({number}){extension}"


def _is_control(letter: str) -> bool:
    return letter in DIRECTION_MARKS or unicodedata.category(letter) in ("Cc", "Cs", "Zl", "Zp")


def _shorten(name: str) -> str:
    if len(name.encode()) <= LONGEST_NAME:
        return name
    stem, extension = os.path.splitext(name)
    if len(extension.encode()) > 16:
        stem, extension = name, ""
    room = LONGEST_NAME - len(extension.encode())
    return stem.encode()[:room].decode("utf-8", "ignore").rstrip(". ") + extension
