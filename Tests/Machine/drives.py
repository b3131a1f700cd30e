"""Emulated NVMe controllers, described for QEMU."""

import dataclasses

MIB = 1 << 20


@dataclasses.dataclass(frozen=True)
class Namespace:
    """A namespace that is a separate device for QEMU."""

    nsid: int
    size: int
    options: dict = dataclasses.field(default_factory=dict)


@dataclasses.dataclass(frozen=True)
class Controller:
    """
    One controller. With a `size` it has one namespace, and can be plugged and unplugged while the guest runs;
    otherwise it has the `namespaces`, and `shared` more of the other controllers of its `subsystem`. It sits
    behind a root port of its own: of the first root bus, of the one numbered `root_bus`, or, with an `address`
    such as "1a.3", it is part of the root complex. `options` are properties of QEMU's device.
    """

    name: str
    serial: str
    size: int = 0
    namespaces: tuple = ()
    shared: int = 0
    subsystem: str = ""
    root_bus: int = 0
    address: str = ""
    options: dict = dataclasses.field(default_factory=dict)

    def namespace_count(self):
        """How many namespaces belong to it."""
        return 1 if self.size else len(self.namespaces)

    def path_count(self):
        """How many namespaces can be reached through it."""
        return self.namespace_count() + self.shared

    def backends(self):
        """The storage of the namespaces: none, because no test needs written data."""
        sizes = {self.name: self.size} if self.size else {f"{self.name}-{n.nsid}": n.size for n in self.namespaces}
        return [{"driver": "null-co", "node-name": name, "size": size, "read-zeroes": True}
                for name, size in sizes.items()]

    def port(self, number):
        """Its root port, the `number`-th of the machine."""
        bus = f"root-{self.root_bus}" if self.root_bus else "pcie.0"
        return {"driver": "pcie-root-port", "id": f"port-{self.name}", "bus": bus, "chassis": number,
                "slot": number}

    def device(self):
        """The controller, as a device for the command line or for device_add."""
        place = {"bus": "pcie.0", "addr": self.address} if self.address else {"bus": f"port-{self.name}"}
        drive = {"drive": self.name} if self.size else {}
        subsystem = {"subsys": self.subsystem} if self.subsystem else {}
        return {"driver": "nvme", "id": self.name, "serial": self.serial, **place, **drive, **subsystem,
                **self.options}

    def namespace_devices(self):
        """The namespaces, as devices for the command line."""
        return [{"driver": "nvme-ns", "id": f"{self.name}-ns{n.nsid}", "bus": self.name, "nsid": n.nsid,
                 "drive": f"{self.name}-{n.nsid}", **n.options} for n in self.namespaces]


def devices(drives, later=()):
    """All devices that a machine with `drives` needs, with ports for those plugged in `later`."""
    for bus in sorted({drive.root_bus for drive in drives} - {0}):
        yield {"driver": "pxb-pcie", "id": f"root-{bus}", "bus": "pcie.0", "bus_nr": bus}
    for subsystem in sorted({drive.subsystem for drive in drives} - {""}):
        yield {"driver": "nvme-subsys", "id": subsystem}
    ported = [drive for drive in (*drives, *later) if not drive.address]
    for number, drive in enumerate(ported, 1):
        yield drive.port(number)
    for drive in drives:
        yield drive.device()
    for drive in drives:
        yield from drive.namespace_devices()
