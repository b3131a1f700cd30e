"""A machine that changes while `ostrel watch` runs in it."""

import json
import unittest

import inventory
import schemas
import session
from drives import MIB, Controller

KEPT = Controller("kept", "KEPT", size=64 * MIB, options={"use-intel-id": True, "smart_critical_warning": 8})
WARNED = Controller("warned", "WARNED", size=64 * MIB)
GOING = Controller("going", "GOING", size=64 * MIB)
COMING = Controller("coming", "COMING", size=64 * MIB)

ADDED, REMOVED = 11093, 11094
HOST = "0x0000000000004a3a"
# The expected lines at the start of the watch: kind, phase and drive.
PRESENT = [("read-only", "present", "KEPT")]
# The expected lines of each step, in order: first the plug-in's events (event, severity and drive), then changes
# without an event (kind, phase and drive).
STEPS = {
    "warned-04": [(11088, 3, "WARNED")],
    "warned-14": [(10957, 4, "WARNED")],
    # A warning that clears while another one stays.
    "warned-05": [(10968, 4, "WARNED"), ("memory-backup-failed", "ended", "WARNED")],
    "warned-00": [(10980, 2, "WARNED")],
    # Warnings that have no event.
    "warned-0a": [("read-only", "began", "WARNED"), ("over-temperature", "began", "WARNED")],
    "warned-02": [("read-only", "ended", "WARNED")],
    "unplugged": [(REMOVED, 3, "GOING")],
    "plugged": [(ADDED, 2, "COMING")],
    "set": [],
    # Several at once are handed over in reverse order of their creation.
    "warned-15": [(10968, 4, "WARNED"), (11088, 3, "WARNED"), (10957, 4, "WARNED"),
                  ("over-temperature", "ended", "WARNED")],
}


def told(line):
    """A line in the form of `STEPS`."""
    what = (line["id"], line["severity"]) if "id" in line else (line["kind"], line["phase"])
    return (*what, line["drive"]["serial"])


class Watch(unittest.TestCase):
    """Warnings are raised and cleared, a drive is unplugged, another is plugged in, and a setting changes."""

    @classmethod
    def setUpClass(cls):
        with session.boot("watch", (KEPT, WARNED, GOING), later=(COMING,)) as guest:
            guest.await_event("watching")
            for step, expected in STEPS.items():
                if step.startswith("warned"):
                    guest.warn(WARNED, int(step.split("-")[1], 16))
                elif step == "unplugged":
                    guest.unplug(GOING)
                elif step == "plugged":
                    guest.plug(COMING)
                for _ in expected:
                    guest.await_event("seen")
                guest.go(step)
                guest.await_event(step)
            cls.files = guest.results()
        cls.lines = [json.loads(line) for line in cls.files["watch.out"].splitlines()]

    def serials(self, step, table):
        return sorted(row["SerialNumber"] for row in json.loads(self.files[f"{step}/{table}.json"]))

    def test_lines(self):
        """what is wrong at the start, and each change, is reported exactly once, in order, with its drive"""
        self.assertEqual([told(line) for line in self.lines], [*PRESENT, *(line for step in STEPS.values()
                                                                           for line in step)])
        self.assertEqual(sorted(line["time"] for line in self.lines), [line["time"] for line in self.lines])

    def test_documents(self):
        """each line fits its schema, and an event names its source"""
        for line in self.lines:
            self.assertEqual(schemas.wrong("event" if "id" in line else "news", line), [])
        for event in self.lines:
            if "id" not in event:
                continue
            comes_or_goes = event["id"] in (ADDED, REMOVED)
            self.assertEqual(event["source"] == HOST, comes_or_goes, event)
            self.assertEqual(event["placeholder2"], " " if comes_or_goes else "", event)
            self.assertEqual(event["placeholder1"], event["sourceName"], event)

    def test_health(self):
        """health and its reasons follow the warnings"""
        for step in STEPS:
            if not step.startswith("warned"):
                continue
            document = json.loads(self.files[f"ostrel/list-{step}.out"])
            self.assertEqual(schemas.wrong("list", document), [], step)
            drives = document["drives"]
            (drive,) = [each for each in drives if each["serial"] == "WARNED"]
            code, reasons = inventory.health(int(step.split("-")[1], 16))
            self.assertEqual((drive["healthCode"], drive.get("reasonCodes", [])), (code, reasons), step)

    def test_rows(self):
        """the rows of what was plugged in appear, those of what was unplugged are gone, with its drive's"""
        for table in ("Adapter", "PD"):
            self.assertEqual(self.serials("warned-00", table), ["GOING", "KEPT", "WARNED"])
            self.assertEqual(self.serials("unplugged", table), ["KEPT", "WARNED"])
            for step in ("plugged", "set", "end"):
                self.assertEqual(self.serials(step, table), ["COMING", "KEPT", "WARNED"])
        for step in (*STEPS, "end"):
            self.assertEqual(self.files[f"{step}/integrity"], b"ok\n")

    def test_numbers(self):
        """a drive in a new place gets the next number, by which it is named, and the number is kept"""
        (row,) = [row for row in json.loads(self.files["plugged/Adapter.json"]) if row["SerialNumber"] == "COMING"]
        self.assertEqual((row["AdapterNumber"], row["Name"]), (4, "NVMe PCI Adapter (4)"))
        numbers = [line.split()[0] for line in self.files["numbers"].decode().splitlines() if line[0] != "#"]
        self.assertEqual(sorted(numbers), ["1", "2", "3", "4"])

    def test_set(self):
        """set writes the settings of the folder that watch runs on"""
        self.assertEqual(self.files["ostrel/set.code"].strip(), b"0", self.files["ostrel/set.err"])
        document = json.loads(self.files["ostrel/set.out"])
        self.assertEqual(schemas.wrong("property", document), [])
        self.assertEqual(document["property"]["value"], 60)
        self.assertEqual(self.files["ini"], b"PollInterval=60\n")
        names = [row["Name"] for row in json.loads(self.files["set/Adapter.json"])]
        self.assertEqual(sorted(names), [f"NVMe{maker} PCI Adapter ({number})"
                                         for maker, number in ((" Intel", 1), ("", 2), ("", 4))])

    def test_end(self):
        """a termination signal ends it well and soon, and it printed no message"""
        self.assertEqual(self.files["watch.code"].strip(), b"0", self.files["watch.err"])
        self.assertEqual(self.files["watch.err"], b"")
        before, after = map(float, self.files["ending"].split())
        print(f"      ended {after - before:.2f} s after the signal, in the guest's time")
