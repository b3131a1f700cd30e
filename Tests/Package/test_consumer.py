"""A host and a plug-in of another maker, built in an empty folder with the unpacked package only."""

import json
import pathlib
import unittest

import stage

SOURCES = pathlib.Path(__file__).resolve().parents[1] / "Consumer"


class Consumer(unittest.TestCase):
    """A host and a plug-in that are built once for all tests."""

    @classmethod
    def setUpClass(cls):
        cls.folder = stage.work / "consumer"
        stage.run("cmake", "-G", "Ninja", "-S", SOURCES, "-B", cls.folder,
                  f"-DCMAKE_PREFIX_PATH={stage.root}/usr", "-DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF",
                  "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Werror")
        stage.run("cmake", "--build", cls.folder)
        cls.plugin = cls.folder / "TinyPlugin.so"

    def test_sources(self):
        """all files of Ostrel that it was built from came from the package"""
        includes = stage.run("ninja", "-C", self.folder, "-t", "deps")
        self.assertIn(f"{stage.root}/usr/include/ostrel/PI/IPluginApi.h", includes)
        files = {line.strip() for line in includes.splitlines() if line.startswith(" ")}
        self.assertEqual({file for file in files if file.startswith("/usr/include/ostrel/") or
                          not file.startswith(("/usr/", f"{stage.root}/", f"{SOURCES}/"))}, set())

    def test_host(self):
        """the host loads the plug-in, which shows the host's drive, keeps its row, and misses it when it is gone"""
        lines = [line.strip() for line in stage.run(self.folder / "TinyHost").splitlines()]
        for line in ("Adapter", "Physical drive", "Model: Consumer Drive", "Serial number: CONSUMER-1",
                     "row CONSUMER-1"):
            self.assertIn(line, lines)
        self.assertEqual([line for line in lines if line.startswith(("module", "result"))],
                         ["module 313", "result 0", "module 313", "result 20001"])

    def test_installed(self):
        """the installed host starts and finds the libraries without any setting"""
        folder = stage.work / "installed"
        stage.run("cmake", "--install", self.folder, "--prefix", folder)
        lines = stage.run(folder / "bin/TinyHost", env={"PATH": "/usr/bin:/bin"}).splitlines()
        self.assertIn("row CONSUMER-1", [line.strip() for line in lines])

    def test_plugin(self):
        """the program shows the objects of the plug-in beside those of its own"""
        objects = json.loads(stage.ostrel(*stage.demo(), "--plugin", self.plugin, "topology", "--json"))["objects"]
        self.assertEqual({int(each["id"], 16) >> 48 for each in objects}, {313, 1000})
        self.assertEqual([each["id"] for each in objects][-2:], ["0x03e8000000000000", "0x03e8000000000001"])
        listed = stage.ostrel(*stage.demo(), "--plugin", self.plugin, "list")
        self.assertIn("TINY-1", listed)
        self.assertIn("PHLJ930100AB2P0EGN", listed)
        self.assertEqual(stage.ostrel(*stage.demo(), "--plugin", self.plugin, "show", "TINY-1", "30063"),
                         "Simulated fleet: DemoFleet.json\nTiny adapter\n")

    def test_watching(self):
        """set and watch work with both at once, and a fleet without changes gives no lines"""
        words = (*stage.demo(), "--plugin", self.plugin, "--data", stage.work / "watched")
        self.assertEqual(stage.ostrel(*words, "set", "plugin", "pollinterval", "2").splitlines()[-1],
                         "Poll interval is now 2 s.")
        lines = [json.loads(line) for line in stage.ostrel(*words, "watch", "--for", "1", "--json").splitlines()]
        self.assertEqual({line.get("phase") for line in lines}, {"present"})

    def test_no_drives(self):
        """without an NVMe drive, only the other plug-in's hardware is shown"""
        fleet = stage.work / "empty.json"
        fleet.write_text('{"controllers": []}')
        drives = json.loads(stage.ostrel("--simulate", fleet, "--plugin", self.plugin, "list", "--json"))["drives"]
        self.assertEqual([drive["serial"] for drive in drives], ["TINY-1"])

    def test_traces(self):
        """each plug-in traces under its own mask"""
        seen = {}
        for words in (("1000=2",), ("313=4", "1000=2"), ("313=2", "1000=4"), ("18", "313=0")):
            trace = stage.work / "trace.log"
            trace.unlink(missing_ok=True)
            masks = [word for mask in words for word in ("--trace", mask)]
            stage.ostrel(*stage.demo(), "--plugin", self.plugin, *masks, "--trace-file", trace, "topology")
            seen[words] = {tuple(line.split(" ")[1:3]) for line in trace.read_text().splitlines()}
        self.assertEqual(seen, {("1000=2",): {("Tiny", "2")},
                                ("313=4", "1000=2"): {("Ostrel", "4"), ("Tiny", "2")},
                                ("313=2", "1000=4"): {("Ostrel", "2")},
                                ("18", "313=0"): {("Tiny", "2")}})
