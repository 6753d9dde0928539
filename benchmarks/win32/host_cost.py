"""What the Windows host costs under Wine: its memory, and a page's answer beside the bare library.
Usage: host_cost.py FOLDER-OF-THE-STARTERS"""

import http.client
import os
import statistics
import subprocess
import sys
import tempfile
import time

starters = sys.argv[1]


def start(*command):
    return subprocess.Popen(["setpriv", "--pdeathsig", "KILL", *command], stdin=subprocess.PIPE,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def host(profiles):
    """A running host, the port of its page and its folder."""
    folder = tempfile.TemporaryDirectory(prefix="rotacasts-")
    for index in range(1, profiles + 1):
        made = f"{folder.name}/profiles/srv{index}/settings"
        os.makedirs(made)
        with open(f"{made}/../profile.ini", "w") as file:
            file.write(f"[Profile]\nIndex={index}\nGameCode=JO\nProcess=no-such-program\nTarget={4000 + index}\n")
        with open(f"{made}/Rotacasts.ini", "w") as file:
            file.write("[Messages]\n" + "".join(f"{n}=message {n}\n" for n in range(1, 51)) + "[Options]\nEnable=1\nInterval=1\n")
    program = start(f"{starters}/rotacasts-host", "run", "--host-folder", folder.name, "--web", "127.0.0.1:0")
    for line in program.stdout:
        if line.startswith("the page: "):
            port = int(line.rsplit(":", 1)[1].strip().strip("/"))
        if line.startswith("profiles started"):
            return program, port, folder


def resident(program):
    with open(f"/proc/{program.pid}/status") as file:
        return next(int(line.split()[1]) / 1024 for line in file if line.startswith("VmRSS"))


def answer(port, times=1000):
    """The median time of an answer to one client in microseconds, and the answer's length."""
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=20)
    took = []
    for _ in range(times):
        begin = time.perf_counter()
        connection.request("GET", "/page.css")
        length = len(connection.getresponse().read())
        took.append(time.perf_counter() - begin)
    return statistics.median(took) * 1e6, length


for profiles in (200, 1):
    program, port, folder = host(profiles)
    time.sleep(3)
    print(f"memory with {profiles} profiles of 50 messages: {resident(program):.1f} MiB", flush=True)
    if profiles == 1:
        own, length = answer(port)
        bare = start(f"{starters}/bare-page", str(length))
        other, _ = answer(int(bare.stdout.readline()))
        bare.kill()
        print(f"an answer of the page ({length} bytes): {own:.0f} us; of the bare library: {other:.0f} us")
    program.stdin.write("quit\n")
    program.stdin.flush()
    program.wait(30)
    folder.cleanup()
