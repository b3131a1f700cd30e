"""The settings that come with the service."""

import re
import signal
import subprocess
import unittest

import stage


class Service(unittest.TestCase):
    """The settings file in the package, and the program beside it."""

    @classmethod
    def setUpClass(cls):
        cls.text = (stage.root / "etc/ostrel/serve.ini").read_text()

    def test_keys(self):
        """the file has the settings of the manual, except the socket, which the service manager provides"""
        page = stage.run("zcat", stage.root / "usr/share/man/man1/ostrel-serve.1.gz")
        manual = {key.replace("\\-", "-") for key in re.findall(r"^\\fB(\S+)\\fR = ", page, re.MULTILINE)}
        shown = set(re.findall(r"^#?([\w-]+) = ", self.text, re.MULTILINE))
        self.assertEqual(shown, manual - {"socket"})

    def test_accepted(self):
        """the service accepts the file, also when every setting in it is in force"""
        token = stage.work / "token"
        token.write_text("secret\n")
        text = self.text.replace("/etc/ostrel/token", str(token))
        for name, content in (("shipped", text), ("all", re.sub(r"(?m)^#(?=[\w-]+ = )", "", text))):
            file = stage.work / f"{name}.ini"
            file.write_text(content)
            with subprocess.Popen([str(word) for word in (
                    stage.root / "usr/bin/ostrel", *stage.demo(), "--data", stage.work / "served", "serve",
                    "--listen", "127.0.0.1:0", "--settings", file)], stderr=subprocess.PIPE, text=True) as service:
                said = service.stderr.readline()
                service.send_signal(signal.SIGTERM)
                self.assertIn("Listening on http://127.0.0.1:", said)
                self.assertEqual(service.wait(60), 0, name)
