"""The package's units on Debian: installed, used, upgraded, removed and purged."""

import json
import unittest

import station
from drives import MIB, Controller

FLEET = (
    Controller("plain", "PLAIN", size=64 * MIB),
    Controller("warned", "WARNED", size=128 * MIB, options={"smart_critical_warning": 5}),
)
# It guards against a hang on a busy machine.
TIMEOUT = 900
# What Debian keeps of a package that was purged: the names of its users, and what dpkg notes of all packages.
KEPT = ("/var/lib/dpkg", "/var/log", "/etc/passwd", "/etc/shadow", "/etc/group", "/etc/gshadow", "/etc/.pwd.lock")


class Units(unittest.TestCase):
    """Two drives beside that of the system."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        with station.boot("units", FLEET) as guest:
            cls.files = {name: content.decode() for name, content in guest.results(TIMEOUT).items()}

    def output(self, name, code=0):
        """What a command printed that ended with this code."""
        self.assertEqual(int(self.files[f"{name}.code"]), code, self.files[f"{name}.err"])
        return self.files[f"{name}.out"]

    def drives(self, name):
        """The drives of a list, which came without a message. The system's own drive counts what is read from it."""
        drives = json.loads(self.output(name))["drives"]
        self.assertEqual(self.files[f"{name}.err"], "", name)
        self.assertIn("SYSTEM", [drive["serial"] for drive in drives], name)
        return [drive for drive in drives if drive["serial"] != "SYSTEM"]

    def states(self, name):
        """The properties of each unit at that moment."""
        blocks = self.files[f"states-{name}"].strip().split("\n\n")
        units = [dict(line.split("=", 1) for line in block.splitlines()) for block in blocks if block]
        return {unit.pop("Id"): unit for unit in units}

    def test_started(self):
        """the guest starts without a failed unit"""
        self.assertEqual(self.output("started").strip(), "running")
        print(f"      all units had started after {float(self.files['started.uptime']):.0f} s")

    def test_installed(self):
        """the package is installed without a complaint, and its socket is enabled and listens"""
        self.output("installed")
        for unit in ("ostrel-reader.socket",):
            state = self.states("installed")[unit]
            self.assertEqual((state["ActiveState"], state["UnitFileState"]), ("active", "enabled"), unit)

    def test_sockets(self):
        """the reader's socket is for the group"""
        lines = {line.split()[-1]: line.split() for line in self.files["run"].splitlines()[1:]}
        self.assertEqual(lines["reader.sock"][:4], ["srw-rw----", "1", "root", "ostrel"])

    def test_drives(self):
        """a member of the group and root get from the restricted reader what root got from a reader of his own"""
        drives = self.drives("list-before")
        self.assertEqual([drive["serial"] for drive in drives], [drive.serial for drive in FLEET])
        self.assertTrue(all(drive["answering"] and "temperature" in drive for drive in drives), drives)
        for name in ("list-member", "list-root", "list-again", "list-upgraded"):
            self.assertEqual(self.drives(name), drives, name)

    def test_outside(self):
        """everybody else is told what to do"""
        for name in ("stranger", "outsider"):
            self.assertEqual(self.output(name, 4), "")
            for word in ("as root", 'group "ostrel"'):
                self.assertIn(word, self.files[f"{name}.err"])

    def test_killed(self):
        """a reader that was killed is started again"""
        before, after = (self.states(name)["ostrel-reader.service"] for name in ("installed", "killed"))
        self.assertEqual(before["MainPID"], "0")
        self.assertEqual((after["ActiveState"], after["NRestarts"]), ("active", "1"))

    def test_restrictions(self):
        """the reader has one capability and a filter of system calls, and its unit exposes little"""
        lines = dict(line.split(":", 1) for line in self.files["restrictions"].splitlines())
        one = f"{1 << 21:016x}"
        self.assertEqual({key: value.split()[0] for key, value in lines.items()},
                         {"Uid": "0", "CapPrm": one, "CapEff": one, "CapBnd": one, "NoNewPrivs": "1", "Seccomp": "2"})
        for name in ("security-ostrel-reader.service",):
            print(f"      {self.output(name).strip().splitlines()[-1]}")

    def test_verified(self):
        """the service manager finds no mistake in the units"""
        self.assertEqual((self.output("verified"), self.files["verified.err"]), ("", ""))

    def test_upgrade(self):
        """after an upgrade the socket listens, and the reader of before has ended"""
        self.output("again")
        before, after = self.states("killed"), self.states("again")
        self.assertEqual(after["ostrel-reader.socket"]["ActiveState"], "active")
        self.assertNotEqual(after["ostrel-reader.service"]["MainPID"], before["ostrel-reader.service"]["MainPID"])

    def test_removed(self):
        """a removal stops everything and keeps the data; a purge leaves nothing"""
        self.output("removed")
        self.assertEqual({unit: state["ActiveState"] for unit, state in self.states("removed").items()
                          if state["ActiveState"] != "inactive"}, {})
        self.assertIn("Ostrel.db", self.files["data-removed"])
        self.output("purged")
        before, after = (set(self.files[f"files-{name}"].splitlines()) for name in ("before", "purged"))
        self.assertEqual(sorted(file for file in after - before if not file.startswith(KEPT)), [])
