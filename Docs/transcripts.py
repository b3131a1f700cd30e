#!/usr/bin/env python3
"""
Puts into documents what the program really prints.

A transcript is a block that begins with ```console. A line in it that begins with "$ " is a command for a shell. The
text below that line is replaced by what the command prints to standard output. A line that begins with "# " is one of
the changes of the fleet in CHANGES. It happens while the command above it runs, after the lines that the command prints
at its start. The command must print one line for each change. It is told to end after the last one.

The commands of a block run one after the other in an empty folder. The folder has a copy of the demonstration fleet.
The installed program is first in the path. The date is fixed, because some figures depend on the day.

Needs the Debian package faketime.
"""

import argparse
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading

# The clock stands still, except while a program waits.
CLOCK = ("faketime", "--exclude-monotonic", "-f", "2026-01-01 12:00:00")
BLOCK = re.compile(r"(?<=^```console\n).*?(?=^```$)", re.MULTILINE | re.DOTALL)
FLEET = "DemoFleet.json"
# Names change until the first scan after the start is done; the trace shows when.
TRACE, LOOKED = "--trace 2", "LEAVE UpdateSystem"
PATIENCE = 60


def unplugged(device):
    return lambda fleet: [each for each in fleet if each["device"] != device]


def warning(device, bits):
    return lambda fleet: [each | {"health": each["health"] | {"criticalWarning": bits}} if each["device"] == device
                          else each for each in fleet]


CHANGES = {
    "# nvme2n1 is unplugged": unplugged("/dev/nvme2n1"),
    "# nvme4n1 runs out of spare blocks": warning("/dev/nvme4n1", 0x01),
    "# nvme4n1 has spare blocks again": warning("/dev/nvme4n1", 0x00),
}


def change(file, changed):
    """Replaces the fleet file as a whole."""
    fleet = json.loads(file.read_text(encoding="utf-8"))
    following = file.with_name("following.json")
    following.write_text(json.dumps({"controllers": changed(fleet["controllers"])}), encoding="utf-8")
    following.replace(file)


def watched(command, changes, started, folder):
    """The output of a command while the fleet changes."""
    beginning = subprocess.run([*CLOCK, "sh", "-c", f"{command} --for 0"], stderr=subprocess.DEVNULL, check=True,
                               **started).stdout.splitlines()
    with subprocess.Popen([*CLOCK, "sh", "-c", f"echo $$ >&2; exec {command} {TRACE}"], stderr=subprocess.PIPE,
                          **started) as running:
        process = int(running.stderr.readline())
        limit = threading.Timer(PATIENCE, os.kill, (process, signal.SIGKILL))
        limit.daemon = True
        limit.start()
        while LOOKED not in (line := running.stderr.readline()):
            if not line:
                raise RuntimeError(f"{command} does not look at the fleet")
        threading.Thread(target=running.stderr.read, daemon=True).start()
        yield from (running.stdout.readline() for _ in beginning)
        for sentence, changed in changes.items():
            change(folder / FLEET, changed)
            line = running.stdout.readline()
            if not line:
                raise RuntimeError(f"{sentence}: {command} prints nothing")
            yield f"{sentence}\n{line}"
        os.kill(process, signal.SIGTERM)
        yield running.stdout.read()
        limit.cancel()
    if running.returncode != 0:
        raise RuntimeError(f"{command} ended with {running.returncode}")


def printed(command, changes, folder, tree):
    environment = {"PATH": f"{tree}/bin:{os.environ['PATH']}", "LANG": "C.UTF-8", "TZ": "UTC", "HOME": "/nonexistent"}
    started = {"cwd": folder, "env": environment, "stdout": subprocess.PIPE, "text": True}
    if changes:
        return "".join(watched(command, changes, started, folder))
    return subprocess.run([*CLOCK, "sh", "-c", command], stderr=subprocess.DEVNULL, timeout=PATIENCE, check=True,
                          **started).stdout


def renewed(document, tree):
    def block(match):
        with tempfile.TemporaryDirectory() as folder:
            shutil.copy(tree / "share/ostrel" / FLEET, folder)
            steps = []
            for line in match[0].splitlines():
                if line.startswith("$ "):
                    steps.append((line, {}))
                elif line.startswith("# "):
                    steps[-1][1][line] = CHANGES[line]
            return "\n".join(f"{command}\n{printed(command[2:], changes, pathlib.Path(folder), tree)}"
                             for command, changes in steps)

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
