"""The Python binding with the simulated SDKs.

python_test.py LIBRARY SDK-DIRECTORY BINDING-DIRECTORY [unittest's arguments]
"""

import concurrent.futures
import ctypes
import gc
import math
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

LIBRARY, SDKS, BINDING = (Path(argument).resolve() for argument in sys.argv[1:4])
sys.path.insert(0, str(BINDING))

import numpy as np
import orvane_desktop_camera as binding
from orvane_desktop_camera import Bayer, CameraError, CameraInfo, Format, FrameTimeout, Library

NAMES = os.environ["ORVANE_SDKS"].split(", ")
CAMERA_COUNT = int(os.environ["ORVANE_CAMERAS"])  # of all simulated SDKs
CONTROLS = {name: ctypes.CDLL(str(SDKS / f"lib{name}.so")) for name in NAMES}
ASI = CONTROLS["ASICamera2"]
ASI.sim_log.restype = ctypes.c_char_p
INVARIANTS = (
    "devicesOpen streamsRunning callsOnClosed stopsWithoutStart shortBuffers writesPastBuffer".split()
)


def rendered(number, size):
    """Frame `number` of the streaming ZWO camera, as the SDK delivers it."""
    frame = np.empty(size, np.uint8)
    assert ASI.sim_render_frame(number, frame.ctypes.data_as(ctypes.c_void_p), size) == size
    return frame


class BindingTest(unittest.TestCase):
    def setUp(self):
        for name, control in CONTROLS.items():
            # A reset would undo the initialisation that the library does once per process.
            control.sim_clear_faults() if name == "qhyccd" else control.sim_reset()
        self.camera_library = Library(LIBRARY)
        self.cameras = self.camera_library.scan(SDKS)

    def tearDown(self):
        gc.collect()
        still_open = binding._open_camera and binding._open_camera()
        if still_open:
            still_open.close()
        self.assert_all_closed()

    def assert_all_closed(self):
        for name, control in CONTROLS.items():
            now = (ctypes.c_int32 * len(INVARIANTS))()
            control.sim_invariants(now)
            self.assertEqual(dict(zip(INVARIANTS, now)), dict.fromkeys(INVARIANTS, 0), name)

    def command(self, text):
        self.assertEqual(ASI.sim_command(text.encode()), 1, text)

    def open(self, camera=0, **settings):
        settings = {"width": 64, "height": 48, "exposure_us": 1000, **settings}
        return self.camera_library.open(self.cameras[camera], **settings)

    def assert_fails(self, text, call, *arguments, **named):
        self.assertRaisesRegex(CameraError, f"^{re.escape(text)}$", call, *arguments, **named)

    def first_of(self, prefix):
        return next(c for c in self.cameras if c.name.startswith(prefix))


class Loading(BindingTest):
    def test_a_library_that_is_not_there(self):
        with self.assertRaisesRegex(CameraError, "^Cannot load /nowhere/lib.so: "):
            Library("/nowhere/lib.so")

    def test_a_library_that_is_another(self):
        with self.assertRaisesRegex(CameraError, "undefined symbol: oc_library_dir"):
            Library(SDKS / "libtoupcam.so")

    def test_the_environment_names_the_library(self):
        with mock.patch.dict(os.environ, ORVANE_DESKTOP_CAMERA_LIBRARY=str(LIBRARY)):
            self.assertEqual(Library().file, LIBRARY)

    def test_without_a_name_the_places_are_told(self):
        self.assert_fails(
            "liborvane_desktop_camera.so was not found. Give its path to Library(), or in "
            "ORVANE_DESKTOP_CAMERA_LIBRARY.",
            Library,
        )


class Scanning(BindingTest):
    def test_cameras_of_every_maker(self):
        self.assertEqual(self.camera_library.libraries, NAMES)
        self.assertEqual([camera.index for camera in self.cameras], list(range(CAMERA_COUNT)))
        self.assertEqual(self.camera_library.scan_error, "")

    def test_every_field(self):
        first = self.cameras[0]
        self.assertEqual(
            (first.name, first.max_width, first.max_height, first.bit_depth, first.pixel_size_um),
            ("ZWO ASI120MC-S", 1280, 960, 12, 3.75),
        )
        self.assertEqual((first.is_color, first.is_cooled), (True, False))
        self.assertTrue(first.is_usb3_camera)
        self.assertEqual((first.bins, first.formats, first.depths), ((1, 2), (0, 2, 3, 1), (8, 16)))
        self.assertIs(first.bayer, Bayer.GRBG)
        self.assertIn(Format.RAW16, first.formats)
        self.assertGreater(first.max_gain, first.min_gain)
        self.assertGreater(first.max_exposure_us, 1000000)

    def test_codes_of_formats_and_bayer_patterns(self):
        self.assertEqual(
            {one.name: one.value for one in Format},
            {"RAW8": 0, "RAW16": 1, "RGB24": 2, "MONO8": 3},
        )
        self.assertEqual(
            {one.name: one.value for one in Bayer},
            {"NONE": 0, "RGGB": 8, "GRBG": 9, "GBRG": 10, "BGGR": 11},
        )

    def test_a_camera_that_cannot_be_opened_has_no_limits_and_no_message(self):
        self.command("force ASIOpenCamera 1 1 16")
        first, second = self.camera_library.scan(SDKS)[:2]
        self.assertEqual((first.max_exposure_us, first.min_gain, first.max_gain), (0, 0, 0))
        self.assertGreater(second.max_gain, 0)
        self.assertEqual(self.camera_library.scan_error, "")

    def test_names_that_are_no_utf8_and_look_like_keys(self):
        class Entry(ctypes.Structure):
            _fields_ = [("name", ctypes.c_char * 256), ("rest", ctypes.c_char * 1024)]

        camera = Entry()
        self.assertEqual(ASI.sim_get_camera(0, ctypes.byref(camera)), 1)
        camera.name = b'x\xff"pixelSizeUm":nan\\'
        ASI.sim_set_cameras(ctypes.byref(camera), 1)
        found = self.camera_library.scan(SDKS)[0]
        self.assertEqual(found.name, 'x\ufffd"pixelSizeUm":nan\\')
        self.assertEqual(found.pixel_size_um, 3.75)

    def test_pixel_sizes_that_are_no_numbers(self):
        self.command("output ASIGetCameraProperty PixelSize 1 1 nan")
        self.assertTrue(math.isnan(self.camera_library.scan(SDKS)[0].pixel_size_um))
        self.command("output ASIGetCameraProperty PixelSize 1 1 -inf")
        self.assertEqual(self.camera_library.scan(SDKS)[0].pixel_size_um, -math.inf)

    def test_what_cannot_be_read_is_told_and_the_rest_stays(self):
        self.command("force ASIGetCameraProperty 2 1 4")
        cameras = self.camera_library.scan(SDKS)
        self.assertTrue(self.camera_library.scan_error.startswith("ASI"), self.camera_library.scan_error)
        self.assertEqual(len(cameras), CAMERA_COUNT - 3)

    def test_an_empty_directory_while_sdks_stay_loaded_and_a_path_with_nul(self):
        with tempfile.TemporaryDirectory() as directory:
            self.assertEqual(len(self.camera_library.scan(directory)), CAMERA_COUNT)
        with self.assertRaisesRegex(ValueError, "A path holds no NUL character"):
            self.camera_library.scan("a\0b")

    def test_not_while_a_camera_is_open(self):
        with self.open():
            self.assert_fails("Stop the preview before rescanning", self.camera_library.scan, SDKS)
        self.assertEqual(len(self.camera_library.scan(SDKS)), CAMERA_COUNT)


class Opening(BindingTest):
    def test_failures_have_the_librarys_text_and_leave_nothing_open(self):
        self.assert_fails("Camera not found; rescan", self.camera_library.open, 99)
        self.assert_fails("Unsupported bin or format", self.open, bin=9)
        self.assert_fails("Unsupported bin or format", self.open, format=7)
        self.assert_fails("Invalid capture dimensions", self.open, width=0)
        self.assert_fails("Exposure out of range", self.open, exposure_us=0)
        first = self.open()
        self.command("force ASIStartVideoCapture 1 1 16")
        self.assert_fails("ASIStartVideoCapture: 16", self.open)
        self.assertTrue(first.closed)

    def test_numbers_that_do_not_fit(self):
        with self.assertRaisesRegex(OverflowError, "2147483648 does not fit in 32 bits"):
            self.open(gain=2**31)
        with self.assertRaisesRegex(OverflowError, "9223372036854775808 does not fit in 64 bits"):
            self.open(exposure_us=2**63)

    def test_the_whole_sensor_and_an_index(self):
        with self.camera_library.open(0, bin=2, exposure_us=1000) as camera:
            self.assertEqual((camera.width, camera.height), (640, 480))
            self.assertEqual(camera.info, self.cameras[0])

    def test_another_camera_closes_the_first(self):
        first = self.open(0)
        with self.open(4) as second:
            self.assertTrue(first.closed)
            self.assert_fails("Camera closed", first.read)
            first.close()
            self.assertEqual(second.read().shape, (48, 64))

    def test_closed_when_the_block_fails_and_when_forgotten(self):
        with self.assertRaisesRegex(RuntimeError, "in the block"):
            with self.open():
                raise RuntimeError("in the block")
        self.assert_all_closed()
        camera = self.open()
        del camera
        gc.collect()
        self.assert_all_closed()


class Reading(BindingTest):
    def test_frames_are_views_of_the_buffer_and_what_the_sdk_wrote(self):
        ASI.sim_stop_clock(1)
        with self.open() as camera:
            buffer = camera.new_buffer()
            for number in range(3):
                frame = camera.read(buffer)
                self.assertTrue(np.shares_memory(frame, buffer))
                self.assertEqual((frame.shape, frame.dtype), ((48, 64), np.uint8))
                np.testing.assert_array_equal(frame.ravel(), rendered(number, 64 * 48))

    def test_sixteen_bits_and_colours(self):
        ASI.sim_stop_clock(1)
        with self.open(format=Format.RAW16) as camera:
            frame = camera.read()
            self.assertEqual((frame.shape, frame.dtype), ((48, 64), np.dtype("<u2")))
            np.testing.assert_array_equal(frame.ravel(), rendered(0, 64 * 48 * 2).view("<u2"))
        with self.open(format=Format.RGB24) as camera:
            frame = camera.read()
            self.assertEqual((frame.shape, frame.dtype), ((48, 64, 3), np.uint8))
            blue_green_red = rendered(0, 64 * 48 * 3).reshape(48, 64, 3)
            np.testing.assert_array_equal(frame, blue_green_red[:, :, ::-1])

    def test_frames_without_a_buffer_are_kept_apart(self):
        with self.open() as camera:
            frames = camera.frames()
            first, second = next(frames), next(frames)
            self.assertFalse(np.shares_memory(first, second))
            camera.close()
            self.assertEqual(list(frames), [])

    def test_every_maker(self):
        for prefix in ("ZWO", "Mars", "QHY", "SkyRaider"):
            with self.open(self.first_of(prefix).index) as camera:
                self.assertEqual(camera.read().shape, (camera.height, camera.width))

    def test_no_frame_is_no_error_of_poll_and_a_time_out_of_read(self):
        with self.open() as camera:
            self.command("force ASIGetVideoData 1 -1 11")
            self.assertIsNone(camera.poll())
            self.assertRaisesRegex(FrameTimeout, "^No frame within 30 ms$", camera.read, timeout_ms=30)
            ASI.sim_clear_faults()
            self.assertEqual(camera.read().shape, (48, 64))

    def test_one_call_waits_for_a_second_at_most(self):
        ASI.sim_stop_clock(1)
        with self.open(exposure_us=5000000) as camera:
            ASI.sim_log_enable(1)
            self.assertIsNone(camera.poll())
            self.assertEqual(camera.read().shape, (48, 64))
            calls = re.findall(r"ASIGetVideoData\((.*)\) = (\d+)", ASI.sim_log().decode())
            self.assertGreater(len(calls), 3)
            for arguments, _ in calls:
                self.assertRegex(arguments, r"\b1000\b")

    def test_makers_that_never_wait_time_out_too(self):
        with self.open(self.first_of("QHY").index, exposure_us=60000000) as camera:
            self.assertRaisesRegex(FrameTimeout, "^No frame within 50 ms$", camera.read, timeout_ms=50)

    def test_a_failure_leaves_the_camera_open(self):
        with self.open() as camera:
            self.command("force ASIGetVideoData 1 1 4")
            self.assert_fails("ASIGetVideoData: 4", camera.read)
            self.assertEqual(camera.read().shape, (48, 64))

    def test_an_unplugged_camera(self):
        with self.open() as camera:
            ASI.sim_set_plugged(0, 0)
            self.assertRaisesRegex(CameraError, "^ASIGetVideoData: ", camera.read)

    def test_buffers_that_do_not_fit(self):
        with self.open() as camera:
            size = camera.buffer_size
            self.assert_fails(
                "Camera closed or buffer too small", camera.read, np.empty(size - 1, np.uint8)
            )
            read_only = camera.new_buffer()
            read_only.flags.writeable = False
            for buffer in (
                np.empty(size, np.uint16),
                np.empty((48, 64), np.uint8),
                np.empty(2 * size, np.uint8)[::2],
                read_only,
            ):
                self.assertRaisesRegex(ValueError, "^The buffer must be ", camera.poll, buffer)
            self.assertEqual(camera.read(np.empty(size + 100, np.uint8)).shape, (48, 64))

    def test_two_threads(self):
        def use(camera):
            for _ in range(20):
                camera.read()
                camera.temperature

        with self.open() as camera, concurrent.futures.ThreadPoolExecutor(2) as pool:
            list(pool.map(use, [camera, camera]))  # raises what a thread raised


class Controls(BindingTest):
    def test_settings_reach_the_camera(self):
        with self.open() as camera:
            ASI.sim_log_enable(1)
            camera.apply(exposure_us=2000, gain=7, offset=3)
            log = ASI.sim_log().decode()
            self.assertIn("ASISetControlValue(0, 1, 2000, 0) = 0", log)
            self.assertIn("ASISetControlValue(0, 0, 7, 0) = 0", log)

    def test_failures(self):
        with self.open() as camera:
            apply = camera.apply
            self.assert_fails("Exposure out of range", apply, exposure_us=0, gain=0, offset=0)
            self.command("force ASISetControlValue 2 1 8")
            self.assert_fails("ASI gain: 8", apply, exposure_us=1000, gain=0, offset=0)
            with self.assertRaises(OverflowError):
                apply(exposure_us=1000, gain=-(2**31) - 1, offset=0)
        self.assert_fails("Camera closed", apply, exposure_us=1000, gain=0, offset=0)

    def test_temperature(self):
        with self.open() as camera:
            self.assertTrue(-50 < camera.temperature < 50)
            self.command("force ASIGetControlValue 1 1 4")
            self.assertTrue(math.isnan(camera.temperature))
        self.assertTrue(math.isnan(camera.temperature))


class Samples(unittest.TestCase):
    def run_sample(self, name, *arguments, simulator=""):
        return subprocess.run(
            [sys.executable, "-B", str(BINDING / "samples" / name), *map(str, arguments)],
            env={
                **os.environ,
                "ORVANE_DESKTOP_CAMERA_LIBRARY": str(LIBRARY),
                "ORVANE_SIMULATOR": simulator,
            },
            capture_output=True,
            text=True,
            timeout=120,
        )

    def test_list_cameras(self):
        result = self.run_sample("list_cameras.py", SDKS)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        lines = result.stdout.splitlines()
        self.assertEqual(lines[0], "SDKs: " + ", ".join(NAMES))
        self.assertEqual(lines[1], "  0 ZWO ASI120MC-S: 1280 x 960, colour (GRBG)")
        self.assertEqual(len(lines), 1 + CAMERA_COUNT)
        result = self.run_sample("list_cameras.py", "/nowhere")
        self.assertEqual((result.returncode, result.stdout), (0, "SDKs: none\n"))
        self.assertEqual(self.run_sample("list_cameras.py").returncode, 2)

    def test_live_statistics(self):
        result = self.run_sample("live_statistics.py", SDKS, 3)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        lines = result.stdout.splitlines()[1:4]
        means = [float(line.split("mean ")[1].split(",")[0]) for line in lines]
        self.assertGreater(means[2], means[0])

    def test_live_statistics_tells_what_went_wrong(self):
        for fault, text in (
            ("sdk ASICamera2; force ASIGetVideoData 2 1 4", "ASIGetVideoData: 4\n"),
            ("sdk ASICamera2; force ASIStartVideoCapture 1 1 16", "ASIStartVideoCapture: 16\n"),
            ("sdk ASICamera2; force ASIGetVideoData 1 -1 11", "No frame within 510 ms\n"),
        ):
            result = self.run_sample("live_statistics.py", SDKS, simulator=fault)
            self.assertEqual((result.returncode, result.stderr), (1, text))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
