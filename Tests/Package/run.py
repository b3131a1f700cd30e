#!/usr/bin/env python3
"""
The test of what users install: the Debian package, unpacked into a folder of its own and used from there, its manual,
its completions, and a host and a plug-in that are built against it alone.

Needs the Debian packages cmake dpkg faketime fish g++ groff-base libboost-filesystem-dev lintian ninja-build zsh. It
installs nothing and needs no special rights.
"""

import argparse
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.dont_write_bytecode = True
# What this test has in common with the one in a virtual machine is there.
sys.path[:0] = [str(HERE), str(HERE.parent / "Machine")]

import progress  # noqa: E402
import stage  # noqa: E402


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--package", type=pathlib.Path, required=True, help="the Debian package")
    parser.add_argument("--work", type=pathlib.Path, default=HERE.parents[1] / "build" / "package-test",
                        help="folder for what is unpacked and built (default: build/package-test)")
    parser.add_argument("only", nargs="*", metavar="NAME",
                        help="run just these, such as test_debian or test_manual.Manual")
    options = parser.parse_args()
    if not options.package.is_file():
        parser.error(f"there is no {options.package}")
    stage.open(options.package.resolve(), options.work.resolve())
    return progress.run(str(HERE), options.only, stage.work)


if __name__ == "__main__":
    sys.exit(main())
