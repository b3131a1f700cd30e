#!/usr/bin/env python3
"""
The cost of looking at NVMe drives, counted in instructions in a virtual machine. It measures a cycle of the worker in
which nothing changed, a round of `ostrel watch` and of `ostrel serve`, a scrape of the service, the service between two
rounds, its memory, and `ostrel list --json`. It compares them with the bare minimum, smartd and nvme-cli. The processes
that read the drives for the program count as its own.

The machine's clock advances one nanosecond for each instruction (QEMU's `-icount shift=0`). The kernel measures the
processor time of every process with that clock. So this time is the number of instructions that the process, and the
kernel for it, executed. Waiting for a drive costs nothing. A loop of known length checks this first.
"""

import argparse
import collections
import pathlib
import statistics
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "Tests" / "Machine"))

import kernel  # noqa: E402
from drives import MIB, Controller  # noqa: E402
from guest import Guest  # noqa: E402

COUNTS = (1, 8, 32, 64)
LOOP = 20_000_000
# Millions of instructions of `ostrel list --json`, by the number of drives.
LIST_LIMITS = {1: 18, 64: 100}
# Millions of instructions of the service in a scrape and in ten seconds between two rounds, and MiB of its memory.
SCRAPE_LIMIT = 3
IDLE_LIMIT = 0.01
MEMORY_LIMIT = 40
PROGRAMS = ("BareMinimum", "CycleCost", "Instructions", "smartd")
OPTIONS = ("-icount", "shift=0,sleep=off", "-rtc", "clock=vm")
LINE = "{:>6}  {:<22}{:>10}  {:<44}{:>10}{:>8}  {}"


def fleet(count):
    """Functions of the root complex, eight to a slot."""
    return tuple(Controller(f"drive-{number}", f"SERIAL-{number}", size=16 * MIB,
                            address=f"{2 + number // 8:x}.{number % 8}", options={"multifunction": True})
                 for number in range(count))


Watching = collections.namedtuple("Watching", "program reader total")


class Measured:
    """The instructions that one machine counted, in millions."""

    def __init__(self, files):
        self._files = files
        (loop,) = self.numbers("calibration")
        if abs(loop * 1e6 / LOOP - 1) > 0.01:
            raise RuntimeError(f"the clock does not count instructions: a loop of {LOOP} took {loop * 1e6:.0f}")
        self.bare = statistics.median(self.numbers("bare"))
        self.cycle = statistics.median(self.numbers("cycle"))
        self.resident = statistics.median(self.numbers("resident"))
        self.watch, self.serve, self.scrape, self.idle = map(self.watching, ("watch", "serve", "scrape", "idle"))
        self.page = int(self._files["page"])
        self.memory = int(self._files["peak-kib"]) / 1024
        self.list_program, self.list_reader = self.numbers("list")
        self.list = self.list_program + self.list_reader
        self.onecheck, self.start, self.nvme = (sum(self.numbers(name)) for name in ("onecheck", "start", "nvme"))

    def numbers(self, name):
        return [int(line) / 1e6 for line in self._files[name].split()]

    def watching(self, name):
        """What a command that watches the drives executed: itself, its reader, and both together."""
        program, reader = (statistics.median(self.numbers(f"{name}-{process}")) for process in ("program", "reader"))
        return Watching(program, reader, program + reader)

    def steps(self):
        """The cost of the steps of a cycle, and of a look at the system's list of controllers."""
        return {name: int(number) / 1e6 for name, number in
                (line.split() for line in self._files["steps"].decode().splitlines())}


def measure(tree, work, count):
    image = kernel.fetch(work / "kernel")
    print(f"Measuring with {count} drives ...", file=sys.stderr, flush=True)
    with Guest(image, (HERE / "cost.sh").read_text(), work / f"cost-{count}", fleet(count), tree=tree,
               options=OPTIONS, programs=PROGRAMS) as guest:
        return Measured(guest.results(timeout=1800))


def comparisons(count, here, least, fewest):
    """The comparisons, and the limit of each. `least` is the cost with the fewest drives."""
    if count > fewest:
        yield ("each further drive", (here.cycle - least.cycle) / (count - fewest),
               "bare minimum of each further drive", (here.bare - least.bare) / (count - fewest), 1.5)
    yield "worker's cycle", here.cycle, "1.5 x bare minimum + 0.3 M", 1.5 * here.bare + 0.3, 1
    if count >= 8:
        yield "worker's cycle", here.cycle, "check of a resident smartd", here.resident, 1
    yield "round of a watch", here.watch.total, "1.6 x bare minimum + 1 M", 1.6 * here.bare + 1, 1
    yield "round of the service", here.serve.total, "round of a watch", here.watch.total, 1.5
    yield "round of the service", here.serve.total, "check of a resident smartd", here.resident, None
    yield "scrape", here.scrape.program, "its limit", SCRAPE_LIMIT, 1
    yield "10 s without a round", here.idle.total, "its limit", IDLE_LIMIT, 1
    if count in LIST_LIMITS:
        yield "ostrel list --json", here.list, "its limit", LIST_LIMITS[count], 1
    yield "ostrel list --json", here.list, "smartd -q onecheck", here.onecheck, 1
    yield "ostrel list --json", here.list, "nvme id-ctrl, id-ns, smart-log for each", here.nvme, 1 / 20


def verdict(ratio, limit):
    if limit is None:
        return "no limit"
    return f"{limit:<5.4g} {'met' if ratio <= limit else 'MISSED'}"


def table(results):
    """The comparisons as lines of text."""
    yield LINE.format("drives", "what", "M instr.", "beside", "M instr.", "ratio", "at most")
    fewest = min(results)
    for count, here in results.items():
        for what, cost, beside, other, limit in comparisons(count, here, results[fewest], fewest):
            yield LINE.format(count, what, f"{cost:.3f}", beside, f"{other:.3f}", f"{cost / other:.3f}",
                              verdict(cost / other, limit))
    yield "\n" + LINE.format("drives", "what", "MiB", "beside", "MiB", "ratio", "at most")
    for count, here in results.items():
        yield LINE.format(count, "service, at its most", f"{here.memory:.1f}", "its limit", MEMORY_LIMIT,
                          f"{here.memory / MEMORY_LIMIT:.3f}", verdict(here.memory / MEMORY_LIMIT, 1))


def shares(results):
    """How the instructions are distributed."""
    yield "\nWhere the instructions go, in millions:"
    for count, here in results.items():
        steps = here.steps()
        controllers = steps.pop("controllers")
        steps = ", ".join(f"{name} {cost:.3f}" for name, cost in steps.items())
        yield f"{count:>6}  cycle {here.cycle:.3f}: {steps}"
        yield (f"{'':>6}  round of a watch {here.watch.total:.3f}: program {here.watch.program:.3f}, "
               f"reader {here.watch.reader:.3f}")
        yield (f"{'':>6}  round of the service {here.serve.total:.3f}: program {here.serve.program:.3f}, "
               f"reader {here.serve.reader:.3f}; a look at the list of controllers {controllers:.3f}")
        yield f"{'':>6}  scrape {here.scrape.program:.3f} with a page of {here.page} bytes"
        yield (f"{'':>6}  list {here.list:.3f}: start and end of the program {here.start:.3f}, "
               f"the rest of it {here.list_program - here.start:.3f}, reader {here.list_reader:.3f}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tree", type=pathlib.Path, required=True,
                        help="a build with benchmarks: a folder with bin/, lib/ and share/ostrel/")
    parser.add_argument("--work", type=pathlib.Path, default=ROOT / "build" / "machine",
                        help="folder for the kernel and the logs (default: build/machine)")
    parser.add_argument("counts", nargs="*", type=int, default=COUNTS, metavar="DRIVES",
                        help="how many drives a machine has, the least first (default: 1 8 32 64)")
    options = parser.parse_args()
    results = {count: measure(options.tree.resolve(), options.work.resolve(), count) for count in options.counts}
    print("\n".join((*table(results), *shares(results))))


if __name__ == "__main__":
    sys.exit(main())
