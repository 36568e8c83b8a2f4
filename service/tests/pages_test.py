"""What a browser is shown, and what it isn't."""

import io
from urllib.parse import quote

from conftest import ALBUM, form, make_jpeg

PATH = f"{quote(ALBUM)}/Boats.jpg"


def test_pages_escape_what_they_show(server):
    evil = "<script>alert(1)</script>\"'"
    name = "<img src=x onerror=a>.jpg"
    sent = form(server.member(), make_jpeg(), f"/p/{name}".encode(), AlbumName=f"<b>{evil}", Caption=evil,
                Description=evil, Quantity=1)  # fmt: skip
    assert server.send(sent)[0] == 200
    cookie = server.cookie()
    (path,) = server.stored()
    album, _, name = path.partition("/")
    for page in ("/Albums", f"/Album/{quote(album)}", f"/Photo/{quote(album)}/{quote(name)}", "/Cart"):
        status, headers, body = server.get(page, cookie)
        assert status == 200
        assert b"<script" not in body and b"<img src=x" not in body
        assert page == "/Albums" or b"&lt;script&gt;alert(1)&lt;/script&gt;" in body
        assert "default-src 'none'" in headers["Content-Security-Policy"]
        assert (headers["X-Content-Type-Options"], headers["X-Frame-Options"]) == ("nosniff", "DENY")
        assert headers["Cache-Control"] == "no-store"
    for page in (f"/Login?next={quote(evil)}&failed={quote(evil)}", f"/{quote(evil)}"):
        assert b"<script" not in server.get(page)[2]


def test_nobody_sees_the_photos_of_another(server):
    assert server.send(form(server.member("anna"), make_jpeg(), Quantity=1))[0] == 200
    paths = [f"/{kind}/{PATH}" for kind in ("Original", "Photo", "Picture/small", "Picture/large")]
    paths.append(f"/Album/{quote(ALBUM)}")
    for path in paths:
        assert server.get(path, server.cookie("anna"))[0] == 200
        assert server.get(path, server.cookie("ben"))[0] == 404
        assert server.get(path)[0] == 303
    for path in ("/Albums", "/Cart"):
        assert b"Boats" not in server.get(path, server.cookie("ben"))[2]
    assert server.get("/Join.asp?Source=Vellumar")[0] == 200
    # The two have photos of one name; a browser that both use asks anew for each.
    tag = server.get(f"/Picture/small/{PATH}", server.cookie("anna"))[1]["ETag"]
    assert server.send(form(server.member("ben"), make_jpeg(size=(40, 60))))[0] == 200
    status, headers, _ = server.get(f"/Picture/small/{PATH}", server.cookie("ben"), If_None_Match=tag)
    assert (status, headers["Cache-Control"]) == (200, "private, no-cache")


def test_the_pictures_stand_upright_and_the_photo_is_untouched(server):
    from PIL import Image

    photo = make_jpeg(orientation=6)  # to be turned right: red comes to the top
    assert server.send(form(server.member(), photo))[0] == 200
    cookie = server.cookie()
    for size in ("small", "large"):
        picture = Image.open(io.BytesIO(server.get(f"/Picture/{size}/{PATH}", cookie)[2]))
        assert picture.size == (40, 60)
        assert picture.getpixel((20, 5))[0] > 200 and picture.getpixel((20, 55))[2] > 200
        assert not picture.getexif()
    status, headers, body = server.get(f"/Original/{PATH}", cookie)
    assert (status, body) == (200, photo)
    assert headers["Content-Type"] == "image/jpeg"
    assert headers["Content-Disposition"].startswith("attachment;")
    assert len(list((server.data / "thumbnails").iterdir())) == 2


def test_a_photo_that_cannot_be_shown_gets_a_drawing(server):
    cookie = server.cookie()
    for number, photo in enumerate([b"<html><script>", make_jpeg()[:300]]):
        name = b"%d.jpg" % number
        assert server.send(form(server.member(), photo, name))[0] == 200
        for _ in range(2):
            status, headers, _ = server.get(f"/Picture/small/{quote(ALBUM)}/{name.decode()}", cookie)
            assert (status, headers["Content-Type"]) == (200, "image/svg+xml; charset=utf-8")
    headers = server.get(f"/Original/{quote(ALBUM)}/0.jpg", cookie)[1]
    assert headers["Content-Type"] == "application/octet-stream"


def test_the_cart_lists_what_is_to_be_printed(server):
    member, cookie = server.member(), server.cookie()
    for name, quantity in ((b"a.jpg", 0), (b"b.jpg", 2), (b"c.jpg", 3)):
        assert server.send(form(member, make_jpeg() + name, name, Quantity=quantity, Caption=name))[0] == 200
    page = server.get("/Cart", cookie)[2].decode()
    assert "5 to be made" in page
    assert ("a.jpg" in page, "b.jpg" in page, "c.jpg" in page) == (False, True, True)
    assert server.get("/Cart/Empty", cookie, "POST")[0] == 303
    assert b"Nothing to print" in server.get("/Cart", cookie)[2]
    assert len(server.stored()) == 3
