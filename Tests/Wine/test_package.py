"""The zip that users get, in a prefix where nothing else was ever installed."""

import unittest
import zipfile

import stage


class Package(unittest.TestCase):
    """Unpacked, and run as it is."""

    @classmethod
    def setUpClass(cls):
        cls.prefix = stage.fresh_prefix("fresh")
        with zipfile.ZipFile(stage.package) as archive:
            archive.extractall(cls.prefix.drive_c / "Unpacked")
        cls.programs = list((cls.prefix.drive_c / "Unpacked").rglob("ostrel.exe"))

    def run_program(self, *arguments):
        (program,) = self.programs
        return self.prefix.run(program, *arguments)

    def test_version(self):
        """the unpacked program starts and tells its version"""
        run = self.run_program("--version")
        self.assertEqual(run.code, 0, run.err)
        self.assertRegex(run.out, r"\d+\.\d+")

    def test_doctor(self):
        """on a machine without drives its parts are all well, and the exit code is 3"""
        run = self.run_program("doctor", "--json")
        self.assertEqual(run.code, 3, run.err)
        checks = {check["subject"]: check["result"] for check in stage.document(run)["checks"]}
        self.assertEqual({name: checks[name] for name in ("plug-in", "texts", "endurance", "settings")},
                         {"plug-in": "ok", "texts": "ok", "endurance": "ok", "settings": "ok"})
        self.assertEqual(checks["controllers"], "problem")

    def test_simulated(self):
        """the demonstration fleet that comes with it is shown"""
        (fleet,) = (self.prefix.drive_c / "Unpacked").rglob("DemoFleet.json")
        run = self.run_program("--simulate", f"Z:{fleet}".replace("/", "\\"), "list", "--json")
        self.assertEqual(run.code, 0, run.err)
        self.assertTrue(stage.document(run)["drives"])
