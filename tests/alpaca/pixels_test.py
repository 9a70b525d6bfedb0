#!/usr/bin/env python3
"""The pixels of pictures are those of the frames that the simulated cameras show: at every bin and in
every format, of subframes at odd places, in JSON and in binary form. The cameras look at a recording
of one frame, so that every frame is the same, and oc_capture records the frame to compare with.

    pixels_test.py [--all] SCRATCH SDKS OC_CAPTURE COMMAND...

Without --all, the formats are checked at bin 1 and the bins in the first format; whole frames only in
that one."""

import array
import os
import random
import struct
import subprocess
import sys

from server import Checks, ImageBytes, Server, Settings

CAMERAS = {"ASICamera2": "ZWO ASI120MC-S", "PlayerOneCamera": "Mars-C", "qhyccd": "QHY5III482C",
           "toupcam": "SkyRaiderDS6.3"}
FORMATS = {"Raw 16 bit": "raw16", "Raw 8 bit": "raw8", "RGB 24 bit": "rgb24", "Mono 8 bit": "mono8"}
EXPOSURE = 0.02
SER_HEADER = 178


def write_scene(path, width, height):
    """A recording of one frame of 16 bits with a Bayer pattern, in which no two pixels are alike."""
    header = b"LUCAM-RECORDER" + struct.pack("<7i", 0, 8, 1, width, height, 16, 1) + bytes(136)
    generator = random.Random(width)
    pixels = generator.randbytes(2 * width * height)
    path.write_bytes(header + pixels)


class Frame:
    """What oc_capture recorded: the pixels row by row."""

    def __init__(self, data):
        self.width, self.height = struct.unpack("<2i", data[26:34])
        self.pixels = data[SER_HEADER:]
        self.pixel_bytes = len(self.pixels) // (self.width * self.height)

    def transposed(self, left, top, width, height):
        """The region, column by column."""
        size = self.pixel_bytes
        rows = b"".join(self.pixels[((top + y) * self.width + left) * size:][:width * size]
                        for y in range(height))
        if size == 2:
            samples = array.array("H", rows)
            return b"".join(samples[x::width].tobytes() for x in range(width))
        columns = bytearray(len(rows))
        for x in range(width):
            for plane in range(size):
                columns[x * height * size + plane:(x + 1) * height * size:size] = \
                    rows[x * size + plane::width * size]
        return bytes(columns)


def reference(settings, sdks, scene, camera, bin, mode, gain):
    out = settings.scratch / f"reference-{os.getpid()}.ser"
    command = [*settings.command[:-1], settings.capture, "record", "--sdk", settings.name(sdks),
               "--camera", camera, "--scene", settings.name(scene), "--bin", str(bin), "--format",
               FORMATS[mode], "--exposure", "20ms", "--gain", str(gain), "--offset", "0",
               "--frames", "1", "--overwrite", "--no-preview", "--no-log", "--quiet", "--out",
               settings.name(out)]
    subprocess.run(command, check=True, stdin=subprocess.DEVNULL, timeout=120)
    data = out.read_bytes()
    out.unlink()
    return Frame(data)


def samples(data, sample_bytes):
    return list(data) if sample_bytes == 1 else list(struct.unpack(f"<{len(data) // 2}H", data))


def compare(checks, what, camera, frame, region):
    """The picture that is ready against the frame."""
    left, top, width, height = region
    expected = frame.transposed(left, top, width, height)
    image = ImageBytes(camera.image_bytes().body)
    planes = 3 if frame.pixel_bytes == 3 else 1
    sample_bytes = frame.pixel_bytes // planes
    checks.equal("pixels", what + ": form", (image.width, image.height, image.planes, image.rank,
                                             image.sample_bytes()),
                 (width, height, 3 if planes == 3 else 0, 3 if planes == 3 else 2, sample_bytes))
    checks.that("pixels", what + ": binary", image.pixels == expected)
    if width * height > 300000:
        return
    array = camera.get("imagearray").json
    checks.equal("pixels", what + ": rank", array["Rank"], image.rank)
    flat = [sample for column in array["Value"] for pixel in column
            for sample in (pixel if planes == 3 else [pixel])]
    checks.that("pixels", what + ": JSON", flat == samples(expected, sample_bytes))


def set_region(camera, left, top, width, height):
    camera.set("startx", StartX=left)
    camera.set("starty", StartY=top)
    camera.set("numx", NumX=width)
    camera.set("numy", NumY=height)


def check_camera(settings, checks, sdk, name, checks_all):
    sdks = settings.sdk_directory([sdk])
    scene = settings.scratch / f"scene-{os.getpid()}.ser"
    # Smaller than the sensor, and of odd place for what is cut off.
    write_scene(scene, 1280, 960)
    with Server(settings, [sdk], "scene " + settings.name(scene)) as server:
        camera = server.cameras()[name]
        camera.set("connected", Connected="true")
        gain = (camera.value("gainmin") + camera.value("gainmax")) // 2
        camera.set("gain", Gain=gain)
        width, height = camera.value("cameraxsize"), camera.value("cameraysize")
        modes = camera.value("readoutmodes")
        for bin in range(1, camera.value("maxbinx") + 1):
            camera.set("binx", BinX=bin)
            for index, mode in enumerate(modes if bin == 1 or checks_all else modes[:1]):
                what = f"{name}, bin {bin}, {mode}"
                camera.set("readoutmode", ReadoutMode=index)
                frame = reference(settings, sdks, scene, name, bin, mode, gain)
                full = (0, 0, width // bin, height // bin)
                for region in [full] * (index == 0 or checks_all) + [(101, 53, 131, 77)]:
                    set_region(camera, *region)
                    camera.expose(EXPOSURE)
                    compare(checks, f"{what}, {region}", camera, frame, region)
        fresh_settings(settings, checks, camera, sdks, scene, name)
    scene.unlink()


def fresh_settings(settings, checks, camera, sdks, scene, name):
    """A new gain holds from the next exposure on: no frame of before is delivered."""
    camera.set("binx", BinX=1)
    camera.set("readoutmode", ReadoutMode=0)
    region = (7, 5, 64, 48)
    set_region(camera, *region)
    least, most = camera.value("gainmin"), camera.value("gainmax")
    gains = [least + (most - least) // 4, least + (most - least) // 2]
    frames = {gain: reference(settings, sdks, scene, name, 1, "Raw 16 bit", gain) for gain in gains}
    checks.that("pixels", name + ": gains differ",
                frames[gains[0]].transposed(*region) != frames[gains[1]].transposed(*region))
    for count in range(3):
        gain = gains[count % 2]
        camera.set("gain", Gain=gain)
        camera.expose(EXPOSURE)
        compare(checks, f"{name}, gain {gain}", camera, frames[gain], region)


def main():
    checks_all = sys.argv[1] == "--all"
    settings = Settings(sys.argv[2 if checks_all else 1:])
    checks = Checks()
    for sdk, name in CAMERAS.items():
        check_camera(settings, checks, sdk, name, checks_all)
    checks.finish()


if __name__ == "__main__":
    main()
