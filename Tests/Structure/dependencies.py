#!/usr/bin/env python3
"""Checks that includes point down only: who may know whom is the table below.

Usage: dependencies.py SOURCE_DIRECTORY
"""

import pathlib
import re
import sys

PLUGIN_LIBRARIES = {"PI", "TLXX", "TLX", "Database", "DatabaseORM"}
# Folder of the including file -> first component of what it may include from this project.
ALLOWED = {
    "Libraries/TLX": {"TLX"},
    "Libraries/TLXX": {"TLXX", "TLX"},
    "Libraries/PI": {"PI", "TLX"},
    "Libraries/Database": {"Database", "DatabaseORM", "TLX"},
    "DatabaseORM": {"DatabaseORM"},
    "Ostrel/Src/Records": PLUGIN_LIBRARIES | {"Records"},
    "Ostrel/Src/Ostrel_Linux": PLUGIN_LIBRARIES | {"Records", "Ostrel_Linux"},
    "Ostrel/Src/Ostrel_Win": PLUGIN_LIBRARIES | {"Records", "Ostrel_Win"},
    "Ostrel/Src/OstrelPlugin": PLUGIN_LIBRARIES | {"Records", "OstrelPlugin"},
    "Ostrel/Src/OstrelAdapter": PLUGIN_LIBRARIES | {"Records", "OstrelAdapter"},
    "Ostrel/Src/OstrelPhysicalDrive": PLUGIN_LIBRARIES | {"Records", "OstrelPhysicalDrive"},
    "Ostrel/Src/Ostrel": PLUGIN_LIBRARIES | {"Records", "OstrelPlugin", "OstrelAdapter", "OstrelPhysicalDrive",
                                             "Ostrel"},
    "Host": {"Base", "Drives", "Plugins", "Facts", "Documents", "Terminal", "Commands", "PI", "TLXX", "TLX", "Database", "DatabaseORM"},
}
PROJECT = {"TLX", "TLXX", "PI", "Database", "DatabaseORM", "Base", "Drives", "Plugins", "Facts", "Documents", "Terminal", "Commands",
           "Records", "Ostrel", "Ostrel_Linux", "Ostrel_Win", "OstrelPlugin", "OstrelAdapter", "OstrelPhysicalDrive"}
# Of the interface library the program knows all; of the plug-in, nothing. System headers that only one place may know.
CONFINED = {
    "sqlite3.h": "Libraries/Database/Src",
    "linux/nvme_ioctl.h": "Libraries/TLXX/Src_Linux",
    "windows.h": "Win/",
}
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]')


def violations(root):
    """Yields one message for each include that the tables do not allow."""
    seen = 0
    for folder, allowed in ALLOWED.items():
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            seen += 1
            name = path.relative_to(root).as_posix()
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
                match = INCLUDE.match(line)
                if not match:
                    continue
                included = match.group(1)
                head = included.split("/")[0]
                if "/" in included and head in PROJECT and head not in allowed:
                    yield f"{name}:{number}: {folder} may not know {included}"
                if included in CONFINED and CONFINED[included] not in name:
                    yield f"{name}:{number}: only {CONFINED[included]} may include {included}"
    if seen == 0:
        yield f"{root}: no source files found"


def main():
    found = list(violations(pathlib.Path(sys.argv[1])))
    for message in found:
        print(message)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
