"""The cameras of four makers (ZWO ASI, Player One, QHYCCD, ToupTek) as NumPy arrays.

    from orvane_desktop_camera import Library

    library = Library()
    cameras = library.scan(r"C:\\Program Files\\MyCapture\\sdk")
    with library.open(cameras[0], exposure_us=20000, gain=100) as camera:
        frame = camera.read()           # an array: rows, columns, and three colours for RGB

A process has one library state and at most one open camera. This module makes one call at a time,
so any thread may use it. While one thread waits for a frame, other Python threads run.

Units: exposure in microseconds, temperature in degrees Celsius, gain and offset in the maker's own.
"""

from __future__ import annotations

import ctypes
import dataclasses
import enum
import json
import math
import os
import re
import sys
import threading
import time
import weakref
from pathlib import Path
from typing import Iterator, Optional, Union

import numpy as np

__all__ = ["Bayer", "Camera", "CameraError", "CameraInfo", "Format", "FrameTimeout", "Library"]


class CameraError(Exception):
    """A call failed. The text is the library's error text."""


class FrameTimeout(CameraError):
    """No frame came in time. The camera still streams: read again, or close it."""


class Format(enum.IntEnum):
    """The format of a frame's pixels."""

    RAW8 = 0  #: 8 bits; a colour camera delivers its Bayer pattern
    RAW16 = 1  #: the same with 16 bits; left-aligned, for ToupTek right-aligned
    RGB24 = 2  #: three bytes: red, green, blue for ZWO ASI, blue, green, red for Player One
    MONO8 = 3  #: 8 bits of brightness


class Bayer(enum.IntEnum):
    """The Bayer pattern: the first two pixels of the first row, then those of the second."""

    NONE = 0  #: a mono camera
    RGGB = 8
    GRBG = 9
    GBRG = 10
    BGGR = 11


@dataclasses.dataclass(frozen=True)
class CameraInfo:
    """One camera of the last scan. The next scan makes `index` invalid."""

    index: int
    name: str
    max_width: int  #: of the sensor at bin 1, pixels
    max_height: int
    bit_depth: int  #: of the sensor's converter, or only of the transfer (QHYCCD)
    pixel_size_um: float  #: micrometres; NaN or infinite if the SDK reports that
    is_color: bool
    is_cooled: bool
    is_usb3_camera: bool
    is_usb3_host: bool
    bins: tuple[int, ...]
    formats: tuple[int, ...]  #: see Format
    depths: tuple[int, ...]
    max_exposure_us: int  #: this and the two gains are 0 for a camera that could not be opened
    min_gain: int  #: may be negative
    max_gain: int
    bayer: Bayer

    @staticmethod
    def from_json(text: str) -> "CameraInfo":
        """Reads the library's description of a camera."""
        # An SDK may report a pixel size that JSON cannot represent. Inside a name every quotation
        # mark has a backslash before it, so this matches the key only.
        text = re.sub(r'(?<!\\)"pixelSizeUm":-?nan', '"pixelSizeUm":NaN', text)
        text = re.sub(r'(?<!\\)"pixelSizeUm":(-?)inf', r'"pixelSizeUm":\1Infinity', text)
        values = json.loads(text)
        values["index"] = values["id"]
        values["pixelSizeUm"] = float(values["pixelSizeUm"])
        values["bayer"] = Bayer(values["bayer"])
        arguments = {}
        for field in dataclasses.fields(CameraInfo):
            # max_width is the value of "maxWidth".
            value = values[re.sub("_(.)", lambda match: match[1].upper(), field.name)]
            arguments[field.name] = tuple(value) if isinstance(value, list) else value
        return CameraInfo(**arguments)


# The library has one state in this process: it allows one call at a time and one open camera.
_one_call = threading.RLock()
_open_camera: Optional["weakref.ref[Camera]"] = None  # weak, so that a forgotten camera is closed


class Library:
    """The loaded library.

    file  the library's path. Default: the environment variable ORVANE_DESKTOP_CAMERA_LIBRARY, else
          the library in the package that contains this module, else beside this module.
    """

    def __init__(self, file: Union[str, os.PathLike, None] = None):
        self.file = Path(file) if file is not None else _find_library()
        #: the failures of the last scan, or ""; not every missing camera is among them, see scan()
        self.scan_error = ""
        try:
            self._c = ctypes.CDLL(str(self.file.absolute()))
            for name, (result, arguments) in _SIGNATURES.items():
                function = getattr(self._c, name)
                function.restype = result
                function.argtypes = arguments
        except (OSError, AttributeError) as error:
            raise CameraError(f"Cannot load {self.file}: {error}") from error

    def scan(self, sdk_directory: Union[str, os.PathLike]) -> list[CameraInfo]:
        """Scans for cameras with the makers' SDKs in this directory.

        Raises CameraError if a camera is open. If a maker's cameras cannot all be read, no exception
        is raised: see `scan_error`. A camera that cannot be opened is not reported there: a ZWO ASI
        or Player One camera is listed with limits of 0, and others are left out.
        """
        directory = os.fspath(Path(sdk_directory).absolute())
        if "\0" in directory:
            raise ValueError("A path holds no NUL character")
        with _one_call:
            self._c.oc_library_dir(directory.encode("utf-8"))
            count = self._c.oc_scan()
            if count < 0:
                raise self._error()
            self.scan_error = _text(self._c.oc_error())
            return [CameraInfo.from_json(_text(self._c.oc_info(i))) for i in range(count)]

    @property
    def libraries(self) -> list[str]:
        """The base names of the SDKs that the last scan found."""
        with _one_call:
            names = _text(self._c.oc_libraries())
        return names.split(", ") if names else []

    def open(
        self,
        camera: Union[CameraInfo, int],
        *,
        width: Optional[int] = None,
        height: Optional[int] = None,
        bin: int = 1,
        format: int = Format.RAW8,
        exposure_us: int = 20000,
        gain: Optional[int] = None,
        offset: int = 0,
    ) -> "Camera":
        """Opens a camera, which then streams. Closes the open camera first.

        `format` is a Format. Default width and height: the whole sensor; default gain: the lowest.
        Raises CameraError with the library's text, and OverflowError for a number that the library's
        types cannot hold.
        """
        global _open_camera
        with _one_call:
            info = camera
            if not isinstance(camera, CameraInfo):
                description = _text(self._c.oc_info(_integer(camera)))
                if description == "{}":
                    raise CameraError("Camera not found; rescan")
                info = CameraInfo.from_json(description)
            numbers = (
                info.index,
                _integer(info.max_width if width is None else width),
                _integer(info.max_height if height is None else height),
                _integer(bin),
                _integer(format),
                _integer(exposure_us, bits=64),
                _integer(info.min_gain if gain is None else gain),
                _integer(offset),
            )
            before = _open_camera and _open_camera()
            if before:
                before.close()
            if not self._c.oc_open(*numbers):
                raise self._error()
            try:
                opened = Camera(self, info, Format(format), exposure_us)
            except BaseException:
                self._c.oc_close()
                raise
            _open_camera = weakref.ref(opened)
            return opened

    def _error(self) -> CameraError:
        return CameraError(_text(self._c.oc_error()))


class Camera:
    """An open camera that streams. Library.open() returns it; `with` closes it."""

    def __init__(self, library: Library, info: CameraInfo, format: Format, exposure_us: int):
        self._library = library
        self._c = library._c
        self.closed = False
        self._exposure_us = exposure_us
        self.info = info
        self.format = format
        self.width = self._c.oc_width()  #: of a frame, as the camera rounded it
        self.height = self._c.oc_height()
        self.buffer_size = self._c.oc_buffer_size()  #: bytes that a buffer must have at least

    def __enter__(self) -> "Camera":
        return self

    def __exit__(self, *_exception) -> None:
        self.close()

    def __del__(self) -> None:
        self.close()

    def new_buffer(self) -> np.ndarray:
        """A buffer for poll() and read()."""
        return np.empty(self.buffer_size, np.uint8)

    def poll(
        self, buffer: Optional[np.ndarray] = None, timeout_ms: Optional[int] = None
    ) -> Optional[np.ndarray]:
        """Polls once for the next frame. Returns None if none is ready.

        buffer      bytes for the frame: one-dimensional, contiguous, writable, at least buffer_size
                    long. The result is a view of it, not a copy: the next use of the buffer
                    overwrites the frame. Default: a new buffer each time.
        timeout_ms  how long the SDK may wait; only ZWO ASI's does. Default: twice the exposure plus
                    half a second, but at most a second.
        """
        if buffer is None:
            buffer = self.new_buffer()
        if buffer.dtype != np.uint8 or buffer.ndim != 1:
            raise ValueError("The buffer must be a one-dimensional array of bytes (uint8)")
        if not buffer.flags.c_contiguous or not buffer.flags.writeable:
            raise ValueError("The buffer must be contiguous and writable")
        if timeout_ms is None:
            timeout_ms = min(self._timeout_ms(), _LONGEST_CALL_MS)
        timeout = _integer(timeout_ms)
        with _one_call:
            self._demand_open()
            count = self._c.oc_read(buffer.ctypes.data, min(buffer.size, _INT32_MAX), timeout)
            if count < 0:
                raise self._library._error()
        if count == 0:
            return None
        shape = (self.height, self.width)
        if self.format is Format.RGB24:
            shape += (3,)
        pixel = "<u2" if self.format is Format.RAW16 else np.uint8
        return buffer[:count].view(pixel).reshape(shape)

    def read(
        self, buffer: Optional[np.ndarray] = None, timeout_ms: Optional[int] = None
    ) -> np.ndarray:
        """Waits for the next frame. Raises FrameTimeout if none comes within `timeout_ms`; default:
        twice the exposure plus half a second. One such timeout is normal. After five in a row assume
        that the camera is lost, because an unplugged camera may raise no other error. `buffer` as
        for poll().
        """
        timeout = self._timeout_ms() if timeout_ms is None else timeout_ms
        if buffer is None:
            buffer = self.new_buffer()
        end = time.monotonic() + timeout / 1000
        while True:
            left = max(0, math.ceil((end - time.monotonic()) * 1000))
            frame = self.poll(buffer, min(left, _LONGEST_CALL_MS))
            if frame is not None:
                return frame
            if time.monotonic() >= end:
                raise FrameTimeout(f"No frame within {timeout} ms")
            # Only ZWO's SDK waits.
            time.sleep(0.001)

    def frames(
        self, buffer: Optional[np.ndarray] = None, timeout_ms: Optional[int] = None
    ) -> Iterator[np.ndarray]:
        """Yields frames as read() returns them, until the camera is closed."""
        while not self.closed:
            yield self.read(buffer, timeout_ms)

    def apply(self, *, exposure_us: int, gain: int, offset: int) -> None:
        """Sets exposure, gain and offset, in this order. The camera still streams.

        Raises CameraError. Values that were set before the failure stay set.
        """
        numbers = (_integer(exposure_us, bits=64), _integer(gain), _integer(offset))
        with _one_call:
            self._demand_open()
            # The SDK may have set the exposure even if a later setting fails.
            if 1 <= exposure_us <= _INT32_MAX:
                self._exposure_us = exposure_us
            if not self._c.oc_apply(*numbers):
                raise self._library._error()

    @property
    def temperature(self) -> float:
        """The sensor's temperature in degrees Celsius; NaN if the SDK reports none or the camera is
        closed. An SDK can also return a number that is not a temperature, such as 4294967295.0 or
        -300.
        """
        with _one_call:
            return math.nan if self.closed else self._c.oc_temperature()

    def close(self) -> None:
        """Stops the stream and releases the camera. Closing twice is no error."""
        global _open_camera
        if getattr(self, "closed", True):
            return
        with _one_call:
            if not self.closed:
                self.closed = True
                _open_camera = None
                self._c.oc_close()

    def _timeout_ms(self) -> int:
        return min(2 * self._exposure_us // 1000 + 500, _INT32_MAX)

    def _demand_open(self) -> None:
        if self.closed:
            raise CameraError("Camera closed")


_INT32_MAX = 2**31 - 1
_LONGEST_CALL_MS = 1000  # nothing interrupts a call, and other threads' calls wait for it


def _integer(value: int, bits: int = 32) -> int:
    # ctypes would silently truncate a larger number.
    number = value.__index__()
    if not -(2 ** (bits - 1)) <= number < 2 ** (bits - 1):
        raise OverflowError(f"{number} does not fit in {bits} bits")
    return number


def _text(raw: bytes) -> str:
    # A camera's name need not be valid UTF-8.
    return raw.decode("utf-8", errors="replace")


def _find_library() -> Path:
    here = Path(__file__).resolve().parent
    if sys.platform == "win32":
        name, places = "orvane_desktop_camera.dll", [here.parent.parent / "bin", here]
    else:
        name, places = "liborvane_desktop_camera.so", [here.parent.parent / "lib", here]
    named = os.environ.get("ORVANE_DESKTOP_CAMERA_LIBRARY")
    if named:
        return Path(named)
    for place in places:
        if (place / name).is_file():
            return place / name
    raise CameraError(
        f"{name} was not found. Give its path to Library(), or in ORVANE_DESKTOP_CAMERA_LIBRARY."
    )


_SIGNATURES = {  # the result and the arguments of each function
    "oc_library_dir": (None, [ctypes.c_char_p]),
    "oc_scan": (ctypes.c_int, []),
    "oc_libraries": (ctypes.c_char_p, []),
    "oc_info": (ctypes.c_char_p, [ctypes.c_int]),
    "oc_open": (ctypes.c_int, [ctypes.c_int] * 5 + [ctypes.c_int64, ctypes.c_int, ctypes.c_int]),
    "oc_width": (ctypes.c_int, []),
    "oc_height": (ctypes.c_int, []),
    "oc_buffer_size": (ctypes.c_int, []),
    "oc_read": (ctypes.c_int, [ctypes.c_void_p, ctypes.c_int, ctypes.c_int]),
    "oc_apply": (ctypes.c_int, [ctypes.c_int64, ctypes.c_int, ctypes.c_int]),
    "oc_temperature": (ctypes.c_double, []),
    "oc_close": (None, []),
    "oc_error": (ctypes.c_char_p, []),
}
