"""Runs tests with one line for each, and counts them."""

import time
import unittest


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


def run(folder, only, logs):
    """Runs the tests in a folder, or those named, and gives the exit code."""
    started = time.monotonic()
    loader = unittest.TestLoader()
    suite = loader.loadTestsFromNames(only) if only else loader.discover(folder)
    result = Result()
    suite.run(result)
    print(f"{result.passed} passed, {result.failed} failed ({time.monotonic() - started:.0f} s; logs in {logs})")
    return 0 if result.failed == 0 and result.passed > 0 else 1
