#!/usr/bin/env python3
"""
The JSON documents of the program fit the schemas in Docs/Schemas. The schemas are strict enough to find documents
that do not fit.

usage: test_schemas.py PROGRAM SHARE REFUSING_PLUGIN [unittest arguments]
"""

import copy
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import jsonschema

import schemas

PROGRAM, SHARE, REFUSING_PLUGIN = sys.argv[1:4]
DEMO = str(pathlib.Path(SHARE) / "DemoFleet.json")
LARGEST = 18446744073709551614
SMALLEST_INEXACT = (1 << 53) + 1

# Drives with extreme values: counters that no double holds, as few answers as possible, no texts.
LIMITS = {"controllers": [
    {"location": "0000:01:00.0",
     "identify": {"vendorId": 1, "model": "M", "serial": "LARGEST"},
     "namespace": {"blocks": LARGEST, "blockSize": 512},
     "health": {"temperature": -272, "criticalWarning": 31, "spare": 0, "threshold": 0, "dataUnitsRead": LARGEST,
                "dataUnitsWritten": LARGEST, "powerOnHours": LARGEST, "mediaErrors": SMALLEST_INEXACT,
                "powerCycles": LARGEST, "unsafeShutdowns": SMALLEST_INEXACT, "temperatureSensor8": 727}},
    {"location": "0000:02:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "SILENT"}},
    {"location": "0000:03:00.0", "identify": {"vendorId": 32902, "model": "INTEL SSDPE2KX020T8", "serial": "RATED"},
     "health": {"temperature": 30, "dataUnitsWritten": LARGEST, "powerOnHours": 1000}},
    {"identify": {"vendorId": 1, "model": "", "serial": ""}, "health": {"temperature": 0}},
    {"identify": "ff" * 4096, "namespace": "ff" * 128, "health": "ff" * 512}]}


def run(*words):
    return subprocess.run([PROGRAM, *words], capture_output=True, text=True, env={}, timeout=60)


def places(value, path=()):
    """Every value in a document, with the path to it."""
    yield path, value
    for key, each in value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else ():
        yield from places(each, (*path, key))


def shape(value):
    """The members and types of a value, without what they hold. Values of one shape have one place in a schema."""
    if isinstance(value, dict):
        return tuple((key, shape(each)) for key, each in value.items())
    if isinstance(value, list):
        return list, frozenset(map(shape, value))
    return type(value)


def one_of_each_shape(value):
    """The document with only the first element of each shape in each of its lists."""
    if isinstance(value, dict):
        return {key: one_of_each_shape(each) for key, each in value.items()}
    if isinstance(value, list):
        return list({shape(each): one_of_each_shape(each) for each in reversed(value)}.values())
    return value


def changed(document, path, change):
    """A copy of the document in which `change` was called on the object that holds the last step of the path."""
    result = copy.deepcopy(document)
    holder = result
    for step in path[:-1]:
        holder = holder[step]
    change(holder, path[-1])
    return result


def replace(holder, step):
    holder[step] = {"of another": "type"}


class Documents(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.limits = str(pathlib.Path(cls.folder.name) / "limits.json")
        pathlib.Path(cls.limits).write_text(json.dumps(LIMITS))
        cls.empty = str(pathlib.Path(cls.folder.name) / "empty.json")
        pathlib.Path(cls.empty).write_text('{"controllers": []}')

    def document(self, schema, *words, fleet=DEMO, code=0):
        """The program's document. It must fit the schema and begin with its format."""
        result = run(*words, "--simulate", fleet, "--json")
        self.assertEqual(result.returncode, code, result.stderr)
        document = json.loads(result.stdout)
        self.assertEqual(schemas.wrong(schema, document), [])
        self.assertEqual(next(iter(document)), "format")
        self.assertIs(document["simulated"], True)
        return document

    def error(self, *words, fleet=DEMO, code):
        document = self.document("error", *words, fleet=fleet, code=code)
        self.assertIn(document["error"]["message"].splitlines()[0],
                      run(*words, "--simulate", fleet, "--json").stderr)
        return document["error"]

    def test_results(self):
        for fleet in DEMO, self.limits:
            for command in "list", "topology":
                self.document(command, command, fleet=fleet)
        properties = {(each["type"], one["id"], shape(one)): (each["id"], str(one["id"]))
                      for thing in ("plugin", "nvme0n1", "nvme6n1", "DEMO-0006")
                      for each in self.document("show", "show", thing)["objects"]
                      for one in each["properties"]}
        for words in properties.values():
            self.document("property", "show", *words)
        self.document("property", "set", "plugin", "pollinterval", "60", "--data", self.folder.name)
        (end,) = self.document("show", "show", "RATED", fleet=self.limits)["endOfLife"]
        self.assertEqual(end["limit"], "writing")
        self.document("check", "check", code=2)
        self.document("check", "check", fleet=self.limits, code=2)
        self.document("doctor", "doctor")
        self.document("doctor", "doctor", fleet=self.limits, code=1)
        self.document("doctor", "doctor", fleet=self.empty, code=3)

    def test_failures(self):
        refused = self.error("list", fleet=self.empty, code=3)
        self.assertEqual((refused["request"], refused["code"], refused["name"]),
                         (1, 20001, "ERR_NO_SUPPORTED_HARDWARE"))
        self.assertEqual(self.error("topology", "--plugin", REFUSING_PLUGIN, code=1)["request"], 4)
        for words in ((), ("lst",), ("show",), ("list", "--colour"), ("show", "plugin", "none"), ("list", "--trace", "x"), ("list", "--trace", "1", "--trace-file", "/no/such/file")):
            self.assertNotIn("request", self.error(*words, code=2), words)
        self.error("show", "no such", code=5)
        self.error("list", "--plugin", "/no/such.so", code=1)
        self.error("list", "--data", "/dev/null/x", code=2)
        self.error("list", fleet="/no/such/fleet", code=2)
        for words, fleet in ((("check",), self.empty), (("check", "none"), DEMO), (("check", "--colour"), DEMO)):
            self.assertIn("error", self.document("check", *words, fleet=fleet, code=3))
        self.assertEqual(run("list", "--json=false").returncode, 2)

    def test_members_that_tell_what_a_row_is_worth(self):
        fleet = str(pathlib.Path(self.folder.name) / "segments.json")
        pathlib.Path(fleet).write_text(json.dumps({"controllers": [
            {"location": "10000:02:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "SILENT"}}]}))
        (drive,) = self.document("list", "list", fleet=fleet)["drives"]
        self.assertEqual((drive["healthLogRead"], drive["locationIsReal"], drive["pciAddress"], drive["health"]),
                         (False, False, "10000:02:00.0", "Unknown"))
        show = self.document("show", "show", "10000:02:00.0", fleet=fleet)
        adapter, medium = show["objects"]
        self.assertEqual((adapter["healthLogRead"], adapter["locationIsReal"], adapter["pciAddress"]),
                         (False, False, "10000:02:00.0"))
        self.assertIn("Unknown", [each["text"] for each in show["explanations"]])
        self.assertIs(self.document("property", "show", adapter["id"], "30017", fleet=fleet)["property"]["measured"],
                      False)
        rated = self.document("list", "list")["drives"][0]
        self.assertEqual(rated["endOfLife"]["object"], rated["adapterId"])
        self.assertGreater(rated["dataWrittenBytes"], 0)

    def test_silent_drives(self):
        fleet = str(pathlib.Path(self.folder.name) / "silent.json")
        pathlib.Path(fleet).write_text(json.dumps({"controllers": [
            {"identify": {"vendorId": 1, "model": "M", "serial": "A"}},
            {"location": "0000:02:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "B", "firmware": "F"},
             "fails": ["identifyController"]}]}))
        self.assertIs(self.document("list", "list", fleet=fleet)["drives"][1]["answering"], False)
        (unheard,) = self.document("topology", "topology", fleet=fleet)["unheardDrives"]
        self.assertEqual((unheard["serial"], unheard["firmware"]), ("B", "F"))
        self.assertEqual(self.document("check", "check", fleet=fleet, code=2)["drives"][1]["key"], "B")

    def test_numbers_stay_exact(self):
        drive = self.document("list", "list", fleet=self.limits)["drives"][0]
        self.assertEqual((drive["powerOnHours"], drive["powerOnHoursText"]), (LARGEST, str(LARGEST)))
        self.assertEqual((drive["mediaErrors"], drive["mediaErrorsText"]), (SMALLEST_INEXACT, str(SMALLEST_INEXACT)))
        self.assertNotIn("capacityMiBText", drive)
        self.assertEqual((drive["powerCycles"], drive["powerCyclesText"]), (LARGEST, str(LARGEST)))
        self.assertEqual((drive["unsafeShutdowns"], drive["temperatureSensor8"]), (SMALLEST_INEXACT, 727))
        hours = self.document("property", "show", "LARGEST", "30498", fleet=self.limits)["property"]
        self.assertEqual((hours["value"], hours["valueText"]), (LARGEST, str(LARGEST)))

    def test_pages_of_ones_tell_no_counters(self):
        drive = self.document("list", "list", fleet=self.limits)["drives"][-1]
        self.assertEqual(drive["percentageUsed"], 255)
        for member in drive:
            self.assertNotRegex(member, "powerCycles|temperatureSensor|Minutes|thermal|Temperature|Version$|Capacity")
        (facts,) = self.document("show", "show", drive["device"], fleet=self.limits)["facts"]
        self.assertEqual((facts["percentageUsed"], facts["object"]), (255, drive["adapterId"]))

    def news(self, fleet):
        """The documents that watch prints at its start, one on each line. Each must fit the schema."""
        result = run("watch", "--for", "0", "--data", self.folder.name, "--simulate", fleet, "--json")
        self.assertEqual(result.returncode, 0, result.stderr)
        documents = [json.loads(line) for line in result.stdout.splitlines()]
        for document in documents:
            self.assertEqual(schemas.wrong("news", document), [])
            self.assertEqual(next(iter(document)), "format")
        return documents

    def test_news(self):
        self.assertEqual([each["drive"]["device"] for each in self.news(DEMO)],
                         ["/dev/nvme1n1"] * 2 + ["/dev/nvme6n1"] * 6)
        self.assertIn("read-only", [each["kind"] for each in self.news(self.limits)])

    def test_schemas_notice_what_is_wrong(self):
        event = {"format": 1, "time": "2026-01-01T00:00:00.000Z", "id": 11093, "severity": 2, "text": "x was added.",
                 "source": "0x0000000000004a3a", "sourceName": "x", "placeholder1": "x", "placeholder2": "",
                 "drive": {"device": "/dev/nvme0n1", "serial": "S"}}
        self.assertEqual(schemas.wrong("event", event), [])
        entry = {"format": 1, "number": 1, "time": "2026-01-01T00:00:00.000Z", "kind": "read-only", "phase": "began",
                 "severity": 4, "text": "x", "begin": "2026-01-01T00:00:00.000Z", "event": 1, "key": "S",
                 "drive": {"device": "/dev/nvme0n1", "serial": "S"}}
        self.assertEqual(schemas.wrong("entry", entry), [])
        whole = self.document("list", "list")
        documents = [("event", event),
                     ("news", next(each for each in self.news(DEMO) if "event" in each)),
                     ("entry", entry),
                     ("list", {**whole, "drives": whole["drives"][:2]}),
                     ("topology", {"format": 1, "objects": self.document("topology", "topology")["objects"][:2]}),
                     ("show", self.document("show", "show", "nvme6n1")),
                     ("property", self.document("property", "show", "plugin", "30005")),
                     ("check", self.document("check", "check", "nvme6n1", code=2)),
                     ("doctor", self.document("doctor", "doctor", fleet=self.limits, code=1)),
                     ("error", self.document("error", "list", fleet=self.empty, code=3))]
        for name, document in documents:
            document = one_of_each_shape(document)
            for path, value in places(document):
                with self.subTest(schema=name, path=path):
                    if path:
                        self.assertTrue(schemas.wrong(name, changed(document, path, replace)))
                    if isinstance(value, dict):
                        later = changed(document, (*path, "unknown"), replace)
                        self.assertTrue(schemas.wrong(name, later))
                        self.assertTrue(schemas.fits(name, later), "members may be added")
            for required in schemas.SCHEMAS[name]["required"]:
                self.assertTrue(schemas.wrong(name, {k: v for k, v in document.items() if k != required}), required)
        self.assertEqual({name for name, _ in documents}, set(schemas.SCHEMAS) - {"fleet"})

    def test_schemas_are_schemas(self):
        for name, schema in schemas.SCHEMAS.items():
            with self.subTest(schema=name):
                jsonschema.Draft202012Validator.check_schema(schema)
                self.assertRegex(schema["$id"], rf"^https://[a-z./]+/schemas/1/{name}\.json$")

    def test_each_schema_is_whole_by_itself(self):
        """every schema is complete in itself, and definitions that several have are equal"""
        shared = {}
        for name, schema in schemas.SCHEMAS.items():
            used = {value for path, value in places(schema) if path and path[-1] == "$ref"}
            defined = schema.get("$defs", {})
            self.assertEqual(used, {f"#/$defs/{key}" for key in defined}, name)
            for key, definition in defined.items():
                self.assertEqual(shared.setdefault(key, definition), definition, (name, key))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
