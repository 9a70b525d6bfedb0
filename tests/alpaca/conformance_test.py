#!/usr/bin/env python3
"""Checks the server against the protocol's description, member by member, with one camera of each
maker: paths and methods, parameters and their case, transaction numbers, types, errors, exposures.

    conformance_test.py SCRATCH SDKS OC_CAPTURE COMMAND..."""

import re
import subprocess
import sys
import time
import urllib.parse

from server import SDKS, Checks, ImageBytes, Server, Settings

NOT_IMPLEMENTED, INVALID, NOT_CONNECTED, INVALID_OPERATION = 0x400, 0x401, 0x407, 0x40B
BAD_IDS = [(name, value) for name in ("ClientID", "ClientTransactionID")
           for value in ("", " ", "-1", "abc")]
ENVELOPE = {"ClientTransactionID", "ServerTransactionID", "ErrorNumber", "ErrorMessage"}

COMMON = {"connected": bool, "connecting": bool, "description": str, "devicestate": list,
          "driverinfo": str, "driverversion": str, "interfaceversion": int, "name": str,
          "supportedactions": list}
# Type, and the error that a connected camera answers before its first exposure; None for a value.
CAMERA = {
    "bayeroffsetx": (int, "mono"), "bayeroffsety": (int, "mono"), "binx": (int, None),
    "biny": (int, None), "camerastate": (int, None), "cameraxsize": (int, None),
    "cameraysize": (int, None), "canabortexposure": (bool, None), "canasymmetricbin": (bool, None),
    "canfastreadout": (bool, None), "cangetcoolerpower": (bool, None), "canpulseguide": (bool, None),
    "cansetccdtemperature": (bool, None), "canstopexposure": (bool, None),
    "ccdtemperature": (float, "any"), "cooleron": (bool, NOT_IMPLEMENTED),
    "coolerpower": (float, NOT_IMPLEMENTED), "electronsperadu": (float, NOT_IMPLEMENTED),
    "exposuremax": (float, None), "exposuremin": (float, None), "exposureresolution": (float, None),
    "fastreadout": (bool, NOT_IMPLEMENTED), "fullwellcapacity": (float, NOT_IMPLEMENTED),
    "gain": (int, None), "gainmax": (int, None), "gainmin": (int, None),
    "gains": (list, NOT_IMPLEMENTED), "hasshutter": (bool, None),
    "heatsinktemperature": (float, NOT_IMPLEMENTED), "imagearray": (list, INVALID_OPERATION),
    "imagearrayvariant": (list, NOT_IMPLEMENTED), "imageready": (bool, None),
    "ispulseguiding": (bool, None), "lastexposureduration": (float, INVALID_OPERATION),
    "lastexposurestarttime": (str, INVALID_OPERATION), "maxadu": (int, None), "maxbinx": (int, None),
    "maxbiny": (int, None), "numx": (int, None), "numy": (int, None),
    "offset": (int, NOT_IMPLEMENTED), "offsetmax": (int, NOT_IMPLEMENTED),
    "offsetmin": (int, NOT_IMPLEMENTED), "offsets": (list, NOT_IMPLEMENTED),
    "percentcompleted": (int, None), "pixelsizex": (float, None), "pixelsizey": (float, None),
    "readoutmode": (int, None), "readoutmodes": (list, None), "sensorname": (str, None),
    "sensortype": (int, None), "setccdtemperature": (float, NOT_IMPLEMENTED), "startx": (int, None),
    "starty": (int, None), "subexposureduration": (float, NOT_IMPLEMENTED)}
# Good parameters, those with a value that is none, and the error of a connected camera.
PUTS = {
    "action": ({"Action": "a", "Parameters": ""}, None, NOT_IMPLEMENTED),
    "commandblind": ({"Command": "a", "Raw": "true"}, {"Raw": "maybe"}, NOT_IMPLEMENTED),
    "commandbool": ({"Command": "a", "Raw": "True"}, {"Raw": ""}, NOT_IMPLEMENTED),
    "commandstring": ({"Command": "a", "Raw": "FALSE"}, {"Raw": "1"}, NOT_IMPLEMENTED),
    "binx": ({"BinX": "1"}, {"BinX": "one"}, 0), "biny": ({"BinY": "1"}, {"BinY": ""}, 0),
    "cooleron": ({"CoolerOn": "true"}, {"CoolerOn": "2"}, NOT_IMPLEMENTED),
    "fastreadout": ({"FastReadout": "true"}, {"FastReadout": "yes"}, NOT_IMPLEMENTED),
    "gain": ({"Gain": "20"}, {"Gain": "1.5"}, 0),
    "numx": ({"NumX": "100"}, {"NumX": "1e3"}, 0), "numy": ({"NumY": "100"}, {"NumY": "0x10"}, 0),
    "offset": ({"Offset": "0"}, {"Offset": "none"}, NOT_IMPLEMENTED),
    "readoutmode": ({"ReadoutMode": "0"}, {"ReadoutMode": "raw"}, 0),
    "setccdtemperature": ({"SetCCDTemperature": "-10.5"}, {"SetCCDTemperature": "1,5"},
                          NOT_IMPLEMENTED),
    "startx": ({"StartX": "0"}, {"StartX": "99999999999"}, 0),
    "starty": ({"StartY": "0"}, {"StartY": " 1"}, 0),
    "subexposureduration": ({"SubExposureDuration": "1"}, {"SubExposureDuration": "nan"},
                            NOT_IMPLEMENTED),
    "abortexposure": ({}, None, 0),
    "pulseguide": ({"Direction": "0", "Duration": "10"}, {"Direction": "north"}, NOT_IMPLEMENTED),
    "stopexposure": ({}, None, NOT_IMPLEMENTED)}


def form(parameters, change=None):
    return urllib.parse.urlencode({**parameters, **(change or {})})


class Conformance:
    def __init__(self, server):
        self.server = server
        self.client = server.client()
        self.checks = Checks()
        self.last_transaction = 0

    def envelope(self, section, what, answer, client=0):
        """The parts that every answer has."""
        checks = self.checks
        if not checks.that(section, what + ": HTTP 200 with JSON",
                           answer.status == 200 and answer.type == "application/json",
                           f"{answer.status} {answer.type} {answer.body[:100]!r}"):
            return
        keys = set(answer.json)
        checks.that(section, what + ": keys",
                    ENVELOPE <= keys <= ENVELOPE | {"Value", "Type", "Rank"}, str(keys))
        checks.equal(section, what + ": client's number", answer.json["ClientTransactionID"], client)
        number = answer.json["ServerTransactionID"]
        checks.equal(section, what + ": server's number", number, self.last_transaction + 1)
        self.last_transaction = number
        checks.equal(section, what + ": text only with errors",
                     answer.json["ErrorMessage"] != "", answer.json["ErrorNumber"] != 0)
        checks.that(section, what + ": size is stated", "content-length" in answer.headers and
                    "transfer-encoding" not in answer.headers)

    def refused(self, section, what, answer, status=400):
        self.checks.that(section, what + f": HTTP {status} with plain text",
                         answer.status == status and answer.type.startswith("text/plain") and
                         len(answer.body) > 0, f"{answer.status} {answer.type} {answer.body[:80]!r}")

    # What the server tells of itself.
    def management(self):
        section, checks = "management", self.checks
        ids = {"ClientID": 3, "ClientTransactionID": 4294967295}
        for path in ("/management/apiversions", "/management/v1/description",
                     "/management/v1/configureddevices"):
            answer = self.client.get(path, ids)
            self.envelope(section, path, answer, 4294967295)
            self.bad_ids(section, path)
        checks.equal(section, "versions", self.client.get("/management/apiversions").value, [1])
        description = self.client.get("/management/v1/description").value
        checks.equal(section, "description", {key: type(value) for key, value in description.items()},
                     dict.fromkeys(["ServerName", "Manufacturer", "ManufacturerVersion", "Location"],
                                   str))
        devices = self.client.get("/management/v1/configureddevices").value
        self.last_transaction += 3
        for number, device in enumerate(devices):
            checks.equal(section, "device", sorted(device),
                         ["DeviceName", "DeviceNumber", "DeviceType", "UniqueID"])
            checks.equal(section, "type", device["DeviceType"], "Camera")
            checks.equal(section, "number", device["DeviceNumber"], number)
            checks.that(section, "unique id", re.fullmatch("[0-9a-f-]{36}", device["UniqueID"]))
        checks.equal(section, "unique ids differ", len({device["UniqueID"] for device in devices}),
                     len(devices))
        for path in ("/setup", "/setup/v1/camera/0/setup"):
            answer = self.client.get(path)
            checks.that(section, path, answer.status == 200 and
                        answer.type.startswith("text/html") and b"<html" in answer.body)
        for path in ("/setup/v1/camera/99/setup", "/setup/v1/telescope/0/setup"):
            self.refused(section, path, self.client.get(path), 403)
        for path in ("/management/v2/description", "/management/", "/management/V1/description"):
            self.refused(section, path, self.client.get(path))
        self.refused(section, "PUT", self.client.put("/management/apiversions"))

    def bad_ids(self, section, path, parameters=None):
        for name, value in BAD_IDS:
            if parameters is None:
                answer = self.client.get(path, {name: value})
            else:
                answer = self.client.put(path, {**parameters, name: value})
            self.refused(section, f"{path} {name}={value!r}", answer)

    # Paths, methods, parameters and transaction numbers of every member.
    def protocol(self, camera):
        section = "protocol"
        for name in [*COMMON, *CAMERA]:
            path = camera.path + name
            for what, parameters, client in (
                    ("good ids", {"ClientID": 1, "ClientTransactionID": 2}, 2),
                    ("no ids", {}, 0), ("extra", {"Extra": "x", "ClientTransactionID": 9}, 9),
                    ("other case", {"clientid": 5, "clienttransactionid": 6}, 6)):
                answer = self.client.get(path, parameters)
                self.envelope(section, f"GET {name}, {what}", answer, client)
                self.checks.that(section, f"GET {name}: a value, also with an error",
                                 answer.json and "Value" in answer.json)
            self.bad_ids(section, path)
        for name, (good, bad, error) in PUTS.items():
            self.put_protocol(section, camera.path + name, name, good, bad, error)
        self.paths(section)

    def put_protocol(self, section, path, name, good, bad, error):
        put = lambda body: self.client.request("PUT", path, body)
        for what, change, client in (
                ("good", {"ClientID": 1, "ClientTransactionID": 2}, 2), ("extra", {"Extra": "x"}, 0),
                ("case of ids", {"clientid": 5, "CLIENTTRANSACTIONID": 6}, 0)):
            answer = put(form(good, change))
            self.envelope(section, f"PUT {name}, {what}", answer, client)
            self.checks.equal(section, f"PUT {name}, {what}: error", answer.error, error)
        if bad:
            self.refused(section, f"PUT {name} {bad}", put(form(good, bad)))
        for parameter in good:
            others = {key: value for key, value in good.items() if key != parameter}
            self.refused(section, f"PUT {name} without {parameter}", put(form(others)))
            self.refused(section, f"PUT {name}, case of {parameter}",
                         put(form({**others, parameter.swapcase(): good[parameter]})))
        self.bad_ids(section, path, good)

    def paths(self, section):
        for path in ("/api/v1/CAMERA/0/name", "/API/v1/camera/0/name", "/api/V1/camera/0/name",
                     "/api/v2/camera/0/name", "/api/v1/baddevicetype/0/name",
                     "/api/v1/camera/-1/name", "/api/v1/camera/99999/name", "/api/v1/camera/A/name",
                     "/api/v1/camera//name", "/api/v1/camera/0/", "/api/v1/camera/0",
                     "/api/v1/camera/0/descrip", "/api/v1/camera/0/Name", "/api/v1/camera/0/name/",
                     "/api/v1/camera/0/nam%65", "/api/v1/telescope/0/name", "/api", "/nothing",
                     "/api/v1/camera/18446744073709551616/name", "/api/v1/camera/0/startexposure"):
            self.refused(section, path, self.client.get(path))
        self.refused(section, "PUT name", self.client.put("/api/v1/camera/0/name"))
        for method in ("POST", "DELETE", "OPTIONS", "PATCH"):
            self.refused(section, method,
                         self.client.request(method, "/api/v1/camera/0/name", ""), 405)
        self.refused(section, "a % without digits",
                     self.client.get("/api/v1/camera/0/name?ClientID=%2"))
        for value in ("", "123456", "asdf", "1", "yes"):
            self.refused(section, f"PUT connected {value!r}",
                         self.client.put("/api/v1/camera/0/connected", {"Connected": value}))

    # What every kind of device has.
    def common(self, camera):
        section, checks = "common members", self.checks
        for name, kind in COMMON.items():
            checks.that(section, name + ": type", type(camera.value(name)) is kind)
        checks.equal(section, "connected", camera.value("connected"), False)
        checks.equal(section, "interface", camera.value("interfaceversion"), 4)
        checks.equal(section, "actions", camera.value("supportedactions"), [])
        checks.that(section, "version", re.fullmatch(r"\d+\.\d+", camera.value("driverversion")))
        checks.that(section, "description", len(camera.value("description")) <= 64 and
                    camera.value("name") in camera.value("description"))
        for name in CAMERA:
            checks.equal(section, name + ", not connected", camera.get(name).error, NOT_CONNECTED)
        for name in ("startexposure", "binx"):
            good = {"Duration": 1, "Light": "true"} if name == "startexposure" else {"BinX": 1}
            checks.equal(section, name + ", not connected", camera.put(name, **good).error,
                         NOT_CONNECTED)
        camera.set("connected", Connected="True")
        checks.equal(section, "connected", camera.value("connected"), True)
        camera.set("connected", Connected="true")
        camera.set("connected", Connected="FALSE")
        checks.equal(section, "disconnected", camera.value("connected"), False)
        self.connect_at_once(camera, "disconnect", False)
        self.connect_at_once(camera, "connect", True)
        self.connect_at_once(camera, "connect", True)
        names = [item["Name"] for item in camera.value("devicestate")]
        allowed = ["CameraState", "CCDTemperature", "ImageReady", "IsPulseGuiding",
                   "PercentCompleted", "TimeStamp"]
        checks.equal(section, "device state", names, [name for name in allowed if name in names])
        checks.that(section, "device state is complete", set(allowed) - set(names) <=
                    {"CCDTemperature"})
        stamp = camera.value("devicestate")[-1]["Value"]
        checks.that(section, "time stamp",
                    re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z", stamp), stamp)

    def connect_at_once(self, camera, member, connected):
        start = time.monotonic()
        camera.set(member)
        self.checks.that("common members", member + " returns at once",
                         time.monotonic() - start < 1)
        while camera.value("connecting"):
            time.sleep(0.01)
        self.checks.that("common members", member + " is done in 5 s",
                         time.monotonic() - start < 5)
        self.checks.equal("common members", member, camera.value("connected"), connected)

    # The camera's members before an exposure.
    def members(self, camera):
        section, checks = "camera members", self.checks
        is_mono = camera.value("sensortype") == 0
        for name, (kind, error) in CAMERA.items():
            answer = camera.get(name)
            expected = {"mono": NOT_IMPLEMENTED if is_mono else 0, None: 0}.get(error, error)
            if error == "any":
                checks.that(section, name + ": error", answer.error in (0, NOT_IMPLEMENTED))
            else:
                checks.equal(section, name + ": error", answer.error, expected)
            checks.that(section, name + ": type", type(answer.json["Value"]) is kind,
                        repr(answer.json["Value"]))
        value = camera.value
        for name, expected in (
                ("binx", 1), ("biny", 1), ("camerastate", 0), ("startx", 0), ("starty", 0),
                ("readoutmode", 0), ("canabortexposure", True), ("canasymmetricbin", False),
                ("canfastreadout", False), ("cangetcoolerpower", False), ("canpulseguide", False),
                ("cansetccdtemperature", False), ("canstopexposure", False), ("hasshutter", False),
                ("imageready", False), ("ispulseguiding", False), ("percentcompleted", 0),
                ("numx", value("cameraxsize")), ("numy", value("cameraysize")),
                ("maxbiny", value("maxbinx")), ("pixelsizey", value("pixelsizex")),
                ("exposuremin", 0.0001), ("exposureresolution", 1e-06), ("maxadu", 65535),
                ("sensorname", "")):
            checks.equal(section, name, value(name), expected)
        checks.equal(section, "best raw format first", value("readoutmodes")[:2],
                     ["Raw 16 bit", "Raw 8 bit"])
        checks.that(section, "pixel size", value("pixelsizex") >= 1)
        self.limits(section, camera)

    def limits(self, section, camera):
        checks = self.checks
        for name, parameter, good, bad in (
                ("binx", "BinX", [camera.value("maxbinx"), 1], [0, -1, camera.value("maxbinx") + 1]),
                ("biny", "BinY", [1], [0, camera.value("maxbiny") + 1]),
                ("gain", "Gain", [camera.value("gainmin"), camera.value("gainmax")],
                 [camera.value("gainmin") - 1, camera.value("gainmax") + 1]),
                ("readoutmode", "ReadoutMode", range(len(camera.value("readoutmodes"))),
                 [-1, len(camera.value("readoutmodes"))]),
                # Regions are checked when an exposure starts.
                ("numx", "NumX", [0, -5, 1000000, camera.value("cameraxsize")], []),
                ("numy", "NumY", [0, 2147483647, camera.value("cameraysize")], []),
                ("startx", "StartX", [-1, 5, 0], []), ("starty", "StartY", [7, 0], [])):
            for number in good:
                camera.set(name, **{parameter: number})
                checks.equal(section, f"{name} = {number}", camera.value(name), number)
            before = camera.value(name)
            for number in bad:
                checks.equal(section, f"{name} = {number}",
                             camera.put(name, **{parameter: number}).error, INVALID)
                checks.equal(section, name + " after a refusal", camera.value(name), before)
        camera.set("biny", BinY=camera.value("maxbiny"))
        checks.equal(section, "both bins", camera.value("binx"), camera.value("maxbinx"))
        camera.set("binx", BinX=1)
        for index, mode in enumerate(camera.value("readoutmodes")):
            camera.set("readoutmode", ReadoutMode=index)
            checks.equal(section, mode + ": MaxADU", camera.value("maxadu"),
                         65535 if "16" in mode else 255)
            if mode.startswith("RGB"):
                checks.equal(section, mode + ": sensor", camera.value("sensortype"), 1)
            if mode.startswith("Mono"):
                checks.equal(section, mode + ": sensor", camera.value("sensortype"), 0)
                checks.equal(section, mode + ": offset", camera.get("bayeroffsetx").error,
                             NOT_IMPLEMENTED)
        camera.set("readoutmode", ReadoutMode=0)
        camera.set("gain", Gain=camera.value("gainmin") + 20)

    # Exposures: refused, finished and aborted.
    def exposures(self, camera):
        section, checks = "exposures", self.checks
        width, height = camera.value("cameraxsize"), camera.value("cameraysize")
        for error, change in ((INVALID, {"Duration": -1}),
                              (INVALID, {"Duration": camera.value("exposuremax") * 1.01}),
                              (INVALID, {"Duration": 0.00001})):
            answer = camera.put("startexposure", **{"Duration": 1, "Light": "true", **change})
            checks.equal(section, f"refused {change}", answer.error, error)
        for what in ({"Duration": 1}, {"Light": "true"}, {"Duration": "1s", "Light": "true"},
                     {"Duration": 1, "Light": "bright"}, {"Duration": "inf", "Light": "true"}):
            self.refused(section, str(what), camera.put("startexposure", **what))
        camera.set("abortexposure")
        for bin in range(1, camera.value("maxbinx") + 1):
            camera.set("binx", BinX=bin)
            full = {"NumX": width // bin, "NumY": height // bin, "StartX": 0, "StartY": 0}
            for name, number in full.items():
                camera.set(name.lower(), **{name: number})
            for name in full:
                wrong = (width if name.endswith("X") else height) // bin + 1
                camera.set(name.lower(), **{name: wrong})
                checks.equal(section, f"refused {name} = {wrong} at bin {bin}",
                             camera.put("startexposure", Duration=0.1, Light="true").error, INVALID)
                camera.set(name.lower(), **{name: full[name]})
            self.one_exposure(section, camera, full, 0.3 if bin == 1 else 0.02)
        camera.set("binx", BinX=1)
        for name, number in (("NumX", 64), ("NumY", 32), ("StartX", 11), ("StartY", 7)):
            camera.set(name.lower(), **{name: number})
        self.one_exposure(section, camera, {"NumX": 64, "NumY": 32}, 0.02)
        camera.expose(0, light="false")
        checks.equal(section, "a bias takes the shortest exposure",
                     camera.value("lastexposureduration"), 0.0001)
        self.abort(section, camera)

    def one_exposure(self, section, camera, full, seconds):
        checks = self.checks
        started = time.time()
        camera.set("startexposure", Duration=seconds, Light="true")
        checks.that(section, "state after the start", camera.value("camerastate") in (1, 2))
        checks.equal(section, "not ready at once", camera.value("imageready"), False)
        checks.equal(section, "no second exposure",
                     camera.put("startexposure", Duration=1, Light="true").error, INVALID_OPERATION)
        states, percents = set(), []
        while not camera.value("imageready"):
            states.add(camera.value("camerastate"))
            percents.append(camera.value("percentcompleted"))
            time.sleep(0.01)
        if seconds > 0.1:
            checks.that(section, "was seen exposing", 2 in states, str(states))
        checks.that(section, "was never in error", states <= {0, 1, 2}, str(states))
        checks.that(section, "percent", all(0 <= percent <= 100 for percent in percents) and
                    camera.value("percentcompleted") == 100, str(percents))
        checks.equal(section, "idle afterwards", camera.value("camerastate"), 0)
        checks.equal(section, "last duration", camera.value("lastexposureduration"), seconds)
        start = camera.value("lastexposurestarttime")
        checks.that(section, "last start", re.fullmatch(r"[\d-]{10}T[\d:]{8}\.\d{3}", start), start)
        real = time.strftime("%Y-%m-%dT%H:%M:%S", time.gmtime(started - 2))
        checks.that(section, "last start is not too early", start > real, f"{start} {real}")
        self.image(section, camera, full["NumX"], full["NumY"])

    def image(self, section, camera, width, height):
        checks = self.checks
        answer = camera.image_bytes({"ClientTransactionID": 77})
        checks.equal(section, "type of image bytes", answer.type, "application/imagebytes")
        image = ImageBytes(answer.body)
        checks.equal(section, "image bytes", (image.version, image.error, image.client, image.start,
                                              image.element, image.transmission, image.rank,
                                              image.width, image.height, image.planes),
                     (1, 0, 77, 44, 2, 8, 2, width, height, 0))
        checks.equal(section, "size of image bytes", len(image.pixels), 2 * width * height)
        if width * height > 2000000:
            return
        answer = camera.get("imagearray", {"ClientTransactionID": 78})
        checks.that(section, "form of JSON", re.match(rb'\{"Type":2,"Rank":2,"Value":\[\[\d+,',
                                                      answer.body))
        checks.equal(section, "client's number", answer.json["ClientTransactionID"], 78)
        columns = answer.value
        checks.equal(section, "columns", len(columns), width)
        checks.that(section, "rows", {len(column) for column in columns} == {height})

    def abort(self, section, camera):
        checks = self.checks
        camera.set("startexposure", Duration=30, Light="true")
        time.sleep(0.2)
        checks.that(section, "exposing", camera.value("camerastate") in (1, 2))
        camera.set("abortexposure")
        checks.equal(section, "idle after abort", camera.value("camerastate"), 0)
        checks.equal(section, "no image after abort", camera.value("imageready"), False)
        checks.equal(section, "no array after abort", camera.get("imagearray").error,
                     INVALID_OPERATION)
        camera.expose(0.02)
        checks.equal(section, "an exposure after abort", camera.value("lastexposureduration"), 0.02)
        checks.equal(section, "imagearrayvariant is not implemented",
                     camera.get("imagearrayvariant").error, NOT_IMPLEMENTED)
        camera.set("disconnect")
        while camera.value("connecting"):
            time.sleep(0.01)
        checks.equal(section, "disconnected", camera.value("connected"), False)


def main():
    settings = Settings(sys.argv[1:])
    checks = None
    for sdk in SDKS:
        with Server(settings, [sdk]) as server:
            test = Conformance(server)
            test.checks = checks = checks or test.checks
            test.management()
            cameras = server.cameras()
            # The first one, but of ToupTek one that is drawn faster.
            name = "SkyRaiderDS6.3" if sdk == "toupcam" else next(iter(cameras))
            camera = cameras[name]
            print(sdk, name, flush=True)
            test.common(camera)
            camera.client = test.client
            test.last_transaction = camera.get("name").json["ServerTransactionID"]
            if sdk == SDKS[0]:
                test.protocol(camera)
            camera.set("connected", Connected="false")
            camera.set("connected", Connected="true")
            test.members(camera)
            test.exposures(camera)
    options = ["--offset-range", "0:20", "--max-adu", "4095"]
    with Server(settings, ["ASICamera2"], options=options) as server:
        stated(next(iter(server.cameras().values())), checks)
    wrong_arguments(settings, checks)
    checks.finish()


def wrong_arguments(settings, checks):
    """The server does not start, and tells why."""
    for option, value in (("--offset-range", "20:0"), ("--max-adu", "65536"), ("--port", "x")):
        result = subprocess.run(
            [*settings.command, "--sdk", settings.name(settings.sdks), option, value],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
            timeout=60)
        checks.equal("arguments", f"{option} {value}: status", result.returncode, 2)
        lines = result.stdout.splitlines()
        checks.that("arguments", f"{option} {value}: one sentence", len(lines) == 1 and
                    lines[0].startswith("oc_alpaca: ") and option in lines[0] and
                    value in lines[0], result.stdout)


def stated(camera, checks):
    """Offsets can be set in a stated range, and a stated largest value is that of 16-bit pictures."""
    section = "camera members"
    camera.set("connected", Connected="true")
    for name, expected in (("offset", 0), ("offsetmin", 0), ("offsetmax", 20)):
        checks.equal(section, name, camera.value(name), expected)
    camera.set("offset", Offset=20)
    checks.equal(section, "offset", camera.value("offset"), 20)
    for wrong in (-1, 21):
        checks.equal(section, f"offset {wrong}", camera.put("offset", Offset=wrong).error, INVALID)
    checks.equal(section, "offsets", camera.get("offsets").error, NOT_IMPLEMENTED)
    for mode, largest in (("Raw 16 bit", 4095), ("Raw 8 bit", 255)):
        camera.set("readoutmode", ReadoutMode=camera.value("readoutmodes").index(mode))
        checks.equal(section, mode + ": stated MaxADU", camera.value("maxadu"), largest)
    camera.expose(0.02)


if __name__ == "__main__":
    main()
