"""Disks that fail, give wrong answers, or go away."""

import time
import unittest

import fleet
import stage
from fleet import CONTROLLER, HEALTH, NAMESPACE, Disk, refusal

PENDING, NOT_CONNECTED = 0x103, 0xC000009D
TRIES = 6
PATIENCE = 60


def serials(run):
    """The serial numbers of the drives that answer in the JSON document of list."""
    return [entry["serial"] for entry in stage.document(run)["drives"] if entry["answering"]]


def silent(run):
    """The devices of the drives that do not answer in the JSON document of list."""
    return [entry["device"] for entry in stage.document(run)["drives"] if not entry["answering"]]


def said_of(run, subject):
    """Doctor's results and messages about a subject in its JSON document, one on each line."""
    return "\n".join(f"{check['result']} {check['message']}" for check in stage.document(run)["checks"]
                     if check["subject"] == subject)


def instance(disk):
    """The name that doctor has for the disk's controller."""
    return f"PCI\\VEN_{disk.vendor:04X}&DEV_0A54\\{disk.number}"


class Broken(unittest.TestCase):
    """Disks that never answer correctly, before and after one that does."""

    GOOD = Disk(1, "GOOD", "Good Drive", 0x1234, (0, 1, 0, 0))
    BEHIND = Disk(9, "BEHIND", "Good Drive", 0x1234, (0, 9, 0, 0))
    DROPPED = {
        "refused": Disk(2, "REFUSED", "Drive", 0x1234, (0, 2, 0, 0), how={CONTROLLER: refusal()}),
        "offset outside": Disk(3, "OUTSIDE", "Drive", 0x1234, (0, 3, 0, 0), how={CONTROLLER: "offset=4096"}),
        "offset far away": Disk(4, "FAR", "Drive", 0x1234, (0, 4, 0, 0), how={CONTROLLER: "offset=0xFFFFFFF8"}),
        "offset in the header": Disk(5, "HEADER", "Drive", 0x1234, (0, 5, 0, 0), how={CONTROLLER: "offset=0"}),
        "fewer bytes": Disk(6, "FEWER", "Drive", 0x1234, (0, 6, 0, 0), how={CONTROLLER: "returned=4000"}),
        "no bytes": Disk(7, "NONE", "Drive", 0x1234, (0, 7, 0, 0), how={CONTROLLER: "returned=0"}),
        "less than promised": Disk(8, "LESS", "Drive", 0x1234, (0, 8, 0, 0), how={CONTROLLER: "length=100"}),
    }

    @classmethod
    def setUpClass(cls):
        cls.machine = stage.machine()
        cls.machine.equip((cls.GOOD, *cls.DROPPED.values(), cls.BEHIND))
        # A disk that does not answer costs two and a half seconds in each.
        cls.list, cls.text, cls.doctor = cls.machine.together("list --json", "list", "doctor --json")

    def test_list(self):
        """disks whose answers are refused, short or out of bounds do not answer, and the others are shown"""
        self.assertEqual((self.list.code, serials(self.list)), (0, ["GOOD", "BEHIND"]))
        self.assertEqual([int(device.rpartition("PhysicalDrive")[2]) for device in silent(self.list)],
                         [disk.number for disk in self.DROPPED.values()])
        self.assertEqual(self.text.code, 0)
        for disk in self.DROPPED.values():
            self.assertNotIn(disk.serial, self.text.out)

    def test_doctor(self):
        """doctor names each of them with its reason, and gives exit code 1"""
        self.assertEqual(self.doctor.code, 1)
        reasons = {}
        for name, disk in self.DROPPED.items():
            with self.subTest(name):
                said = said_of(self.doctor, f"PhysicalDrive{disk.number}")
                self.assertIn("problem does not answer", said)
                reasons[name] = said.split("problem", 1)[1]
        self.assertNotIn("problem", said_of(self.doctor, instance(self.GOOD)))
        self.assertNotEqual(reasons["refused"], reasons["fewer bytes"])
        self.assertNotEqual(reasons["refused"], reasons["offset outside"])
        self.assertNotIn("problem", said_of(self.doctor, instance(self.BEHIND)))

    def test_tries(self):
        """each of them is asked six times"""
        self.machine.storage.forget_requests()
        self.machine.ostrel("list")
        requests = self.machine.storage.requests()
        for disk in self.DROPPED.values():
            asked = sum((number, page) == (disk.number, CONTROLLER) for number, page, _ in requests)
            self.assertEqual(asked, TRIES, disk.serial)


class Partial(unittest.TestCase):
    """Disks that answer Identify Controller only."""

    NO_NAMESPACE = Disk(31, "NO-NAMESPACE", "Drive", 0x1234, (0, 1, 0, 0), how={NAMESPACE: "returned=300"})
    NO_HEALTH = Disk(32, "NO-HEALTH", "Drive", 0x1234, (0, 2, 0, 0), how={HEALTH: "offset=552"})

    @classmethod
    def setUpClass(cls):
        cls.machine = stage.machine()
        cls.machine.equip((cls.NO_NAMESPACE, cls.NO_HEALTH))

    def test_list(self):
        """they are shown, without values that they do not report"""
        run = self.machine.ostrel("list", "--json")
        self.assertEqual((run.code, serials(run)), (0, ["NO-NAMESPACE", "NO-HEALTH"]))
        first, second = stage.document(run)["drives"]
        self.assertEqual((first.get("capacityMiB"), first["temperature"]), (0, 37))
        self.assertEqual((second["capacityMiB"], second.get("temperature")), (1024, None))
        for name in ("dataRead", "powerOnHours", "wear"):
            self.assertIn(name, first)
            self.assertNotIn(name, second)

    def test_doctor(self):
        """doctor names what could not be read"""
        run = self.machine.ostrel("doctor", "--json")
        self.assertEqual(run.code, 1)
        self.assertIn("namespace was not read", said_of(run, "PhysicalDrive31"))
        self.assertIn("health log was not read", said_of(run, "PhysicalDrive32"))


class Pulled(unittest.TestCase):
    """Disks that go away and come back."""

    FIRST = Disk(51, "FIRST", "Drive", 0x1234, (0, 1, 0, 0))
    SECOND = Disk(52, "SECOND", "Drive", 0x1234, (0, 2, 0, 0))
    THIRD = Disk(53, "THIRD", "Drive", 0x1234, (0, 3, 0, 0))

    def setUp(self):
        self.machine = stage.machine()
        self.machine.equip((self.FIRST, self.SECOND, self.THIRD))

    def assert_listed(self, *disks, code=0):
        run = self.machine.ostrel("list", "--json")
        self.assertEqual(run.code, code, run.out + run.err)
        if disks:
            self.assertEqual(serials(run), [disk.serial for disk in disks])

    def test_tree(self):
        """a disk that leaves the device tree is missing in the next list, and shown again after its return"""
        self.assert_listed(self.FIRST, self.SECOND, self.THIRD)
        self.machine.storage.tree(fleet.tree((self.FIRST, self.THIRD)))
        self.assert_listed(self.FIRST, self.THIRD)
        self.machine.storage.tree(fleet.tree((self.THIRD, self.SECOND, self.FIRST)))
        self.assert_listed(self.THIRD, self.SECOND, self.FIRST)

    def test_empty(self):
        """without any controller, or any device tree, list and doctor give exit code 3"""
        for text in (fleet.tree(()), ""):
            self.machine.storage.tree(text)
            self.assert_listed(code=3)
            doctor = self.machine.ostrel("doctor", "--json")
            self.assertEqual(doctor.code, 3)
            self.assertIn("problem", said_of(doctor, "controllers"))

    def test_unserved(self):
        """a controller that another driver serves is not shown, and doctor names its place and that driver"""
        other = fleet.line(2, "PCI\\OTHER\\1", {fleet.COMPATIBLE_IDS: "PCI\\CC_010802", fleet.SERVICE: "vendornvme",
                                               fleet.BUS_NUMBER: 0x82, fleet.ADDRESS: 0x1F0007})
        self.machine.storage.tree(fleet.tree((self.FIRST,), (other,)))
        self.assert_listed(self.FIRST)
        doctor = self.machine.ostrel("doctor", "--json")
        self.assertEqual(doctor.code, 3)
        self.assertIn("vendornvme", said_of(doctor, "0000:82:1f.7"))

    def test_stopped(self):
        """disks that the tree still has but that cannot be opened are not shown, and doctor says so"""
        self.machine.stop()
        self.assert_listed(code=3)
        doctor = self.machine.ostrel("doctor", "--json")
        self.assertEqual(doctor.code, 3)
        for disk in (self.FIRST, self.SECOND, self.THIRD):
            self.assertTrue(said_of(doctor, instance(disk)))
        self.machine.start()
        self.assert_listed(self.FIRST, self.SECOND, self.THIRD)

    def test_meanwhile(self):
        """a disk that goes away while ostrel asks another is left out after its tries, and the others shown"""
        storage = self.machine.storage
        storage.how(self.FIRST, CONTROLLER, "wait")
        process = self.machine.begin("list", "--json")
        deadline = time.monotonic() + PATIENCE
        while (self.FIRST.number, CONTROLLER, PENDING) not in storage.requests():
            self.assertLess(time.monotonic(), deadline, "ostrel does not ask")
            time.sleep(0.02)
        for page in self.SECOND.pages():
            storage.how(self.SECOND, page, refusal(NOT_CONNECTED))
        storage.tree(fleet.tree((self.FIRST, self.THIRD)))
        storage.how(self.FIRST, CONTROLLER)
        run = self.machine.prefix.finish(process)
        self.assertEqual((run.code, serials(run)), (0, ["FIRST", "THIRD"]))
        asked = [status for number, page, status in storage.requests()
                 if (number, page) == (self.SECOND.number, CONTROLLER)]
        self.assertEqual(asked, [NOT_CONNECTED] * TRIES)
