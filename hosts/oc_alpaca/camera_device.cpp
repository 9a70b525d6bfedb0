// A camera as the protocol's clients see it: its connection, its settings, its exposure, its
// picture.
#include "oc_alpaca/camera_device.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "session/camera_catalogue.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

using std::chrono::microseconds;
using std::chrono::seconds;

// How long an SDK may take.
constexpr seconds patienceForScan{60};
constexpr seconds patienceForOpening{10};
constexpr seconds patienceForClosing{4};

constexpr std::int64_t connectExposureUs = 1000000;
constexpr double shortestSeconds = 0.0001;
constexpr double largestExposureUs = 2147483647;

constexpr double microsecondsPerSecond = 1e6;

// How long a streaming camera may be silent before it counts as lost, and a second for its worker
// to notice that by itself.
microseconds patienceForFrame(std::int64_t exposureUs) {
  return oc::patience * oc::usualWait(exposureUs) + seconds(1);
}

std::vector<oc::Format> bestFirst(std::vector<oc::Format> formats) {
  // RGB is never the first: a part of the clients cannot read pictures with three planes.
  const auto rank = [](oc::Format format) {
    constexpr std::array order{oc::Format::Raw16, oc::Format::Raw8, oc::Format::Mono8,
                               oc::Format::Rgb24};
    return std::ranges::find(order, format) - order.begin();
  };
  std::ranges::sort(formats, {}, rank);
  return formats;
}

std::size_t largestFrame(const oc::CameraInfo& camera) {
  std::size_t largest = 1;
  for (const oc::Format format : camera.formats) {
    largest = std::max(largest, frameBytes({camera.maxWidth, camera.maxHeight, format}));
  }
  constexpr std::size_t page = 4096;
  return (largest + page - 1) / page * page;
}

std::string secondsText(microseconds time) {
  return decimal(static_cast<double>(time.count()) / microsecondsPerSecond, 1) + " s";
}

}  // namespace

CameraDevice::CameraDevice(oc::CameraInfo camera, std::string uniqueId, DeviceOptions options)
    : camera_(std::move(camera)),
      uniqueId_(std::move(uniqueId)),
      options_(std::move(options)),
      size_(commonSize(camera_)),
      readoutModes_(bestFirst(camera_.formats)),
      slotSize_(largestFrame(camera_)),
      memory_(std::make_shared<SharedMemory>(slots * slotSize_)) {}

CameraDevice::~CameraDevice() {
  Lock lock(mutex_);
  endWorker(lock);
}

double CameraDevice::shortestExposure() const {
  return shortestSeconds;
}

double CameraDevice::longestExposure() const {
  const double stated =
      hasLongestExposure(camera_) ? static_cast<double>(camera_.maxExposureUs) : largestExposureUs;
  return std::min(stated, largestExposureUs) / microsecondsPerSecond;
}

void CameraDevice::log(const std::string& text) const {
  if (options_.log != nullptr) {
    options_.log->write(camera_.name + ": " + text);
  }
}

// The worker.

void CameraDevice::endWorker(Lock& lock) {
  ++generation_;
  isWorkerFresh_ = false;
  std::unique_ptr<WorkerProcess> old = std::move(worker_);
  lock.unlock();  // its thread may be waiting for the lock
  old.reset();
  lock.lock();
}

void CameraDevice::startWorker(Lock& lock) {
  endWorker(lock);
  const std::uint64_t generation = generation_;
  const auto ifCurrent = [this, generation](auto work) {
    const Lock inner(mutex_);
    if (generation == generation_) {
      work();
      changed_.notify_all();
    }
  };
  worker_ = std::make_unique<WorkerProcess>(
      options_.sdkDirectory, memory_.get(),
      WorkerProcess::Listener{
          [this, ifCurrent](const Json& event) { ifCurrent([&] { handle(event); }); },
          [this, ifCurrent](const std::string& how) { ifCurrent([&] { handleEnd(how); }); }});
  log("worker " + std::to_string(worker_->id()) + " started");
  ask(lock, {{"do", "find"}, {"name", camera_.name}, {"ordinal", camera_.ordinal}},
      patienceForScan);
  isWorkerFresh_ = true;
}

// Sends a command and waits for the answer. Throws the text of a failure.
Json CameraDevice::ask(Lock& lock, const Json& command, seconds patience) {
  answer_.reset();
  worker_->send(command);
  const bool isAnswered = changed_.wait_for(lock, patience, [this] { return answer_.has_value(); });
  Json answer = isAnswered ? *answer_ : Json{{"is", "failed"}, {"text", ""}};
  answer_.reset();
  if (answer.at("is") != "failed") {
    return answer;
  }
  std::string text = isAnswered ? answer.at("text").get<std::string>()
                                : "The camera's SDK did not answer within " +
                                      secondsText(patience) + ", so its process was ended.";
  endWorker(lock);
  throw AlpacaError(ErrorNumber::Driver, text);
}

void CameraDevice::handle(const Json& event) {
  const std::string what = event.at("is");
  if (what == "temperature") {
    const double celsius = event.at("celsius");
    constexpr double coldest = -60;
    constexpr double warmest = 80;
    if (celsius >= coldest && celsius <= warmest) {
      temperature_ = celsius;
    }
  } else if (isBusy() || connection_ != Connection::Connected) {
    answer_ = event;
  } else if (what == "failed") {
    const bool isLost = event.at("lost");
    if (isLost) {
      lose(event.at("text"));
    } else if (isExposing() && event.at("number") == exposure_) {
      fail(event.at("text"));
    }
  } else if (isExposing() && event.at("number") == exposure_) {
    if (what == "exposing") {
      state_ = CameraState::Exposing;
      exposingSince_ = Clock::now();
      patience_ = patienceForFrame(event.at("longest"));
      deadline_ = exposingSince_ + patience_;
    } else if (what == "frame") {
      deadline_ = Clock::now() + patience_;
    } else if (what == "picture") {
      takePicture(event);
    }
  }
}

void CameraDevice::takePicture(const Json& event) {
  constexpr std::size_t untilMilliseconds = 23;
  lastExposure_ = LastExposure{static_cast<double>(exposureUs_) / microsecondsPerSecond,
                               event.at("start").get<std::string>().substr(0, untilMilliseconds)};
  picture_ = std::move(coming_);
  state_ = CameraState::Idle;
  deadline_.reset();
}

void CameraDevice::handleEnd(const std::string& how) {
  const std::string text = "The camera's SDK has ended its process (" + how + ").";
  isWorkerFresh_ = false;
  if (isBusy() || connection_ == Connection::None) {
    answer_ = Json{{"is", "failed"}, {"text", text}};
  } else if (connection_ == Connection::Connected) {
    lose(text + " Connect the camera again.");
  }
}

// The exposure has failed; the camera goes on.
void CameraDevice::fail(const std::string& text) {
  log("exposure failed: " + text);
  state_ = CameraState::Error;
  exposureFailure_ = text;
  coming_.reset();
  deadline_.reset();
}

void CameraDevice::lose(const std::string& text) {
  log("lost: " + text);
  fail(text);
  failure_ = text;
  connection_ = Connection::Lost;
  isWorkerFresh_ = false;
}

void CameraDevice::checkPatience() {
  const Lock lock(mutex_);
  if (deadline_ && Clock::now() > *deadline_ && connection_ == Connection::Connected) {
    worker_->kill();
    lose(
        "The camera's SDK did not answer in time, so its process was ended. Connect the camera "
        "again.");
    changed_.notify_all();
  }
}

// The connection.

void CameraDevice::prepare() {
  Lock lock(mutex_);
  try {
    startWorker(lock);
  } catch (const std::exception& error) {
    log(std::string("not prepared: ") + error.what());
  }
}

bool CameraDevice::beginConnect() {
  Lock lock(mutex_);
  changed_.wait(lock, [this] { return connection_ != Connection::Disconnecting; });
  if (connection_ == Connection::Connecting || connection_ == Connection::Connected) {
    return false;
  }
  connection_ = Connection::Connecting;
  failure_.clear();
  return true;
}

void CameraDevice::finishConnect() {
  const std::shared_lock<std::shared_mutex> afterScan(*options_.scanning);
  Lock lock(mutex_);
  try {
    open(lock);
    connection_ = Connection::Connected;
    log("connected");
  } catch (const std::exception& error) {
    failure_ = error.what();
    connection_ = Connection::None;
    log("not connected: " + failure_);
  }
  changed_.notify_all();
}

void CameraDevice::open(Lock& lock) {
  temperature_.reset();
  picture_.reset();
  coming_.reset();
  lastExposure_.reset();
  deadline_.reset();
  exposureFailure_.clear();
  state_ = CameraState::Idle;
  setup_ = {.width = size_.width, .height = size_.height};
  setup_.gain = usualGain(camera_);
  if (options_.offsets) {
    setup_.offset = std::clamp(0, options_.offsets->smallest, options_.offsets->largest);
  }
  if (readoutModes_.empty()) {
    throw AlpacaError(ErrorNumber::Driver, "The camera states no format that is known here.");
  }
  const Json command{{"do", "open"}, {"settings", jsonOf(settingsFor(setup_, connectExposureUs))}};
  if (isWorkerFresh_) {
    try {
      ask(lock, command, patienceForOpening);
      return;
    } catch (const AlpacaError& error) {
      // Since its scan the camera may have been unplugged and plugged in again.
      log(std::string("not opened, so looked for again: ") + error.what());
    }
  }
  startWorker(lock);
  ask(lock, command, patienceForOpening);
}

void CameraDevice::connect() {
  if (beginConnect()) {
    finishConnect();
  }
  Lock lock(mutex_);
  changed_.wait(lock, [this] { return !isBusy(); });
  if (connection_ != Connection::Connected) {
    throw AlpacaError(ErrorNumber::Driver, failure_);
  }
}

bool CameraDevice::beginDisconnect() {
  Lock lock(mutex_);
  changed_.wait(lock, [this] { return connection_ != Connection::Connecting; });
  failure_.clear();
  if (connection_ == Connection::Lost) {
    connection_ = Connection::None;
  }
  if (connection_ != Connection::Connected) {
    return false;
  }
  connection_ = Connection::Disconnecting;
  state_ = CameraState::Idle;
  deadline_.reset();
  coming_.reset();
  return true;
}

void CameraDevice::finishDisconnect() {
  Lock lock(mutex_);
  try {
    ask(lock, {{"do", "close"}}, patienceForClosing);
  } catch (const std::exception& error) {
    log(std::string("not closed: ") + error.what());
  }
  connection_ = Connection::None;
  log("disconnected");
  changed_.notify_all();
}

void CameraDevice::disconnect() {
  if (beginDisconnect()) {
    finishDisconnect();
  }
  Lock lock(mutex_);
  changed_.wait(lock, [this] { return !isBusy(); });
}

bool CameraDevice::isConnecting() const {
  const Lock lock(mutex_);
  if (connection_ == Connection::None && !failure_.empty()) {
    throw AlpacaError(ErrorNumber::Driver, failure_);
  }
  return isBusy();
}

bool CameraDevice::isConnected() const {
  const Lock lock(mutex_);
  return connection_ == Connection::Connected;
}

bool CameraDevice::isOpen() const {
  const Lock lock(mutex_);
  return connection_ == Connection::Connected || connection_ == Connection::Disconnecting;
}

void CameraDevice::checkConnected() const {
  if (connection_ != Connection::Connected) {
    throw AlpacaError(ErrorNumber::NotConnected, failure_.empty()
                                                     ? "The camera is not connected."
                                                     : "The camera is not connected. " + failure_);
  }
}

void CameraDevice::requireConnected() const {
  const Lock lock(mutex_);
  checkConnected();
}

void CameraDevice::requireNotLost() const {
  const Lock lock(mutex_);
  if (connection_ == Connection::Lost) {
    throw AlpacaError(ErrorNumber::Driver, failure_);
  }
  checkConnected();
}

std::string CameraDevice::connectionText() const {
  const Lock lock(mutex_);
  switch (connection_) {
    case Connection::None:
      return failure_.empty() ? "Not connected." : "Not connected. " + failure_;
    case Connection::Connecting:
      return "Connecting.";
    case Connection::Connected:
      return "Connected.";
    case Connection::Disconnecting:
      return "Disconnecting.";
    case Connection::Lost:
      break;
  }
  return "Lost. " + failure_;
}

// Settings.

CaptureSetup CameraDevice::setup() const {
  const Lock lock(mutex_);
  checkConnected();
  return setup_;
}

void CameraDevice::setSetup(int CaptureSetup::*value, int wanted) {
  const Lock lock(mutex_);
  checkConnected();
  setup_.*value = wanted;
}

oc::Settings CameraDevice::settingsFor(const CaptureSetup& setup, std::int64_t exposureUs) const {
  oc::Settings settings;
  settings.bin = setup.bin;
  settings.format = readoutModes_.at(static_cast<std::size_t>(setup.readoutMode));
  settings.exposureUs = exposureUs;
  settings.gain = setup.gain;
  settings.offset = setup.offset;
  return settings;
}

// Exposures.

void CameraDevice::checkExposure(const CaptureSetup& setup, double seconds, bool hasLight) const {
  const auto refuse = [](const std::string& text) {
    throw AlpacaError(ErrorNumber::InvalidValue, text);
  };
  if (seconds < 0 || seconds > longestExposure() || (hasLight && seconds < shortestSeconds)) {
    refuse("An exposure of " + decimal(seconds) + " s is not possible: " +
           decimal(shortestSeconds) + " to " + decimal(longestExposure()) + " s are.");
  }
  const int width = size_.width / setup.bin;
  const int height = size_.height / setup.bin;
  // Written so that no sum can overflow.
  if (setup.width < 1 || setup.height < 1 || setup.left < 0 || setup.top < 0 ||
      setup.width > width || setup.height > height || setup.left > width - setup.width ||
      setup.top > height - setup.height) {
    refuse("The region of " + dimensionsText(setup.width, setup.height) + " pixels at " +
           std::to_string(setup.left) + ", " + std::to_string(setup.top) +
           " is not inside the frame, which has " + dimensionsText(width, height) +
           " pixels at bin " + std::to_string(setup.bin) + ".");
  }
}

std::size_t CameraDevice::freeSlot() const {
  for (std::size_t slot = 0; slot < slots; ++slot) {
    if (slotUsers_.at(slot).expired()) {
      return slot;
    }
  }
  throw AlpacaError(ErrorNumber::InvalidOperation,
                    "Clients are still reading the last pictures. Try again.");
}

void CameraDevice::startExposure(double seconds, bool hasLight) {
  const Lock lock(mutex_);
  if (connection_ == Connection::Lost) {
    throw AlpacaError(ErrorNumber::Driver, failure_);
  }
  checkConnected();
  checkExposure(setup_, seconds, hasLight);
  if (isExposing()) {
    throw AlpacaError(ErrorNumber::InvalidOperation, "The camera is exposing.");
  }
  picture_.reset();
  const std::size_t slot = freeSlot();
  const double taken = std::max(seconds, shortestSeconds);
  exposureUs_ = std::llround(taken * microsecondsPerSecond);
  exposureFailure_.clear();
  ExposeCommand command;
  command.number = ++exposure_;
  command.settings = settingsFor(setup_, exposureUs_);
  command.region = {setup_.left, setup_.top, setup_.width, setup_.height};
  command.offset = slot * slotSize_;
  const bool isRaw =
      command.settings.format == oc::Format::Raw8 || command.settings.format == oc::Format::Raw16;
  coming_ = std::make_shared<Picture>();
  coming_->memory = memory_;
  coming_->offset = command.offset;
  coming_->layout = {setup_.width, setup_.height, command.settings.format,
                     isRaw && camera_.isColor ? shiftedBayer(camera_.bayer, setup_.left, setup_.top)
                                              : oc::Bayer::None};
  slotUsers_.at(slot) = coming_;
  state_ = CameraState::Waiting;
  // The worker may wait for the end of a frame before, and may have to open the camera anew.
  deadline_ = Clock::now() + patienceForOpening;
  worker_->send(jsonOf(command));
}

void CameraDevice::abortExposure() {
  const Lock lock(mutex_);
  checkConnected();
  if (isExposing()) {
    worker_->send({{"do", "abort"}});
  }
  ++exposure_;  // what is still said about the last one is ignored
  state_ = CameraState::Idle;
  deadline_.reset();
  coming_.reset();
  picture_.reset();
  exposureFailure_.clear();
}

CameraState CameraDevice::state() const {
  const Lock lock(mutex_);
  if (connection_ != Connection::Lost) {
    checkConnected();
  }
  return state_;
}

int CameraDevice::percentCompleted() const {
  const Lock lock(mutex_);
  constexpr int all = 100;
  if (state_ == CameraState::Exposing) {
    const auto elapsed = std::chrono::duration_cast<microseconds>(Clock::now() - exposingSince_);
    return static_cast<int>(std::min<std::int64_t>(all, all * elapsed.count() / exposureUs_));
  }
  return picture_ ? all : 0;
}

bool CameraDevice::isImageReady() const {
  const Lock lock(mutex_);
  if (!exposureFailure_.empty()) {
    throw AlpacaError(ErrorNumber::Driver, exposureFailure_);
  }
  return picture_ != nullptr;
}

std::shared_ptr<const Picture> CameraDevice::lastPicture() const {
  const Lock lock(mutex_);
  return picture_;
}

std::shared_ptr<const Picture> CameraDevice::picture() const {
  std::shared_ptr<const Picture> picture = lastPicture();
  if (!picture) {
    isImageReady();  // throws if the exposure failed
    throw AlpacaError(ErrorNumber::InvalidOperation, "There is no picture.");
  }
  return picture;
}

LastExposure CameraDevice::lastExposure() const {
  const Lock lock(mutex_);
  if (!lastExposure_) {
    throw AlpacaError(ErrorNumber::InvalidOperation, "There was no exposure yet.");
  }
  return *lastExposure_;
}

std::optional<double> CameraDevice::temperature() const {
  const Lock lock(mutex_);
  return temperature_;
}

}  // namespace orvane::host
