"""The guest's disk: a small Debian with systemd, built once and kept in the user's cache folder."""

import hashlib
import os
import pathlib
import re
import subprocess

# The kernel finds the root partition by these numbers, whatever the other drives are named.
SIGNATURE = 0x6F737472
ROOT = f"root=PARTUUID={SIGNATURE:08x}-01"
MIB = 1 << 20
SIZE = 400 * MIB

PACKAGES = ("systemd", "systemd-sysv", "dbus", "udev")
LEFT_OUT = ("/usr/share/doc/*", "/usr/share/man/*", "/usr/share/locale/*", "/usr/lib/udev/hwdb.d/*")
FINISH = pathlib.Path(__file__).resolve().parent / "finish.sh"


def _partition(first, length):
    """An entry of a master boot record, in sectors, for a partition with any content."""
    return bytes((0, 0, 0, 0, 0x83, 0, 0, 0)) + first.to_bytes(4, "little") + length.to_bytes(4, "little")


def _record(payload):
    """A master boot record with the file system and a payload of this many bytes after it."""
    partitions = _partition(MIB // 512, SIZE // 512) + _partition((MIB + SIZE) // 512, payload // 512)
    return b"\0" * 440 + SIGNATURE.to_bytes(4, "little") + b"\0\0" + partitions.ljust(64, b"\0") + b"\x55\xaa"


def _archives():
    """The archives of Debian that this machine uses, as lines of a list of sources."""
    asked = ("apt-get", "indextargets", "--format", "$(ORIGIN)|$(REPO_URI) $(RELEASE) $(COMPONENT)",
             "Created-By: Packages")
    lines = []
    for line in subprocess.run(asked, check=True, capture_output=True, text=True).stdout.splitlines():
        origin, archive = line.split("|")
        if origin == "Debian":
            lines.append(f"deb {archive}")
    if not lines:
        raise LookupError("apt knows no archive of Debian; `apt-get update` fetches the lists")
    return sorted(set(lines))


def _release():
    """The name of this machine's release. The package under test was built for it."""
    return re.search(r"^VERSION_CODENAME=(\w+)", pathlib.Path("/etc/os-release").read_text(), re.M)[1]


def _cache():
    folder = os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache"
    return pathlib.Path(folder) / "ostrel"


def _dependencies(package):
    """The names of the packages that the package under test needs, and the text of that field."""
    field = subprocess.run(("dpkg-deb", "--field", str(package), "Depends"), check=True, capture_output=True,
                           text=True).stdout
    return re.findall(r"(?:^|, )([\w.+-]+)", field), field


def fetch(package):
    """The image of a system in which `package` can be installed. It is built unless it is in the cache."""
    names, field = _dependencies(package)
    command = ["mmdebstrap", "--quiet", "--variant=essential", "--format=null",
               f"--include={','.join((*PACKAGES, *names))}",
               *(f"--dpkgopt=path-exclude={path}" for path in LEFT_OUT), _release(), "/dev/null"]
    recipe = hashlib.sha256("\0".join((*command, field, FINISH.read_text())).encode()).hexdigest()[:16]
    image = _cache() / f"systemd-guest-{recipe}.img"
    if not image.exists():
        print("Building a small Debian for the guest ...", flush=True)
        image.parent.mkdir(parents=True, exist_ok=True)
        part = image.with_suffix(f".{os.getpid()}")
        environment = {**os.environ, "IMAGE": str(part), "OFFSET": str(MIB), "SIZE": str(SIZE)}
        subprocess.run([*command, *_archives(), f"--customize-hook={FINISH}"], check=True, env=environment)
        for older in image.parent.glob("systemd-guest-*.img"):
            older.unlink()
        part.rename(image)
    return image


def disk(image, payload, target):
    """Makes a disk from the image. Its second partition has the payload, which is a tar file."""
    subprocess.run(("cp", "--sparse=always", "--reflink=auto", str(image), str(target)), check=True)
    content = pathlib.Path(payload).read_bytes()
    content += b"\0" * (-len(content) % 512)
    with open(target, "r+b") as file:
        file.write(_record(len(content)))
        file.seek(MIB + SIZE)
        file.write(content)
