"""The build under test, the folder for what the tests make, and programs that are unpacked from Debian packages."""

import functools
import http.server
import json
import pathlib
import shutil
import subprocess
import threading

tree = None       # the build folder
work = None       # everything that the tests make is below it
artefacts = None  # what a person may want to look at


def open(build, folder):
    global tree, work, artefacts
    tree, work, artefacts = build, folder, folder / "artefacts"
    for each in (artefacts, folder / "fleets"):
        shutil.rmtree(each, ignore_errors=True)
        each.mkdir(parents=True)


def run(*command, **options):
    """Runs a command that must succeed, and returns what it printed."""
    done = subprocess.run([str(word) for word in command], capture_output=True, timeout=300, check=False, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


@functools.cache
def unpacked(package):
    """The folder with the content of a Debian package, which is not installed, so that no server starts."""
    folder = work / package
    if not (folder / "usr").is_dir():
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        run("apt-get", "download", "-qq", package, cwd=folder)
        (archive,) = folder.glob("*.deb")
        run("dpkg-deb", "--extract", archive, folder)
        archive.unlink()
    return folder


def fleet(name, controllers):
    """A fleet file with these controllers."""
    file = work / "fleets" / f"{name}.json"
    file.write_text(json.dumps({"controllers": controllers}))
    return file


def made(kind, file):
    """What the service shows of a fleet: text, openmetrics, page or style."""
    return run(tree / "bin/DocumentsOf", file, kind).decode()


class Site:
    """Serves texts over HTTP on a free port while it lives. `texts` has for each path its type and its text."""

    def __init__(self, texts, headers=()):
        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                kind, text = texts.get(self.path, (None, ""))
                self.send_response(200 if kind else 404)
                self.send_header("Content-Type", kind or "text/plain")
                for name, value in headers:
                    self.send_header(name, value)
                self.end_headers()
                self.wfile.write(text.encode())

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.address = f"127.0.0.1:{self._server.server_port}"
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._server.shutdown()
        self._server.server_close()
