/*
 * orvane_desktop_camera: one small C interface to the astronomy cameras of four makers
 * (ZWO ASI, Player One, QHYCCD, ToupTek).
 *
 * The library links none of the makers' SDKs. It loads each of them at run time, by name, from the
 * directory given to oc_library_dir(); an SDK that is not there simply contributes no cameras.
 *
 *     oc_library_dir(dir)                       where the makers' SDKs are
 *     oc_scan()                                 build the catalogue of cameras
 *     oc_libraries(), oc_error(), oc_info(i)    what was found, what failed, what each camera has
 *     oc_open(i, ...)                           open one camera; it streams from here on
 *     oc_width(), oc_height()                   how large a frame is
 *     oc_buffer_size()                          how large a buffer must be
 *     oc_read(...)                              poll for the next frame, again and again
 *     oc_apply(...), oc_temperature()           at any time between two reads
 *     oc_close()                                stop and release the camera
 *
 * At most one camera is open at a time.
 *
 * Units. Exposure: microseconds. Temperature: degrees Celsius. Gain and offset (black level): whole
 * numbers in each maker's own units, passed on unscaled. Sizes: pixels, buffers: bytes.
 *
 * Threads. The library has one caller at a time: no two calls may overlap, whichever thread they
 * come from. It starts no thread, registers no callback and takes no lock; every SDK call is made
 * on the caller's thread.
 *
 * Strings. Every string that the library returns is NUL-terminated, belongs to the library and is
 * never null. Copy it if you need it for longer than its function's description promises. Every
 * string that goes in or comes out is UTF-8, as far as the makers' SDKs keep to it in camera names.
 *
 * Error text. A call that fails says so by its return value; oc_error() then tells why, in English.
 * The text is emptied in two places only: at the start of oc_open(), and at the start of a scan
 * that is not refused. Other calls write it when they fail and leave it alone when they succeed, so
 * read it right after a failure.
 *
 * Unloading. Unloading the library closes no camera: call oc_close() first. An SDK, once loaded,
 * stays loaded until the process ends.
 *
 * C++ hosts: these functions may let a C++ exception pass, in the few cases that are described with
 * them, and are therefore not declared noexcept.
 */
#ifndef ORVANE_DESKTOP_CAMERA_H
#define ORVANE_DESKTOP_CAMERA_H

#include <stdint.h>

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

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Names the directory that the makers' SDK libraries are loaded from.
 *
 * dir     UTF-8 path, copied; a null pointer counts as "". With "" the SDKs are looked for by their
 *         bare file names, which on Windows finds nothing: name a full path.
 *
 * The directory is not looked at here. It matters for SDKs that the next oc_scan() loads for the
 * first time; an SDK that is loaded already stays as it is. Does not touch the error text.
 */
ORVANE_DESKTOP_CAMERA_API void oc_library_dir(const char* dir);

/*
 * Builds the catalogue anew: loads the SDKs that are not loaded yet, and opens every camera that
 * they report for a moment to read its limits. Nothing stays open.
 *
 * Returns the number of cameras in the catalogue, 0 or more, or -1 when a camera is open: the error
 * text is then "Stop the preview before rescanning" and everything else stays as it was.
 *
 * Error text: emptied at the start (not by a refusal). A maker whose cameras could not all be read
 * adds its message, "; " between two of them, and its cameras read so far stay in the catalogue; so
 * look at oc_error() even after a positive result. An SDK that is missing or cannot be loaded is no
 * error and gives no message.
 *
 * Catalogue indices from an earlier scan are void after this call.
 *
 * Exceptions: on Windows a directory that is not valid UTF-8 leaves this function as a
 * std::system_error with the Windows error code.
 */
ORVANE_DESKTOP_CAMERA_API int oc_scan(void);

/*
 * Returns the base names of the SDKs that the last scan found loadable, in the fixed order of the
 * makers and separated by ", ", for example "ASICamera2, toupcam"; "" before the first scan.
 * Valid until the next oc_scan(). Does not touch the error text.
 */
ORVANE_DESKTOP_CAMERA_API const char* oc_libraries(void);

/*
 * Describes one camera of the catalogue.
 *
 * index   0 up to, not including, the result of the last oc_scan()
 *
 * Returns one JSON object on one line, with these keys in this order:
 *     "id"             the index
 *     "name"           model or display name; control characters are left out
 *     "maxWidth", "maxHeight"  sensor size at bin 1, pixels
 *     "bitDepth"       of the sensor's converter
 *     "pixelSizeUm"    pixel pitch, micrometres, up to 6 significant digits
 *     "isColor", "isCooled", "isUsb3Camera", "isUsb3Host"  booleans
 *     "bins"           binning factors for oc_open(), an array
 *     "formats"        format codes for oc_open(), an array: 0 raw 8 bit, 1 raw 16 bit,
 *                      2 RGB 24 bit, 3 mono 8 bit
 *     "depths"         [8] or [8,16]
 *     "maxExposureUs"  longest exposure that the maker states, microseconds (oc_open() and
 *                      oc_apply() take up to 2147483647)
 *     "minGain", "maxGain"     in the maker's units
 *     "bayer"          colour mosaic at the top left corner:
 *                      0 none, 8 RGGB, 9 GRBG, 10 GBRG, 11 BGGR
 * or "{}" when there is no such camera.
 *
 * The description is valid until the next oc_info() with a valid index. Does not touch the error
 * text.
 */
ORVANE_DESKTOP_CAMERA_API const char* oc_info(int index);

/*
 * Opens a camera, configures it and starts its stream. A camera that is open is closed first, even
 * when this call then fails.
 *
 * index        of the catalogue, as for oc_info()
 * width, height  1 up to "maxWidth" and "maxHeight". They are compared with the binned sensor and
 *              cut down to it: the full sensor size at bin 2 gives a frame of half that size; a
 *              size smaller than the binned sensor is the frame's size as it stands. The region
 *              lies at the sensor's top left corner. Makers round it (ZWO ASI to 8 x 2 pixels):
 *              ask oc_width() and oc_height() for the result.
 * bin          one of "bins"
 * format       one of "formats"
 * exposureUs   1 to 2147483647 microseconds, for every maker
 * gain, offset  in the maker's units, passed on as they are
 *
 * Returns 1, or 0 after a failure: no camera is open then, oc_buffer_size() is 0, and the error
 * text is one of
 *     "Camera not found; rescan"         no such index
 *     "Unsupported bin or format"        not listed by the camera
 *     "Invalid capture dimensions"       not positive, or larger than the sensor
 *     "ROI is too small for binning"     nothing left after binning and rounding
 *     "Invalid frame buffer size"        a frame of no bytes, or of more than 1 GiB
 *     "Exposure out of range"
 *     "<call>: <code>"                   the maker's SDK refused a call; its result code in decimal
 *     "<library>: missing <function>"    the SDK lacks a function
 * or another that says which of the maker's steps failed. Emptied at the start of the call.
 */
ORVANE_DESKTOP_CAMERA_API int oc_open(int index, int width, int height, int bin, int format,
                                      int64_t exposureUs, int gain, int offset);

/*
 * Width of the frames of the open camera, in pixels after binning. Keeps its value after
 * oc_close(); 0 before the first oc_open(). Does not touch the error text.
 */
ORVANE_DESKTOP_CAMERA_API int oc_width(void);

/* Height of the frames, as oc_width(). */
ORVANE_DESKTOP_CAMERA_API int oc_height(void);

/*
 * The size in bytes that oc_read() demands of its buffer, at most 1 GiB; 0 when no camera is open.
 * It can be more than the frame takes, for an SDK that needs more room. Does not touch the error
 * text.
 */
ORVANE_DESKTOP_CAMERA_API int oc_buffer_size(void);

/*
 * Asks for the next frame. The SDK writes straight into the buffer; nothing is copied or allocated.
 *
 * buffer        oc_buffer_size() bytes or more, not null
 * bufferLength  its size in bytes
 * timeoutMs     how long the SDK may wait, in milliseconds. Only ZWO ASI and Player One cameras
 *               wait; with the others poll again after a pause. Twice the exposure plus 500 ms is a
 *               good value.
 *
 * Returns the number of frame bytes: rows from the top without padding, 1 byte a pixel, 2 for 16
 * bit (little endian) and 3 for RGB (red, green, blue for ZWO ASI; as the SDK delivers them for
 * others). Returns 0 when no frame was ready: no error, try again; the buffer's content is
 * undefined. Returns -1 after a failure, with the error text
 *     "Camera closed or buffer too small"
 *     "<call>: <code>", "<library>: missing <function>"   as in oc_open()
 *     "QHY frame geometry changed", "ToupTek frame geometry changed"
 * The camera stays open and streaming after a failure; read again or close it.
 */
ORVANE_DESKTOP_CAMERA_API int oc_read(uint8_t* buffer, int bufferLength, int timeoutMs);

/*
 * Sets exposure, gain and offset, in this order, of the streaming camera. Arguments as in
 * oc_open().
 *
 * Returns 1, or 0 after a failure with the error text "Camera closed", "Exposure out of range",
 * "ToupTek gain out of range", "<setting>: <code>" or "<library>: missing <function>". The camera
 * stays open and streaming, and what was set before the failure stays in force.
 * A camera without a writable offset is no error for ZWO ASI and QHYCCD.
 */
ORVANE_DESKTOP_CAMERA_API int oc_apply(int64_t exposureUs, int gain, int offset);

/*
 * Returns the sensor's temperature in degrees Celsius, or a quiet NaN when no camera is open or the
 * SDK gives none. (QHYCCD cameras without a sensor may answer an error number such as
 * 4294967295.0.) Never touches the error text.
 */
ORVANE_DESKTOP_CAMERA_API double oc_temperature(void);

/*
 * Stops the stream and releases the camera; does nothing when none is open. Cannot fail and never
 * touches the error text. oc_width() and oc_height() keep their values.
 */
ORVANE_DESKTOP_CAMERA_API void oc_close(void);

/*
 * Returns the last failure's message, or "". Valid until the next call that may write it:
 * oc_scan(), oc_open(), oc_read(), oc_apply().
 */
ORVANE_DESKTOP_CAMERA_API const char* oc_error(void);

#ifdef __cplusplus
}
#endif

#endif
