"""One inventory of many different disks, compared with their pages."""

import time
import unittest

import fleet
import inventory
import stage
import truth
from fleet import CONTROLLER, LEGACY_SMART, MARKETING, SERVICE, TEMPERATURES, Disk, legacy_page, line, refusal, \
    temperature_page, text_page
from standins import DRIVER_VERSION

INTEL, SAMSUNG, KIOXIA, MICRON, NOBODY = 0x8086, 0x144D, 0x1E0F, 0x1344, 0x1234

FLAKY = Disk(21, "FLAKY", "Slow Starter", NOBODY, (0, 9, 0, 0), how={CONTROLLER: refusal(times=2)})
EXCLUDED = Disk(40, "EXCLUDED", "INTEL SSDPF21Q016TB", INTEL, (0, 0x40, 0, 0))
UNVISITED = Disk(41, "UNVISITED", "Second Child", NOBODY, (0, 0x41, 0, 0))

SHOWN = (
    Disk(7, "PHLN7", "INTEL SSDPE2KX010T8", INTEL, (0, 3, 0, 0), tag=b"VT-77\0no", driver="StorNVMe", written=9 << 31,
         logs={TEMPERATURES: temperature_page(60, 40), LEGACY_SMART: legacy_page(97, 100),
               MARKETING: text_page("Intel(R) SSD DC P4510 Series (1 TB)")}),
    Disk(1, "PHKS1", "INTEL SSDPED1K375GA", INTEL, (0, 0x17, 3, 1), tag=b"EIGHTCHRx", kelvin=333,
         logs={TEMPERATURES: temperature_page(100, 16), LEGACY_SMART: legacy_page(3, 80),
               MARKETING: text_page("  Family without the word  ")}),
    Disk(12, "MIC12", "MICRON_7450_MTFDKBA960TFR", MICRON, (0, 0x18, 0, 0), blocks=1875385008),
    Disk(13, "SAM13", "SAMSUNG MZPLJ3T2HBJR-00007", SAMSUNG, (0, 0x19, 31, 7), kelvin=273),
    Disk(14, "KIO14", "KIOXIA KCD61LUL3T84", KIOXIA, (0, 0x1A, 0, 0), driver="STORNVME", blocks=937684566,
         block_shift=12, warning=0b01001, spare=3, threshold=10),
    Disk(15, "x');DROP TABLE PD;--", "Nameless_1", NOBODY, (1, 0, 0, 0), warning=0b10110),
    Disk(16, "OTHER-MAKER", "INTEL SSDPF21Q016TB", NOBODY, (2, 0x21, 0, 0)),
    FLAKY,
    Disk(22, "TWO-DOORS", "Second Door", NOBODY, (0, 10, 0, 0), interfaces=("\\\\?\\scsi#disk#locked",)),
    Disk(23, "LOGLESS", "INTEL SSDPF2KX038TZ", INTEL, (0, 11, 0, 0), service="DISK"),
    Disk(24, "DEGRADED", "INTEL SSDPF2KX076TZ", INTEL, (0, 12, 0, 0), warning=0b1000, counter_128=(1 << 40) + 1,
         logs={LEGACY_SMART: legacy_page(90, 99), MARKETING: text_page("Intel Series Series")}),
)

# None of these provides a disk: they are not the first child, no disk, or have a controller of another driver.
OTHERS = (
    line(2, "PCI\\CHILDLESS\\1", {SERVICE: "stornvme"}),
    line(2, "PCI\\ENCLOSURE\\1", {SERVICE: "stornvme"}),
    line(3, "SCSI\\ENCLOSURE\\1"),
    line(3, "SCSI\\DISK\\A", {SERVICE: "disk"}, (f"\\\\?\\{UNVISITED.link}",)),
    line(2, "PCI\\LONGER\\1", {SERVICE: "stornvmex"}),
    line(3, "SCSI\\DISK\\B", {SERVICE: "disk"}, (f"\\\\?\\{UNVISITED.link}",)),
    line(2, "PCI\\SHORTER\\1", {SERVICE: "stornvm"}),
    line(3, "SCSI\\DISK\\C", {SERVICE: "disk"}, (f"\\\\?\\{UNVISITED.link}",)),
    line(2, "PCI\\NAMELESS\\1", {SERVICE: ""}),
    line(3, "SCSI\\DISK\\D", {SERVICE: "disk"}, (f"\\\\?\\{UNVISITED.link}",)),
)
DISKLESS = ("PCI\\CHILDLESS\\1", "PCI\\ENCLOSURE\\1")

# The requests that only read, by their names in the driver's log.
READING = {"device-number", fleet.ADDRESS_ON_BUS, fleet.CONTROLLER, fleet.NAMESPACE, fleet.HEALTH, TEMPERATURES, LEGACY_SMART, MARKETING}
# The least number of comparisons for a disk. Fewer mean that both sides lost a field.
COMPARISONS = 45


class Devices(unittest.TestCase):
    """Twelve disks that all differ, among other devices."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.machine = stage.machine()
        # Disks that are left out come last, because locations are found by number.
        cls.machine.equip((*SHOWN, UNVISITED, EXCLUDED), OTHERS)
        cls.machine.storage.tree(fleet.tree((*SHOWN, EXCLUDED), OTHERS))

    def output(self, *arguments, code=0):
        """The output of ostrel. It must have ended with this exit code."""
        run = self.machine.ostrel(*arguments)
        self.assertEqual(run.code, code, run.err + run.out)
        return run.out

    @staticmethod
    def rated():
        """The endurance table that is installed."""
        return truth.ratings(stage.product / "share" / "ostrel" / "Endurance.txt")

    def assert_agreement(self, disks, pages=lambda disk: disk.pages()):
        """Compares every disk with its pages, and their order with the tree's."""
        report = inventory.Report(self.output("list", "--json"), self.output("topology", "--json"))
        self.assertEqual([entry["serial"] for entry in report.entries], [disk.serial for disk in disks])
        failures, total = [], 0
        for disk in disks:
            count, wrong = inventory.compare(truth.truth(disk, pages(disk), self.rated(), DRIVER_VERSION),
                                             truth.told(report, disk))
            total += count
            failures += [f"{disk.serial}: {each}" for each in wrong]
            if count < COMPARISONS:
                failures.append(f"{disk.serial}: only {count} comparisons")
        if failures:
            self.fail("\n".join(failures))
        print(f"      {total} comparisons on {len(disks)} disks")
        return report

    def test_agreement(self):
        """every field of every disk agrees with its pages, in list and in topology"""
        report = self.assert_agreement(SHOWN)
        (plugin,) = report.of_type(inventory.PLUGIN)
        adapters = report.of_type(inventory.ADAPTER)
        self.assertEqual(plugin.children, [each.id for each in adapters])
        self.assertEqual([each.parents for each in adapters], [[plugin.id]] * len(SHOWN))
        self.assertEqual([each.parents for each in report.of_type(inventory.DRIVE)], [[each.id] for each in adapters])

    def test_changed(self):
        """the next run sees changed pages, also of a drive's health"""
        changed = {disk.number: dict(disk.pages()) for disk in SHOWN}
        for number, disk in enumerate(SHOWN):
            page = bytearray(changed[disk.number][fleet.HEALTH])
            page[0] = 1 << number % 5
            page[3], page[32], page[128], page[160] = 55 + number, number, 200 + number, 7 * number
            changed[disk.number][fleet.HEALTH] = bytes(page)
            self.machine.storage.page(disk, fleet.HEALTH, bytes(page))
        try:
            self.assert_agreement(SHOWN, lambda disk: changed[disk.number])
        finally:
            for disk in SHOWN:
                self.machine.storage.page(disk, fleet.HEALTH, disk.pages()[fleet.HEALTH])

    def test_noticed(self):
        """the comparison finds each single field that differs between the pages and ostrel"""
        report = inventory.Report(self.output("list", "--json"), self.output("topology", "--json"))
        disk = SHOWN[0]
        told = truth.told(report, disk)
        for page, places in ((fleet.CONTROLLER, (0, 4, 24, 30, 64, 81, 266, 281, 516, 3100)),
                             (fleet.NAMESPACE, (2, 26, 134)),
                             (fleet.HEALTH, (0, 1, 3, 4, 5, 33, 52, 64, 112, 128, 144, 160, 192, 200, 224)),
                             (LEGACY_SMART, (99,)), (MARKETING, (3,))):
            for place in places:
                with self.subTest(page=page, place=place):
                    pages = {name: bytearray(data) for name, data in disk.pages().items()}
                    pages[page][place] ^= 1
                    expected = truth.truth(disk, pages, self.rated(), DRIVER_VERSION)
                    self.assertNotEqual(inventory.compare(expected, told)[1], [])

    def test_texts(self):
        """list and topology without --json name each disk, and no other"""
        for command in ("list", "topology"):
            text = self.output(command)
            for disk in SHOWN:
                self.assertIn(disk.serial, text, command)
            for disk in (EXCLUDED, UNVISITED):
                self.assertNotIn(disk.serial, text, command)

    def test_show(self):
        """show finds a disk by its serial number, and single properties of it"""
        for disk in SHOWN[:1] + SHOWN[5:6]:
            shown = stage.document(self.machine.ostrel("show", disk.serial, "--json"))["objects"]
            values = [inventory.Object(each).value(30022) for each in shown]
            self.assertEqual(values, [disk.serial] * len(shown))
            self.assertTrue(shown)
            text = self.output("show", disk.serial)
            self.assertIn(disk.serial, text)
            self.assertIn(f".PhysicalDrive{disk.number}", text)
            self.assertEqual(self.output("show", disk.serial, "30020"), disk.firmware + "\n")
        self.assertEqual(self.machine.ostrel("show", EXCLUDED.serial).code, 5)

    def test_doctor(self):
        """doctor finds no problem, and names the controllers that are left out and the reason"""
        self.output("doctor")
        checks = stage.document(self.machine.ostrel("doctor", "--json"))["checks"]
        self.assertEqual([check for check in checks if check["result"] == "problem"], [])
        said = {}
        for check in checks:
            said[check["subject"]] = said.get(check["subject"], "") + check["message"]
        for name in DISKLESS:
            self.assertIn("provides no disk", said[name])
        self.assertIn("left out on purpose", said[f"PCI\\VEN_8086&DEV_0A54\\{EXCLUDED.number}"])
        self.assertIn(f"{len(SHOWN)} adapters", said["inventory"])

    def test_requests(self):
        """one list queries each disk once, the slow one until it answers, and sends only requests that read"""
        self.machine.storage.forget_requests()
        started = time.monotonic()
        self.output("list")
        self.assertGreaterEqual(time.monotonic() - started, 2 * 0.5)
        requests = self.machine.storage.requests()
        for disk in SHOWN:
            asked = [status for number, page, status in requests if (number, page) == (disk.number, CONTROLLER)]
            self.assertEqual(asked, [0xC0000185, 0xC0000185, 0] if disk is FLAKY else [0], disk.serial)
        intel = {disk.number for disk in SHOWN if disk.vendor == INTEL}
        # A round may ask every disk of the maker for it, also the one that is left out.
        self.assertEqual({number for number, page, _ in requests if page == LEGACY_SMART} - {EXCLUDED.number}, intel)
        self.assertEqual({page for _, page, _ in requests}, READING)
        self.assertNotIn(UNVISITED.number, {number for number, _, _ in requests})

    def test_traceless(self):
        """looking leaves no file behind and changes none"""
        def files():
            folders = ("Ostrel", "ProgramData", "users")
            return {path: path.stat().st_mtime_ns for folder in folders
                    for path in (self.machine.prefix.drive_c / folder).rglob("*") if path.is_file()}

        before = files()
        for command in ("list", "topology", "doctor"):
            self.output(command)
        self.assertEqual(files(), before)
        self.assertGreater(len(before), 5)


class Doors(unittest.TestCase):
    """A disk that has several interfaces."""

    def test_several(self):
        """each interface that can be opened has a line of its own, in order, with the location of its controller"""
        inner = Disk(61, "INNER", "Drive", NOBODY, (0, 2, 0, 0))
        outer = Disk(62, "OUTER", "Drive", NOBODY, (0, 1, 0, 0), interfaces=("\\\\?\\nothing", f"\\\\?\\{inner.link}"))
        behind = Disk(63, "BEHIND", "Drive", NOBODY, (0, 3, 0, 0))
        machine = stage.machine()
        machine.equip((inner, outer, behind))
        machine.storage.tree(fleet.tree((outer, behind)))
        run = machine.ostrel("list", "--json")
        self.assertEqual(run.code, 0, run.err)
        self.assertEqual([(entry["serial"], entry["device"], entry["pciAddress"])
                          for entry in stage.document(run)["drives"]],
                         [("INNER", ".PhysicalDrive61", outer.address), ("OUTER", ".PhysicalDrive62", outer.address),
                          ("BEHIND", ".PhysicalDrive63", behind.address)])


class Namespaces(unittest.TestCase):
    """Drivers that expect the namespace of Identify Namespace in different forms."""

    REFUSED = 0xC000000D
    DISK = Disk(65, "NAMED", "Drive", NOBODY, (0, 1, 0, 0))

    def asked(self, address, accepted):
        """The statuses of Identify Namespace in one list, if the driver accepts only one sub-value."""
        machine = stage.machine()
        machine.equip((self.DISK,))
        machine.storage.how(self.DISK, fleet.ADDRESS_ON_BUS, address)
        machine.storage.how(self.DISK, fleet.NAMESPACE, f"subvalue={accepted}")
        run = machine.ostrel("list", "--json")
        self.assertEqual(run.code, 0, run.err)
        (drive,) = stage.document(run)["drives"]
        statuses = [status for _, page, status in machine.storage.requests() if page == fleet.NAMESPACE]
        return drive["capacityMiB"], statuses

    def test_named(self):
        """a driver that refuses the sub-value 0 is told the namespace of its logical unit"""
        self.assertEqual(self.asked("", 1), (1024, [0]))
        self.assertEqual(self.asked("unit=4", 5), (1024, [0]))

    def test_nameless(self):
        """a driver that refuses any other sub-value is asked once more with 0"""
        self.assertEqual(self.asked("", 0), (1024, [self.REFUSED, 0]))
        self.assertEqual(self.asked("unit=4", 0), (1024, [self.REFUSED, 0]))

    def test_unplaced(self):
        """a driver that does not tell the logical unit is asked with 0 at once"""
        self.assertEqual(self.asked(refusal(0xC0000010), 0), (1024, [0]))
