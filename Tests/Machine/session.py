"""What all tests of one run share: the tree under test, where logs go, and the kernel."""

import pathlib

import kernel
from guest import HERE, Guest

tree = None
work = None


def job(name):
    """The text of a job, after the beginning that all jobs share."""
    return "".join((HERE / "jobs" / f"{each}.sh").read_text() for each in ("collect", name))


def boot(name, fleet=(), later=(), options=(), label=None, settings=()):
    """A guest with ostrel that runs this job. `label` names its logs when several guests run the same job."""
    label = label or name
    image = kernel.fetch(pathlib.Path(work) / "kernel")
    print(f"Booting the guest '{label}' with {len(fleet)} controllers ...", flush=True)
    return Guest(image, job(name), pathlib.Path(work) / label, fleet, later, tree, options,
                 settings=settings)
