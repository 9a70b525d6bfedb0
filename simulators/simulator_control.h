/*
 * The control interface of the simulated SDKs.
 *
 * Each simulated SDK (ASICamera2, PlayerOneCamera, qhyccd, toupcam) is a library under its maker's
 * own file name. Besides the maker's functions it exports the functions below, by which a test or
 * the author of a host chooses its cameras, makes calls fail, unplugs a camera, stops the clock,
 * and reads what was called. Every simulated SDK has a state of its own: look these functions up in
 * the library that you mean (GetProcAddress, dlsym).
 *
 * An untouched simulator shows a few believable cameras, a running clock and no log.
 *
 * The same commands can be given to a program that does not call these functions, in the
 * environment variable ORVANE_SIMULATOR; see sim_command().
 *
 * Threads: one caller at a time, like the SDK's own functions here.
 */
#ifndef ORVANE_SIMULATOR_CONTROL_H
#define ORVANE_SIMULATOR_CONTROL_H

#include <stdint.h> /* NOLINT(modernize-deprecated-headers): C programs read this file too */

#if defined(_WIN32)
#  if defined(ORVANE_SIMULATOR_BUILDING)
#    define ORVANE_SIMULATOR_API __declspec(dllexport)
#  else
#    define ORVANE_SIMULATOR_API
#  endif
#else
#  define ORVANE_SIMULATOR_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/*
 * One simulated camera. Numbers that the maker's SDK reports are handed on as they stand here, in
 * the maker's own codes, also when they make no sense; so a test can describe a camera that lies.
 */
typedef struct SimCamera {
  /* UTF-8, copied into the maker's field; one that fills the field gets no NUL. ToupTek on
   * Windows: converted to UTF-16; the bytes ED A0 80 to ED BF BF give the lone surrogate that
   * they would stand for. */
  char name[256];
  char key[256]; /* QHYCCD and ToupTek: the id string, likewise; ignored by the others */
  int32_t id;    /* ZWO and Player One: the camera id; ignored by the others */
  int32_t width; /* sensor, pixels */
  int32_t height;
  double pixelSizeUm;
  int32_t bitDepth; /* of the converter, 8 to 16 */
  int32_t isColor;
  int32_t mosaic; /* the maker's own mosaic code (ToupTek: the four-character code of frames
                   * as they come unless the upside-down option is changed); a colour camera
                   * with a code that is none delivers RGGB */
  int32_t isCooled;
  int32_t isUsb3Camera;
  int32_t isUsb3Host;
  int32_t bins[16];   /* in the maker's order, as reported, 0 ends */
  int32_t formats[8]; /* the maker's format codes, as reported, -1 ends; QHYCCD and ToupTek:
                       * unused */
  double gainMin, gainMax;
  double exposureMinUs, exposureMaxUs;
  double offsetMin, offsetMax; /* no offset control when the maximum is below the minimum */
  int32_t hasTemperature;
  int32_t isBusy; /* opened by another program: cannot be opened here */
} SimCamera;

/* What must never happen, counted since the last sim_reset(), and what is open now. */
typedef struct SimInvariants {
  int32_t devicesOpen;       /* now */
  int32_t streamsRunning;    /* now */
  int32_t callsOnClosed;     /* calls on an id or handle that was not open, closing aside */
  int32_t stopsWithoutStart; /* stops of an open device whose stream was not running */
  int32_t shortBuffers;      /* frame calls whose buffer was too small; nothing was written */
  int32_t writesPastBuffer;  /* frame calls for which the simulator wrote past the stated length:
                              * QHYCCD, when a frame is larger than GetQHYCCDMemLength last said;
                              * 0 for the others, which never write past a length */
  int32_t exceptionsAlive;   /* objects of sim_throw() that have not been destroyed; negative when
                              * one was destroyed twice. Counted since the SDK was loaded */
} SimInvariants;

/* What sim_throw() throws. On Windows the exception is always one of Microsoft's compiler, with
 * which the makers build their SDKs. */
enum {
  SIM_THROW_STANDARD = 0, /* an object that derives from std::runtime_error */
  SIM_THROW_NUMBER = 1,   /* the int 7 */
  SIM_THROW_OBJECT = 2    /* an object of a class that derives from nothing */
};

/* Everything as it is when the library has just been loaded: default cameras, running clock, no
 * faults, no log, seed 1. Open devices are forgotten. Commands in the environment variable are not
 * carried out again. */
ORVANE_SIMULATOR_API void sim_reset(void);

/* The cameras that the SDK reports from now on, in this order; at most 256. Open devices are
 * forgotten. Returns the number taken. */
ORVANE_SIMULATOR_API int32_t sim_set_cameras(const SimCamera* cameras, int32_t count);

/* Reads camera `index` of the present list; returns 1, or 0 when there is none. */
ORVANE_SIMULATOR_API int32_t sim_get_camera(int32_t index, SimCamera* camera);

/* Plugs camera `index` out (0) or in again (1). An unplugged camera disappears from the
 * enumeration, and its open device answers as the maker's does; plugged in again, the camera must
 * be closed and opened before it works. */
ORVANE_SIMULATOR_API void sim_set_plugged(int32_t index, int32_t plugged);

/* Forces the result of the calls of a maker's function: call number `nth` from now (1 is the next
 * one), and `times` calls from there on (-1: all). A forced call does nothing else: it writes no
 * output and changes no state. `result` is the returned number; for a function that returns a
 * handle 0 is a null handle. Several may be in force; the first that fits counts. */
ORVANE_SIMULATOR_API void sim_force_result(const char* function, int32_t nth, int32_t times,
                                           int64_t result);

/* Lets calls of a maker's function throw in place of doing anything; `nth` and `times` as above.
 * `text` is what a standard exception's what() returns; the pointer is handed on as it is, so it
 * must stay valid, and a null or wild one is one that a lying SDK would give. */
ORVANE_SIMULATOR_API void sim_throw(const char* function, int32_t nth, int32_t times, int32_t kind,
                                    const char* text);

/* Forces one output of a call that is otherwise carried out: `output` is the parameter's name, or
 * for structures the field's, or "result" for the returned number itself, as they stand in the
 * declarations in src/vendors/sdk/. Integers are cut to the output's width. `nth` and `times` as
 * above. Text and lists in structures are not forced; SimCamera sets them. Toupcam_EnumV2 has the
 * outputs "flag", "xpixsz", "ypixsz", "width" and "height", for all entries alike, and "model",
 * which makes the model pointer of entry number `value` null. */
ORVANE_SIMULATOR_API void sim_force_output(const char* function, const char* output, int32_t nth,
                                           int32_t times, double value);

/* Forgets all forced results, outputs and exceptions. */
ORVANE_SIMULATOR_API void sim_clear_faults(void);

/* Seeds the scene and the sensor noise. A frame's content follows from the seed, or the recording
 * that is played, the camera, the settings and the frame's number since the stream's start, and
 * from nothing else. */
ORVANE_SIMULATOR_API void sim_set_seed(uint64_t seed);

/* Lets the cameras see a recording, a SER file of this name in UTF-8, in place of the synthetic
 * scene; null brings that back. Frame number n of a stream shows frame n of the recording, which
 * begins anew behind its last one. Returns 1, or 0 when the file cannot be opened or is no
 * recording of mosaic, mono or three-colour frames: the reason is then told on the standard error
 * output, and everything stays as it was.
 *
 * The recording goes through the camera's region, binning and formats, and colour and mono, mosaics
 * and bit depths are converted into each other. With an exposure of 20 ms, the middle of the gain
 * range and offset 0, raw frames of a camera whose mosaic and bit depth are the recording's hold
 * its samples byte by byte (cameras with their samples at the top of 16 bits: also those of a
 * recording that states 16 bits); other settings scale them as they would light. No noise is added:
 * the recording has its own. One that is smaller than the sensor lies at its top left corner, and
 * the rest is dark; of a larger one the sensor sees the middle.
 *
 * A header is believed as far as the file bears it out: a recording that was broken off plays the
 * frames that are there. */
ORVANE_SIMULATOR_API int32_t sim_play_recording(const char* serPath);

/* Stops the clock (1) or lets it run (0). While it is stopped, a waiting call moves it forward by
 * what it would have waited and returns at once; nothing else moves it but sim_advance_clock(). */
ORVANE_SIMULATOR_API void sim_stop_clock(int32_t stopped);

/* Moves the clock forward, whether it runs or not. */
ORVANE_SIMULATOR_API void sim_advance_clock(int64_t microseconds);

/* Writes frame number `frame` (0 is the first since the stream's start) of the camera that is
 * streaming, with its present settings, exactly as the SDK would deliver it. Returns the number of
 * bytes, or 0 when no camera streams or the buffer is too small. */
ORVANE_SIMULATOR_API int32_t sim_render_frame(int32_t frame, uint8_t* buffer, int32_t bufferLength);

/* Switches the call log on (1) or off (0); it starts off. */
ORVANE_SIMULATOR_API void sim_log_enable(int32_t enabled);

/* The log: one line a call, in order, "Function(arguments) = result\n"; outputs that the call wrote
 * stand after "-> " behind the inputs, for example
 *     ASIOpenCamera(0) = 0
 *     ASIGetROIFormat(0 -> 640, 480, 1, 0) = 0
 * A call that threw ends in ") threw". One that sim_force_result() answered has no outputs, a
 * function without a result no
 * "= result". Text stands in quotation marks; pointers to buffers are written as "buffer" or
 * "null", handles as "h1", "h2", ... in the order of their opening, or "h?" when they are none,
 * structures as the fields that matter:
 *     ASIGetCameraProperty(0 -> "ZWO ASI120MC-S" id 0) = 0
 *     ASIGetControlCaps(0, 2 -> type 5 [0, 20] writable 1) = 0
 *     POAGetConfigAttributesByConfigID(0, 1 -> [0, 600] writable 1) = 0
 *     Toupcam_EnumV2(buffer -> "G3CMOS06300KPA", "GPCMOS01200KPF") = 2
 * Valid until the next call into this library. */
ORVANE_SIMULATOR_API const char* sim_log(void);

/* Empties the log. */
ORVANE_SIMULATOR_API void sim_log_clear(void);

/* Fills in the invariants. */
ORVANE_SIMULATOR_API void sim_invariants(SimInvariants* invariants);

/* Carries out commands given as text, separated by ";" or line ends:
 *     sdk NAME                    what follows concerns only the SDK of this base name (*: all)
 *     clock stopped | running
 *     seed N
 *     scene FILE                  sim_play_recording()
 *     log FILE                    switches the log on and also appends every line to FILE at once
 *     force FUNCTION NTH TIMES RESULT
 *     output FUNCTION OUTPUT NTH TIMES VALUE
 *     throw FUNCTION NTH TIMES standard | number | object [TEXT]
 *     unplug INDEX FUNCTION NTH   unplugs camera INDEX just before that call of FUNCTION
 *                                 (NTH 0: now)
 *     plug INDEX                  plugs it in again, now
 *     plug INDEX FUNCTION NTH     or just before that call
 * Files are named in UTF-8, and without ";". Returns 1, or 0 when a command was not understood or
 * its file cannot be used (it and those after it are not carried out). The environment variable
 * ORVANE_SIMULATOR is carried out in this way when the SDK is loaded; a command in it that is not
 * carried out is reported on the standard error output. */
ORVANE_SIMULATOR_API int32_t sim_command(const char* commands);

#ifdef __cplusplus
}
#endif

#endif
