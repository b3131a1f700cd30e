#!/usr/bin/env python3
"""
The cost of looking at NVMe drives, counted in instructions in a virtual machine. It measures a cycle of the worker in
which nothing changed, a round of `ostrel watch` and `ostrel list --json`, and compares them with the bare minimum,
smartd and nvme-cli. The processes that read the drives for the program count as its own.

The machine's clock advances one nanosecond for each instruction (QEMU's `-icount shift=0`). The kernel measures the
processor time of every process with that clock. So this time is the number of instructions that the process, and the
kernel for it, executed. Waiting for a drive costs nothing. A loop of known length checks this first.
"""

import argparse
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
PROGRAMS = ("BareMinimum", "CycleCost", "Instructions", "smartd")
OPTIONS = ("-icount", "shift=0,sleep=off", "-rtc", "clock=vm")
LINE = "{:>6}  {:<22}{:>10}  {:<44}{:>10}{:>8}  {}"


def fleet(count):
    """Functions of the root complex, eight to a slot."""
    return tuple(Controller(f"drive-{number}", f"SERIAL-{number}", size=16 * MIB,
                            address=f"{2 + number // 8:x}.{number % 8}", options={"multifunction": True})
                 for number in range(count))


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
        self.round_program = statistics.median(self.numbers("round-program"))
        self.round_reader = statistics.median(self.numbers("round-reader"))
        self.round = self.round_program + self.round_reader
        self.list_program, self.list_reader = self.numbers("list")
        self.list = self.list_program + self.list_reader
        self.onecheck, self.start, self.nvme = (sum(self.numbers(name)) for name in ("onecheck", "start", "nvme"))

    def numbers(self, name):
        return [int(line) / 1e6 for line in self._files[name].split()]

    def steps(self):
        """The cost of the steps of a cycle, and of those parts of a list that can be measured alone."""
        return {name: int(number) / 1e6 for name, number in
                (line.split() for line in self._files["steps"].decode().splitlines())}


def measure(tree, work, count):
    image = kernel.fetch(work / "kernel")
    print(f"Measuring with {count} drives ...", file=sys.stderr, flush=True)
    with Guest(image, (HERE / "cost.sh").read_text(), work / f"cost-{count}", fleet(count), tree=tree,
               options=OPTIONS, programs=PROGRAMS) as guest:
        return Measured(guest.results(timeout=1800))


def comparisons(count, here, one):
    """The comparisons, and the limit of each."""
    if count > 1:
        yield ("each further drive", (here.cycle - one.cycle) / (count - 1), "bare minimum of each further drive",
               (here.bare - one.bare) / (count - 1), 1.5)
    yield "worker's cycle", here.cycle, "1.5 x bare minimum + 0.3 M", 1.5 * here.bare + 0.3, 1
    if count >= 8:
        yield "worker's cycle", here.cycle, "check of a resident smartd", here.resident, 1
    yield "round of a watch", here.round, "1.6 x bare minimum + 1 M", 1.6 * here.bare + 1, 1
    if count in LIST_LIMITS:
        yield "ostrel list --json", here.list, "its limit", LIST_LIMITS[count], 1
    yield "ostrel list --json", here.list, "smartd -q onecheck", here.onecheck, 1
    yield "ostrel list --json", here.list, "nvme id-ctrl, id-ns, smart-log for each", here.nvme, 1 / 20


def table(results):
    """The comparisons as lines of text."""
    yield LINE.format("drives", "what", "M instr.", "beside", "M instr.", "ratio", "at most")
    for count, here in results.items():
        for what, cost, beside, other, limit in comparisons(count, here, results[1]):
            verdict = "met" if cost <= limit * other else "MISSED"
            yield LINE.format(count, what, f"{cost:.3f}", beside, f"{other:.3f}", f"{cost / other:.3f}",
                              f"{limit:<5.4g} {verdict}")


def shares(results):
    """How the instructions are distributed."""
    yield "\nWhere the instructions go, in millions:"
    for count, here in results.items():
        steps = ", ".join(f"{name} {cost:.3f}" for name, cost in here.steps().items())
        yield f"{count:>6}  cycle {here.cycle:.3f}: {steps}"
        yield f"{'':>6}  round {here.round:.3f}: program {here.round_program:.3f}, reader {here.round_reader:.3f}"
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
