"""Tests the comparison itself: equal data pass, and each single change is found."""

import copy
import json
import struct
import unittest

import inventory

KERNEL = "6.1.0-test"
ADDRESS = "0000:02:0a.1"


def _log_page():
    page = bytearray(512)
    struct.pack_into("<BHBB", page, 0, 9, 310, 77, 12)
    for offset, value in ((32, 4321), (48, 8765432100), (112, 1), (128, 22), (144, 333), (160, 4444)):
        struct.pack_into("<Q", page, offset, value)
    for offset, value in ((64, 501), (80, 502), (96, 503), (176, 504)):
        struct.pack_into("<Q", page, offset, value)
    page[5] = 7
    struct.pack_into("<II8H4I", page, 192, 601, 602, 301, 302, 303, 304, 305, 306, 307, 308, 701, 702, 703, 704)
    return bytes(page)


def collected():
    """The files of one controller, such as a guest collects them."""
    identify = bytearray(4096)
    struct.pack_into("<H20s40s8s", identify, 0, 0x8086, b"", b"", b"")
    identify[4:24], identify[24:64], identify[64:72] = (text.ljust(size) for text, size in (
        (b"S1", 20), (b"QUICK Drive 9", 40), (b"F1", 8)))
    struct.pack_into("<I", identify, 80, 0x10201)
    struct.pack_into("<HH", identify, 266, 343, 358)
    struct.pack_into("<QQQ", identify, 280, 5 << 20, 0, 1 << 20)
    struct.pack_into("<I", identify, 516, 32)
    identify[3100:3108] = b"TAG\0rest"
    smart = {"critical_warning": 9, "temperature": 310, "avail_spare": 77, "spare_thresh": 12,
             "data_units_read": "4321", "data_units_written": "8765432100", "power_on_hours": "22",
             "media_errors": "4444", "percent_used": 7, "host_read_commands": "501", "host_write_commands": "502",
             "controller_busy_time": "503", "power_cycles": "1", "unsafe_shutdowns": "333",
             "num_err_log_entries": "504", "warning_temp_time": 601, "critical_comp_time": 602,
             "thm_temp1_trans_count": 701, "thm_temp2_trans_count": 702, "thm_temp1_total_time": 703,
             "thm_temp2_total_time": 704}
    smart |= {f"temperature_sensor_{sensor}": 300 + sensor for sensor in range(1, 9)}
    smartctl = {"serial_number": "S1", "model_name": "QUICK Drive 9", "firmware_version": "F1",
                "nvme_pci_vendor": {"id": 0x8086}, "temperature": {"current": 37},
                "nvme_smart_health_information_log": {
                    "critical_warning": 9, "available_spare": 77, "available_spare_threshold": 12,
                    "data_units_read": 4321, "data_units_written": 8765432100, "power_on_hours": 22,
                    "media_errors": 4444, "percentage_used": 7, "host_reads": 501, "host_writes": 502,
                    "controller_busy_time": 503, "power_cycles": 1, "unsafe_shutdowns": 333,
                    "num_err_log_entries": 504, "warning_temp_time": 601, "critical_comp_time": 602}}
    disk = {"user_capacity": {"bytes": 5 << 20}, "logical_block_size": 4096}
    files = {"serial": "S1", "model": "QUICK Drive 9", "firmware_rev": "F1", "address": ADDRESS,
             "vendor": "0x8086", "driver": "nvme", "driver_version": "",
             "id-ctrl.json": json.dumps({"vid": 0x8086, "sn": "S1 ", "mn": "QUICK Drive 9 ", "fr": "F1",
                                         "ver": 0x10201, "wctemp": 343, "cctemp": 358, "nn": 32,
                                         "tnvmcap": str(5 << 20), "unvmcap": str(1 << 20)}),
             "smart-log.json": json.dumps(smart), "smartctl.json": json.dumps(smartctl),
             "namespaces/2/device": "/dev/nvme0n1", "namespaces/2/sectors": str(5 << 11),
             "namespaces/2/block_size": "4096", "namespaces/2/smartctl.json": json.dumps(disk),
             "namespaces/2/id-ns.json": json.dumps({"nsze": 1280, "flbas": 1, "lbafs": [{"ds": 9}, {"ds": 12}]}),
             # A namespace with a higher identifier, which must not count.
             "namespaces/11/device": "/dev/nvme0n2"}
    files = {f"first/nvme0/{name}": text.encode() for name, text in files.items()}
    files |= {"first/nvme0/id-ctrl.bin": bytes(identify), "first/nvme0/smart-log.bin": _log_page()}
    return files


def listed():
    """What list says of that controller."""
    return {"drives": [{
        "device": "/dev/nvme0n1", "vendor": "INTEL", "model": "QUICK Drive 9", "serial": "S1", "firmware": "F1",
        "capacityMiB": 5, "capacityBytes": 5242880, "blockSize": 4096, "temperature": 37.0, "wear": 408100,
        "healthCode": 40095, "reasonCodes": [40460, 40452], "pciAddress": "0000:02:0a.1",
        "location": "PCI:Bus=2&Device=10&Function=1", "driver": "nvme", "driverVersion": KERNEL, "spare": 77,
        "spareThreshold": 12, "dataRead": {"value": 2.0604134, "unit": "GiB"}, "dataReadBytes": 2212352034,
        "dataWritten": {"value": 3.986057, "unit": "PiB"}, "dataWrittenBytes": 4487901298000000, "powerOnHours": 22,
        "mediaErrors": 4444,
        "percentageUsed": 7, "hostReadCommands": 501, "hostWriteCommands": 502, "controllerBusyMinutes": 503,
        "powerCycles": 1, "unsafeShutdowns": 333, "errorLogEntries": 504, "warningTemperatureMinutes": 601,
        "criticalTemperatureMinutes": 602, "thermalTransitions1": 701, "thermalTransitions2": 702,
        "thermalSeconds1": 703, "thermalSeconds2": 704,
        **{f"temperatureSensor{sensor}": 27 + sensor for sensor in range(1, 9)},
        "warningTemperature": 70, "criticalTemperature": 85, "nvmeVersion": "1.2.1", "namespaceLimit": 32,
        "totalCapacityBytes": 5 << 20, "unallocatedCapacityBytes": 1 << 20}]}


def _object(number, kind, parents, children, values):
    properties = [{"id": each, "value": value} if not isinstance(value, dict) else {"id": each, **value}
                  for each, value in values.items()]
    return {"id": number, "type": kind, "parents": parents, "children": children, "properties": properties}


def topology():
    """What topology says of it."""
    adapter = {30003: "INTEL", 30063: "QUICK Drive 9", 30158: 40488, 30017: 40095, 30479: 0, 30037: 2,
               30038: 10, 30039: 1, 30137: "PCI:Bus=2&Device=10&Function=1", 30022: "S1", 30020: "F1", 30500: "TAG",
               30247: "/dev/nvme0n1", 30266: "nvme", 30018: KERNEL, 30498: 22, 30486: 77, 30488: 12,
               30489: {"value": 2.0604134, "unitText": "GiB"}, 30490: {"value": 3.986057, "unitText": "PiB"},
               30494: 408100, 30189: 4444, 30165: [40460, 40452]}
    drive = {30007: "Drive 9", 30137: "PCI:Bus=2&Device=10&Function=1&ID=0", 30003: "INTEL",
             30063: "QUICK Drive 9", 30059: 5, 30060: 5, 30460: 4096, 30069: 37.0, 30022: "S1"}
    return {"objects": [_object("a", inventory.ADAPTER, [], ["d"], adapter),
                        _object("d", inventory.DRIVE, ["a"], [], drive)]}


def altered(value):
    """A different value of the same kind."""
    if isinstance(value, str):
        return value + "x"
    if isinstance(value, list):
        return value[::-1]
    # Different enough for amounts of data, which are printed with few digits.
    return value * 2 + 1


def compared(listing, objects, files=None):
    """The number of comparisons and of failures; an exception from the data counts as a failure."""
    try:
        expected = inventory.truth(inventory.Files(files or collected(), "first/nvme0"), KERNEL)
        report = inventory.Report(json.dumps(listing), json.dumps(objects))
        return inventory.compare(expected, report.told("S1", ADDRESS))
    except (AssertionError, LookupError, ValueError) as error:
        return 0, [repr(error)]


class Comparer(unittest.TestCase):
    """Without any guest."""

    def test_agreement(self):
        """the comparison passes on data that agree"""
        count, failures = compared(listed(), topology())
        self.assertEqual(failures, [])
        self.assertGreater(count, 90)

    def test_altered_listing(self):
        """the comparison notices each altered or missing member of list"""
        for name, value in listed()["drives"][0].items():
            with self.subTest(member=name):
                other = listed()
                if isinstance(value, dict):
                    other["drives"][0][name]["value"] *= 1.00001
                else:
                    other["drives"][0][name] = altered(value)
                self.assertNotEqual(compared(other, topology())[1], [])
                del other["drives"][0][name]
                self.assertNotEqual(compared(other, topology())[1], [])

    def test_altered_topology(self):
        """the comparison notices each altered or missing property of topology"""
        for number, whole in enumerate(topology()["objects"]):
            for index, item in enumerate(whole["properties"]):
                with self.subTest(object=number, property=item["id"]):
                    other = topology()
                    properties = other["objects"][number]["properties"]
                    properties[index] = {**item, "value": altered(item["value"])}
                    self.assertNotEqual(compared(listed(), other)[1], [])
                    del properties[index]
                    self.assertNotEqual(compared(listed(), other)[1], [])

    def test_altered_tools(self):
        """the comparison notices when a tool says something else"""
        original = collected()
        for name in original:
            if not name.endswith(".json"):
                continue
            for path in _leaves(json.loads(original[name])):
                with self.subTest(file=name, member=path):
                    files = dict(original)
                    files[name] = json.dumps(_with_altered(json.loads(original[name]), path)).encode()
                    self.assertNotEqual(compared(listed(), topology(), files)[1], [])

    def test_counters(self):
        """the comparison takes each counter from its own bytes, and not from its neighbours'"""
        for offset, field in ((112, "powerCycles"), (128, "counter 128"), (144, "unsafeShutdowns"),
                              (160, "counter 160")):
            with self.subTest(offset=offset):
                page = bytearray(_log_page())
                page[offset] ^= 0x80
                files = {**collected(), "first/nvme0/smart-log.bin": bytes(page)}
                failures = compared(listed(), topology(), files)[1]
                self.assertEqual({each.split(":")[0] for each in failures}, {field})

    def test_health(self):
        """the last warning bit looked at decides the status, and all give reasons"""
        for warning, expected in ((0, (40024, [])), (1, (40150, [40460])), (2, (40150, [40459])),
                                  (3, (40150, [40459, 40460])), (5, (40095, [40460, 40487])),
                                  (9, (40095, [40460, 40452])), (16, (40095, [40449])),
                                  (31, (40095, [40459, 40460, 40449, 40487, 40452])), (0x20, (40024, []))):
            self.assertEqual(inventory.health(warning), expected, f"{warning:#x}")


def _leaves(value, path=()):
    """Paths to what the comparison reads: not the formats of blocks that are not in use."""
    if isinstance(value, dict):
        for name, each in value.items():
            yield from _leaves(each, (*path, name))
    elif isinstance(value, list):
        yield from _leaves(value[-1], (*path, len(value) - 1))
    else:
        yield path


def _with_altered(document, path):
    document = copy.deepcopy(document)
    place = document
    for step in path[:-1]:
        place = place[step]
    value = place[path[-1]]
    if isinstance(value, str) and value.isdigit():
        place[path[-1]] = str(altered(int(value)))
    else:
        place[path[-1]] = altered(value)
    return document


if __name__ == "__main__":
    unittest.main()
