#!/usr/bin/env python3
"""
What a running service answers fits the description of its interface.

usage: test_api.py PROGRAM SHARE [unittest arguments]
"""

import http.client
import json
import pathlib
import re
import socket
import subprocess
import sys
import tempfile
import unittest

import jsonschema

import schemas

PROGRAM, SHARE = sys.argv[1:3]
PATIENCE = 120  # seconds; only a service that hangs takes so long
API = "/api/v1"


class LocalConnection(http.client.HTTPConnection):
    """A connection to a local socket."""

    def __init__(self, path):
        super().__init__("localhost", timeout=PATIENCE)
        self._path = path

    def connect(self):
        self.sock = socket.socket(socket.AF_UNIX)
        self.sock.settimeout(self.timeout)
        self.sock.connect(self._path)


class Answers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.data = pathlib.Path(folder.name) / "data"
        cls.fleet = pathlib.Path(folder.name) / "fleet.json"
        cls.demo = json.loads((pathlib.Path(SHARE) / "DemoFleet.json").read_text())
        cls.fleet.write_text(json.dumps(cls.demo))
        cls.service = subprocess.Popen([PROGRAM, "serve", "--listen", "127.0.0.1:0", "--data", str(cls.data),
                                        "--simulate", str(cls.fleet)], stderr=subprocess.PIPE, text=True, env={})
        cls.addClassCleanup(cls.service.stderr.close)
        cls.addClassCleanup(cls.service.wait, PATIENCE)
        cls.addClassCleanup(cls.service.terminate)
        for line in cls.service.stderr:
            if found := re.search(r"Listening on http://127\.0\.0\.1:(\d+)", line):
                cls.port = int(found.group(1))
                break
        else:
            raise AssertionError("the service does not listen")
        cls.description = cls.get(f"{API}/openapi.json")[2]
        # Entries of the journal come after the first round, so there is a round when the first one has come.
        stream = cls.open("GET", f"{API}/journal/stream?after=0")
        cls.addClassCleanup(stream.close)
        cls.events = [cls.event(stream), cls.event(stream)]

    @classmethod
    def open(cls, method, path, headers=None, body=None, connection=None):
        connection = connection or http.client.HTTPConnection("127.0.0.1", cls.port, timeout=PATIENCE)
        # So the connection is closed with its answer.
        connection.request(method, path, body, {"Connection": "close", **(headers or {})})
        return connection.getresponse()

    @classmethod
    def ask(cls, method, path, headers=None, body=None, connection=None):
        """The status, the type and the content of an answer."""
        with cls.open(method, path, headers, body, connection) as answer:
            kind, text = answer.getheader("Content-Type"), answer.read().decode()
            return answer.status, kind, json.loads(text) if "json" in kind else text

    @classmethod
    def get(cls, path, headers=None):
        return cls.ask("GET", path, headers)

    @classmethod
    def local(cls):
        (path,) = cls.data.glob("*.sock")
        return LocalConnection(str(path))

    @staticmethod
    def event(stream):
        """The identifier and the data of the next event."""
        lines = []
        while len(lines) < 3:
            line = stream.readline().decode().rstrip("\n")
            lines = lines + [line] if line.startswith(("id: ", "data: ")) or lines else []
        return int(lines[0].removeprefix("id: ")), json.loads(lines[1].removeprefix("data: "))

    def operation(self, method, path):
        """The description of a path, and its operation."""
        for pattern, item in self.description["paths"].items():
            if re.fullmatch(re.sub(r"\{\w+\}", "[^/]+", pattern), path) and method.lower() in item:
                return item[method.lower()]
        raise AssertionError(f"{method} {path} is not described")

    def wrong(self, schema, document):
        """What does not fit. Members without a description do not fit, either."""
        root = schemas.closed({"$ref": schema["$ref"], "components": self.description["components"]})
        validator = jsonschema.Draft202012Validator(root)
        return [f"{'/'.join(map(str, each.absolute_path))}: {each.message[:300]}"
                for each in validator.iter_errors(document)]

    def check(self, method, path, status, headers=None, body=None, connection=None):
        """The content of an answer, which must be one that the description has."""
        answered, kind, content = self.ask(method, path, headers, body, connection)
        self.assertEqual(answered, status, content)
        responses = self.operation(method, path.partition("?")[0])["responses"]
        if status != 401:  # which each path may answer
            self.assertIn(str(status), responses)
        response = responses.get(str(status), responses["default"])
        if "$ref" in response:
            response = self.description["components"]["responses"][response["$ref"].rpartition("/")[2]]
        kinds = {each.partition(";")[0] for each in response["content"]}
        self.assertIn(kind.partition(";")[0], kinds)
        schema = response["content"][kind.partition(";")[0]]["schema"]
        if "$ref" in schema:
            self.assertEqual(self.wrong(schema, content), [])
        if status != 200:
            self.assertEqual(content["status"], status)
        return content

    def test_status(self):
        status = self.check("GET", f"{API}/status", 200)
        self.assertEqual(status["drives"]["total"], len(self.demo["controllers"]))
        self.assertIs(status["simulated"], True)

    def test_drives(self):
        drives = self.check("GET", f"{API}/drives", 200)["drives"]
        self.assertEqual(len(drives), len(self.demo["controllers"]))
        for drive in drives:
            one = self.check("GET", f"{API}/drives/{drive['key']}", 200)
            self.assertEqual({name: each for name, each in one.items() if name in ("key", "serial", "device")},
                             {name: each for name, each in drive.items() if name in ("key", "serial", "device")})
        self.assertIn("nowhere", self.check("GET", f"{API}/drives/nowhere", 404)["detail"])

    def test_journal(self):
        entries = self.check("GET", f"{API}/journal", 200)["entries"]
        self.assertEqual([each["number"] for each in entries], list(range(1, len(entries) + 1)))
        self.assertEqual(self.check("GET", f"{API}/journal?after=1&limit=1", 200)["entries"], entries[1:2])
        for query, name in (("after=x", "after"), ("limit=0", "limit"), ("limit=1001", "limit"), ("colour=1", "colour")):
            self.assertEqual(self.check("GET", f"{API}/journal?{query}", 400)["parameter"], name)

    def test_stream(self):
        """events have the numbers of entries, and a client that comes back misses none"""
        self.assertEqual([number for number, _ in self.events], [1, 2])
        for number, entry in self.events:
            self.assertEqual(self.wrong({"$ref": "#/components/schemas/Entry"}, entry), [])
            self.assertEqual(entry["number"], number)
        with self.open("GET", f"{API}/journal/stream", {"Last-Event-ID": "1"}) as stream:
            self.assertEqual(self.event(stream), self.events[1])
        self.assertEqual(self.check("GET", f"{API}/journal/stream?after=-1", 400)["parameter"], "after")

    def test_objects(self):
        """objects and their properties are those that the program shows itself"""
        for drive in self.get(f"{API}/drives")[2]["drives"]:
            shown = self.check("GET", f"{API}/objects/{drive['serial']}", 200)
            self.assertEqual([each["id"] for each in shown["objects"]], [drive["adapterId"], drive["driveId"]])
            (there,) = [each for each in shown["objects"][1]["properties"] if each.get("caption") == "Capacity"]
            one = self.check("GET", f"{API}/objects/{drive['serial']}/properties/capacity", 200)["property"]
            self.assertEqual(one, there)
        path = f"{API}/objects/{drive['serial']}"
        self.assertIn(drive["serial"], self.check("GET", f"{path}?columns=60", 200))
        self.assertEqual(self.check("GET", f"{path}?columns=wide", 400)["parameter"], "columns")
        self.check("GET", f"{path}/properties/colour", 422)
        self.assertIn("nowhere", self.check("GET", f"{API}/objects/nowhere", 404)["detail"])

    def test_set(self):
        path = f"{API}/objects/plugin/properties/pollinterval"
        kind = {"Content-Type": "application/json"}
        self.check("PUT", path, 403, kind, '{"value": 60}')
        self.check("PUT", path, 401, kind | {"Authorization": "Bearer wrong"}, '{"value": 60}')
        done = self.check("PUT", path, 200, kind, '{"value": 60}', self.local())
        self.assertIn("60", done["text"])
        self.assertEqual(self.check("PUT", path, 400, kind, '{"speed": 60}', self.local())["parameter"], "value")
        self.check("PUT", path, 415, {"Content-Type": "text/plain"}, "60", self.local())
        self.check("PUT", f"{API}/objects/nowhere/properties/pollinterval", 404, kind, '{"value": 60}', self.local())
        self.check("PUT", path, 422, kind, '{"value": "never"}', self.local())
        serial = self.get(f"{API}/drives")[2]["drives"][0]["serial"]
        refused = self.check("PUT", f"{API}/objects/{serial}/properties/capacity", 409, kind, '{"value": 1}', self.local())
        self.assertEqual(refused["failure"]["name"], "ERR_PROPERTY_NOT_SETTABLE")

    def test_texts(self):
        self.assertIn("ostrel_build_info", self.check("GET", "/metrics", 200))
        accept = {"Accept": "application/openmetrics-text; version=1.0.0"}
        self.assertTrue(self.check("GET", "/metrics", 200, accept).endswith("# EOF\n"))
        self.assertIn("<title>", self.check("GET", "/", 200))
        self.assertIn("{", self.check("GET", "/style.css", 200))

    def test_schemas_are_strict(self):
        """a member without a description, a missing one and one of another type are found"""
        status = self.check("GET", f"{API}/status", 200)
        schema = {"$ref": "#/components/schemas/Status"}
        for broken in ({**status, "unknown": 1}, {**status, "state": "0"},
                       {name: each for name, each in status.items() if name != "version"}):
            self.assertTrue(self.wrong(schema, broken))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
