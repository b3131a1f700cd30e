#!/usr/bin/env python3
"""Plants codes in a tree of their own, one at a time, and expects that the bare ones and no others are found.

Usage: planted_codes.py SOURCE_DIRECTORY
"""

import pathlib
import shutil
import sys
import tempfile

import codes

# File that is planted -> its last line, and the number that the check must report there, if any.
PLANTED = [
    ("Host/Journal/Planted.cpp", "constexpr std::uint32_t ADDED = 11093;", "11093"),
    ("Host/Web_Linux/Planted.h", "bool isHealthy(std::uint32_t code) { return code == 40024U; }", "40024U"),
    ("Ostrel/Src/OstrelAdapter/Planted.cpp", "constexpr std::uint32_t NAMES[] = {1, 30007};", "30007"),
    ("DatabaseORM/Src/Planted.cpp", 'bool planted = is("text // no comment", 40095); // 1', "40095"),
    ("Reader/Planted.cpp", "constexpr auto FAILURE = /* 1 */ 20000UL;", "20000UL"),
    ("Host/Base/Planted.cpp", "constexpr char QUOTE = '\"'; constexpr int CAPTION = 23304; // '\"'", "23304"),
    ("Host/Base/Planted.cpp", "constexpr std::uint64_t SOURCE = 19002;", "19002"),
    ("Host/Base/Planted.cpp", "constexpr std::uint32_t FORESEEN = 40266;", "40266"),
    ("Tests/PI/Planted.cpp", "EXPECT_EQ(status, 40095);", "40095"),
    ("Host/Base/Planted.cpp", "// 11093", None),
    ("Host/Base/Planted.cpp", "/* one\n 11093 */", None),
    ("Host/Base/Planted.cpp", 'const char* const text = "property 30059";', None),
    ("Host/Base/Planted.cpp", 'const char* const text = R"-(\nproperty ")" 30059)-";', None),
    ("Host/Base/Planted.cpp", "constexpr std::uint64_t PAUSE = 20'000;", None),
    ("Host/Base/Planted.cpp", "constexpr std::uint32_t BITS = 0x4E20;", None),
    ("Host/Base/Planted.cpp", "constexpr double RATIO = 20000.5;", None),
    ("Host/Base/Planted.cpp", "constexpr std::size_t PIECE = 16384;", None),
]


def main():
    source = pathlib.Path(sys.argv[1])
    failures = []
    with tempfile.TemporaryDirectory() as name:
        copy = pathlib.Path(name)
        shutil.copytree(source / codes.HEADERS, copy / codes.HEADERS)
        for file, line, number in PLANTED:
            planted = copy / file
            planted.parent.mkdir(parents=True, exist_ok=True)
            planted.write_text(f"#include <cstdint>\n{line}\n", encoding="utf-8")
            found = list(codes.violations(copy))
            planted.unlink()
            expected = [f"{file}:2: {number} has a name in {codes.HEADERS}"] if number else []
            if found != expected:
                failures.append(f"{file} with {line}: expected {expected}, found {found}")
    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
