"""A Wine prefix of its own, and programs run in it."""

import dataclasses
import os
import shutil
import subprocess

# Wine's own libraries, except where a program has one of that name beside it. No offers to download anything.
OVERRIDES = "setupapi,cfgmgr32=n,b;mscoree,mshtml="
PATIENCE = 300
SERVICE = "storagetest"


@dataclasses.dataclass(frozen=True)
class Run:
    """The output of a program and its exit code."""

    code: int
    out: str
    err: str


class Prefix:
    """
    A fresh prefix in `folder`, in the place of any that was there. Its Wine server runs until the prefix is
    closed; what programs print goes to the log as well.
    """

    def __init__(self, folder, log, version="win10"):
        self.folder, self._log = folder, log
        # Wine settings, display and locale of the caller must have no effect.
        self._environment = {name: value for name, value in os.environ.items()
                             if not name.startswith(("WINE", "LC_", "LANG")) and name != "DISPLAY"}
        self._environment |= {"WINEPREFIX": str(folder), "WINEARCH": "win64", "WINEDEBUG": "-all",
                              "WINEDLLOVERRIDES": OVERRIDES, "LC_ALL": "C.UTF-8"}
        log.write_text("")
        if folder.exists():
            # An interrupted run may have left its server running.
            self._stop_server()
            shutil.rmtree(folder)
        folder.mkdir()
        self._tool("wineboot", "-i")
        self._stop_server()
        # Without this the server, and with it an idle driver, would stop some seconds after the last program.
        self._tool("wineserver", "-p")
        self._tool("winecfg", "-v", version)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        """Ends every program of the prefix, and its server."""
        self._stop_server()

    @property
    def drive_c(self):
        return self.folder / "drive_c"

    def start(self, *command, stdin=subprocess.DEVNULL):
        """Starts a program and does not wait for it."""
        return subprocess.Popen(["wine", *map(str, command)], env=self._environment, stdin=stdin,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def finish(self, process):
        """Waits for a started program."""
        try:
            out, err = process.communicate(timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            raise
        run = Run(process.returncode, *(text.decode("utf-8", "replace").replace("\r\n", "\n") for text in (out, err)))
        with self._log.open("a") as log:
            print(f"$ {' '.join(process.args)}\n{run.out}{run.err}[{run.code}]", file=log)
        return run

    def run(self, *command):
        """Runs a program to its end."""
        return self.finish(self.start(*command))

    def control_driver(self, *command):
        """`sc` with the driver's name after its first word; it must succeed."""
        run = self.run("sc", command[0], SERVICE, *command[1:])
        if run.code != 0:
            raise RuntimeError(f"sc {' '.join(command)}: {run.code} {run.out}{run.err}")

    def _tool(self, *command, check=True):
        with self._log.open("ab") as log:
            subprocess.run(command, env=self._environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                           check=check, timeout=PATIENCE)

    def _stop_server(self):
        # It fails when there is none.
        self._tool("wineserver", "-k", check=False)
        self._tool("wineserver", "-w")
