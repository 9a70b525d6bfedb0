#!/usr/bin/env python3
"""What clients get when something fails, what the others notice of it, what is left running, how the
camera comes back, and cameras that come later.

    failures_test.py SCRATCH SDKS OC_CAPTURE COMMAND..."""

import os
import shutil
import signal
import sys
import threading
import time

from server import Camera, Checks, ImageBytes, Server, Settings

DRIVER, NOT_CONNECTED = 0x500, 0x407
SECTION = "failures"


def wait_until(condition, seconds=30):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.02)
    return True


def lost_camera(checks, what, camera, text):
    """The camera's answers after its process has ended."""
    checks.that(SECTION, what + ": is noticed",
                wait_until(lambda: camera.get("imageready").error == DRIVER))
    answer = camera.get("imageready").json
    checks.equal(SECTION, what + ": neutral value", answer["Value"], False)
    checks.that(SECTION, what + ": sentence", text in answer["ErrorMessage"] and
                answer["ErrorMessage"].endswith("."), answer["ErrorMessage"])
    checks.equal(SECTION, what + ": not connected", camera.value("connected"), False)
    checks.equal(SECTION, what + ": state", camera.value("camerastate"), 5)
    checks.equal(SECTION, what + ": no picture", camera.get("imagearray").error, DRIVER)
    checks.equal(SECTION, what + ": other members", camera.get("binx").error, NOT_CONNECTED)
    checks.equal(SECTION, what + ": no exposure",
                 camera.put("startexposure", Duration=1, Light="true").error, DRIVER)


def comes_back(checks, what, camera):
    camera.set("connected", Connected="true")
    checks.equal(SECTION, what + ": connected again", camera.value("connected"), True)
    camera.set("numx", NumX=64)
    camera.set("numy", NumY=48)
    camera.expose(0.02)
    image = ImageBytes(camera.image_bytes().body)
    checks.equal(SECTION, what + ": takes pictures again", (image.width, image.height), (64, 48))


def ended_workers(settings, checks):
    """A worker that is killed, and one that is stopped, each in an exposure."""
    with Server(settings, ["ASICamera2"]) as server:
        first, other = list(server.cameras().values())[:2]
        for camera in (first, other):
            camera.set("connected", Connected="true")
        # Short enough for the stream to go on, so that nothing waits for an opening.
        first.expose(0.2)
        for what, sent, text in (("killed", signal.SIGKILL, "has ended its process"),
                                 ("stopped", signal.SIGSTOP, "did not answer in time")):
            others = server.workers()
            worker = others[-1] if what != "killed" else others[0]
            count = len(others)
            other.set("startexposure", Duration=1, Light="true")
            first.set("startexposure", Duration=0.2, Light="true")
            time.sleep(0.05)
            os.kill(worker, sent)
            lost_camera(checks, what, first, text)
            checks.that(SECTION, what + ": nothing of it is left",
                        wait_until(lambda: worker not in server.workers()))
            other.wait_for_image()
            checks.equal(SECTION, what + ": the other camera", other.value("connected"), True)
            comes_back(checks, what, first)
            checks.equal(SECTION, what + ": as many workers as before", len(server.workers()), count)
            first.expose(0.2)
        idle(checks, server, first)


def idle(checks, server, camera):
    """A worker that ends while nothing is exposed."""
    os.kill(server.workers()[-1], signal.SIGKILL)
    checks.that(SECTION, "killed while idle", wait_until(lambda: not camera.value("connected")))
    lost_camera(checks, "killed while idle", camera, "has ended its process")
    camera.set("disconnect")
    checks.equal(SECTION, "disconnected", camera.get("imageready").error, NOT_CONNECTED)
    comes_back(checks, "killed while idle", camera)


def failing_sdks(settings, checks):
    """An SDK that crashes and one that hangs, in one of the pictures that are taken one after another."""
    server = Server(settings, ["ASICamera2", "PlayerOneCamera", "qhyccd"],
                    "camera ZWO ASI120MC-S; camera Mars-C; camera QHY6-M; light off;"
                    "crash ASIGetVideoData 300; hang POAGetImageData 40")
    with server:
        crashing, hanging, other = server.cameras().values()
        cameras = (("crashes", crashing, "signal 11", "exception C0000005"),
                   ("hangs by itself", hanging, "did not answer in time", "did not answer in time"))
        for camera in (crashing, hanging, other):
            camera.set("connected", Connected="true")
        workers = server.workers()
        threads = [threading.Thread(target=expose_until_failure, args=(camera,))
                   for _, camera, _, _ in cameras]
        for thread in threads:
            thread.start()
        while any(thread.is_alive() for thread in threads):
            other.expose(0.1)
        for what, camera, on_linux, on_windows in cameras:
            text = on_windows if settings.is_windows else on_linux
            lost_camera(checks, what, camera, "" if settings.is_sanitized else text)
        checks.that(SECTION, "failing SDKs: only the other's process is left",
                    wait_until(lambda: server.workers() == workers[2:]))
        checks.equal(SECTION, "failing SDKs: the other camera", other.value("connected"), True)
        for what, camera, _, _ in cameras:
            comes_back(checks, what, camera)
        other.expose(0.1)


def expose_until_failure(camera):
    while camera.put("startexposure", Duration=0.02, Light="true").error == 0:
        while (answer := camera.get("imageready")).error == 0 and not answer.value:
            time.sleep(0.003)
        if answer.error != 0:
            return


def unplugged(settings, checks):
    with Server(settings, ["ASICamera2"], "unplug 0 ASIGetVideoData 60") as server:
        camera = next(iter(server.cameras().values()))
        camera.set("connected", Connected="true")
        camera.set("startexposure", Duration=20, Light="true")
        lost_camera(checks, "unplugged", camera, "unplugged")
        # The new worker's simulated SDK counts its calls from the start, so the camera is there again.
        comes_back(checks, "plugged in again", camera)
    with Server(settings, ["ASICamera2"]) as server:
        os.kill(server.workers()[0], signal.SIGKILL)
        comes_back(checks, "killed before it connects", next(iter(server.cameras().values())))
    with Server(settings, ["ASICamera2"], "force ASISetROIFormat 1 -1 16") as server:
        cannot_be_opened(checks, server)


def plugged_in_later(settings, checks):
    """An SDK that is not there has no cameras, so one that comes or goes is like its cameras."""
    with Server(settings, ["ASICamera2"],
                "camera ZWO ASI120MC-S; camera QHY6-M; camera Mars-C") as server:
        def devices():
            return server.client().get("/management/v1/configureddevices").value

        def names():
            return [device["DeviceName"] for device in devices()]

        first = devices()
        checks.equal(SECTION, "cameras at the start", names(), ["ZWO ASI120MC-S"])
        shutil.copy(settings.sdk_file("qhyccd"), server.sdks)
        checks.that(SECTION, "plugged in later: found", wait_until(lambda: len(devices()) == 2))
        checks.equal(SECTION, "plugged in later: the first", devices()[:1], first)
        later = Camera(server.client(), 1)
        comes_back(checks, "plugged in later", later)
        known = devices()
        (server.sdks / settings.sdk_file("ASICamera2").name).unlink()
        shutil.copy(settings.sdk_file("PlayerOneCamera"), server.sdks)
        time.sleep(3.2)  # longer than from scan to scan
        checks.equal(SECTION, "no scan while a camera is open", devices(), known)
        later.set("connected", Connected="false")
        checks.that(SECTION, "scan after that", wait_until(
            lambda: "Mars-C" in server.client().get("/setup").body.decode()))
        checks.equal(SECTION, "numbers are kept", devices()[:2], known)
        checks.equal(SECTION, "in the order in which they came", names(),
                     ["ZWO ASI120MC-S", "QHY6-M", "Mars-C"])
        checks.equal(SECTION, "ids differ", len({device["UniqueID"] for device in devices()}), 3)


def cannot_be_opened(checks, server):
    camera = next(iter(server.cameras().values()))
    answer = camera.put("connected", Connected="true").json
    checks.equal(SECTION, "cannot be opened", answer["ErrorNumber"], DRIVER)
    checks.that(SECTION, "cannot be opened: sentence",
                answer["ErrorMessage"].startswith("ASISetROIFormat: 16"), answer["ErrorMessage"])
    checks.equal(SECTION, "cannot be opened: not connected", camera.value("connected"), False)
    camera.set("connect")
    checks.that(SECTION, "cannot be opened: Connecting tells",
                wait_until(lambda: camera.get("connecting").error == DRIVER))
    checks.equal(SECTION, "cannot be opened: state", camera.get("camerastate").error, NOT_CONNECTED)


def full_disk(settings, checks):
    full = settings.name("/dev/full")
    with Server(settings, ["ASICamera2"], options=["--log-file", full]) as server:
        camera = next(iter(server.cameras().values()))
        comes_back(checks, "disk of the log full", camera)
        checks.equal(SECTION, "disk of the log full: one sentence", server.error_text(),
                     f'oc_alpaca: The log file "{full}" cannot be written: the disk is full. The '
                     "server goes on.\n")


def log_file(settings, checks):
    log = settings.scratch / f"log-{os.getpid()}.txt"
    with Server(settings, ["ASICamera2"], options=["--log-file", settings.name(log)]) as server:
        comes_back(checks, "log", next(iter(server.cameras().values())))
    lines = [line.split(" ", 1) for line in log.read_text().splitlines()]
    checks.that(SECTION, "log: connected", "ZWO ASI120MC-S: connected" in [line[1] for line in lines])
    log.unlink()


def ended_server(settings, checks):
    for what in ("killed", "killed, a worker hangs", "ended"):
        if what == "ended" and settings.is_windows:
            continue  # Wine has no signal for it
        with Server(settings, ["ASICamera2"]) as server:
            camera = next(iter(server.cameras().values()))
            camera.set("connected", Connected="true")
            camera.set("startexposure", Duration=20, Light="true")
            time.sleep(0.2)
            if "hangs" in what:
                os.kill(server.workers()[0], signal.SIGSTOP)
            checks.equal(SECTION, f"server {what}: workers before", len(server.workers()), 4)
            if what == "ended":
                checks.equal(SECTION, "server ended: exit status", server.end(), 0)
            else:
                server.stop()
            checks.that(SECTION, f"server {what}: no worker is left",
                        wait_until(lambda: not server.workers(), 10), str(server.workers()))


def main():
    settings = Settings(sys.argv[1:])
    checks = Checks()
    for test in (ended_workers, failing_sdks, unplugged, plugged_in_later, full_disk, log_file,
                 ended_server):
        test(settings, checks)
    checks.finish()


if __name__ == "__main__":
    main()
