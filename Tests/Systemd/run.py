#!/usr/bin/env python3
"""
The test of the units: a small Debian starts in a virtual machine with emulated NVMe controllers, its service manager
runs what the Debian package installs, and drives come and go.

Needs the Debian packages e2fsprogs mmdebstrap python3 qemu-system-x86 and a configured apt. Building the guest's system
needs root or user namespaces. It is kept in the user's cache folder.
"""

import argparse
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.dont_write_bytecode = True
# The modules that this test shares with the machine test are there.
sys.path[:0] = [str(HERE), str(HERE.parent / "Machine"), str(HERE.parent / "Docs")]

import progress  # noqa: E402
import station  # noqa: E402


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--package", type=pathlib.Path, required=True, help="the Debian package of the program")
    parser.add_argument("--work", type=pathlib.Path, default=HERE.parents[1] / "build" / "systemd",
                        help="folder for the kernel and the logs (default: build/systemd)")
    parser.add_argument("only", nargs="*", metavar="NAME", help="run just these, such as test_reader_unit")
    options = parser.parse_args()
    if not options.package.is_file():
        parser.error(f"there is no {options.package}")
    station.package, station.work = options.package.resolve(), options.work.resolve()
    station.work.mkdir(parents=True, exist_ok=True)
    return progress.run(str(HERE), options.only, station.work)


if __name__ == "__main__":
    sys.exit(main())
