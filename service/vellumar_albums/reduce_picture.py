"""The program that makes the two pictures a page shows out of a photo, in a process of its own with limits on
time and memory, since photos come from anywhere.

Reads the photo from standard input, writes both JPEG files to standard output, each behind its length in four
bytes. Ends with 3 if the photo can't be shown.
"""

import io
import resource
import struct
import sys
from typing import BinaryIO

CANNOT_SHOW = 3
SECONDS = 20
MEMORY = 1024 * 1024 * 1024
MOST_PIXELS = 120_000_000
LARGEST_PROFILE = 64 * 1024
LARGE = (1600, 1600)
SMALL = (320, 320)


def reduce(photo: BinaryIO) -> list[bytes]:
    from PIL import Image, ImageOps

    with Image.open(photo, formats=("JPEG", "PNG", "TIFF")) as opened:
        if opened.width * opened.height > MOST_PIXELS:
            raise ValueError("too many pixels")
        profile = opened.info.get("icc_profile") or b""
        # A profile fits the colours it was made for, and only those.
        options = {"icc_profile": profile} if opened.mode == "RGB" and len(profile) <= LARGEST_PROFILE else {}
        opened.draft("RGB", LARGE)
        orientation = opened.getexif().get(0x0112, 1)
        picture = opened.convert("RGB")
    # Reduced before it is turned, which takes less memory.
    picture.thumbnail(LARGE, Image.Resampling.LANCZOS)
    picture.getexif()[0x0112] = orientation
    picture = ImageOps.exif_transpose(picture)
    made = []
    for size in (LARGE, SMALL):
        picture.thumbnail(size, Image.Resampling.LANCZOS)
        out = io.BytesIO()
        picture.save(out, "JPEG", quality=85, progressive=True, exif=b"", **options)
        made.append(out.getvalue())
    return made


def main() -> int:
    resource.setrlimit(resource.RLIMIT_CPU, (SECONDS, SECONDS))
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    try:
        made = reduce(sys.stdin.buffer)
    except (Exception, MemoryError):
        # Whatever a decoder says about a foreign file, there is no picture of it.
        return CANNOT_SHOW
    for data in made:
        sys.stdout.buffer.write(struct.pack(">I", len(data)) + data)
    return 0


if __name__ == "__main__":
    sys.exit(main())
