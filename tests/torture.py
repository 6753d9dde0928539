"""Kills the stand-alone host again and again while its console, another process's console or the page
gives it a stream of changes, and lets editors save the list while the host changes it. Counts the
damage: lost texts, lists that match the state neither before nor after a change, refused commands, and
saves that were lost. All should be 0.
Usage: torture.py KILLS SAVES [SEED]"""

import ctypes
import http.client
import itertools
import json
import os
import platform
import queue
import random
import signal
import struct
import subprocess
import sys
import tempfile
import threading
import time
import urllib.error
import urllib.request
from pathlib import Path

from programs import HOST, Program, add_profile, message_file

MESSAGES = 30
COMMANDS_A_ROUND = 30


class Page:
    """Gives the console's commands to the page, one after the other, until the host is gone."""

    def __init__(self, url, texts):
        self.url, self.texts, self.answers = url.rstrip("/"), texts.copy(), queue.SimpleQueue()
        login = {"name": "Anna", "password": "correct horse"}
        self.cookie = ""
        self.cookie = self.ask("POST", "/api/session", login).headers["Set-Cookie"].split(";")[0]

    def ask(self, method, path, body):
        headers = {"Origin": self.url, "Content-Type": "application/json", "Cookie": self.cookie}
        request = urllib.request.Request(self.url + path, json.dumps(body).encode(), headers,
                                         method=method)
        with urllib.request.urlopen(request, timeout=20) as answer:
            answer.read()
            return answer

    def run(self, commands):
        for line in commands.splitlines():
            verb, _, rest = line.split(" ", 2)
            where = int(rest) - 1 if verb != "add" else len(self.texts)
            body = {"position": where, "text": rest if verb == "add" else self.texts[where]}
            place = "messages"
            if verb == "add":
                self.texts.append(rest)
            elif verb == "delete":
                del self.texts[where]
            else:
                place, body["up"] = "moves", verb == "up"
                upper = where - 1 if verb == "up" else where
                self.texts[upper:upper + 2] = reversed(self.texts[upper:upper + 2])
            try:
                self.ask("DELETE" if verb == "delete" else "POST", f"/api/profiles/1/{place}", body)
                self.answers.put("added" if verb == "add" else "moved")
            except urllib.error.HTTPError as refused:
                self.answers.put(str(refused.read()))
            except (OSError, http.client.HTTPException):  # the host is gone
                break
        self.answers.put(None)

    def write(self, commands):
        threading.Thread(target=self.run, args=[commands]).start()

    def read_line(self):
        return self.answers.get()

    def stop(self):
        pass


class Torture:
    def __init__(self, folder, seed):
        self.folder, self.random = folder, random.Random(seed)
        self.file = Path(folder, "profiles/srv1/settings/Rotacasts.ini")
        self.lost = self.half = self.refused = self.changes = self.logged = self.texts = 0
        self.wait = 30000  # at most, in microseconds; adjusted so that kills hit any place in the stream
        self.list = [self.new_text() for _ in range(MESSAGES)]  # as found after the last round
        add_profile(folder, 1, "JO", "no-such-program", 4001, message_file(self.list))
        subprocess.run([HOST, "admin", "set", "Anna", "--host-folder", folder], check=True,
                       input=b"correct horse\n", stdout=subprocess.DEVNULL)

    def new_text(self):
        self.texts += 1
        return f"text {self.texts}"

    def round(self):
        self.states = [self.list]  # the list's states in this round
        commands = [self.change() for _ in range(COMMANDS_A_ROUND)]
        host = Program(HOST, "run", "--host-folder", self.folder, "--web", "127.0.0.1:0")
        url = host.prints("the page: ").split()[-1]
        host.prints("profiles started")
        way = self.random.random()
        if way < 0.6:
            console = host
        elif way < 0.8:
            console = Program(HOST, "console", "--host-folder", self.folder)
        else:
            console = Page(url, self.list)
        console.write("".join(commands))
        time.sleep(self.random.randrange(self.wait) / 1e6)
        host.end(signal.SIGKILL)
        told = 0
        for line in iter(console.read_line, None):
            if "has ended the connection" in line or "no host runs" in line:
                break
            if line.split(" ")[0] in ("added", "moved", "deleted:"):
                told += 1
            else:
                self.refused += 1
                print("refused:", line)
        host.stop()
        if console is not host:
            console.stop()
        wait = self.wait * 13 // 10 if told < COMMANDS_A_ROUND // 6 else self.wait * 8 // 10
        self.wait = min(max(wait, 1000), 400000)
        self.changes += told
        self.look(told)

    def change(self):
        """Returns a command and adds the list's state after it to the states."""
        texts = self.states[-1].copy()
        verbs = ["add"] if len(texts) < MESSAGES / 2 else ["add", "delete", "up", "down"]
        verb, upper = self.random.choice(verbs), self.random.randrange(len(texts) - 1)
        what = upper + 1 if verb == "up" else upper
        if verb == "add":
            what = self.new_text()
            texts.append(what)
        elif verb == "delete":
            del texts[upper]
        else:
            texts[upper:upper + 2] = reversed(texts[upper:upper + 2])
        self.states.append(texts)
        return f"{verb} 1 {what if verb == 'add' else what + 1}\n"

    def look(self, told):
        """Checks that the list is in the state after one of the changes: at least the last reported and
        logged ones, at most the one after the last logged."""
        stored = self.file.read_bytes() if self.file.exists() else b""
        logs = Path(self.folder, "profiles/srv1/adminlogs").glob("*")
        lines = sum(log.read_bytes().count(b"\n") for log in logs)
        logged, self.logged = lines - self.logged, lines
        for texts in self.states[max(told, logged):logged + 2]:
            if message_file(texts) == stored:
                self.list = texts
                return
        self.half += 1
        due = self.states[min(told + 1, COMMANDS_A_ROUND)]
        self.lost += sum(f"={text}\r\n".encode("cp1252") not in stored for text in due)
        print(f"after {told} changes the list is\n{stored.decode('cp1252')}")
        self.file.write_bytes(message_file(self.list))


def refuse_exchange():
    """From here on this process and its children see a file system that knows no flags of renameat2."""
    number = {"x86_64": 316, "aarch64": 276}[platform.machine()]
    load, equals, answer = 0x20, 0x15, 0x06
    steps = [(load, 0, 0, 0), (equals, 0, 3, number), (load, 0, 0, 48), (equals, 1, 0, 0),
             (answer, 0, 0, 0x50000 | 22), (answer, 0, 0, 0x7FFF0000)]
    code = ctypes.create_string_buffer(b"".join(struct.pack("HBBI", *step) for step in steps))
    program = struct.pack("HxxxxxxQ", len(steps), ctypes.addressof(code))
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.prctl(38, 1, 0, 0, 0) != 0 or libc.prctl(22, 2, program, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "no filter for system calls")


class Editing:
    """A host whose console adds messages while an editor saves the list in one way."""

    GROUP, UPLOADER, HOST_USER = 65432, 65433, 65434

    def __init__(self, folder, renames, slow, other_user, no_exchange):
        self.file = Path(folder, "profiles/srv1/settings/Rotacasts.ini")
        self.renames, self.slow, self.other_user = renames, slow, other_user
        add_profile(folder, 1, "JO", "no-such-program", 4001, message_file(["first"]))
        if other_user:
            for path in [Path(folder), *Path(folder).rglob("*")]:
                os.chown(path, self.HOST_USER if path.is_dir() else self.UPLOADER, self.GROUP)
                path.chmod(0o2770 if path.is_dir() else 0o660)
        user = ["setpriv", "--reuid", self.HOST_USER, "--regid", self.GROUP, "--clear-groups"]
        self.host = Program(*(user if other_user else []), HOST, "run", "--host-folder", folder,
                            prepare=refuse_exchange if no_exchange else None)
        self.host.prints("profiles started")
        self.lost = self.added = self.refused = 0

    def save(self, number):
        """Saves a list of its own; returns the texts."""
        texts = [f"save {number} text {i}" for i in range(8)]
        target = self.file.with_name("new") if self.renames else self.file
        parts = [line + b"\n" for line in message_file(texts).split(b"\n")]
        with open(target, "wb", buffering=0) as file:
            if self.other_user:  # whose file it is after each upload
                os.fchown(file.fileno(), self.UPLOADER, self.GROUP)
                os.fchmod(file.fileno(), 0o660)
            for part in parts if self.slow else [b"".join(parts)]:
                file.write(part)
                time.sleep(0.1 / len(parts) if self.slow else 0)
        if self.renames:
            target.rename(self.file)
        return texts

    def run(self, saves):
        for number in range(saves):
            time.sleep(0.6 if self.other_user else 0)  # until the host takes the save for complete
            self.host.write("".join(f"add 1 added {number} {i}\n" for i in range(6)))
            time.sleep(random.random() / (20 if self.other_user else 200))
            texts = self.save(number)
            for _ in range(6):
                line = self.host.read_line()
                self.added += line.startswith("added")
                self.refused += "another program" in line
            stored = self.file.read_bytes().decode("cp1252")
            if not all(f"={text}\r\n" in stored for text in texts):
                self.lost += 1
        return self.lost


def edit(saves):
    """Lets each kind of editor save; returns how many saves were lost."""
    lost = 0
    for renames, slow, other_user, no_exchange in itertools.product((False, True), repeat=4):
        if other_user and os.geteuid() != 0:
            continue
        with tempfile.TemporaryDirectory(prefix="rotacasts-") as folder:
            editing = Editing(folder, renames, slow, other_user, no_exchange)
            try:
                lost += editing.run(saves)
            finally:
                editing.host.stop()
        words = ["by renaming" if renames else "in place", "slow" if slow else "fast",
                 "another user" if other_user else "the same user",
                 "without exchange" if no_exchange else "with exchange"]
        print(f"saves {saves} ({', '.join(words)}): lost {editing.lost}; messages added "
              f"{editing.added}, refused {editing.refused}", flush=True)
    if os.geteuid() != 0:
        print("NOT TESTED: another user's saves; only root can be two users")
    return lost


def main(kills, saves, seed=None):
    seed = random.randrange(2**32) if seed is None else seed
    print(f"{kills} kills, {saves} saves of each kind, seed {seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="rotacasts-") as folder:
        torture = Torture(folder, seed)
        for _ in range(kills):
            torture.round()
    print(f"kills {kills}, changes told of {torture.changes}: texts lost {torture.lost}, "
          f"half-changed {torture.half}, refused {torture.refused}", flush=True)
    harm = torture.lost + torture.half + torture.refused + edit(saves)
    return 0 if harm == 0 and torture.changes > 0 else 1


if __name__ == "__main__":
    sys.exit(main(*map(int, sys.argv[1:])))
