// The library's messages with their causes and cures.
#include "session/causes_table.hpp"

#include <array>

namespace orvane::host {

namespace {

using Text = std::string_view;

// Causes of several messages.
constexpr Text unplugged = "The camera was unplugged or has stopped answering.";
constexpr Text noAnswer = "The camera does not answer.";
constexpr Text unpluggedOrInUse = "The camera was unplugged, or another program has it open.";
constexpr Text regionRefused =
    "The SDK did not accept the place of the region at the top left corner of the sensor.";
constexpr Text noBin = "The camera did not accept the bin.";
constexpr Text noSize = "The camera did not accept the size.";
constexpr Text noExposure = "The camera did not accept the exposure.";
constexpr Text noGain = "The camera did not accept the gain.";
constexpr Text noOffset = "The camera did not accept the offset.";
constexpr Text noStart = "The camera does not start to send frames.";
constexpr Text noStreamMode = "The camera does not accept the live mode, or does not answer.";
constexpr Text exposureOutOfRange = "The exposure is outside the camera's range.";
constexpr Text gainOutOfRange = "The gain is outside the camera's range.";
constexpr Text frameLost = "A frame was ready, but could not be fetched.";
constexpr Text otherFrame = "The camera sent a frame of another size than was set.";

// Cures of several messages.
constexpr Text checkCable = "Check its cable, then scan again.";
constexpr Text checkAndOpen = "Check its cable, then scan and open it again.";
constexpr Text replug =
    "Unplug it, plug it in again and scan. If that does not help, use another USB port or cable, "
    "or a powered hub.";
constexpr Text closeOthers =
    "Close other programs that use the camera, check its cable, then scan again.";
constexpr Text closeAndReplug =
    "Close other programs that use the camera. Unplug it, plug it in again and scan.";
constexpr Text reopen =
    "Open the camera again. If the message returns, use another USB port or cable, or a powered "
    "hub.";
constexpr Text otherSize = "Use another size; try the full size first.";
constexpr Text otherBin = "Use another bin.";
constexpr Text otherFormat = "Use another format.";
constexpr Text otherExposure = "Use an exposure within the camera's range.";
constexpr Text otherGain = "Use a gain within the camera's range.";
constexpr Text smallerOffset = "Use a smaller offset; try 0 first.";
constexpr Text checkDriver =
    "Check that the maker's driver is installed, unplug the cameras, plug them in again and scan.";
constexpr Text otherCamera = "Use another camera: this program cannot use this model.";

// Notes for authors of programs.
constexpr Text listedBins = "`bins` of `oc_info()` lists them.";
constexpr Text listedFormats = "`formats` of `oc_info()` lists them.";
constexpr Text exposureLimit = "`maxExposureUs` of `oc_info()` is the limit.";
constexpr Text gainLimits = "`minGain` and `maxGain` of `oc_info()` are the limits.";
constexpr Text readAgain = "Read again; if that fails, too, close and open.";
constexpr Text maybeSingle =
    "It may be a single frame: read again. If that fails, too, close and open.";
constexpr Text closeFirst = "Close, scan and open.";
constexpr Text hopelessModels = "[Such models](makers.md#models-that-cannot-be-opened).";

constexpr Text inSettings = "oc_open, oc_apply";

constexpr std::array everyMaker{
    MessageRow{"Stop the preview before rescanning", "oc_scan",
               "A camera is open, so the program cannot look for cameras.",
               "Stop the preview or the recording, then scan again.", "Call `oc_close()` first."},
    MessageRow{"Camera not found; rescan", "oc_open",
               "The camera is not among those that the last scan found.",
               "Check its cable, scan again and choose it from the new list.",
               "Use an index from 0 to one below the result of `oc_scan()`."},
    MessageRow{"Unsupported bin or format", "oc_open",
               "The camera does not offer this bin or this format.",
               "Use a bin and a format that the camera offers.",
               "`bins` and `formats` of `oc_info()` list them."},
    MessageRow{"Invalid capture dimensions", "oc_open",
               "Width or height is below 1 pixel, or larger than the sensor.",
               "Use a width and a height within the sensor's size.",
               "The limits are `maxWidth` and `maxHeight` of `oc_info()`, with every bin."},
    MessageRow{"ROI is too small for binning", "oc_open",
               "With this bin, a frame of this size would have no pixels left.",
               "Use a larger size or a smaller bin.",
               "ZWO ASI frames have at least 8 x 2 pixels after binning."},
    MessageRow{
        "Invalid frame buffer size", "oc_open",
        "According to the maker's SDK, a frame has no bytes, or more than 1 GiB.",
        "Use a smaller size, a larger bin or a format of 8 bits. If that does not help, unplug "
        "the camera, plug it in again and scan."},
    MessageRow{"Exposure out of range", inSettings,
               "The exposure is below 1 microsecond or above 2147483647 microseconds (35 minutes).",
               "Use an exposure in this range."},
    MessageRow{"Camera closed", "oc_apply",
               "The camera is not open, so its settings cannot be changed.",
               "Open the camera again.", "Call `oc_open()` first."},
    MessageRow{"Camera closed or buffer too small", "oc_read",
               "The camera is not open, or the program's memory for a frame is too small.",
               "Open the camera again. If that does not help, restart the program.",
               "Call `oc_open()` first. The buffer must not be null or shorter than "
               "`oc_buffer_size()`; ask for the size after every `oc_open()`."},
};

constexpr std::array lackingFunctions{
    MessageRow{"<library>: missing <function>", "oc_scan, oc_open, oc_read, oc_apply",
               "The file of this name is not the maker's SDK, or it is an old version.",
               "Get the maker's current SDK library, put it in place of this file and restart the "
               "program.",
               "[Which version lacks what](makers.md#versions-of-the-sdks)."},
};

constexpr std::array asiMessages{
    MessageRow{
        "ASIGetCameraProperty: <code>", "oc_scan",
        "A camera was unplugged during the scan, or does not answer. The cameras after it are "
        "missing.",
        "Check its cable and scan again. If the message returns, unplug this camera to use the "
        "others."},
    MessageRow{"ASIOpenCamera: <code>", "oc_open", unpluggedOrInUse, closeOthers},
    MessageRow{"ASIOpenCamera: 5", "", unplugged, checkCable},
    MessageRow{"ASIInitCamera: <code>", "oc_open", noAnswer, replug},
    MessageRow{"ASISetROIFormat: <code>", "oc_open",
               "The camera did not accept the size or the format.",
               "Use another size or format; try the full size first."},
    MessageRow{"ASISetROIFormat: 8", "", "This model does not support the size.",
               "Use another size; try the full size first. For an ASI120 for USB 2, width x height "
               "must be a multiple of 1024."},
    MessageRow{"ASISetROIFormat: 9", "", "This model does not support the format.", otherFormat,
               listedFormats},
    MessageRow{"ASISetStartPos: <code>", "oc_open", regionRefused, otherSize},
    MessageRow{"ASIGetROIFormat: <code>", "oc_open", unplugged, checkCable},
    MessageRow{"ASI exposure: <code>", inSettings, noExposure, checkAndOpen,
               "The SDK clamps values out of range, so that is not the reason."},
    MessageRow{"ASI gain: <code>", inSettings, noGain, checkAndOpen,
               "The SDK clamps values out of range, so that is not the reason."},
    MessageRow{"ASI controls: <code>", inSettings,
               "The SDK did not report how many controls the camera has.", checkAndOpen,
               "The library searches the controls for the offset."},
    MessageRow{"ASI control caps: <code>", inSettings,
               "The SDK did not describe one of the camera's controls.", checkAndOpen,
               "The library searches the controls for the offset."},
    MessageRow{"ASI offset: <code>", inSettings, noOffset, checkAndOpen,
               "The SDK clamps values out of range, so that is not the reason."},
    MessageRow{
        "ASI offset: 16", "",
        "The camera did not accept the offset. An ASI220MM or ASI220MC accepts none at all.",
        "Check its cable, then scan and open it again. An ASI220MM or ASI220MC cannot be used "
        "with this program.",
        hopelessModels},
    MessageRow{"ASIStartVideoCapture: <code>", "oc_open", noStart, closeAndReplug},
    MessageRow{"ASIStartVideoCapture: 15", "",
               "The camera is still busy with an exposure, perhaps for another program.",
               closeAndReplug},
    MessageRow{"ASIGetVideoData: <code>", "oc_read", "A frame could not be fetched.", reopen,
               readAgain},
    MessageRow{"ASIGetVideoData: 5", "", unplugged, checkCable,
               "Most unplugged cameras give 0 and no message. Close, scan and open."},
};

constexpr std::array playerOneMessages{
    MessageRow{"POAGetCameraProperties: <code>", "oc_scan",
               "A camera was unplugged during the scan, or does not answer.", checkCable},
    MessageRow{"POAOpenCamera: <code>", "oc_open", unpluggedOrInUse, closeOthers},
    MessageRow{"POAOpenCamera: 6", "", unplugged, checkCable},
    MessageRow{"POAOpenCamera: 16", "",
               "The camera could not be opened, for example because another program has it open.",
               closeOthers},
    MessageRow{"POAInitCamera: <code>", "oc_open", noAnswer, replug},
    MessageRow{"POASetImageBin: <code>", "oc_open", noBin, otherBin, listedBins},
    MessageRow{"POASetImageFormat: <code>", "oc_open", "The camera did not accept the format.",
               otherFormat, listedFormats},
    MessageRow{"POASetImageSize: <code>", "oc_open", noSize, otherSize},
    MessageRow{"POASetImageStartPos: <code>", "oc_open", regionRefused, otherSize},
    MessageRow{"POAGetImageSize: <code>", "oc_open", unplugged, checkCable},
    MessageRow{"POA exposure: <code>", inSettings, noExposure, otherExposure, exposureLimit},
    MessageRow{"POA exposure: 7", "", exposureOutOfRange,
               "Use an exposure within the camera's range; the shortest is 10 microseconds.",
               exposureLimit},
    MessageRow{"POA gain: <code>", inSettings, noGain, otherGain, gainLimits},
    MessageRow{"POA gain: 7", "", gainOutOfRange, otherGain, gainLimits},
    MessageRow{"POA offset: <code>", inSettings, noOffset, smallerOffset},
    MessageRow{"POA offset: 3", "", "The camera has no offset, which this program always sets.",
               otherCamera},
    MessageRow{"POA offset: 7", "", "The offset is outside the camera's range.", smallerOffset},
    MessageRow{"POAStartExposure: <code>", "oc_open", noStart, closeAndReplug},
    MessageRow{"POAStartExposure: 11", "",
               "The camera is still busy with an exposure, perhaps for another program.",
               closeAndReplug},
    MessageRow{"POAImageReady: <code>", "oc_read", noAnswer, replug, closeFirst},
    MessageRow{"POAImageReady: 6", "", unplugged, checkCable,
               "Most unplugged cameras give 0 and no message. Close, scan and open."},
    MessageRow{"POAImageReady: 16", "", "The camera does not answer; perhaps it was unplugged.",
               checkCable, closeFirst},
    MessageRow{"POAGetImageData: <code>", "oc_read", frameLost, reopen, readAgain},
    MessageRow{
        "POAGetImageData: 10", "", "The SDK needs more memory for a frame than it has reported.",
        "Open the camera again. If that does not help, use another size or a newer SDK from the "
        "maker.",
        readAgain},
};

constexpr std::array qhyMessages{
    MessageRow{"InitQHYCCDResource: <code>", "oc_scan", "The maker's SDK could not be started.",
               checkDriver},
    MessageRow{"QHY scan failed", "oc_scan",
               "The SDK could not search for cameras, or reports more than 128.", checkDriver},
    MessageRow{"GetQHYCCDId: <code>", "oc_scan", "A camera was unplugged during the scan.",
               checkCable},
    MessageRow{"SetQHYCCDStreamMode: <code>", "oc_scan", noStreamMode, replug},
    MessageRow{"InitQHYCCD: <code>", "oc_scan, oc_open", noAnswer, replug},
    MessageRow{"GetQHYCCDChipInfo: <code>", "oc_scan",
               "The camera does not report the size of its sensor.", replug},
    MessageRow{"OpenQHYCCD failed", "oc_open", unpluggedOrInUse, closeOthers},
    MessageRow{"QHY stream mode: <code>", "oc_open", noStreamMode, replug},
    MessageRow{"QHY binning: <code>", "oc_open", noBin, otherBin, listedBins},
    MessageRow{"QHY bit depth: <code>", "oc_open", "The camera did not accept 8 or 16 bits.",
               otherFormat, listedFormats},
    MessageRow{
        "QHY bit depth: 4294967295", "",
        "The camera did not accept 8 or 16 bits. Some models refuse both: QHY174M, QHY178M, "
        "QHY5III174M and QHY5III178M at bin 2, IMG0H-M and QHY16000-M at bin 1, QHY5III236C "
        "and QHY7-M always.",
        "Use another format or bin. A QHY5III236C or QHY7-M cannot be used with this program.",
        hopelessModels},
    MessageRow{"QHY ROI: <code>", "oc_open", noSize, otherSize},
    MessageRow{"QHY exposure: <code>", inSettings, noExposure, otherExposure, exposureLimit},
    MessageRow{"QHY gain: <code>", inSettings, noGain, otherGain, gainLimits},
    MessageRow{"QHY offset: <code>", inSettings, noOffset, smallerOffset},
    MessageRow{"BeginQHYCCDLive: <code>", "oc_open", noStart, closeAndReplug},
    MessageRow{"QHY frame geometry changed", "oc_read",
               "The camera sent a frame of another size or depth than was set, or in colour.",
               reopen, maybeSingle},
};

constexpr std::array toupTekMessages{
    MessageRow{"Toupcam_get_RawFormat: <code>", "oc_scan",
               "The camera does not report its Bayer pattern.", replug},
    MessageRow{
        "Unsupported ToupTek raw mosaic", "oc_scan",
        "A colour camera sends raw frames without a Bayer pattern.",
        "Use another camera: this program cannot use this model. Unplug it to use the others."},
    MessageRow{"Toupcam_Open failed", "oc_open",
               "The camera was unplugged, was plugged in again, or another program has it open.",
               "Close other programs that use the camera, then scan again."},
    MessageRow{"ToupTek RAW: <code>", "oc_open", "The camera did not accept the raw mode.", replug},
    MessageRow{"ToupTek depth: <code>", "oc_open",
               "The camera did not accept 8 bits or its full depth.", otherFormat, listedFormats},
    MessageRow{"ToupTek depth: -2147467263", "",
               "The model has 8 bits and refuses to be set to any depth, which this program always "
               "does.",
               otherCamera, hopelessModels},
    MessageRow{"ToupTek ROI: <code>", "oc_open", noSize, otherSize},
    MessageRow{"ToupTek ROI: -2147024809", "", "Width or height is odd or too small.",
               "Use even numbers of 16 or more."},
    MessageRow{"ToupTek ROI: -2147467263", "",
               "The model cannot read a region of the sensor, not even the full one.", otherCamera,
               hopelessModels},
    MessageRow{"ToupTek size: <code>", "oc_open",
               "The camera does not report the size of its frames.", replug},
    MessageRow{"ToupTek manual exposure: <code>", inSettings,
               "Automatic exposure could not be switched off.", replug},
    MessageRow{"ToupTek exposure: <code>", inSettings, noExposure, checkAndOpen},
    MessageRow{"ToupTek exposure: -2147024809", "", exposureOutOfRange, otherExposure,
               exposureLimit},
    MessageRow{"ToupTek gain out of range", inSettings, "The gain is below 0 or above 65535.",
               "Use a gain within the camera's range; the lowest is 100.", gainLimits},
    MessageRow{"ToupTek gain: <code>", inSettings, noGain, checkAndOpen},
    MessageRow{"ToupTek gain: -2147024809", "", gainOutOfRange,
               "Use a gain within the camera's range; the lowest is 100.", gainLimits},
    MessageRow{"ToupTek black level: <code>", inSettings, noOffset, smallerOffset},
    MessageRow{"ToupTek black level: -2147024809", "", "The offset is too large for this format.",
               "Use an offset of at most 31 with 8 bits; more is possible with 16 bits.",
               "[The limits](makers.md#gain-exposure-and-black-level)."},
    MessageRow{"ToupTek black level: -2147467263", "",
               "The model has no offset, which this program always sets.", otherCamera,
               hopelessModels},
    MessageRow{"ToupTek start: <code>", "oc_open", noStart, closeAndReplug},
    MessageRow{"ToupTek start: -2147024726", "",
               "The camera is already sending frames, perhaps to another program.", closeAndReplug},
    MessageRow{"ToupTek pull frame: <code>", "oc_read", frameLost, reopen, readAgain},
    MessageRow{
        "ToupTek pull frame: -2147024865", "",
        "The cable or the power has a fault, or the camera was unplugged.",
        "Check cable and power, then scan again. If the message returns, use another USB port "
        "or cable, or a powered hub.",
        closeFirst},
    MessageRow{"ToupTek pull frame: -2147467259", "",
               "Old versions of the SDK report this while no frame is ready, newer ones when a "
               "frame could not be fetched.",
               "Get the maker's current SDK library and restart the program. With a current one, "
               "open the camera again.",
               "[No frame yet](makers.md#no-frame-yet)."},
    MessageRow{"ToupTek frame geometry changed", "oc_read", otherFrame, reopen, maybeSingle},
};

constexpr std::array outOfMemory{
    MessageRow{
        "std::bad_alloc", "oc_scan, oc_open, oc_read, oc_apply", "The program has no memory left.",
        "Close other programs, or use a smaller size or a larger bin.",
        "The text is the C++ library's; a build with another compiler may have another one."},
};

constexpr std::array cppHeader{
    MessageRow{
        "The camera has sent no frame for <number> waits of <number> ms.", "oc::CaptureThread",
        "The camera was unplugged or has stopped sending frames.",
        "Check its cable and power, then scan again. If the message returns, use another USB "
        "port or cable, or a powered hub.",
        "[Most unplugged cameras](guide.md#unplugging) fall silent. "
        "`CaptureOptions::silentWaits` is the number of waits."},
    MessageRow{"An SDK threw an exception of an unknown type.", "oc::CaptureThread",
               "The maker's SDK has failed without a reason.",
               "Restart the program. If the message returns, get the maker's current SDK library."},
    MessageRow{"No camera has been opened.", "oc::CaptureThread",
               "There is no camera that could be opened again.", "Choose a camera first.",
               "Call `open()` before `reopen()`."},
    MessageRow{"The description of camera <number> cannot be read: there is no usable \"<key>\".",
               "oc::scan, oc::CaptureThread",
               "The camera library is not of the same version as this program.",
               "Install the program again, together with its camera library."},
};

constexpr std::array asiCodes{
    ResultCode{1, "ASI_ERROR_INVALID_INDEX", "no camera at this place in the list"},
    ResultCode{2, "ASI_ERROR_INVALID_ID", "no camera with this id"},
    ResultCode{3, "ASI_ERROR_INVALID_CONTROL_TYPE", "the camera lacks this control"},
    ResultCode{4, "ASI_ERROR_CAMERA_CLOSED", "the camera is not open"},
    ResultCode{5, "ASI_ERROR_CAMERA_REMOVED", "the camera was unplugged"},
    ResultCode{6, "ASI_ERROR_INVALID_PATH", "file not found"},
    ResultCode{7, "ASI_ERROR_INVALID_FILEFORMAT", "wrong file"},
    ResultCode{8, "ASI_ERROR_INVALID_SIZE", "bad width or height"},
    ResultCode{9, "ASI_ERROR_INVALID_IMGTYPE", "format not supported"},
    ResultCode{10, "ASI_ERROR_OUTOF_BOUNDARY", "the region would leave the sensor"},
    ResultCode{11, "ASI_ERROR_TIMEOUT", "no frame in time", true, "`oc_read()` returns 0 for it"},
    ResultCode{12, "ASI_ERROR_INVALID_SEQUENCE", "stop the capture first", false},
    ResultCode{13, "ASI_ERROR_BUFFER_TOO_SMALL", "buffer too small"},
    ResultCode{14, "ASI_ERROR_VIDEO_MODE_ACTIVE", "a video is running"},
    ResultCode{15, "ASI_ERROR_EXPOSURE_IN_PROGRESS", "an exposure is running"},
    ResultCode{16, "ASI_ERROR_GENERAL_ERROR", "anything else", false},
    ResultCode{17, "ASI_ERROR_INVALID_MODE", "wrong camera mode"},
};

constexpr std::array playerOneCodes{
    ResultCode{1, "POA_ERROR_INVALID_INDEX", "no camera at this place in the list"},
    ResultCode{2, "POA_ERROR_INVALID_ID", "no camera with this id"},
    ResultCode{3, "POA_ERROR_INVALID_CONFIG", "the camera lacks this setting"},
    ResultCode{4, "POA_ERROR_INVALID_ARGU", "bad argument", false},
    ResultCode{5, "POA_ERROR_NOT_OPENED", "the camera is not open"},
    ResultCode{6, "POA_ERROR_DEVICE_NOT_FOUND", "the camera was unplugged"},
    ResultCode{7, "POA_ERROR_OUT_OF_LIMIT", "value out of range"},
    ResultCode{8, "POA_ERROR_EXPOSURE_FAILED", "exposure failed"},
    ResultCode{9, "POA_ERROR_TIMEOUT", "no frame in time", true, "`oc_read()` returns 0 for it"},
    ResultCode{10, "POA_ERROR_SIZE_LESS", "buffer too small"},
    ResultCode{11, "POA_ERROR_EXPOSING", "stop the exposure first", false},
    ResultCode{12, "POA_ERROR_POINTER", "null pointer", false},
    ResultCode{13, "POA_ERROR_CONF_CANNOT_WRITE", "the setting is read-only"},
    ResultCode{14, "POA_ERROR_CONF_CANNOT_READ", "the setting is write-only"},
    ResultCode{15, "POA_ERROR_ACCESS_DENIED", "access denied"},
    ResultCode{16, "POA_ERROR_OPERATION_FAILED", "operation failed, perhaps unplugged"},
    ResultCode{17, "POA_ERROR_MEMORY_FAILED", "out of memory"},
};

constexpr std::array qhyCodes{
    ResultCode{4294967295, "QHYCCD_ERROR", "any failure", false},
    ResultCode{4294967294, "QHYCCD_ERROR_IMAGESHIFT", "an image shift", false,
               "in the newest headers"},
    ResultCode{4294967293, "QHYCCD_ERROR_DEVICELOSE", "the camera was lost", true,
               "in the newest headers"},
};

constexpr std::array toupTekCodes{
    ResultCode{-2147418113, "E_UNEXPECTED", "not allowed now"},
    ResultCode{-2147467263, "E_NOTIMPL", "this model lacks the feature"},
    ResultCode{-2147467261, "E_POINTER", "null pointer", false},
    ResultCode{-2147467259, "E_FAIL", "general failure", false},
    ResultCode{-2147483638, "E_PENDING", "no frame now", true, "`oc_read()` returns 0 for it"},
    ResultCode{-2147024891, "E_ACCESSDENIED", "no permission"},
    ResultCode{-2147024882, "E_OUTOFMEMORY", "out of memory"},
    ResultCode{-2147024809, "E_INVALIDARG", "bad argument", false},
    ResultCode{-2147417842, "E_WRONG_THREAD", "called inside a callback", false},
    ResultCode{-2147024865, "E_GEN_FAILURE", "device not working, cable or power"},
    ResultCode{-2147024726, "E_BUSY", "already open or started elsewhere"},
    ResultCode{-2147417825, "E_TIMEOUT", "timeout"},
    ResultCode{-2147014845, "E_UNREACH", "the network camera cannot be reached", true,
               "in the newest headers"},
};

constexpr std::array sections{
    MessageSection{"Every maker", everyMaker},
    MessageSection{"Functions that an SDK lacks", lackingFunctions},
    MessageSection{"ZWO ASI", asiMessages, asiCodes},
    MessageSection{"Player One", playerOneMessages, playerOneCodes},
    MessageSection{"QHYCCD", qhyMessages, qhyCodes},
    MessageSection{"ToupTek", toupTekMessages, toupTekCodes},
    MessageSection{"Out of memory", outOfMemory},
    MessageSection{"From the C++ header", cppHeader},
};

}  // namespace

std::span<const MessageSection> messageSections() {
  return sections;
}

}  // namespace orvane::host
