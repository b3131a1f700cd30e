"""The documents' transcripts against the program in the package."""

import pathlib
import sys
import unittest

import stage

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = SOURCE / "Docs/transcripts.py"


class Transcripts(unittest.TestCase):
    """What documents show is what the program prints."""

    def check(self, *documents):
        return stage.attempt(sys.executable, SCRIPT, "--tree", stage.root / "usr", "--check", *documents)

    def test_current(self):
        """every transcript is what its command prints now"""
        documents = [SOURCE / "README.md", *sorted((SOURCE / "Docs").glob("*.md"))]
        self.assertTrue(any("```console\n$ " in file.read_text() for file in documents))
        checked = self.check(*documents)
        self.assertEqual((checked.returncode, checked.stdout), (0, ""), checked.stderr)

    def test_stale(self):
        """a transcript that is not is noticed"""
        stale = stage.work / "stale.md"
        stale.write_text("```console\n$ ostrel --version\nostrel 0.0.0\n```\n")
        self.assertEqual((self.check(stale).returncode, self.check(stale).stdout),
                         (1, "not current: stale.md; ./dev docs renews them\n"))
