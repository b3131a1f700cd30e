"""The Debian packages as such."""

import fnmatch
import json
import pathlib
import re
import unittest

import stage

SCHEMAS = pathlib.Path(__file__).resolve().parents[2] / "Docs/Schemas"
PLACES = (
    "bin/ostrel", "libexec/ostrel/ostrel-reader",
    "lib/systemd/system/ostrel-reader.socket", "lib/systemd/system/ostrel-reader.service",
    "lib/systemd/system/ostrel.socket", "lib/systemd/system/ostrel.service",
    "lib/sysusers.d/ostrel.conf", "lib/tmpfiles.d/ostrel.conf",
    "share/doc/ostrel/Reader.md.gz", "share/doc/ostrel/Service.md.gz", "share/man/man1/ostrel-serve.1.gz",
    "lib/*/ostrel/libOstrel.so",
    "share/ostrel/Ostrel.nls", "share/ostrel/Endurance.txt", "share/ostrel/DemoFleet.json",
    "share/man/man1/ostrel.1.gz", "share/doc/ostrel/copyright", "share/doc/ostrel/changelog.gz",
    "share/doc/ostrel/Interfaces.md.gz", "share/doc/ostrel/Metrics.md.gz", "share/doc/ostrel/Tracing.md.gz",
    "share/doc/ostrel/examples/ostrel.rules.yml", "share/doc/ostrel/examples/prometheus.yml",
    "share/bash-completion/completions/ostrel", "share/zsh/vendor-completions/_ostrel",
    "share/fish/vendor_completions.d/ostrel.fish",
)
DEVELOPMENT_PLACES = (
    "include/ostrel/PI/IPluginApi.h", "include/ostrel/PI/Export.h", "include/ostrel/TLX/Trace*.h",
    "include/ostrel/TLXX/DeviceBackend.h", "include/ostrel/Database/Database.h", "include/ostrel/DatabaseORM/Storage.h",
    "lib/*/ostrel/libPI.so", "lib/*/ostrel/libTLX.so", "lib/*/ostrel/libTLXX.so", "lib/*/ostrel/libDatabase.so",
    "lib/*/ostrel/libDatabaseORM.a", "lib/*/cmake/OstrelHost/OstrelHostConfig.cmake",
    "lib/*/cmake/OstrelHost/OstrelHostConfigVersion.cmake",
    "share/doc/ostrel-dev/copyright", "share/doc/ostrel-dev/changelog.gz",
)


class Debian(unittest.TestCase):
    """What dpkg and the policy say of them."""

    def test_policy(self):
        """lintian reports nothing, not even informational tags, except what is overridden with a reason"""
        # Compilers store texts in overlapping pieces. Where two pieces meet, lintian sees misspelt words.
        checked = stage.attempt("lintian", "--allow-root", "--display-info", "--fail-on", "error,warning,info",
                                "--suppress-tags", "spelling-error-in-binary", stage.package, stage.development)
        self.assertEqual((checked.returncode, checked.stdout), (0, ""), checked.stderr)

    def test_overrides(self):
        """each override has its reason above it"""
        for file in (stage.root / "usr/share/lintian/overrides").iterdir():
            lines = file.read_text().splitlines()
            for above, line in zip(["", *lines], lines):
                self.assertTrue(line.startswith("#") or above.startswith("#"), f"{file.name}: {line}")

    def test_places(self):
        """every file is in the folder that Debian uses for it, and in the package that needs it"""
        for package, places in ((stage.package, PLACES), (stage.development, DEVELOPMENT_PLACES)):
            with self.subTest(package.name):
                folder = stage.work / "places" / package.stem
                folder.mkdir(parents=True)
                stage.run("dpkg-deb", "--extract", package, folder)
                # Links in one package lead to files of the other, so the test searches by name.
                names = [str(file.relative_to(folder / "usr")) for file in (folder / "usr").rglob("*")]
                held = {place for place in (*PLACES, *DEVELOPMENT_PLACES) if fnmatch.filter(names, place)}
                self.assertEqual(held, {*places})

    def test_sonames(self):
        """libraries of another release cannot be used in place of this one's"""
        release = ".".join(stage.run("dpkg-deb", "--field", stage.package, "Version").split(".")[:2])
        (folder,) = (stage.root / "usr/lib").glob("*/ostrel")
        for name in ("libPI.so", "libTLX.so", "libTLXX.so", "libDatabase.so"):
            told = stage.run("readelf", "-dW", folder / name)
            self.assertIn(f"Library soname: [{name}.{release}]", told)
            self.assertTrue((folder / f"{name}.{release}").exists(), name)

    def test_development(self):
        """the package for developers needs the program of exactly the same version"""
        version = stage.run("dpkg-deb", "--field", stage.package, "Version").strip()
        self.assertIn(f"ostrel (= {version})", stage.run("dpkg-deb", "--field", stage.development, "Depends"))
        self.assertEqual(stage.run("dpkg-deb", "--field", stage.development, "Package").strip(), "ostrel-dev")

    def test_documents(self):
        """documents refer only to files that are installed with them"""
        folder = stage.root / "usr/share/doc/ostrel"
        for name in ("Interfaces.md", "Metrics.md", "Tracing.md"):
            text = stage.run("zcat", folder / f"{name}.gz")
            self.assertTrue(text.startswith("# "), name)
            for other in re.findall(r"`([\w/]+\.md)`", text):
                self.assertTrue((folder / f"{other}.gz").is_file(), f"{name}: {other}")

    def test_schemas(self):
        """the schemas are all there, and refer only to one another"""
        folder = stage.root / "usr/share/ostrel/Schemas"
        schemas = {file.name: file.read_text() for file in folder.iterdir()}
        self.assertEqual(schemas, {file.name: file.read_text() for file in SCHEMAS.glob("*.json")})
        for name, text in schemas.items():
            self.assertTrue(json.loads(text), name)
            for other in re.findall(r'"\$ref": "([^#"]+)', text):
                self.assertIn(other, schemas, name)

    def test_versions(self):
        """package, change log and program agree on the version"""
        version = stage.run("dpkg-deb", "--field", stage.package, "Version").strip()
        changes = stage.run("zcat", stage.root / "usr/share/doc/ostrel/changelog.gz")
        self.assertEqual(stage.ostrel("--version"), f"ostrel {version}\n")
        self.assertTrue(changes.startswith(f"ostrel ({version}) "), changes)

    def test_libraries(self):
        """it depends on the packages of the libraries that it uses, and on none for building"""
        depends = stage.run("dpkg-deb", "--field", stage.package, "Depends")
        for library in ("libc6", "libsqlite3-0", "libboost-filesystem", "libstdc++6"):
            self.assertIn(library, depends)
        self.assertNotIn("-dev", depends)

    def test_settings(self):
        """the settings of the service are kept at an upgrade if they were changed, and nothing else is in /etc"""
        self.assertEqual(stage.run("dpkg-deb", "--info", stage.package, "conffiles"), "/etc/ostrel/serve.ini\n")
        self.assertEqual([str(file.relative_to(stage.root)) for file in (stage.root / "etc").rglob("*")],
                         ["etc/ostrel", "etc/ostrel/serve.ini"])

    def test_removal(self):
        """kept data stay after a removal and an upgrade, and are deleted by a purge"""
        control, tools = stage.work / "control", stage.work / "tools"
        stage.run("dpkg-deb", "--control", stage.package, control)
        tools.mkdir()
        (tools / "rm").write_text('#!/bin/sh\necho rm "$@"\n')
        (tools / "rm").chmod(0o755)
        # This machine's own service manager is not asked.
        done = {action: stage.run("/bin/sh", control / "postrm", action, env={"PATH": str(tools)})
                for action in ("remove", "upgrade", "purge")}
        self.assertEqual(done, {"remove": "", "upgrade": "", "purge": "rm -rf /var/lib/ostrel /etc/ostrel\n"})

    def test_program(self):
        """unpacked anywhere, the program finds its plug-in, its catalogue and its table"""
        report = stage.ostrel(*stage.demo(), "doctor")
        for line in (f"OK       plug-in: {stage.root}/usr/lib/", f"OK       texts: catalogue in {stage.root}/usr/share/",
                     "OK       endurance: ", "OK       inventory: 7 adapters"):
            self.assertIn(line, report)
