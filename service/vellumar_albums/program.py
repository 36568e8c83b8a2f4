"""What the program calls: the check of a login, the upload of a photo, and the links that it opens."""

import logging
import re
import sqlite3
import time
from urllib.parse import unquote_to_bytes

from flask import Blueprint, Response, current_app, redirect, request, url_for
from werkzeug.wrappers import Response as AnyResponse

from vellumar_albums.home import Home
from vellumar_albums.index import PhotoRow
from vellumar_albums.intake import NO_FORM, Refusal, Upload, refusal_of
from vellumar_albums.limits import Busy
from vellumar_albums.logins import TooManyAttempts
from vellumar_albums.names import album_name, photo_name
from vellumar_albums.sessions import begin_session
from vellumar_albums.webserver import UPLOAD_PATH

log = logging.getLogger("vellumar-albums")
program = Blueprint("program", __name__)

# The program puts user name, password and album into its link as they are, so they may hold "&" and "=".
BROWSER_LINK = re.compile(
    rb"l=(?P<login>.*?)&p=(?P<password>.*)&(?P<page>Cart=Y|Album=(?P<album>.*))", re.DOTALL
)
# A browser escapes these in a link, and leaves a "%" that was there as it is. So a password may read in three
# ways: all of it escaped, these bytes alone, or nothing.
ESCAPED_BY_BROWSERS = re.compile(
    rb"(?:%(?:20|22|27|3C|3E|5B|5C|5D|5E|60|7B|7C|7D|[89A-F][0-9A-F]))+", re.IGNORECASE
)
MOST_COPIES = 999


@program.get("/Vellumar/CheckLogin.asp")
def check_login() -> Response:
    """A wrong password is told by a text without the tag; another status would make the program try again."""
    query = _query()
    login = query.get(b"Login", b"").decode("utf-8", "replace")
    home: Home = current_app.config["HOME"]
    try:
        user = home.logins.check(login, [query.get(b"Password", b"")], request.remote_addr or "")
    except TooManyAttempts:
        return _text("Too many attempts. Wait some seconds.")
    except Busy:
        return _text("The server is busy.", 503)
    if user is None:
        return _text("The user name or the password is wrong.")
    return _text(f"<ID>{home.logins.issue(home.logins.members, user)}</ID>")


@program.get("/Vellumar/DoLogin.asp")
def do_login() -> AnyResponse:
    """Leads on at once, so that the password stays neither in the address bar nor in the history."""
    link = BROWSER_LINK.fullmatch(request.environ["QUERY_STRING"].encode("latin-1"))
    if link is None:
        return redirect(url_for("pages.login_page", failed="link"), 303)
    target = url_for("pages.cart_page")
    if link["album"] is not None:
        album = album_name(unquote_to_bytes(link["album"]))
        target = url_for("pages.album_page", album=album)
    sent = link["password"]
    passwords = list(dict.fromkeys([unquote_to_bytes(sent), _unescape(sent), sent]))
    login = unquote_to_bytes(link["login"]).decode("utf-8", "replace")
    home: Home = current_app.config["HOME"]
    return begin_session(home, login, passwords, target)


@program.post(UPLOAD_PATH)
def upload() -> Response:
    home: Home = current_app.config["HOME"]
    sent = request.environ["wsgi.input"]
    if not isinstance(sent, Upload):
        return _refused(NO_FORM)
    if sent.refusal is not None or sent.photo is None:
        return _refused(sent.refusal or NO_FORM)
    try:
        row = _row_of(sent)
    except ValueError:
        return _refused(Refusal(400, "A number of the form is none."))
    try:
        name = home.store.keep(sent.photo, row)
    except (OSError, sqlite3.Error) as error:
        log.error("A photo of %s can't be stored: %s", sent.user, error)
        return _refused(refusal_of(error))
    finally:
        sent.close()  # before the answer, so that the client's next photo finds its place free
    home.pictures.make_ahead(sent.user, row.album, name)
    log.info("%s: %s / %s", sent.user, row.album, name)
    return _text(f"Stored as {name}.")


def _row_of(sent: Upload) -> PhotoRow:
    texts = {field: value.decode("utf-8", "replace") for field, value in sent.fields.items()}
    quantity = int(texts.get("Quantity", "0"))
    product = int(texts.get("ProductID", "0"))
    if not 0 <= quantity <= MOST_COPIES or not 0 <= product < 2**31:
        raise ValueError
    return PhotoRow(
        user=sent.user,
        album=album_name(sent.fields.get("AlbumName", b"")),
        name=photo_name(sent.filename),
        caption=texts.get("Caption", ""),
        description=texts.get("Description", ""),
        quantity=quantity,
        product=product,
        time=time.time(),
    )


def _query() -> dict[bytes, bytes]:
    """The parameters as bytes. The program writes a space as %20, so a plus sign is one."""
    pairs = (pair.partition(b"=") for pair in request.environ["QUERY_STRING"].encode("latin-1").split(b"&"))
    return {name: unquote_to_bytes(value) for name, _, value in pairs}


def _unescape(sent: bytes) -> bytes:
    return ESCAPED_BY_BROWSERS.sub(lambda escaped: unquote_to_bytes(escaped[0]), sent)


def _text(text: str, status: int = 200) -> Response:
    return Response(text + "\n", status, content_type="text/plain; charset=utf-8")


def _refused(refusal: Refusal) -> Response:
    return _text(refusal.text, refusal.status)
