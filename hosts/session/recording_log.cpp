// The settings log beside a recording: a text file with one "key=value" a line.
#include "session/recording_log.hpp"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fstream>

#include "formats/ser_time.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr const char* exposureKey = "exposure_us";

std::string optionalDecimal(const std::optional<double>& number) {
  return number ? decimal(*number, 1) : "";
}

std::string twoDigits(std::int64_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

// Adds lines. What a value must not contain is replaced, so that a line stays a line.
class Lines {
 public:
  void add(const char* key, const std::string& value) {
    std::string clean = validUtf8(value);
    std::replace_if(
        clean.begin(), clean.end(),
        [](char letter) { return static_cast<unsigned char>(letter) < ' ' || letter == '\x7f'; },
        ' ');
    text_ += std::string(key) + "=" + clean + "\n";
  }

  template <class Number>
  void add(const char* key, Number number) {
    add(key, std::to_string(number));
  }

  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

void addTime(Lines& lines, const std::string& key, std::chrono::system_clock::time_point time) {
  lines.add((key + "_utc").c_str(), utcText(time) + "Z");
  lines.add((key + "_local").c_str(), localText(time));
}

}  // namespace

std::string localText(std::chrono::system_clock::time_point time) {
  constexpr std::int64_t ticksPerMinute = 600'000'000;
  const std::int64_t offset = (serLocalTicks(time) - serTicks(time)) / ticksPerMinute;
  return utcText(time + std::chrono::minutes(offset)) + (offset < 0 ? "-" : "+") +
         twoDigits(std::abs(offset) / 60) + ":" + twoDigits(std::abs(offset) % 60);
}

std::string settingsLog(const RecordingFacts& facts) {
  const oc::FrameLayout& layout = facts.layout;
  const oc::Settings& settings = facts.settings;
  Lines lines;
  lines.add("program", facts.program);
  lines.add("file", facts.file);
  lines.add("camera", facts.camera.name);
  lines.add("sdk", joined(facts.sdks, ", "));
  lines.add("observer", facts.observer);
  lines.add("telescope", facts.telescope);
  lines.add("target", facts.target);
  lines.add("filter", facts.filter);
  lines.add("width", layout.width);
  lines.add("height", layout.height);
  lines.add("region", facts.region ? regionValue(*facts.region) : "");
  lines.add("bin", settings.bin);
  lines.add("format", std::string(formatName(layout.format)));
  lines.add("bit_depth", facts.camera.bitDepth);
  lines.add("bayer_pattern", std::string(bayerName(layout.bayer)));
  lines.add(exposureKey, settings.exposureUs);
  lines.add("gain", settings.gain ? std::to_string(*settings.gain) : "");
  lines.add("offset", settings.offset);
  lines.add("temperature_start_c", optionalDecimal(facts.temperatureAtStart));
  lines.add("temperature_end_c", optionalDecimal(facts.temperatureAtEnd));
  addTime(lines, "start", facts.start);
  addTime(lines, "middle", facts.start + (facts.end - facts.start) / 2);
  addTime(lines, "end", facts.end);
  lines.add("frames", facts.frames);
  lines.add("dropped_frames", facts.droppedFrames);
  lines.add("gaps", facts.gaps);
  lines.add("failed_reads", facts.failedReads);
  lines.add("frames_per_second", decimal(facts.framesPerSecond, 3));
  lines.add("error", facts.error);
  return lines.text();
}

std::int64_t exposureInLog(const std::filesystem::path& log) {
  const std::string start = std::string(exposureKey) + "=";
  std::ifstream file(log);
  std::int64_t microseconds = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(start)) {
      std::from_chars(line.data() + start.size(), line.data() + line.size(), microseconds);
    }
  }
  return std::max<std::int64_t>(microseconds, 0);
}

}  // namespace orvane::host
