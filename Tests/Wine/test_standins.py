"""Tests of the replacements themselves: their answers to an ordinary program."""

import unittest

import stage
from fleet import ADDRESS, CONTROLLER, HEALTH, Disk, line, refusal, tree

DISK = Disk(5, "PROBED", "A Drive", 0x1234, (0, 1, 2, 3), driver="StorNVMe", interfaces=("\\\\?\\other",))
IDENTIFY, HEALTH_LOG = ("1", "1", "4096"), ("2", "2", "512")
PATH = "\\\\.\\PhysicalDrive5"
IO_DEVICE_ERROR, INVALID_FUNCTION, INVALID_PARAMETER = 1117, 1, 87


class StandIns(unittest.TestCase):
    """A driver with one disk."""

    @classmethod
    def setUpClass(cls):
        cls.machine = stage.machine()
        cls.machine.equip((DISK,))

    def asked(self, *questions, path=PATH):
        """The output of the probe for these queries to the disk."""
        run = self.machine.prefix.run(self.machine.probe, path, *(word for each in questions for word in each))
        return run.out.splitlines()

    def test_tree(self):
        """the device tree is the one in the file, in its order, and follows the file"""
        def devices():
            return self.machine.prefix.run(self.machine.probe).out.splitlines()

        self.assertEqual(devices(), [
            "device 0 HTREE\\ROOT\\0 error 37", "device 1 ROOT\\SYSTEM\\0000 error 37", "device 1 ACPI\\PNP0A08\\0 pci",
            "device 2 PCI\\VEN_1234&DEV_0A54\\5 StorNVMe",
            "device 3 SCSI\\DISK&VEN_NVME&PROD_5\\5&5&0&000000 disk",
            "interface 122 \\\\?\\other", f"interface 122 \\\\?\\{DISK.link}", "device 1 SW\\LAST\\0 swenum"])
        self.machine.storage.tree(line(0, "ONLY", {ADDRESS: 1}))
        self.assertEqual(devices(), ["device 0 ONLY error 37"])
        self.machine.storage.tree("")
        self.assertEqual(devices(), [])
        self.machine.storage.tree(tree((DISK,)))

    def test_pages(self):
        """a disk can be opened by its number and by its interface, and gives the bytes of the files"""
        for path in (PATH, f"\\\\?\\{DISK.link}"):
            number, identify, health = self.asked(IDENTIFY, HEALTH_LOG, path=path)
            self.assertEqual(number, "number 5 12")
            self.assertEqual(identify, f"page {48 + 4096} 40 4096 {DISK.pages()[CONTROLLER][:16].hex()}")
            self.assertEqual(health, f"page {48 + 512} 40 512 {DISK.pages()[HEALTH][:16].hex()}")
        self.assertEqual(self.asked(("2", "0xCA", "512"), ("3", "1", "64"))[1:],
                         [f"error {INVALID_FUNCTION}", f"error {INVALID_PARAMETER}"])
        other = bytes(range(100, 116)).ljust(512, b"\0")
        self.machine.storage.page(DISK, HEALTH, other)
        self.assertEqual(self.asked(HEALTH_LOG)[1], f"page {48 + 512} 40 512 {other[:16].hex()}")

    def test_manners(self):
        """a page is refused, refused at first, or answered with wrong sizes, as its file says"""
        refused, answered = f"error {IO_DEVICE_ERROR}", DISK.pages()[CONTROLLER][:16].hex()
        whole = f"page {48 + 4096} 40 4096 {answered}"
        for how, expected in ((refusal(), [refused] * 3), (refusal(times=2), [refused, refused, whole]),
                              ("offset=5000", [f"page {48 + 4096} 5000 4096 {answered}"]),
                              ("length=100", [f"page {48 + 4096} 40 100 {answered}"]),
                              ("returned=70", [f"page 70 40 4096 {answered}"]), ("", [whole])):
            with self.subTest(how=how):
                self.machine.storage.how(DISK, CONTROLLER, how)
                self.assertEqual(self.asked(*[IDENTIFY] * len(expected))[1:], expected)

    def test_requests(self):
        """the log has every request with its answer"""
        self.machine.storage.forget_requests()
        self.asked(IDENTIFY, ("2", "0xC5", "512"))
        self.assertEqual(self.machine.storage.requests(),
                         [(5, "device-number", 0), (5, CONTROLLER, 0), (5, "log-c5", 0xC0000010)])

    def test_stopped(self):
        """the disks of a stopped driver cannot be opened until it is started again"""
        self.machine.stop()
        self.assertEqual(self.asked(), ["closed 2"])
        self.machine.start()
        self.assertEqual(self.asked(), ["number 5 12"])
