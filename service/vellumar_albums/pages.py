"""The pages that a browser shows. Each shows only what belongs to the user who has logged in."""

import os
import re
import time
from pathlib import Path
from typing import BinaryIO
from urllib.parse import quote

from flask import (
    Blueprint,
    Response,
    abort,
    current_app,
    g,
    redirect,
    render_template,
    request,
    send_file,
    url_for,
)
from werkzeug.wrappers import Response as AnyResponse

from vellumar_albums.home import Home
from vellumar_albums.index import PhotoRow
from vellumar_albums.limits import Busy
from vellumar_albums.names import safe_name
from vellumar_albums.sessions import begin_session, end_session, session_user

pages = Blueprint("pages", __name__)

PHOTOS_ON_A_PAGE = 120
FAILURES = {
    "wrong": "The user name or the password is wrong.",
    "wait": "Too many attempts. Please wait some seconds and try again.",
    "busy": "The server is busy. Please try again.",
    "link": "Please log in.",
}


@pages.before_request
def know_user() -> AnyResponse | None:
    origin = request.headers.get("Sec-Fetch-Site", "same-origin")
    if request.method == "POST" and origin not in ("same-origin", "none"):
        abort(403)
    g.user = session_user()
    if g.user is None and request.endpoint not in ("pages.login_page", "pages.login", "pages.join_page"):
        target = request.path if request.method == "GET" else url_for("pages.albums_page")
        return redirect(url_for("pages.login_page", next=quote(target)), 303)
    return None


@pages.app_template_filter("day")
def day(seconds: float) -> str:
    then = time.localtime(seconds)
    return f"{time.strftime('%B', then)} {then.tm_mday}, {then.tm_year}"


@pages.app_template_filter("title")
def title(photo: PhotoRow) -> str:
    return photo.caption or os.path.splitext(photo.name)[0]


@pages.get("/")
def start_page() -> AnyResponse:
    return redirect(url_for("pages.albums_page"), 303)


@pages.get("/Join.asp")
def join_page() -> str:
    return render_template("join.html")


@pages.get("/Login")
def login_page() -> str:
    failure = FAILURES.get(request.args.get("failed", ""), "")
    return render_template("login.html", failure=failure, next=request.args.get("next", ""))


@pages.post("/Login")
def login() -> AnyResponse:
    target = request.form.get("next", "")
    # Only a page of this server; "//host" and "/\host" would lead away.
    if not re.fullmatch(r"/(?![/\\])[^\\\x00-\x20]*", target):
        target = url_for("pages.albums_page")
    password = request.form.get("password", "").encode("utf-8", "replace")
    return begin_session(_home(), request.form.get("login", ""), [password], target)


@pages.post("/Logout")
def logout() -> AnyResponse:
    return end_session(redirect(url_for("pages.login_page"), 303))


@pages.get("/Albums")
def albums_page() -> str:
    return render_template("albums.html", albums=_home().store.albums(g.user))


@pages.get("/Album/<album>")
def album_page(album: str) -> str:
    photos = _album(album)
    count = max(1, -(-len(photos) // PHOTOS_ON_A_PAGE))
    number = min(max(request.args.get("page", 1, int), 1), count)
    shown = photos[(number - 1) * PHOTOS_ON_A_PAGE : number * PHOTOS_ON_A_PAGE]
    return render_template(
        "album.html", album=album, photos=shown, total=len(photos), page=number, pages=count
    )


@pages.get("/Photo/<album>/<name>")
def photo_page(album: str, name: str) -> str:
    photos = _album(album)
    place = next((i for i, photo in enumerate(photos) if photo.name == name), None)
    if place is None:
        abort(404)
    before = photos[place - 1] if place > 0 else None
    after = photos[place + 1] if place + 1 < len(photos) else None
    page = place // PHOTOS_ON_A_PAGE + 1
    return render_template(
        "photo.html", album=album, photo=photos[place], before=before, after=after,
        number=place + 1, total=len(photos), page=page,
    )  # fmt: skip


@pages.get("/Cart")
def cart_page() -> str:
    photos = _home().store.cart(g.user)
    return render_template("cart.html", photos=photos, prints=sum(photo.quantity for photo in photos))


@pages.post("/Cart/Empty")
def empty_cart() -> AnyResponse:
    _home().store.empty_cart(g.user)
    return redirect(url_for("pages.cart_page"), 303)


@pages.get("/Picture/<any(small, large):size>/<album>/<name>")
def picture(size: str, album: str, name: str) -> Response:
    """A photo reduced, upright; a drawing in its place if it can't be shown."""
    try:
        path = _home().pictures.find(g.user, album, name, size)
    except FileNotFoundError:
        abort(404)
    except Busy:
        return _placeholder("no-store")
    if path is None:
        return _placeholder("private, no-cache")
    answer = send_file(path, mimetype="image/jpeg", conditional=True)
    # Asked for again each time: in the same browser another user's photo may have the same address.
    answer.headers["Cache-Control"] = "private, no-cache"
    return answer


@pages.get("/Original/<album>/<name>")
def original(album: str, name: str) -> Response:
    try:
        photo = open(_home().store.open(g.user, album, name), "rb")
    except FileNotFoundError:
        abort(404)
    kind = "image/jpeg" if photo.peek(3)[:3] == b"\xff\xd8\xff" else "application/octet-stream"
    return _download(photo, kind, name)


def _download(photo: BinaryIO, kind: str, name: str) -> Response:
    answer = send_file(
        photo, mimetype=kind, as_attachment=True, download_name=safe_name(name, "photo"), etag=False
    )
    answer.content_length = os.fstat(photo.fileno()).st_size
    answer.headers["Cache-Control"] = "private, no-store"
    return answer


def _placeholder(cache: str) -> Response:
    answer = send_file(Path(__file__).parent / "static" / "placeholder.svg", mimetype="image/svg+xml")
    answer.headers["Cache-Control"] = cache
    return answer


def _home() -> Home:
    home: Home = current_app.config["HOME"]
    return home


def _album(album: str) -> list[PhotoRow]:
    try:
        return _home().store.album(g.user, album)
    except FileNotFoundError:
        abort(404)
