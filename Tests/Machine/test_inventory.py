"""One inventory of many different controllers, compared with what the system's own tools say."""

import json
import unittest

import inventory
import schemas
import session
from drives import MIB, Controller, Namespace

BLOCKS_4096 = {"logical_block_size": 4096, "physical_block_size": 4096}
INTEL = {"use-intel-id": True}
HOSTILE = "x');DROP TABLE PD;--"

FLEET = (
    Controller("plain", "PLAIN", size=64 * MIB),
    Controller("intel", "INTEL-1", size=128 * MIB, options=INTEL),
    Controller("warned", "WARNED", size=64 * MIB, options={"smart_critical_warning": 5}),
    Controller("large-blocks", "LARGE-BLOCKS", size=96 * MIB, address="1a.0",
               options={"multifunction": True, **BLOCKS_4096}),
    Controller("hostile", HOSTILE, size=80 * MIB, address="1a.3"),
    Controller("two-disks", "TWO-DISKS",
               namespaces=(Namespace(3, 48 * MIB), Namespace(2, 72 * MIB, BLOCKS_4096))),
    Controller("odd-size", "ODD-SIZE", size=(2 << 40) - 512),
    Controller("far-away", "FAR-AWAY", size=64 * MIB, root_bus=0xA0,
               options={"smart_critical_warning": 0x1F, **INTEL}),
    Controller("twin-1", "TWIN", subsystem="twins", shared=1),
    Controller("twin-2", "TWIN", subsystem="twins", namespaces=(Namespace(5, 56 * MIB),)),
    Controller("no-disk", "NO-DISK"),
)
DISKLESS = ("NO-DISK",)
# It replaces another drive while the machine runs.
LATE = Controller("late", "LATE", size=88 * MIB)
UNPLUGGED = FLEET[6]
LATER_WARNINGS = {"plain": 0x01, "intel": 0x02, "warned": 0x00, "large-blocks": 0x04, "hostile": 0x08,
                  "two-disks": 0x10, "odd-size": 0x09, "far-away": 0x12, "twin-1": 0x03, "twin-2": 0x18}

# The traced commands to a controller, and the two that only read.
COMMANDS = ("pci_nvme_admin_cmd", "pci_nvme_io_cmd")
GET_LOG_PAGE, IDENTIFY = "opc 0x2 ", "opc 0x6 "
# The least number of comparisons for a controller. Fewer mean that both sides lost a field.
COMPARISONS = 136


class Booted(unittest.TestCase):
    """A test whose class has collected `files` from a guest."""

    files = {}
    maxDiff = None

    def output(self, name, code=0):
        """The output of a run of ostrel. The run must have this exit code and, if that is 0, no message."""
        self.assertEqual(self.ended(name), code, f"{name}: {self.messages(name)}")
        if code == 0:
            self.assertEqual(self.messages(name), "", name)
        return self.files[f"ostrel/{name}.out"].decode()

    def ended(self, name):
        return int(self.files[f"ostrel/{name}.code"])

    def messages(self, name):
        return self.files[f"ostrel/{name}.err"].decode()

    def assert_documents(self):
        """Every JSON document that ostrel printed fits its schema."""
        documents = {}
        for name, content in self.files.items():
            if name.startswith("ostrel/") and name.endswith(".out") and content.startswith(b"{"):
                documents[name.removeprefix("ostrel/").removesuffix(".out")] = json.loads(content)
        self.assertTrue(documents)
        print(f"      {len(documents)} documents")
        for name, document in documents.items():
            schema = "error" if "error" in document else name.split("-")[0]
            self.assertEqual(schemas.wrong(schema, document), [], name)

    def controllers(self, folder):
        """The collected files of each controller, by its name."""
        names = sorted({name.split("/")[1] for name in self.files if name.startswith(f"{folder}/")})
        return {name: inventory.Files(self.files, f"{folder}/{name}") for name in names}

    def assert_agreement(self, folder, fleet, suffix=""):
        """Compares every controller of the fleet that has a disk."""
        report = inventory.Report(self.output(f"list{suffix}"), self.output(f"topology{suffix}"))
        kernel = self.files["kernel"].decode().strip()
        seen, failures, total = [], [], 0
        for name, files in self.controllers(folder).items():
            serial = files.text("serial")
            if files.first_namespace() is None:
                continue
            seen.append(serial)
            count, wrong = inventory.compare(inventory.truth(files, kernel),
                                             report.told(serial, files.text("address")))
            total += count
            failures += [f"{name}, {serial}: {line}" for line in wrong]
            if count < COMPARISONS:
                failures.append(f"{name}, {serial}: only {count} comparisons")
        if failures:
            self.fail("\n".join(failures))
        self.assertEqual(sorted(seen), sorted(drive.serial for drive in fleet if drive.path_count()))
        print(f"      {total} comparisons on {len(seen)} controllers")
        return report


class Inventory(Booted):
    """Eleven controllers that all differ."""

    @classmethod
    def setUpClass(cls):
        with session.boot("inventory", FLEET, later=(LATE,)) as guest:
            guest.await_event("ready")
            guest.trace(COMMANDS, True)
            guest.go("inventory")
            guest.await_event("taken")
            guest.trace(COMMANDS, False)
            guest.go("comparison")
            guest.await_event("compared")
            for drive in FLEET:
                guest.warn(drive, LATER_WARNINGS.get(drive.name, 0))
            guest.go("warnings")
            guest.await_event("unpluggable")
            guest.unplug(UNPLUGGED)
            guest.plug(LATE)
            guest.go("replugged")
            cls.files = guest.results()
            cls.commands = guest.traced()

    def test_agreement(self):
        """every field of list and topology agrees with nvme-cli, smartctl and sysfs"""
        self.assert_agreement("first", FLEET)

    def test_agreement_after_warnings(self):
        """all fields also agree after other critical warnings were raised in the running machine"""
        self.assert_agreement("warned", FLEET, "-warned")
        bits = sorted(files.bytes("smart-log.bin")[0] for files in self.controllers("warned").values()
                      if files.first_namespace())
        self.assertEqual(bits, sorted(LATER_WARNINGS.values()))

    def test_fleet(self):
        """the emulated controllers are as this test needs them"""
        controllers = {files.text("serial"): files for files in self.controllers("first").values()}
        self.assertEqual(set(controllers), {drive.serial for drive in FLEET})
        truths = {serial: inventory.truth(files, "") for serial, files in controllers.items()
                  if files.first_namespace()}
        self.assertEqual(truths["INTEL-1"]["vendor"]["nvme id-ctrl"], "INTEL")
        self.assertEqual(truths["WARNED"]["reasons"]["log page"], [40460, 40487])
        self.assertEqual(truths["LARGE-BLOCKS"]["block size"]["nvme id-ns"], 4096)
        self.assertEqual(truths["TWO-DISKS"]["capacity"]["nvme id-ns"], 72)
        self.assertEqual(truths["ODD-SIZE"]["capacity"]["nvme id-ns"], (2 << 20) - 1)
        self.assertEqual(truths[HOSTILE]["pci"]["sysfs"], (0, 0, 0x1A, 3))
        self.assertGreater(truths["FAR-AWAY"]["pci"]["sysfs"][1], 0xA0)
        amounts = {truth["data written"]["log page"] for truth in truths.values()}
        self.assertGreaterEqual(len(amounts), 8, "the counters differ too little to be told apart")

    def test_objects(self):
        """topology links the plug-in with each adapter and each adapter with its drive, and has nothing else"""
        report = inventory.Report(self.output("list"), self.output("topology"))
        (plugin,) = report.of_type(inventory.PLUGIN)
        adapters, drives = report.of_type(inventory.ADAPTER), report.of_type(inventory.DRIVE)
        expected = sum(1 for drive in FLEET if drive.path_count())
        self.assertEqual((len(adapters), len(drives), len(report.objects)), (expected, expected, 1 + 2 * expected))
        self.assertEqual(len({each.id for each in report.objects}), len(report.objects))
        self.assertTrue(all(each.id.startswith("0x0139") for each in report.objects))
        self.assertEqual(sorted(plugin.children), sorted(each.id for each in adapters))
        for adapter in adapters:
            (drive,) = [each for each in drives if each.id in adapter.children]
            self.assertEqual((adapter.parents, adapter.children), ([plugin.id], [drive.id]))
            self.assertEqual((drive.parents, drive.children), ([adapter.id], []))
            self.assertEqual(drive.value(30022), adapter.value(30022))

    def test_diskless(self):
        """a controller without a namespace is not listed, and doctor says why"""
        listed = [entry["serial"] for entry in json.loads(self.output("list"))["drives"]]
        self.assertEqual(sorted(listed), sorted(drive.serial for drive in FLEET if drive.serial not in DISKLESS))
        (name,) = [name for name, files in self.controllers("first").items() if files.text("serial") in DISKLESS]
        checks = json.loads(self.output("doctor"))["checks"]
        self.assertIn("no namespace", " ".join(check["message"] for check in checks if check["subject"] == name))
        self.assertEqual([check for check in checks if check["result"] == "problem"], [])

    def test_replugged(self):
        """a drive that was unplugged is gone, and one that was plugged in is there"""
        before, after = ({entry["serial"]: entry["capacityMiB"] for entry in json.loads(self.output(name))["drives"]}
                         for name in ("list", "list-replugged"))
        del before[UNPLUGGED.serial]
        self.assertEqual(after, {**before, LATE.serial: LATE.size // MIB})

    def test_doubts(self):
        """with every log read and no drive left out, no value is marked as doubtful, and each drive has an end of life"""
        entries = json.loads(self.output("list"))["drives"]
        self.assertEqual({entry["endOfLife"]["object"] for entry in entries}, {entry["adapterId"] for entry in entries})
        for entry in entries:
            self.assertNotIn("healthLogRead", entry)
            self.assertNotIn("locationIsReal", entry)
            self.assertEqual(entry["endOfLife"]["powerOnHours"], entry["powerOnHours"])

    def test_text(self):
        """list shows each drive on a line of its own"""
        lines = self.output("text").splitlines()
        for drive in FLEET:
            found = sum(drive.serial in line for line in lines)
            self.assertEqual(found, 0 if drive.serial in DISKLESS else sum(
                each.serial == drive.serial for each in FLEET), drive.serial)

    def test_show(self):
        """show finds an adapter and its drive by the serial number, even by a hostile one"""
        for name, files in self.controllers("first").items():
            serial = files.text("serial")
            if serial in DISKLESS or serial == "TWIN":
                self.assertNotEqual(self.ended(f"show-{name}"), 0)
                self.assertIn(serial, self.messages(f"show-{name}"))
                continue
            shown = json.dumps(json.loads(self.output(f"show-{name}")))
            self.assertIn(serial, shown)
            self.assertIn(files.text(f"{files.first_namespace()}/device"), shown)

    def test_commands(self):
        """the drives got only Identify and Get Log Page commands"""
        reading = [line for line in self.commands if line.startswith("pci_nvme_admin_cmd ")
                   and (GET_LOG_PAGE in line or IDENTIFY in line)]
        self.assertEqual([line for line in self.commands if line not in reading], [])
        runs = 4
        drives = sum(1 for drive in FLEET if drive.path_count())
        self.assertGreaterEqual(sum(IDENTIFY in line for line in reading), 2 * runs * drives)
        self.assertGreaterEqual(sum(GET_LOG_PAGE in line for line in reading), runs * drives)

    def test_traceless(self):
        """looking leaves no file behind and changes none"""
        before, after = (set(self.files[f"files-{when}"].decode().splitlines()) for when in ("before", "after"))
        self.assertGreater(len(before), 100)
        self.assertEqual(sorted(before ^ after), [])

    def test_permission(self):
        """an ordinary user is refused with exit code 4, by the name of the device"""
        self.output("nobody-list", code=4)
        self.assertEqual(self.ended("nobody-doctor"), 4)
        said = self.messages("nobody-list")
        for name, files in self.controllers("first").items():
            self.assertEqual(f"/dev/{name}" in said, files.first_namespace() is not None, said)

    def test_documents(self):
        """every JSON document fits its schema"""
        self.assert_documents()

    def test_driverless(self):
        """controllers without a driver give exit code 3, and doctor names each of them"""
        self.output("list-driverless", code=3)
        checks = json.loads(self.output("doctor-driverless", code=3))["checks"]
        named = {check["subject"] for check in checks if check["result"] == "problem"}
        self.assertLessEqual(set(self.files["addresses"].decode().split()), named)


class AgedDrives(Booted):
    """Controllers that have been running for hours."""

    FLEET = (Controller("aged", "AGED", size=64 * MIB),
             Controller("aged-intel", "AGED-INTEL", size=64 * MIB, options=INTEL))

    @classmethod
    def setUpClass(cls):
        # With a clock that counts instructions and skips sleep, hours pass in a few seconds.
        with session.boot("aged", cls.FLEET, options=("-icount", "shift=3,sleep=off", "-rtc", "clock=vm")) as guest:
            cls.files = guest.results()

    def test_documents(self):
        """every JSON document fits its schema"""
        self.assert_documents()

    def test_agreement(self):
        """every field agrees for drives that ran for two hours, which their counters show"""
        report = self.assert_agreement("first", self.FLEET)
        self.assertEqual([entry["powerOnHours"] for entry in report.entries], [2, 2])
        self.assertEqual([entry["mediaErrors"] for entry in report.entries], [0, 0])


class EmptyMachine(Booted):
    """No controller at all."""

    @classmethod
    def setUpClass(cls):
        with session.boot("empty") as guest:
            cls.files = guest.results()

    def test_list(self):
        """without a controller list says so and gives exit code 3"""
        for name in ("list", "list-json"):
            self.output(name, code=3)
        self.assertNotEqual(self.messages("list").strip(), "")

    def test_documents(self):
        """a document about an error also fits its schema"""
        self.assert_documents()

    def test_doctor(self):
        """without a controller doctor says that there is none"""
        checks = json.loads(self.output("doctor", code=3))["checks"]
        self.assertIn("problem", {check["result"] for check in checks})

    def test_announcements(self):
        """doctor says where the kernel does not announce drives"""
        results = {}
        for name in ("doctor", "doctor-container"):
            checks = json.loads(self.output(name, code=3))["checks"]
            results[name] = [check["result"] for check in checks if check["subject"] == "announcements"]
        self.assertEqual(results, {"doctor": ["ok"], "doctor-container": ["note"]})
