"""Prometheus and its tools understand the metrics."""

import json
import math
import pathlib
import shutil
import socket
import subprocess
import time
import unittest
import urllib.parse
import urllib.request

from prometheus_client import openmetrics, parser
import prometheus_client.openmetrics.parser

import fleets
import stage

ROOT = pathlib.Path(__file__).resolve().parents[2]
OPEN = "application/openmetrics-text; version=1.0.0; charset=utf-8"


def promtool(*words, **options):
    return stage.run(stage.unpacked("prometheus") / "usr/bin/promtool", *words, **options)


def samples(families):
    """The value of each metric, by its name and labels. None may be there twice."""
    found = {}
    for family in families:
        for sample in family.samples:
            key = (sample.name, frozenset(sample.labels.items()))
            if key in found:
                raise AssertionError(f"{key} is there twice")
            found[key] = float(sample.value)
    return found


def names(found, drive):
    """The names of the metrics of a drive."""
    return {name for name, labels in found if ("drive", drive) in labels}


class Metrics(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.files = fleets.files()
        cls.text = {name: stage.made("text", file) for name, file in cls.files.items()}
        cls.open = {name: stage.made("openmetrics", file) for name, file in cls.files.items()}
        cls.samples = {name: samples(parser.text_string_to_metric_families(text)) for name, text in cls.text.items()}

    def test_promtool(self):
        """promtool finds nothing wrong in the metrics of any fleet"""
        for name, text in self.text.items():
            with self.subTest(name):
                self.assertEqual(promtool("check", "metrics", input=text.encode()), b"")

    def test_strict_parser(self):
        """a strict parser accepts OpenMetrics, and finds there what the text format has"""
        for name, text in self.open.items():
            with self.subTest(name):
                found = samples(openmetrics.parser.text_string_to_metric_families(text))
                self.assertGreater(len(found), 40)
                # When a drive answered is another time in another run.
                same = [{key: value for key, value in each.items() if "last_read" not in key[0]}
                        for each in (found, self.samples[name])]
                self.assertEqual(*same)

    def test_unknown_is_absent(self):
        """no figure that is not known is there"""
        for name, found in self.samples.items():
            for (metric, labels), value in found.items():
                self.assertFalse(math.isnan(value) or value == -1 or value == float(fleets.ONES) and name != "largest",
                                 (name, metric, labels, value))
        found = self.samples["unread"]
        self.assertEqual(names(found, "NOTHING"), {f"ostrel_drive_{each}" for each in (
            "info", "up", "last_read_timestamp_seconds")})
        self.assertEqual(names(found, "SERIAL0002"), {"ostrel_drive_info", "ostrel_drive_up"})
        self.assertIn("ostrel_drive_capacity_bytes", names(found, "SERIAL0003"))
        self.assertNotIn("ostrel_drive_power_cycles_total", names(found, "SERIAL0003"))
        self.assertNotIn("ostrel_drive_power_cycles_total", names(found, "ONES"))
        self.assertNotIn("ostrel_drive_available_spare_ratio", names(found, "BARE"))
        self.assertGreater(len(names(found, "SERIAL0000")), 20)

    def test_keys(self):
        """each drive has a key of its own, whatever its texts are"""
        for name, count in (("twins", 3), ("many", 64), ("hostile", 2)):
            drives = {dict(labels)["drive"] for metric, labels in self.samples[name] if metric == "ostrel_drive_up"}
            self.assertEqual(len(drives), count, name)

    def test_hostile_texts(self):
        """the texts of drives are in their labels, and nowhere else"""
        (info,) = [dict(labels) for metric, labels in self.samples["hostile"]
                   if metric == "ostrel_drive_info" and ("drive", "\"} 1\\n<b>&'") in labels]
        self.assertEqual(info["serial"], "\"} 1\\n<b>&'")
        self.assertEqual(info["firmware"], "</td>\\")
        self.assertIn(fleets.HOSTILE, info["device"])
        self.assertNotIn("\x1b", self.text["hostile"])

    def test_documented(self):
        """each metric is in the documents"""
        document = (ROOT / "Docs/Metrics.md").read_text()
        for name, text in self.text.items():
            for line in text.splitlines():
                if line.startswith("# TYPE "):
                    self.assertIn(f"| `{line.split()[2]}` | ", document)

    def test_rules(self):
        """the alerts come up when they must, and the example configuration is valid"""
        promtool("test", "rules", ROOT / "Tests/Web/rules.yml")
        promtool("check", "config", "prometheus.yml", cwd=ROOT / "Packaging/Prometheus")


class Prometheus(unittest.TestCase):
    """A server that scrapes the metrics of all fleets."""

    @classmethod
    def setUpClass(cls):
        cls.files = fleets.files()
        texts = {f"/{name}": (OPEN, stage.made("openmetrics", file)) for name, file in cls.files.items()}
        site = stage.Site(texts)
        cls.addClassCleanup(site.__exit__)
        folder = stage.work / "server"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        jobs = [{"job_name": name, "metrics_path": f"/{name}", "static_configs": [{"targets": [site.address]}]}
                for name in cls.files]
        (folder / "prometheus.yml").write_text(json.dumps({"global": {"scrape_interval": "1s"}, "scrape_configs": jobs}))
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            cls.address = f"127.0.0.1:{free.getsockname()[1]}"
        log = (folder / "log").open("w")
        cls.addClassCleanup(log.close)
        server = subprocess.Popen([stage.unpacked("prometheus") / "usr/bin/prometheus",
                                   f"--config.file={folder / 'prometheus.yml'}", f"--web.listen-address={cls.address}",
                                   f"--storage.tsdb.path={folder / 'data'}"], stdout=log, stderr=log, cwd=folder)
        cls.addClassCleanup(server.wait)
        cls.addClassCleanup(server.terminate)

    def query(self, expression):
        """The labels and values that the server answers."""
        url = f"http://{self.address}/api/v1/query?" + urllib.parse.urlencode({"query": expression})
        with urllib.request.urlopen(url, timeout=30) as answer:
            return [(each["metric"], float(each["value"][1])) for each in json.load(answer)["data"]["result"]]

    def awaited(self, expression, count):
        """The same, as soon as there are so many."""
        end = time.monotonic() + 120
        while True:
            try:
                found = self.query(expression)
            except OSError:
                found = []
            if len(found) >= count or time.monotonic() > end:
                return found
            time.sleep(0.2)

    def test_scrape(self):
        """it takes every metric of every fleet, with the numbers and texts that were sent"""
        scraped = self.awaited("scrape_samples_scraped > 0", len(self.files))
        for labels, count in scraped:
            sent = samples(openmetrics.parser.text_string_to_metric_families(
                stage.made("openmetrics", self.files[labels["job"]])))
            self.assertEqual(count, len(sent), labels["job"])
        self.assertEqual([value for _, value in self.query("up")], [1] * len(self.files))
        hours = self.query('ostrel_drive_power_on_seconds_total{job="many",drive="SERIAL0063"}')
        self.assertEqual([value for _, value in hours], [9120 * 3600])
        hostile = [labels["device"] for labels, _ in self.query('ostrel_drive_info{job="hostile"}')]
        self.assertTrue(any(fleets.HOSTILE in device for device in hostile), hostile)


if __name__ == "__main__":
    unittest.main()
