"""Photos on the wire, and whether they stand on the disk whole, once and in their place."""

import errno
import os
from concurrent.futures import ThreadPoolExecutor

import pytest
from conftest import ALBUM, BOUNDARY, RunningServer, form, head, make_jpeg, wait_for
from vellumar_albums import files
from vellumar_albums.multipart import FormError, UploadParser

BINARY = bytes(range(256)) * 20
LIKE_A_BOUNDARY = b"\xff\xd8\r\n--" + BOUNDARY + b"\n\r\n--" + BOUNDARY + b"--\r\n\r\n and more"


def parse(body, piece):
    """Fields, file name and photo."""
    head, photo = [], []
    parser = UploadParser(BOUNDARY, lambda *found: head.extend(found), photo.append)
    for at in range(0, len(body), piece):
        parser.feed(body[at : at + piece])
    parser.finish()
    return *head, b"".join(photo)


@pytest.mark.parametrize(
    ("photo", "filename", "caption"),
    [
        (BINARY, b"/p/Boats.jpg", b"Boats"),
        (LIKE_A_BOUNDARY, b'/p/a "b".jpg', b'<b>"&'),
        (b"\r\n--", b"/p/line\r\nend\xff\x00.jpg", b"\r\n--" + BOUNDARY[:-1] + b"\r\n\r\n"),
    ],
)
def test_the_form_is_read_whatever_the_pieces(photo, filename, caption):
    body = form("m1", photo, filename, Debug=1, Caption=caption, Description="Dusk")
    first = b'--%s\nContent-Disposition: form-data; name="MemberID"\r\n\r\nm1\r\n--' % BOUNDARY
    assert body.startswith(first)
    for piece in (1, 2, 7, 64, 1000, len(body)):
        fields, *file = parse(body, piece)
        assert file == [filename, photo]
        assert (fields["MemberID"], fields["Debug"], fields["Caption"]) == (b"m1", b"1", caption)


def test_a_form_that_is_cut_or_wrong_is_no_photo():
    body = form("m1", b"photo")
    for cut in range(len(body) - 4):  # the last line ends carry nothing
        if body[:cut].endswith(b"--"):
            continue
        with pytest.raises(FormError):
            parse(body[:cut], len(body))
    for wrong in (
        body.replace(b"--", b"+-", 1),
        body.replace(b"$\n", b"$ \n", 1),
        body.replace(b'name="AlbumName"', b'name="MemberID"'),
        body.replace(b"form-data; name", b"form-data;  name", 1),
        form("m1", b"photo", Caption=b"x" * 40_000),
        form("m1", b"photo", filename=b"x" * 40_000),
    ):
        with pytest.raises(FormError):
            parse(wrong, len(wrong))


def test_a_photo_is_stored_as_its_bytes(server):
    photo = make_jpeg() + b"\r\n--" + BOUNDARY
    body = form(server.member(), photo, Quantity=3, Description="Dusk <i>")
    with server.connect() as connection:
        for byte in head(len(body)) + body:
            connection.sendall(bytes([byte]))
        assert server.answer_on(connection)[0] == 200
    assert server.stored() == {f"{ALBUM}/Boats.jpg": photo}
    row = server.home.index.album("anna", ALBUM)["Boats.jpg"]
    assert (row.caption, row.description, row.quantity, row.product) == ("Boats", "Dusk <i>", 3, 2)


def test_an_upload_that_is_cut_leaves_nothing(server):
    request = head(len(body := form(server.member(), BINARY))) + body
    photo_at = request.index(BINARY)
    for cut in (1, 60, len(request) - len(body), photo_at - 5, photo_at, photo_at + 100, len(request) - 1):
        with server.connect() as connection:
            connection.sendall(request[:cut])
            if cut > photo_at:
                wait_for(server.incoming)
        wait_for(lambda: not server.server.active_channels)
        assert (server.stored(), server.incoming(), server.desk._running) == ({}, [], 0)


def test_names_lead_nowhere_else(server):
    names = {
        b"../../x": "x", b"/etc/passwd": "passwd", b"C:\\x\\y.jpg": "y.jpg", b"/p/C:\\x": "C__x", b"": "photo.jpg",
        b"/p/. ": "photo.jpg", b"/p/..": "photo.jpg", b".hidden": "hidden", b"/p/nul\0.jpg": "nul_.jpg",
        b"/p/NUL.jpg": "_NUL.jpg", b"/p/a<b>|?*.jpg": "a_b____.jpg", b"/p/\xff\n\xe2\x80\xae.jpg": "\ufffd__.jpg",
        b"/p/" + b"n" * 300 + b".jpg": "n" * 196 + ".jpg", b"/p/" + "\u00f6".encode() * 150: "\u00f6" * 100,
    }  # fmt: skip
    albums = {"..": "Album", "../ben": "_ben", "/": "_", "": "Album", "a\0b": "a_b", "x" * 300: "x" * 200}
    wanted, member = set(), server.member()
    for number, (sent, name) in enumerate(names.items()):
        assert server.send(form(member, b"%d" % number, sent, AlbumName="A%d" % number))[0] == 200
        wanted.add(f"A{number}/{name}")
    for sent, name in albums.items():
        assert server.send(form(member, b"p", b"%d.jpg" % len(wanted), AlbumName=sent))[0] == 200
        wanted.add(f"{name}/{len(wanted)}.jpg")
    assert set(server.stored()) == wanted
    assert os.listdir(server.data / "photos") == ["anna"]


def test_links_in_the_data_folder_are_not_followed(server, tmp_path):
    outside = tmp_path / "outside"
    outside.mkdir()
    (outside / "secret.jpg").write_bytes(b"secret")
    own = server.data / "photos" / "anna"
    (own / "Real").mkdir(parents=True)
    (own / "Linked").symlink_to(outside)
    (own / "Real" / "Boats.jpg").symlink_to(outside / "secret.jpg")
    os.mkfifo(own / "Real" / "pipe.jpg")
    cookie, member = server.cookie(), server.member()
    (server.data / "photos" / "loose.jpg").write_bytes(b"loose")
    for path in "%2e%2e/loose.jpg Linked/secret.jpg Real/Boats.jpg Real/pipe.jpg Real/..%2f..%2flock".split():
        assert server.get(f"/Original/{path}", cookie)[0] == 404
    assert server.send(form(member, b"p", AlbumName="Linked"))[0] == 500
    assert server.send(form(member, b"p", AlbumName="Real"))[0] == 200
    assert [file.read_bytes() for file in outside.iterdir()] == [b"secret"]
    assert (own / "Real" / "Boats (2).jpg").read_bytes() == b"p"


def test_one_name_many_times(server):
    member = server.member()
    bodies = [form(member, b"photo %d" % (number % 3), Quantity=number % 2) for number in range(12)]
    with ThreadPoolExecutor(4) as senders:
        assert [status for status, _ in senders.map(server.send, bodies)] == [200] * 12
    assert sorted(server.stored()) == [f"{ALBUM}/Boats{n}.jpg" for n in (" (2)", " (3)", "")]
    assert sorted(server.stored().values()) == [b"photo 0", b"photo 1", b"photo 2"]
    assert [photo.quantity for photo in server.home.store.cart("anna")] == [1, 1, 1]


def fail_write(_fd, _data):
    raise OSError(errno.ENOSPC, os.strerror(errno.ENOSPC))


@pytest.mark.parametrize("fault", ["write", "row"])
def test_a_full_disk_is_told_and_leaves_nothing(server, monkeypatch, fault):
    body = form(server.member(), BINARY, Description="x" * 30_000)
    if fault == "write":
        monkeypatch.setattr(files, "write_all", fail_write)
    else:
        server.home.index._database.execute("pragma max_page_count = 1")
    assert server.send(body)[0] == 507
    assert (server.stored(), server.incoming()) == ({}, [])
    monkeypatch.undo()
    server.home.index._database.execute("pragma max_page_count = 10000")
    assert server.send(body)[0] == 200


def test_what_is_no_good_upload_is_refused(server):
    member = server.member()
    cases = [
        (form("0" * 48, b"photo"), 403),
        (form(server.cookie().partition("=")[2], b"photo"), 403),
        (form(member, b""), 400),
        (form(member, b"photo", Quantity="many"), 400),
        (form(member, b"photo")[:-12], 400),
        (b"x" * 100, 400),
        (form(member, b"x" * 10_200_000), 413),
    ]
    raw = [
        (head(10**15).replace(b"\r\n\r\n", b"\r\nExpect: 100-continue\r\n\r\n"), 413),
        (head(0).replace(b"Content-Length: 0", b"Transfer-Encoding: chunked"), 400),
        (b"GET / HTTP/1.1\r\nX: " + b"x" * 20_000, 431),
    ]
    for request, status in [(head(len(body)) + body, status) for body, status in cases] + raw:
        with server.connect() as connection:
            connection.sendall(request)
            assert server.answer_on(connection)[0] == status
    assert (server.stored(), server.incoming()) == ({}, [])


def test_uploads_are_few_at_once_and_slow_ones_are_cut_off(server):
    body = form(server.member(), BINARY)
    slow = [server.connect() for _ in range(4)]
    for connection in slow:
        connection.sendall(head(len(body)) + body[:-100])
    wait_for(lambda: server.desk._running == 4)
    assert server.send(body)[0] == 503
    for channel in server.server.active_channels.values():
        if channel.request is not None:
            channel.request.born -= 3600
    server.server.next_channel_cleanup = 0
    wait_for(lambda: server.desk._running == 0)
    assert [connection.recv(1) for connection in slow] == [b""] * 4
    assert server.incoming() == []
    for connection in slow:
        connection.close()


def test_the_photos_survive_their_index(tmp_path):
    data = tmp_path / "data"
    first = RunningServer(data)
    assert first.send(form(first.member(), b"photo", Quantity=2))[0] == 200
    first.stop()
    (data / "index.db").write_bytes(b"no database at all " * 100)
    (data / "incoming" / "left").write_bytes(b"half")
    second = RunningServer(data)
    assert second.incoming() == []
    assert [photo.name for photo in second.home.store.album("anna", ALBUM)] == ["Boats.jpg"]
    assert list(data.glob("index.db.damaged-*"))
    assert second.send(form(second.member(), b"photo", Quantity=2))[0] == 200
    (data / "photos" / "anna" / ALBUM / "Boats.jpg").unlink()
    assert (second.home.store.cart("anna"), second.home.store.albums("anna")) == ([], [])
    second.stop()
