"""Builds the replacements of hardware and of the system's device tree."""

import pathlib
import subprocess

HERE = pathlib.Path(__file__).resolve().parent
TOOL = "x86_64-w64-mingw32-"
KERNEL_HEADERS = "/usr/share/mingw-w64/include/ddk"
WARNINGS = ("-Wall", "-Wextra", "-Werror")
LIBRARY = (f"{TOOL}g++-posix", "-std=c++20", "-O1", *WARNINGS, "-static", "-s")

# The version that the resource of the test's driver file shows.
DRIVER_VERSION = "10.0.19041.3636"


def _sources(folder, suffix):
    return sorted((HERE / folder).glob(f"*{suffix}"))


def _resource(target):
    """A file with only a version resource."""
    script = target.with_suffix(".rc")
    script.write_text(f"1 VERSIONINFO FILEVERSION {DRIVER_VERSION.replace('.', ',')} BEGIN END\n")
    compiled = target.with_suffix(".o")
    return ((f"{TOOL}windres", script, compiled),
            (f"{TOOL}gcc-posix", "-nostdlib", "-shared", "-Wl,--entry,0", compiled, "-o", target))


class StandIns:
    """The files, built in `folder`."""

    def __init__(self, folder):
        folder.mkdir(parents=True, exist_ok=True)
        self.driver = folder / "storagetest.sys"
        self.device_tree = folder / "devicetree.dll"
        self.probe = folder / "probe.exe"
        self.console = folder / "console.exe"
        self.versioned = folder / "versioned.sys"
        for command in (
                (f"{TOOL}gcc-posix", "-std=gnu11", "-O1", *WARNINGS, "-isystem", KERNEL_HEADERS, "-nostdlib", "-shared",
                 "-Wl,--subsystem,native", "-Wl,--entry,DriverEntry", "-o", self.driver, *_sources("Driver", ".c"),
                 "-lntoskrnl"),
                # Without these the headers would declare the functions of this library as imported.
                (*LIBRARY, "-DCMAPI=", "-D_SETUPAPI_", "-shared", "-o", self.device_tree,
                 *_sources("DeviceTree", ".cpp"), *_sources("DeviceTree", ".def")),
                (*LIBRARY, "-o", self.probe, *_sources("Probe", ".cpp"), "-lcfgmgr32", "-lsetupapi"),
                (*LIBRARY, "-o", self.console, *_sources("Console", ".cpp")),
                *_resource(self.versioned)):
            subprocess.run(command, check=True)
