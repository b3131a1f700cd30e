#!/usr/bin/env python3
"""
A real trace agrees with what Docs/Tracing.md says about bits and lines.

usage: test_tracing.py PROGRAM SHARE [unittest arguments]
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM, SHARE = sys.argv[1:3]
ROOT = pathlib.Path(__file__).resolve().parents[2]
TEXT = (ROOT / "Docs" / "Tracing.md").read_text()
LINE = re.compile(re.search(r"```regex\n(.*)\n```", TEXT)[1])
BITS = [int(bit) for bit in re.findall(r"^\| (\d+) \|", TEXT, re.M)]
EXAMPLE = re.search(r"## A line\n\n```\n(.*)\n```", TEXT)[1]


class Tracing(unittest.TestCase):
    def trace(self, mask):
        """The lines that a run leaves in a file."""
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "trace.log"
            subprocess.run([PROGRAM, "--simulate", str(pathlib.Path(SHARE) / "DemoFleet.json"), "--trace", hex(mask),
                            "--trace-file", str(file), "list"], check=True, capture_output=True, env={}, timeout=60)
            return file.read_text().splitlines()

    def test_lines(self):
        lines = self.trace(0xFFFFFFFF)
        self.assertGreater(len(lines), 100)
        for line in [EXAMPLE, *lines]:
            parts = LINE.match(line)
            self.assertIsNotNone(parts, line)
            self.assertEqual(parts[2], "Ostrel")
            self.assertIn(int(parts[3]), BITS)
            self.assertTrue((ROOT / parts[4]).is_dir(), line)

    def test_bits(self):
        self.assertEqual(BITS, [2, 4, 8, 16, 128])
        for bit in BITS:
            levels = {int(LINE.match(line)[3]) for line in self.trace(bit)}
            self.assertEqual(levels, {bit})
        for bit in (1, 32, 64):
            self.assertEqual(self.trace(bit), [])
        self.assertEqual({LINE.match(line)[3] for line in self.trace(1 << 12)}, {"128"})

    def test_mask_of_everything(self):
        """the two masks in the text do what it says"""
        everything = {LINE.match(line)[3] for line in self.trace(0xFFFFFFFF)}
        self.assertEqual({LINE.match(line)[3] for line in self.trace(0x9F)}, everything)
        self.assertEqual({LINE.match(line)[3] for line in self.trace(0x1F)}, everything - {"128"})


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
