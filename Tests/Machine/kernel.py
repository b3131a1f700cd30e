"""The guest's kernel: unpacked from its Debian package, never installed."""

import functools
import pathlib
import re
import shutil
import subprocess

# Its NVMe driver and its hot-plug drivers are built in, so that a guest needs no modules.
META_PACKAGE = "linux-image-cloud-amd64"
BUILT_IN = ("CONFIG_BLK_DEV_NVME", "CONFIG_HOTPLUG_PCI_PCIE", "CONFIG_HOTPLUG_PCI_ACPI", "CONFIG_DEVTMPFS",
            "CONFIG_SERIAL_8250_CONSOLE")


def _output(*command, cwd=None):
    return subprocess.run(command, cwd=cwd, check=True, capture_output=True, text=True).stdout


def _from_archive(query):
    """The answer of `query`. If it fails, asks once more with fresh package lists."""
    try:
        return query()
    except (subprocess.CalledProcessError, LookupError):
        update = ["apt-get", "update", "-qq"]
        subprocess.run(update if shutil.which("sudo") is None else ["sudo", *update], check=True,
                       stdout=subprocess.DEVNULL)
        return query()


def _package():
    """The name and version of the package that the meta package depends on."""
    match = re.search(r"Depends: (linux-image-\S+)", _output("apt-cache", "depends", META_PACKAGE))
    if match is None:
        raise LookupError(f"{META_PACKAGE} depends on no kernel")
    version = re.search(r"^Version: (\S+)", _output("apt-cache", "show", "--no-all-versions", match[1]), re.M)
    return match[1], version[1]


def _check_built_in(config):
    missing = [option for option in BUILT_IN if f"{option}=y" not in config.split()]
    if missing:
        raise RuntimeError(f"the kernel has not built in: {', '.join(missing)}")


@functools.cache
def fetch(cache):
    """The path of the kernel image, downloaded into the folder `cache` unless that version is there."""
    name, version = _from_archive(_package)
    folder = pathlib.Path(cache) / f"{name}_{version}"
    image = folder / "vmlinuz"
    if not image.exists():
        print(f"Fetching {name} {version} ...", flush=True)
        unpacked = folder / "unpacked"
        shutil.rmtree(folder, ignore_errors=True)
        unpacked.mkdir(parents=True)
        _from_archive(lambda: _output("apt-get", "download", "-qq", f"{name}={version}", cwd=folder))
        (package,) = folder.glob("*.deb")
        _output("dpkg-deb", "-x", str(package), str(unpacked))
        (config,) = unpacked.glob("boot/config-*")
        _check_built_in(config.read_text())
        (unpacked_image,) = unpacked.glob("boot/vmlinuz-*")
        shutil.copy(unpacked_image, folder / "vmlinuz.part")
        shutil.rmtree(unpacked)
        package.unlink()
        (folder / "vmlinuz.part").rename(image)
    return image
