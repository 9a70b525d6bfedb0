#!/usr/bin/env python3
"""Measures the Alpaca server: pictures in binary form against a plain server of the same library that
sends as many bytes, in turns; the overhead of an exposure; and simple GETs while four cameras stream.

    alpaca.py OC_ALPACA PLAIN_FILE_SERVER SDKS"""

import http.client
import pathlib
import statistics
import subprocess
import sys
import tempfile
import threading
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests" / "alpaca"))
from server import Camera, Server, Settings  # noqa: E402

ROUNDS = 60
LEAST_RATIO = 0.8


def seconds_of(connection, path, headers, buffer):
    """The time of a request whose answer is read into memory that is there."""
    start = time.perf_counter()
    connection.request("GET", path, headers=headers)
    answer = connection.getresponse()
    view, size = memoryview(buffer), 0
    while read := answer.readinto(view[size:]):
        size += read
    return time.perf_counter() - start, size


def plain_process(plain_server, size):
    """The plain server, which sends this many bytes to any request, and a connection to it."""
    plain = subprocess.Popen([plain_server, str(size)], stdout=subprocess.PIPE, text=True)
    return plain, http.client.HTTPConnection("127.0.0.1", int(plain.stdout.readline()))


def transfers(settings, plain_server):
    with Server(settings, ["ASICamera2"]) as server:
        camera = server.cameras()["ZWO ASI294MC Pro"]
        camera.set("connected", Connected="true")
        camera.expose(0.02)
        size = len(camera.image_bytes().body)
        # From here on the camera would only use the processors.
        subprocess.run(["kill", "-STOP", *map(str, server.workers())], check=True)
        plain, other = plain_process(plain_server, size)
        try:
            buffer = bytearray(size)
            ours = http.client.HTTPConnection("127.0.0.1", server.port)
            times = {"oc_alpaca": [], "plain": []}
            for _ in range(ROUNDS):
                for name, connection, path in (("oc_alpaca", ours, camera.path + "imagearray"),
                                               ("plain", other, "/")):
                    taken, received = seconds_of(connection, path,
                                                 {"Accept": "application/imagebytes"}, buffer)
                    assert received == size, received
                    times[name].append(taken)
        finally:
            plain.kill()
    rates = {name: size / statistics.median(all) / 1e6 for name, all in times.items()}
    ratio = rates["oc_alpaca"] / rates["plain"]
    print(f"  picture of {size} bytes: {rates['oc_alpaca']:.0f} MB/s, plain server "
          f"{rates['plain']:.0f} MB/s, ratio {ratio:.2f}; at least {LEAST_RATIO}: "
          f"{'yes' if ratio >= LEAST_RATIO else 'NO'}")
    return ratio >= LEAST_RATIO


def overhead(settings):
    with Server(settings, ["ASICamera2"]) as server:
        camera = server.cameras()["ZWO ASI120MC-S"]
        camera.set("connected", Connected="true")
        times = []
        for _ in range(30):
            start = time.perf_counter()
            camera.expose(0.02)
            times.append(time.perf_counter() - start - 0.02)
    median = 1000 * statistics.median(times)
    print(f"  overhead of an exposure of 20 ms: median {median:.0f} ms, largest "
          f"{1000 * max(times):.0f} ms; median below 100 ms: {'yes' if median < 100 else 'NO'}")
    return median < 100


def streaming(settings, plain_server):
    """Simple GETs, and in turns the same from the plain server: its slowest answers tell what the busy
    processors and this client cost."""
    names = ["ZWO ASI120MC-S", "Mars-C", "QHY6-M", "SkyRaiderDS6.3"]
    with Server(settings) as server:
        cameras = server.cameras()
        for name in names:
            cameras[name].set("connected", Connected="true")
        stop = threading.Event()

        def take(name):
            camera = Camera(server.client(), list(cameras).index(name))
            while not stop.is_set():
                camera.set("startexposure", Duration=0.02, Light="true")
                time.sleep(0.1)
                camera.set("abortexposure")

        threads = [threading.Thread(target=take, args=(name,)) for name in names]
        path = cameras[names[0]].path + "devicestate"
        ours = http.client.HTTPConnection("127.0.0.1", server.port)
        plain, other = plain_process(plain_server, 500)
        times = {"oc_alpaca": [], "plain": []}
        buffer = bytearray(4096)
        for thread in threads:
            thread.start()
        try:
            for _ in range(2000):
                for name, connection in (("oc_alpaca", ours), ("plain", other)):
                    times[name].append(1000 * seconds_of(connection, path, {}, buffer)[0])
        finally:
            stop.set()
            plain.kill()
            for thread in threads:
                thread.join()
    shares = {}
    for name, all_times in times.items():
        all_times.sort()
        shares[name] = all_times[len(all_times) * 99 // 100]
        print(f"  simple GETs while {len(names)} cameras stream, {name}: median "
              f"{statistics.median(all_times):.2f} ms, 99 % {shares[name]:.2f} ms, slowest "
              f"{all_times[-1]:.2f} ms")
    is_fast = shares["oc_alpaca"] < 10
    print(f"  99 % below 10 ms: {'yes' if is_fast else 'NO'}")
    return is_fast


def main():
    program, plain_server, sdks = sys.argv[1:]
    with tempfile.TemporaryDirectory() as scratch:
        settings = Settings([scratch, sdks, "", program])
        gates = [transfers(settings, plain_server), overhead(settings), streaming(settings, plain_server)]
    sys.exit(0 if all(gates) else 1)


if __name__ == "__main__":
    main()
