"""Drives that come and go between two polls of `ostrel watch` and are announced by the kernel."""

import datetime
import json
import unittest

import session
from drives import MIB, Controller

# It has a warning from the start. Its line shows that the watch has begun.
KEPT = Controller("kept", "KEPT", size=64 * MIB, options={"smart_critical_warning": 8})
ONE = Controller("one", "ONE", size=64 * MIB)
OTHER = Controller("other", "OTHER", size=64 * MIB)
COMING = Controller("coming", "COMING", size=64 * MIB)
ADDED, REMOVED = 11093, 11094
ROUNDS = 5
# In the guest's own time, which counts instructions. So it does not matter how busy this machine is.
CLOCK = ("-icount", "shift=1,sleep=off", "-rtc", "clock=vm")
WITHIN = 1.0


def seconds(text):
    """A time such as "2026-01-01 00:00:00.123456789 +0000" or "2026-01-01T00:00:00.123Z", in seconds."""
    whole, _, fraction = text.replace("T", " ").partition(".")
    digits = fraction.rstrip("Z").split(" ")[0]
    moment = datetime.datetime.strptime(whole, "%Y-%m-%d %H:%M:%S").replace(tzinfo=datetime.timezone.utc)
    return moment.timestamp() + float(f"0.{digits}")


def steps():
    """Each step and its expected events: a drive is plugged in, pulled, and exchanged for another at once."""
    present, absent = "ONE", "OTHER"
    for number in range(1, ROUNDS + 1):
        yield f"plugged-{number}", {(ADDED, "COMING")}
        yield f"unplugged-{number}", {(REMOVED, "COMING")}
        yield f"exchanged-{number}", {(REMOVED, present), (ADDED, absent)}
        present, absent = absent, present


class Announced(unittest.TestCase):
    """Drives that are plugged in, pulled and exchanged again and again, with a minute from poll to poll."""

    @classmethod
    def setUpClass(cls):
        with session.boot("announced", (KEPT, ONE, OTHER), later=(COMING,), options=CLOCK) as guest:
            guest.await_event("watching")
            for step, expected in steps():
                change, number = step.split("-")
                if change == "plugged":
                    guest.plug(COMING)
                elif change == "unplugged":
                    guest.unplug(COMING)
                else:
                    guest.go(f"exchange-{number}")
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

    def test_once(self):
        """each arrival and each departure is reported once"""
        self.assertEqual(len(self.events), sum(len(expected) for _, expected in steps()))
        for step, expected, events in self.by_step():
            self.assertEqual({(event.get("id"), event["drive"]["serial"]) for event in events}, expected, step)

    def test_soon(self):
        """... and within a second of the kernel's announcement"""
        late = {}
        for step, _, events in self.by_step():
            announced = seconds(self.files[f"announced/{step}"].decode().strip())
            late[step] = max(seconds(event["time"]) - announced for event in events)
        print(f"      told after {', '.join(f'{each:.2f}' for each in late.values())} s")
        self.assertEqual({step: delay for step, delay in late.items() if delay > WITHIN}, {})

    def test_end(self):
        """the watch ends well and without a message"""
        self.assertEqual((self.files["watch.code"].strip(), self.files["watch.err"]), (b"0", b""))
