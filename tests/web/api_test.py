"""What the host answers, and to whom, without a browser."""

import http.client
import json
import os
import resource
import signal
import socket
import threading
import time
import unittest
from pathlib import Path

from programs import WINDOWS, message_file
from support import ADD, CHANGE, PASSWORD, Document, Host

DOCUMENT = Document(os.environ["ROTACASTS_SOURCE"] + "/docs/web.md")
VALUES = {"text": "Hello", "number": 1, "truth": True}


def sample(form, **fixed):
    return form and {key: fixed.get(key, ["Hello"] if isinstance(kind, list) else VALUES[kind])
                     for key, kind in form.items()}


class Api(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.host = Host("--minute", "10m")
        cls.cookies = {name: cls.host.sign_in(name)[1] for name in ("Anna", "Eve", "Ben")}

    @classmethod
    def tearDownClass(cls):
        cls.host.stop()

    def ask(self, method, path, body=None, who="Anna", **headers):
        return self.host.ask(method, path, body, cookie=self.cookies.get(who), **headers)

    def expect(self, status, error, *request, **options):
        with self.subTest(request=request, **options):
            answer = self.ask(*request, **options)
            self.assertEqual((answer[0], answer[2].get("error")), (status, error), answer[2])
            self.assertTrue(DOCUMENT.fits("error", answer[2]), answer[2])

    def test_every_answer_has_the_form_that_the_document_gives(self):
        self.assertEqual(len(DOCUMENT.routes), 21)
        special = {"/api/session": {"name": "Anna", "password": PASSWORD},
                   "/api/profiles/N/copies": {"from": 3},
                   "/api/profiles/N/restored": {"position": 0, "text": "Again"}}
        said = self.ask("POST", "/api/profiles/2/say", {"text": "Hello"})[2]["number"]
        for method, path, needs, takes, form in DOCUMENT.routes:
            if form == "events" or (method, path) == ("DELETE", "/api/session"):
                continue
            text = self.host.messages()[1]
            body = special.get(path) or sample(takes, text=text, to=0)
            query = f"?number={said}" if path.endswith("sent") else ""
            status, headers, answer = self.ask(method, path.replace("N", "2") + query,
                                               body if takes is not None else None,
                                               needs and "Anna")
            self.assertEqual(status, 200, (method, path, answer))
            self.assertTrue(DOCUMENT.fits(form, answer), (method, path, answer))
            self.assertIn("default-src 'none'", headers["Content-Security-Policy"])
        for kind, values in self.host.events(self.cookies["Anna"]).items():
            if kind in DOCUMENT.forms:
                self.assertTrue(all(DOCUMENT.fits(kind, value) for value in values), values)
        bens = self.host.events(self.cookies["Ben"])
        self.assertEqual(([row["index"] for row in bens["profile"]], "messages" in bens), ([3], False))

    def test_nobody_does_what_is_not_theirs(self):
        before = [self.host.messages(index) for index in (2, 3)] + self.host.log()
        for method, path, needs, takes, _ in DOCUMENT.routes:
            path, body = path.replace("N", "2"), sample(takes)
            if needs:
                self.expect(401, "signed out", method, path, body, who="nobody")
                self.expect(401, "signed out", method, path, body, who=None, Cookie="rotacasts=0")
            if "profiles/2" in path:
                self.expect(404, "unknown", method, path, body, who="Ben")
                self.expect(404, "unknown", method, path.replace("2", "9"), body)
                self.expect(404, "unknown", method, path.replace("2", "2147483650"), body)
            if needs == "add":
                self.expect(403, "right", method, path, body, who="Eve")
            if needs == "change":
                self.expect(403, "right", method, path.replace("2", "3"), body, who="Ben")
            if method == "GET":
                continue
            for origin in (None, "null", "http://evil.example", f"http://127.0.0.1:{self.host.port + 1}"):
                self.expect(403, "origin", method, path, body, Origin=origin)
            for kind in (None, "text/plain", "application/x-www-form-urlencoded"):
                self.expect(415, "type", method, path, body, Content_Type=kind)
            self.expect(413, "long", method, path, b'{"text":"' + b"x" * 17000 + b'"}')
            with self.assertRaises(OSError):  # the host does not read an endless body to its end
                self.ask(method, path, b"x" * 9_000_000)
            for words in (b"", b"[]", b"{", b'{"text":"\xff"}', b'{"text":"\xed\xa0\x80"}', b"[" * 9000):
                self.expect(400, "form", method, path, words)
            for field in takes:
                for wrong in (None, [], {}, 1.5, "" if takes[field] != "text" else 0):
                    self.expect(400, "form", method, path, {**sample(takes), field: wrong})
        self.expect(405, "method", "PUT", "/api/session", {})
        self.expect(404, "unknown", "GET", "/../../etc/passwd")
        self.assertEqual([self.host.messages(index) for index in (2, 3)] + self.host.log(), before)

    def test_what_cannot_be_stored_or_has_changed_is_refused(self):
        log, messages = self.host.log(), "/api/profiles/2/messages"
        for text in ("", "  ", "a\nb", "\x1b[2J", "\x81", "\x8d", "\x90", "\x9d", "Ж", "😀"):
            for path in ("messages", "say", "restored", "lists"):
                body = {"text": text, "position": 0, "texts": ["good", text]}
                self.expect(422, "refused", "POST", f"/api/profiles/2/{path}", body)
            self.expect(422, "refused", "PUT", messages, {"text": "Hello", "position": 0, "newText": text})
        self.expect(404, "unknown", "POST", "/api/profiles/2/copies", {"from": 9})
        self.expect(404, "unknown", "GET", "/api/profiles/2/sent?number=999")
        for position in (-1, 2**31, 2**63 - 1, True, "0", 0.0):
            self.expect(400, "form", "DELETE", messages, {"position": position, "text": "Hello"})
        for position, text in ((1, "Hello "), (0, "Hullo"), (99, "Hello"), (2**31 - 1, "Hello")):
            seen = {"position": position, "text": text}
            self.expect(409, "changed", "DELETE", messages, seen)
            self.expect(409, "changed", "PUT", messages, {**seen, "newText": "x"})
            self.expect(409, "changed", "POST", "/api/profiles/2/places", {**seen, "to": 0})
        self.expect(422, "refused", "PUT", "/api/profiles/2/interval", {"minutes": 31})
        self.assertEqual(self.host.log(), log)


class Changes(unittest.TestCase):
    def setUp(self):
        self.host = Host("--minute", "200ms")
        self.addCleanup(self.host.stop)

    def test_changes_reach_file_log_and_players(self):
        _, cookie = self.host.sign_in("ANNA")
        new = '<b>\\ü€"</b>'
        for method, path, body, messages in (
                ("POST", "messages", {"text": f" {new} "}, f"Hello {{ShowNextMap}} Grüße {new}"),
                ("POST", "moves", {"position": 3, "text": new, "up": True},
                 f"Hello {{ShowNextMap}} {new} Grüße"),
                ("DELETE", "messages", {"position": 0, "text": "Hello"}, f"{{ShowNextMap}} {new} Grüße"),
                ("POST", "restored", {"position": 1, "text": "Hello"},
                 f"{{ShowNextMap}} Hello {new} Grüße"),
                ("POST", "moves", {"position": 0, "text": "{ShowNextMap}", "up": False},
                 f"Hello {{ShowNextMap}} {new} Grüße"),
                ("PUT", "messages", {"position": 0, "text": "Hello", "newText": "Hi"},
                 f"Hi {{ShowNextMap}} {new} Grüße"),
                ("POST", "places", {"position": 3, "text": "Grüße", "to": 0},
                 f"Grüße Hi {{ShowNextMap}} {new}"),
                ("POST", "lists", {"texts": ["x", "y"]}, f"Grüße Hi {{ShowNextMap}} {new} x y"),
                ("POST", "copies", {"from": 3}, f"Grüße Hi {{ShowNextMap}} {new} x y Three"),
                ("POST", "copies", {"from": 3}, f"Grüße Hi {{ShowNextMap}} {new} x y Three")):
            answer = self.host.ask(method, f"/api/profiles/2/{path}", body, cookie)
            self.assertEqual((answer[0], " ".join(self.host.messages())), (200, messages), answer)
            _, _, listed = self.host.ask("GET", "/api/profiles/2/messages", None, cookie)
            self.assertEqual(" ".join(row["text"] for row in listed["messages"]), messages)
        self.assertTrue(self.host.server.prints(new))
        self.host.ask("PUT", "/api/profiles/2/switch", {"on": False}, cookie)
        self.host.ask("PUT", "/api/profiles/2/interval", {"minutes": 7}, cookie)
        self.host.ask("POST", "/api/profiles/2/say", {"text": "{ShowMostKills}"}, cookie)
        self.assertTrue(self.host.server.prints("[Most Kills] "))
        _, _, profiles = self.host.ask("GET", "/api/profiles", None, cookie)
        row = profiles["profiles"][0]
        self.assertEqual((row["on"], row["interval"], row["next"]["at"]), (False, "7", None))
        self.assertLess(abs(time.time() - self.host.log_time()), 600)  # in the local time of the host
        told = [line[10:].replace("Rotacasts] ", "") for line in self.host.log()]
        self.assertEqual(len(told), 12, told)
        self.assertEqual(told[0], f"[Add Rotacast (Message: {new}) from Anna")
        self.assertEqual(told[-1], "[Change Rotacasts Interval (New Interval: 7) from Anna")

    def test_neither_a_slow_client_nor_a_hundred_pages_hold_up_a_tick(self):
        cookies = []
        for i in range(7):
            self.host.admin("set", f"Zoe{i}")
            cookies.append(self.host.sign_in(f"Zoe{i}")[1])
        lines = [f"GET /api/events?profile=2 HTTP/1.1\r\nHost: 127.0.0.1\r\nCookie: {cookie}\r\n\r\n"
                 for cookie in cookies * 15][:100]
        sockets = []
        for line in [*lines, "POST /api/session HT", "GET / HTTP/1.1\r\nHost: x\r\n"]:
            sockets.append(socket.create_connection(("127.0.0.1", self.host.port), 20))
            sockets[-1].sendall(line.encode())
        for end in [one.recv(100) for one in sockets[:100]]:
            self.assertIn(b"200", end)
        while self.host.server.read_line(0):  # earlier chat
            pass
        begin = time.time()
        for text in ("Hello", "[Next Map]", "Grüße") * 3:
            self.assertTrue(self.host.server.prints(text, 3))
        self.assertLess(time.time() - begin, 6)
        for _ in range(2):  # more than one person may follow: the oldest ends
            sockets.append(socket.create_connection(("127.0.0.1", self.host.port), 20))
            sockets[-1].sendall(lines[0].encode())
        heard = b""
        while b"event: elsewhere" not in heard:
            self.assertLess(time.time() - begin, 60, "the page is still followed")
            self.assertTrue(piece := sockets[0].recv(10000), "the page is still followed")
            heard += piece
        for _ in range(98):  # more than the limit of one address; another address is still served
            sockets.append(socket.create_connection(("127.0.0.1", self.host.port)))
        with self.assertRaises(OSError):
            self.host.ask("GET", "/api/session")
        other = http.client.HTTPConnection("127.0.0.1", self.host.port, 20, ("127.0.0.2", 0))
        other.request("GET", "/")
        self.assertEqual(other.getresponse().status, 200)
        other.close()
        for one in sockets:
            one.close()

    def test_a_long_list_lets_other_requests_in_between_and_no_error_tells_where_the_host_lives(self):
        _, cookie = self.host.sign_in("Anna")
        files = [f"{self.host.folder}/profiles/srv{index}/settings/Rotacasts.ini" for index in (2, 3)]
        with open(files[1], "wb") as file:
            file.write(message_file([f"message {i}" for i in range(1500)]))
        copies = threading.Thread(target=lambda: self.host.ask(
            "POST", "/api/profiles/2/copies", {"from": 3}, cookie))
        copies.start()
        between = 0
        while copies.is_alive():
            self.host.ask("GET", "/api/placeholders", None, cookie)
            between += 1
        self.assertGreater(between, 5)
        self.assertEqual(len(self.host.messages()), 1503)
        os.chmod(files[0], 0o400)
        status, _, answer = self.host.ask("DELETE", "/api/profiles/2/messages",
                                          {"position": 0, "text": "Hello"}, cookie)
        self.assertEqual((status, self.host.folder in answer["words"]), (422, False), answer)
        self.assertIn("profiles/srv2/settings/Rotacasts.ini is read-only", answer["words"].replace("\\", "/"))

    def test_a_log_of_all_profiles_is_for_who_sees_them_all(self):
        self.host.end()
        self.host.options = ("--shared-log",)
        self.host.start()
        for name, status, kinds in (("Anna", 200, True), ("Eve", 403, False)):
            cookie = self.host.sign_in(name)[1]
            self.assertEqual(self.host.ask("GET", "/api/profiles/2/log", None, cookie)[0], status)
            self.assertEqual("log" in self.host.events(cookie), kinds)


class SigningIn(unittest.TestCase):
    def setUp(self):
        self.host = Host("--minute", "10m")
        self.addCleanup(self.host.stop)

    def test_a_stranger_learns_nothing_and_is_slowed_down(self):
        _, cookies, _ = self.host.ask("POST", "/api/session", {"name": "Anna", "password": PASSWORD})
        known = cookies.get_all("Set-Cookie")[1].split(";")[0]
        with open(self.host.folder + "/settings/admins.ini", "a") as file:
            file.write("[Broken]\nPassword=$argon2id$v=19$m=1$nonsense\n")
        checks = {"Anna": 0, "Nobody": 0, "Broken": 0}
        for i in range(8):
            for name in checks:
                before = self.host.checking_time()
                status, _ = self.host.sign_in(name, "wrong", 
                                             X_Forwarded_For=["10.9.9.9", f"10.0.{ord(name[0])}.{i}:{i}"])
                checks[name] += self.host.checking_time() - before
                self.assertEqual(status, 401)
        for work in checks.values():  # the time depends on the machine's load
            self.assertGreater(work, 0.1)
            self.assertLess(abs(checks["Anna"] - work), 0.4 * checks["Anna"], checks)
        body, statuses, wait = {"name": "Anna", "password": "wrong"}, [], 0
        while wait < 8 and len(statuses) < 12:  # each slower than the last
            time.sleep(wait)
            status, headers, _ = self.host.ask("POST", "/api/session", body)
            statuses.append(status)
            wait = int(headers["Retry-After"] or 0)
        self.assertEqual(statuses[:3] + [statuses[-1]], [401] * 3 + [429])
        self.assertEqual(self.host.sign_in("Anna", X_Forwarded_For="10.1.1.1")[0], 200)
        self.assertEqual(self.host.sign_in("Anna")[0], 429)
        self.assertEqual(self.host.sign_in("Eve", Cookie=known)[0], 429)
        self.assertEqual(self.host.sign_in(" ANNA ", Cookie=known)[0], 200)  # it is not a stranger's
        self.assertEqual(self.host.sign_in("Anna", PASSWORD + "x" * 256, Cookie=known)[0], 422)
        time.sleep(wait + 0.1)
        self.assertEqual(self.host.sign_in("Anna")[0], 200)

    def test_a_password_that_nobody_could_check_is_no_failure(self):
        children = Path(f"/proc/{self.host.program.id}/task/{self.host.program.id}/children")
        answers = []
        for _ in range(4):
            attempt = threading.Thread(target=lambda: answers.append(self.host.sign_in("Anna", "wrong")[0]))
            attempt.start()
            while attempt.is_alive() and not (check := children.read_text()):
                pass
            if check:
                os.kill(int(check.split()[0]), signal.SIGKILL)
            attempt.join()
        self.assertEqual((answers, self.host.sign_in("Anna")[0]), ([503] * 4, 200))

    def test_many_pages_of_an_address_leave_room_for_other_requests(self):
        self.host.end()
        self.host.prepare = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (120, 120))
        self.host.start()  # with 18 connections for an address, 13 of them for pages
        cookies = [self.host.sign_in(name)[1] for name in ("Anna", "Eve")]
        pages = [self.host.follow(cookies[i % 2]) for i in range(14)]
        self.assertEqual([answer.status for _, answer in pages], [200] * 13 + [503])
        self.assertEqual(self.host.ask("GET", "/api/session", None, cookies[0])[0], 200)
        for connection, _ in pages:
            connection.close()

    def test_only_its_own_names_reach_the_host(self):
        self.host.end()
        self.host.options = ("--web-host", "Rotacasts.example")
        self.host.start()
        for name, status in (("127.0.0.1", 401), ("[::1]:1", 401), ("localhost:9", 401),
                             ("rotacasts.EXAMPLE", 401), ("evil.example", 421), ("127.0.0.1.evil", 421)):
            self.assertEqual(self.host.ask("GET", "/api/session", None, Host=name)[0], status, name)

    def test_a_session_is_kept_close_and_ends(self):
        for origin, secure in (("", ""), (f"https://127.0.0.1:{self.host.port}", "; Secure")):
            headers = {"Origin": origin} if origin else {}
            body = {"name": "Anna", "password": PASSWORD}
            _, answer, _ = self.host.ask("POST", "/api/session", body, **headers)
            self.assertRegex(answer.get_all("Set-Cookie")[0], "^rotacasts=[0-9a-f]{64}; Path=/; HttpOnly; "
                                                   f"SameSite=Strict{secure}$")
        sessions = [self.host.sign_in("Anna")[1] for _ in range(2)]
        once = self.host.sign_in("Anna")[1]
        self.host.sign_in("Anna", Cookie=once)  # replaces the earlier session
        state = lambda cookie: self.host.ask("GET", "/api/session", None, cookie)[0]
        self.assertNotEqual(*sessions)
        self.host.ask("DELETE", "/api/session", {}, sessions[0])
        self.assertEqual([state(cookie) for cookie in [once, *sessions]], [401, 401, 200])
        self.host.admin("set", "Anna", password="another horse")
        time.sleep(1.1)
        self.assertEqual(state(sessions[1]), 401)
        eve, ben = (self.host.sign_in(name)[1] for name in ("Eve", "Ben"))
        change = lambda: self.host.ask("PUT", "/api/profiles/2/switch", {"on": True}, eve)[0]
        self.assertEqual((change(), state(ben)), (200, 200))
        self.host.admin("remove", "Ben")
        file = self.host.folder + "/settings/admins.ini"
        with open(file) as admins:
            text = admins.read()
        connection = self.host.connect()
        self.addCleanup(connection.close)
        connection.request("GET", "/api/events?profile=2", None, {"Cookie": eve})
        page = connection.getresponse()
        for line, status, event in ((f"Rights={CHANGE}", 403, b'"rights":[]'), ("Profiles=2", 404, b"gone")):
            with open(file, "w") as admins:  # edited by hand while signed in: reaches the open page
                admins.write(text.replace(line, line.split("=")[0] + "="))
            while event not in page.readline():
                pass
            self.assertEqual((change(), state(ben)), (status, 401))
        os.remove(file)
        os.mkdir(file)  # unreadable: nobody may sign in, and the host goes on
        time.sleep(1.1)
        self.assertEqual((change(), self.host.sign_in("Eve")[0]), (401, 401))

    def test_the_command_line_says_who_may(self):
        mode = os.stat(self.host.folder + "/settings/admins.ini").st_mode & 0o777
        self.assertTrue(WINDOWS or mode == 0o600, mode)  # a file that Wine replaces loses its rights
        for words, password, says in (
                (("set", "Anna"), "short", "8 letters"), (("set", "a]b"), PASSWORD, "no name"),
                (("set", "Zoë", "--rights", "Fly"), PASSWORD, ADD),
                (("set", "Zoë", "--profiles", "2,x"), PASSWORD, "1,4"),
                (("remove", "Nobody"), "", "no administrator")):
            run = self.host.admin(*words, password=password)
            self.assertEqual((run.returncode, says in run.stderr), (2, True), run)
        self.assertEqual(self.host.admin("set", "Zoë").returncode, 0)
        self.host.admin("remove", "anna")
        self.assertEqual(self.host.admin("list").stdout.split()[3::1][:2], ["Eve", "2"])
        self.assertEqual((self.host.sign_in("Anna")[0], self.host.sign_in("zoë")[0]), (401, 200))


if __name__ == "__main__":
    unittest.main()
