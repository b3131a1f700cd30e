"""The reverse proxy of Docs/Service.md, with a real nginx before the service."""

import base64
import contextlib
import grp
import http.client
import json
import os
import pathlib
import pwd
import re
import socket
import ssl
import subprocess
import time
import unittest

import fleets
import stage
from service import Service

DOCUMENT = pathlib.Path(__file__).resolve().parents[2] / "Docs/Service.md"
NAME = "storage.example.org"
USER = {"Authorization": "Basic " + base64.b64encode(b"reader:secret").decode()}
LIMIT = 60
AROUND = """
daemon off;
user {user} {group};
pid {folder}/pid;
error_log {folder}/error.log;
events {{}}
http {{
    access_log off;
    client_body_temp_path {folder}/body;
    proxy_temp_path {folder}/proxy;
    fastcgi_temp_path {folder}/fastcgi;
    uwsgi_temp_path {folder}/uwsgi;
    scgi_temp_path {folder}/scgi;
    {server}
}}
"""


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


def recipe(folder, port, service):
    """The recipe of the document for this folder, with ports that any user may have."""
    (text,) = re.findall(r"^```nginx\n(.*?)^```$", DOCUMENT.read_text(), re.MULTILINE | re.DOTALL)
    for shown, real in (("listen 443 ssl;", f"listen 127.0.0.1:{port} ssl;"),
                        ("/etc/ssl/certs/storage.pem", f"{folder}/storage.pem"),
                        ("/etc/ssl/private/storage.key", f"{folder}/storage.key"),
                        ("/etc/nginx/ostrel.users", f"{folder}/users"),
                        ("http://127.0.0.1:9713", f"http://127.0.0.1:{service.port}")):
        if text.count(shown) != 1:
            raise AssertionError(f"the recipe has no {shown}")
        text = text.replace(shown, real)
    return text


class Proxy(unittest.TestCase):
    """A user with a password, and whoever else comes."""

    @classmethod
    def setUpClass(cls):
        folder = stage.work / "proxy"
        folder.mkdir(parents=True, exist_ok=True)
        stage.run("openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                  "-days", "2", "-subj", f"/CN={NAME}", "-addext", f"subjectAltName=DNS:{NAME}",
                  "-keyout", folder / "storage.key", "-out", folder / "storage.pem")
        password = stage.run("openssl", "passwd", "-apr1", "secret").decode()
        (folder / "users").write_text(f"reader:{password}")
        (folder / "token").write_text("the token\n")
        cls.trust = ssl.create_default_context(cafile=folder / "storage.pem")
        settings = f"host-names = {NAME}\ntoken-file = {folder}/token\n"
        cls.service = cls.enterClassContext(Service(fleets.files()["demonstration"], settings))
        cls.port = free_port()
        (folder / "nginx.conf").write_text(AROUND.format(
            folder=folder, server=recipe(folder, cls.port, cls.service), user=pwd.getpwuid(os.getuid()).pw_name,
            group=grp.getgrgid(os.getgid()).gr_name))
        program = stage.unpacked("nginx") / "usr/sbin/nginx"
        cls.nginx = subprocess.Popen([str(program), "-p", str(folder), "-c", str(folder / "nginx.conf"), "-e",
                                      str(folder / "error.log")])
        cls.addClassCleanup(cls.nginx.wait)
        cls.addClassCleanup(cls.nginx.terminate)
        deadline = time.monotonic() + LIMIT
        while True:
            with contextlib.suppress(ConnectionRefusedError), cls.connection():
                return
            if cls.nginx.poll() is not None or time.monotonic() > deadline:
                raise AssertionError("nginx did not start")
            time.sleep(0.02)

    @classmethod
    def connection(cls):
        """A connection with TLS, as if the proxy had its real name."""
        plain = socket.create_connection(("127.0.0.1", cls.port), LIMIT)
        return cls.trust.wrap_socket(plain, server_hostname=NAME)

    @contextlib.contextmanager
    def answer(self, method, target, headers):
        """The answer to a request through the proxy."""
        client = http.client.HTTPConnection(NAME)
        with self.connection() as client.sock:
            client.request(method, target, headers=headers)
            yield client.getresponse()

    def status(self, method, target, headers):
        with self.answer(method, target, headers) as answer:
            answer.read()
            return answer.status

    def test_reading(self):
        """a user with a password reads documents, metrics and the page"""
        with self.answer("GET", "/api/v1/drives", USER) as answer:
            self.assertEqual(answer.status, 200)
            drives = json.loads(answer.read())["drives"]
        self.assertEqual(drives, json.loads(self.service.request("GET", "/api/v1/drives")[2])["drives"])
        self.assertNotEqual(drives, [])
        for target in ("/", "/metrics"):
            self.assertEqual(self.status("GET", target, USER), 200, target)

    def test_stranger(self):
        """nobody else reads anything"""
        wrong = {"Authorization": "Basic " + base64.b64encode(b"reader:guessed").decode()}
        for headers in ({}, wrong, {"Authorization": "Bearer the token"}):
            for target in ("/", "/metrics", "/api/v1/drives"):
                self.assertEqual(self.status("GET", target, headers), 401, (headers, target))

    def test_changing(self):
        """nobody changes anything through the proxy"""
        with self.answer("PUT", "/api/v1/objects/plugin/properties/pollinterval", USER) as answer:
            self.assertEqual((answer.status, answer.headers["Content-Type"]), (403, "application/problem+json"))

    def test_name(self):
        """the service answers to the names in its settings only"""
        self.assertEqual(self.status("GET", "/api/v1/drives", {**USER, "Host": "elsewhere.example.org"}), 421)

    def test_stream(self):
        """the proxy passes an entry of the journal on while the stream goes on"""
        with self.answer("GET", "/api/v1/journal/stream", {**USER, "Last-Event-ID": "0"}) as answer:
            self.assertEqual((answer.status, answer.headers["Content-Type"].split(";")[0]), (200, "text/event-stream"))
            lines = iter(answer.readline, b"")
            self.assertIn(b"id: 1", (line.strip() for line in lines))
