"""Who gets in, how fast, and what is left of a password."""

import os
import re
import subprocess
import sys
import threading
from pathlib import Path
from urllib.parse import quote, quote_from_bytes

import pytest
from conftest import PASSWORDS, form
from vellumar_albums import accounts
from vellumar_albums.accounts import AccountError, Accounts
from vellumar_albums.limits import Throttle
from vellumar_albums.logins import Tokens
from wait import wait_for

COMMAND = Path(__file__).resolve().parent.parent / "vellumar-albums"


def check(server, login, password):
    query = f"Login={quote(login, safe='')}&Password={quote_from_bytes(password, safe='')}"
    status, _, body = server.get(f"/Vellumar/CheckLogin.asp?{query}&Registered=Y&Source=Vellumar")
    return status, (re.findall(rb"<ID>(.+)</ID>", body) or [b""])[0].decode()


def test_only_the_right_password_gets_a_member_id(server):
    for name, password in PASSWORDS.items():
        status, member = check(server, name, password)
        assert status == 200
        assert server.home.member_of(member) == name
    assert check(server, "Anna ", b"right")[1]
    for login, password in [
        ("anna", b"Right"),
        ("anna", b""),
        ("carl", b"right"),
        ("", b""),
        ("../anna", b"x"),
    ]:
        assert check(server, login, password) == (200, "")


def test_attempts_are_slowed_but_nobody_is_locked_out():
    now = [0.0]
    throttle = Throttle(burst=3, seconds=2, clock=lambda: now[0], keys=10)
    assert [throttle.take("one") for _ in range(5)] == [True, True, True, False, False]
    assert throttle.take("other")
    for _ in range(200):
        assert not throttle.take("one")
    now[0] += 2
    assert [throttle.take("one"), throttle.take("one")] == [True, False]
    throttle.forget("one")
    assert throttle.take("one")
    for key in range(1000):
        throttle.take(str(key))
    assert len(throttle._used) == 10


def test_guessing_is_slowed_for_known_and_unknown_users_alike(server):
    for login in ("anna", "carl"):
        answers = [server.get(f"/Vellumar/CheckLogin.asp?Login={login}&Password=x")[2] for _ in range(8)]
        assert [b"Too many" in answer for answer in answers] == [False] * 5 + [True] * 3
    assert check(server, "ben", PASSWORDS["ben"])[1]


def test_an_unknown_user_costs_the_same(server, monkeypatch):
    hashed = []
    real = accounts._hash
    monkeypatch.setattr(accounts, "_hash", lambda *arguments: hashed.append(1) or real(*arguments))
    for login in ("anna", "carl", "\udcff", "x" * 500):
        hashed.clear()
        server.home.accounts.check(login, [b"x"])
        assert len(hashed) == 1


def test_a_flood_of_logins_does_not_stall_an_upload(server, monkeypatch):
    running, most, release = [0], [0], threading.Event()
    lock = threading.Lock()

    def slow(*_):
        with lock:
            running[0] += 1
            most[0] = max(most[0], running[0])
        release.wait(20)
        with lock:
            running[0] -= 1

    monkeypatch.setattr(server.home.accounts, "check", slow)
    monkeypatch.setattr(server.home.logins, "_by_address", Throttle(burst=1000, seconds=1))
    answers = []
    paths = [f"/Vellumar/CheckLogin.asp?Login=user{number}&Password=x" for number in range(100)]
    threads = [
        threading.Thread(target=lambda path=path: answers.append(server.get(path)[0])) for path in paths
    ]
    for thread in threads:
        thread.start()
    wait_for(lambda: running[0] == 2 and len(answers) == 94)
    assert server.send(form(server.member(), b"photo"))[0] == 200
    release.set()
    for thread in threads:
        thread.join()
    assert most[0] == 2
    assert sorted(answers) == [200] * 6 + [503] * 94


def browser_link(login, password, page):
    """As a browser sends the program's link: some characters escaped, "%", "&" and "+" as they are."""
    link = b"l=%s&p=%s&%s" % (login, password, page)
    return "/Vellumar/DoLogin.asp?" + re.sub(
        rb"[ \"'<>`{|}\x80-\xff]", lambda c: b"%%%02X" % ord(c[0]), link
    ).decode("ascii")


@pytest.mark.parametrize(
    "password", [b"right", b"a&p=b&Album=x", b"100%", b"50%41 \xc3\xb6", b"1+1=2", b"%20x"]
)
def test_the_browser_is_logged_in_and_led_on(server, password):
    server.home.accounts.add("carl m", password)
    for page, target in ((b"Cart=Y", "/Cart"), (b"Album=November 5, 2026", "/Album/November%205,%202026")):
        status, headers, _ = server.get(browser_link(b"carl m", password, page))
        assert (status, headers["Location"]) == (303, target)
        cookie = headers["Set-Cookie"]
        assert "HttpOnly" in cookie and "SameSite=Lax" in cookie and "Max-Age=43200" in cookie
        assert server.get("/Albums", cookie.partition(";")[0])[0] == 200
    status, headers, _ = server.get(browser_link(b"carl m", password + b"x", b"Cart=Y"))
    assert (status, headers["Set-Cookie"]) == (303, None)
    assert headers["Location"].startswith("/Login?")


def test_sessions_end(server):
    cookie = server.cookie()
    assert server.get("/Albums", cookie)[0] == 200
    assert server.get("/Logout", cookie)[0] == 405
    assert server.get("/Logout", cookie, "POST", Sec_Fetch_Site="cross-site")[0] == 403
    server.get("/Logout", cookie, "POST", Sec_Fetch_Site="same-origin")
    assert server.get("/Albums", cookie)[0] == 303
    cookie, member = server.cookie(), server.member()
    server.home.accounts.change_password("anna", b"other")
    assert server.get("/Albums", cookie)[0] == 303
    assert server.send(form(member, b"photo"))[0] == 403
    assert server.get("/Albums", "vellumar_session=\xff")[0] == 303
    now = [0.0]
    tokens = Tokens(10, 3, clock=lambda: now[0])
    issued = [tokens.issue("anna", b"m") for _ in range(4)]
    assert [tokens.find(token) is not None for token in issued] == [False, True, True, True]
    now[0] = 11.0
    assert tokens.find(issued[3]) is None


def test_the_login_page_leads_to_own_pages_only(server):
    for sent, target in (
        ("/Cart", "/Cart"),
        ("//evil/", "/Albums"),
        ("/\\evil", "/Albums"),
        ("http://evil", "/Albums"),
    ):
        body = f"login=anna&password=right&next={quote(sent, safe='')}"
        headers = {"Content_Type": "application/x-www-form-urlencoded"}
        status, answer, _ = server.get("/Login", "", "POST", body, **headers)
        assert (status, answer["Location"]) == (303, target)
    assert server.get("/Login", "", "POST", b"x" * 20_000)[0] == 413


def test_accounts_refuse_bad_names(tmp_path):
    users = Accounts(tmp_path / "accounts.db")
    users.add("Jose\u0301 M", "\u00e9".encode())
    assert users.names() == ["Jos\u00e9 M"]
    assert users.check("JOS\u00c9 m", [b"e\xcc\x81"]) == "Jos\u00e9 M"
    for name in ("jos\u00e9 m", "", ".", "..", "a/b", "a\0", "CON", "x" * 41, " "):
        with pytest.raises(AccountError):
            users.add(name, b"x")
    assert b"\xc3\xa9" not in (tmp_path / "accounts.db").read_bytes().replace(
        "Jos\u00e9".encode(), b""
    ).replace("jos\u00e9".encode(), b"")


def run_command(data, *arguments, password=b""):
    command = [sys.executable, str(COMMAND), *arguments, "--data", str(data)]
    return subprocess.run(command, input=password, capture_output=True, timeout=30, check=False)


def test_the_command_starts_a_server_that_logs_no_password(tmp_path):
    data = tmp_path / "data"
    assert run_command(data, "add-user", "anna", password=b"pa55word\n").returncode == 0
    assert run_command(data, "add-user", "anna", password=b"pa55word\n").returncode == 1
    assert run_command(data, "list-users").stdout == b"anna\n"
    log = tmp_path / "log"
    with open(log, "wb") as out:
        command = [sys.executable, str(COMMAND), "--data", os.path.relpath(data), "--listen", "127.0.0.1:0"]
        process = subprocess.Popen(command, stdout=out, stderr=out)
    try:
        wait_for(lambda: b"http://127.0.0.1:" in log.read_bytes())
        port = int(re.findall(rb":(\d+)/", log.read_bytes())[0])
        for path in (
            "/Vellumar/CheckLogin.asp?Login=anna&Password=pa55word",
            "/Vellumar/CheckLogin.asp?Login=pa55word&Password=pa55word",
            "/Vellumar/DoLogin.asp?l=anna&p=pa55word&Cart=Y",
            "/Vellumar/DoLogin.asp?l=anna&p=pa55wordx&Cart=Y",
            "/nowhere?p=pa55word",
            "/pa55word bad",
        ):
            subprocess.run(["/usr/bin/python3", "-c", REQUEST, str(port), path], check=True, timeout=30)
        assert run_command(data, "serve").returncode == 1  # one server for one folder
        assert process.poll() is None
    finally:
        process.terminate()
        assert process.wait(20) == 0
    assert b"pa55word" not in log.read_bytes()


REQUEST = """import socket, sys
with socket.create_connection(("127.0.0.1", int(sys.argv[1]))) as connection:
    connection.sendall(f"GET {sys.argv[2]} HTTP/1.0\\r\\n\\r\\n".encode())
    assert connection.recv(12).startswith(b"HTTP/1.0 ")
"""
