"""Protections against the abuse of faults, read from the packaged files."""

import pathlib
import struct
import unittest
import zipfile

import stage

OWN = {"ostrel.exe", "Ostrel.dll", "PI.dll", "TLX.dll", "TLXX.dll", "Database.dll"}
# Bits of a header: 64-bit addresses at random; loaded at any address; data are not executed.
HIGH_ENTROPY, DYNAMIC_BASE, NO_EXECUTION = 0x20, 0x40, 0x100
PE32_PLUS = 0x20B


def characteristics(data):
    """The word of the optional header that holds these bits."""
    (start,) = struct.unpack_from("<L", data, 0x3C)
    if data[start:start + 4] != b"PE\0\0":
        raise AssertionError("no program")
    optional = start + 24
    if struct.unpack_from("<H", data, optional)[0] != PE32_PLUS:
        raise AssertionError("no program for 64 bits")
    return struct.unpack_from("<H", data, optional + 70)[0]


class Hardening(unittest.TestCase):
    """The programs and libraries in the zip."""

    @classmethod
    def setUpClass(cls):
        with zipfile.ZipFile(stage.package) as archive:
            cls.files = {pathlib.PurePosixPath(name).name: archive.read(name) for name in archive.namelist()
                         if name.endswith((".exe", ".dll"))}

    def test_addresses(self):
        """every file can be loaded at any address, and its data cannot be executed"""
        wanted = HIGH_ENTROPY | DYNAMIC_BASE | NO_EXECUTION
        self.assertLessEqual(OWN, set(self.files))
        for name, data in self.files.items():
            self.assertEqual(characteristics(data) & wanted, wanted, name)

    def test_stack(self):
        """in each of its own files a frame that is overrun ends the process"""
        self.assertIn("libssp-0.dll", self.files)
        for name in OWN:
            self.assertIn(b"__stack_chk_fail", self.files[name], name)
