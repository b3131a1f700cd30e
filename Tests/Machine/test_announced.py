"""Drives that come, go and warn between two polls of `ostrel watch` and are announced by the kernel."""

import datetime
import json
import unittest

import session
from drives import MIB, Controller, Namespace

# It has a warning from the start. Its line shows that the watch has begun.
KEPT = Controller("kept", "KEPT", size=64 * MIB, options={"smart_critical_warning": 8})
ONE = Controller("one", "ONE", size=64 * MIB)
OTHER = Controller("other", "OTHER", size=64 * MIB)
# Its namespace can be detached from it.
BARE = Controller("bare", "BARE", namespaces=(Namespace(1, 64 * MIB, {"shared": False}),), subsystem="shelf")
COMING = Controller("coming", "COMING", size=64 * MIB)
ADDED, REMOVED = 11093, 11094
# Critical warnings of `KEPT` and the event of each.
WARNINGS = {"warned-1": (0x0C, 11088), "warned-2": (0x1C, 10957)}
ROUNDS = 5
STORM = 1000
SCAN = "m_ForceWorker event received, force scan"
# In the guest's own time, which counts instructions. So it does not matter how busy this machine is.
CLOCK = ("-icount", "shift=1,sleep=off", "-rtc", "clock=vm")
WITHIN = 1.0
# This one follows so soon on another announcement that it waits almost a second for its scan.
LATER = {"filled": 1.2}


def seconds(text):
    """A time such as "2026-01-01 00:00:00.123456789 +0000" or "2026-01-01T00:00:00.123Z", in seconds."""
    whole, _, fraction = text.replace("T", " ").partition(".")
    digits = fraction.rstrip("Z").split(" ")[0]
    moment = datetime.datetime.strptime(whole, "%Y-%m-%d %H:%M:%S").replace(tzinfo=datetime.timezone.utc)
    return moment.timestamp() + float(f"0.{digits}")


def steps():
    """
    Each step and its expected events: a drive is plugged in, pulled, and exchanged for another at once. A controller
    gets its namespace after a scan. A drive warns before and after a storm of announcements.
    """
    present, absent = "ONE", "OTHER"
    for number in range(1, ROUNDS + 1):
        yield f"plugged-{number}", {(ADDED, "COMING")}
        yield f"unplugged-{number}", {(REMOVED, "COMING")}
        yield f"exchanged-{number}", {(REMOVED, present), (ADDED, absent)}
        present, absent = absent, present
    yield "filled", {(ADDED, "BARE")}
    for step, (_, event) in WARNINGS.items():
        yield step, {(event, "KEPT")}


class Announced(unittest.TestCase):
    """Drives that are plugged in, pulled and exchanged, that fill and warn, with a minute from poll to poll."""

    @classmethod
    def setUpClass(cls):
        with session.boot("announced", (KEPT, ONE, OTHER, BARE), later=(COMING,), options=CLOCK) as guest:
            guest.await_event("watching")
            for step, expected in steps():
                if step.startswith("plugged"):
                    guest.plug(COMING)
                elif step.startswith("unplugged"):
                    guest.unplug(COMING)
                elif step in WARNINGS:
                    guest.go(f"before-{step}")
                    guest.await_event("listening")
                    guest.warn(KEPT, WARNINGS[step][0])
                else:
                    guest.go(f"before-{step}")
                for _ in expected:
                    guest.await_event("seen")
                guest.go(step)
                guest.await_event(step)
            cls.files = guest.results()
        lines = [json.loads(line) for line in cls.files["watch.out"].splitlines()]
        cls.events = [line for line in lines if line.get("phase") != "present"]

    def by_step(self):
        """Each step with its expected events and those that came."""
        events = iter(self.events)
        return [(step, expected, [event for _, event in zip(expected, events)]) for step, expected in steps()]

    def moment(self, name):
        """A time that the job stored."""
        return seconds(self.files[f"announced/{name}"].decode().strip())

    def scans(self, begin, end):
        """The times at which announcements made the worker scan between these steps."""
        lines = self.files["trace"].decode().splitlines()
        times = [seconds(line.split()[0]) for line in lines if line.endswith(SCAN)]
        return [time for time in times if self.moment(begin) <= time <= self.moment(end)]

    def test_once(self):
        """each arrival, departure and warning is reported once"""
        self.assertEqual(len(self.events), sum(len(expected) for _, expected in steps()))
        for step, expected, events in self.by_step():
            self.assertEqual({(event.get("id"), event["drive"]["serial"]) for event in events}, expected, step)

    def test_soon(self):
        """... and within a second of the kernel's announcement"""
        late = {}
        for step, _, events in self.by_step():
            late[step] = max(seconds(event["time"]) - self.moment(step) for event in events)
        print(f"      told after {', '.join(f'{each:.2f}' for each in late.values())} s")
        self.assertEqual({step: delay for step, delay in late.items() if delay > LATER.get(step, WITHIN)}, {})

    def test_exchange(self):
        """an exchange took place within one second"""
        for number in range(1, ROUNDS + 1):
            self.assertLess(self.moment(f"exchanged-{number}") - self.moment(f"pulled-{number}"), 1)

    def test_bare(self):
        """a controller without a namespace made a scan, which reported nothing"""
        self.assertNotEqual(self.scans("bare", "filled"), [])
        told = [seconds(event["time"]) for event in self.events if event["drive"]["serial"] == "BARE"]
        self.assertEqual([time for time in told if time < self.moment("filled")], [])

    def test_storm(self):
        """a storm of announcements makes a handful of scans, one a second at most"""
        self.assertEqual(int(self.files["storm"]), STORM)
        scans = self.scans("storm", "calm")
        print(f"      {STORM} announcements in {self.moment('calm') - self.moment('storm'):.1f} s: {len(scans)} scans")
        self.assertIn(len(scans), range(1, 8))
        self.assertEqual([gap for gap in map(float.__sub__, scans[1:], scans) if gap < 0.9], [])

    def test_end(self):
        """the watch ends well and without a message but the one that belongs to a trace"""
        self.assertEqual((self.files["watch.code"].strip(), self.files["watch.err"]),
                         (b"0", b"Ostrel:  Initialize:  adapter count is 2\n"))
