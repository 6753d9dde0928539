"""A host with the page, simulated game servers and administrators, for both web tests."""

import http.client
import json
import os
import re
import shutil
import signal
import socket
import subprocess
import tempfile
import time

from programs import HOST, WINDOWS, Program, Server, add_profile, message_file

PASSWORD = "correct horse"
ADD, CHANGE = "Add/Remove Rotacasts", "Change Rotacasts Settings"


class Host:
    """A host whose profile 2 has a server and profile 3 none. Anna may do everything, Eve may only
    change the settings of profile 2, and Ben may only look at profile 3."""

    def __init__(self, *options, messages=("Hello", "{ShowNextMap}", "Grüße"), more=()):
        self.folder = tempfile.mkdtemp(prefix="rotacasts-")
        self.options = options
        self.server = Server()
        add_profile(self.folder, 2, "JO", self.server.id, self.server.port, message_file(messages))
        self.nobody = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)  # receives chat, and no more
        self.nobody.bind(("127.0.0.1", 0))
        port = self.nobody.getsockname()[1]
        add_profile(self.folder, 3, "JO", "no-such-program", port, message_file(["Three"]))
        warning = self.folder + "/warn"
        with open(warning, "w", opener=lambda *file: os.open(*file, 0o755)) as file:
            file.write("#!/bin/sh\necho slow >&2\n")
        say = {6: f"\nSay={warning}", 9: "\nSay=/bin/false"}  # sent with a warning; not sent
        for index in more:  # profiles of the same server
            target = f"{self.server.port}{say.get(index, '')}"
            add_profile(self.folder, index, "JO", self.server.id, target, message_file([f"List {index}"]))
        self.admin("set", "Anna")
        self.admin("set", "Eve", "--profiles", "2", "--rights", CHANGE)
        self.admin("set", "Ben", "--profiles", "3", "--rights", "")
        self.port = 0
        self.prepare = None  # is called in the host's process before it starts
        self.start()

    def admin(self, *words, password=PASSWORD):
        return subprocess.run([HOST, "admin", *words, "--host-folder", self.folder],
                              input=password + "\n", capture_output=True, text=True)

    def start(self):
        self.program = Program(HOST, "run", "--host-folder", self.folder, "--web",
                               f"127.0.0.1:{self.port}", *self.options, prepare=self.prepare)
        self.url = self.program.prints("the page: ").split()[-1]
        self.port = int(self.url.rsplit(":", 1)[1].strip("/"))

    def end(self):
        if WINDOWS:  # where no signal asks a program to end
            self.program.write("quit\n")
        status = self.program.end(None if WINDOWS else signal.SIGTERM)
        self.program.stop()
        return status

    def stop(self):
        status = self.end()
        self.server.stop()
        self.nobody.close()
        shutil.rmtree(self.folder)
        assert status == 0, "the host ended badly"

    def messages(self, index=2):
        with open(f"{self.folder}/profiles/srv{index}/settings/Rotacasts.ini",
                  encoding="cp1252") as file:
            return [line.split("=", 1)[1] for line in file.read().split("\n")
                    if re.match(r"\d+=", line)]

    def log(self, index=2):
        folder = f"{self.folder}/profiles/srv{index}/adminlogs"
        if not os.path.exists(folder):
            return []
        [name] = os.listdir(folder)
        with open(f"{folder}/{name}", encoding="cp1252") as file:
            return file.read().splitlines()

    def log_time(self, index=2):
        """When the last line was written, in seconds since 1970, by the name and the line."""
        [name] = os.listdir(f"{self.folder}/profiles/srv{index}/adminlogs")
        written = name + self.log(index)[-1][:10]
        return time.mktime(time.strptime(written, "%Y-%m-%d.txt[%H:%M:%S]"))

    def checking_time(self):
        """The processor time of the password checks that have ended, in seconds: the host's child
        processes do nothing else."""
        with open(f"/proc/{self.program.id}/stat", encoding="ascii") as file:
            fields = file.read().rsplit(") ", 1)[1].split()
        return (int(fields[13]) + int(fields[14])) / os.sysconf("SC_CLK_TCK")

    def connect(self):
        return http.client.HTTPConnection("127.0.0.1", self.port, timeout=20)

    def ask(self, method, path, body=None, cookie=None, **headers):
        """Sends a request; returns status, headers and JSON. A header given as None is left out."""
        sent = {"Origin": self.url.rstrip("/"), "Content-Type": "application/json",
                "Cookie": cookie, **{name.replace("_", "-"): value for name, value in headers.items()}}
        data = body if isinstance(body, bytes) or body is None else json.dumps(body)
        connection = self.connect()
        connection.putrequest(method, path, skip_host="Host" in sent)
        for name, value in sent.items():
            for one in value if isinstance(value, list) else [value] if value is not None else []:
                connection.putheader(name, one)
        if data is not None:
            data = data if isinstance(data, bytes) else data.encode()
            connection.putheader("Content-Length", len(data))
        connection.endheaders(data)
        answer = connection.getresponse()
        text = answer.read()
        connection.close()
        isJson = answer.headers["Content-Type"] == "application/json"
        return answer.status, answer.headers, json.loads(text) if isJson and text else text

    def follow(self, cookie, profile=2):
        """Opens a page's events; returns the connection and the answer that goes on."""
        connection = self.connect()
        connection.request("GET", f"/api/events?profile={profile}", None, {"Cookie": cookie})
        return connection, connection.getresponse()

    def events(self, cookie, profile=2):
        """The events that arrive at once, by kind."""
        (connection, answer), found = self.follow(cookie, profile), {}
        while "ready" not in found:
            kind = answer.readline().decode().split(": ", 1)[1].strip()
            found.setdefault(kind, []).append(json.loads(answer.readline().decode()[6:]))
            answer.readline()
        connection.close()
        return found

    def sign_in(self, name, password=PASSWORD, **headers):
        status, answer, _ = self.ask("POST", "/api/session",
                                     {"name": name, "password": password}, **headers)
        return status, (answer["Set-Cookie"] or "").split(";")[0]


class Document:
    """The routes and the form of each answer in docs/web.md."""

    def __init__(self, path):
        with open(path, encoding="utf-8") as file:
            text = file.read()
        self.forms = {name: json.loads(form)
                      for name, form in re.findall(r"```json (\w+)\n(.*?)```", text, re.S)}
        self.routes = []
        for row in re.findall(r"^\| `[A-Z]+ /.*", text, re.M):
            route, needs, takes, answer = (cell.strip(" `") for cell in row.strip("|").split("|"))
            method, path = route.split("?")[0].split()
            self.routes.append((method, path, needs, json.loads(takes or "null"), answer))

    def fits(self, form, value):
        kinds = {"text": str, "number": int, "truth": bool, "null": type(None)}
        if isinstance(form, dict):
            return (isinstance(value, dict) and form.keys() == value.keys() and
                    all(self.fits(form[key], value[key]) for key in form))
        if isinstance(form, list):
            return isinstance(value, list) and all(self.fits(form[0], one) for one in value)
        return any(type(value) is kinds[kind] if kind in kinds else self.fits(self.forms[kind], value)
                   for kind in form.split(" or "))
