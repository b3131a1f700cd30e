"""The database that ostrel keeps, as the sqlite3 command finds it."""

import json
import unittest

import session
from drives import MIB, Controller

HOSTILE = "x');DROP TABLE PD;--"


def fleet(count):
    """Single-function and multi-function places of the root complex, eight to a slot."""
    serials = [HOSTILE, *(f"SERIAL-{number}" for number in range(1, count))]
    return tuple(Controller(f"drive-{number}", serial, size=16 * MIB,
                            address=f"{2 + number // 8:x}.{number % 8}", options={"multifunction": True})
                 for number, serial in enumerate(serials))


class Kept:
    """Four runs on one data folder: twice with all drives, without one of them, and with all again."""

    COUNT = 0
    files = {}

    @classmethod
    def setUpClass(cls):
        with session.boot("database", fleet(cls.COUNT), label=f"database-{cls.COUNT}") as guest:
            cls.files = guest.results()

    def table(self, when, name):
        # The command prints nothing at all for a table without rows.
        return json.loads(self.files[f"{when}/{name}.json"] or "[]")

    def kernel(self):
        """Serial number, model and firmware of each controller, by its place."""
        found = {}
        for name, content in self.files.items():
            if name.startswith("sysfs/"):
                _, address, attribute = name.split("/")
                domain, bus, slot = address.split(":")
                device, function = slot.split(".")
                place = tuple(int(part, 16) for part in (domain, bus, device, function))
                found.setdefault(place, {})[attribute] = content.decode().rstrip()
        return found

    def adapters(self, when):
        return {(row["Segment"], *(int(row[key]) for key in ("PciBus", "PciDevice", "PciFunction"))): row
                for row in self.table(when, "Adapter")}

    def test_runs(self):
        """every run with --data ends well and without a message"""
        for name in ("first", "second", "fourth"):
            self.assertEqual(self.files[f"ostrel/{name}.code"].strip(), b"0", self.files[f"ostrel/{name}.err"])
            self.assertEqual(self.files[f"ostrel/{name}.err"], b"", name)
        self.assertIn(b"OK       database: /tmp/kept/data/Ostrel.db", self.files["ostrel/doctor.out"])

    def test_rows(self):
        """one row for the plug-in, one for each adapter and one for each drive, however often it ran"""
        for when in ("first", "second", "fourth"):
            counts = [len(self.table(when, table)) for table in ("Plugin", "Adapter", "PD")]
            self.assertEqual(counts, [1, self.COUNT, self.COUNT], when)
        (plugin,) = self.table("second", "Plugin")
        self.assertEqual((plugin["Name"], plugin["Identity"], plugin["PollInterval"]),
                         ("NVMe-Plugin", "Plugin:ID=313", 30))

    def test_sound(self):
        """PRAGMA integrity_check finds nothing"""
        for when in ("first", "second", "third", "fourth"):
            self.assertEqual(self.files[f"{when}/integrity"], b"ok\n")

    def test_texts(self):
        """texts of the drives are stored as the kernel has them"""
        kernel, adapters = self.kernel(), self.adapters("second")
        self.assertEqual(set(adapters), set(kernel))
        self.assertEqual(len(kernel), self.COUNT)
        for place, row in adapters.items():
            self.assertEqual((row["SerialNumber"], row["Model"], row["Firmware"]),
                             tuple(kernel[place][key] for key in ("serial", "model", "firmware_rev")))
        drives = self.table("second", "PD")
        self.assertEqual(sorted(row["DriveKey"] for row in drives),
                         sorted(each["serial"] for each in kernel.values()))
        self.assertTrue(all(row["DriveKey"] == row["SerialNumber"] and row["Capacity"] == "16" for row in drives))

    def test_hostile(self):
        """a hostile serial number is found by exactly that serial number"""
        for when in ("first", "second", "fourth"):
            self.assertEqual(self.files[f"{when}/hostile"].decode().split("\n"), [HOSTILE, HOSTILE, ""])

    def test_numbers(self):
        """adapters keep their numbers, even one that was away for a run"""
        def numbers(when):
            return {place: row["AdapterNumber"] for place, row in self.adapters(when).items()}
        first = numbers("first")
        self.assertEqual(sorted(first.values()), list(range(1, self.COUNT + 1)))
        self.assertEqual(numbers("second"), first)
        self.assertEqual(numbers("fourth"), first)

    def test_away(self):
        """the rows of a drive that is away are gone, the others stay"""
        if self.COUNT == 1:
            # Without any drive there is no inventory, so rows must not be removed.
            self.assertEqual(self.files["ostrel/third.code"].strip(), b"3")
            self.assertEqual(self.table("third", "Adapter"), self.table("second", "Adapter"))
            return
        away = self.files[f"sysfs/{self.files['away'].decode().strip()}/serial"].decode().rstrip()
        for table in ("Adapter", "PD"):
            stayed = [row["SerialNumber"] for row in self.table("second", table) if row["SerialNumber"] != away]
            self.assertEqual(len(stayed), self.COUNT - 1)
            self.assertEqual(sorted(row["SerialNumber"] for row in self.table("third", table)), sorted(stayed))


class OneDrive(Kept, unittest.TestCase):
    """A machine with a single controller."""

    COUNT = 1


class EightDrives(Kept, unittest.TestCase):
    """A few drives, as in a usual server."""

    COUNT = 8


class ManyDrives(Kept, unittest.TestCase):
    """As many drives as one processor has interrupt vectors for."""

    COUNT = 64
