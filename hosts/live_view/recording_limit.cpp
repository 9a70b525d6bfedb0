// When a recording ends by itself.
#include "live_view/recording_limit.hpp"

#include <algorithm>
#include <vector>

#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr std::int64_t second = 1'000'000;
constexpr std::int64_t minute = 60 * second;

std::string timeText(std::int64_t microseconds) {
  return microseconds >= minute && microseconds % minute == 0
             ? std::to_string(microseconds / minute) + " min"
             : decimal(static_cast<double>(microseconds) / second) + " s";
}

}  // namespace

RecordingLimit nextLimit(const RecordingLimit& now, const RecordingLimit& given) {
  std::vector<RecordingLimit> limits = {{}};
  if (given != RecordingLimit()) {
    limits.push_back(given);
  }
  for (const std::int64_t time : {10 * second, 30 * second, 1 * minute, 90 * second, 2 * minute,
                                  3 * minute, 5 * minute, 10 * minute}) {
    limits.push_back({{}, time});
  }
  const auto found = std::find(limits.begin(), limits.end(), now);
  return found == limits.end() || found + 1 == limits.end() ? limits.front() : *(found + 1);
}

std::string limitText(const RecordingLimit& limit) {
  const std::string frames =
      limit.frames ? std::to_string(*limit.frames) + (*limit.frames == 1 ? " frame" : " frames")
                   : "";
  const std::string time = limit.microseconds ? timeText(*limit.microseconds) : "";
  return frames + (frames.empty() || time.empty() ? "" : " or ") + time;
}

}  // namespace orvane::host
