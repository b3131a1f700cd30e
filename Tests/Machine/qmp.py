"""A client of QEMU's control socket."""

import json
import time


class QmpError(Exception):
    """QEMU refused a command."""


class Qmp:
    """Commands to a running QEMU, and the events that it reports."""

    def __init__(self, connection):
        self._connection = connection
        self._buffer = b""
        self._events = []
        self._message(time.monotonic() + 60)  # the greeting
        self.execute("qmp_capabilities")

    def _message(self, deadline):
        while b"\n" not in self._buffer:
            self._connection.settimeout(max(0.01, deadline - time.monotonic()))
            data = self._connection.recv(65536)
            if not data:
                raise ConnectionError("QEMU closed its control socket")
            self._buffer += data
        line, self._buffer = self._buffer.split(b"\n", 1)
        return json.loads(line)

    def execute(self, command, arguments=None, timeout=60):
        """Runs a command and returns its answer."""
        request = {"execute": command, "arguments": arguments or {}}
        self._connection.sendall(json.dumps(request).encode() + b"\n")
        deadline = time.monotonic() + timeout
        while True:
            message = self._message(deadline)
            if "event" in message:
                self._events.append(message)
            elif "error" in message:
                raise QmpError(f"{command}: {message['error']['desc']}")
            else:
                return message["return"]

    def await_event(self, name, timeout=60):
        """Takes the next event of that name, waiting for it when it has not come yet."""
        deadline = time.monotonic() + timeout
        while True:
            for index, message in enumerate(self._events):
                if message["event"] == name:
                    return self._events.pop(index).get("data", {})
            message = self._message(deadline)
            if "event" in message:
                self._events.append(message)
