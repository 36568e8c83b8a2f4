"""Who gets in, how fast, and what is left of a password."""

import os
import re
import socket
import subprocess
import sys
from pathlib import Path
from urllib.parse import quote, quote_from_bytes

import pytest
from conftest import PASSWORDS, form, wait_for
from vellumar_albums.accounts import AccountError, Accounts
from vellumar_albums.limits import Busy, Gate, Throttle
from vellumar_albums.logins import Tokens

COMMAND = Path(__file__).resolve().parent.parent / "vellumar-albums"


def check(server, login, password):
    query = f"Login={quote(login, safe='')}&Password={quote_from_bytes(password, safe='')}"
    status, _, body = server.get(f"/Vellumar/CheckLogin.asp?{query}&Registered=Y&Source=Vellumar")
    return status, (re.findall(rb"<ID>(.+)</ID>", body) or [b""])[0].decode()


def test_only_the_right_password_gets_a_member_id(server):
    for name, password in PASSWORDS.items():
        assert server.home.member_of(check(server, name, password)[1]) == name
    for login, password in (("anna", b"Right"), ("anna", b""), ("carl", b"right"), ("../anna", b"x")):
        assert check(server, login, password) == (200, "")


def test_attempts_are_slowed_but_nobody_is_locked_out():
    now = [0.0]
    throttle = Throttle(burst=3, seconds=2, clock=lambda: now[0])
    assert [throttle.take("one") for _ in range(9)] == [True] * 3 + [False] * 6
    now[0] += 2
    assert [throttle.take("one"), throttle.take("one")] == [True, False]
    throttle.forget("one")
    assert throttle.take("one")
    gate = Gate(running=1, waiting=0)
    with gate.enter(), pytest.raises(Busy), gate.enter():
        pass
    with gate.enter():
        pass


def test_guessing_is_slowed_for_known_and_unknown_users_alike(server):
    for login in ("anna", "carl"):
        answers = [server.get(f"/Vellumar/CheckLogin.asp?Login={login}&Password=x")[2] for _ in range(8)]
        assert [b"Too many" in answer for answer in answers] == [False] * 5 + [True] * 3
    assert check(server, "ben", PASSWORDS["ben"])[1]


def browser_link(login, password, page):
    """As a browser sends the program's link: some characters escaped, "%", "&" and "+" as they are."""
    link = b"l=%s&p=%s&%s" % (login, password, page)
    escaped = re.sub(rb"[ \"'<>`{|}\x80-\xff]", lambda found: b"%%%02X" % ord(found[0]), link)
    return "/Vellumar/DoLogin.asp?" + escaped.decode()


@pytest.mark.parametrize("password", [b"a&p=b&Album=x", b"100%", b"50%41 \xc3\xb6", b"1+1=2", b"%20x"])
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
    targets = {"/Cart": "/Cart", "//evil/": "/Albums", "/\\evil": "/Albums", "http://evil": "/Albums"}
    for sent, target in targets.items():
        body = f"login=anna&password=right&next={quote(sent, safe='')}"
        headers = {"Content_Type": "application/x-www-form-urlencoded"}
        status, answer, _ = server.get("/Login", "", "POST", body, **headers)
        assert (status, answer["Location"]) == (303, target)
    assert server.get("/Login", "", "POST", b"x" * 20_000)[0] == 413


def test_accounts_refuse_bad_names(tmp_path):
    users = Accounts(tmp_path / "accounts.db")
    users.add("Jose\u0301 M", "secret\u00e9".encode())
    assert users.names() == ["Jos\u00e9 M"]
    assert users.check("JOS\u00c9 m", [b"secrete\xcc\x81"]) == "Jos\u00e9 M"
    assert b"secret" not in (tmp_path / "accounts.db").read_bytes()
    for name in ("jos\u00e9 m", "", ".", "..", "a/b", "a\0", "CON", "x" * 41, " "):
        with pytest.raises(AccountError):
            users.add(name, b"x")


def run_command(data, *arguments, password=b""):
    command = [sys.executable, str(COMMAND), *arguments, "--data", str(data)]
    return subprocess.run(command, input=password, capture_output=True, timeout=60, check=False)


def test_the_command_starts_a_server_that_logs_no_password(tmp_path):
    data, log = tmp_path / "data", tmp_path / "log"
    for code in (0, 1):
        assert run_command(data, "add-user", "anna", password=b"pa55word\n").returncode == code
    command = [sys.executable, str(COMMAND), "--data", os.path.relpath(data), "--listen", "127.0.0.1:0"]
    with open(log, "wb") as out:
        process = subprocess.Popen(command, stdout=out, stderr=out)
    try:
        wait_for(lambda: b"/\n" in log.read_bytes())
        port = int(re.findall(rb":(\d+)/", log.read_bytes())[0])
        for path in (
            b"/Vellumar/CheckLogin.asp?Login=pa55word&Password=pa55word",
            b"/Vellumar/DoLogin.asp?l=anna&p=pa55wordx&Cart=Y",
            b"/nowhere?p=pa55word",
            b"/Vellumar/DoLogin.asp?l=anna&p=pa55word pa55word",
        ):
            with socket.create_connection(("127.0.0.1", port), timeout=60) as connection:
                connection.sendall(b"GET %s HTTP/1.0\r\n\r\n" % path)
                assert connection.recv(12).startswith(b"HTTP/1.0 ")
        assert run_command(data, "serve").returncode == 1  # one server for one folder
    finally:
        process.terminate()
        assert process.wait(60) == 0
    assert b"pa55word" not in log.read_bytes()
