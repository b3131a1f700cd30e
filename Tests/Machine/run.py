#!/usr/bin/env python3
"""
The machine test: ostrel in a virtual machine with emulated NVMe controllers, held against nvme-cli, smartctl and
the kernel.

Needs the Debian packages qemu-system-x86 busybox-static nvme-cli smartmontools sqlite3 python3, and a configured apt to
download the guest's kernel from (it is unpacked below the work folder, never installed). It needs no special
rights and no hardware virtualisation.
"""

import argparse
import pathlib
import sys
import time
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(HERE))

import session  # noqa: E402


class Result(unittest.TestResult):
    """Prints one line a test."""

    def __init__(self):
        super().__init__()
        self.passed, self.failed = 0, 0

    def startTest(self, test):
        super().startTest(test)
        self._started, self._broken = time.monotonic(), False

    def _line(self, outcome, test):
        what = test.shortDescription() or str(test)
        print(f"{outcome}  {what} ({time.monotonic() - self._started:.1f} s)", flush=True)

    def _failure(self, test, error):
        self._broken = True
        self.failed += 1
        print(f"FAIL  {test.shortDescription() or ''} [{test.id()}]", flush=True)
        print("".join(f"      {line}\n" for line in self._exc_info_to_string(error, test).splitlines()), flush=True)

    def addFailure(self, test, err):
        super().addFailure(test, err)
        self._failure(test, err)

    def addError(self, test, err):
        # Also a class or module that could not be set up, which no startTest announces.
        self._started = getattr(self, "_started", time.monotonic())
        super().addError(test, err)
        self._failure(test, err)

    def addSubTest(self, test, subtest, err):
        super().addSubTest(test, subtest, err)
        if err is not None:
            self._failure(subtest, err)

    def addSkip(self, test, reason):
        super().addSkip(test, reason)
        self._broken = True
        self.failed += 1
        print(f"FAIL  {test}: skipped, {reason}", flush=True)

    def stopTest(self, test):
        if not self._broken:
            self.passed += 1
            self._line("ok  ", test)
        super().stopTest(test)


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

    started = time.monotonic()
    loader = unittest.TestLoader()
    suite = loader.loadTestsFromNames(options.only) if options.only else loader.discover(str(HERE))
    result = Result()
    suite.run(result)
    print(f"{result.passed} passed, {result.failed} failed ({time.monotonic() - started:.0f} s; "
          f"logs in {session.work})")
    return 0 if result.failed == 0 and result.passed > 0 else 1


if __name__ == "__main__":
    sys.exit(main())
