#!/usr/bin/env python3
"""
The schema of fleet files accepts what the program accepts, and refuses what it refuses.

usage: test_fleet.py PROGRAM SHARE [unittest arguments]
"""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import schemas

PROGRAM, SHARE = sys.argv[1:3]
IDENTIFY = {"vendorId": "0x8086", "model": "M", "serial": "S"}


def fleet(**controller):
    """A fleet of one controller that answers, with other members as given."""
    return {"controllers": [{"identify": IDENTIFY, **controller}]}


GOOD = [
    {"controllers": [{"identify": IDENTIFY}, {"identify": IDENTIFY}]},
    fleet(device="/dev/nvme7n1", driver="nvme", driverVersion="1.0", location="10000:e1:00.0"),
    fleet(identify={**IDENTIFY, "vendorId": 0x144D, "firmware": "F", "tag": "12345678"}),
    fleet(identify="86 80" + "20" * 70),
    fleet(namespace={"blocks": 18446744073709551615, "blockSize": 65536}),
    fleet(namespace={"capacity": "0x1000", "blockSize": "0x200"}),
    fleet(namespace=""),
    fleet(health={"temperature": -272, "criticalWarning": "0x1F", "spare": 255, "threshold": 0}),
    fleet(health={"temperature": 727, "dataUnitsRead": "0xFFFFFFFFFFFFFFFF", "mediaErrors": 0}),
    fleet(identify={**IDENTIFY, "nvmeVersion": "1.4", "warningTemperature": 70, "criticalTemperature": -272,
                    "namespaceLimit": 4294967295, "totalCapacityBytes": "0xFFFFFFFFFFFFFFFF",
                    "unallocatedCapacityBytes": 0}),
    fleet(identify={**IDENTIFY, "nvmeVersion": "1.2.1"}),
    fleet(identify={**IDENTIFY, "nvmeVersion": ""}),
    fleet(health={"temperature": 30, "percentageUsed": 255, "hostReadCommands": 18446744073709551615,
                  "hostWriteCommands": 1, "controllerBusyMinutes": 2, "powerCycles": 3, "unsafeShutdowns": 4,
                  "errorLogEntries": 5, "warningTemperatureMinutes": 4294967295, "criticalTemperatureMinutes": 6,
                  "temperatureSensor1": -272, "temperatureSensor8": 727, "thermalTransitions1": 7,
                  "thermalTransitions2": 8, "thermalSeconds1": 9, "thermalSeconds2": "0xFFFFFFFF"}),
    fleet(vendorLogs={"0xC5": {"temperature": 1, "offset": 2}, "0xCA": {"attributeAD": 3, "attributeEA": 4}}),
    fleet(delayMilliseconds=0, hangs=False, fails=[]),
    fleet(delayMilliseconds="0x1", fails=["vendorLog", "healthLog", "identifyNamespace", "identifyController"]),
    fleet(vendorLogs={"0xdd": {"name": "Some Series"}, "0xC0": "01 02", "0xFF": ""}),
]

BAD = [
    {},
    [],
    {"controllers": {}},
    {"controllers": [], "more": 1},
    {"controllers": [1]},
    fleet(colour="red"),
    fleet(device="/dev/nvme\u00e9n1"),
    fleet(driver="n" * 256),
    fleet(location="3b"),
    fleet(identify={"model": "M", "serial": "S"}),
    fleet(identify={**IDENTIFY, "vendorId": 65536}),
    fleet(identify={**IDENTIFY, "vendorId": -1}),
    fleet(identify={**IDENTIFY, "model": "M" * 41}),
    fleet(identify={**IDENTIFY, "serial": 5}),
    fleet(identify={**IDENTIFY, "colour": "red"}),
    fleet(identify="0"),
    fleet(identify="0x86"),
    fleet(identify=7),
    fleet(namespace={}),
    fleet(namespace={"blocks": 1, "capacity": 512}),
    fleet(namespace={"blocks": 1, "blockSize": 100}),
    fleet(namespace={"blocks": 1.5}),
    fleet(health={"spare": 1}),
    fleet(health={"temperature": -273}),
    fleet(health={"temperature": "0x20"}),
    fleet(health={"temperature": 30, "spare": 256}),
    fleet(health={"temperature": 30, "percentageUsed": 256}),
    fleet(health={"temperature": 30, "powerCycles": -1}),
    fleet(health={"temperature": 30, "warningTemperatureMinutes": 4294967296}),
    fleet(health={"temperature": 30, "temperatureSensor1": -273}),
    fleet(health={"temperature": 30, "temperatureSensor9": 30}),
    fleet(identify={**IDENTIFY, "warningTemperature": 728}),
    fleet(identify={**IDENTIFY, "namespaceLimit": 4294967296}),
    fleet(identify={**IDENTIFY, "nvmeVersion": 1.4}),
    fleet(identify={**IDENTIFY, "nvmeVersion": "1."}),
    fleet(identify={**IDENTIFY, "nvmeVersion": "1.2.3.4"}),
    fleet(identify={**IDENTIFY, "nvmeVersion": "one"}),
    fleet(delayMilliseconds=-1),
    fleet(delayMilliseconds=3600001),
    fleet(delayMilliseconds=0.5),
    fleet(hangs="yes"),
    fleet(fails="healthLog"),
    fleet(fails=["healthLogs"]),
    fleet(fails=["healthLog", "healthLog"]),
    fleet(vendorLogs={"0xBF": "00"}),
    fleet(vendorLogs={"C5": "00"}),
    fleet(vendorLogs={"0xC0": {"temperature": 1}}),
    fleet(vendorLogs={"0xC5": {"name": "x"}}),
    fleet(vendorLogs={"0xDD": {"name": "x" * 512}}),
]

# The program refuses these, although a schema cannot.
BEYOND_A_SCHEMA = [
    {"controllers": [{"device": "/dev/nvme0n1"}, {"device": "/dev/nvme0n1"}]},
    fleet(namespace={"capacity": 513}),
    fleet(identify="00" * 4097),
    fleet(health={"temperature": 30, "spare": "0x100"}),
    fleet(vendorLogs={"0xC5": "00", "0xc5": "00"}),
    fleet(identify={**IDENTIFY, "nvmeVersion": "1.256"}),
]


class FleetFiles(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def refused(self, document):
        """Whether the program refuses the file. A fault of a drive in it does not count."""
        file = pathlib.Path(self.folder.name) / "fleet.json"
        file.write_text(json.dumps(document))
        result = subprocess.run([PROGRAM, "--simulate", str(file), "list", "--json"], capture_output=True, text=True,
                                env={}, timeout=60)
        self.assertIn(result.returncode, (0, 2, 3), result.stderr)
        return result.returncode == 2

    def test_demonstration(self):
        document = json.loads((pathlib.Path(SHARE) / "DemoFleet.json").read_text())
        self.assertEqual(schemas.wrong("fleet", document), [])

    def test_good(self):
        for document in GOOD:
            with self.subTest(document=document):
                self.assertEqual(schemas.wrong("fleet", document), [])
                self.assertFalse(self.refused(document))

    def test_bad(self):
        for document in BAD:
            with self.subTest(document=document):
                self.assertTrue(schemas.wrong("fleet", document))
                self.assertTrue(self.refused(document))

    def test_beyond_a_schema(self):
        for document in BEYOND_A_SCHEMA:
            with self.subTest(document=str(document)[:200]):
                self.assertTrue(self.refused(document))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
