#!/usr/bin/env python3
"""
Counts the instructions that the text of a scrape costs with 1, 8 and 64 drives, beside the limit. Valgrind counts them
in a program that makes the text of a simulated fleet many times; the start of the program is subtracted.
"""

import argparse
import json
import pathlib
import re
import subprocess
import sys
import tempfile

LIMIT = 3_000_000  # for 64 drives, with the request and the answer
TIMES = 20


def fleet(drives):
    return {"controllers": [
        {"location": f"0000:{number + 1:02x}:00.0",
         "identify": {"vendorId": "0x144D", "model": "SAMSUNG MZQL23T8HCLS-00A07", "serial": f"S64HNE0R60{number:04}",
                      "firmware": "GDC5302Q", "warningTemperature": 70, "criticalTemperature": 85},
         "namespace": {"capacity": 3840755982336, "blockSize": 4096},
         "health": {"temperature": 33, "percentageUsed": 7, "dataUnitsRead": 402111000, "dataUnitsWritten": 291038554,
                    "hostReadCommands": 9876543210, "hostWriteCommands": 1234567890, "controllerBusyMinutes": 1234,
                    "powerCycles": 33, "powerOnHours": 9120, "unsafeShutdowns": 11, "errorLogEntries": 7,
                    "temperatureSensor1": 33, "temperatureSensor2": 41}} for number in range(drives)]}


def instructions(program, file, what, times):
    done = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", program, file, what,
                           str(times)], capture_output=True, check=True)
    return int(re.search(rb"Collected : (\d+)", done.stderr)[1]), len(done.stdout)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tree", type=pathlib.Path, required=True, help="a build folder with tests and benchmarks")
    program = parser.parse_args().tree / "bin/DocumentsOf"
    print(f"{'drives':>6} {'format':>12} {'bytes':>8} {'million instructions':>21}")
    with tempfile.TemporaryDirectory() as folder:
        for drives in (1, 8, 64):
            file = pathlib.Path(folder) / f"{drives}.json"
            file.write_text(json.dumps(fleet(drives)))
            for what in ("text", "openmetrics"):
                once, size = instructions(program, file, what, 1)
                often, _ = instructions(program, file, what, 1 + TIMES)
                print(f"{drives:>6} {what:>12} {size:>8} {(often - once) / TIMES / 1e6:>21.2f}")
    print(f"The limit for a whole scrape of 64 drives is {LIMIT / 1e6:.1f}.")


if __name__ == "__main__":
    sys.exit(main())
