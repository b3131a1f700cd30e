#!/usr/bin/env python3
"""
The test of what users install: the Debian packages, unpacked into a folder of their own and used from there, the
manual, the completions, and a host and a plug-in that are built against them alone.

Needs the Debian packages binutils cmake dpkg faketime fish g++ groff-base libboost-filesystem-dev lintian ninja-build zsh. It
installs nothing and needs no special rights.
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
    parser.add_argument("--package", type=pathlib.Path, required=True, help="the Debian package of the program")
    parser.add_argument("--development", type=pathlib.Path, required=True, help="the one for developers")
    parser.add_argument("--work", type=pathlib.Path, default=HERE.parents[1] / "build" / "package-test",
                        help="folder for what is unpacked and built (default: build/package-test)")
    parser.add_argument("only", nargs="*", metavar="NAME",
                        help="run just these, such as test_debian or test_manual.Manual")
    options = parser.parse_args()
    for file in (options.package, options.development):
        if not file.is_file():
            parser.error(f"there is no {file}")
    stage.open(options.package.resolve(), options.development.resolve(), options.work.resolve())
    return progress.run(str(HERE), options.only, stage.work)


if __name__ == "__main__":
    sys.exit(main())
