// The pages for people: the cameras, their state, their last picture, and the SDKs.
#include "oc_alpaca/setup_page.hpp"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "formats/png_writer.hpp"
#include "imaging/stretch.hpp"
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

namespace {

constexpr int notFound = 403;  // what the protocol asks for

// Every text on a page goes through this.
std::string element(const char* name, std::string_view text) {
  return std::string("<") + name + ">" + escapedHtml(text) + "</" + name + ">";
}

Response page(const std::string& title, const std::string& content) {
  Response response;
  response.contentType = "text/html; charset=utf-8";
  response.body =
      "<!doctype html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">" +
      element("title", title) +
      "<style>body{font:16px/1.5 sans-serif;max-width:60em;margin:2em auto;padding:0 1em;"
      "background:#16181d;color:#ddd}a{color:#8bf}table{border-collapse:collapse;width:100%}"
      "td,th{text-align:left;vertical-align:top;padding:.4em .8em .4em 0;"
      "border-bottom:1px solid #444}img{max-width:100%;background:#000}</style></head><body>" +
      element("h1", title) + content + "</body></html>\n";
  return response;
}

std::string setupPath(std::size_t number) {
  return "/setup/v1/camera/" + std::to_string(number) + "/";
}

std::string cameraTable(const Devices& devices) {
  if (devices.size() == 0) {
    return element("p", "No camera was found. Connect the cameras and reload the page.");
  }
  std::string rows = "<table><tr><th>Number</th><th>Camera</th><th>State</th></tr>";
  for (std::size_t number = 0; number < devices.size(); ++number) {
    const CameraDevice& camera = devices.at(number);
    rows += "<tr>" + element("td", std::to_string(number)) + "<td><a href=\"" + setupPath(number) +
            "setup\">" + escapedHtml(camera.camera().name) + "</a></td>" +
            element("td", camera.connectionText()) + "</tr>";
  }
  return rows + "</table>";
}

std::string sdkTable(const Devices& devices) {
  std::string rows = "<table><tr><th>Maker</th><th>File</th><th>State</th></tr>";
  for (const SdkSummary& sdk : devices.sdks()) {
    std::string state = !sdk.isPresent ? "Not there." : sdk.isHealthy ? "Healthy." : "Not usable.";
    for (const std::string& cure : sdk.cures) {
      state += " " + cure;
    }
    rows += "<tr>" + element("td", sdk.maker) + element("td", sdk.file) + element("td", state) +
            "</tr>";
  }
  return rows + "</table>";
}

Response serverPage(const Devices& devices) {
  const std::string problem =
      devices.scanText().empty() ? "" : element("p", "The scan: " + devices.scanText());
  return page(
      "Orvane cameras",
      element("p", "Orvane Desktop Camera, oc_alpaca " ORVANE_VERSION
                   ", ASCOM Alpaca server. Reload the page to see the state anew.") +
          element("h2", "Cameras") + cameraTable(devices) + problem + element("h2", "SDKs") +
          sdkTable(devices) +
          element("p", "The server's settings are its arguments. Nothing can be changed here."));
}

Response cameraPage(const Devices& devices, std::size_t number) {
  const CameraDevice& camera = devices.at(number);
  const std::shared_ptr<const Picture> picture = camera.lastPicture();
  const std::string image =
      picture ? element("h2", "The last picture") +
                    element("p", dimensionsText(picture->layout.width, picture->layout.height) +
                                     " pixels, stretched for the screen.") +
                    "<img alt=\"The last picture\" src=\"" + setupPath(number) + "picture.png\">"
              : element("p", "There is no picture.");
  return page(camera.camera().name,
              "<p><a href=\"/setup\">All cameras</a></p>" +
                  element("p", "Camera " + std::to_string(number) + ", " +
                                   dimensionsText(camera.size().width, camera.size().height) +
                                   " pixels, unique id " + camera.uniqueId() + ".") +
                  element("p", camera.connectionText()) +
                  element("p",
                          "Exposure, gain, bin and region are set by astronomy programs. "
                          "There is nothing to configure here.") +
                  image);
}

// A picture of at most about this size is enough for a page. Squares of 2 x 2 pixels are left out
// evenly, which keeps the Bayer pattern.
constexpr int enoughPixels = 1600;

Image reducedImage(const Picture& picture) {
  const FrameLayout& layout = picture.layout;
  const int step = std::max(1, std::max(layout.width, layout.height) / enoughPixels);
  const int planes = layout.format == PixelFormat::Rgb24 ? 3 : 1;
  const auto reduced = [step](int size) { return std::max(1, size / (2 * step) * 2); };
  const auto source = [step](int place) { return place / 2 * 2 * step + place % 2; };
  Image image{reduced(layout.width), reduced(layout.height), planes, {}};
  const std::span<const std::uint8_t> bytes = picture.bytes();
  const int scale = layout.format == PixelFormat::Raw16 ? 1 : 257;  // 255 becomes 65535
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      for (int plane = 0; plane < planes; ++plane) {
        // Column by column.
        const std::size_t pixel = pixelIndex(layout.height, source(y), source(x));
        const std::size_t sample =
            pixel * static_cast<std::size_t>(planes) + static_cast<std::size_t>(plane);
        image.samples.push_back(
            static_cast<std::uint16_t>(scale * sampleAt(bytes, layout.format, sample)));
      }
    }
  }
  return image;
}

Response pictureFile(const CameraDevice& camera) {
  constexpr int pageWidth = 900;
  const std::shared_ptr<const Picture> picture = camera.picture();
  // A side of one pixel has no Bayer pattern.
  const bool hasPattern = picture->layout.width > 1 && picture->layout.height > 1;
  const std::vector<std::uint8_t> png = pngBytes(previewOf(
      reducedImage(*picture), hasPattern ? picture->layout.bayer : BayerPattern::None, pageWidth));
  Response response;
  response.contentType = "image/png";
  response.body.assign(png.begin(), png.end());
  return response;
}

}  // namespace

Response answerSetup(const Devices& devices, std::string_view path) {
  if (path == "/" || path == "/setup") {
    return serverPage(devices);
  }
  Response refusal;
  refusal.status = notFound;
  refusal.body = "There is no such page.\n";
  constexpr std::string_view beginning = "/setup/v1/camera/";
  if (!path.starts_with(beginning)) {
    return refusal;
  }
  path.remove_prefix(beginning.size());
  const std::size_t slash = std::min(path.find('/'), path.size());
  const std::optional<std::size_t> number = deviceNumber(path.substr(0, slash), devices);
  const std::string_view file = path.substr(slash);
  if (number && file == "/setup") {
    return cameraPage(devices, *number);
  }
  if (number && file == "/picture.png" && devices.at(*number).lastPicture()) {
    return pictureFile(devices.at(*number));
  }
  return refusal;
}

}  // namespace orvane::host
