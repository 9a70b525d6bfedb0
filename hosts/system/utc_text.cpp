// Points in time as text.
#include "system/utc_text.hpp"

#include <iomanip>
#include <locale>
#include <sstream>

namespace orvane::host {

std::string utcText(std::chrono::system_clock::time_point time) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(std::chrono::floor<std::chrono::microseconds>(time - day));
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << std::setfill('0') << std::setw(4) << static_cast<int>(date.year()) << "-" << std::setw(2)
       << static_cast<unsigned>(date.month()) << "-" << std::setw(2)
       << static_cast<unsigned>(date.day()) << "T" << std::setw(2) << clock.hours().count() << ":"
       << std::setw(2) << clock.minutes().count() << ":" << std::setw(2) << clock.seconds().count()
       << "." << std::setw(6) << clock.subseconds().count();
  return text.str();
}

}  // namespace orvane::host
