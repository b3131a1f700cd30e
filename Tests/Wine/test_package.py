"""The zip that users get, in a prefix without any other installation."""

import pathlib
import shutil
import subprocess
import unittest
import zipfile

import stage

SOURCE = pathlib.Path(__file__).resolve().parents[2]


class Package(unittest.TestCase):
    """The package, unpacked and run without any other step."""

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
        """on a machine without drives doctor finds all parts well, and the exit code is 3"""
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

    def test_consumer(self):
        """a host and a plug-in of another maker, built with the unpacked files only, work with it"""
        (program,) = self.programs
        unpacked, built = program.parents[1], self.prefix.drive_c / "Consumer"
        for command in (("cmake", "-G", "Ninja", "-S", SOURCE / "Tests/Consumer", "-B", built,
                         f"-DCMAKE_TOOLCHAIN_FILE={SOURCE}/cmake/Windows/Toolchain.cmake",
                         f"-DCMAKE_MODULE_PATH={SOURCE}/cmake/Windows",
                         f"-DOstrelHost_DIR={unpacked}/lib/cmake/OstrelHost"),
                        ("cmake", "--build", built)):
            made = subprocess.run(command, capture_output=True, text=True, timeout=300, check=False)
            self.assertEqual(made.returncode, 0, made.stdout + made.stderr)
        # Windows looks for libraries beside the program.
        shutil.copy(built / "TinyHost.exe", program.parent)
        host = self.prefix.run(program.parent / "TinyHost.exe")
        self.assertEqual(host.code, 0, host.err)
        for line in ("module 313", "  Serial number: CONSUMER-1", "result 0", "row CONSUMER-1", "result 20001"):
            self.assertIn(line, host.out.splitlines())

        (fleet,) = unpacked.rglob("DemoFleet.json")
        run = self.run_program("--simulate", f"Z:{fleet}", "--plugin", f"Z:{built}/TinyPlugin.dll", "list", "--json")
        self.assertEqual(run.code, 0, run.err)
        serials = [drive["serial"] for drive in stage.document(run)["drives"]]
        self.assertEqual((len(serials), serials[-1]), (8, "TINY-1"))

        trace = self.prefix.drive_c / "trace.log"
        run = self.run_program("--simulate", f"Z:{fleet}", "--plugin", f"Z:{built}/TinyPlugin.dll", "--trace", "313=4",
                               "--trace", "1000=2", "--trace-file", f"Z:{trace}", "topology")
        self.assertEqual(run.code, 0, run.err)
        self.assertEqual({tuple(line.split(" ")[1:3]) for line in trace.read_text().splitlines()},
                         {("Ostrel", "4"), ("Tiny", "2")})

    def test_shared_files(self):
        """the share folder has no files that only other systems use"""
        (program,) = self.programs
        folders = sorted(entry.name for entry in (program.parents[1] / "share").iterdir())
        self.assertEqual(folders, ["doc", "ostrel"])

    def test_documents(self):
        """the manual is there as text, with the documents about interfaces, traces and JSON"""
        (program,) = self.programs
        share, sources = program.parents[1] / "share", SOURCE / "Docs"
        self.assertIn("ostrel - show NVMe drives", (share / "doc/ostrel/Manual.txt").read_text(encoding="ascii"))
        for folder, files in (("doc/ostrel", (sources / "Interfaces.md", sources / "Tracing.md")),
                              ("ostrel/Schemas", (sources / "Schemas").glob("*.json"))):
            for file in files:
                self.assertEqual((share / folder / file.name).read_bytes(), file.read_bytes(), file.name)
