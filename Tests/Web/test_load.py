"""The service with as many drives and clients as it is made for."""

import http.client
import itertools
import json
import socket
import threading
import unittest

import fleets
import stage
from service import Service
from test_live import awaited

DRIVES = 64
CLIENTS = 64
# Of these, so many do not behave.
IDLE, HALF, DEAF = 2, 3, 3
GOOD = CLIENTS - IDLE - HALF - DEAF
ROUNDS = 5
PATHS = ("/api/v1/status", "/api/v1/drives", "/api/v1/journal?limit=100", "/metrics", "/")
MIB = 1 << 20
MOST = 40 * MIB


def drives(round_number):
    """All of them, some warmer and one missing in every other round."""
    odd = round_number % 2
    fleet = [fleets.healthy(number) for number in range(DRIVES - odd)]
    fleet[0]["health"]["temperature"] = 33 + 40 * odd
    return fleet


class Load(unittest.TestCase):
    def ask(self, service, errors):
        """A client that asks for everything again and again in one connection."""
        connection = http.client.HTTPConnection(service.address, service.port, timeout=120)
        try:
            for path in PATHS * ROUNDS:
                connection.request("GET", path)
                answer = connection.getresponse()
                text = answer.read().decode()
                if answer.status != 200:
                    errors.append(f"{path}: {answer.status} {text}")
                elif path == "/api/v1/drives" and len(json.loads(text)["drives"]) not in (DRIVES - 1, DRIVES):
                    errors.append(f"{path}: {text[:200]}")
        except OSError as error:
            errors.append(f"{error!r}")
        finally:
            connection.close()

    def misbehave(self, service):
        """Clients that say nothing, stop in the middle of a request, or never read what they asked for."""
        clients = []
        for text in itertools.chain([b""] * IDLE, [b"GET /metrics HTTP/1.1\r\nHost: loc"] * HALF,
                                    [b"GET /metrics HTTP/1.1\r\nHost: localhost\r\n\r\n" * 20] * DEAF):
            client = socket.create_connection((service.address, service.port))
            client.sendall(text)
            clients.append(client)
        return clients

    def test_memory(self):
        """64 clients, bad ones among them, get all answers while drives come and go, and 64 drives fit in 40 MiB"""
        file = stage.fleet("load", drives(0))
        with Service(file) as service:
            awaited(lambda: service.request("GET", "/api/v1/drives"), lambda answer: answer[0] == 200)
            bad = self.misbehave(service)
            errors = []
            clients = [threading.Thread(target=self.ask, args=(service, errors)) for _ in range(GOOD)]
            for client in clients:
                client.start()
            for round_number in itertools.count(1):
                stage.fleet("load", drives(round_number))
                clients[0].join(0.5)
                if not any(client.is_alive() for client in clients):
                    break
            peak = service.peak()
            for client in bad:
                client.close()
        self.assertEqual(errors[:3], [])
        self.assertEqual(service.code, 0)
        print(f"      {peak / MIB:.1f} MiB at most, after {round_number} changes of the drives")
        self.assertLess(peak, MOST)
