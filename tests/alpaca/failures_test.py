#!/usr/bin/env python3
"""What clients get when something fails, what the others notice of it, what is left running, and how
the camera comes back.

    failures_test.py SCRATCH SDKS OC_CAPTURE COMMAND..."""

import os
import signal
import sys
import threading
import time

from server import Checks, ImageBytes, Server, Settings

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
    for test in (ended_workers, failing_sdks, unplugged, full_disk, log_file, ended_server):
        test(settings, checks)
    checks.finish()


if __name__ == "__main__":
    main()
