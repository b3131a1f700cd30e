"""Simulated fleets that are hard to show."""

import pathlib

import stage

HOSTILE = "\"} 1<script>alert('&')</script>"  # The plug-in drops backslashes of a path.
ONES = 0xFFFF_FFFF_FFFF_FFFF


def healthy(number):
    """A drive that tells everything."""
    return {"location": f"0000:{number + 1:02x}:00.0",
            "identify": {"vendorId": "0x144D", "model": "SAMSUNG MZQL23T8HCLS-00A07", "serial": f"SERIAL{number:04}",
                         "firmware": "GDC5302Q", "warningTemperature": 70, "criticalTemperature": 85},
            "namespace": {"capacity": 3840755982336, "blockSize": 4096},
            "health": {"temperature": 33, "percentageUsed": 7, "dataUnitsRead": 402111000 + number,
                       "dataUnitsWritten": 291038554, "hostReadCommands": 9876543210, "hostWriteCommands": 1234567890,
                       "controllerBusyMinutes": 1234, "powerCycles": 33, "powerOnHours": 9120, "unsafeShutdowns": 11,
                       "mediaErrors": 2, "errorLogEntries": 7, "warningTemperatureMinutes": 3,
                       "criticalTemperatureMinutes": 1, "temperatureSensor1": 33, "temperatureSensor2": 41,
                       "thermalTransitions1": 5, "thermalSeconds1": 600}}


def hostile():
    """Drives with texts that would end a label or an attribute."""
    named = healthy(0) | {"device": f"/dev/{HOSTILE}"}
    named["identify"] = named["identify"] | {"model": HOSTILE[:40], "serial": "\"} 1\\n<b>&'", "firmware": "</td>\\"}
    # The bytes of a page need not be a text at all.
    raw = healthy(1) | {"identify": "ff1f0000" + "80c3000a0d1b9b22" + "ff" * 4084}
    return [named, raw]


def unread():
    """Drives that do not answer, and drives without a health log or with one that knows nothing."""
    nothing = {"location": "0000:02:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "NOTHING"}}
    return [healthy(0),
            nothing,
            healthy(2) | {"fails": ["identifyController"]},
            healthy(3) | {"fails": ["healthLog"]},
            {"location": "0000:05:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "ONES"},
             "namespace": "ff" * 128, "health": "ff" * 512},
            {"location": "0000:06:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "BARE"},
             "health": {"temperature": 0, "spare": 0, "threshold": 0}}]


def twins():
    """Two controllers with one serial number, and one without any."""
    return [healthy(0), healthy(0) | {"location": "0000:02:00.0"},
            {"location": "0000:03:00.0", "identify": {"vendorId": 1, "model": "", "serial": ""}}]


def largest():
    """A drive whose counters no double holds."""
    drive = healthy(0)
    counters = ("dataUnitsRead", "dataUnitsWritten", "powerOnHours", "powerCycles", "mediaErrors", "hostReadCommands",
                "controllerBusyMinutes", "unsafeShutdowns")
    drive["health"] = drive["health"] | {name: ONES - 1 for name in counters}
    return [drive]


def demonstration():
    return pathlib.Path(stage.tree) / "share/ostrel/DemoFleet.json"


def files():
    """The files of all fleets by their names."""
    made = {"hostile": hostile(), "unread": unread(), "twins": twins(), "largest": largest(),
            "many": [healthy(number) for number in range(64)]}
    return {"demonstration": demonstration()} | {name: stage.fleet(name, drives) for name, drives in made.items()}
