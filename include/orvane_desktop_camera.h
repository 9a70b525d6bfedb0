/**
 * @file
 * One small C interface to the astronomy cameras of four makers (ZWO ASI, Player One, QHYCCD,
 * ToupTek).
 *
 * The library links none of the makers' SDKs. It loads each of them at run time, by name, from the
 * directory given to oc_library_dir(); an SDK that is not there simply contributes no cameras.
 *
 * The calls in their order:
 *
 * - oc_library_dir(): where the makers' SDKs are
 * - oc_scan(): build the catalogue of cameras
 * - oc_libraries(), oc_error(), oc_info(): what was found, what failed, what each camera can do
 * - oc_open(): open one camera; it streams from here on
 * - oc_width(), oc_height(), oc_buffer_size(): how large a frame is, how large a buffer must be
 * - oc_read(): poll for the next frame, again and again
 * - oc_apply(), oc_temperature(): at any time between two reads
 * - oc_close(): stop and release the camera
 *
 * At most one camera is open at a time.
 *
 * @par Units
 * Exposure: microseconds. Temperature: degrees Celsius. Gain and offset (black level): whole
 * numbers in each maker's own units, passed on unscaled. Sizes: pixels, buffers: bytes.
 *
 * @par Threads
 * The library has one caller at a time: no two calls may overlap, whichever thread they come from.
 * It starts no thread, registers no callback and takes no lock; every SDK call is made on the
 * caller's thread.
 *
 * @par Strings
 * Every string that the library returns is NUL-terminated, belongs to the library and is never
 * null. Copy it if you need it for longer than its function's description promises. Strings are
 * UTF-8, except that an SDK may put other bytes into a camera's name.
 *
 * @par Error text
 * A call that fails says so by its return value; oc_error() then tells why, in English. The text is
 * emptied in two places only: at the start of oc_open(), and at the start of a scan that is not
 * refused. Other calls write it when they fail and leave it alone when they succeed, so read it
 * right after a failure.
 *
 * @par Unloading
 * Unloading the library closes no camera: call oc_close() first. An SDK, once loaded, stays loaded
 * until the process ends.
 *
 * @par Exceptions
 * No function is declared noexcept. These C++ exceptions leave the library:
 *
 * - oc_scan(), on Windows: std::system_error when the directory is not valid UTF-8 (see oc_scan())
 * - oc_library_dir(), oc_scan() and oc_info(): std::bad_alloc
 * - oc_scan(), oc_open(), oc_read() and oc_apply(): an exception of an SDK that does not derive
 *   from std::exception, unchanged. After one has left oc_open(), call oc_close(). oc_close() and
 *   oc_temperature() swallow it, and so does oc_scan() while it reads the limits of a ZWO ASI or
 *   Player One camera.
 *
 * An exception of an SDK that derives from std::exception is an ordinary failure, whose error text
 * is its what(). The Windows DLL, which GCC builds, treats the exceptions of SDKs that were built
 * with Microsoft's compiler alike; a program built with Microsoft's compiler can catch by type
 * those that pass. It cannot catch std::system_error and std::bad_alloc by type, because they are
 * GCC's: check the directory before the scan. Access violations and other structured exceptions
 * are not touched.
 */
#ifndef ORVANE_DESKTOP_CAMERA_H
#define ORVANE_DESKTOP_CAMERA_H

#include <stdint.h>

/** @cond the linkage of the functions */
#if defined(_WIN32)
#  if defined(ORVANE_DESKTOP_CAMERA_BUILDING)
#    define ORVANE_DESKTOP_CAMERA_API __declspec(dllexport)
#  elif defined(ORVANE_DESKTOP_CAMERA_STATIC)
#    define ORVANE_DESKTOP_CAMERA_API
#  else
#    define ORVANE_DESKTOP_CAMERA_API __declspec(dllimport)
#  endif
#elif defined(__GNUC__)
#  define ORVANE_DESKTOP_CAMERA_API __attribute__((visibility("default")))
#else
#  define ORVANE_DESKTOP_CAMERA_API
#endif

/** @endcond */

#ifdef __cplusplus
extern "C" {
#endif

/** Pixel formats: the codes in "formats" of oc_info() and the `format` of oc_open(). */
enum {
  /** Raw, 8 bits a pixel. A colour camera delivers its Bayer pattern. */
  OC_FORMAT_RAW8 = 0,
  /** Raw, 16 bits a pixel, low byte first. */
  OC_FORMAT_RAW16 = 1,
  /** Colour computed by the SDK, 3 bytes a pixel; for their order see oc_read(). */
  OC_FORMAT_RGB24 = 2,
  /** Brightness computed by the SDK, 8 bits a pixel. */
  OC_FORMAT_MONO8 = 3
};

/**
 * Bayer patterns: the codes in "bayer" of oc_info(). The name gives the first two pixels of the
 * first row, then those of the second. The numbers are the colour ids of SER files.
 */
enum {
  /** None: a mono camera. */
  OC_BAYER_NONE = 0,
  /** Red green, green blue. */
  OC_BAYER_RGGB = 8,
  /** Green red, blue green. */
  OC_BAYER_GRBG = 9,
  /** Green blue, red green. */
  OC_BAYER_GBRG = 10,
  /** Blue green, green red. */
  OC_BAYER_BGGR = 11
};

/**
 * Names the directory that the makers' SDK libraries are loaded from.
 *
 * The directory is not looked at here. It matters for SDKs that the next oc_scan() loads for the
 * first time; an SDK that is loaded already stays as it is. Does not touch the error text.
 *
 * @param dir UTF-8 path, copied; a null pointer counts as "". On Windows it must be a full path:
 *     others find nothing, "" included. Text that is not valid UTF-8 makes oc_scan() throw.
 */
ORVANE_DESKTOP_CAMERA_API void oc_library_dir(const char* dir);

/**
 * Builds the catalogue anew: loads the SDKs that are not loaded yet, and opens every camera that
 * they report for a moment to read its limits. Nothing stays open.
 *
 * Error text: emptied at the start (not by a refusal). The first failing call, other than those
 * below, ends the scan of that maker: it adds one message, "; " between those of two makers, and
 * the cameras read so far stay in the catalogue. So look at oc_error() even after a positive
 * result.
 *
 * An empty error text does not mean that every camera was read. These give no message:
 *
 * - an SDK that is missing or cannot be loaded (see oc_libraries())
 * - a camera that cannot be opened, for example because another program holds it: ZWO ASI and
 *   Player One cameras are listed with "maxExposureUs", "minGain" and "maxGain" all 0, which means
 *   unknown; QHYCCD and ToupTek cameras are left out
 * - a limit that the SDK does not tell: it is 0
 *
 * Catalogue indices from an earlier scan are void after this call.
 *
 * Exceptions: on Windows, a directory that is not valid UTF-8 leaves this function as a
 * std::system_error with the Windows error code, as soon as an SDK is to be loaded. SDKs that were
 * loaded before stay loaded. The catalogue, the error text and oc_libraries() then hold only what
 * came from loaded SDKs that stand before that one in the makers' order; nothing in the first scan.
 *
 * @return The number of cameras in the catalogue, 0 or more, or -1 when a camera is open: the error
 *     text is then "Stop the preview before rescanning" and everything else stays as it was.
 */
ORVANE_DESKTOP_CAMERA_API int oc_scan(void);

/**
 * The SDKs that the last scan found loadable. Does not touch the error text.
 *
 * @return Their base names, in the fixed order of the makers and separated by ", ", for example
 *     "ASICamera2, toupcam"; "" before the first scan. Valid until the next oc_scan().
 */
ORVANE_DESKTOP_CAMERA_API const char* oc_libraries(void);

/**
 * Describes one camera of the catalogue as one JSON object on one line, with these keys in this
 * order:
 *
 * - "id": the index
 * - "name": model or display name; control characters are left out
 * - "maxWidth", "maxHeight": sensor size at bin 1, pixels
 * - "bitDepth": of the sensor's converter, or only of the transfer: 8 for many QHYCCD cameras with
 *   a deeper converter; 0 from old ZWO ASI SDKs
 * - "pixelSizeUm": pixel pitch, micrometres, up to 6 significant digits
 * - "isColor", "isCooled", "isUsb3Camera", "isUsb3Host": booleans
 * - "bins": binning factors for oc_open(), an array
 * - "formats": format codes for oc_open(), an array in no fixed order: OC_FORMAT_RAW8 and so on
 * - "depths": [8] or [8,16]
 * - "maxExposureUs": longest exposure that the maker states, microseconds (oc_open() and oc_apply()
 *   take up to 2147483647); 0 is unknown
 * - "minGain", "maxGain": in the maker's units; may be negative (-25 for the ASI2600); all 0
 *   together with "maxExposureUs" when unknown
 * - "bayer": Bayer pattern at the top left corner, OC_BAYER_NONE and so on
 *
 * Does not touch the error text.
 *
 * @param index 0 up to, not including, the result of the last oc_scan()
 * @return The description, or "{}" when there is no such camera. Valid until the next oc_info()
 *     with a valid index.
 */
ORVANE_DESKTOP_CAMERA_API const char* oc_info(int index);

/**
 * Opens a camera, configures it and starts its stream. A camera that is open is closed first, even
 * when this call then fails.
 *
 * Width and height may be as large as the sensor at bin 1, and are cut down to the binned sensor:
 * the full sensor size at bin 2 gives a frame of half that size. A size smaller than the binned
 * sensor is the frame's size as it stands. The region lies at the sensor's top left corner.
 *
 * A size that the camera cannot do is rounded or refused, depending on the maker. ZWO ASI: this
 * library rounds down to multiples of 8 x 2 pixels. Player One: its SDK rounds to multiples of
 * 4 x 2. QHYCCD: its SDK refuses ("QHY ROI: 4294967295"). ToupTek: its SDK refuses odd and very
 * small sizes ("ToupTek ROI: -2147024809"). Ask oc_width() and oc_height() for the result.
 *
 * Some models cannot be opened with any arguments: docs/makers.md, "Models that cannot be opened".
 *
 * The error text is emptied at the start. After a failure it is one of these, or another that says
 * which of the maker's steps failed:
 *
 * - "Camera not found; rescan": no such index
 * - "Unsupported bin or format": not listed by the camera
 * - "Invalid capture dimensions": not positive, or larger than the sensor
 * - "ROI is too small for binning": nothing left after binning and rounding
 * - "Invalid frame buffer size": a frame of no bytes, or of more than 1 GiB
 * - "Exposure out of range"
 * - "<call>: <code>": the maker's SDK refused a call; its result code in decimal
 * - "<library>: missing <function>": the SDK lacks a function
 *
 * @param index of the catalogue, as for oc_info()
 * @param width 1 up to "maxWidth"
 * @param height 1 up to "maxHeight"
 * @param bin one of "bins"
 * @param format one of "formats", OC_FORMAT_RAW8 and so on
 * @param exposureUs 1 to 2147483647 microseconds, for every maker
 * @param gain in the maker's units, passed on as it is; may be negative
 * @param offset likewise
 * @return 1, or 0 after a failure: no camera is open then, and oc_buffer_size() is 0.
 */
ORVANE_DESKTOP_CAMERA_API int oc_open(int index, int width, int height, int bin, int format,
                                      int64_t exposureUs, int gain, int offset);

/**
 * Width of the frames of the open camera. Keeps its value after oc_close(). Does not touch the
 * error text.
 *
 * @return Pixels after binning; 0 before the first oc_open().
 */
ORVANE_DESKTOP_CAMERA_API int oc_width(void);

/**
 * Height of the frames, as oc_width().
 *
 * @return Pixels after binning; 0 before the first oc_open().
 */
ORVANE_DESKTOP_CAMERA_API int oc_height(void);

/**
 * The size that oc_read() demands of its buffer. It can be more than the frame takes, for an SDK
 * that needs more room. Does not touch the error text.
 *
 * @return Bytes, at most 1 GiB; 0 when no camera is open.
 */
ORVANE_DESKTOP_CAMERA_API int oc_buffer_size(void);

/**
 * Asks for the next frame. The SDK writes straight into the buffer; nothing is copied or allocated.
 *
 * A frame is rows without padding, in the order in which the SDK delivers them: the top row first,
 * except that ToupTek's SDK on Windows delivers the bottom row first unless it is told otherwise,
 * and this library does not tell it. A pixel has these bytes:
 *
 * - OC_FORMAT_RAW8, OC_FORMAT_MONO8: 1
 * - OC_FORMAT_RAW16: 2, low byte first. A sample of less than 16 bits is left-aligned (ZWO ASI,
 *   Player One, QHYCCD usually) or right-aligned (ToupTek).
 * - OC_FORMAT_RGB24: 3. Red, green, blue for ZWO ASI, whose SDK delivers blue first: this library
 *   swaps. Blue, green, red for Player One (measured), as the SDK delivers them.
 *
 * A camera that has gone may give 0 for ever. QHYCCD answers 0 for "no frame" and for every
 * failure, unplugging included; ZWO ASI and Player One mostly do so after unplugging, too. So count
 * the time since the last frame. Silence of twice the exposure plus 500 ms is normal; give up after
 * five times that.
 *
 * After a failure the error text is one of these; a camera that is open stays open and streaming:
 * read again or close it.
 *
 * - "Camera closed or buffer too small"
 * - "QHY frame geometry changed", "ToupTek frame geometry changed"
 * - "<call>: <code>", "<library>: missing <function>": as in oc_open()
 *
 * @param buffer oc_buffer_size() bytes or more, not null
 * @param bufferLength its size in bytes
 * @param timeoutMs how long the SDK may wait, in milliseconds: twice the exposure plus 500, but not
 *     much more than 1000, because nothing interrupts the call. Only ZWO ASI's SDK waits; with the
 *     others pause and call again. Not negative: ZWO ASI's SDK would wait for ever.
 * @return The number of frame bytes; 0 when there was no frame, which is no error by itself: pause
 *     and call again, the buffer's content is undefined; -1 after a failure.
 */
ORVANE_DESKTOP_CAMERA_API int oc_read(uint8_t* buffer, int bufferLength, int timeoutMs);

/**
 * Sets exposure, gain and offset, in this order, of the streaming camera. Arguments as in
 * oc_open().
 *
 * ZWO ASI and QHYCCD cameras without a writable offset ignore it; others fail. Of a value out of
 * range, ZWO ASI's SDK takes the nearest one that it can do and reports success; others may refuse
 * it.
 *
 * @param exposureUs 1 to 2147483647 microseconds
 * @param gain in the maker's units; may be negative
 * @param offset likewise
 * @return 1, or 0 after a failure with the error text "Camera closed", "Exposure out of range",
 *     "ToupTek gain out of range", "<setting>: <code>" or "<library>: missing <function>". The
 *     camera goes on streaming, and what was set before the failure stays in force.
 */
ORVANE_DESKTOP_CAMERA_API int oc_apply(int64_t exposureUs, int gain, int offset);

/**
 * The sensor's temperature. Never touches the error text.
 *
 * @return Degrees Celsius, or a quiet NaN when no camera is open or the SDK reports a failure. An
 *     SDK can also report a number that is no temperature: 4294967295.0 for a QHYCCD camera without
 *     a temperature sensor, -300 for a Player One camera that was unplugged (measured).
 */
ORVANE_DESKTOP_CAMERA_API double oc_temperature(void);

/**
 * Stops the stream and releases the camera; does nothing when none is open. Cannot fail and never
 * touches the error text. oc_width() and oc_height() keep their values.
 */
ORVANE_DESKTOP_CAMERA_API void oc_close(void);

/**
 * Why the last call that failed did so.
 *
 * @return The message, or "". Valid until the next call that may write it: oc_scan(), oc_open(),
 *     oc_read(), oc_apply().
 */
ORVANE_DESKTOP_CAMERA_API const char* oc_error(void);

#ifdef __cplusplus
}
#endif

#endif
