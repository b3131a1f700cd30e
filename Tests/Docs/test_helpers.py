#!/usr/bin/env python3
"""Checks that Testing.md names every header that tests share, and none that is not there.

Usage: test_helpers.py SOURCE_DIRECTORY
"""

import pathlib
import re
import sys


def helpers(tests):
    """The shared headers as the document names them: those of the support folders by their name alone."""
    found = {path.relative_to(tests) for path in tests.rglob("*.h")}
    return {path.name if path.parts[0].startswith("Support") else path.as_posix() for path in found}


def named(document):
    """The headers in the tables of the document."""
    return set(re.findall(r"^\| `([^`]+\.h)`", document.read_text(encoding="utf-8"), re.MULTILINE))


def main():
    source = pathlib.Path(sys.argv[1])
    there = helpers(source / "Tests")
    written = named(source / "Docs/Testing.md")
    for name in sorted(there - written):
        print(f"Testing.md does not name {name}")
    for name in sorted(written - there):
        print(f"Testing.md names {name}, which is not there")
    return there != written


if __name__ == "__main__":
    sys.exit(main())
