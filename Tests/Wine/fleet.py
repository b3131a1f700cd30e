"""Disks for the test's driver: their pages, and the devices that the system has for them."""

import dataclasses
import struct

DISK_INTERFACE = "{53f56307-b6bf-11d0-94f2-00a0c91efb8b}"
COMPATIBLE_IDS, SERVICE, BUS_NUMBER, LOCATION, ADDRESS, LOCATION_PATHS = 0x03, 0x05, 0x16, 0x0E, 0x1D, 0x24

ADDRESS_ON_BUS = "scsi-address"
TEMPERATURES, LEGACY_SMART, MARKETING = "log-c5", "log-ca", "log-dd"
CONTROLLER, NAMESPACE, HEALTH = "identify-controller", "identify-namespace", "log-02"


def refusal(status=0xC0000185, times=None):
    """How the driver answers a page that cannot be read: never, or after so many failures since each enumeration."""
    return f"status={status:#x}" + (f" failures={times}" if times is not None else "")


def temperature_page(now, limit):
    """Intel's temperature statistics."""
    page = bytearray(512)
    page[0], page[104] = now, limit
    return bytes(page)


def legacy_page(wear, spare):
    """Intel's legacy SMART values."""
    page = bytearray(512)
    page[27], page[99] = wear, spare
    return bytes(page)


def text_page(text):
    """A page that begins with a text."""
    return text.encode().ljust(512, b"\0")


@dataclasses.dataclass(frozen=True)
class Disk:
    """
    A controller with one disk. `place` is segment, bus, device and function; `logs` are vendor pages by their name;
    `how` says of a page how it is answered; `interfaces` stand before the disk's own; the capacity is in blocks.
    """

    number: int
    serial: str
    model: str
    vendor: int
    place: tuple
    firmware: str = "FW-1"
    tag: bytes = b""
    driver: str = "stornvme"
    service: str = "disk"
    blocks: int = 1 << 21
    block_shift: int = 9
    warning: int = 0
    kelvin: int = 310
    spare: int = 100
    threshold: int = 10
    read: int = 1234
    written: int = 56789
    counter_128: int = 77
    counter_160: int = 5
    logs: dict = dataclasses.field(default_factory=dict)
    how: dict = dataclasses.field(default_factory=dict)
    interfaces: tuple = ()

    @property
    def link(self):
        """Its interface, as the driver names it."""
        return f"scsi#disk&ven_nvme&prod_{self.number}#5&{self.number:x}&0&000000#{DISK_INTERFACE}"

    @property
    def address(self):
        """Where its controller is, as ostrel writes it."""
        segment, bus, device, function = self.place
        return f"{segment:04x}:{bus:02x}:{device:02x}.{function:x}"

    def _controller(self):
        page = bytearray(4096)
        struct.pack_into("<HH20s40s8s", page, 0, self.vendor, 0xAAAA, self.serial.encode().ljust(20),
                         self.model.encode().ljust(40), self.firmware.encode().ljust(8))
        page[3100:3100 + len(self.tag)] = self.tag
        return bytes(page)

    def _namespace(self):
        page = bytearray(4096)
        # Size, capacity and use differ, as do the formats: the second is in use.
        struct.pack_into("<QQQ", page, 0, self.blocks, self.blocks - 1, self.blocks - 2)
        page[25], page[26] = 1, 1
        page[128 + 2], page[132 + 2] = 11, self.block_shift
        return bytes(page)

    def _health(self):
        page = bytearray(512)
        struct.pack_into("<BHBB", page, 0, self.warning, self.kelvin, self.spare, self.threshold)
        for offset, value in ((32, self.read), (48, self.written), (112, 9112), (128, self.counter_128),
                              (144, 9144), (160, self.counter_160), (176, 9176)):
            struct.pack_into("<Q", page, offset, value)
        return bytes(page)

    def pages(self):
        """Its pages by their name."""
        return {CONTROLLER: self._controller(), NAMESPACE: self._namespace(), HEALTH: self._health(), **self.logs}

    def devices(self, depth):
        """The tree's lines for it and its controller."""
        segment, bus, device, function = self.place
        properties = {SERVICE: self.driver, BUS_NUMBER: segment << 8 | bus, ADDRESS: device << 16 | function,
                      LOCATION: f"PCI bus {bus}, device {device}, function {function}",
                      LOCATION_PATHS: f"PCIROOT({segment})#PCI({device:02X}{function:02X})"}
        instance = f"PCI\\VEN_{self.vendor:04X}&DEV_0A54\\{self.number}"
        disk = f"SCSI\\DISK&VEN_NVME&PROD_{self.number}\\5&{self.number:X}&0&000000"
        return [line(depth, instance, properties),
                line(depth + 1, disk, {SERVICE: self.service}, (*self.interfaces, f"\\\\?\\{self.link}"))]


def line(depth, instance, properties=None, interfaces=()):
    """A line of the tree."""
    fields = [instance, *(f"{number:#x}={value}" for number, value in (properties or {}).items()),
              *(f"interface={path}" for path in interfaces)]
    return " " * depth + "\t".join(fields)


def tree(disks, others=()):
    """A device tree with the disks, some below a bridge and some not, and lines of `others` between them."""
    lines = ["HTREE\\ROOT\\0", line(1, "ROOT\\SYSTEM\\0000"), line(1, "ACPI\\PNP0A08\\0", {SERVICE: "pci"})]
    for index, disk in enumerate(disks):
        if index % 2:
            lines.append(line(2, f"PCI\\VEN_8086&DEV_2030\\{disk.number}", {SERVICE: "pci"}))
        lines += disk.devices(2 + index % 2)
        if index == 0:
            lines += others
    return "\n".join([*lines, line(1, "SW\\LAST\\0", {SERVICE: "swenum"})]) + "\n"


class Storage:
    """The driver's files in a prefix."""

    def __init__(self, drive_c):
        self.folder = drive_c / "StorageTest"

    def _write(self, name, data):
        """Replaces all files at once, because the driver and the library may read at any time."""
        target = self.folder / name
        target.parent.mkdir(parents=True, exist_ok=True)
        fresh = target.with_name(target.name + ".fresh")
        fresh.write_bytes(data)
        fresh.rename(target)

    def disks(self, disks):
        """Sets the disks of the driver's next start."""
        self._write("disks.txt", "".join(f"{disk.number} {disk.link}\n" for disk in disks).encode())
        for disk in disks:
            for page, data in disk.pages().items():
                self.page(disk, page, data)
            for page, how in disk.how.items():
                self.how(disk, page, how)

    def page(self, disk, name, data):
        """Replaces a page from now on."""
        self._write(f"{disk.number}/{name}.bin", data)

    def how(self, disk, name, text=""):
        """Changes how a page is answered from now on; without a text, it is answered normally."""
        self._write(f"{disk.number}/{name}.how", text.encode())

    def tree(self, text):
        """Replaces the device tree from now on."""
        self._write("tree.txt", text.encode())

    def requests(self):
        """The requests that the driver got: disk, page and status."""
        lines = (self.folder / "requests.log").read_text().splitlines()
        return [(int(disk), page, int(status, 16)) for disk, page, status in map(str.split, lines)]

    def forget_requests(self):
        """Begins a new list of requests."""
        (self.folder / "requests.log").write_text("")
