"""What a newcomer does: sets a profile up, makes mistakes, and talks to the host that runs."""

import os
import shutil
import socket
import subprocess
import unittest
from signal import SIGKILL, SIGTERM

from programs import HOST, Program, ProgramTest, Server

NOBODY = 65534


class FirstHour(ProgramTest):
    def setUp(self):
        super().setUp()
        self.folder.chmod(0o755)
        self.folder /= "a-folder-with-a-name-" * 6  # too long for a socket's name
        self.folder.mkdir()
        self.folder /= "host"
        self.server = self.start(Server, "JO")

    def call(self, *words, status=0, said=""):
        """Runs the host's program and returns what it prints."""
        command = [HOST, words[0], "--host-folder", self.folder, *map(str, words[1:])]
        done = subprocess.run(command, input=said, capture_output=True, text=True, timeout=30)
        self.assertEqual(done.returncode, status, done.stdout + done.stderr)
        return done.stdout + done.stderr

    def new(self, name="alpha", **changes):
        wanted = {"game-code": "JO", "process": self.server.id, "target": self.server.port}
        wanted.update({key.replace("_", "-"): value for key, value in changes.items()})
        options = [word for key, value in wanted.items() for word in ("--" + key, value)]
        return ["new", name, *options]

    def host(self):
        host = self.start(Program, HOST, "run", "--host-folder", self.folder, "--minute", "50ms")
        self.assertTrue(host.prints("profiles started: 1"))
        return host

    def test_what_new_makes_is_sent_and_belongs_to_the_folders_owner(self):
        self.folder.mkdir()
        os.chmod(self.folder, 0o2770)
        if os.getuid() == 0:
            os.chown(self.folder, NOBODY, NOBODY)
        self.assertIn("It is profile 1.", self.call(*self.new()))
        self.assertIn("warnings: 0", self.call("check"))
        self.host()
        self.assertTrue(self.server.prints("[Next Map] "))
        folder = self.folder.stat()
        for path in self.folder.rglob("*"):
            if path.is_socket():
                continue
            status = path.stat()
            self.assertEqual((status.st_uid, status.st_gid), (folder.st_uid, folder.st_gid), path)
            self.assertEqual(status.st_mode & 0o7777, 0o2770 if path.is_dir() else 0o660, path)

    def test_new_refuses_what_would_not_run(self):
        for changes, says in (
                ({"name": "../x"}, 'cannot be the name of the profile\'s folder'),
                ({"game_code": "XX"}, '--game-code is "XX"; give one of DFBHD, '),
                ({"process": " "}, "--process is missing"),
                ({"target": 65536}, "--target is 65536; give the port")):
            self.assertIn(says, self.call(*self.new(**changes), status=2))
        self.assertFalse(self.folder.exists())
        self.call(*self.new())
        self.assertIn("is there already", self.call(*self.new(), status=2))
        self.assertIn("It is profile 2.", self.call(*self.new("beta")))

    def test_check_has_a_sentence_for_each_typical_mistake(self):
        self.call(*self.new())
        profile = self.folder / "profiles/alpha/profile.ini"
        messages = self.folder / "profiles/alpha/settings/Rotacasts.ini"
        twin = self.folder / "profiles/twin/profile.ini"
        twin.parent.mkdir()
        good, text = profile.read_bytes(), messages.read_bytes()
        port = self.server.port.encode()
        for file, old, new, says in (
                (profile, b"=" + port, b"=1", "profile.ini:5: nobody receives at the port 1 of this"),
                (profile, b"=" + port, b"=65536", 'Target is "65536"; give its chat port, from 1 to'),
                (profile, b"=JO", b"=Joint", 'profile.ini:3: GameCode is "Joint"; give one of DFBHD,'),
                (profile, b"Process=", b"Process=x.exe ;", "no program x.exe ;"),
                (profile, b"[Profile]\r\n", b"", "profile.ini:1: there is no section [Profile]; write"),
                (profile, b"Target", b"Say=/no/rcon x\r\nTarget", "Say's program /no/rcon is not there"),
                (twin, b"", good, "twin/profile.ini:2: the index is taken by profile 1 (alpha)"),
                (messages, b"Welcome", "Grüße".encode(), 'for "Grüße! Be fair, have fun." players read'),
                (messages, b"1=", b"1 ", "Rotacasts.ini:2: the line is ignored because it has no"),
                (messages, b"Enable=1", b"Enable=yes", 'Enable is "yes", which is no number; write 0')):
            before = file.read_bytes() if file.exists() else b""
            file.write_bytes(before.replace(old, new, 1))
            with self.subTest(says):
                self.assertIn(says, self.call("check", status=1))
            file.write_bytes(before)
        twin.unlink()
        if os.getuid() == 0:
            os.chown(self.folder, NOBODY, NOBODY)
            self.assertIn("nobody, as whom a service runs here", self.call("check", status=1))

    def test_a_running_host_answers_whoever_may_use_its_folder(self):
        self.call(*self.new())
        self.assertIn("no host runs in", self.call("console", "status", status=2))
        self.host().end(SIGKILL)  # leaves its socket
        host = self.host()
        self.assertIn("added", self.call("console", "add", 1, "Grüße  -x"))
        self.assertTrue(self.server.prints("Grüße  -x"))
        self.assertIn('"fly" is no command', self.call("console", "fly", status=1))
        many = self.call("console", status=1, said="fly\n" + "help\n" * 300 + "messages 1\nexit\n")
        self.assertEqual(many.count("this list"), 300)
        self.assertIn("every 3 min", many)
        if os.getuid() == 0:
            program = shutil.copy(HOST, self.folder.parent / "host-of-nobody")
            words = [program, "console", "--host-folder", self.folder, "status"]
            refused = subprocess.run(words, capture_output=True, text=True, user=NOBODY)
            self.assertIn("may use its console; try it with sudo", refused.stderr)
        deaf = socket.socket(socket.AF_UNIX)
        self.addCleanup(deaf.close)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)
        deaf.connect("host.console")
        deaf.setblocking(False)
        for nonsense in (b"help\n" * 10000, b"\0\xFF" * 100000):  # nobody reads the answers
            try:
                deaf.send(nonsense)
            except BlockingIOError:
                pass
        self.assertTrue(self.server.prints("Grüße  -x"))
        self.assertIn("running", self.call("console", "status"))
        crowd = [socket.socket(socket.AF_UNIX) for _ in range(17)]
        for one in crowd:
            self.addCleanup(one.close)
            one.connect("host.console")
        crowd[-1].settimeout(10)
        self.assertIn(b"busy", crowd[-1].recv(100))  # more than are served
        self.assertEqual(host.end(SIGTERM), 0)
        self.assertFalse((self.folder / "host.console").exists())


if __name__ == "__main__":
    unittest.main()
