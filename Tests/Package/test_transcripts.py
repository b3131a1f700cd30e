"""Compares the documents' transcripts with the program in the package."""

import pathlib
import re
import sys
import unittest

import stage

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = SOURCE / "Docs/transcripts.py"
DOCUMENTS = (SOURCE / "README.md", SOURCE / "CONTRIBUTING.md", *sorted((SOURCE / "Docs").glob("*.md")))


class Transcripts(unittest.TestCase):
    """What documents show is what the program prints."""

    def check(self, *documents):
        return stage.attempt(sys.executable, SCRIPT, "--tree", stage.root / "usr", "--check", *documents)

    def test_current(self):
        """every transcript is what its command prints now"""
        self.assertTrue(any("```console\n$ " in file.read_text() for file in DOCUMENTS))
        checked = self.check(*DOCUMENTS)
        self.assertEqual((checked.returncode, checked.stdout), (0, ""), checked.stderr)

    def test_others(self):
        """no other block looks like a transcript"""
        for file in DOCUMENTS:
            for kind, block in re.findall(r"^```(\w*)\n(.*?)^```$", file.read_text(), re.MULTILINE | re.DOTALL):
                if kind != "console":
                    self.assertNotRegex(block, r"(?m)^\$ ", file.name)

    def test_stale(self):
        """a transcript that differs is found"""
        words = "$ ostrel --simulate DemoFleet.json --data kept"
        quick = f"{words} set plugin pollinterval 2\nSimulated fleet: DemoFleet.json\nPoll interval is now 2 s.\n"
        for shown in ("$ ostrel --version\nostrel 0.0.0\n", f"{quick}\n{words} watch\n# nvme2n1 is unplugged\n"):
            stale = stage.work / "stale.md"
            stale.write_text(f"```console\n{shown}```\n")
            checked = self.check(stale)
            self.assertEqual((checked.returncode, checked.stdout),
                             (1, "not current: stale.md; ./dev docs renews them\n"), checked.stderr)
