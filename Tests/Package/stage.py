"""The unpacked packages, and functions that run programs from them."""

import shutil
import subprocess

package = None      # the file of the program's package
development = None  # that of the package for developers
work = None         # everything that the tests make is below it
root = None         # where both are unpacked


def open(program, developers, folder):
    global package, development, work, root
    package, development, work, root = program, developers, folder, folder / "root"
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    for file in (package, development):
        run("dpkg-deb", "--extract", file, root)


def run(*command, **options):
    """Runs a command that must succeed, and returns what it printed."""
    done = attempt(*command, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def attempt(*command, **options):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, timeout=300, check=False,
                          **options)


def ostrel(*words):
    """What the unpacked program prints."""
    return run(root / "usr/bin/ostrel", *words)


def demo():
    """The options that make the program show its own demonstration fleet."""
    return "--simulate", root / "usr/share/ostrel/DemoFleet.json"
