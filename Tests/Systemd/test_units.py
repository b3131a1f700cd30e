"""The package's units on Debian: installed, used, upgraded, removed and purged."""

import json
import unittest

import station
from drives import MIB, Controller

PULLED = Controller("plain", "PLAIN", size=64 * MIB)
FLEET = (PULLED, Controller("warned", "WARNED", size=128 * MIB, options={"smart_critical_warning": 5}))
# It guards against a hang on a busy machine.
TIMEOUT = 900
# What Debian keeps of a package that was purged: the names of its users, and what dpkg notes of all packages.
KEPT = ("/var/lib/dpkg", "/var/log", "/etc/passwd", "/etc/shadow", "/etc/group", "/etc/gshadow", "/etc/.pwd.lock")
ENABLED = ("ostrel-reader.socket", "ostrel.socket", "ostrel.service")


class Units(unittest.TestCase):
    """Two drives beside that of the system. One of them is pulled and plugged in again."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        with station.boot("units", FLEET) as guest:
            guest.await_event("pull", TIMEOUT)
            guest.unplug(PULLED)
            guest.await_event("plug", TIMEOUT)
            guest.plug(PULLED)
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

    def document(self, name):
        """The document of an answer over HTTP."""
        head, _, body = self.output(name).partition("\r\n\r\n")
        self.assertTrue(head.startswith("HTTP/1.1 200 "), head)
        return json.loads(body)

    def states(self, name):
        """The properties of each unit at that moment."""
        blocks = self.files[f"states-{name}"].strip().split("\n\n")
        units = [dict(line.split("=", 1) for line in block.splitlines()) for block in blocks if block]
        return {unit.pop("Id"): unit for unit in units}

    def restrictions(self, unit):
        """What the kernel says of the unit's process."""
        lines = dict(line.split(":", 1) for line in self.files[f"restrictions-{unit}"].splitlines())
        return {key: value.split()[0] for key, value in lines.items()}

    def test_started(self):
        """the guest starts without a failed unit"""
        self.assertEqual(self.output("started").strip(), "running")
        print(f"      all units had started after {float(self.files['started.uptime']):.0f} s")

    def test_installed(self):
        """the package is installed without a complaint, and its units are enabled and run"""
        self.output("installed")
        for unit in ENABLED:
            state = self.states("installed")[unit]
            self.assertEqual((state["ActiveState"], state["UnitFileState"]), ("active", "enabled"), unit)

    def test_places(self):
        """the reader's socket is for the group, the service's for everybody, and the token a secret of the group"""
        lines = {line.split()[-1]: line.split() for line in self.files["places"].splitlines() if line.count(" ") > 6}
        self.assertEqual(lines["reader.sock"][:4], ["srw-rw----", "1", "root", "ostrel"])
        self.assertEqual(lines["serve.sock"][0], "srw-rw-rw-")
        self.assertEqual(lines["token"][:4], ["-rw-r-----", "1", "root", "ostrel"])
        self.assertEqual(self.files["token"].strip(), "1")

    def test_drives(self):
        """a member of the group and root get from the restricted reader what root got from a reader of his own"""
        drives = self.drives("list-before")
        self.assertEqual([drive["serial"] for drive in drives], [drive.serial for drive in FLEET])
        self.assertTrue(all(drive["answering"] and "temperature" in drive for drive in drives), drives)
        for name in ("list-member", "list-root", "list-again", "list-often"):
            self.assertEqual(self.drives(name), drives, name)
        # The kernel has read the drive that was plugged in again.
        self.assertEqual([drive["serial"] for drive in self.drives("list-upgraded")],
                         [drive["serial"] for drive in drives])

    def test_doors(self):
        """the service shows the drives to everybody, and lets members of the group change a setting"""
        drives = json.loads(self.output("list-stranger"))["drives"]
        self.assertEqual(sorted(drive["serial"] for drive in drives), ["PLAIN", "SYSTEM", "WARNED"])
        self.assertIn("Poll interval is now 2 s.", self.output("set-member"))
        self.assertNotEqual(self.files["set-stranger.code"].strip(), "0")
        self.assertIn("group", self.files["set-stranger.err"])

    def test_stranger(self):
        """everybody may look at objects, read the journal and watch, although only the service reads the drives"""
        self.assertRegex(self.output("show-stranger"), r"Serial number +WARNED")
        lines = self.output("journal-stranger").splitlines()
        self.assertEqual(self.told([json.loads(line) for line in lines]), ["drive-removed", "drive-added"])
        self.output("watch-stranger")
        self.assertRegex(self.files["watch-stranger.err"], r"Now: CRITICAL, nvme\dn1 \(WARNED\): Critical")

    def test_outside(self):
        """without the service, everybody else is told what to do"""
        self.assertEqual(self.output("stranger", 4), "")
        for word in ("as root", 'group "ostrel"'):
            self.assertIn(word, self.files["stranger.err"])

    def test_killed(self):
        """a reader that was killed is started again"""
        after = self.states("killed")["ostrel-reader.service"]
        self.assertEqual((after["ActiveState"], after["NRestarts"]), ("active", "1"))
        self.assertEqual(self.states("often")["ostrel-reader.socket"]["ActiveState"], "active")

    def test_reader(self):
        """the reader has one capability and a filter of system calls"""
        one = f"{1 << 21:016x}"
        self.assertEqual(self.restrictions("ostrel-reader.service"),
                         {"Uid": "0", "CapPrm": one, "CapEff": one, "CapBnd": one, "NoNewPrivs": "1", "Seccomp": "2"})

    def test_service(self):
        """the service has a user of its own, no capability, a filter of system calls, and no drive"""
        none = f"{0:016x}"
        user = self.files["user"].strip()
        self.assertNotEqual(user, "0")
        self.assertEqual(self.restrictions("ostrel.service"),
                         {"Uid": user, "CapPrm": none, "CapEff": none, "CapBnd": none, "NoNewPrivs": "1",
                          "Seccomp": "2"})
        self.assertEqual(self.files["opened-ostrel.service"], "")

    def test_exposure(self):
        """the units expose little, and the service manager finds no mistake in them"""
        for unit in ("ostrel-reader.service", "ostrel.service"):
            print(f"      {self.output(f'security-{unit}').strip().splitlines()[-1]}")
        self.assertEqual((self.output("verified"), self.files["verified.err"]), ("", ""))

    def test_status(self):
        """the service manager shows what the service does"""
        self.assertRegex(self.output("status"), r'Status: "nvme\dn1 \(WARNED\): Critical.*; 2 of 3 drives healthy"')

    def told(self, entries):
        """What entries tell of the drive that was pulled. They have all numbers from 1 on."""
        self.assertEqual([entry["number"] for entry in entries], [*range(1, len(entries) + 1)])
        return [entry["kind"] for entry in entries if entry.get("drive", {}).get("serial") == "PLAIN" and
                entry["kind"].startswith("drive-")]

    def test_journal(self):
        """a drive that is pulled and plugged in again is told once each, also after a crash and an upgrade"""
        for name in ("journal-crashed", "journal-upgraded"):
            self.assertEqual(self.told(self.document(name)["entries"]), ["drive-removed", "drive-added"], name)
        lines = self.output("journal-stopped").splitlines()
        self.assertEqual(self.told([json.loads(line) for line in lines]), ["drive-removed", "drive-added"])

    def test_lost_reader(self):
        """the end of a reader is no silence of a drive"""
        entries = self.document("journal-upgraded")["entries"]
        self.assertEqual({entry["kind"] for entry in entries if entry.get("drive", {}).get("serial") == "WARNED"},
                         {"reliability-degraded", "spare-low"})

    def test_http(self):
        """the service shows the drives over HTTP"""
        self.assertEqual(sorted(drive["serial"] for drive in self.document("drives")["drives"]),
                         ["PLAIN", "SYSTEM", "WARNED"])

    def test_reloaded(self):
        """after a reload the service goes on"""
        self.output("reloaded")
        self.assertEqual(self.states("reloaded")["ostrel.service"]["ActiveState"], "active")

    def test_watchdog(self):
        """the service gives signs of life, and is started again without them"""
        self.assertIn("Watchdog timeout", self.files["watchdog"])

    def test_stopped(self):
        """the service ends well when it is asked to"""
        self.output("stopped")
        before, after = map(float, self.files["stop.times"].split())
        print(f"      ended {after - before:.1f} s after it was asked to, in the guest's time")
        state = self.states("stopped")["ostrel.service"]
        self.assertEqual((state["ActiveState"], state["Result"]), ("inactive", "success"))

    def test_former(self):
        """the service goes on with what root's watch has kept, and nothing of it is lost"""
        self.output("watch-before")
        self.assertEqual(self.files["owned-by-others"], "")
        self.assertIn("PollInterval=2", self.files["content-before"])
        self.assertEqual(self.files["content-after"], self.files["content-before"])

    def test_upgrade(self):
        """after an upgrade everything runs, and no process is of before"""
        self.output("again")
        before, after = self.states("reloaded"), self.states("again")
        for unit in ENABLED:
            self.assertEqual(after[unit]["ActiveState"], "active", unit)
        for unit in ("ostrel-reader.service", "ostrel.service"):
            self.assertNotEqual(after[unit]["MainPID"], before[unit]["MainPID"], unit)

    def test_removed(self):
        """a removal stops everything and keeps data and settings; a purge leaves nothing"""
        self.output("removed")
        self.assertEqual({unit: state["ActiveState"] for unit, state in self.states("removed").items()
                          if state["ActiveState"] != "inactive"}, {})
        for name in ("Ostrel.db", "Service.db", "serve.ini", "token"):
            self.assertIn(name, self.files["kept-data"])
        self.output("purged")
        before, after = (set(self.files[f"files-{name}"].splitlines()) for name in ("before", "purged"))
        self.assertEqual(sorted(file for file in after - before if not file.startswith(KEPT)), [])
