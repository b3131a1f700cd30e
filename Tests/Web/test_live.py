"""The running service shows what the other tests read from files."""

import json
import time
import unittest

from prometheus_client import openmetrics, parser
import prometheus_client.openmetrics.parser

import fleets
import stage
from service import Service
from test_metrics import OPEN, promtool, samples
from test_page import Elements, chromium

LIMIT = 120


def awaited(question, met):
    """The first answer that meets the condition; after the limit, the last one."""
    end = time.monotonic() + LIMIT
    answer = question()
    while not met(answer) and time.monotonic() < end:
        time.sleep(0.1)
        answer = question()
    return answer


def metrics(service):
    """What the service shows as OpenMetrics."""
    status, headers, text = service.request("GET", "/metrics", {"Accept": "application/openmetrics-text"})
    assert (status, headers["Content-Type"]) == (200, OPEN), (status, headers)
    return samples(openmetrics.parser.text_string_to_metric_families(text))


def value(found, name, **labels):
    """The value of a metric; none: it is not there."""
    return found.get((f"ostrel_{name}", frozenset(labels.items())))


class Live(unittest.TestCase):
    def test_both_formats(self):
        """a client gets the format that it asks for, and both have the drives' figures and the service's own"""
        with Service(stage.fleet("live", fleets.hostile() + [fleets.healthy(2)])) as service:
            found = awaited(lambda: metrics(service), lambda each: value(each, "drive_up", drive="SERIAL0002") == 1)
            status, headers, text = service.request("GET", "/metrics")
        self.assertEqual((status, headers["Content-Type"]), (200, "text/plain; version=0.0.4; charset=utf-8"))
        self.assertEqual(promtool("check", "metrics", input=text.encode()), b"")
        plain = samples(parser.text_string_to_metric_families(text))
        # An entry may be written between the two scrapes.
        different = {name for name, _ in set(plain) ^ set(found)} - {"ostrel_journal_entries_total"}
        self.assertEqual(different, set())
        self.assertEqual(value(found, "drive_power_on_seconds_total", drive="SERIAL0002"), 9120 * 3600)
        self.assertEqual(value(found, "watching"), 1)
        self.assertEqual(value(found, "journal_writable"), 1)
        self.assertEqual(value(found, "poll_interval_seconds"), 30)
        self.assertGreaterEqual(value(found, "scan_duration_seconds_count"), 1)
        self.assertGreaterEqual(value(plain, "http_request_duration_seconds_count"), 1)
        for name in ("cpu_seconds_total", "resident_memory_bytes", "open_fds", "start_time_seconds"):
            self.assertGreater(found[f"process_{name}", frozenset()], 0, name)
        self.assertLess(abs(found["process_start_time_seconds", frozenset()] - time.time()), LIMIT + 60)

    def test_silence(self):
        """a drive that stops to answer keeps its last figures, and tells when they were read"""
        drive = fleets.healthy(0)
        with Service(stage.fleet("silence", [drive, fleets.healthy(1)])) as service:
            before = awaited(lambda: metrics(service), lambda each: value(each, "drive_up", drive="SERIAL0000") == 1)
            stage.fleet("silence", [drive | {"fails": ["identifyController", "healthLog"]}, fleets.healthy(1)])
            after = awaited(lambda: metrics(service), lambda each: value(each, "drive_up", drive="SERIAL0000") == 0)
            page = service.request("GET", "/")[2]
        self.assertEqual(value(after, "drive_up", drive="SERIAL0000"), 0)
        self.assertEqual(value(after, "drive_up", drive="SERIAL0001"), 1)
        self.assertEqual(value(after, "drive_power_cycles_total", drive="SERIAL0000"), 33)
        read = [value(each, "drive_last_read_timestamp_seconds", drive="SERIAL0000") for each in (before, after)]
        self.assertGreaterEqual(read[1], read[0])
        self.assertLess(read[1], value(after, "drive_last_read_timestamp_seconds", drive="SERIAL0001"))
        self.assertGreater(value(after, "log_read_errors_total"), 0)
        self.assertIn("does not answer", Elements(page).text)

    def test_page(self):
        """Chromium shows the page of the service as its content policy allows it"""
        with Service(stage.fleet("live", fleets.hostile() + [fleets.healthy(2)])) as service:
            awaited(lambda: metrics(service), lambda each: value(each, "drive_up", drive="SERIAL0002") == 1)
            # The journal tells the drives before the page can show them.
            awaited(lambda: json.loads(service.request("GET", "/api/v1/journal")[2])["entries"], bool)
            file = stage.artefacts / "live.png"
            url = f"http://{service.address}:{service.port}/"
            page, console = chromium(url, "--dump-dom", "--window-size=1280,900")
            _, more = chromium(url, f"--screenshot={file}", "--window-size=1280,900")
            style = service.request("GET", "/style.css")
            shown = stage.run("w3m", "-dump", "-cols", "200", url).decode()
        self.assertEqual((console, more), ([], []))
        self.assertEqual((style[0], style[1]["Content-Type"]), (200, "text/css; charset=utf-8"))
        elements = Elements(page)
        self.assertNotIn("script", elements.count)
        self.assertIn(fleets.HOSTILE, elements.text)
        self.assertGreaterEqual(elements.count["time"], 3)
        self.assertIn("SERIAL0002", shown)
        self.assertGreater(file.stat().st_size, 10_000)

    def test_links(self):
        """every link of the page leads somewhere"""
        with Service(stage.fleet("live", fleets.hostile() + [fleets.healthy(2)])) as service:
            awaited(lambda: metrics(service), lambda each: value(each, "drive_up", drive="SERIAL0002") == 1)
            links = Elements(service.request("GET", "/")[2]).links
            self.assertGreaterEqual(len(links), 8)
            for link in links:
                self.assertEqual(service.request("GET", link)[0], 200, link)


if __name__ == "__main__":
    unittest.main()
