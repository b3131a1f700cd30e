"""Controllers that hang while `ostrel watch` and other looks run."""

import dataclasses
import json
import unittest

import schemas
import session
from drives import MIB, Controller
from test_announced import seconds

# It has a warning from the start. Its line shows that the watch has begun.
KEPT = Controller("kept", "KEPT", size=64 * MIB, options={"smart_critical_warning": 2})
HANGS = Controller("hangs", "HANGS", size=64 * MIB)
PULLED = Controller("pulled", "PULLED", size=64 * MIB)
VANISHED = Controller("vanished", "VANISHED", size=64 * MIB)
SWAPPED = Controller("swapped", "SWAPPED", size=64 * MIB)
# It takes the place of another one.
NEWCOMER = dataclasses.replace(SWAPPED, serial="NEWCOMER")
OTHERS = (KEPT, PULLED, SWAPPED, VANISHED, *(Controller(name.lower(), name, size=64 * MIB)
                                         for name in ("ONE", "TWO", "THREE")))
FLEET = (OTHERS[0], HANGS, *OTHERS[1:])
ADDED, REMOVED, WARNED = 11093, 11094, 11088
SILENT = "does-not-answer"
# The kernel's own commands do not wait longer, either.
SETTINGS = ("nvme_core.admin_timeout=12",)
# In the guest's own time, which counts instructions and does not run ahead of the test's.
CLOCK = ("-icount", "shift=1,sleep=on", "-rtc", "clock=vm")
INTERVAL, DEADLINE = 2, 5
# Twice what is promised, because the emulated machine is slow.
ROOM = 2
# The expected lines of each step, in order; those of one set in any order.
STEPS = {
    "looked": [{("began", "HANGS")}, {("ended", "HANGS")}],
    "answered": [{("began", "HANGS")}, {(WARNED, drive.serial) for drive in OTHERS}, {("ended", "HANGS")}],
    "unplugged": [{("began", "PULLED")}, {(REMOVED, "PULLED")}],
    "exchanged": [{("began", "SWAPPED")}, {(REMOVED, "SWAPPED"), (ADDED, "NEWCOMER")}],
    "vanished": [{(REMOVED, "VANISHED")}],
    "terminated": [{("began", "HANGS")}],
}
# It may be told, because this drive goes in the middle of a round.
MAYBE = ("began", "VANISHED")


def told(line):
    """A line in the form of `STEPS`."""
    return (line["id"] if "id" in line else line["phase"], line["drive"]["serial"])


class Hung(unittest.TestCase):
    """Eight drives. One hangs and answers again, two are unplugged meanwhile, and one is exchanged meanwhile."""

    @classmethod
    def setUpClass(cls):
        with session.boot("hung", FLEET, options=CLOCK, settings=SETTINGS) as guest:
            def await_lines(lines):
                left = set(lines)
                while left:
                    left.discard(told(json.loads(guest.await_event("seen"))))

            guest.await_event("watching")
            guest.go("looked")
            for lines in STEPS["looked"]:
                await_lines(lines)

            silent, warned, again = STEPS["answered"]
            guest.go("answered")
            await_lines(silent)
            for drive in OTHERS:
                guest.warn(drive, 0x06 if drive is KEPT else 0x04)
            await_lines(warned)
            await_lines(again)

            silent, removed = STEPS["unplugged"]
            guest.go("unplugged")
            await_lines(silent)
            guest.unplug(PULLED)
            await_lines(removed)

            silent, exchanged = STEPS["exchanged"]
            guest.go("exchanged")
            await_lines(silent)
            guest.unplug(SWAPPED)
            guest.plug(NEWCOMER)
            await_lines(exchanged)

            guest.go("vanished")
            guest.await_event("waiting")
            guest.unplug(VANISHED)
            await_lines(*STEPS["vanished"])

            guest.go("terminated")
            cls.files = guest.results()
        cls.lines = [json.loads(line) for line in cls.files["watch.out"].splitlines()]

    def output(self, name, code):
        """What a look printed. It ended with this code."""
        self.assertEqual(int(self.files[f"ostrel/{name}.code"]), code, self.files[f"ostrel/{name}.err"])
        return self.files[f"ostrel/{name}.out"].decode()

    def document(self, name, code, schema):
        document = json.loads(self.output(name, code))
        self.assertEqual(schemas.wrong(schema, document), [])
        return document

    def test_lines(self):
        """silence, answers, warnings of the seven others, unplugging and exchange are told once each, in order"""
        left = [told(line) for line in self.lines]
        self.assertEqual(left.pop(0), ("present", "KEPT"))
        if MAYBE in left:
            left.remove(MAYBE)
        for step, groups in STEPS.items():
            for group in groups:
                self.assertEqual(sorted(map(str, left[:len(group)])), sorted(map(str, group)), step)
                del left[:len(group)]
        self.assertEqual(left, [])

    def test_documents(self):
        """each line fits its schema, and says what it is about"""
        for line in self.lines:
            self.assertEqual(schemas.wrong("event" if "id" in line else "news", line), [])
        kinds = {line["kind"] for line in self.lines if line.get("phase") in ("began", "ended")}
        self.assertEqual(kinds, {SILENT})

    def test_soon(self):
        """a silent drive is told as soon as its time in a round is over"""
        for step in (step for step, groups in STEPS.items() if "began" in dict(groups[0])):
            hung = seconds(self.files[f"hung/{step}"].decode().strip())
            told_at = next(seconds(line["time"]) for line in self.lines
                           if line.get("phase") == "began" and seconds(line["time"]) > hung)
            print(f"      {step}: told after {told_at - hung:.2f} s")
            self.assertLess(told_at - hung, INTERVAL + DEADLINE + 1, step)

    def test_meanwhile(self):
        """a round waits no more for a drive that is known to be silent: the others are read at the next interval"""
        warned = [seconds(line["time"]) for line in self.lines if line.get("id") == WARNED]
        silent = max(seconds(line["time"]) for line in self.lines
                     if line.get("phase") == "began" and seconds(line["time"]) < warned[0])
        print(f"      warnings told {warned[-1] - silent:.2f} s after the silence")
        # The test may be too late for the first interval.
        self.assertLess(warned[-1] - silent, 2 * INTERVAL + 0.5)

    def test_looks(self):
        """other looks show the silent drive by what the kernel knows of it, and the others whole"""
        drives = {drive["serial"]: drive for drive in self.document("list-json", 0, "list")["drives"]}
        self.assertEqual(set(drives), {drive.serial for drive in FLEET})
        for serial, drive in drives.items():
            self.assertEqual(drive["answering"], serial != "HANGS", serial)
            self.assertEqual("health" in drive, serial != "HANGS", serial)
        self.assertNotIn("lastAnswer", drives["HANGS"])
        self.assertRegex(drives["HANGS"]["device"], "^/dev/nvme[0-9]+n1$")
        self.assertEqual(drives["HANGS"]["model"], drives["ONE"]["model"])

        said = {check["subject"]: check for check in self.document("doctor", 1, "doctor")["checks"]}
        self.assertIn("does not answer", said["nvme1n1"]["message"])
        self.assertEqual(self.output("show", 1), "")
        self.assertIn("nvme1n1 does not answer", self.files["ostrel/show.err"].decode())
        for name, count in (("list", 1), ("check", 1), ("check-hung", 1), ("check-other", 0)):
            shown = self.files[f"ostrel/{name}.out"].decode()
            self.assertEqual(shown.count("does not answer"), count, shown)

    def test_check(self):
        """check is critical for the silent drive and for all, but not for another drive"""
        document = self.document("check-json", 2, "check")
        states = {drive["key"]: drive["state"] for drive in document["drives"]}
        self.assertEqual(states["HANGS"], 2)
        del states["HANGS"]
        self.assertNotIn(2, states.values())
        self.assertEqual((document["state"], states["ONE"]), (2, 0))
        self.assertEqual(self.output("check", 2).split()[1], "CRITICAL:")
        self.assertEqual(self.output("check-hung", 2).split()[1], "CRITICAL:")
        self.assertEqual(self.output("check-other", 0).split()[1], "OK:")

    def test_end(self):
        """a signal ends the watch well and soon while a drive hangs, and leaves only the reader behind"""
        for name, messages in (("terminated", "watch.err"), ("interrupted", "interrupted.err")):
            before, after = map(float, self.files[f"hung/{name}.times"].split())
            print(f"      {name}: ended {after - before:.2f} s after the signal, in the guest's time")
            self.assertEqual((self.files[f"hung/{name}.code"].strip(), self.files[messages]), (b"0", b""), name)
            self.assertLess(after - before, ROOM, name)
        self.assertEqual(len(self.files["hung/left"].split()), 1)
        phases = {json.loads(line)["phase"] for line in self.files["interrupted.out"].splitlines()}
        self.assertEqual(phases, {"present"})
