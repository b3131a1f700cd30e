"""Compares what the system's own tools report of a controller with what ostrel reports."""

import json
import math
import struct

VENDORS = {0x8086: "INTEL", 0x144D: "SAMSUNG", 0x1E0F: "KIOXIA", 0x1344: "MICRON"}
KNOWN_FAMILIES = ("INTEL SSDPED", "SAMSUNG MZP")
UNIT_BYTES = 1000 * 512
UNITS = {name: 1024**power for power, name in enumerate(("bytes", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"))}

# Fields of the health log that only list and show print: the member there, byte and size, nvme-cli's and smartctl's name.
LOG_FACTS = [
    ("percentageUsed", 5, 1, "percent_used", "percentage_used"),
    ("hostReadCommands", 64, 8, "host_read_commands", "host_reads"),
    ("hostWriteCommands", 80, 8, "host_write_commands", "host_writes"),
    ("controllerBusyMinutes", 96, 8, "controller_busy_time", "controller_busy_time"),
    ("powerCycles", 112, 8, "power_cycles", "power_cycles"),
    ("unsafeShutdowns", 144, 8, "unsafe_shutdowns", "unsafe_shutdowns"),
    ("errorLogEntries", 176, 8, "num_err_log_entries", "num_err_log_entries"),
    ("warningTemperatureMinutes", 192, 4, "warning_temp_time", "warning_temp_time"),
    ("criticalTemperatureMinutes", 196, 4, "critical_comp_time", "critical_comp_time"),
    ("thermalTransitions1", 216, 4, "thm_temp1_trans_count", None),
    ("thermalTransitions2", 220, 4, "thm_temp2_trans_count", None),
    ("thermalSeconds1", 224, 4, "thm_temp1_total_time", None),
    ("thermalSeconds2", 228, 4, "thm_temp2_total_time", None),
]

# Bit of the critical warning -> status and reason, in the order in which the bits are tested.
WARNINGS = {1: (40150, 40459), 0: (40150, 40460), 4: (40095, 40449), 2: (40095, 40487), 3: (40095, 40452)}
HEALTHY = 40024

ADAPTER, DRIVE, PLUGIN = 19038, 19018, 19006


class Files:
    """The collected files of one controller."""

    def __init__(self, files, folder):
        self._files, self._folder = files, folder

    def bytes(self, name):
        return self._files[f"{self._folder}/{name}"]

    def text(self, name):
        return self.bytes(name).decode().strip()

    def json(self, name):
        return json.loads(self.bytes(name))

    def first_namespace(self):
        """The folder of the namespace with the lowest identifier; None when there is none."""
        start = f"{self._folder}/namespaces/"
        ids = {int(name[len(start):].split("/")[0]) for name in self._files if name.startswith(start)}
        return f"namespaces/{min(ids)}" if ids else None


def health(warning):
    """The status and the reasons of a critical warning byte."""
    status, reasons = HEALTHY, []
    for bit, (code, reason) in WARNINGS.items():
        if warning >> bit & 1:
            status = code
            reasons.append(reason)
    return status, reasons


def _pci(address):
    segment, bus, rest = address.split(":")
    device, function = rest.split(".")
    return tuple(int(part, 16) for part in (segment, bus, device, function))


def location(segment, bus, device, function):
    """The location text of a controller at this address."""
    place = f"Bus={bus}&Device={device}&Function={function}"
    shown = segment if (bus, device, function) == (0, 0, 0) else 0
    return f"PCI:Segment={shown}&{place}" if shown else f"PCI:{place}"


def celsius(kelvin):
    """How a temperature in kelvin is shown. 0 means that there is none."""
    return kelvin - 273 if kelvin else None


def version(word):
    """The text of a version word; None when it is 0."""
    tertiary = f".{word & 255}" if word & 255 else ""
    return f"{word >> 16}.{word >> 8 & 255}{tertiary}" if word else None


def page_values(raw, log):
    """
    Field -> value, for fields of the drive's own pages that the plug-in does not report: `raw` is the identify data,
    `log` the health log. None means that nothing may be shown.
    """
    def number(page, offset, size):
        return int.from_bytes(page[offset:offset + size], "little")

    total, unallocated = number(raw, 280, 16), number(raw, 296, 16)
    return {name: number(log, offset, size) for name, offset, size, *_ in LOG_FACTS} | {
        f"temperatureSensor{sensor}": celsius(number(log, 198 + 2 * sensor, 2)) for sensor in range(1, 9)} | {
        "warningTemperature": celsius(number(raw, 266, 2)),
        "criticalTemperature": celsius(number(raw, 268, 2)),
        "nvmeVersion": version(number(raw, 80, 4)),
        "namespaceLimit": number(raw, 516, 4) or None,
        "totalCapacityBytes": total or None,
        "unallocatedCapacityBytes": unallocated if total else None,
    }


def page_facts(id_ctrl, raw, smart, log, smartctl_log):
    """Field -> source -> value, for the fields of `page_values`."""
    values = page_values(raw, log)
    facts = {name: {"pages": value} for name, value in values.items()}
    for name, _, _, nvme, smart_name in LOG_FACTS:
        facts[name]["nvme smart-log"] = int(smart[nvme])
        # Old versions do not print fields that they do not know.
        if smart_name in smartctl_log:
            facts[name]["smartctl"] = smartctl_log[smart_name]
    for sensor in range(1, 9):
        # nvme-cli leaves out a sensor of 0 kelvin.
        facts[f"temperatureSensor{sensor}"]["nvme smart-log"] = celsius(smart.get(f"temperature_sensor_{sensor}", 0))
    has_total = values["totalCapacityBytes"] is not None
    for name, value in {
            "warningTemperature": celsius(id_ctrl["wctemp"]), "criticalTemperature": celsius(id_ctrl["cctemp"]),
            "nvmeVersion": version(id_ctrl["ver"]), "namespaceLimit": id_ctrl["nn"] or None,
            "totalCapacityBytes": int(id_ctrl["tnvmcap"]) or None,
            "unallocatedCapacityBytes": int(id_ctrl["unvmcap"]) if has_total else None}.items():
        facts[name]["nvme id-ctrl"] = value
    return facts


def truth(files, kernel):
    """
    Field -> source -> value, from the collected `files` of one controller. None means that nothing
    may be shown.
    """
    id_ctrl, smart, smartctl = (files.json(f"{name}.json") for name in ("id-ctrl", "smart-log", "smartctl"))
    log, raw = files.bytes("smart-log.bin"), files.bytes("id-ctrl.bin")
    smartctl_log = smartctl["nvme_smart_health_information_log"]
    namespace = files.first_namespace()
    id_ns = files.json(f"{namespace}/id-ns.json")
    disk = files.json(f"{namespace}/smartctl.json")
    block_size = 1 << id_ns["lbafs"][id_ns["flbas"] & 15]["ds"]
    sectors = int(files.text(f"{namespace}/sectors"))

    def at(offset):
        return struct.unpack_from("<Q", log, offset)[0]

    def text(name, raw_at, length, sysfs, nvme, smart_name):
        return {"sysfs": files.text(sysfs), "nvme id-ctrl": id_ctrl[nvme].strip(), "smartctl": smartctl[smart_name],
                "identify data": raw[raw_at:raw_at + length].decode().strip("\0 ")}

    def vendor(number):
        return VENDORS.get(number, "")

    def amount(name, offset):
        return {"nvme smart-log": int(smart[name]) * UNIT_BYTES, "log page": at(offset) * UNIT_BYTES,
                "smartctl": smartctl_log[name] * UNIT_BYTES}

    capacity = {"nvme id-ns": id_ns["nsze"] * block_size >> 20, "sysfs": sectors * 512 >> 20,
                "smartctl": disk["user_capacity"]["bytes"] >> 20}
    vendors = {"nvme id-ctrl": vendor(id_ctrl["vid"]), "smartctl": vendor(smartctl["nvme_pci_vendor"]["id"]),
               "sysfs": vendor(int(files.text("vendor"), 16))}
    is_intel = vendors["nvme id-ctrl"] == "INTEL"
    model = files.text("model")
    tag = raw[3100:3108].split(b"\0")[0].decode("ascii", "replace").strip()
    temperatures = {"nvme smart-log": smart["temperature"] - 273, "smartctl": smartctl["temperature"]["current"],
                    "log page": struct.unpack_from("<H", log, 1)[0] - 273}
    known = model.startswith(KNOWN_FAMILIES)
    warnings = {"nvme smart-log": smart["critical_warning"], "smartctl": smartctl_log["critical_warning"],
                "log page": log[0]}
    pci = _pci(files.text("address"))
    place = location(*pci)

    return {
        "serial": text("serial", 4, 20, "serial", "sn", "serial_number"),
        "model": text("model", 24, 40, "model", "mn", "model_name"),
        "firmware": text("firmware", 64, 8, "firmware_rev", "fr", "firmware_version"),
        "vendor": vendors,
        "vendor tag": {"identify data": tag if is_intel and tag else None},
        "product": {"sysfs": model.partition(" ")[2] or model if is_intel else model},
        "family": {"sysfs": 40480 if known else 40488},
        "device": {"sysfs": files.text(f"{namespace}/device")},
        "driver": {"sysfs": files.text("driver")},
        "driver version": {"sysfs": files.text("driver_version") or kernel},
        "address": {"sysfs": pci},
        "pci": {"sysfs": pci if pci[1:] == (0, 0, 0) else (0, *pci[1:])},
        "location": {"sysfs": place},
        "drive location": {"sysfs": f"{place}&ID=0"},
        "capacity": capacity,
        "capacity in bytes": {source: mebibytes << 20 for source, mebibytes in capacity.items()},
        "block size": {"nvme id-ns": block_size, "sysfs": int(files.text(f"{namespace}/block_size")),
                       "smartctl": disk["logical_block_size"]},
        "temperature": temperatures,
        "adapter temperature": temperatures if known else {"sysfs": None},
        "drive temperature": {"sysfs": None} if known else temperatures,
        "spare": {"nvme smart-log": smart["avail_spare"], "smartctl": smartctl_log["available_spare"],
                  "log page": log[3]},
        "spare threshold": {"nvme smart-log": smart["spare_thresh"], "log page": log[4],
                            "smartctl": smartctl_log["available_spare_threshold"]},
        "data read": amount("data_units_read", 32),
        "data written": amount("data_units_written", 48),
        "endurance used": {"log page": (at(48) * UNIT_BYTES >> 40) * 100},
        "counter 128": {"nvme smart-log": int(smart["power_on_hours"]), "log page": at(128),
                        "smartctl": smartctl_log["power_on_hours"]},
        "counter 160": {"nvme smart-log": int(smart["media_errors"]), "log page": at(160),
                        "smartctl": smartctl_log["media_errors"]},
        "health": {source: health(bits)[0] for source, bits in warnings.items()},
        "reasons": {source: health(bits)[1] for source, bits in warnings.items()},
    } | page_facts(id_ctrl, raw, smart, log, smartctl_log)


# What `list` alone tells of the pages.
PAGE_FACTS = list(page_values(bytes(4096), bytes(512)))


class Object:
    """One object of `topology --json`."""

    def __init__(self, data):
        self.id, self.type = data["id"], data["type"]
        self.parents, self.children = data["parents"], data["children"]
        self.properties = {each["id"]: each for each in data["properties"]}

    def value(self, number):
        """The property's value; None when it is not there."""
        return self.properties.get(number, {}).get("value")

    def amount(self, number):
        """A converted amount of data, in bytes."""
        data = self.properties.get(number)
        return None if data is None else data["value"] * UNITS[data["unitText"]]


def told(entry, adapter, drive):
    """Field -> place -> value: the same fields, from the `entry` of list and the two objects of topology."""
    def amount(name):
        return entry[name]["value"] * UNITS[entry[name]["unit"]] if name in entry else None

    def in_bytes(name):
        # Whole bytes of a figure that has seven digits.
        return float(entry[name]) if name in entry else None

    def address():
        return _pci(entry["pciAddress"]) if "pciAddress" in entry else None

    def both(name, adapters=None, drives=None, default=None):
        places = {"list": entry.get(name, default)} if name else {}
        places |= {f"adapter {number}": adapter.value(number) for number in adapters or ()}
        places |= {f"drive {number}": drive.value(number) for number in drives or ()}
        return places

    return {
        "serial": both("serial", [30022], [30022]),
        "model": both("model", [30063], [30063]),
        "firmware": both("firmware", [30020]),
        "vendor": both("vendor", [30003], [30003], default=""),
        "vendor tag": both(None, [30500]),
        "product": both(None, drives=[30007]),
        "family": both(None, [30158]),
        "device": both("device", [30247]),
        "driver": both("driver", [30266]),
        "driver version": both("driverVersion", [30018]),
        "address": {"list": address()},
        "pci": {"adapter": tuple(adapter.value(n) for n in (30479, 30037, 30038, 30039))},
        "location": both("location", [30137]),
        "drive location": both(None, drives=[30137]),
        "capacity": both("capacityMiB", drives=[30059, 30060]),
        "capacity in bytes": both("capacityBytes"),
        "block size": both("blockSize", drives=[30460]),
        "temperature": both("temperature"),
        "adapter temperature": both(None, [30442]),
        "drive temperature": both(None, drives=[30069]),
        "spare": both("spare", [30486]),
        "spare threshold": both("spareThreshold", [30488]),
        "data read": {"list": amount("dataRead"), "list in bytes": in_bytes("dataReadBytes"),
                      "adapter 30489": adapter.amount(30489)},
        "data written": {"list": amount("dataWritten"), "list in bytes": in_bytes("dataWrittenBytes"),
                         "adapter 30490": adapter.amount(30490)},
        "endurance used": both("wear", [30494]),
        "counter 128": both("powerOnHours", [30498]),
        "counter 160": both("mediaErrors", [30189]),
        "health": both("healthCode", [30017]),
        # An empty list is not shown.
        "reasons": {"list": entry.get("reasonCodes", []), "adapter 30165": adapter.value(30165) or []},
    } | {name: both(name) for name in PAGE_FACTS}


def _agree(expected, actual):
    if expected is None or actual is None:
        return expected is actual
    if isinstance(actual, float) and not isinstance(expected, str):
        # Converted amounts come with the precision of a 32-bit float.
        return math.isclose(expected, actual, rel_tol=1e-6)
    return type(expected) is type(actual) and expected == actual


def compare(expected, actual):
    """
    Compares every source of a field with every place that shows it. Returns how many comparisons were made, and
    one line for each that failed.
    """
    count, failures = 0, []
    for field in sorted(expected.keys() | actual.keys()):
        sources, places = expected.get(field, {}), actual.get(field, {})
        if not sources or not places:
            failures.append(f"{field}: known to one side only")
        for source, wanted in sources.items():
            for place, shown in places.items():
                count += 1
                if not _agree(wanted, shown):
                    failures.append(f"{field}: {source} says {wanted!r}, ostrel ({place}) says {shown!r}")
    return count, failures


class Report:
    """The documents of `list --json` and `topology --json` of one moment."""

    def __init__(self, listing, topology):
        self.entries = json.loads(listing)["drives"]
        self.objects = [Object(each) for each in json.loads(topology)["objects"]]

    def of_type(self, number):
        return [each for each in self.objects if each.type == number]

    def told(self, serial, address):
        """The fields of the controller with that serial number; the address distinguishes twins."""
        place = location(*_pci(address))

        def only(candidates, what, place_of):
            candidates = list(candidates)
            if len(candidates) > 1:
                candidates = [each for each in candidates if place_of(each) == place]
            if len(candidates) != 1:
                raise AssertionError(f"{len(candidates)} {what} have the serial number {serial!r}")
            return candidates[0]

        entry = only((each for each in self.entries if each.get("serial") == serial), "lines of list",
                     lambda each: each.get("location"))
        adapter = only((each for each in self.of_type(ADAPTER) if each.value(30022) == serial), "adapters",
                       lambda each: each.value(30137))
        drives = [each for each in self.of_type(DRIVE) if each.id in adapter.children]
        if len(drives) != 1:
            raise AssertionError(f"the adapter of {serial!r} has {len(drives)} drives")
        return told(entry, adapter, drives[0])
