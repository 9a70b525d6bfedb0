#!/usr/bin/env python3
"""Four cameras take pictures at the same time, while another client asks for everything. Nothing
fails, and the memory does not grow.

    four_cameras_test.py [--exposures N] SCRATCH SDKS OC_CAPTURE COMMAND..."""

import threading
import time

from conformance_test import CAMERA, COMMON
from server import SDKS, Camera, Checks, ImageBytes, Server, settings_and_number

EXPOSURE = 0.02
FAST = [name for name in [*COMMON, *CAMERA] if not name.startswith("imagearray")]


class Run:
    def __init__(self, server, checks):
        self.server = server
        self.checks = checks
        self.problems = []
        self.times = []
        self.overheads = []
        self.done = threading.Event()

    def take(self, number, count):
        """Pictures of one camera, each read in full."""
        camera = Camera(self.server.client(), number)
        try:
            for _ in range(count):
                start = time.perf_counter()
                camera.expose(EXPOSURE)
                self.overheads.append(time.perf_counter() - start - EXPOSURE)
                image = ImageBytes(camera.image_bytes().body)
                if len(image.pixels) != image.width * image.height * image.sample_bytes():
                    self.problems.append(f"camera {number}: {len(image.pixels)} bytes")
        except Exception as error:  # a test that goes on without this thread would not end
            self.problems.append(f"camera {number}: {error!r}")

    def ask(self, numbers):
        """Everything that is answered at once, of all cameras in turn."""
        cameras = [Camera(self.server.client(), number) for number in numbers]
        try:
            while not self.done.is_set():
                for camera in cameras:
                    for name in FAST:
                        start = time.perf_counter()
                        answer = camera.get(name)
                        self.times.append((time.perf_counter() - start, name))
                        if answer.status != 200 or answer.error in (0x407, 0x500):
                            self.problems.append(f"{name}: {answer.status} {answer.body!r}")
        except Exception as error:
            self.problems.append(repr(error))

    def all_cameras(self, numbers, count):
        self.done.clear()
        takers = [threading.Thread(target=self.take, args=(number, count)) for number in numbers]
        asker = threading.Thread(target=self.ask, args=(numbers,))
        for thread in [asker, *takers]:
            thread.start()
        for thread in takers:
            thread.join()
        self.done.set()
        asker.join()


def main():
    settings, exposures = settings_and_number("--exposures", 12)
    checks = Checks()
    with Server(settings, SDKS) as server:
        wanted = ["ZWO ASI120MC-S", "Mars-C", "QHY6-M", "SkyRaiderDS6.3"]
        names = list(server.cameras())
        numbers = [names.index(name) for name in wanted]
        cameras = server.cameras()
        for name in wanted:
            cameras[name].set("connected", Connected="true")
        for camera in cameras.values():
            camera.client.connection.close()
        run = Run(server, checks)
        run.all_cameras(numbers, 3)
        before = server.memory()
        run.times.clear()
        run.overheads.clear()
        run.all_cameras(numbers, exposures)
        after = server.memory()
        times = sorted(run.times)
        print(f"{4 * exposures} exposures, {len(times)} GETs: median "
              f"{1000 * times[len(times) // 2][0]:.2f} ms, 99 % "
              f"{1000 * times[len(times) * 99 // 100][0]:.2f} ms, slowest "
              f"{1000 * times[-1][0]:.2f} ms ({times[-1][1]}); overhead of an exposure: median "
              f"{1000 * sorted(run.overheads)[len(run.overheads) // 2]:.0f} ms; memory "
              f"{before:.1f} MiB before, {after:.1f} MiB after")
        checks.equal("four cameras", "problems", run.problems[:5], [])
        checks.equal("four cameras", "exposures", len(run.overheads), 4 * exposures)
        checks.that("four cameras", "memory", after < before + 16, f"{before} {after}")
        checks.equal("four cameras", "errors on the standard error output", server.error_text(), "")
    checks.finish()


if __name__ == "__main__":
    main()
