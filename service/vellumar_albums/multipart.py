"""Reads the body of an upload as it arrives, in pieces of any size.

A part begins with the boundary and a line feed, with or without a carriage return before it. Values stand
unescaped. The photo is the last part, so its end is counted from the end of the body: bytes in it that look
like a boundary do no harm.
"""

import re
from collections.abc import Callable

LARGEST_FIELD = 32 * 1024
LARGEST_HEAD = 128 * 1024  # everything before the photo's first byte
MOST_FIELDS = 32

PART_HEAD = re.compile(rb'Content-Disposition: form-data; name="([A-Za-z0-9]{1,40})"(\r\n\r\n|; filename=")')
LONGEST_PART_HEAD = 128
FILENAME_END = b'"\r\nContent-Type: '
HEAD_END = b"\r\n\r\n"


class FormError(Exception):
    """The body isn't what an upload looks like; the text says why."""


class UploadParser:
    """Calls on_photo once with the fields and the file name, then on_data with the photo's bytes in order."""

    def __init__(
        self,
        boundary: bytes,
        on_photo: Callable[[dict[str, bytes], bytes], None],
        on_data: Callable[[bytes], None],
    ) -> None:
        self._on_photo = on_photo
        self._on_data = on_data
        self._opening = b"--" + boundary
        self._delimiter = b""  # the first boundary shows which line end stands behind all of them
        trailer = b"\r\n" + self._opening + b"--"
        self._trailers = (trailer + b"\r\n\r\n", trailer + b"\r\n", trailer)
        self._fields: dict[str, bytes] = {}
        self._buffer = bytearray()
        self._searched = 0
        self._step: Callable[[], bool] = self._read_boundary
        self._field = ""
        self._head_size = 0
        self._in_photo = False

    def feed(self, data: bytes) -> None:
        self._buffer += data
        if not self._in_photo:
            self._head_size += len(data)
            while not self._in_photo and self._step():
                pass
        if self._in_photo:
            self._pass_photo_on()
        elif self._head_size > LARGEST_HEAD:
            raise FormError("The form is too long.")

    def finish(self) -> None:
        """The body is over: checks its trailer and passes on the last bytes of the photo."""
        if not self._in_photo:
            raise FormError("The form ends before a photo.")
        for trailer in self._trailers:
            if self._buffer.endswith(trailer):
                self._on_data(bytes(self._buffer[: -len(trailer)]))
                return
        raise FormError("The photo has no end.")

    def _pass_photo_on(self) -> None:
        ready = len(self._buffer) - len(self._trailers[0])
        if ready > 0:
            self._on_data(bytes(self._buffer[:ready]))
            del self._buffer[:ready]

    # Each step takes what it knows off the buffer and tells whether there was enough of it.

    def _read_boundary(self) -> bool:
        start = bytes(self._buffer[: len(self._opening)])
        if not self._opening.startswith(start):
            raise FormError("The form doesn't begin with its boundary.")
        return len(start) == len(self._opening) and self._take(len(start), self._read_line_end)

    def _read_line_end(self) -> bool:
        for end in (b"\n", b"\r\n"):
            if self._buffer.startswith(end):
                self._delimiter = b"\r\n" + self._opening + end
                return self._take(len(end), self._read_part_head)
        if self._buffer not in (b"", b"\r"):
            raise FormError("A boundary has no line feed behind it.")
        return False

    def _read_part_head(self) -> bool:
        head = PART_HEAD.match(self._buffer)
        if head is None:
            if len(self._buffer) > LONGEST_PART_HEAD:
                raise FormError("A part has no proper head.")
            return False
        self._field = head[1].decode()
        if self._field in self._fields or len(self._fields) >= MOST_FIELDS:
            raise FormError("The form has too many fields.")
        return self._take(head.end(), self._read_value if head[2] == HEAD_END else self._read_filename)

    def _read_value(self) -> bool:
        at = self._find(self._delimiter)
        if at < 0:
            return self._want_more()
        self._fields[self._field] = bytes(self._buffer[:at])
        return self._take(at + len(self._delimiter), self._read_part_head)

    def _read_filename(self) -> bool:
        # A file name may hold quotes and line ends, so it ends only where the next line is the right one.
        at = self._find(FILENAME_END)
        if at < 0:
            return self._want_more()
        self._filename = bytes(self._buffer[:at])
        return self._take(at + len(FILENAME_END), self._read_file_head)

    def _read_file_head(self) -> bool:
        at = self._find(HEAD_END)
        if at < 0:
            return self._want_more()
        self._take(at + len(HEAD_END), self._read_file_head)
        self._in_photo = True
        self._on_photo(self._fields, self._filename)
        return True

    def _find(self, marker: bytes) -> int:
        at = self._buffer.find(marker, max(0, self._searched - len(marker)))
        if (at if at >= 0 else len(self._buffer) - len(marker)) > LARGEST_FIELD:
            raise FormError("A field is too long.")
        return at

    def _want_more(self) -> bool:
        self._searched = len(self._buffer)
        return False

    def _take(self, count: int, next_step: Callable[[], bool]) -> bool:
        del self._buffer[:count]
        self._searched = 0
        self._step = next_step
        return True
