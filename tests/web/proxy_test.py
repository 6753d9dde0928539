"""The page over TLS, through nginx as docs/help/page.md describes it."""

import http.client
import os
import re
import socket
import ssl
import subprocess
import sys
import time
import unittest

from support import PASSWORD, Host

NGINX = "/usr/sbin/nginx"
CONFIGURATION = """
daemon off; master_process off; pid nginx.pid; error_log stderr error;
events {}
http {
  access_log off;
  client_body_temp_path body; proxy_temp_path proxy;
  fastcgi_temp_path fastcgi; uwsgi_temp_path uwsgi; scgi_temp_path scgi;
  server {
    listen 127.0.0.1:%s ssl http2;
    ssl_certificate certificate.pem;
    ssl_certificate_key key.pem;
    %s
  }
}
"""


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as listener:
        return listener.getsockname()[1]


class Proxy(unittest.TestCase):
    def setUp(self):
        self.host = Host("--minute", "10m")
        self.addCleanup(self.host.stop)
        with open(os.environ["ROTACASTS_SOURCE"] + "/docs/help/page.md", encoding="utf-8") as file:
            location = re.search(r"^    location / \{.*?^    \}", file.read(), re.S | re.M).group()
        port, folder = free_port(), self.host.folder
        with open(folder + "/nginx.conf", "w") as file:
            file.write(CONFIGURATION % (port, location.replace("8480", str(self.host.port))))
        subprocess.run("openssl req -x509 -nodes -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 "
                       "-subj /CN=localhost -addext subjectAltName=IP:127.0.0.1 "
                       "-keyout key.pem -out certificate.pem".split(), cwd=folder, check=True,
                       stderr=subprocess.DEVNULL)
        nginx = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", NGINX, "-e", "stderr", "-p", folder,
                                  "-c", "nginx.conf"])
        self.addCleanup(lambda: (nginx.terminate(), nginx.wait()))
        trust = ssl.create_default_context(cafile=folder + "/certificate.pem")
        self.client = "127.0.0.1"
        self.host.url = f"https://127.0.0.1:{port}/"
        self.host.connect = lambda: http.client.HTTPSConnection(
            "127.0.0.1", port, timeout=20, context=trust, source_address=(self.client, 0))
        for _ in range(200):
            with socket.socket() as probe:
                if probe.connect_ex(("127.0.0.1", port)) == 0:
                    break
            time.sleep(0.05)

    def test_the_page_works_over_tls(self):
        body = {"name": "Anna", "password": PASSWORD}
        _, answer, _ = self.host.ask("POST", "/api/session", body)
        cookie, *attributes = answer["Set-Cookie"].split("; ")
        self.assertIn("Secure", attributes)
        connection = self.host.connect()
        self.addCleanup(connection.close)
        connection.request("GET", "/api/events?profile=2", None, {"Cookie": cookie})
        events = connection.getresponse()
        while events.readline() != b"event: ready\n":
            pass
        for text in ("One", "Two"):  # each arrives while the answer continues
            begin = time.time()
            self.host.ask("POST", "/api/profiles/2/messages", {"text": text}, cookie)
            while text.encode() not in events.readline():
                pass
            self.assertLess(time.time() - begin, 5)
        self.client = "127.0.0.2"  # slowed down, whatever address it claims
        answers = []
        while 429 not in answers and len(answers) < 10:  # a busy machine outlasts the first waits
            forged = f"10.9.9.{len(answers)}"
            answers.append(self.host.sign_in("Anna", "wrong", X_Forwarded_For=forged)[0])
        self.assertIn(429, answers)
        self.client = "127.0.0.1"
        self.assertEqual(self.host.sign_in("Anna")[0], 200)


if __name__ == "__main__":
    if not os.path.exists(NGINX):
        print("NOT TESTED: the page over TLS, for want of Debian's nginx-light "
              "(scripts/bootstrap browser installs it)", file=sys.stderr)
        sys.exit(1 if os.environ.get("CI") else 77)
    unittest.main()
