#!/usr/bin/env python3
"""Checks that includes point down only: the table below says which folder may know which.

Usage: dependencies.py SOURCE_DIRECTORY

Every include is resolved to the file that a compiler would find, on Linux or on Windows. A folder of sources without a
row fails, and so does an include in quotes that leads to no file.
"""

import functools
import pathlib
import re
import sys

TLX = ("Libraries/TLX/Include/TLX", "Libraries/TLX/Include_Linux/TLX", "Libraries/TLX/Include_Win/TLX")
TLX_LINUX = ("Libraries/TLX/Include_Linux/TLX/Linux",)
TLX_WIN = ("Libraries/TLX/Include_Win/TLX/Win",)
TLXX = ("Libraries/TLXX/Include/TLXX",)
TLXX_LINUX = ("Libraries/TLXX/Include_Linux/TLXX/Linux",)
TLXX_WIN = ("Libraries/TLXX/Include_Win/TLXX/Win",)
PI = ("Libraries/PI/Include/PI",)
ORM = ("DatabaseORM/Include/DatabaseORM",)
DATABASE = ("Libraries/Database/Include/Database",)
# The libraries that a host gives its plug-ins. Plug-in and program may include these.
HOST_LIBRARIES = TLX + TLXX + PI + ORM + DATABASE


def rooms(parent, *names):
    """The folders of a parent folder."""
    return tuple(f"{parent}/{name}" for name in names)


# Folder -> the folders that it may include from, besides itself. From the bottom up. In a library, the sources for
# one system and those for all systems are one room: each may include the other's headers.
ALLOWED = {
    "Libraries/TLX/Include/TLX": TLX,
    "Libraries/TLX/Include_Linux/TLX": TLX,
    "Libraries/TLX/Include_Linux/TLX/Linux": TLX,
    "Libraries/TLX/Include_Win/TLX": TLX,
    "Libraries/TLX/Include_Win/TLX/Win": TLX,
    "Libraries/TLX/Src": TLX + rooms("Libraries/TLX", "Src_Linux", "Src_Win"),
    "Libraries/TLX/Src_Linux": TLX + TLX_LINUX + rooms("Libraries/TLX", "Src"),
    "Libraries/TLX/Src_Win": TLX + TLX_WIN + rooms("Libraries/TLX", "Src"),

    "Libraries/TLXX/Include/TLXX": TLX,
    "Libraries/TLXX/Include_Linux/TLXX/Linux": TLX + TLX_LINUX + TLXX,
    "Libraries/TLXX/Include_Win/TLXX/Win": TLX + TLX_WIN + TLXX,
    "Libraries/TLXX/Src": TLX + TLXX + rooms("Libraries/TLXX", "Src_Linux", "Src_Win"),
    "Libraries/TLXX/Src_Linux": TLX + TLX_LINUX + TLXX + TLXX_LINUX + rooms("Libraries/TLXX", "Src"),
    "Libraries/TLXX/Src_Win": TLX + TLX_WIN + TLXX + TLXX_WIN + rooms("Libraries/TLXX", "Src"),

    "Reader": TLX + TLX_LINUX + TLXX + TLXX_LINUX,

    "Libraries/PI/Include/PI": TLX,
    "Libraries/PI/Src": TLX + PI + rooms("Libraries/PI", "Src_Linux", "Src_Win"),
    "Libraries/PI/Src_Linux": TLX + TLX_LINUX + PI + rooms("Libraries/PI", "Src"),
    "Libraries/PI/Src_Win": TLX + TLX_WIN + PI + rooms("Libraries/PI", "Src"),

    "DatabaseORM/Include/DatabaseORM": (),
    "DatabaseORM/Src": ORM,

    "Libraries/Database/Include/Database": TLX + ORM,
    "Libraries/Database/Src": TLX + ORM + DATABASE,

    "Ostrel/Src/Records": TLX + TLXX + PI + ORM,
    "Ostrel/Src/Ostrel_Linux": TLX + TLX_LINUX + TLXX + TLXX_LINUX + rooms("Ostrel/Src", "Records"),
    "Ostrel/Src/Ostrel_Win": TLX + TLX_WIN + TLXX + TLXX_WIN + rooms("Ostrel/Src", "Records"),
    "Ostrel/Src/OstrelPlugin": PI + ORM + rooms("Ostrel/Src", "Records"),
    "Ostrel/Src/OstrelAdapter": TLX + PI + ORM + rooms("Ostrel/Src", "Records"),
    "Ostrel/Src/OstrelPhysicalDrive": TLX + PI + ORM + rooms("Ostrel/Src", "Records"),
    "Ostrel/Src/Ostrel": HOST_LIBRARIES + rooms(
        "Ostrel/Src", "Records", "OstrelPlugin", "OstrelAdapter", "OstrelPhysicalDrive"),

    "Host/Base": TLX,
    "Host/Base_Linux": TLX + TLX_LINUX + rooms("Host", "Base"),
    "Host/Base_Win": TLX + TLX_WIN + rooms("Host", "Base"),
    "Host/Drives": TLX + TLXX + rooms("Host", "Base"),
    "Host/Drives_Linux": TLX + TLX_LINUX + TLXX + TLXX_LINUX + rooms("Host", "Base", "Drives"),
    "Host/Drives_Win": TLX + TLX_WIN + TLXX + TLXX_WIN + rooms("Host", "Base", "Drives"),
    "Host/Plugins": HOST_LIBRARIES + rooms("Host", "Base", "Drives"),
    "Host/Facts": TLX + TLXX + PI + rooms("Host", "Base", "Drives", "Plugins"),
    "Host/Journal": PI + rooms("Host", "Base", "Facts"),
    "Host/Documents": TLX + PI + rooms("Host", "Base", "Plugins", "Facts", "Journal"),
    "Host/Web": TLX + PI + rooms("Host", "Base", "Plugins", "Facts", "Journal", "Documents"),
    "Host/Web_Linux": TLX + TLX_LINUX + rooms("Host", "Base", "Web"),
    "Host/Web_Win": TLX + TLX_WIN + rooms("Host", "Base", "Web"),
    "Host/Service": TLX + TLXX + rooms("Host", "Base", "Drives", "Plugins", "Facts", "Journal", "Web"),
    "Host/Terminal": TLX + PI + rooms("Host", "Base", "Facts", "Journal"),
    "Host/Commands": HOST_LIBRARIES + rooms(
        "Host", "Base", "Drives", "Plugins", "Facts", "Journal", "Documents", "Web", "Service", "Terminal"),
    "Host": rooms("Host", "Base", "Commands"),
}

# Headers of the system and of libraries, or folders of such, and the only places that may know them.
CONFINED = {
    "sqlite3.h": ("Libraries/Database/Src/", "Host/Base/Sqlite.cpp"),
    "linux/nvme_ioctl.h": ("Libraries/TLXX/Src_Linux/",),
    "windows.h": ("Win/",),
    "boost/asio": ("Host/Web/Connection.h",),
    "boost/beast": ("Host/Web/Connection.cpp",),
    "Web/Connection.h": ("Host/Web/Connection.cpp", "Host/Web/Server.cpp"),
}
# The build writes this one into a folder of its own.
GENERATED = re.compile(r"(TLX|TLXX|PI|Database)/Export\.h")
SOURCES = ("Libraries", "DatabaseORM", "Ostrel/Src", "Reader", "Host")
LIBRARIES = ("Libraries/TLX", "Libraries/TLXX", "Libraries/PI", "Libraries/Database", "DatabaseORM")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
OTHER_SYSTEM = {"Linux": "_Win", "Win": "_Linux"}


@functools.lru_cache(maxsize=None)
def search_folders(root, folder):
    """The folders where the compiler searches for an include of a file in this folder, after the folder itself."""
    found = [root / "Ostrel/Src", root / "Host"]
    for library in LIBRARIES:
        found += (root / library).glob("Include*")
        if folder.startswith(library + "/"):
            found += (root / library).glob("Src*")
    system = re.search(r"_(Linux|Win)(/|$)", folder)
    return [place for place in found if not (system and place.name.endswith(OTHER_SYSTEM[system.group(1)]))]


@functools.lru_cache(maxsize=None)
def targets(root, parent, included):
    """The folders, from the root, of the files that an include in a folder may lead to."""
    files = [parent / included]
    if not files[0].is_file():
        files = [place / included for place in search_folders(root, parent.relative_to(root).as_posix())]
    found = {file.resolve().parent for file in files if file.is_file()}
    return {folder.relative_to(root).as_posix() if folder.is_relative_to(root) else str(folder) for folder in found}


def complaints(root, path, quote, included):
    """The error in one include of one file, if any."""
    folder = path.parent.relative_to(root).as_posix()
    found = targets(root, path.parent, included)
    if not found and quote == '"' and not GENERATED.fullmatch(included):
        yield f"{included} leads to no file"
    for target in sorted(found - {folder}):
        if target not in ALLOWED[folder]:
            yield f"{folder} may not know {target} ({included})"
    for header, places in CONFINED.items():
        is_header = included == header or included.startswith((f"{header}/", f"{header}.hpp"))
        if is_header and not any(place in path.relative_to(root).as_posix() for place in places):
            yield f"only {' and '.join(places)} may include {included}"


def violations(root):
    """Yields one message for each include that the tables do not allow."""
    root = root.resolve()
    paths = [path for source in SOURCES for path in sorted((root / source).rglob("*")) if path.suffix in (".h", ".cpp")]
    if not paths:
        yield f"{root}: no source files found"
    for path in paths:
        name = path.relative_to(root).as_posix()
        if path.parent.relative_to(root).as_posix() not in ALLOWED:
            yield f"{name}: its folder has no row in the table"
            continue
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            match = INCLUDE.match(line)
            if match:
                for message in complaints(root, path, *match.groups()):
                    yield f"{name}:{number}: {message}"


def report(violations_of):
    """Prints the messages about the source folder that the command line names. Returns the exit code."""
    found = list(violations_of(pathlib.Path(sys.argv[1])))
    for message in found:
        print(message)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(report(violations))
