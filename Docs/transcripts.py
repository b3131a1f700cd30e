#!/usr/bin/env python3
"""
Puts into documents what the program really prints.

A transcript is a block that begins with ```console. Each of its lines that begins with "$ " is a command for a shell;
what stands below it is replaced by what it prints to standard output. Commands run in the folder of the installed fleet
file, with the installed program first in the path, at a fixed date: some figures depend on the day.

Needs the Debian package faketime.
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys

DATE = "2026-01-01 12:00:00"
BLOCK = re.compile(r"(?<=^```console\n).*?(?=^```$)", re.MULTILINE | re.DOTALL)


def printed(command, tree):
    environment = {"PATH": f"{tree}/bin:{os.environ['PATH']}", "LANG": "C.UTF-8", "TZ": "UTC", "HOME": "/nonexistent"}
    return subprocess.run(["faketime", "-f", DATE, "sh", "-c", command], cwd=tree / "share/ostrel", env=environment,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, timeout=60, check=True).stdout


def renewed(document, tree):
    def block(match):
        commands = [line for line in match[0].splitlines() if line.startswith("$ ")]
        return "\n".join(f"{command}\n{printed(command[2:], tree)}" for command in commands)

    return BLOCK.sub(block, document)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tree", type=pathlib.Path, required=True, help="an installation: a folder with bin/ and share/")
    parser.add_argument("--check", action="store_true", help="change nothing; fail when a document is not current")
    parser.add_argument("documents", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    stale = []
    for file in options.documents:
        document = file.read_text(encoding="utf-8")
        current = renewed(document, options.tree.resolve())
        if document != current:
            stale.append(file.name)
            if not options.check:
                file.write_text(current, encoding="utf-8")
    if stale and options.check:
        print(f"not current: {', '.join(stale)}; ./dev docs renews them")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
