"""ostrel while commands to a drive fail: it must not report what it has not read."""

import json
import unittest

import schemas
import session
from drives import MIB, Controller

FIRST = Controller("first", "FIRST", size=64 * MIB)
SICK = Controller("sick", "SICK", size=64 * MIB, options={"smart_critical_warning": 4})
LAST = Controller("last", "LAST", size=64 * MIB)
FLEET = (FIRST, SICK, LAST)

# The runs of watch; the job says which commands fail in each.
WATCHES = ("watch-3+3", "watch-2+3", "watch-1")
# The warnings set on the last drive meanwhile, and the event of each. Each needs another round of the worker.
STEPS = ((0x04, 11088), (0x05, 10968), (0x00, 10980))


class Faults(unittest.TestCase):
    """Three drives; strace makes commands to one of them fail."""

    @classmethod
    def setUpClass(cls):
        with session.boot("faults", FLEET) as guest:
            for watch in WATCHES:
                guest.await_event("watching")
                for bits, _ in STEPS:
                    guest.warn(LAST, bits)
                    guest.await_event("seen")
                guest.go(watch)
            cls.files = guest.results()

    def injected(self, name):
        """How many commands failed in a run."""
        return self.files[f"strace-{name}"].count(b"(INJECTED)")

    def output(self, name):
        self.assertEqual(self.files[f"ostrel/{name}.code"].strip(), b"0", self.files[f"ostrel/{name}.err"])
        self.assertGreater(self.injected(name), 0)
        return self.files[f"ostrel/{name}.out"].decode()

    def drives(self, name):
        document = json.loads(self.output(name))
        self.assertEqual(schemas.wrong("list", document), [])
        return {drive["serial"]: drive for drive in document["drives"]}

    def address(self, serial):
        return self.files[f"sysfs/{serial}/address"].decode().strip()

    def test_watch(self):
        """a warning is reported once at the start, and a failed command neither clears nor repeats it"""
        for watch in WATCHES:
            with self.subTest(watch):
                self.assertEqual(self.files[f"{watch}.code"].strip(), b"0", self.files[f"{watch}.err"])
                self.assertEqual(self.files[f"{watch}.err"], b"")
                self.assertGreater(self.injected(watch), 0)
                # A command that fails may be Identify. Then the drive does not answer, which is told as such.
                lines = [line for line in map(json.loads, self.files[f"{watch}.out"].splitlines())
                         if (line.get("kind"), line["drive"]["serial"]) != ("does-not-answer", "SICK")]
                self.assertEqual([(each.get("phase"), each.get("kind"), each.get("id"), each["drive"]["serial"])
                                  for each in lines],
                                 [("present", "reliability-degraded", None, "SICK"),
                                  *((None, None, event, "LAST") for _, event in STEPS)])

    def test_unread_list(self):
        """list shows an unknown health for a drive whose health log was never read, and the right one for the others"""
        drives = self.drives("list-unread")
        self.assertEqual(sorted(drives), ["FIRST", "LAST", "SICK"])
        sick = drives["SICK"]
        self.assertEqual((sick["healthLogRead"], sick["health"]), (False, "Unknown"))
        for member in ("healthCode", "temperature", "spare", "spareThreshold", "mediaErrors", "powerOnHours",
                       "dataRead", "endOfLife"):
            self.assertNotIn(member, sick)
        for serial in ("FIRST", "LAST"):
            self.assertNotIn("healthLogRead", drives[serial])
            self.assertEqual(drives[serial]["healthCode"], 40024)

    def test_unread_show(self):
        """show says that the log was not read, and does not say that nothing needs to be done"""
        shown = self.output("show-unread")
        self.assertIn("The health log of this drive was not read.", shown)
        self.assertRegex(shown, r"Health status +Healthy \(not measured\)\n")
        self.assertIn("Health status: Unknown\n", shown)
        self.assertNotIn("othing needs to be done", shown)

    def test_dropped_list(self):
        """a drive that never answered is listed as such, and those after it have their real places"""
        drives = self.drives("list-dropped")
        self.assertEqual(sorted(drives), ["FIRST", "LAST", "SICK"])
        self.assertFalse(drives.pop("FIRST")["answering"])
        for serial, drive in drives.items():
            self.assertEqual(drive["pciAddress"], self.address(serial))
            self.assertNotIn("locationIsReal", drive)

    def test_dropped_show(self):
        """show finds such a drive by its real address"""
        self.assertIn("SICK", self.output("show-dropped"))
