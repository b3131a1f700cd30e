#!/usr/bin/env python3
"""Plants forbidden includes in a copy of the sources, one at a time, and expects that each is found.

Usage: planted.py SOURCE_DIRECTORY
"""

import pathlib
import shutil
import sys
import tempfile

import dependencies

# File that is planted -> its include, and the error that the check must report.
PLANTED = [
    ("Host/Base/Planted.cpp", '"Commands/Program.h"', "Host/Base may not know Host/Commands"),
    ("Host/Base/Planted.cpp", '"../Commands/Program.h"', "Host/Base may not know Host/Commands"),
    ("Host/Base_Linux/Planted.h", "<Commands/Program.h>", "Host/Base_Linux may not know Host/Commands"),
    ("Host/Plugins/Planted.cpp", '"Ostrel/PluginApi.h"', "Host/Plugins may not know Ostrel/Src/Ostrel"),
    ("Ostrel/Src/Ostrel/Planted.cpp", '"Plugins/PluginLibrary.h"', "Ostrel/Src/Ostrel may not know Host/Plugins"),
    ("Ostrel/Src/Ostrel/Planted.cpp", '"../../../Host/Commands/Program.h"',
     "Ostrel/Src/Ostrel may not know Host/Commands"),
    ("Ostrel/Src/OstrelAdapter/Planted.h", '"OstrelPlugin/Properties.h"',
     "Ostrel/Src/OstrelAdapter may not know Ostrel/Src/OstrelPlugin"),
    ("Ostrel/Src/Records/Planted.h", '"Ostrel/PluginApi.h"', "Ostrel/Src/Records may not know Ostrel/Src/Ostrel"),
    ("Libraries/TLX/Src/Planted.cpp", "<PI/IPluginApi.h>",
     "Libraries/TLX/Src may not know Libraries/PI/Include/PI"),
    ("Libraries/PI/Src/Planted.cpp", '"../../TLX/Src/ModuleRegistry.h"',
     "Libraries/PI/Src may not know Libraries/TLX/Src"),
    ("Libraries/PI/Include/PI/Planted.h", "<TLXX/NvmeQuery.h>",
     "Libraries/PI/Include/PI may not know Libraries/TLXX/Include/TLXX"),
    ("Reader/Planted.cpp", "<PI/IPluginApi.h>", "Reader may not know Libraries/PI/Include/PI"),
    ("Host/Drives_Linux/Planted.cpp", '"../../Reader/Server.h"', "Host/Drives_Linux may not know Reader"),
    ("Host/Base/Planted.h", "<Database/Database.h>", "Host/Base may not know Libraries/Database/Include/Database"),
    ("Host/Journal/Planted.h", "<DatabaseORM/Table.h>", "Host/Journal may not know DatabaseORM/Include/DatabaseORM"),
    ("Host/Terminal/Planted.h", "<TLXX/NvmeQuery.h>", "Host/Terminal may not know Libraries/TLXX/Include/TLXX"),
    ("Host/Web/Planted.h", '"Drives/Fleet.h"', "Host/Web may not know Host/Drives"),
    ("Ostrel/Src/OstrelPlugin/Planted.h", "<Database/Database.h>",
     "Ostrel/Src/OstrelPlugin may not know Libraries/Database/Include/Database"),
    ("Host/Commands/Planted.cpp", "<sqlite3.h>",
     "only Libraries/Database/Src/ and Host/Base/Sqlite.cpp may include sqlite3.h"),
    ("Host/Commands/Planted.cpp", "<windows.h>", "only Win/ may include windows.h"),
    ("Host/Web/Planted.h", "<boost/beast/http.hpp>", "only Host/Web/Connection.cpp may include boost/beast/http.hpp"),
    ("Host/Web/Planted.h", "<boost/asio.hpp>", "only Host/Web/Connection.h may include boost/asio.hpp"),
    ("Host/Web/Planted.h", '"Web/Connection.h"',
     "only Host/Web/Connection.cpp and Host/Web/Server.cpp may include Web/Connection.h"),
    ("Host/Commands/Planted.cpp", '"Nowhere.h"', "Nowhere.h leads to no file"),
    ("Host/Cellar/Planted.cpp", "<vector>", "its folder has no row in the table"),
]


def main():
    source = pathlib.Path(sys.argv[1])
    failures = []
    with tempfile.TemporaryDirectory() as name:
        copy = pathlib.Path(name)
        for folder in dependencies.SOURCES:
            shutil.copytree(source / folder, copy / folder)
        before = list(dependencies.violations(copy))
        for file, include, expected in PLANTED:
            planted = copy / file
            planted.parent.mkdir(exist_ok=True)
            planted.write_text(f"#include {include}\n", encoding="utf-8")
            found = [message for message in dependencies.violations(copy) if message not in before]
            planted.unlink()
            if len(found) != 1 or file not in found[0] or expected not in found[0]:
                failures.append(f"{file} with {include}: expected '{expected}', found {found}")
    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
