"""Users who see drives through the reader, and root, who starts one of its own."""

import json
import unittest

import session
from drives import MIB, Controller, Namespace
from test_inventory import INTEL, Booted

FLEET = (
    Controller("plain", "PLAIN", size=64 * MIB),
    Controller("intel", "INTEL-1", size=128 * MIB, options={"smart_critical_warning": 5, **INTEL}),
    Controller("two-disks", "TWO-DISKS", namespaces=(Namespace(3, 48 * MIB), Namespace(2, 72 * MIB))),
)


class Reader(Booted):
    """Three drives, root, a member of the group, and somebody else."""

    @classmethod
    def setUpClass(cls):
        with session.boot("reader", FLEET) as guest:
            cls.files = guest.results()

    def document(self, name, code=0):
        """A document. Of doctor's, without the checks of the data folder, which each user has for himself."""
        document = json.loads(self.output(name, code))
        if "checks" in document:
            document["checks"] = [each for each in document["checks"] if each["subject"] not in ("settings", "database")]
            self.assertGreater(len(document["checks"]), 10)
        return document

    def test_member(self):
        """a member of the group sees field by field what root sees"""
        serials = sorted(entry["serial"] for entry in self.document("list-root")["drives"])
        self.assertEqual(serials, sorted(drive.serial for drive in FLEET))
        names = [name.removeprefix("ostrel/").removesuffix(".out") for name in self.files
                 if name.startswith("ostrel/") and "-root" in name and name.endswith(".out")
                 and not name.startswith("ostrel/watch")]
        self.assertEqual(len(names), 3 + len(FLEET))
        for name in names:
            self.assertEqual(self.document(name.replace("-root", "-member")), self.document(name), name)

    def test_watch(self):
        """a watch of a member tells what that of root tells"""
        told = {}
        for user in ("root", "member"):
            told[user] = [json.loads(line) for line in self.output(f"watch-{user}").splitlines()]
            for line in told[user]:
                del line["time"]
        self.assertEqual({line["drive"]["serial"] for line in told["root"]}, {"INTEL-1"})
        self.assertEqual(told["member"], told["root"])

    def test_outside(self):
        """everybody else is told what to do, and so is a member while there is no reader"""
        for name in ("before", "after"):
            self.assertEqual(self.ended(f"refused-{name}"), 4)
            self.assertEqual(self.ended(f"refused-doctor-{name}"), 4)
            said = self.messages(f"refused-{name}")
            for word in ("as root", 'group "ostrel"', "ostrel-reader.socket"):
                self.assertIn(word, said)

    def test_named(self):
        """a reader can be named, and a private one takes over when it has gone"""
        for name in ("list-named", "list-again"):
            self.assertEqual(self.document(name), self.document("list-root"), name)

    def test_private(self):
        """a private reader ends with the program"""
        self.assertEqual(self.files["left-behind"].strip(), b"")

    def test_silent(self):
        """the program leaves a private reader behind that a drive keeps in the kernel, and shows the other drives"""
        self.assertEqual(len(self.files["stuck"].split()), 1)
        shown = {entry["serial"] for entry in json.loads(self.files["ostrel/list-silent.out"])["drives"]}
        self.assertLessEqual({"INTEL-1", "TWO-DISKS"}, shown)
        self.assertEqual(self.document("list-recovered"), self.document("list-root"))

    def test_restrictions(self):
        """the reader keeps one capability and a filter of system calls"""
        lines = dict(line.split(":", 1) for line in self.files["restrictions"].decode().splitlines())
        told = {key: value.split()[0] for key, value in lines.items()}
        one = f"{1 << 21:016x}"
        self.assertEqual(told, {"Uid": "0", "CapPrm": one, "CapEff": one, "CapBnd": one, "NoNewPrivs": "1",
                                "Seccomp": "2"})
