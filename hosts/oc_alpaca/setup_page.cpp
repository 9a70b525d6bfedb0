// The pages for people: the cameras, their state, their last picture, and the SDKs.
#include "oc_alpaca/setup_page.hpp"

#include <charconv>
#include <system_error>

#include "system/text.hpp"

namespace orvane::host {

std::optional<std::size_t> deviceNumber(std::string_view text, const Devices& devices) {
  std::size_t number = 0;
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  return parsed.ec == std::errc() && parsed.ptr == end && number < devices.size()
             ? std::optional<std::size_t>(number)
             : std::nullopt;
}

std::string escapedHtml(std::string_view text) {
  std::string escaped;
  for (const char letter : text) {
    switch (letter) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += letter;
    }
  }
  return escaped;
}

Response answerSetup(const Devices& devices, std::string_view) {
  Response response;
  response.contentType = "text/html; charset=utf-8";
  response.body =
      "<!doctype html><title>Orvane cameras</title><p>" + std::to_string(devices.size());
  return response;
}

}  // namespace orvane::host
