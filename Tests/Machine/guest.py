"""A virtual machine with a small system of its own: a shell, tools of this machine, and the tree under test."""

import pathlib

import initramfs
from machine import Machine

HERE = pathlib.Path(__file__).resolve().parent


class Guest(Machine):
    """
    A machine that starts from an archive of files. Of `programs`, those that are in the tree come from there, the
    others from this machine. `settings` go to the kernel's command line.
    """

    def __init__(self, kernel, job, log, fleet=(), later=(), tree=None, options=(), programs=(),
                 settings=()):
        super().__init__(kernel, log, "initramfs.cpio", fleet, later, options, settings)
        self._options = ("-initrd", str(self._disk), *self._options)
        self._pack(job, tree, programs)

    def _pack(self, job, tree, programs):
        archive = initramfs.Archive()
        for directory in ("/proc", "/sys", "/dev", "/tmp", "/root"):
            archive.directory(directory)
        archive.device("/dev/console", 5, 1)
        for program in ("busybox", "nvme", "smartctl", "sqlite3", "strace"):
            archive.program(program)
        archive.text("/etc/passwd", "root:x:0:0::/:/bin/sh\nnobody:x:65534:65534::/:/bin/sh\n"
                     "member:x:1000:1000::/:/bin/sh\n")
        archive.text("/etc/group", "root:x:0:\nnogroup:x:65534:\nmember:x:1000:\nostrel:x:900:member\n")
        archive.text("/init", (HERE / "init.sh").read_text(), mode=0o755)
        archive.text("/job/port.sh", (HERE / "port.sh").read_text())
        paths = sum(drive.path_count() for drive in self._drives)
        namespaces = sum(drive.namespace_count() for drive in self._drives)
        archive.text("/job/job.sh", f"await_drives {len(self._drives)} {paths} {namespaces}\n{job}")
        if tree is not None:
            archive.tree("/opt/ostrel", tree, ("bin/ostrel", "libexec/**/*", "lib/**/*.so*", "share/ostrel/*"))
        for program in programs:
            if tree is not None and (tree / "bin" / program).exists():
                archive.tree("/opt/ostrel", tree, (f"bin/{program}",))
            else:
                archive.program(program)
        archive.write(self._disk)
