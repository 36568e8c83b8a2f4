"""The Flask application: all pages, and the headers that every answer carries."""

from flask import Flask, Response, render_template
from werkzeug.exceptions import HTTPException

from vellumar_albums.home import Home
from vellumar_albums.pages import pages
from vellumar_albums.program import program

# Nothing but the server's own pictures and style; no script at all.
POLICY = (
    "default-src 'none'; img-src 'self'; style-src 'self'; form-action 'self'; "
    "frame-ancestors 'none'; base-uri 'none'"
)
HEADERS = {
    "Content-Security-Policy": POLICY,
    "X-Content-Type-Options": "nosniff",
    "X-Frame-Options": "DENY",
    "Referrer-Policy": "no-referrer",
    "Cross-Origin-Resource-Policy": "same-origin",
    "Cross-Origin-Opener-Policy": "same-origin",
}


def make_application(home: Home) -> Flask:
    application = Flask(__name__)
    application.config["HOME"] = home
    application.register_blueprint(pages)
    application.register_blueprint(program)

    @application.after_request
    def add_headers(answer: Response) -> Response:
        answer.headers.update(HEADERS)
        answer.headers.setdefault("Cache-Control", "no-store")
        return answer

    @application.errorhandler(HTTPException)
    def show_error(error: HTTPException) -> tuple[str, int]:
        return render_template("error.html", error=error), error.code or 500

    return application
