"""watch and set: disks that come, go and warn while the program runs, and how it ends."""

import json
import queue
import shutil
import subprocess
import threading
import time
import unittest

import fleet
import stage
from fleet import HEALTH, TEMPERATURES, Disk, temperature_page, tree

INTEL, NOBODY = 0x8086, 0x1234
ADDED, REMOVED, CLEARED, SPARE_LOW, DEGRADED = 11093, 11094, 10980, 10968, 11088
NEAR_CRITICAL, HIGH, CRITICAL, ABOVE_CRITICAL = 10967, 10962, 10959, 10960
PENDING = 0x103
CTRL_C, CTRL_BREAK, CLOSE, SHUTDOWN = 0, 1, 2, 6
PATIENCE = 120

HOT = Disk(71, "HOT", "INTEL SSDPE2KX010T8", INTEL, (0, 1, 0, 0), logs={TEMPERATURES: temperature_page(40, 40)})
PLAIN = Disk(72, "PLAIN", "Drive", NOBODY, (0, 2, 0, 0))
LAST = Disk(73, "LAST", "Drive", NOBODY, (0, 3, 0, 0))
DISKS = (HOT, PLAIN, LAST)


class Watching:
    """`ostrel watch --json` while it runs, on a console whose events the test makes."""

    def __init__(self, machine, data, *arguments):
        self._machine = machine
        # The trace shows the end of the worker's first cycle. A console event before the start of the worker ends
        # the program at once.
        self._process = machine.prefix.start(machine.console, machine.program, "--data", data, "watch", "--json",
                                             "--trace", "2", *arguments, stdin=subprocess.PIPE)
        self._events, self.errors = queue.Queue(), []
        self._ready = threading.Event()
        self._readers = [threading.Thread(target=self._read, args=(stream, take), daemon=True)
                         for stream, take in ((self._process.stdout, self._events.put),
                                              (self._process.stderr, self._take_error))]
        for reader in self._readers:
            reader.start()
        if not self._ready.wait(PATIENCE):
            raise AssertionError(f"watch does not begin: {self.errors}")

    @staticmethod
    def _read(stream, take):
        for line in stream:
            take(line.decode())
        stream.close()

    def _take_error(self, line):
        self.errors.append(line)
        if "Worker() before restart interval" in line:
            self._ready.set()

    def event(self):
        """The plug-in's next event, which is waited for. The program's own news are passed over."""
        while True:
            event = json.loads(self._events.get(timeout=PATIENCE))
            if "id" in event:
                return event

    def tell(self, event):
        """Makes a console event."""
        self._process.stdin.write(f"{event}\n".encode())
        self._process.stdin.flush()

    def running(self):
        return self._process.poll() is None

    def end(self):
        """Waits for its end; returns the exit code and the plug-in's events that were not fetched."""
        code = self._process.wait(PATIENCE)
        for reader in self._readers:
            reader.join(PATIENCE)
        self._process.stdin.close()
        return code, [line for line in self._events.queue if "id" in json.loads(line)]

    def kill(self):
        """Ends it if it still runs."""
        if self.running():
            self._machine.prefix.run("taskkill", "/f", "/im", "ostrel.exe")
            self.end()


class Watch(unittest.TestCase):
    """Three disks, looked at every two seconds."""

    def setUp(self):
        self.machine = stage.machine()
        self.machine.equip(DISKS)
        self.folder = self.machine.prefix.drive_c / "Watched"
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir()
        (self.folder / "Ostrel.ini").write_text("PollInterval=2\r\n")

    def watching(self, *arguments):
        watch = Watching(self.machine, "C:\\Watched", *arguments)
        self.addCleanup(watch.kill)
        return watch

    def health(self, disk, warning):
        page = bytearray(disk.pages()[HEALTH])
        page[0] = warning
        self.machine.storage.page(disk, HEALTH, bytes(page))

    def temperatures(self, now, limit):
        self.machine.storage.page(HOT, TEMPERATURES, temperature_page(now, limit))

    def test_events(self):
        """a disk that leaves and comes back, its warnings, and a temperature that rises are told as they happen"""
        storage, watch = self.machine.storage, self.watching()
        steps = (
            ("taken out", lambda: storage.tree(tree((HOT, LAST))), PLAIN, [(REMOVED, 3)]),
            ("put back", lambda: storage.tree(tree(DISKS)), PLAIN, [(ADDED, 2)]),
            ("two warnings", lambda: self.health(LAST, 0b101), LAST, [(SPARE_LOW, 4), (DEGRADED, 3)]),
            ("none of them", lambda: self.health(LAST, 0), LAST, [(CLEARED, 2)]),
            ("difference 78", lambda: self.temperatures(118, 40), HOT, [(NEAR_CRITICAL, 3)]),
            ("difference 80", lambda: self.temperatures(120, 40), HOT, [(HIGH, 3), (CRITICAL, 4)]),
            ("difference 84", lambda: self.temperatures(124, 40), HOT, [(ABOVE_CRITICAL, 4)]),
            ("difference 77", lambda: self.temperatures(117, 40), HOT, [(CLEARED, 2)]),
        )
        for what, change, disk, expected in steps:
            with self.subTest(what):
                change()
                events = [watch.event() for _ in expected]
                self.assertEqual([(event["id"], event["severity"]) for event in events], expected)
                self.assertEqual({event["drive"]["serial"] for event in events}, {disk.serial})
                self.assertTrue(all(event["text"] for event in events))
        watch.tell(CTRL_C)
        self.assertEqual(watch.end(), (0, []), watch.errors)

    def test_console(self):
        """Ctrl+C, Ctrl+Break, a console that closes and a shutdown each end it in good order"""
        for event in (CTRL_C, CTRL_BREAK, CLOSE, SHUTDOWN):
            with self.subTest(event=event):
                watch = self.watching("--trace", "2")
                self.assertTrue(watch.running())
                watch.tell(event)
                self.assertEqual(watch.end(), (0, []), watch.errors)
                said = "".join(watch.errors)
                self.assertIn("LEAVE DeInitialize", said)
                self.assertIn("LEAVE Worker()", said)
        # What the database's log held is in the file, and the log is gone.
        self.assertEqual({path.name for path in self.folder.iterdir()} - {"AdapterNumbers.txt"},
                         {"Ostrel.db", "Ostrel.ini", "Ostrel.lock"})

    def test_stuck(self):
        """a disk that never answers does not keep it from ending"""
        # Between two cycles the program must have the time to collect what the first one found. A request waits for
        # a cycle that hangs.
        (self.folder / "Ostrel.ini").write_text("PollInterval=10\r\n")
        watch = self.watching("--trace", "18")
        self.machine.storage.forget_requests()
        self.machine.storage.how(PLAIN, HEALTH, "wait")
        deadline = time.monotonic() + PATIENCE
        while (PLAIN.number, HEALTH, PENDING) not in self.machine.storage.requests():
            self.assertLess(time.monotonic(), deadline, "watch does not ask")
            time.sleep(0.1)
        watch.tell(CTRL_C)
        try:
            code, events = watch.end()
        finally:
            self.machine.storage.how(PLAIN, HEALTH)
        said = "".join(watch.errors)
        self.assertIn("LEAVE Worker()", said)
        self.assertEqual((code, events), (0, []), said)


class Settings(unittest.TestCase):
    """The plug-in's one setting."""

    def test_set(self):
        """set keeps the interval in the ini file, within its limits, and the next run shows it"""
        machine = stage.machine()
        machine.equip((PLAIN,))
        folder = machine.prefix.drive_c / "Settings"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        (folder / "Ostrel.ini").write_bytes(b"; mine\r\nPollInterval=45\r\nOther=1\r\n")
        data = ("--data", "C:\\Settings")
        for wanted, kept in (("60", 60), ("1", 2), ("300", 255)):
            with self.subTest(wanted):
                run = machine.ostrel(*data, "set", "plugin", "pollinterval", wanted)
                self.assertEqual(run.code, 0, run.err)
                lines = (folder / "Ostrel.ini").read_text().split()
                self.assertIn(f"PollInterval={kept}", lines)
                self.assertIn("Other=1", lines)
                shown = stage.document(machine.ostrel(*data, "show", "plugin", "30005", "--json"))
                self.assertEqual(shown["property"]["value"], kept)
        self.assertEqual(machine.ostrel(*data, "set", "plugin", "pollinterval", "many").code, 2)
        self.assertEqual(machine.ostrel(*data, "set", PLAIN.serial, "30022", "X").code, 1)
