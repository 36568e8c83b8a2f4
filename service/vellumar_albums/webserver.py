"""The web server underneath: waitress, with uploads taken off its buffers and slow clients cut off."""

import socket
import time
from typing import Any, ClassVar

from waitress.adjustments import Adjustments
from waitress.channel import HTTPChannel
from waitress.parser import HTTPRequestParser
from waitress.server import TcpWSGIServer
from waitress.utilities import BadRequest, RequestEntityTooLarge

from vellumar_albums.intake import IntakeDesk, Upload

UPLOAD_PATH = "/MemUploadUtilitySend.asp"
LARGEST_HEADER = 16 * 1024
LARGEST_FORM = 16 * 1024  # of any other page
LONGEST_HEADER_TIME = 20.0  # seconds
# A body has this long, and then a second for each so many bytes that have come.
BODY_GRACE = 30.0
SLOWEST_BODY = 4096


class AlbumRequest(HTTPRequestParser):
    desk: ClassVar[IntakeDesk]

    def __init__(self, adj: Adjustments) -> None:
        super().__init__(adj)
        self.born = time.monotonic()

    def parse_header(self, header_plus: bytes) -> None:
        super().parse_header(header_plus)
        if self.chunked:
            self._reject(BadRequest("A body has to tell its length."))
        elif self.command != "POST" or self.path != UPLOAD_PATH:
            if self.content_length > LARGEST_FORM:
                self._reject(RequestEntityTooLarge("The form is too large."))
        elif self.content_length > 2 * self.desk.largest_photo:
            # So much isn't read just to be thrown away.
            self._reject(RequestEntityTooLarge("The photo is too large."))
        elif self.content_length > 0:
            self.body_rcv = Upload(self.desk, self.headers.get("CONTENT_TYPE", ""), self.content_length)

    def is_too_slow(self, now: float) -> bool:
        age = now - self.born
        if not self.headers_finished:
            return age > LONGEST_HEADER_TIME
        return age > BODY_GRACE + self.body_bytes_received / SLOWEST_BODY

    def _reject(self, error: Any) -> None:
        self.error = error
        self.completed = True
        self.expect_continue = False  # waitress would ask for the body and read it as another request
        self.body_rcv = None


class AlbumChannel(HTTPChannel):
    def handle_close(self) -> None:
        # waitress leaves a body that was cut off to the garbage collector.
        if self.request is not None:
            self.request.close()
        super().handle_close()


class AlbumServer(TcpWSGIServer):
    def maintenance(self, now: float) -> None:
        # Closed here and now: a client that doesn't read its answer never makes its socket writable, which is
        # what waitress's own clean-up waits for.
        for channel in list(self.active_channels.values()):
            working = channel.requests and not channel.total_outbufs_len
            idle = not working and now - channel.last_activity > self.adj.channel_timeout
            if idle or (channel.request is not None and channel.request.is_too_slow(time.monotonic())):
                channel.handle_close()


def make_server(
    application: Any, desk: IntakeDesk, listen: str, trusted_proxy: str | None = None
) -> AlbumServer:
    """Binds the address; the server runs when its run() is called. Raises OSError."""
    request_class = type("DeskRequest", (AlbumRequest,), {"desk": desk})
    channel_class = type("DeskChannel", (AlbumChannel,), {"parser_class": request_class})
    settings: dict[str, Any] = {
        "listen": listen,
        # Enough for all that may wait for a password or a picture, and some for pages and uploads.
        "threads": 24,
        "ident": "Vellumar albums",
        "connection_limit": 300,
        "channel_timeout": 60,
        "cleanup_interval": 5,
        "max_request_header_size": LARGEST_HEADER,
        "max_request_body_size": 1 << 62,  # parse_header above has smaller ones
        "recv_bytes": 64 * 1024,
        "asyncore_use_poll": True,
        "log_socket_errors": False,
        "clear_untrusted_proxy_headers": True,
    }
    if trusted_proxy:
        settings["trusted_proxy"] = trusted_proxy
        settings["trusted_proxy_headers"] = {"x-forwarded-for", "x-forwarded-proto"}
    adjustments = Adjustments(**settings)
    # A name may stand for several addresses; the program takes the first one of IPv4.
    addresses = sorted(adjustments.listen, key=lambda address: address[0] != socket.AF_INET)
    server_class = type("DeskServer", (AlbumServer,), {"channel_class": channel_class})
    return server_class(application, adj=adjustments, sockinfo=addresses[0])
