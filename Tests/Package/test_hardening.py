"""Protections against the abuse of faults, read from the files that users get."""

import re
import unittest

import stage


class Hardening(unittest.TestCase):
    """The program and each library are built with it."""

    @classmethod
    def setUpClass(cls):
        usr = stage.root / "usr"
        libraries = [file for file in usr.glob("lib/*/ostrel/*.so*") if not file.is_symlink()]
        cls.program = usr / "bin/ostrel"
        cls.files = [cls.program, *libraries]

    def each(self, *command):
        """The output of a command for each file."""
        self.assertEqual(len(self.files), 6, self.files)
        for file in self.files:
            with self.subTest(file.name):
                yield stage.run(*command, file)

    def test_position(self):
        """the program can be loaded at any address, like libraries"""
        self.assertRegex(stage.run("readelf", "-dW", self.program), r"FLAGS_1.* PIE")
        for header in self.each("readelf", "-hW"):
            self.assertRegex(header, r"Type: +DYN ")

    def test_relocations(self):
        """all addresses are resolved at the start, and are read-only after that"""
        for segments in self.each("readelf", "-lW"):
            self.assertIn("GNU_RELRO", segments)
        for dynamic in self.each("readelf", "-dW"):
            self.assertRegex(dynamic, r"FLAGS_1.* NOW")

    def test_stack(self):
        """data on the stack cannot be executed, and an overrun of a frame ends the process"""
        for segments in self.each("readelf", "-lW"):
            self.assertRegex(segments, r"GNU_STACK .* RW +0x")
        for symbols in self.each("readelf", "--dyn-syms", "-W"):
            self.assertIn(" __stack_chk_fail@", symbols)

    def test_checks(self):
        """the C library's and the C++ library's own checks of sizes and indexes are on"""
        seen = "".join(self.each("readelf", "--dyn-syms", "-W"))
        self.assertRegex(seen, r" __(memcpy|memmove|memset|snprintf|vsnprintf|read|pread\w*)_chk@")
        for symbols in self.each("readelf", "--dyn-syms", "-W"):
            self.assertRegex(symbols, r" _ZSt\d+__glibcxx_assert_fail|__glibcxx_assert")

    def test_branches(self):
        """functions that may be called through a pointer are marked"""
        for code in self.each("objdump", "-d", "--section=.text"):
            self.assertGreater(len(re.findall(r"\tendbr64", code)), 10)
