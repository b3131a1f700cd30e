#!/usr/bin/env python3
"""
The machine test: ostrel runs in a virtual machine with emulated NVMe controllers. Its output is compared with
nvme-cli, smartctl and the kernel.

Needs the Debian packages qemu-system-x86 busybox-static nvme-cli smartmontools sqlite3 strace python3
python3-jsonschema,
and a configured apt. It downloads the guest's kernel, unpacks it below the work folder and never installs it.
It needs no special rights and no hardware virtualisation.
"""

import argparse
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path[:0] = [str(HERE), str(HERE.parent / "Docs")]

import progress  # noqa: E402
import session  # noqa: E402


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tree", type=pathlib.Path, required=True,
                        help="what is tested: a folder with bin/ostrel, lib/ and share/ostrel/")
    parser.add_argument("--work", type=pathlib.Path, default=HERE.parents[1] / "build" / "machine",
                        help="folder for the kernel and the logs (default: build/machine)")
    parser.add_argument("only", nargs="*", metavar="NAME",
                        help="run just these, such as test_inventory or test_inventory.EmptyMachine")
    options = parser.parse_args()
    if not (options.tree / "bin" / "ostrel").is_file():
        parser.error(f"there is no bin/ostrel in {options.tree}")
    session.tree, session.work = options.tree.resolve(), options.work.resolve()
    session.work.mkdir(parents=True, exist_ok=True)

    return progress.run(str(HERE), options.only, session.work)


if __name__ == "__main__":
    sys.exit(main())
