"""The guest's file system, written as a cpio archive: tools of this machine with the libraries they need."""

import pathlib
import re
import shutil
import stat
import subprocess

LINKED = re.compile(r"^\s*(?:\S+ => )?(/\S+) \(0x", re.M)


class Archive:
    """Files for a guest, by their path in it."""

    def __init__(self):
        self._entries = {}

    def directory(self, path):
        """Adds the directory `path` with those above it."""
        path = pathlib.PurePosixPath(path.strip("/"))
        for each in [*reversed(path.parents), path]:
            if str(each) != ".":
                self._entries.setdefault(str(each), (stat.S_IFDIR | 0o755, b"", (0, 0)))

    def _put(self, path, mode, content=b"", device=(0, 0)):
        path = path.strip("/")
        self.directory(str(pathlib.PurePosixPath(path).parent))
        self._entries[path] = (mode, content, device)

    def text(self, path, text, mode=0o644):
        """Adds a file with `text`."""
        self._put(path, stat.S_IFREG | mode, text.encode())

    def device(self, path, major, minor):
        """Adds a character device."""
        self._put(path, stat.S_IFCHR | 0o600, device=(major, minor))

    def file(self, path, source):
        """Adds a copy of `source`, which may be a symbolic link here and is none in the guest."""
        source = pathlib.Path(source)
        self._put(path, stat.S_IFREG | stat.S_IMODE(source.stat().st_mode), source.read_bytes())

    def tree(self, path, source, patterns):
        """Adds the matching files below the directory `source`, and the libraries that the programs among them need."""
        source = pathlib.Path(source).resolve()
        for each in (file for pattern in patterns for file in sorted(source.glob(pattern)) if file.is_file()):
            self.file(f"{path}/{each.relative_to(source)}", each)
            if each.read_bytes()[:4] == b"\x7fELF":
                self._libraries(each, inside=source)

    def program(self, name):
        """Adds a program of this machine to /bin, and the libraries that it needs."""
        found = shutil.which(name, path="/usr/sbin:/usr/bin:/sbin:/bin")
        if found is None:
            raise FileNotFoundError(f"the program {name} is not installed")
        self.file(f"/bin/{name}", found)
        self._libraries(found)

    def _libraries(self, binary, inside=None):
        listing = subprocess.run(["ldd", str(binary)], capture_output=True, text=True, check=False)
        if "not found" in listing.stdout:
            raise FileNotFoundError(f"{binary}: a library is missing:\n{listing.stdout}")
        for library in map(pathlib.Path, LINKED.findall(listing.stdout)):
            # Libraries in the tree are packed with it and found there.
            if inside is None or inside not in library.resolve().parents:
                self.file(str(library), library)

    def write(self, target):
        """Writes the archive to the file `target`."""
        with open(target, "wb") as out:
            for number, (path, (mode, content, device)) in enumerate(sorted(self._entries.items()), 1):
                out.write(_member(number, path, mode, content, device))
            out.write(_member(0, "TRAILER!!!", 0, b"", (0, 0)))


def _padded(data):
    return data + b"\0" * (-len(data) % 4)


def _member(number, path, mode, content, device):
    """One member in the format that the kernel documents as "newc"."""
    name = path.encode() + b"\0"
    fields = (number, mode, 0, 0, 1, 0, len(content), 0, 0, *device, len(name), 0)
    return _padded(b"070701" + b"".join(b"%08X" % field for field in fields) + name) + _padded(content)
