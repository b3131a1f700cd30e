"""A virtual machine with emulated NVMe controllers. It runs one job and returns its results."""

import base64
import hashlib
import io
import json
import os
import pathlib
import shutil
import socket
import subprocess
import tarfile
import tempfile
import time

import drives
from qmp import Qmp

BOOT_TIMEOUT = 300
PROGRESS_EVERY = 15


class GuestFailure(Exception):
    """The guest did not do its job."""


class Machine:
    """
    One boot. Use it as a context manager: `await_event` and `go` keep step with the job, `qmp` reaches QEMU while
    the job runs, `results` waits for its end. The drives in `later` get their storage and their port now and are
    plugged in by `plug`. `disk` is a large file with which the machine starts; it goes with the machine. `options`
    are QEMU's, `settings` go to the kernel's command line.
    """

    def __init__(self, kernel, log, disk, fleet=(), later=(), options=(), settings=()):
        self._log = pathlib.Path(log)
        shutil.rmtree(self._log, ignore_errors=True)
        self._log.mkdir(parents=True)
        self._console = self._log / "console.txt"
        self._console.write_text("")
        self._kernel, self._drives, self._later, self._options = kernel, fleet, later, options
        # On a busy machine the emulated timer is too late for the kernel's check.
        self._settings = ("console=ttyS0", "quiet", "loglevel=5", "panic=-1", "no_timer_check", *settings)
        self._disk = self._log / disk
        self._buffer = b""
        self.events = []

    def _command(self, sockets):
        command = ["qemu-system-x86_64", "-machine", "q35", "-accel", "tcg", "-cpu", "max", "-m", "512",
                   "-nodefaults", "-no-user-config", "-display", "none", "-no-reboot",
                   "-global", "ICH9-LPC.acpi-pci-hotplug-with-bridge-support=on",
                   "-kernel", str(self._kernel), "-append", " ".join(self._settings),
                   "-chardev", f"file,id=console,path={self._console}", "-serial", "chardev:console",
                   "-chardev", f"socket,id=results,path={sockets}/results,server=on,wait=on",
                   "-serial", "chardev:results",
                   "-qmp", f"unix:{sockets}/qmp,server=on,wait=off",
                   "-trace", f"file={self._log}/trace.txt", *self._options]
        for drive in (*self._drives, *self._later):
            for backend in drive.backends():
                command += ["-blockdev", json.dumps(backend)]
        for device in drives.devices(self._drives, self._later):
            command += ["-device", json.dumps(device)]
        return command

    def __enter__(self):
        # A socket's path is bounded to about a hundred characters, which the log folder's may exceed.
        self._sockets = tempfile.mkdtemp(prefix="guest-")
        command = self._command(self._sockets)
        (self._log / "command.json").write_text(json.dumps(command, indent=1))
        self._stderr = open(self._log / "qemu.txt", "wb")
        self._started = time.monotonic()
        self._process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=self._stderr,
                                         stderr=self._stderr)
        try:
            self._port = self._connect("results")
            self.qmp = Qmp(self._connect("qmp"))
        except BaseException as error:
            self.__exit__(None, None, None)
            if isinstance(error, ConnectionError):
                raise self._failure("QEMU did not start") from None
            raise
        return self

    def __exit__(self, *_):
        if self._process.poll() is None:
            self._process.kill()
        self._process.wait()
        self._stderr.close()
        shutil.rmtree(self._sockets, ignore_errors=True)
        # The logs have what a failure needs; the disk is large and can be built again.
        self._disk.unlink(missing_ok=True)

    def _connect(self, name):
        connection = socket.socket(socket.AF_UNIX)
        deadline = time.monotonic() + 60
        while True:
            try:
                connection.connect(f"{self._sockets}/{name}")
                return connection
            except (FileNotFoundError, ConnectionRefusedError):
                if self._process.poll() is not None or time.monotonic() > deadline:
                    raise self._failure("QEMU did not start") from None
                time.sleep(0.02)

    def _failure(self, message):
        def tail(path, lines):
            return "\n".join(path.read_text(errors="replace").splitlines()[-lines:])
        return GuestFailure(f"{message}\nlogs: {self._log}\n{tail(self._log / 'qemu.txt', 10)}\n"
                            f"last lines of the console:\n{tail(self._console, 30)}")

    def _line(self, deadline, waiting_for):
        next_progress = time.monotonic() + PROGRESS_EVERY
        while b"\n" not in self._buffer:
            now = time.monotonic()
            if now > deadline:
                raise self._failure(f"the guest was too slow: no {waiting_for}")
            if now > next_progress:
                print(f"  ... {now - self._started:.0f} s, waiting for {waiting_for}", flush=True)
                next_progress = now + PROGRESS_EVERY
            self._port.settimeout(max(0.01, min(deadline, next_progress) - now))
            try:
                data = self._port.recv(1 << 16)
            except TimeoutError:
                continue
            except ConnectionResetError:
                data = b""
            if not data:
                raise self._failure(f"the guest stopped: no {waiting_for}")
            self._buffer += data
        line, self._buffer = self._buffer.split(b"\n", 1)
        return line.decode(errors="replace")

    def await_event(self, name, timeout=BOOT_TIMEOUT):
        """Waits until the job calls `event NAME`; returns the rest of that line."""
        deadline = time.monotonic() + timeout
        while True:
            kind, _, rest = self._line(deadline, name).partition(" ")
            if kind == "event":
                event, _, text = rest.partition(" ")
                self.events.append((time.monotonic() - self._started, event))
                if event == name:
                    return text
                if event == "results":
                    self._receive(text, deadline)
                    raise self._failure(f"the job ended: no {name}")

    def trace(self, names, enable):
        """Starts or stops QEMU's trace points; `traced` returns their lines."""
        for name in names:
            self.qmp.execute("trace-event-set-state", {"name": name, "enable": enable})

    def traced(self):
        """The lines that trace points wrote."""
        return (self._log / "trace.txt").read_text().splitlines()

    def go(self, name):
        """Lets a job continue that has called `await NAME`."""
        self._port.sendall(f"go {name}\n".encode())

    def plug(self, drive):
        """Plugs in a drive that was announced as a later one, or that was unplugged."""
        self.qmp.execute("device_add", drive.device())

    def unplug(self, drive):
        """Unplugs a drive and waits until the guest has released it."""
        self.qmp.execute("device_del", {"id": drive.name})
        while self.qmp.await_event("DEVICE_DELETED").get("device") != drive.name:
            pass

    def warn(self, drive, bits):
        """Sets the critical warning bits of a running controller."""
        self.qmp.execute("qom-set", {"path": f"/machine/peripheral/{drive.name}",
                                     "property": "smart_critical_warning", "value": bits})

    def results(self, timeout=BOOT_TIMEOUT):
        """Waits until the job has ended and the guest is off; the job's files, as bytes by name."""
        deadline = time.monotonic() + timeout
        files = self._receive(self.await_event("results", timeout), deadline)
        try:
            self._process.wait(max(1.0, deadline - time.monotonic()))
        except subprocess.TimeoutExpired:
            raise self._failure("the guest did not switch off") from None
        return files

    def _receive(self, digest, deadline):
        lines = []
        while (line := self._line(deadline, "results")) != "event end":
            lines.append(line)
        packed = base64.b64decode("".join(lines))
        if hashlib.sha256(packed).hexdigest() != digest:
            raise self._failure("the guest's results came damaged")
        files = {}
        with tarfile.open(fileobj=io.BytesIO(packed), mode="r:gz") as archive:
            for member in archive:
                if member.isfile():
                    files[os.path.normpath(member.name)] = archive.extractfile(member).read()
        for name, content in files.items():
            target = self._log / "results" / name
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)
        if files["job.status"].strip() != b"0":
            raise self._failure(f"the job failed:\n{files['job.log'].decode(errors='replace')}")
        return files
