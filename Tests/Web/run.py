#!/usr/bin/env python3
"""
The test of what the service shows: metrics and the status page. Prometheus, a text browser and Chromium read them, also
through a proxy.

Needs the Debian packages chromium, openssl, python3-prometheus-client and w3m. Prometheus and nginx are unpacked and
never installed, so that no server starts. It installs nothing and needs no special rights.
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
    parser.add_argument("--tree", type=pathlib.Path, required=True, help="a build folder with tests, such as build/dev")
    parser.add_argument("--work", type=pathlib.Path, required=True, help="folder for what is unpacked and made")
    parser.add_argument("only", nargs="*", metavar="NAME", help="run just these, such as test_metrics or test_page.Page")
    options = parser.parse_args()
    if not (options.tree / "bin/ostrel").is_file():
        parser.error(f"there is no program in {options.tree}")
    stage.open(options.tree.resolve(), options.work.resolve())
    return progress.run(str(HERE), options.only, stage.work)


if __name__ == "__main__":
    sys.exit(main())
