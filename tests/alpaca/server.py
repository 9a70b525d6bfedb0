"""Starts the server as a user does, and talks to it. Standard library only."""

import http.client
import json
import os
import pathlib
import re
import shutil
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time
import urllib.parse

# Of the simulated SDKs, by the system that the program is for.
SDKS = ["ASICamera2", "PlayerOneCamera", "qhyccd", "toupcam"]


class Settings:
    """What CTest passes: the program with what starts it, and the directory of simulated SDKs."""

    def __init__(self, arguments):
        self.scratch = pathlib.Path(arguments[0])
        self.sdks = pathlib.Path(arguments[1])
        self.capture = arguments[2]
        self.command = arguments[3:]
        self.is_sanitized = bool(os.environ.get("ORVANE_SANITIZED"))
        self.is_windows = self.command[-1].endswith(".exe")
        self.scratch.mkdir(parents=True, exist_ok=True)

    def name(self, path):
        """The path as the program knows it. Wine shows this system's files on the drive Z."""
        return "Z:" + str(path).replace("/", "\\") if self.is_windows else str(path)

    def sdk_directory(self, names=None):
        """A directory with the SDKs of these names."""
        if names is None:
            return self.sdks
        directory = pathlib.Path(tempfile.mkdtemp(dir=self.scratch))
        for name in names:
            shutil.copy(self.sdk_file(name), directory)
        return directory

    def sdk_file(self, name):
        return self.sdks / (name + ".dll" if self.is_windows else f"lib{name}.so")


def settings_and_number(option, number):
    """What CTest passes, and how often something is done: more often if the option says so."""
    arguments = sys.argv[1:]
    if arguments[0] == option:
        number, arguments = int(arguments[1]), arguments[2:]
    return Settings(arguments), number


def free_port(kind=socket.SOCK_DGRAM):
    with socket.socket(socket.AF_INET, kind) as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Server:
    """A running server. `sdks` are names, or None for all."""

    def __init__(self, settings, sdks=None, simulator="", options=(), discovery_port=None):
        self.settings = settings
        self.discovery_port = discovery_port or free_port()
        environment = dict(os.environ, ORVANE_SIMULATOR=simulator,
                           XDG_DATA_HOME=str(settings.scratch / "data"))
        environment.pop("ORVANE_WINE_TRIES", None)
        self.errors = tempfile.TemporaryFile(mode="w+", dir=settings.scratch)
        self.sdks = settings.sdk_directory(sdks)
        self.process = subprocess.Popen(
            [*settings.command, "--sdk", settings.name(self.sdks), "--port", "0",
             "--discovery-port", str(self.discovery_port), *options],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=self.errors, text=True,
            env=environment)
        lines = []
        for line in self.process.stdout:
            lines.append(line)
            if line.startswith("Listening on"):
                break
        else:
            raise RuntimeError("The server did not start: " + self.error_text())
        self.port = int(re.search(r":(\d+)/setup", lines[-1]).group(1))
        threading.Thread(target=self.process.stdout.read, daemon=True).start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def error_text(self):
        self.errors.seek(0)
        return self.errors.read()

    def stop(self):
        """Ends the server at once."""
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()

    def end(self):
        """Asks the server to end. Returns its exit status."""
        self.process.send_signal(signal.SIGTERM)
        return self.process.wait(timeout=30)

    def workers(self):
        """The process numbers of the workers, in the order of their start: that of the cameras. The
        server must have a directory of SDKs of its own."""
        found = []
        for directory in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                words = (directory / "cmdline").read_bytes()
                stat = (directory / "stat").read_text().rsplit(")", 1)[1].split()
            except OSError:
                continue
            state, started = stat[0], int(stat[19])
            if b"--worker" in words and self.sdks.name.encode() in words and state not in "ZX":
                # Process numbers begin again at the bottom, so they do not tell which is newer.
                found.append((started, int(directory.name)))
        return [number for _, number in sorted(found)]

    def memory(self):
        """What the server occupies in memory, in MiB. Of its workers only what it shares with them."""
        if self.settings.is_sanitized:
            return 0  # a sanitizer keeps what was freed
        pages = int(pathlib.Path(f"/proc/{self.process.pid}/statm").read_text().split()[1])
        return pages * os.sysconf("SC_PAGE_SIZE") / 2**20

    def client(self):
        return Client(self.port)

    def cameras(self):
        """A Camera for each, by name."""
        devices = self.client().get("/management/v1/configureddevices").value
        return {device["DeviceName"]: Camera(self.client(), device["DeviceNumber"])
                for device in devices}


class Answer:
    def __init__(self, status, headers, body):
        self.status = status
        self.type = headers.get("content-type", "")
        self.headers = headers
        self.body = body
        self.json = None
        if self.type == "application/json":
            self.json = json.loads(body)

    @property
    def value(self):
        if self.json is None or self.json["ErrorNumber"] != 0:
            raise RuntimeError(f"{self.status} {self.body[:300]!r}")
        return self.json["Value"]

    @property
    def error(self):
        """The protocol's error number, or None."""
        return self.json["ErrorNumber"] if self.json is not None else None


class Client:
    """One connection."""

    def __init__(self, port, address="127.0.0.1"):
        self.connection = http.client.HTTPConnection(address, port, timeout=60)

    def request(self, method, path, body=None, headers=None):
        headers = dict(headers or {})
        if body is not None:
            headers.setdefault("Content-Type", "application/x-www-form-urlencoded")
        try:
            self.connection.request(method, path, body, headers)
            answer = self.connection.getresponse()
        except (http.client.RemoteDisconnected, ConnectionError):
            # The server closes a connection that was idle for a minute.
            self.connection.close()
            self.connection.request(method, path, body, headers)
            answer = self.connection.getresponse()
        return Answer(answer.status, {name.lower(): value for name, value in answer.getheaders()},
                      answer.read())

    def get(self, path, parameters=None, **headers):
        query = "?" + urllib.parse.urlencode(parameters) if parameters else ""
        return self.request("GET", path + query, headers=headers)

    def put(self, path, parameters=None):
        return self.request("PUT", path, urllib.parse.urlencode(parameters or {}))


class Camera:
    """A camera of the server."""

    def __init__(self, client, number):
        self.client = client
        self.path = f"/api/v1/camera/{number}/"

    def get(self, name, parameters=None):
        return self.client.get(self.path + name, parameters)

    def put(self, name, **parameters):
        return self.client.put(self.path + name, parameters)

    def value(self, name):
        return self.get(name).value

    def set(self, name, **parameters):
        answer = self.put(name, **parameters)
        if answer.status != 200 or answer.error != 0:
            raise RuntimeError(f"{name} {parameters}: {answer.status} {answer.body!r}")

    def expose(self, seconds, light="true"):
        """Takes a picture and waits for it."""
        self.set("startexposure", Duration=seconds, Light=light)
        self.wait_for_image(seconds)

    def wait_for_image(self, seconds=1):
        end = time.monotonic() + seconds + 60
        while not self.value("imageready"):
            if time.monotonic() > end:
                raise RuntimeError("no picture")
            time.sleep(0.003)

    def image_bytes(self, parameters=None):
        query = "?" + urllib.parse.urlencode(parameters) if parameters else ""
        return self.client.request("GET", self.path + "imagearray" + query,
                                   headers={"Accept": "application/imagebytes"})


class ImageBytes:
    """The binary form of a picture, read as the protocol describes it."""

    def __init__(self, body):
        (self.version, self.error, self.client, self.server, self.start, self.element,
         self.transmission, self.rank, self.width, self.height, self.planes) = struct.unpack(
             "<iiIIiiiiiii", body[:44])
        self.pixels = body[self.start:]

    def sample_bytes(self):
        return {6: 1, 8: 2}[self.transmission]


class Checks:
    """Counts what was checked, by section, and keeps what was wrong."""

    def __init__(self):
        self.counts = {}
        self.wrong = []

    def that(self, section, what, holds, detail=""):
        self.counts[section] = self.counts.get(section, 0) + 1
        if not holds:
            self.wrong.append(f"{section}: {what} {detail}")
            print("WRONG", self.wrong[-1], flush=True)
        return holds

    def equal(self, section, what, value, expected):
        return self.that(section, what, value == expected and type(value) is type(expected),
                         f"is {value!r}, not {expected!r}")

    def finish(self):
        for section, count in self.counts.items():
            print(f"{section}: {count} checks")
        print(f"{sum(self.counts.values())} checks, {len(self.wrong)} wrong")
        sys.exit(1 if self.wrong else 0)
