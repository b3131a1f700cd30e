"""The service as a process."""

import http.client
import re
import signal
import subprocess
import tempfile

import stage


class Service:
    """
    `ostrel serve` on a fleet file, from `with` to its end. `settings` is the text of its settings file. It picks its
    port, so `listen` need not be among the settings.
    """

    def __init__(self, fleet, settings=""):
        self._fleet, self._settings = fleet, settings

    def __enter__(self):
        self._folder = tempfile.TemporaryDirectory(prefix="service-")
        settings = f"{self._folder.name}/given.ini"
        with open(settings, "w", encoding="utf-8") as file:
            file.write(self._settings)
        self._process = subprocess.Popen(
            [str(stage.tree / "bin/ostrel"), "--simulate", str(self._fleet), "--data", f"{self._folder.name}/data", "serve",
             "--listen", "127.0.0.1:0", "--settings", settings], stderr=subprocess.PIPE, text=True)
        said = self._process.stderr.readline()
        listening = re.search(r"Listening on http://([0-9.]+):([0-9]+)", said)
        if listening is None:
            self._process.kill()
            raise AssertionError(f"the service did not start: {said}{self._process.stderr.read()}")
        self.address, self.port = listening[1], int(listening[2])
        return self

    def __exit__(self, *_):
        self._process.send_signal(signal.SIGTERM)
        _, self.messages = self._process.communicate(timeout=60)
        self._folder.cleanup()
        self.code = self._process.returncode

    def peak(self):
        """The most memory that it was resident with so far, in bytes."""
        with open(f"/proc/{self._process.pid}/status", encoding="ascii") as file:
            (kibibytes,) = re.findall(r"^VmHWM:\s+([0-9]+) kB", file.read(), re.MULTILINE)
        return int(kibibytes) * 1024

    def request(self, method, target, headers=None, body=None):
        """The status, the headers and the text of an answer."""
        connection = http.client.HTTPConnection(self.address, self.port, timeout=60)
        try:
            connection.request(method, target, body, headers or {})
            answer = connection.getresponse()
            return answer.status, answer.headers, answer.read().decode()
        finally:
            connection.close()
