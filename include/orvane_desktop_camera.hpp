/**
 * @file
 * The library for C++17 programs: a scan, an open camera, and a thread that captures frames. Header
 * only; stands on orvane_desktop_camera.h and the standard library.
 *
 *     oc::Scan found = oc::scan(sdkDirectory);
 *     oc::CaptureThread capture(found.cameras.at(0), settings);  // opens, streams, reads
 *     while (oc::Frame frame = capture.next(500ms)) {            // empty when none came in time
 *       use(frame.pixels(), frame.width(), frame.height(), frame.number(), frame.arrival());
 *     }                                                          // the destructor closes
 *
 * @par Threads
 * The library has one caller at a time. oc::scan() and oc::Camera call it on the caller's thread.
 * While an oc::CaptureThread lives, its thread is the only caller: use neither oc::scan() nor
 * oc::Camera nor the C functions, but CaptureThread::rescan() and the others there. They can be
 * called from any thread.
 *
 * @par Errors
 * A failure is an oc::Error whose what() is the library's text. Exceptions that leave the C
 * functions (see orvane_desktop_camera.h) leave oc::scan() and oc::Camera unchanged. No exception
 * leaves the thread of an oc::CaptureThread: it becomes a text in CaptureState, and is thrown by
 * next() or by the std::future of the request that failed.
 *
 * @par Units
 * Exposure: microseconds. Temperature: degrees Celsius. Gain and offset: the maker's own. Sizes:
 * pixels, buffers: bytes. Text: UTF-8, except that a camera's name may hold other bytes.
 *
 * @par Pauses
 * Only ZWO ASI's SDK waits for a frame, so the capture thread sleeps for one to five milliseconds
 * after each "no frame". On Windows such a sleep takes up to 16 ms unless the program asks for
 * finer timers: call timeBeginPeriod(1) of winmm before. This header does not.
 *
 * @par Programs that load the library at run time
 * Everything takes an oc::Library, the table of the C functions. By default these are the linked
 * functions; oc::Library::from() takes those that orvane_desktop_camera_loader.h has looked up.
 */
#ifndef ORVANE_DESKTOP_CAMERA_HPP
#define ORVANE_DESKTOP_CAMERA_HPP

#include <algorithm>
#include <charconv>
#include <chrono>
#include <climits>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <filesystem>
#include <functional>
#include <future>
#include <limits>
#include <locale>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "orvane_desktop_camera.h"

/** The library for C++. */
namespace oc {

/** A call failed; what() is the library's text. */
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/** What a pixel of a frame is; see oc_read(). */
enum class Format {
  Raw8 = OC_FORMAT_RAW8,   /**< 8 bits; a colour camera delivers its Bayer pattern */
  Raw16 = OC_FORMAT_RAW16, /**< 16 bits, low byte first, likewise */
  Rgb24 = OC_FORMAT_RGB24, /**< three bytes */
  Mono8 = OC_FORMAT_MONO8  /**< 8 bits of brightness */
};

/** The Bayer pattern: the first two pixels of the first row, then those of the second. */
enum class Bayer {
  None = OC_BAYER_NONE, /**< a mono camera, or frames without a Bayer pattern */
  Rggb = OC_BAYER_RGGB, /**< red, green, green, blue */
  Grbg = OC_BAYER_GRBG, /**< green, red, blue, green */
  Gbrg = OC_BAYER_GBRG, /**< green, blue, red, green */
  Bggr = OC_BAYER_BGGR  /**< blue, green, green, red */
};

/** The C functions, by which everything here calls the library. */
struct Library {
  decltype(&::oc_library_dir) library_dir; /**< oc_library_dir() */
  decltype(&::oc_scan) scan;               /**< oc_scan() */
  decltype(&::oc_libraries) libraries;     /**< oc_libraries() */
  decltype(&::oc_info) info;               /**< oc_info() */
  decltype(&::oc_open) open;               /**< oc_open() */
  decltype(&::oc_width) width;             /**< oc_width() */
  decltype(&::oc_height) height;           /**< oc_height() */
  decltype(&::oc_buffer_size) buffer_size; /**< oc_buffer_size() */
  decltype(&::oc_read) read;               /**< oc_read() */
  decltype(&::oc_apply) apply;             /**< oc_apply() */
  decltype(&::oc_temperature) temperature; /**< oc_temperature() */
  decltype(&::oc_close) close;             /**< oc_close() */
  decltype(&::oc_error) error;             /**< oc_error() */

  /** @return the functions that the program links. A program that never calls this, and so never
   * uses a default argument of this type, need not link the library. */
  static Library linked() {
    return {&::oc_library_dir, &::oc_scan,   &::oc_libraries,   &::oc_info, &::oc_open,
            &::oc_width,       &::oc_height, &::oc_buffer_size, &::oc_read, &::oc_apply,
            &::oc_temperature, &::oc_close,  &::oc_error};
  }

  /**
   * @param loaded an OrvaneDesktopCamera of orvane_desktop_camera_loader.h, or anything with
   *     members of the same names. It must stay loaded while the table is in use.
   * @return its functions
   */
  template <class Loaded>
  static Library from(const Loaded& loaded) {
    return {loaded.library_dir, loaded.scan,   loaded.libraries,   loaded.info, loaded.open,
            loaded.width,       loaded.height, loaded.buffer_size, loaded.read, loaded.apply,
            loaded.temperature, loaded.close,  loaded.error};
  }
};

/** A view of bytes: a pointer and a size. Converts to std::span in C++20. */
template <class Byte>
class ByteView {
 public:
  /** @param data the first byte @param size how many there are */
  ByteView(Byte* data, std::size_t size) : data_(data), size_(size) {}

  /** @param container of bytes, such as std::vector<std::uint8_t>; it must outlive the view */
  template <class Container, class = decltype(std::declval<Container&>().data())>
  ByteView(Container& container) : data_(container.data()), size_(container.size()) {}

  /** @return the first byte */
  Byte* data() const { return data_; }
  /** @return how many bytes there are */
  std::size_t size() const { return size_; }
  /** @return true when there are none */
  bool empty() const { return size_ == 0; }
  /** @return the first byte */
  Byte* begin() const { return data_; }
  /** @return the end, after the last byte */
  Byte* end() const { return data_ + size_; }
  /** @param index below size() @return that byte */
  Byte& operator[](std::size_t index) const { return data_[index]; }

 private:
  Byte* data_;
  std::size_t size_;
};

/** Bytes to read. */
using Bytes = ByteView<const std::uint8_t>;
/** Bytes to read and write. */
using WritableBytes = ByteView<std::uint8_t>;

/** The path of a directory, from UTF-8 text or a std::filesystem::path. */
class Directory {
 public:
  /** @param utf8 the path in UTF-8 */
  Directory(const char* utf8) : utf8_(utf8) {}
  /** @param utf8 the path in UTF-8 */
  Directory(std::string utf8) : utf8_(std::move(utf8)) {}
  /** @param path the path */
  Directory(const std::filesystem::path& path) {
    const auto text = path.u8string();  // of char8_t in C++20
    utf8_.assign(text.begin(), text.end());
  }

  /** @return the path in UTF-8 */
  const std::string& utf8() const { return utf8_; }

 private:
  std::string utf8_;
};

/** What the library knows about a camera; oc_info() describes the values. */
struct CameraInfo {
  int index = 0;                  /**< for opening; the next scan makes it invalid */
  std::string name;               /**< model or display name; need not be valid UTF-8 */
  int ordinal = 0;                /**< which one of the cameras of this name, from 0 */
  int maxWidth = 0;               /**< of the sensor at bin 1, pixels */
  int maxHeight = 0;              /**< of the sensor at bin 1, pixels */
  int bitDepth = 0;               /**< of the converter, or only of the transfer */
  double pixelSizeUm = 0;         /**< micrometres; NaN or infinite when the SDK says so */
  bool isColor = false;           /**< has a Bayer pattern */
  bool isCooled = false;          /**< has a cooler */
  bool isUsb3Camera = false;      /**< can use USB 3 */
  bool isUsb3Host = false;        /**< is connected by USB 3 */
  std::vector<int> bins;          /**< binning factors for opening */
  std::vector<Format> formats;    /**< for opening, in no fixed order; unknown codes are left out */
  std::vector<int> depths;        /**< 8, or 8 and 16 */
  std::int64_t maxExposureUs = 0; /**< longest exposure, microseconds; 0 is unknown */
  int minGain = 0;                /**< may be negative; 0 with the others when unknown */
  int maxGain = 0;                /**< in the maker's units */
  Bayer bayer = Bayer::None;      /**< at the top left corner */
  std::string json;               /**< the library's description, unchanged */
};

/** What a scan found. */
struct Scan {
  std::vector<CameraInfo> cameras;    /**< in the library's order */
  std::vector<std::string> libraries; /**< base names of the SDKs that were found */
  std::string error;                  /**< what failed, "; " between two texts; "" if nothing did */
};

/** How a camera is opened; see oc_open(). */
struct Settings {
  int width = 0;                   /**< pixels; 0 is the whole sensor */
  int height = 0;                  /**< pixels; 0 is the whole sensor */
  int bin = 1;                     /**< one of CameraInfo::bins */
  Format format = Format::Raw8;    /**< one of CameraInfo::formats */
  std::int64_t exposureUs = 20000; /**< microseconds, 1 to 2147483647 */
  std::optional<int> gain = {};    /**< in the maker's units; without it CameraInfo::minGain */
  int offset = 0;                  /**< in the maker's units */
};

/** How the bytes of a frame are to be read. */
struct FrameLayout {
  int width = 0;                /**< pixels after binning */
  int height = 0;               /**< pixels after binning */
  Format format = Format::Raw8; /**< what a pixel is */
  Bayer bayer = Bayer::None;    /**< of the frame: None for Rgb24 and Mono8 */
};

/** @cond */
namespace detail {

// Reads single values of a description. An inner quotation mark of a name has a backslash before
// it, so a quoted key with its colon cannot be part of a name.
class Description {
 public:
  Description(int index, std::string_view text) : index_(index), text_(text) {}

  std::string_view scalar(std::string_view key) const {
    const std::string_view value = behind(key);
    return value.substr(0, value.find_first_of(",}"));
  }

  template <class Integer>
  Integer integer(std::string_view key) const {
    return number<Integer>(scalar(key), key);
  }

  bool boolean(std::string_view key) const {
    const std::string_view value = scalar(key);
    require(value == "true" || value == "false", key);
    return value == "true";
  }

  // No std::from_chars: some standard libraries lack it for double.
  double real(std::string_view key) const {
    const std::string_view value = scalar(key);
    require(!value.empty(), key);
    if (value.substr(0, 3) == "inf" || value.substr(0, 4) == "-inf") {
      const double infinity = std::numeric_limits<double>::infinity();
      return value.front() == '-' ? -infinity : infinity;
    }
    std::istringstream stream{std::string(value)};
    stream.imbue(std::locale::classic());
    double number = 0;
    stream >> number;
    return stream && stream.peek() == std::istringstream::traits_type::eof()
               ? number
               : std::numeric_limits<double>::quiet_NaN();
  }

  std::vector<int> integers(std::string_view key) const {
    std::string_view list = behind(key);
    const std::size_t end = list.find(']');
    require(!list.empty() && list.front() == '[' && end != std::string_view::npos, key);
    list = list.substr(1, end - 1);
    std::vector<int> values;
    while (!list.empty()) {
      const std::size_t comma = (std::min)(list.find(','), list.size());
      values.push_back(number<int>(list.substr(0, comma), key));
      list.remove_prefix((std::min)(comma + 1, list.size()));
    }
    return values;
  }

  std::string string(std::string_view key) const {
    const std::string_view value = behind(key);
    require(!value.empty() && value.front() == '"', key);
    std::string content;
    for (std::size_t at = 1; at < value.size() && value[at] != '"'; ++at) {
      at += value[at] == '\\' && at + 1 < value.size() ? 1 : 0;
      content += value[at];
    }
    return content;
  }

 private:
  std::string_view behind(std::string_view key) const {
    const std::string quoted = "\"" + std::string(key) + "\":";
    const std::size_t found = text_.find(quoted);
    require(found != std::string_view::npos, key);
    return text_.substr(found + quoted.size());
  }

  template <class Integer>
  Integer number(std::string_view digits, std::string_view key) const {
    Integer value = 0;
    const char* const end = digits.data() + digits.size();
    const auto parsed = std::from_chars(digits.data(), end, value);
    require(parsed.ec == std::errc() && parsed.ptr == end, key);
    return value;
  }

  void require(bool holds, std::string_view key) const {
    if (!holds) {
      throw Error("The description of camera " + std::to_string(index_) +
                  " cannot be read: there is no usable \"" + std::string(key) + "\".");
    }
  }

  int index_;
  std::string_view text_;
};

inline std::string textOf(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "An SDK threw an exception of an unknown type.";
  }
}

}  // namespace detail
/** @endcond */

/**
 * @param index of the camera, for the text of a failure
 * @param json the description that oc_info() returned
 * @return its values; CameraInfo::ordinal is 0
 * @throw Error when a value is missing or not of its kind
 */
inline CameraInfo parseCameraInfo(int index, std::string_view json) {
  const detail::Description description(index, json);
  CameraInfo camera;
  camera.index = description.integer<int>("id");
  camera.name = description.string("name");
  camera.maxWidth = description.integer<int>("maxWidth");
  camera.maxHeight = description.integer<int>("maxHeight");
  camera.bitDepth = description.integer<int>("bitDepth");
  camera.pixelSizeUm = description.real("pixelSizeUm");
  camera.isColor = description.boolean("isColor");
  camera.isCooled = description.boolean("isCooled");
  camera.isUsb3Camera = description.boolean("isUsb3Camera");
  camera.isUsb3Host = description.boolean("isUsb3Host");
  camera.bins = description.integers("bins");
  for (const int code : description.integers("formats")) {
    if (code >= OC_FORMAT_RAW8 && code <= OC_FORMAT_MONO8) {
      camera.formats.push_back(static_cast<Format>(code));
    }
  }
  camera.depths = description.integers("depths");
  camera.maxExposureUs = description.integer<std::int64_t>("maxExposureUs");
  camera.minGain = description.integer<int>("minGain");
  camera.maxGain = description.integer<int>("maxGain");
  const int bayer = description.integer<int>("bayer");
  if (bayer >= OC_BAYER_RGGB && bayer <= OC_BAYER_BGGR) {
    camera.bayer = static_cast<Bayer>(bayer);
  }
  camera.json = json;
  return camera;
}

/**
 * Looks for cameras. Loads the makers' SDKs and takes a second or more. A camera whose description
 * cannot be read is left out and named in Scan::error.
 *
 * Not while a CaptureThread lives: see CaptureThread::rescan().
 *
 * @param directory of the SDKs; on Windows a full path
 * @param library the C functions
 * @return what was found
 * @throw Error when a camera is open; std::system_error on Windows when the path is not valid UTF-8
 */
inline Scan scan(const Directory& directory, const Library& library = Library::linked()) {
  library.library_dir(directory.utf8().c_str());
  const int count = library.scan();
  Scan found;
  found.error = library.error();
  if (count < 0) {
    throw Error(found.error);
  }
  const std::string_view names = library.libraries();
  for (std::size_t start = 0; start < names.size();) {
    const std::size_t end = (std::min)(names.find(", ", start), names.size());
    found.libraries.emplace_back(names.substr(start, end - start));
    start = end + 2;
  }
  for (int index = 0; index < count; ++index) {
    try {
      CameraInfo camera = parseCameraInfo(index, library.info(index));
      const auto hasName = [&](const CameraInfo& other) { return other.name == camera.name; };
      camera.ordinal =
          static_cast<int>(std::count_if(found.cameras.begin(), found.cameras.end(), hasName));
      found.cameras.push_back(std::move(camera));
    } catch (const Error& failure) {
      found.error += (found.error.empty() ? "" : "; ") + std::string(failure.what());
    }
  }
  return found;
}

/**
 * Finds a camera of an earlier scan among those of a later one, by its name. Among several cameras
 * of one name, takes the one with the same ordinal, or the last if there are fewer now.
 *
 * @param cameras of the later scan
 * @param before of the earlier scan
 * @return the camera, or none
 */
inline std::optional<CameraInfo> findAgain(const std::vector<CameraInfo>& cameras,
                                           const CameraInfo& before) {
  std::optional<CameraInfo> found;
  for (const CameraInfo& camera : cameras) {
    if (camera.name == before.name && camera.ordinal <= before.ordinal) {
      found = camera;
    }
  }
  return found;
}

/**
 * @param exposureUs microseconds, 1 to 2147483647
 * @return how long a camera may be silent: twice the exposure plus 500 ms
 */
inline std::chrono::milliseconds usualWait(std::int64_t exposureUs) {
  return std::chrono::milliseconds(2 * exposureUs / 1000 + 500);
}

/** How many waits without a frame a camera is given before it counts as lost; see usualWait(). */
inline constexpr int patience = 5;

/** An open camera that streams. Calls the library on the caller's thread; see Threads above. */
class Camera {
 public:
  /**
   * Opens the camera; one that is open is closed first.
   *
   * @param info of the last scan
   * @param settings how to open it
   * @param library the C functions
   * @throw Error with the library's text; no camera is open then
   */
  Camera(const CameraInfo& info, const Settings& settings,
         const Library& library = Library::linked())
      : library_(library) {
    const int width = settings.width == 0 ? info.maxWidth : settings.width;
    const int height = settings.height == 0 ? info.maxHeight : settings.height;
    int isOpen = 0;
    try {
      isOpen =
          library_.open(info.index, width, height, settings.bin, static_cast<int>(settings.format),
                        settings.exposureUs, settings.gain.value_or(info.minGain), settings.offset);
    } catch (...) {
      library_.close();  // the device may be open
      throw;
    }
    if (isOpen == 0) {
      throw Error(library_.error());
    }
    const bool isRaw = settings.format == Format::Raw8 || settings.format == Format::Raw16;
    layout_ = {library_.width(), library_.height(), settings.format,
               isRaw && info.isColor ? info.bayer : Bayer::None};
    bufferSize_ = static_cast<std::size_t>(library_.buffer_size());
  }

  /** Closes the camera. */
  ~Camera() { library_.close(); }

  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;

  /** @return how the bytes of its frames are to be read; the size is as the camera rounded it */
  const FrameLayout& layout() const { return layout_; }
  /** @return the bytes that a buffer for read() must have; may be more than a frame has */
  std::size_t bufferSize() const { return bufferSize_; }

  /**
   * Asks once for the next frame.
   *
   * @param buffer bufferSize() bytes or more; the SDK writes into it
   * @param wait how long the SDK may wait: usualWait(), but a second at most, because nothing
   *     interrupts it. Only ZWO ASI's SDK waits: after "no frame", pause for a millisecond.
   * @return the frame, at the buffer's start; empty when there was none, which is no failure
   * @throw Error with the library's text; the camera is still open and streaming
   */
  WritableBytes read(WritableBytes buffer, std::chrono::milliseconds wait) {
    const auto most = static_cast<std::size_t>(INT_MAX);
    const auto milliseconds = std::clamp<std::int64_t>(wait.count(), 0, INT_MAX);
    const int size = library_.read(buffer.data(), static_cast<int>((std::min)(buffer.size(), most)),
                                   static_cast<int>(milliseconds));
    if (size < 0) {
      throw Error(library_.error());
    }
    return {buffer.data(), static_cast<std::size_t>(size)};
  }

  /**
   * Sets exposure, gain and offset, in this order.
   *
   * @param exposureUs microseconds, 1 to 2147483647
   * @param gain in the maker's units
   * @param offset in the maker's units
   * @throw Error with the library's text; what was set before the failure stays in force
   */
  void apply(std::int64_t exposureUs, int gain, int offset) {
    if (library_.apply(exposureUs, gain, offset) == 0) {
      throw Error(library_.error());
    }
  }

  /** @return the sensor's temperature, degrees Celsius; none when the SDK gives none, or a number
   * that is no temperature (not between -150 and 150) */
  std::optional<double> temperature() const {
    const double celsius = library_.temperature();
    return celsius > -150 && celsius < 150 ? std::optional<double>(celsius) : std::nullopt;
  }

 private:
  Library library_;
  FrameLayout layout_;
  std::size_t bufferSize_ = 0;
};

/** Which frames a queue hands out. */
enum class Delivery {
  Newest, /**< the newest; a frame that waits is replaced, and counted as dropped */
  Every   /**< every frame in its order; a frame that finds no room is dropped and counted */
};

/** What a capture thread is doing. */
enum class Phase {
  Idle,      /**< no camera is open, and none is wanted; or it is being opened */
  Streaming, /**< the camera streams */
  Silent,    /**< it is open, but no frame came for longer than usualWait() */
  Lost       /**< it failed, was silent for too long or could not be opened, and is closed */
};

/** What a capture thread and its camera are doing. Counts begin anew when a camera is opened. */
struct CaptureState {
  Phase phase = Phase::Idle;  /**< what it is doing */
  std::string text;           /**< Lost: why. Otherwise the last failed read's text or "" */
  CameraInfo camera;          /**< that is open, or was last */
  Settings settings;          /**< in force, or for the next opening */
  FrameLayout layout;         /**< of the frames */
  std::size_t bufferSize = 0; /**< bytes that a frame occupies in memory */
  std::uint64_t opening = 0;  /**< how many times a camera was opened */
  std::chrono::steady_clock::time_point opened; /**< when, the last time */
  std::uint64_t frames = 0;                     /**< that the camera has delivered */
  std::uint64_t silentWaits = 0;                /**< waits of usualWait() without a frame */
  std::uint64_t emptyReads = 0;                 /**< calls for a frame when none was ready */
  std::uint64_t failedReads = 0;                /**< calls for a frame that failed */
  std::uint64_t refusals = 0;                   /**< how many times apply() was refused */
  std::string refusal;                          /**< the text of the last refusal */
  std::optional<double> temperature;            /**< degrees Celsius, about a second old */
  double framesPerSecond = 0;           /**< over about two seconds; falls while no frame comes */
  std::chrono::milliseconds silence{0}; /**< since the last frame, or since the opening */
};

/** How a capture thread works. */
struct CaptureOptions {
  Delivery delivery = Delivery::Newest; /**< what CaptureThread::next() hands out */
  std::size_t capacity = 3;             /**< of the queue behind next(); 0 if frames() is enough */
  /** How long one call may wait for a frame: the thread looks at requests between two calls. */
  std::chrono::milliseconds longestCall{1000};
  /** How many failed reads in a row, 50 ms apart, lose the camera; "no frame" is no failure. */
  int failures = 5;
  /** How many waits of usualWait() in a row without a frame lose the camera; 0: no number does. */
  int silentWaits = patience;
  /**
   * Called on the capture thread when there is a new frame or a new state, to wake an event loop.
   * It must return soon and must not wait for the CaptureThread. What it throws is ignored.
   */
  std::function<void()> onNews = nullptr;
};

/** @cond */
namespace detail {

using Clock = std::chrono::steady_clock;

// Reuses buffers of one size.
class BufferPool {
 public:
  std::vector<std::uint8_t> take(std::size_t size) {
    std::vector<std::uint8_t> buffer;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (size != size_) {
        free_.clear();
        size_ = size;
      }
      if (!free_.empty()) {
        buffer.swap(free_.back());
        free_.pop_back();
      }
    }
    buffer.resize(size);  // outside the lock: fresh memory has to be cleared
    return buffer;
  }

  void give(std::vector<std::uint8_t>& buffer) noexcept {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (buffer.size() == size_ && free_.size() < most_) {
      try {
        free_.push_back(std::move(buffer));
      } catch (const std::bad_alloc&) {
        // The buffer is freed.
      }
    }
  }

  // Keeps at most this many free buffers.
  void keep(std::size_t most) {
    const std::lock_guard<std::mutex> lock(mutex_);
    free_.resize((std::min)(free_.size(), most));
    most_ = most;
  }

 private:
  std::mutex mutex_;
  std::vector<std::vector<std::uint8_t>> free_;
  std::size_t size_ = 0;
  std::size_t most_ = 0;
};

// What the frames of one opening have in common.
struct Opening {
  CameraInfo camera;
  FrameLayout layout;
  std::uint64_t number = 0;
};

// One frame.
struct FrameData {
  std::vector<std::uint8_t> buffer;
  std::size_t size;
  std::shared_ptr<const Opening> opening;
  Clock::time_point arrival;
  std::chrono::system_clock::time_point arrivalTime;
  std::uint64_t number = 0;
};

// The frames for one consumer. The hub's mutex guards every member.
struct Queue {
  Delivery delivery = Delivery::Newest;
  std::size_t capacity = 1;
  std::deque<std::shared_ptr<FrameData>> waiting;
  std::size_t held = 0;  // handed out and not dropped yet
  std::size_t mostWaiting = 0;
  std::uint64_t accepted = 0;
  std::uint64_t taken = 0;
  std::uint64_t most = 0;  // closes after this many frames; 0: never
  std::uint64_t dropped = 0;
  bool isClosed = false;

  bool hasRoom() const {
    return (delivery == Delivery::Newest && !waiting.empty()) || waiting.size() + held < capacity;
  }

  bool offer(const std::shared_ptr<FrameData>& frame) {
    if (!hasRoom()) {
      ++dropped;
      return false;
    }
    if (delivery == Delivery::Newest && !waiting.empty()) {
      ++dropped;
      waiting.back() = frame;
    } else {
      waiting.push_back(frame);
    }
    mostWaiting = (std::max)(mostWaiting, waiting.size());
    isClosed = ++accepted == most;
    return true;
  }
};

// The rate of the frames of the last two seconds, or of the last two frames if they are farther
// apart; 0 before the second frame.
class FrameRate {
 public:
  void add(Clock::time_point arrival) {
    arrivals_.push_back(arrival);
    while (arrivals_.size() > 2 && arrival - arrivals_.front() > std::chrono::seconds(2)) {
      arrivals_.pop_front();
    }
  }

  // `silence` is the time since the last frame: the rate falls while no frame comes.
  double perSecond(Clock::duration silence) const {
    if (arrivals_.size() < 2) {
      return 0;
    }
    using Seconds = std::chrono::duration<double>;
    const Seconds between = arrivals_.back() - arrivals_.front();
    const double interval = between.count() / static_cast<double>(arrivals_.size() - 1);
    // An overdue frame counts as if it arrived now.
    return 1 / (std::max)({interval, Seconds(silence).count(), 1e-6});
  }

 private:
  std::deque<Clock::time_point> arrivals_;
};

class Worker;

// What the capture thread, its owner and the consumers share.
struct Hub {
  using Request = std::function<void(Worker&)>;

  std::mutex mutex;              // guards everything here but the pool
  std::condition_variable news;  // for consumers: a frame, the end of a queue, a new phase
  std::condition_variable work;  // for the thread: a request, the end, room in a queue
  std::deque<Request> requests;
  bool endsWithApply = false;  // the last request
  bool mustStop = false;
  bool hasEnded = false;
  CaptureState state;
  Clock::time_point lastFrame;  // or the opening
  std::chrono::milliseconds wait{0};
  FrameRate rate;
  std::vector<std::weak_ptr<Queue>> queues;
  const std::shared_ptr<BufferPool> pool = std::make_shared<BufferPool>();

  bool wantsFrames() const {
    return std::any_of(queues.begin(), queues.end(), [](const std::weak_ptr<Queue>& entry) {
      const std::shared_ptr<Queue> queue = entry.lock();
      return queue && !queue->isClosed;
    });
  }

  void ask(Request request, bool isApply) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (isApply && endsWithApply && !requests.empty()) {
      requests.back() = std::move(request);
    } else {
      requests.push_back(std::move(request));
    }
    endsWithApply = isApply;
    work.notify_one();
  }
};

// A frame in a consumer's hands, which counts against its queue's capacity.
struct Lease {
  Lease() = default;
  ~Lease() {
    if (hub) {
      const std::lock_guard<std::mutex> lock(hub->mutex);
      --queue->held;
      hub->work.notify_one();
    }
  }
  Lease(const Lease&) = delete;
  Lease& operator=(const Lease&) = delete;

  std::shared_ptr<Hub> hub;
  std::shared_ptr<Queue> queue;
  std::shared_ptr<FrameData> frame;
};

}  // namespace detail
/** @endcond */

/**
 * A frame, or none. The bytes lie where the SDK wrote them; nothing is copied. Copies of a Frame
 * share the bytes; when the last copy is dropped, the buffer is reused. A frame stays valid as long
 * as it is held, even after its camera was closed and its CaptureThread destroyed.
 *
 * The members below, but for the conversion to bool, need a frame. Any thread may use a Frame, one
 * at a time; different copies may be used at the same time.
 */
class Frame {
 public:
  /** No frame. */
  Frame() = default;

  /** @return true when there is a frame */
  explicit operator bool() const { return lease_ != nullptr; }

  /** @return its bytes: rows without padding, see oc_read() */
  Bytes pixels() const { return {data(), size()}; }
  /** @return its bytes, to be changed in place; every holder of the frame sees the change */
  std::uint8_t* data() const { return lease_->frame->buffer.data(); }
  /** @return the number of its bytes */
  std::size_t size() const { return lease_->frame->size; }
  /** @return how the bytes are to be read */
  const FrameLayout& layout() const { return lease_->frame->opening->layout; }
  /** @return its width, pixels */
  int width() const { return layout().width; }
  /** @return its height, pixels */
  int height() const { return layout().height; }
  /** @return what a pixel is */
  Format format() const { return layout().format; }
  /** @return its Bayer pattern: None for Rgb24 and Mono8, too */
  Bayer bayer() const { return layout().bayer; }
  /** @return the camera that it came from */
  const CameraInfo& camera() const { return lease_->frame->opening->camera; }
  /** @return CaptureState::opening when it came; frames of one opening belong together */
  std::uint64_t opening() const { return lease_->frame->opening->number; }
  /** @return its number since the opening, from 0; a gap shows dropped frames */
  std::uint64_t number() const { return lease_->frame->number; }
  /** @return when it came, for intervals */
  std::chrono::steady_clock::time_point arrival() const { return lease_->frame->arrival; }
  /** @return when it came, for time stamps */
  std::chrono::system_clock::time_point arrivalTime() const { return lease_->frame->arrivalTime; }

 private:
  friend class FrameQueue;
  explicit Frame(std::shared_ptr<const detail::Lease> lease) : lease_(std::move(lease)) {}
  std::shared_ptr<const detail::Lease> lease_;
};

/**
 * The frames of a CaptureThread for one consumer, for example a thread that writes a recording:
 *
 *     while (oc::Frame frame = queue.next()) write(frame);
 *
 * Its capacity limits the memory: it is how many frames may wait in the queue or be held by the
 * consumer. Buffers are allocated when they are first needed, and then reused. All queues together
 * use at most one buffer more than the sum of their capacities. Queues that take the same frame
 * share its bytes.
 *
 * All members may be called from any thread. The queue may outlive its CaptureThread.
 */
class FrameQueue {
 public:
  /** No queue; only assignment is allowed. */
  FrameQueue() = default;

  /** Closes the queue and drops the frames that wait. Frames that are held stay valid. */
  ~FrameQueue() {
    if (queue_) {
      close();
      std::deque<std::shared_ptr<detail::FrameData>> dropped;
      const std::lock_guard<std::mutex> lock(hub_->mutex);
      dropped.swap(queue_->waiting);
    }
  }

  /** @param other becomes no queue */
  FrameQueue(FrameQueue&& other) = default;

  /** @param other its queue moves here; the one that was here ends as in the destructor
   * @return this queue */
  FrameQueue& operator=(FrameQueue&& other) noexcept {
    FrameQueue moved(std::move(other));
    std::swap(hub_, moved.hub_);
    std::swap(queue_, moved.queue_);
    return *this;
  }

  /**
   * Waits for a frame.
   *
   * @param wait how long at most; 0 does not wait; no value waits without a limit
   * @return the frame; empty when none came in time, or when no more frames will come: the queue
   *     was closed or the CaptureThread is gone, and every frame that waited was taken
   * @throw Error when the camera was lost and no frame waits; the text is CaptureState::text. The
   *     queue goes on when a camera is opened again.
   */
  Frame next(std::optional<std::chrono::milliseconds> wait = std::nullopt) {
    auto lease = std::make_shared<detail::Lease>();  // before a frame is taken, which could be lost
    std::unique_lock<std::mutex> lock(hub_->mutex);
    const auto isOver = [this] {
      return !queue_->waiting.empty() || queue_->isClosed || hub_->hasEnded ||
             hub_->state.phase == Phase::Lost;
    };
    if (wait) {
      // Standard libraries add the time to the clock's, which must not overflow.
      hub_->news.wait_for(
          lock, (std::min)(*wait, std::chrono::milliseconds(std::chrono::hours(1000))), isOver);
    } else {
      hub_->news.wait(lock, isOver);
    }
    if (!queue_->waiting.empty()) {
      lease->frame = std::move(queue_->waiting.front());
      queue_->waiting.pop_front();
      ++queue_->held;
      ++queue_->taken;
      lease->queue = queue_;
      lease->hub = hub_;
      return Frame(std::move(lease));
    }
    if (!queue_->isClosed && !hub_->hasEnded && hub_->state.phase == Phase::Lost) {
      throw Error(hub_->state.text);
    }
    return {};
  }

  /** No more frames are put in. Those that wait can still be taken. */
  void close() {
    const std::lock_guard<std::mutex> lock(hub_->mutex);
    queue_->isClosed = true;
    hub_->news.notify_all();
  }

  /** @return how many frames may wait or be held */
  std::size_t capacity() const { return queue_->capacity; }
  /** @return how many frames wait */
  std::size_t waiting() const {
    const std::lock_guard<std::mutex> lock(hub_->mutex);
    return queue_->waiting.size();
  }
  /** @return the most frames that have waited at a time */
  std::size_t mostWaiting() const { return locked(&detail::Queue::mostWaiting); }
  /** @return frames that were put in since the queue was made, also those replaced since */
  std::uint64_t accepted() const { return locked(&detail::Queue::accepted); }
  /** @return frames that were taken out since the queue was made */
  std::uint64_t taken() const { return locked(&detail::Queue::taken); }
  /** @return frames that were dropped since the queue was made; see Delivery */
  std::uint64_t dropped() const { return locked(&detail::Queue::dropped); }

 private:
  friend class CaptureThread;

  // A copy of a member.
  template <class Value>
  Value locked(Value detail::Queue::*member) const {
    const std::lock_guard<std::mutex> lock(hub_->mutex);
    return (*queue_).*member;
  }

  FrameQueue(std::shared_ptr<detail::Hub> hub, Delivery delivery, std::size_t capacity,
             std::uint64_t most)
      : hub_(std::move(hub)), queue_(std::make_shared<detail::Queue>()) {
    queue_->delivery = delivery;
    queue_->capacity = capacity;
    queue_->most = most;
    if (capacity > 0) {
      const std::lock_guard<std::mutex> lock(hub_->mutex);
      hub_->queues.push_back(queue_);
      hub_->work.notify_one();
    }
  }

  std::shared_ptr<detail::Hub> hub_;
  std::shared_ptr<detail::Queue> queue_;
};

/** @cond */
namespace detail {

// The work of the capture thread. Every member is called there.
class Worker {
 public:
  Worker(std::shared_ptr<Hub> hub, CaptureOptions options, const Library& library)
      : hub_(std::move(hub)), options_(std::move(options)), library_(library) {}

  void run() noexcept {
    while (true) {
      try {
        work();
        break;
      } catch (...) {
        lose("Out of memory");  // no other exception gets here; short enough for no allocation
      }
    }
    camera_.reset();
    const std::lock_guard<std::mutex> lock(hub_->mutex);
    hub_->hasEnded = true;
    hub_->state.phase = hub_->state.phase == Phase::Lost ? Phase::Lost : Phase::Idle;
    hub_->news.notify_all();
  }

  void open(const CameraInfo& camera, const Settings& settings) {
    camera_.reset();
    CaptureState fresh;
    fresh.camera = camera;
    fresh.settings = settings;
    fresh.settings.gain = settings.gain.value_or(camera.minGain);
    const std::uint64_t number = fresh.opening = state().opening + 1;
    {
      const std::lock_guard<std::mutex> lock(hub_->mutex);
      hub_->state = std::move(fresh);
    }
    isCameraWanted_ = true;
    try {
      camera_.emplace(camera, settings, library_);
      opening_ = std::make_shared<const Opening>(Opening{camera, camera_->layout(), number});
    } catch (...) {
      lose(textOf(std::current_exception()));
      throw;
    }
    exposureUs_ = settings.exposureUs;
    failuresInRow_ = 0;
    waitsInRow_ = 0;
    temperatureRead_.reset();
    const std::lock_guard<std::mutex> lock(hub_->mutex);
    hub_->state.phase = Phase::Streaming;
    hub_->state.opened = Clock::now();
    hub_->state.layout = camera_->layout();
    hub_->state.bufferSize = camera_->bufferSize();
    hub_->lastFrame = hub_->state.opened;
    hub_->wait = usualWait(exposureUs_);
    hub_->rate = {};
  }

  void reopen(const std::optional<Settings>& settings) {
    const bool wasOpen = camera_.has_value();
    const CaptureState before = state();
    if (before.opening == 0) {
      throw Error("No camera has been opened.");
    }
    try {
      open(before.camera, settings.value_or(before.settings));
    } catch (...) {
      if (wasOpen) {
        try {
          open(before.camera, before.settings);
        } catch (...) {
          // The state reports it. The caller gets the first failure.
        }
      }
      throw;
    }
  }

  Scan rescan(const Directory& directory) {
    const CaptureState before = state();
    camera_.reset();
    settle(Phase::Idle, "");
    Scan found;
    try {
      found = scan(directory, library_);
    } catch (...) {
      if (isCameraWanted_) {
        lose(textOf(std::current_exception()));
      }
      throw;
    }
    if (!isCameraWanted_) {
      return found;
    }
    const std::optional<CameraInfo> again = findAgain(found.cameras, before.camera);
    if (!again) {
      lose(before.camera.name + " was not found again.");
      return found;
    }
    try {
      open(*again, before.settings);
    } catch (...) {
      // The state reports it. The scan did not fail.
    }
    return found;
  }

  void close() {
    camera_.reset();
    isCameraWanted_ = false;
    settle(Phase::Idle, "");
  }

  void apply(std::int64_t exposureUs, int gain, int offset) {
    const CaptureState before = state();
    try {
      if (camera_) {
        camera_->apply(exposureUs, gain, offset);
      }
      const std::lock_guard<std::mutex> lock(hub_->mutex);
      hub_->state.settings.exposureUs = exposureUs;
      hub_->state.settings.gain = gain;
      hub_->state.settings.offset = offset;
      if (camera_) {
        // A frame that the camera is exposing may still take as long as before.
        hub_->wait = (std::max)(hub_->wait, usualWait(exposureUs));
        exposureUs_ = exposureUs;
      }
    } catch (...) {
      std::string text = textOf(std::current_exception());
      try {
        // A part may be in force. The settings before were accepted as a whole.
        if (camera_) {
          const Settings& settings = before.settings;
          camera_->apply(settings.exposureUs, settings.gain.value_or(before.camera.minGain),
                         settings.offset);
        }
      } catch (...) {
        // The first refusal is the one that is reported.
      }
      const std::lock_guard<std::mutex> lock(hub_->mutex);
      ++hub_->state.refusals;
      hub_->state.refusal = std::move(text);
    }
  }

 private:
  void work() {
    while (true) {
      Hub::Request request;
      {
        std::unique_lock<std::mutex> lock(hub_->mutex);
        if (!camera_ || !hub_->wantsFrames()) {
          hub_->work.wait(lock, [this] {
            return hub_->mustStop || !hub_->requests.empty() || (camera_ && hub_->wantsFrames());
          });
          // The camera was not asked for frames, so this time is not silence.
          hub_->lastFrame = Clock::now();
          waitsInRow_ = 0;
        }
        if (hub_->mustStop) {
          return;
        }
        if (!hub_->requests.empty()) {
          request = std::move(hub_->requests.front());
          hub_->requests.pop_front();
        }
      }
      if (request) {
        request(*this);
        tell();
      } else {
        stream();
      }
    }
  }

  void stream() {
    try {
      pollTemperature();
      if (buffer_.size() != camera_->bufferSize()) {
        buffer_ = hub_->pool->take(camera_->bufferSize());
      }
      const WritableBytes bytes = camera_->read(buffer_, waitOfNextCall());
      const Clock::time_point arrival = Clock::now();
      failuresInRow_ = 0;
      if (!bytes.empty()) {
        deliver(bytes.size(), arrival, std::chrono::system_clock::now());
        return;
      }
      {
        const std::lock_guard<std::mutex> lock(hub_->mutex);
        ++hub_->state.emptyReads;
      }
      const auto pause = std::clamp(exposureUs_ / 20000, std::int64_t{1}, std::int64_t{5});
      std::this_thread::sleep_for(std::chrono::milliseconds(pause));
    } catch (...) {
      readFailed(textOf(std::current_exception()));
    }
    if (camera_) {
      countSilence();
    }
  }

  void pollTemperature() {
    const Clock::time_point now = Clock::now();
    if (temperatureRead_ && now - *temperatureRead_ < std::chrono::seconds(1)) {
      return;
    }
    temperatureRead_ = now;
    const std::optional<double> celsius = camera_->temperature();
    const std::lock_guard<std::mutex> lock(hub_->mutex);
    hub_->state.temperature = celsius;
  }

  // The time that is left of the current usualWait(), so that its end is noticed.
  std::chrono::milliseconds waitOfNextCall() const {
    const std::lock_guard<std::mutex> lock(hub_->mutex);
    const auto silence = Clock::now() - hub_->lastFrame;
    const auto left = hub_->wait - silence % Clock::duration(hub_->wait);
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(left);
    return (std::min)(milliseconds + std::chrono::milliseconds(1), options_.longestCall);
  }

  void deliver(std::size_t size, Clock::time_point arrival,
               std::chrono::system_clock::time_point arrivalTime) {
    // The buffer returns to the pool when nobody holds the frame any more.
    std::shared_ptr<FrameData> frame(
        new FrameData{std::exchange(buffer_, {}), size, opening_, arrival, arrivalTime},
        [pool = hub_->pool](FrameData* dropped) {
          pool->give(dropped->buffer);
          delete dropped;
        });
    waitsInRow_ = 0;
    bool isFull = false;
    {
      const std::lock_guard<std::mutex> lock(hub_->mutex);
      frame->number = hub_->state.frames++;
      hub_->lastFrame = arrival;
      hub_->wait = usualWait(exposureUs_);
      hub_->rate.add(arrival);
      isFull = offer(frame);
    }
    frame.reset();
    hub_->news.notify_all();
    tell();
    if (isFull) {
      waitForRoom();
    }
  }

  // With the hub locked. True when a queue that takes every frame had no room.
  bool offer(const std::shared_ptr<FrameData>& frame) {
    bool isFull = false;
    std::size_t capacities = 0;
    auto& queues = hub_->queues;
    for (auto entry = queues.begin(); entry != queues.end();) {
      const std::shared_ptr<Queue> queue = entry->lock();
      if (!queue || queue->isClosed) {
        entry = queues.erase(entry);
        continue;
      }
      const bool isTaken = queue->offer(frame);
      isFull = isFull || (!isTaken && queue->delivery == Delivery::Every);
      capacities += queue->capacity;
      ++entry;
    }
    hub_->pool->keep(capacities + 1);
    return isFull;
  }

  // While a consumer is behind, further frames would only be counted, and reading them would take
  // memory bandwidth from it. The next frame needs an exposure's time at least.
  void waitForRoom() {
    const auto rest = std::clamp(exposureUs_ / 1000, std::int64_t{1}, std::int64_t{50});
    std::unique_lock<std::mutex> lock(hub_->mutex);
    hub_->work.wait_for(lock, std::chrono::milliseconds(rest), [this] {
      const auto isFull = [](const std::weak_ptr<Queue>& entry) {
        const std::shared_ptr<Queue> queue = entry.lock();
        return queue && queue->delivery == Delivery::Every && !queue->hasRoom();
      };
      return hub_->mustStop || !hub_->requests.empty() ||
             std::none_of(hub_->queues.begin(), hub_->queues.end(), isFull);
    });
  }

  void readFailed(std::string text) {
    {
      const std::lock_guard<std::mutex> lock(hub_->mutex);
      ++hub_->state.failedReads;
      hub_->state.text = text;
    }
    if (++failuresInRow_ >= options_.failures) {
      lose(std::move(text));
      tell();
      return;
    }
    tell();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }

  void countSilence() {
    std::int64_t waits = 0;
    std::chrono::milliseconds wait{0};
    {
      const std::lock_guard<std::mutex> lock(hub_->mutex);
      wait = hub_->wait;
      waits = (Clock::now() - hub_->lastFrame) / Clock::duration(wait);
      if (waits <= waitsInRow_) {
        return;
      }
      hub_->state.silentWaits += static_cast<std::uint64_t>(waits - waitsInRow_);
      waitsInRow_ = waits;
    }
    if (options_.silentWaits > 0 && waits >= options_.silentWaits) {
      lose("The camera has sent no frame for " + std::to_string(options_.silentWaits) +
           " waits of " + std::to_string(wait.count()) + " ms.");
    }
    tell();
  }

  void lose(std::string text) {
    camera_.reset();
    settle(Phase::Lost, std::move(text));
  }

  void settle(Phase phase, std::string text) {
    const std::lock_guard<std::mutex> lock(hub_->mutex);
    hub_->state.phase = phase;
    hub_->state.text = std::move(text);
    hub_->state.temperature.reset();
    hub_->news.notify_all();
  }

  void tell() const {
    try {
      if (options_.onNews) {
        options_.onNews();
      }
    } catch (...) {
      // The host's callback failed; the capture goes on.
    }
  }

  CaptureState state() const {
    const std::lock_guard<std::mutex> lock(hub_->mutex);
    return hub_->state;
  }

  std::shared_ptr<Hub> hub_;
  CaptureOptions options_;
  Library library_;
  std::optional<Camera> camera_;
  bool isCameraWanted_ = false;
  std::shared_ptr<const Opening> opening_;
  std::vector<std::uint8_t> buffer_;  // for the next frame
  std::int64_t exposureUs_ = 0;
  int failuresInRow_ = 0;
  std::int64_t waitsInRow_ = 0;  // without a frame
  std::optional<Clock::time_point> temperatureRead_;
};

}  // namespace detail
/** @endcond */

/**
 * A thread that opens a camera, reads its frames and is the library's only caller.
 *
 * One is enough, because the library has one open camera. The members may be called from any
 * thread, except from CaptureOptions::onNews where they wait. Requests are done one after the other
 * and between two calls for a frame. Those that return a std::future only leave the request: get()
 * waits and throws what failed, and a host that reads state() may ignore the future. A request that
 * is still waiting when the CaptureThread is destroyed ends with std::future_error.
 *
 * The camera is asked for frames as long as there is a queue to put them into: the one behind
 * next(), or one of frames() that is not closed.
 *
 * The camera is lost, and closed, when a number of reads in a row fail (CaptureOptions::failures),
 * or when no frame came for five waits of twice the exposure plus 500 ms (usualWait(),
 * CaptureOptions::silentWaits). Then next() throws, and reopen() or rescan() can bring the camera
 * back.
 */
class CaptureThread {
 public:
  /**
   * Starts the thread without a camera; see rescan() and open().
   *
   * @param options how it works
   * @param library the C functions
   * @throw std::system_error when no thread can be started
   */
  explicit CaptureThread(const CaptureOptions& options = {},
                         const Library& library = Library::linked())
      : hub_(std::make_shared<detail::Hub>()),
        frames_(hub_, options.delivery, options.capacity, 0),
        thread_([hub = hub_, options, library] { detail::Worker(hub, options, library).run(); }) {}

  /**
   * Starts the thread, opens a camera and waits for that.
   *
   * @param camera of the last scan
   * @param settings how to open it
   * @param options how the thread works
   * @param library the C functions
   * @throw Error with the library's text
   */
  CaptureThread(const CameraInfo& camera, const Settings& settings,
                const CaptureOptions& options = {}, const Library& library = Library::linked())
      : CaptureThread(options, library) {
    open(camera, settings).get();
  }

  /** Closes the camera and waits for the thread, for about CaptureOptions::longestCall at most. */
  ~CaptureThread() {
    {
      const std::lock_guard<std::mutex> lock(hub_->mutex);
      hub_->mustStop = true;
    }
    hub_->work.notify_one();
    thread_.join();
    hub_->requests.clear();  // their futures end
  }

  CaptureThread(const CaptureThread&) = delete;
  CaptureThread& operator=(const CaptureThread&) = delete;

  /**
   * Waits for a frame of the thread's own queue, whose kind is CaptureOptions::delivery.
   *
   * @param wait how long; 0 does not wait
   * @return the frame; empty when none came in time
   * @throw Error when the camera was lost and no frame waits
   */
  Frame next(std::chrono::milliseconds wait) { return frames_.next(wait); }

  /** @return frames that the queue behind next() has dropped; see Delivery */
  std::uint64_t dropped() const { return frames_.dropped(); }

  /**
   * A further queue, which takes frames from now on. Made before open(), it has the first frame.
   *
   * @param delivery which frames it hands out
   * @param capacity how many may wait in it or be held by its consumer, 1 or more
   * @param most the queue closes after this many frames; 0: never
   * @return the queue
   */
  FrameQueue frames(Delivery delivery, std::size_t capacity, std::uint64_t most = 0) {
    return {hub_, delivery, (std::max)(capacity, std::size_t{1}), most};
  }

  /** @return what the thread and its camera are doing */
  CaptureState state() const {
    const std::lock_guard<std::mutex> lock(hub_->mutex);
    CaptureState now = hub_->state;
    if (now.phase != Phase::Streaming) {
      return now;
    }
    const auto silence = detail::Clock::now() - hub_->lastFrame;
    now.silence = std::chrono::duration_cast<std::chrono::milliseconds>(silence);
    now.phase = silence >= hub_->wait ? Phase::Silent : Phase::Streaming;
    now.framesPerSecond = hub_->rate.perSecond(silence);
    return now;
  }

  /**
   * Sets exposure, gain and offset. Returns at once; of several settings that wait the last one
   * counts. When the camera refuses them it gets those of before again, and CaptureState::refusals
   * counts. Without an open camera they are for the next reopen() without settings, or rescan().
   *
   * @param exposureUs microseconds, 1 to 2147483647
   * @param gain in the maker's units
   * @param offset in the maker's units
   */
  void apply(std::int64_t exposureUs, int gain, int offset) {
    const auto work = [=](detail::Worker& worker) { worker.apply(exposureUs, gain, offset); };
    hub_->ask(work, true);
  }

  /**
   * Opens a camera; one that is open is closed first.
   *
   * @param camera of the last scan
   * @param settings how to open it
   * @return when it is open; or an Error with the library's text, and the phase is Lost
   */
  std::future<void> open(const CameraInfo& camera, const Settings& settings) {
    return ask([camera, settings](detail::Worker& worker) { worker.open(camera, settings); });
  }

  /**
   * Closes the camera that is open, or was last, and opens it again. When it refuses the settings
   * and was open, it is opened with those of before again.
   *
   * @param settings how to open it; without them those in force
   * @return when it is open; or an Error with the library's text
   */
  std::future<void> reopen(const std::optional<Settings>& settings = std::nullopt) {
    return ask([settings](detail::Worker& worker) { worker.reopen(settings); });
  }

  /**
   * Closes the camera and scans. Then opens the same camera again, found by findAgain(), with the
   * settings in force; also one that was lost, but not one that close() has closed. state() tells
   * whether that worked.
   *
   * @param directory of the SDKs; on Windows a full path
   * @return what the scan found; or what scan() throws
   */
  std::future<Scan> rescan(const Directory& directory) {
    return ask([directory](detail::Worker& worker) { return worker.rescan(directory); });
  }

  /** Closes the camera. @return when it is closed */
  std::future<void> close() {
    return ask([](detail::Worker& worker) { worker.close(); });
  }

 private:
  template <class Work>
  auto ask(Work work) -> std::future<decltype(work(std::declval<detail::Worker&>()))> {
    using Result = decltype(work(std::declval<detail::Worker&>()));
    auto task = std::make_shared<std::packaged_task<Result(detail::Worker&)>>(std::move(work));
    std::future<Result> result = task->get_future();
    hub_->ask([task](detail::Worker& worker) { (*task)(worker); }, false);
    return result;
  }

  std::shared_ptr<detail::Hub> hub_;
  FrameQueue frames_;
  std::thread thread_;  // last: it uses the others
};

}  // namespace oc

#endif
