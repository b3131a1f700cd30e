"""What all tests of one run share: the product, the replacements of hardware, and the prefix with both."""

import functools
import json
import pathlib
import shutil

from fleet import Storage, tree
from prefix import SERVICE, Prefix
from standins import StandIns

product = None
package = None
work = None

_prefixes = []


def close():
    """Ends programs that still run."""
    while _prefixes:
        _prefixes.pop().close()


def fresh_prefix(name):
    """A new prefix in the work folder. It exists until the end of the run."""
    print(f"Making the Wine prefix '{name}' ...", flush=True)
    prefix = Prefix(pathlib.Path(work) / name, pathlib.Path(work) / f"{name}.log")
    _prefixes.append(prefix)
    return prefix


class Machine:
    """A prefix with the product, the device tree's library beside it, and the driver."""

    def __init__(self):
        standins = StandIns(pathlib.Path(work) / "standins")
        self.prefix = fresh_prefix("prefix")
        self.storage = Storage(self.prefix.drive_c)
        self.probe = self._beside(standins.probe, self.prefix.drive_c / "Probe", standins)
        self.installed = self.prefix.drive_c / "Ostrel"
        shutil.copytree(product, self.installed)
        self.console = shutil.copy(standins.console, self.prefix.drive_c)
        self.program = self._beside(self.installed / "bin" / "ostrel.exe", self.installed / "bin", standins)
        drivers = self.prefix.drive_c / "windows" / "system32" / "drivers"
        shutil.copy(standins.versioned, drivers / "stornvme.sys")
        shutil.copy(standins.driver, drivers / standins.driver.name)
        self.prefix.control_driver("create", "type=", "kernel", "binPath=",
                                   f"C:\\windows\\system32\\drivers\\{SERVICE}.sys")
        self._running = False

    @staticmethod
    def _beside(program, folder, standins):
        folder.mkdir(exist_ok=True)
        for name in ("setupapi.dll", "cfgmgr32.dll"):
            shutil.copy(standins.device_tree, folder / name)
        if program.parent != folder:
            shutil.copy(program, folder)
        return folder / program.name

    def stop(self):
        """Removes all disks; the device tree keeps them."""
        if self._running:
            self.prefix.control_driver("stop")
        self._running = False

    def start(self):
        """Brings them back."""
        self.prefix.control_driver("start")
        self._running = True

    def equip(self, disks, others=()):
        """Gives the machine exactly these disks, and adds other lines to its device tree."""
        self.stop()
        shutil.rmtree(self.storage.folder, ignore_errors=True)
        self.storage.disks(disks)
        self.storage.tree(tree(disks, others))
        self.start()
        self.storage.forget_requests()

    def begin(self, *arguments):
        """Starts `ostrel` with these arguments."""
        return self.prefix.start(self.program, *arguments)

    def ostrel(self, *arguments):
        """The output of `ostrel` with these arguments."""
        return self.prefix.run(self.program, *arguments)

    def together(self, *commands):
        """The same for several command lines at once, because a disk that does not answer costs seconds."""
        return [self.prefix.finish(process) for process in [self.begin(*command.split()) for command in commands]]


@functools.cache
def machine():
    """The one machine of the run."""
    return Machine()


def document(run):
    """The JSON document that a program printed."""
    return json.loads(run.out)
