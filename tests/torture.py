"""Kills the stand-alone host again and again while it processes a stream of changes, and counts the
damage: lost texts, lists that match the state neither before nor after a change, and refused
commands. All three counts should be 0.
Usage: torture.py KILLS [SEED]"""

import random
import signal
import sys
import tempfile
import time
from pathlib import Path

from programs import HOST, Program, add_profile, message_file

MESSAGES = 30
COMMANDS_A_ROUND = 30


class Torture:
    def __init__(self, folder, seed):
        self.folder, self.random = folder, random.Random(seed)
        self.file = Path(folder, "profiles/srv1/settings/Rotacasts.ini")
        self.lost = self.half = self.refused = self.changes = self.logged = self.texts = 0
        self.wait = 30000  # at most, in microseconds; adjusted so that kills hit any place in the stream
        self.list = [self.new_text() for _ in range(MESSAGES)]  # as found after the last round
        add_profile(folder, 1, "JO", "no-such-program", 4001, message_file(self.list))

    def new_text(self):
        self.texts += 1
        return f"text {self.texts}"

    def round(self):
        self.states = [self.list]  # the list's states in this round
        commands = [self.change() for _ in range(COMMANDS_A_ROUND)]
        host = Program(HOST, "run", "--host-folder", self.folder)
        host.prints("profiles started")
        host.write("".join(commands))
        time.sleep(self.random.randrange(self.wait) / 1e6)
        host.end(signal.SIGKILL)
        told = 0
        for line in iter(host.read_line, None):
            if line.split(" ")[0] in ("added", "moved", "deleted:"):
                told += 1
            else:
                self.refused += 1
                print("refused:", line)
        host.stop()
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


def main(kills, seed=None):
    seed = random.randrange(2**32) if seed is None else seed
    print(f"{kills} kills, seed {seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="rotacasts-") as folder:
        torture = Torture(folder, seed)
        for _ in range(kills):
            torture.round()
    print(f"kills {kills}, changes told of {torture.changes}: texts lost {torture.lost}, "
          f"half-changed {torture.half}, refused {torture.refused}")
    harm = torture.lost + torture.half + torture.refused
    return 0 if harm == 0 and torture.changes > 0 else 1


if __name__ == "__main__":
    sys.exit(main(*map(int, sys.argv[1:])))
