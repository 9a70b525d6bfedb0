/*
 * The control interface of the simulated SDKs.
 *
 * Each simulated SDK (ASICamera2, PlayerOneCamera, qhyccd, toupcam) is a library with its maker's
 * own file name. Besides the maker's functions it exports the functions below. With them, a test or
 * the author of a host chooses the cameras, makes calls fail, unplugs a camera, stops the clock,
 * and reads the log of calls. Every simulated SDK has its own state: look up these functions in the
 * library that you want to control (GetProcAddress, dlsym).
 *
 * By default a simulator has a few cameras, a running clock and no log. They and many others are
 * lines of simulators/cameras.csv: models as the makers' own SDKs describe them.
 *
 * For a program that does not call these functions, the environment variable ORVANE_SIMULATOR can
 * hold commands; see sim_command().
 *
 * Threads: one caller at a time, as for the simulated SDK's other functions.
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
 * One simulated camera. The simulated SDK reports these numbers unchanged, in the maker's own
 * codes, even if they make no sense, so that a test can describe an adversarial SDK.
 */
typedef struct SimCamera {
  /* UTF-8, copied into the maker's field; a name that fills the field gets no NUL. ToupTek on
   * Windows: converted to UTF-16; the bytes ED A0 80 to ED BF BF give the lone surrogate that
   * they encode. */
  char name[256];
  char key[256]; /* QHYCCD and ToupTek: the id string, like name; ignored by the others */
  int32_t id;    /* ZWO and Player One: the camera id; ignored by the others */
  int32_t width; /* sensor, pixels */
  int32_t height;
  double pixelSizeUm;
  int32_t bitDepth; /* of a frame's samples, 8 to 16 */
  int32_t isColor;
  /* The maker's own code. ToupTek: the four-character code of frames with the default of the
   * upside-down option. A colour camera with an unknown code delivers RGGB. */
  int32_t bayerPattern;
  int32_t isCooled;
  int32_t isUsb3Camera;
  int32_t isUsb3Host;
  int32_t bins[16];   /* in the maker's order, as reported, 0 ends */
  int32_t formats[8]; /* the maker's format codes, as reported, -1 ends; QHYCCD and ToupTek:
                       * unused */
  double gainMin, gainMax;
  double exposureMinUs, exposureMaxUs;
  double offsetMin, offsetMax; /* no offset control if the maximum is below the minimum */
  int32_t hasTemperature;
  int32_t isBusy; /* opened by another program: cannot be opened here */
  /* QHYCCD: the depth that the chip information reports; 0: bitDepth. Many models report that of
   * the transfer. Ignored by the others. */
  int32_t reportedBitDepth;
  int32_t refusesOffset; /* ZWO: setting the offset fails with 16; ignored by the others */
  /* QHYCCD: bit n is set if SetQHYCCDBitsMode fails with bin n; ignored by the others. If
   * acceptsBitsAfterSize is not 0, it fails only until SetQHYCCDResolution is called. */
  uint32_t refusesBitsAtBins;
  int32_t acceptsBitsAfterSize;
} SimCamera;

/* Errors of the caller, counted since the last sim_reset(), and what is open now. */
typedef struct SimInvariants {
  int32_t devicesOpen;       /* now */
  int32_t streamsRunning;    /* now */
  int32_t callsOnClosed;     /* calls, except closes, on an id or handle that was not open */
  int32_t stopsWithoutStart; /* stops of an open device whose stream was not running */
  int32_t shortBuffers;      /* frame calls whose buffer was too small; nothing was written */
  int32_t writesPastBuffer;  /* frame calls in which the simulator wrote past the stated length:
                              * QHYCCD, if a frame is larger than the last result of
                              * GetQHYCCDMemLength; always 0 for the others */
  int32_t exceptionsAlive;   /* objects of sim_throw() that have not been destroyed; negative if
                              * one was destroyed twice. Counted since the SDK was loaded */
} SimInvariants;

/* What sim_throw() throws. On Windows the exception is always that of Microsoft's compiler, because
 * the makers build their SDKs with it. */
enum {
  SIM_THROW_STANDARD = 0, /* an object that derives from std::runtime_error */
  SIM_THROW_NUMBER = 1,   /* the int 7 */
  SIM_THROW_OBJECT = 2    /* an object of a class that derives from nothing */
};

/* Restores the state of a library that has just been loaded: default cameras, running clock, no
 * faults, no log, seed 1. Open devices are forgotten. Commands in the environment variable are not
 * run again. */
ORVANE_SIMULATOR_API void sim_reset(void);

/* Sets the cameras that the SDK reports from now on, in this order; at most 256. Open devices are
 * forgotten. Returns the number of cameras that were set. */
ORVANE_SIMULATOR_API int32_t sim_set_cameras(const SimCamera* cameras, int32_t count);

/* Reads camera `index` of the present list; returns 1, or 0 if there is none. */
ORVANE_SIMULATOR_API int32_t sim_get_camera(int32_t index, SimCamera* camera);

/* Fills in the model of this name, for sim_set_cameras(). `name` is one of this SDK in
 * simulators/cameras.csv. Returns 1, or 0 if the SDK has no such model. The id is 0, and the key
 * depends on the name only: several cameras of one model need other ones. */
ORVANE_SIMULATOR_API int32_t sim_camera_by_name(const char* name, SimCamera* camera);

/* The models of this SDK, one per line: the name, a tab, the sensor's size ("6248 x 4176"), a tab,
 * and what is special ("mono, cooled"). */
ORVANE_SIMULATOR_API const char* sim_cabinet(void);

enum { SIM_UNPLUGGED = 0, SIM_PLUGGED = 1, SIM_UNPLUGGED_SILENTLY = 2 };

/* Unplugs camera `index` (SIM_UNPLUGGED) or plugs it in again (SIM_PLUGGED). An unplugged camera
 * disappears from the enumeration, and its open device fails as the maker describes. With
 * SIM_UNPLUGGED_SILENTLY the open device behaves as real ones mostly do: its calls succeed, but no
 * frame arrives, and the temperature is -300 (Player One) or -2176 (QHYCCD). After it is plugged
 * in again, the camera must be closed and opened before it works. */
ORVANE_SIMULATOR_API void sim_set_plugged(int32_t index, int32_t plugged);

/* Forces the result of calls of a maker's function: `times` calls (-1: all) from call number `nth`
 * on (1 is the next call). A forced call does nothing else: it writes no output and changes no
 * state. `result` is the returned number; for a function that returns a handle, 0 is a null handle.
 * If several forced results apply to a call, the first one is used. */
ORVANE_SIMULATOR_API void sim_force_result(const char* function, int32_t nth, int32_t times,
                                           int64_t result);

/* Makes calls of a maker's function throw and do nothing else; `nth` and `times` as above. A
 * standard exception's what() returns the pointer `text` unchanged, so it must stay valid. Pass a
 * null or wild pointer to simulate an adversarial SDK. */
ORVANE_SIMULATOR_API void sim_throw(const char* function, int32_t nth, int32_t times, int32_t kind,
                                    const char* text);

/* Forces one output of a call that otherwise runs normally. `output` is the name of the parameter
 * or, for structures, of the field, as declared in src/vendors/sdk/; "result" is the returned
 * number. Integers are truncated to the output's width. `nth` and `times` as above. Text and lists
 * in structures cannot be forced; SimCamera sets them. Toupcam_EnumV2 has the outputs "flag",
 * "xpixsz", "ypixsz", "width" and "height", which apply to all entries, and "model", which makes
 * the model pointer of entry number `value` null. */
ORVANE_SIMULATOR_API void sim_force_output(const char* function, const char* output, int32_t nth,
                                           int32_t times, double value);

/* Removes all forced results, outputs and exceptions, and what the commands "damage", "hang" and
 * "crash" have set. */
ORVANE_SIMULATOR_API void sim_clear_faults(void);

/* Seeds the scene and the sensor noise. A frame's content depends only on the seed or the played
 * recording, the camera, the settings, and the frame's number since the stream's start. */
ORVANE_SIMULATOR_API void sim_set_seed(uint64_t seed);

/* Shows the cameras a recording, a SER file of this name in UTF-8, instead of the synthetic scene;
 * null restores the scene. Frame number n of a stream shows frame n of the recording, which repeats
 * after its last frame. Returns 1, or 0 if the file cannot be opened or is not a recording of Bayer
 * pattern, mono or three-colour frames. The reason is then written to the standard error output,
 * and nothing changes.
 *
 * The camera's region, binning and formats apply to the recording. Colour, mono, Bayer patterns and
 * bit depths are converted into each other. With an exposure of 20 ms, the middle of the gain range
 * and offset 0, raw frames of a camera with the recording's Bayer pattern and bit depth hold the
 * recording's bytes (also if the recording states 16 bits and the camera's samples are at the top
 * of 16 bits). Other settings scale the samples as they would scale light. No noise is added: the
 * recording has its own. A recording that is smaller than the sensor fills its top left corner,
 * where the library's regions begin, and the rest is dark. A larger one is cropped to its middle.
 *
 * The header is checked against the file's size: an interrupted recording plays the frames that it
 * contains. */
ORVANE_SIMULATOR_API int32_t sim_play_recording(const char* serPath);

/* Stops the clock (1) or lets it run (0). While the clock is stopped, a call that would wait moves
 * it forward by that time and returns at once. Otherwise only sim_advance_clock() moves it. */
ORVANE_SIMULATOR_API void sim_stop_clock(int32_t stopped);

/* Moves the clock forward, whether it runs or not. */
ORVANE_SIMULATOR_API void sim_advance_clock(int64_t microseconds);

/* Writes frame number `frame` (0 is the first since the stream's start) of the streaming camera,
 * with its present settings, exactly as the SDK would deliver it. Returns the number of bytes, or 0
 * if no camera streams or the buffer is too small. */
ORVANE_SIMULATOR_API int32_t sim_render_frame(int32_t frame, uint8_t* buffer, int32_t bufferLength);

/* Switches the call log on (1) or off (0); it starts off. */
ORVANE_SIMULATOR_API void sim_log_enable(int32_t enabled);

/* The log: one line per call, in order, "Function(arguments) = result\n". Outputs that the call
 * wrote follow the inputs after "-> ", for example
 *     ASIOpenCamera(0) = 0
 *     ASIGetROIFormat(0 -> 640, 480, 1, 0) = 0
 * A call that threw ends in ") threw", one that hangs in ") hangs", and one that ends the process
 * in ") crashes". A call that sim_force_result() answered has no outputs. A
 * function without a result has no "= result". Text is in quotation marks. Pointers to buffers are
 * written as "buffer" or "null", handles as "h1", "h2", ... in the order of their opening, or "h?"
 * if they are unknown, structures as their important fields:
 *     ASIGetCameraProperty(0 -> "ZWO ASI120MC-S" id 0) = 0
 *     ASIGetControlCaps(0, 2 -> type 5 [0, 20] writable 1) = 0
 *     POAGetConfigAttributesByConfigID(0, 1 -> [0, 600] writable 1) = 0
 *     Toupcam_EnumV2(buffer -> "SkyRaiderDS6.3", "SkyRaider2.3(USB2.0)") = 2
 * Valid until the next call into this library. */
ORVANE_SIMULATOR_API const char* sim_log(void);

/* Empties the log. */
ORVANE_SIMULATOR_API void sim_log_clear(void);

/* Fills in the invariants. */
ORVANE_SIMULATOR_API void sim_invariants(SimInvariants* invariants);

/* Runs the text commands that docs/simulators.md lists, separated by ";" or line ends. Returns 1,
 * or 0 if a command is wrong: it is then told on the standard error output, with the reason, and it
 * and all after it are not run. When the SDK is loaded, it runs the commands in the environment
 * variable ORVANE_SIMULATOR. A wrong one stops the SDK, as that document describes. */
ORVANE_SIMULATOR_API int32_t sim_command(const char* commands);

#ifdef __cplusplus
}
#endif

#endif
