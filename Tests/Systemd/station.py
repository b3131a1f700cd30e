"""A virtual machine with Debian and its service manager."""

import json
import pathlib
import tarfile

import image
import kernel
from machine import Machine

HERE = pathlib.Path(__file__).resolve().parent
MACHINE = HERE.parent / "Machine"

package = None  # the file of the package under test
work = None     # everything that the tests make is below it


class Station(Machine):
    """
    A machine that starts Debian from a disk and runs a job as root when all units have started. The disk is one
    more NVMe controller, with the serial number "SYSTEM".
    """

    def __init__(self, log, job, fleet=(), later=()):
        super().__init__(kernel.fetch(work / "kernel"), log, "disk.img", fleet, later,
                         settings=(image.ROOT, "rw", "systemd.show_status=0"))
        drive = {"driver": "file", "node-name": "system", "filename": str(self._disk), "cache": {"no-flush": True}}
        self._options = ("-blockdev", json.dumps(drive),
                         "-device", json.dumps({"driver": "nvme", "serial": "SYSTEM", "drive": "system"}))
        payload = self._log / "payload.tar"
        with tarfile.open(payload, "w") as archive:
            archive.add(package, "job/ostrel.deb")
            archive.add(MACHINE / "port.sh", "job/port.sh")
            archive.add(HERE / "start.sh", "job/start.sh")
            archive.add(HERE / "jobs" / f"{job}.sh", "job/job.sh")
        image.disk(image.fetch(package), payload, self._disk)
        payload.unlink()


def boot(job, fleet=(), later=()):
    """A guest that runs this job."""
    print(f"Booting Debian for '{job}' with {len(fleet)} controllers ...", flush=True)
    return Station(work / job, job, fleet, later)
