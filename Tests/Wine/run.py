#!/usr/bin/env python3
"""
The Windows test: the whole cross-built product under Wine, with storage devices that a kernel driver of the test's
own provides, and a device tree that a library beside the program serves.

Needs the Debian packages wine wine64 g++-mingw-w64-x86-64-posix sqlite3 python3. It makes Wine prefixes of its own
below the work folder, and needs no special rights and no display.
"""

import argparse
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.dont_write_bytecode = True
# The modules that this test shares with the machine test are there.
sys.path[:0] = [str(HERE), str(HERE.parent / "Machine")]

import progress  # noqa: E402
import stage  # noqa: E402


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tree", type=pathlib.Path, required=True,
                        help="what is tested: a folder with bin/ostrel.exe, its libraries and share/ostrel/")
    parser.add_argument("--package", type=pathlib.Path, required=True,
                        help="the zip that users get, which is unpacked and run in a prefix of its own")
    parser.add_argument("--work", type=pathlib.Path, default=HERE.parents[1] / "build" / "wine",
                        help="folder for the prefixes and the logs (default: build/wine)")
    parser.add_argument("only", nargs="*", metavar="NAME",
                        help="run just these, such as test_devices or test_faults.Pulled")
    options = parser.parse_args()
    if not (options.tree / "bin" / "ostrel.exe").is_file():
        parser.error(f"there is no bin/ostrel.exe in {options.tree}")
    if not options.package.is_file():
        parser.error(f"there is no {options.package}")
    stage.product, stage.package = options.tree.resolve(), options.package.resolve()
    stage.work = options.work.resolve()
    stage.work.mkdir(parents=True, exist_ok=True)
    try:
        return progress.run(str(HERE), options.only, stage.work)
    finally:
        stage.close()


if __name__ == "__main__":
    sys.exit(main())
