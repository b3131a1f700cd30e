"""Compares the manual page with the program's own help."""

import re
import unittest

import stage
from usage import Usage


class Manual(unittest.TestCase):
    """The page in the package, as source and as a reader sees it."""

    @classmethod
    def setUpClass(cls):
        cls.page = stage.run("zcat", stage.root / "usr/share/man/man1/ostrel.1.gz")
        rendered = stage.attempt("groff", "-ww", "-man", "-Tascii", "-P-c", "-P-b", "-P-u", "-P-o", input=cls.page)
        cls.code, cls.text, cls.warnings = rendered.returncode, rendered.stdout, rendered.stderr
        cls.usage = Usage()

    def headings(self, section):
        """The tags of a section's paragraphs, without their fonts."""
        (body,) = re.findall(rf"^\.SH {section}\n(.*?)^\.SH", self.page, re.MULTILINE | re.DOTALL)
        return {re.sub(r"^\.B |\\f[BIR]", "", tag).replace("\\-", "-").replace(", ", ",")
                for tag in re.findall(r"^\.TP\n(.*)$", body, re.MULTILINE)}

    def test_rendering(self):
        """the page renders without a warning"""
        self.assertEqual((self.code, self.warnings), (0, ""))
        self.assertIn("ostrel - show NVMe drives", self.text)

    def test_service(self):
        """the page of the service renders without a warning"""
        page = stage.run("zcat", stage.root / "usr/share/man/man1/ostrel-serve.1.gz")
        rendered = stage.attempt("groff", "-ww", "-man", "-Tascii", "-P-c", "-P-b", "-P-u", "-P-o", input=page)
        self.assertEqual((rendered.returncode, rendered.stderr), (0, ""))
        self.assertIn("ostrel-serve - watch NVMe drives", rendered.stdout)
        self.assertIn(stage.ostrel("--version").strip(), rendered.stdout)

    def test_version(self):
        """it names the version of the program"""
        self.assertIn(stage.ostrel("--version").strip(), self.text)

    def test_commands(self):
        """it has the commands of the help with their arguments, and no others"""
        self.assertEqual(self.headings("COMMANDS"), set(self.usage.commands.values()))

    def test_exit_codes(self):
        """it has the exit codes of the help"""
        codes = re.search(r"Exit codes: ([^.]*)\.", stage.ostrel("--help")).group(1)
        for code, meaning in re.findall(r"(\d) ([^,]*)", " ".join(codes.split())):
            self.assertRegex(self.text, rf"(?im)^ +{code} +{meaning}\.$")
