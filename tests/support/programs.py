"""Starts programs for tests and writes their profiles."""

import functools
import os
import select
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

PROGRAMS = os.environ["ROTACASTS_PROGRAMS"]
HOST, SIMULATOR = PROGRAMS + "/rotacasts-host", PROGRAMS + "/game-server-sim"
# Whether the programs are those for Windows, under Wine.
WINDOWS = "ROTACASTS_WINDOWS" in os.environ
only_on_linux = functools.partial(unittest.skipIf, WINDOWS)  # with the reason
# A zone in which the hour is never that of UTC, and often the day is another, for all the programs.
os.environ["TZ"] = "FAR-13:30"
time.tzset()
# A program started with these words ends with the test, even if the test is killed.
WITH_TEST = ("setpriv", "--pdeathsig", "KILL")


class Program:
    """A program whose input and output, including errors, are pipes. Reads only on request."""

    def __init__(self, *command, prepare=None):
        self.process = subprocess.Popen(
            [*WITH_TEST, *map(str, command)], bufsize=0, preexec_fn=prepare,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.id, self.unread = self.process.pid, b""

    def write(self, text):
        line_end = "\r\n" if WINDOWS else "\n"  # as a console there ends a line
        self.process.stdin.write(text.replace("\n", line_end).encode())

    def read_line(self, seconds=10):
        """The next line; None at the end of the output or if none comes in time."""
        output = self.process.stdout
        while b"\n" not in self.unread:
            more = output.read(65536) if select.select([output], [], [], seconds)[0] else b""
            if not more:
                return None
            self.unread += more
        line, self.unread = self.unread.split(b"\n", 1)
        return line.decode()

    def prints(self, text, seconds=30):
        """Reads up to the line that contains the text; returns it, or None if it does not come."""
        end = time.monotonic() + seconds
        while (left := end - time.monotonic()) > 0:
            line = self.read_line(left)
            if line is None or text in line:
                return line
        return None

    def end(self, sent=None):
        """Sends the signal, if any, and waits. Returns the exit status, or minus the signal that ended it."""
        if sent is not None:
            self.process.send_signal(sent)
        return self.process.wait(30)

    def stop(self):
        self.end(signal.SIGKILL)
        self.process.stdin.close()
        self.process.stdout.close()


class Server(Program):
    """A simulated game server, which prints the chat that it receives."""

    def __init__(self, code="JO", program=SIMULATOR, *options):
        super().__init__(program, "--game-code", code, "--seed", 3, *options)
        words = self.prints("chat on").split()
        self.id, self.port = int(words[3].strip(",")), words[-1].rsplit(":", 1)[1]


class ProgramTest(unittest.TestCase):
    """A test of programs, which end with it, in a folder of its own."""

    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory(prefix="rotacasts-")))

    def start(self, kind, *words):
        program = kind(*words)
        self.addCleanup(program.stop)
        return program


def message_file(messages, interval=1):
    lines = [f"{i}={text}" for i, text in enumerate(messages, 1)]
    options = ["[Options]", "Enable=1", f"Interval={interval}", ""]
    return "\r\n".join(["[Messages]", *lines, *options]).encode("cp1252")


def add_profile(host_folder, index, code, process, target, messages=None):
    """Writes a profile. `messages` are the contents of its message file; None for no file."""
    folder = f"{host_folder}/profiles/srv{index}"
    os.makedirs(folder)
    with open(folder + "/profile.ini", "w", newline="\r\n") as file:
        file.write(f"[Profile]\nIndex={index}\nGameCode={code}\nProcess={process}\nTarget={target}")
    if messages is not None:
        os.mkdir(folder + "/settings")
        with open(folder + "/settings/Rotacasts.ini", "wb") as file:
            file.write(messages)
