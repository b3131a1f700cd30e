"""The database that ostrel keeps, as another system's sqlite3 command finds it."""

import json
import shutil
import subprocess
import unittest

import stage
from fleet import CONTROLLER, Disk, refusal, tree

HOSTILE = "x');DROP TABLE PD;--"
NOBODY = 0x1234
DISKS = (Disk(4, "SERIAL-4", "First", NOBODY, (0, 1, 0, 0)),
         Disk(5, HOSTILE, "It's 'quoted'", NOBODY, (0, 2, 3, 1), kelvin=300),
         Disk(6, "SERIAL-6", "Last", NOBODY, (1, 0, 0, 0), firmware="FW'6"))
SILENT = Disk(7, "SILENT", "Never answers", NOBODY, (0, 9, 0, 0), how={CONTROLLER: refusal()})


def query(file, sql):
    """The rows that the command of this machine reads."""
    text = subprocess.run(["sqlite3", "-readonly", "-json", str(file), sql], check=True, capture_output=True,
                          text=True).stdout
    # The command prints nothing when there are no rows.
    return json.loads(text or "[]")


class Kept:
    """Three runs on one data folder: twice with all disks, then without one of them."""

    NAME = ""

    @classmethod
    def setUpClass(cls):
        machine = stage.machine()
        folder = machine.prefix.drive_c / cls.NAME
        shutil.rmtree(folder, ignore_errors=True)
        cls.file = folder / "below" / "Ostrel.db"
        cls.runs, cls.tables, cls.sound = [], [], []
        machine.equip((*DISKS, SILENT))
        for disks in ((*DISKS, SILENT), (*DISKS, SILENT), DISKS[1:]):
            machine.storage.tree(tree(disks))
            cls.runs.append(machine.ostrel("--data", f"C:\\{cls.NAME}\\below", "list", "--json"))
            cls.tables.append({table: query(cls.file, f"SELECT * FROM {table} ORDER BY ID")
                               for table in ("Plugin", "Adapter", "PD")})
            cls.sound.append(query(cls.file, "PRAGMA integrity_check"))
        cls.doctor = machine.ostrel("--data", f"C:\\{cls.NAME}\\below", "doctor", "--json")

    def test_runs(self):
        """every run ends well, shows the disks that answer, and prints no message about the database"""
        for run, disks in zip(self.runs, (DISKS, DISKS, DISKS[1:])):
            self.assertEqual(run.code, 0, run.err)
            self.assertEqual({drive["serial"] for drive in stage.document(run)["drives"] if drive["answering"]},
                             {disk.serial for disk in disks})
            self.assertNotIn("rows of the drives", run.err)
            self.assertNotIn("numbers of the adapters", run.err)

    def test_rows(self):
        """one row for the plug-in, one for each shown adapter and drive, and a second run adds none"""
        for tables, shown in zip(self.tables, (DISKS, DISKS, DISKS[1:])):
            (plugin,) = tables["Plugin"]
            self.assertEqual((plugin["Name"], plugin["Identity"]), ("NVMe-Plugin", "Plugin:ID=313"))
            self.assertCountEqual(
                [tuple(row[key] for key in ("Segment", "PciBus", "PciDevice", "PciFunction", "SerialNumber", "Model",
                                            "Firmware")) for row in tables["Adapter"]],
                [(disk.place[0], *map(str, disk.place[1:]), disk.serial, disk.model, disk.firmware) for disk in shown])
            self.assertCountEqual(
                [tuple(row[key] for key in ("DriveKey", "SerialNumber", "Temperature")) for row in tables["PD"]],
                [(disk.serial, disk.serial, str(disk.kelvin - 273)) for disk in shown])

    def test_sound(self):
        """PRAGMA integrity_check finds nothing, and the folder has only the files that the manual names"""
        self.assertEqual(self.sound, [[{"integrity_check": "ok"}]] * 3)
        self.assertCountEqual([path.name for path in self.file.parent.iterdir()],
                              ["Ostrel.db", "AdapterNumbers.txt", "Ostrel.lock"])

    def test_numbers(self):
        """adapters keep their numbers when others go"""
        first, second, third = ({row["SerialNumber"]: row["AdapterNumber"] for row in tables["Adapter"]}
                                for tables in self.tables)
        self.assertEqual(sorted(first.values()), [1, 2, 3])
        self.assertEqual(second, first)
        self.assertEqual(third, {serial: first[serial] for serial in third})

    def test_doctor(self):
        """doctor names the file and finds it sound"""
        (check,) = (check for check in stage.document(self.doctor)["checks"] if check["subject"] == "database")
        self.assertEqual((check["result"], check["message"]), ("ok", f"C:\\{self.NAME}\\below\\Ostrel.db"))


class PlainFolder(Kept, unittest.TestCase):
    """The database in a folder with an ASCII name."""

    NAME = "kept"


class ForeignFolder(Kept, unittest.TestCase):
    """The database in a folder with a Greek and Japanese name."""

    NAME = "Βάση δεδομένων 日本語"


class Unusable(unittest.TestCase):
    """A folder that has the name of the file."""

    def test_warning(self):
        """there is a warning, but the drives are shown"""
        machine = stage.machine()
        machine.equip(DISKS)
        (machine.prefix.drive_c / "unusable" / "Ostrel.db").mkdir(parents=True)
        run = machine.ostrel("--data", "C:\\unusable", "list", "--json")
        self.assertEqual((run.code, len(stage.document(run)["drives"])), (0, len(DISKS)), run.err)
        self.assertIn("The rows of the drives may not have been kept: database 'C:\\unusable\\Ostrel.db': "
                      "unable to open database file", run.err)
