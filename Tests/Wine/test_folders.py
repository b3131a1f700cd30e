"""Folders with names in scripts that no single code page has together."""

import shutil
import unittest

import stage
from fleet import Disk

NAME = "Δεδομένα 日本語"
DISK = Disk(3, "ANYWHERE", "Drive", 0x1234, (0, 1, 0, 0))


class Folders(unittest.TestCase):
    """One disk, and a folder in Greek and Japanese."""

    @classmethod
    def setUpClass(cls):
        cls.machine = stage.machine()
        cls.machine.equip((DISK,))
        cls.folder = cls.machine.prefix.drive_c / NAME
        cls.folder.mkdir(exist_ok=True)

    def test_data(self):
        """the settings are read from such a data folder, and doctor names the file"""
        (self.folder / "Ostrel.ini").write_text("PollInterval=45\r\n")
        data = ("--data", f"C:\\{NAME}")
        run = self.machine.ostrel(*data, "show", "plugin", "30005", "--json")
        self.assertEqual((run.code, stage.document(run)["property"]["value"]), (0, 45), run.err)
        run = self.machine.ostrel(*data, "doctor", "--json")
        self.assertEqual(run.code, 0, run.out + run.err)
        settings = [check["message"] for check in stage.document(run)["checks"] if check["subject"] == "settings"]
        self.assertEqual(settings, [f"C:\\{NAME}\\Ostrel.ini"])

    def test_missing(self):
        """a missing data folder is created"""
        run = self.machine.ostrel("--data", f"C:\\{NAME}\\何\\下", "list")
        self.assertEqual(run.code, 0, run.err)
        self.assertTrue((self.folder / "何" / "下" / "Ostrel.db").is_file())

    def test_impossible(self):
        """a message names a data folder that cannot be created"""
        (self.folder / "Αρχείο").write_text("")
        run = self.machine.ostrel("--data", f"C:\\{NAME}\\Αρχείο\\何", "list")
        self.assertEqual(run.code, 2)
        self.assertIn(f"{NAME}\\Αρχείο\\何", run.err)

    def test_installed(self):
        """the program runs from such a folder, and writes a trace file there"""
        installed = self.folder / "Ostrel"
        shutil.copytree(self.machine.installed, installed)
        trace = self.folder / "ίχνος.log"
        run = self.machine.prefix.run(installed / "bin" / "ostrel.exe", "--trace", "31", "--trace-file",
                                      f"C:\\{NAME}\\{trace.name}", "list", "--json")
        self.assertEqual(run.code, 0, run.out + run.err)
        (entry,) = stage.document(run)["drives"]
        self.assertEqual((entry["serial"], entry["health"]), (DISK.serial, "Healthy"))
        self.assertIn("Detected NVMe device. deviceName: \\\\.\\PhysicalDrive3, driver: stornvme",
                      trace.read_text())
