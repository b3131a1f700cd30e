"""The content of a disk's pages, in the form that ostrel must show."""

import struct

import fleet
import inventory

FAMILY_PREFIXES = {"INTEL": ("INTEL", 6), "SAMSUNG": ("SAMSUNG", 8), "MICRON": ("MICRON_7450_", 12)}
GOOD_SPARE, WORN_SPARE, FAILED_SPARE = 40252, 40410, 40411


def ratings(file):
    """The endurance table: model texts and tebibytes."""
    rows = []
    for text in file.read_text(encoding="utf-8").splitlines():
        if text.strip() and not text.startswith("#"):
            model, terabytes = text.split("|")
            rows.append((model.strip(), int(terabytes) * 10**12 >> 40))
    return rows


def _text(field):
    return field.split(b"\0")[0].decode("ascii").strip()


def _short_model(vendor, model):
    prefix, cut = FAMILY_PREFIXES.get(vendor, (None, 0))
    return model[cut:] if prefix and model.startswith(prefix) else model


def _product(vendor, model, marketing):
    if vendor == "MICRON":
        return model.replace("_", " ")
    if vendor != "INTEL":
        return model
    part = model.partition(" ")[2] or model
    family = _text(marketing).partition(" Series")[0].strip()
    return f"{family} {part}" if family else part


def _amount(units):
    return units * inventory.UNIT_BYTES


def _health(vendor, log, legacy):
    """Status, reasons and state of the spare."""
    status, reasons = inventory.health(log[0])
    spare_state = GOOD_SPARE
    if vendor == "INTEL" and legacy:
        spare = legacy[99]
        if spare < 100 and status == inventory.HEALTHY:
            status = 40150
        if spare != 100:
            spare_state = WORN_SPARE if spare < 100 and not log[0] & 8 else FAILED_SPARE
    return status, reasons, spare_state


def truth(disk, pages, rated, driver_version):
    """Field -> source -> value, as `inventory.compare` takes it."""
    controller, log = pages[fleet.CONTROLLER], pages[fleet.HEALTH]
    namespace = pages[fleet.NAMESPACE]
    vendor = inventory.VENDORS.get(struct.unpack_from("<H", controller)[0], "")
    model = _text(controller[24:64])
    known = model.startswith(inventory.KNOWN_FAMILIES)
    serial = _text(controller[4:24])
    blocks = struct.unpack_from("<Q", namespace)[0]
    block_size = 1 << namespace[128 + 4 * (namespace[26] & 15) + 2]
    temperature = struct.unpack_from("<H", log, 1)[0] - 273
    rating = next((tebibytes for text, tebibytes in rated if text in model), 1)
    status, reasons, spare_state = _health(vendor, log, pages.get(fleet.LEGACY_SMART))
    tag = _text(controller[3100:3108]) if vendor == "INTEL" else ""
    # An adapter's properties have the segment only where all other numbers are 0.
    place = disk.place if disk.place[1:] == (0, 0, 0) else (0, *disk.place[1:])
    location = inventory.location(*disk.place)

    def at(offset):
        return struct.unpack_from("<Q", log, offset)[0]

    values = {
        "serial": serial, "model": _short_model(vendor, model), "firmware": _text(controller[64:72]),
        "vendor": vendor, "vendor tag": tag or None, "product": _product(vendor, model, pages.get(fleet.MARKETING, b"")),
        "family": 40480 if known else 40488, "device": f".PhysicalDrive{disk.number}", "driver": disk.driver,
        "driver version": driver_version, "pci": place, "address": disk.place, "location": location,
        "drive location": f"{location}&ID=0",
        "capacity": blocks * block_size >> 20, "capacity in bytes": blocks * block_size >> 20 << 20, "block size": block_size, "temperature": temperature,
        "adapter temperature": temperature if known else None,
        "drive temperature": None if known else temperature, "spare": log[3], "spare threshold": log[4],
        "data read": _amount(at(32)), "data written": _amount(at(48)),
        "endurance used": (_amount(at(48)) >> 40) * 100 // rating, "counter 128": at(128), "counter 160": at(160),
        "health": status, "reasons": reasons, "spare state": spare_state, "disk state": 40099,
    } | inventory.page_values(controller, log)
    return {field: {"pages": value} for field, value in values.items()}


def told(report, disk):
    """The same fields, as ostrel shows them for the controller with the disk's serial number."""
    (adapter,) = (each for each in report.of_type(inventory.ADAPTER) if each.value(30022) == disk.serial)
    (drive,) = (each for each in report.of_type(inventory.DRIVE) if each.id in adapter.children)
    return {**report.told(disk.serial, disk.address),
            "spare state": {"adapter 30468": adapter.value(30468)}, "disk state": {"drive 30017": drive.value(30017)}}
