"""The cookie of a browser that has logged in."""

from flask import current_app, make_response, redirect, request, url_for
from werkzeug.wrappers import Response as AnyResponse

from vellumar_albums.home import Home
from vellumar_albums.limits import Busy
from vellumar_albums.logins import HOUR, TooManyAttempts

COOKIE = "vellumar_session"


def begin_session(home: Home, login: str, passwords: list[bytes], target: str) -> AnyResponse:
    """Checks a password and leads to the target, or to the login page with what went wrong."""
    try:
        user = home.logins.check(login, passwords, request.remote_addr or "")
        failed = "wrong"
    except TooManyAttempts:
        user, failed = None, "wait"
    except Busy:
        user, failed = None, "busy"
    if user is None:
        return redirect(url_for("pages.login_page", failed=failed, next=target), 303)
    answer = make_response(redirect(target, 303))
    token = home.logins.issue(home.logins.sessions, user)
    answer.set_cookie(
        COOKIE, token, max_age=int(12 * HOUR), httponly=True, samesite="Lax", secure=request.is_secure
    )
    return answer


def session_user() -> str | None:
    home: Home = current_app.config["HOME"]
    return home.logins.user_of(home.logins.sessions, request.cookies.get(COOKIE, ""))


def end_session(answer: AnyResponse) -> AnyResponse:
    home: Home = current_app.config["HOME"]
    home.logins.sessions.drop(request.cookies.get(COOKIE, ""))
    answer.delete_cookie(COOKIE, httponly=True, samesite="Lax", secure=request.is_secure)
    return answer
