"""The properties of the packaged files that Windows shows."""

import pathlib
import re
import struct
import unittest
import zipfile

import stage

OWN = {"ostrel.exe", "Ostrel.dll", "PI.dll", "TLX.dll", "TLXX.dll", "Database.dll"}
# How the part of a version resource begins that has the numbers: its signature and its own version.
BEGINNING = struct.pack("<2L", 0xFEEF04BD, 0x00010000)


class Versions(unittest.TestCase):
    """The version resources in the zip."""

    def test_numbers(self):
        """each of its own files has the version in the name of the zip"""
        version = re.search(r"\d+\.\d+\.\d+", stage.package.name)[0]
        found = {}
        with zipfile.ZipFile(stage.package) as archive:
            for name in archive.namelist():
                file = pathlib.PurePosixPath(name).name
                if file in OWN:
                    data = archive.read(name)
                    minor, major, build, patch = struct.unpack_from("<4H", data, data.index(BEGINNING) + 8)
                    found[file] = f"{major}.{minor}.{patch}.{build}"
        self.assertEqual(found, dict.fromkeys(OWN, f"{version}.0"))
