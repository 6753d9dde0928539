"""The programs: a simulated game server, the host that serves it, and how each of them ends."""

import fcntl
import os
import pty
import re
import shlex
import select
import shutil
import socket
import struct
import termios
import time
import unittest
from pathlib import Path
from signal import SIGCONT, SIGHUP, SIGKILL, SIGTERM

from programs import (HOST, SIMULATOR, WINDOWS, WITH_TEST, Program, ProgramTest, Server,
                      add_profile, message_file, only_on_linux)


class EndToEnd(ProgramTest):
    def server(self, code, program=SIMULATOR, port=0):
        return self.start(Server, code, program, "--step", 20, "--port", port)

    def profile(self, *settings):
        add_profile(self.folder, *settings)

    def host(self, command="run"):
        minute = ("--minute", "50ms") if command == "run" else ()
        return self.start(Program, HOST, command, "--host-folder", self.folder, *minute)

    def expect(self, program, *texts):
        """Expects the program to print these texts, in this order."""
        for text in texts:
            self.assertTrue(program.prints(text), text)

    def test_messages_reach_the_servers_until_one_dies(self):
        joint, hawk = self.server("JO"), self.server("DFBHD")
        texts = ["Grüße €", "{ShowNextMap}", "{ShowMostKills}", "", "{ShowLeastDeaths}"]
        messages = message_file(texts)
        self.profile(1, "DFBHD", hawk.id, hawk.port, messages)
        self.profile(2, "JO", joint.id, joint.port, messages)
        far = joint.id + 2**32  # truncated to 32 bits, this would be the id of an existing process
        self.profile(3, "JO", far, joint.port, messages)
        host = self.host()
        self.expect(host, f"profile 3 (srv3): the game server has ended (process {far})")
        for server in (joint, hawk):
            self.expect(server, "Grüße €", "[Next Map] ", "[Most Kills] ", "[Least Deaths] ",
                        "Grüße €")
        host.write("status\nsay 1 {ShowNextMap}\nsent 1\nplaceholders 1\n")
        self.expect(host, "1        srv1    DFBHD  running", "said: [Next Map] ",
                    "1        sent     [Next Map] ", "{ShowBestHeadshotKillRatio}  [")
        self.assertEqual(joint.end(SIGKILL), -SIGKILL)
        self.expect(host, f"profile 2 (srv2): the game server has ended (process {joint.id})")
        self.expect(hawk, "Grüße €")  # the other profile keeps going
        host.write("unload\nmessages 1\nquit\n")
        self.expect(host, "2       {ShowNextMap}      [Next Map] ")
        self.assertEqual(host.end(), 0)
        if not WINDOWS:  # where no signal asks a program to end
            self.assertEqual(hawk.end(SIGTERM), 0)
        self.assertIn(b" tvxRT.dll ", (self.folder / "logs/errors.log").read_bytes())
        stored = self.folder / "profiles/srv2/settings/Rotacasts.ini"
        self.assertEqual(stored.read_bytes(), messages)

    @only_on_linux("Wine does not tell who holds a port")
    def test_of_the_servers_of_one_program_each_profile_keeps_its_own(self):
        name = f"server-of-{os.getpid()}"
        program = shutil.copy(SIMULATOR, self.folder / name)
        first, other = (self.server("JO_2", program) for _ in range(2))
        self.profile(1, "JO_2", name, first.port, message_file(["Hello", "{ShowNextMap}"]))
        self.profile(2, "JO_2", name, other.port, message_file(["Other"]))
        host = self.host()
        self.expect(first, "Hello")
        self.expect(other, "Other")
        first.stop()
        self.expect(host, "profile 1 (srv1): the game server has ended")
        self.expect(other, *["Other"] * 9)  # ticks go by, and nothing more is said
        host.write("status\n")
        self.assertIn("Next message", host.read_line())
        self.expect(host, "1        srv1    JO_2  unreachable",
                    f"profile 1 (srv1): a program {name} is running, but none receives at the "
                    f"Target port {first.port}")
        second = self.server("JO_2", program, first.port)
        self.expect(second, "Hello")
        host.write("quit\n")
        self.assertEqual(list(iter(host.read_line, None)),
                         [f"profile 1 (srv1): the game server is back (process {second.id})"])
        self.assertEqual(host.end(), 0)
        self.assertEqual((self.folder / "logs/errors.log").read_text().count("\n"), 2)

    def test_nothing_that_is_printed_or_asked_holds_the_host_up(self):
        server = self.server("JO")
        self.profile(1, "JO", server.id, server.port, message_file(["Hello"]))
        host = self.host()
        begin = time.monotonic()
        for _ in range(300):
            host.write("x" * 100_000)
        host.write("\n")  # a line of 30 MB
        self.expect(host, "the line has more than 131072 bytes; nothing was done")
        self.assertLess(time.monotonic() - begin, 5)
        letters = [letter * 60_000 for letter in "abc"]
        host.write("".join(f"add 1 {text}\n" for text in letters) + "messages 1\n" + "delete 1 2\n" * 3)
        self.expect(host, "Number", *letters, "deleted")  # more than is kept for nobody
        for _ in range(300):  # far more than a pipe holds, and nobody reads it
            host.write("help\n")
        host.write("messages 1\nadd 1 x")  # the last line needs no line feed
        host.process.stdin.close()
        self.expect(server, "x", "x", "x")
        self.expect(host, " lines were not shown because nobody was reading")
        if WINDOWS:  # where no signal asks for anything
            return
        self.profile(2, "JO", 1, 4002)
        host.process.send_signal(SIGHUP)
        self.expect(host, "added: profile 2")
        host.process.stdout.close()
        host.process.send_signal(SIGHUP)  # nobody reads what it prints
        self.expect(server, "Hello", "Hello")
        self.assertEqual(host.end(SIGTERM), 0)

    @only_on_linux("it needs a terminal of Linux")
    def test_a_terminal_has_a_prompt_that_completes_commands(self):
        receiver = self.enterContext(socket.socket(socket.AF_INET, socket.SOCK_DGRAM))
        receiver.bind(("127.0.0.1", 0))
        self.profile(1, "JO", 1, receiver.getsockname()[1])
        command = shlex.join([*WITH_TEST, "env", "LC_ALL=C", "TERM=xterm",  # it still takes UTF-8
                              HOST, "run", "--host-folder", str(self.folder)])
        host = self.start(Program, "script", "-qfec", "exec " + command, "/dev/null")
        self.expect(host, "profiles started: 1")
        host.write("addX\b 1 Grüße aus\n")
        self.expect(host, "added as message 1")
        host.write("mes\t1\n")
        self.expect(host, "sages 1", "1       Grüße aus  Grüße aus")
        host.write("say 1 Grße\x1b[D\x1b[D\x1b")  # a lone Esc must not hold the host up
        time.sleep(0.2)
        children = f"/proc/{host.id}/task/{host.id}/children"
        os.kill(int(Path(children).read_text()), SIGHUP)
        self.expect(host, "read again; profiles: 1")  # above the line that is being typed
        host.write("ü\n")
        self.expect(host, "rotacasts> say 1 Gr", "said: Grüße")
        host.write("quit\n")
        self.assertEqual(host.end(), 0)

    @only_on_linux("its paths are of Linux")
    def test_one_host_works_in_a_folder_until_its_end(self):
        self.profile(1, "JO", "no-such-program", 4001, message_file(["a"]))
        self.profile(2, "NOPE", 1, 4001)
        for _ in range(2):
            first = self.host()
            self.expect(first, "skipped: ", "profiles started: 1")
            second = self.host()
            self.expect(second, f"{self.folder} has a host at work, process {first.id} since ")
            self.assertEqual(second.end(), 3)
            self.expect(self.host("check"), "profiles checked: ")
            self.expect(self.host("preview"), "1       a        a")
            first.end(SIGKILL)

    @only_on_linux("it needs a terminal of Linux")
    def test_a_terminal_survives_ctrl_z_and_a_new_size(self):
        self.profile(1, "JO", 1, 4001)
        here = ("--host-folder", self.folder)
        for words, prompt, flag in ((("run", *here), b"rotacasts> ", termios.ICANON),
                                    (("admin", "set", "Anna", *here), b"Password: ", termios.ECHO)):
            child, terminal = pty.fork()
            if child == 0:
                os.execvp(WITH_TEST[0], [*WITH_TEST, HOST, *map(str, words)])

            def reads(text):
                seen, end = b"", time.monotonic() + 20
                while text not in seen and time.monotonic() < end:
                    if select.select([terminal], [], [], 1)[0]:
                        seen += os.read(terminal, 4096)
                return text in seen

            def comes(condition):
                end = time.monotonic() + 20
                while not (met := condition()) and time.monotonic() < end:
                    time.sleep(0.01)
                return met

            def is_plain():
                return bool(termios.tcgetattr(terminal)[3] & flag)

            def state():
                return Path(f"/proc/{child}/stat").read_text().rsplit(") ", 1)[1][0]

            self.assertTrue(reads(prompt), words)
            self.assertFalse(is_plain())
            os.write(terminal, b"\x1a")
            self.assertTrue(comes(lambda: state() == "T" and is_plain()), words)
            os.kill(child, SIGCONT)
            self.assertTrue(comes(lambda: not is_plain()), words)
            if prompt == b"rotacasts> ":
                self.assertTrue(reads(prompt))
                os.write(terminal, b"hel")
                self.assertTrue(reads(b"hel"))
                fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("4H", 30, 40, 0, 0))
                self.assertTrue(reads(prompt + b"hel"))  # without a key
                os.write(terminal, b"p\n")
                self.assertTrue(reads(b"this list"))
            os.kill(child, SIGTERM)
            self.assertTrue(comes(lambda: state() == "Z" and is_plain()), words)
            os.waitpid(child, 0)
            os.close(terminal)

    @only_on_linux("it sends signals")
    def test_no_signal_at_its_start_or_end_kills_it(self):
        self.profile(1, "JO", "no-such-program", 4001, message_file(["a"]))
        lock = self.folder / "host.lock"
        for delay in range(50):
            lock.unlink(missing_ok=True)
            host = self.host()
            isHeld = False
            while not isHeld:
                isMade = lock.exists()  # long after the beginning of main
                status = Path(f"/proc/{host.id}/status").read_text()
                isHeld = int(re.search("SigBlk:\t(.*)", status)[1], 16) & 1 << SIGHUP - 1
                self.assertTrue(isHeld or not isMade, delay)
            time.sleep(delay / 2000)
            host.process.send_signal(SIGHUP)
            self.expect(host, "read again; profiles: 1")
            host.process.send_signal(SIGTERM)
            while host.process.poll() is None:
                host.process.send_signal(SIGHUP)
            self.assertEqual(host.end(), 0, delay)

    def test_a_page_whose_address_is_not_free_yet_is_served_later(self):
        self.profile(1, "JO", "no-such-program", 4001, message_file(["a"]))
        with socket.create_server(("127.0.0.1", 0)) as other:
            address = f"127.0.0.1:{other.getsockname()[1]}"
            host = self.start(Program, HOST, "run", "--host-folder", self.folder, "--web", address)
            self.expect(host, "it is tried again", "profiles started: 1")
        self.expect(host, f"the page: http://{address}/")
        host.write("quit\n")
        self.assertEqual(host.end(), 0)
        host = self.start(Program, HOST, "run", "--host-folder", self.folder, "--web", "nowhere:4")
        self.expect(host, "is no address to listen at")
        self.assertEqual(host.end(), 2)

    @only_on_linux("its paths are of Linux")
    def test_preview_touches_no_file_and_neither_a_bad_profile_nor_a_message_commands_it(self):
        server = self.server("DFX2")
        messages = message_file(["{\x1B[2J}§31m\tGrüße", "{ShowNextMap}"])
        self.profile(1, "JO", 1, 4001, b"\xFF\xFE[")
        self.profile(2, "JO", 1, 4002)
        messages = messages.replace("§".encode("cp1252"), b"\x9D")  # not a Windows-1252 letter
        self.profile(3, "DFX2", server.id, server.port, messages)
        self.profile(4, "JO", 1, "\x1B]")
        self.profile(5, "JO", 1, 4003)
        (self.folder / "profiles/srv5/settings").mkdir()  # without a message file
        before = set(self.folder.rglob("*"))
        for command, says in (
                ("preview", ("srv1/settings/Rotacasts.ini is a UTF-16 file",
                             "profile 2 (srv2) has no messages",
                             "{?[2J}?31m?Grüße  { [2J} 31m Grüße", "[Next Map] ")),
                ("check", ("?]",))):
            host = self.host(command)
            output = "\n".join(iter(host.read_line, None))
            for text in says:
                self.assertIn(text, output)
            self.assertNotIn("\x1B", output)
            self.assertEqual(host.end(), 1)
        self.assertEqual(set(self.folder.rglob("*")), before)

    @only_on_linux("its paths are of Linux")
    def test_a_wrong_call_says_what_is_wrong(self):
        here, nowhere = ("--host-folder", self.folder), ("--host-folder", "/nowhere/at/all")
        for words, says, status in (
                (("run", *nowhere), "make it, or name another one", 2),
                (("run", *here), f"{self.folder}/profiles: No such file", 2),
                (("run", *here), "has no usable profile", 2),
                (("check", *nowhere), "/nowhere/at/all/profiles: No such file", 1),
                (("run", "--host-folder", ""), "--host-folder is empty; name a folder", 2),
                (("run", *here, "--minute", "soon"), "--minute takes a length of time", 2),
                (("run", "--bogus"), 'rotacasts-host run: "--bogus" is not known here', 2),
                (("fly",), 'rotacasts-host: "fly" is not known here', 2),
                (("preview", *here, "--profile", "4"), "there is no profile 4; preview shows all", 1),
                (("preview", *here, "--profile", "x"), "--profile = x is no whole number", 2),
                (("check", "--help"), "Exit status: 0 done; 1 check has a warning", 0)):
            host = self.start(Program, HOST, *words)
            self.expect(host, says)
            self.assertEqual(host.end(), status, words)
        self.assertEqual(list(self.folder.iterdir()), [])


if __name__ == "__main__":
    unittest.main()
