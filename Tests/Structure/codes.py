#!/usr/bin/env python3
"""Checks that sources use the names of codes that two modules share, not the numbers.

Usage: codes.py SOURCE_DIRECTORY

The headers of PI define the codes. These are allowed:
- Comments, because they explain to people.
- Texts, because documents and command lines contain the numbers.
- Numbers with digit separators, because those are amounts: 20'000 milliseconds, but error 20000.
- Hexadecimal numbers, because those are bits and sizes.
- The files in the table below.
"""

import re
import sys

import dependencies

HEADERS = "Libraries/PI/Include/PI"
SOURCES = ("Host", "Ostrel/Src", "DatabaseORM", "Reader", "Tests")
# File or folder that needs numbers -> why.
EXEMPT = {
    "Tests/PI/NumbersTest.cpp": "compares names with their numbers",
    "Tests/PI/ErrorCodeTest.cpp": "compares the texts of names with their numbers",
    "Tests/PI/CatalogueTest.cpp": "finds every number in the catalogue and in the list of its own",
    "Tests/Docs/InterfaceTables.cpp": "walks through blocks of numbers",
    "Tests/TLX/": "does not know PI; the numbers are examples",
}

# A definition of one code, or of a list of codes.
DEFINITION = re.compile(r"\b[A-Z][A-Z0-9_]+(?:\[\])? = (\d{5}\b|\{[^}]*\})")
CODE = re.compile(r"\b\d{5}\b")
# What a source consists of, as far as numbers matter. The first alternative that fits at a place counts.
TOKEN = re.compile(
    r"""//[^\n]*|/\*.*?\*/
    |R"(?P<mark>[^()\\\s]*)\(.*?\)(?P=mark)"
    |"(?:\\.|[^"\\\n])*"
    |(?<!\w)'(?:\\.|[^'\\\n])+'
    |(?<![\w.])(?P<number>\d[\w']*)(?!\.)""",
    re.DOTALL | re.VERBOSE)
SUFFIX = re.compile("[uUlLzZ]+$")


def defined(root):
    """The codes that the headers define."""
    texts = [path.read_text(encoding="utf-8") for path in sorted((root / HEADERS).glob("*.h"))]
    return {code for text in texts for value in DEFINITION.findall(text) for code in CODE.findall(value)}


def bare_codes(text, codes):
    """Yields the line and the value of each code that is written as a number."""
    for token in TOKEN.finditer(text):
        number = token.group("number")
        if number and SUFFIX.sub("", number) in codes:
            yield text.count("\n", 0, token.start()) + 1, number


def violations(root):
    """Yields one message for each bare code."""
    codes = defined(root)
    exempt = tuple(EXEMPT)
    paths = [path for source in SOURCES for path in sorted((root / source).rglob("*"))
             if path.suffix in (".h", ".cpp") and not path.relative_to(root).as_posix().startswith(exempt)]
    if not codes or not paths:
        yield f"{root}: {len(codes)} codes and {len(paths)} source files found"
    for path in paths:
        for line, number in bare_codes(path.read_text(encoding="utf-8"), codes):
            yield f"{path.relative_to(root).as_posix()}:{line}: {number} has a name in {HEADERS}"


if __name__ == "__main__":
    sys.exit(dependencies.report(violations))
