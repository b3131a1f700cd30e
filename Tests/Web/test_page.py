"""Browsers show the status page, with a strict content policy and without a script."""

import html.parser
import re
import subprocess
import unittest

import fleets
import stage

POLICY = ("Content-Security-Policy", "default-src 'none'; style-src 'self'; img-src 'self'")
PLANTED = "<!DOCTYPE html><html lang=en><title>t</title><p style='color: red'>styled</p><script>1</script>"


class Elements(html.parser.HTMLParser):
    """The elements of a page: how often each is there, where the links lead, and all text."""

    def __init__(self, page):
        super().__init__()
        self.count, self.links, self.text = {}, [], ""
        self.feed(page)

    def handle_starttag(self, tag, attrs):
        self.count[tag] = self.count.get(tag, 0) + 1
        self.links += [value for name, value in attrs if name == "href"]

    def handle_data(self, data):
        self.text += data


def chromium(url, *options):
    """What the browser prints: its output, and the messages of the page's console."""
    command = ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
               f"--user-data-dir={stage.work / 'chromium'}", "--enable-logging=stderr", "--hide-scrollbars",
               "--virtual-time-budget=2000", *options, url]
    done = subprocess.run(command, capture_output=True, timeout=300, check=False)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stderr.decode()}")
    return done.stdout.decode(), re.findall(r".*CONSOLE.*", done.stderr.decode())


class Page(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        files = fleets.files()
        cls.pages = {name: stage.made("page", file) for name, file in files.items()}
        texts = {f"/{name}": ("text/html; charset=utf-8", page) for name, page in cls.pages.items()}
        texts["/style.css"] = ("text/css; charset=utf-8", stage.made("style", files["demonstration"]))
        texts["/planted"] = ("text/html; charset=utf-8", PLANTED)
        cls.site = stage.Site(texts, [POLICY])
        cls.addClassCleanup(cls.site.__exit__)

    def address(self, name):
        return f"http://{self.site.address}/{name}"

    def test_text_browser(self):
        """a text browser shows the verdict, each drive and the journal"""
        shown = stage.run("w3m", "-dump", "-cols", "200", self.address("demonstration")).decode()
        self.assertRegex(shown, r"CRITICAL: nvme6n1 \(S439NA0MB01377\): Critical")
        self.assertIn("These drives are simulated.", shown)
        for line in (r"nvme0n1 +SSDPE2KX020T8 +PHLJ930100AB2P0EGN +VDV10184 +1\.82 TiB +\S+ °C +23% +Healthy",
                     r"nvme1n1 .* Degraded", r"Information +\S.* was added\."):
            self.assertRegex(shown, line)
        silent = stage.run("w3m", "-dump", "-cols", "200", self.address("unread")).decode()
        self.assertRegex(silent, r"nvme2n1 .* does not answer")

    def test_violations_are_seen(self):
        """the test itself sees what the policy forbids"""
        _, console = chromium(self.address("planted"), "--dump-dom")
        self.assertEqual(len([line for line in console if "Content Security Policy" in line]), 2, console)

    def test_browser(self):
        """Chromium shows every fleet without a violation, and builds no element out of a text"""
        for name in self.pages:
            with self.subTest(name):
                page, console = chromium(self.address(name), "--dump-dom")
                self.assertEqual(console, [])
                shown = Elements(page)
                self.assertLessEqual(set(shown.count), {
                    "html", "head", "meta", "title", "link", "body", "header", "h1", "main", "p", "strong", "section",
                    "h2", "table", "thead", "tbody", "tr", "th", "td", "a", "span", "time", "footer", "nav"})
                self.assertEqual(shown.count["main"], 1)
                if name == "hostile":
                    self.assertIn(fleets.HOSTILE, shown.text)

    def test_screenshots(self):
        """pictures for people, on a desk and on a phone, light and dark"""
        for name, options in (("desk", ["--window-size=1280,900"]),
                              ("phone", ["--window-size=500,1600"]),
                              ("dark", ["--window-size=1280,900", "--blink-settings=preferredColorScheme=0"])):
            with self.subTest(name):
                file = stage.artefacts / f"{name}.png"
                _, console = chromium(self.address("demonstration"), f"--screenshot={file}", *options)
                self.assertEqual(console, [])
                self.assertEqual(file.read_bytes()[:8], b"\x89PNG\r\n\x1a\n")
                self.assertGreater(file.stat().st_size, 10_000)


if __name__ == "__main__":
    unittest.main()
