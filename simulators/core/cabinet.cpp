#include "core/cabinet.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <iterator>

#include "core/camera_model.hpp"
#include "core/random.hpp"
#include "core/sdk.hpp"

namespace orvane::sim {
namespace {

// The columns of the table, in their order.
enum Column : std::size_t {
  sdkColumn,
  nameColumn,
  sizeColumn,
  pixelColumn,
  depthColumn,
  samplesColumn,
  bayerColumn,
  coolerColumn,
  usbColumn,
  binsColumn,
  formatsColumn,
  gainColumn,
  leastExposureColumn,
  longestExposureColumn,
  offsetColumn,
  temperatureColumn,
  refusesColumn,
  columnCount
};

using Fields = std::array<std::string_view, columnCount>;

// Removes the text up to the first separator, and the separator, and returns the text.
std::string_view cutOff(std::string_view& text, std::string_view separator) {
  const std::size_t length = std::min(text.find(separator), text.size());
  const std::string_view part = text.substr(0, length);
  text.remove_prefix(std::min(length + separator.size(), text.size()));
  return part;
}

// The columns of a line, without the marks of values that are not from the SDK.
Fields fieldsOf(std::string_view line) {
  Fields fields;
  for (std::string_view& field : fields) {
    field = cutOff(line, ",");
    field.remove_prefix(field.starts_with('~') ? 1 : 0);
  }
  return fields;
}

template <class Number>
Number numberIn(std::string_view text) {
  Number number{};
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

std::int32_t wholeIn(std::string_view text) {
  return numberIn<std::int32_t>(text);
}

// "0..600"
void setRange(std::string_view text, double& minimum, double& maximum) {
  minimum = numberIn<double>(cutOff(text, ".."));
  maximum = numberIn<double>(text);
}

// "1 2 4"
template <std::size_t Size>
void setBins(std::string_view text, std::int32_t (&bins)[Size]) {
  for (std::size_t i = 0; i < Size && !text.empty(); ++i) {
    bins[i] = wholeIn(cutOff(text, " "));
  }
}

// The maker's code of a word.
template <class Table>
std::int32_t codeOf(const Table& table, std::string_view word) {
  const auto found = std::find_if(std::begin(table), std::end(table),
                                  [word](const CodeOf& each) { return each.word == word; });
  return found == std::end(table) ? -1 : found->code;
}

void setFormats(std::string_view text, SimCamera& camera) {
  std::fill(std::begin(camera.formats), std::end(camera.formats), -1);
  for (std::size_t i = 0; i < std::size(camera.formats) && !text.empty(); ++i) {
    camera.formats[i] = codeOf(maker.formatCodes, cutOff(text, " "));
  }
}

// "offset", "bits at bin 1 2" or "bits before size at bin 2"
void setRefusals(std::string_view text, SimCamera& camera) {
  camera.refusesOffset = text == "offset" ? 1 : 0;
  constexpr std::string_view atBins = "at bin ";
  const std::size_t place = text.find(atBins);
  if (place != std::string_view::npos) {
    std::int32_t bins[16]{};
    setBins(text.substr(place + atBins.size()), bins);
    for (const std::int32_t bin : bins) {
      camera.refusesBitsAtBins |= bin > 0 ? 1U << bin : 0U;
    }
    camera.acceptsBitsAfterSize = text.starts_with("bits before size") ? 1 : 0;
  }
}

SimCamera modelOf(const Fields& fields) {
  SimCamera camera{};
  copyText(camera.name, fields[nameColumn]);
  std::string_view size = fields[sizeColumn];
  camera.width = wholeIn(cutOff(size, "x"));
  camera.height = wholeIn(size);
  camera.pixelSizeUm = numberIn<double>(fields[pixelColumn]);
  camera.bitDepth = wholeIn(fields[samplesColumn]);
  camera.reportedBitDepth = wholeIn(fields[depthColumn]);
  camera.isColor = fields[bayerColumn] == "mono" ? 0 : 1;
  camera.bayerPattern = codeOf(maker.patternCodes, fields[bayerColumn]);
  camera.isCooled = fields[coolerColumn].empty() ? 0 : 1;
  std::string_view usb = fields[usbColumn];
  camera.isUsb3Camera = cutOff(usb, "/") == "3" ? 1 : 0;
  camera.isUsb3Host = usb == "3" ? 1 : 0;
  setBins(fields[binsColumn], camera.bins);
  setFormats(fields[formatsColumn], camera);
  setRange(fields[gainColumn], camera.gainMin, camera.gainMax);
  camera.exposureMinUs = numberIn<double>(fields[leastExposureColumn]);
  camera.exposureMaxUs = numberIn<double>(fields[longestExposureColumn]);
  camera.offsetMax = -1;
  if (fields[offsetColumn] != "none") {
    setRange(fields[offsetColumn], camera.offsetMin, camera.offsetMax);
  }
  camera.hasTemperature = fields[temperatureColumn] == "yes" ? 1 : 0;
  setRefusals(fields[refusesColumn], camera);
  setIdentity(camera, 0);
  return camera;
}

bool isOfThisSdk(const Fields& fields) {
  return fields[sdkColumn] == maker.sdkName;
}

// What distinguishes a model, for a person who chooses one.
std::string remarksOn(const Fields& fields) {
  std::string text(fields[bayerColumn]);
  const auto add = [&text](bool isSo, std::string_view remark) {
    text += isSo ? ", " + std::string(remark) : "";
  };
  add(!fields[coolerColumn].empty(), "cooled");
  add(fields[usbColumn].starts_with('2'), "USB 2");
  add(fields[offsetColumn] == "none", "no black level");
  add(maker.lacksDepthAt8Bits && fields[depthColumn] == "8", "no depth option");
  add(!fields[refusesColumn].empty(), "refuses " + std::string(fields[refusesColumn]));
  return text;
}

}  // namespace

std::optional<SimCamera> modelNamed(std::string_view name) {
  for (const std::string_view line : cabinetLines) {
    const Fields fields = fieldsOf(line);
    if (isOfThisSdk(fields) && fields[nameColumn] == name) {
      return modelOf(fields);
    }
  }
  return std::nullopt;
}

bool isModel(std::string_view name) {
  return std::any_of(cabinetLines.begin(), cabinetLines.end(),
                     [name](std::string_view line) { return fieldsOf(line)[nameColumn] == name; });
}

void setIdentity(SimCamera& camera, std::size_t number) {
  camera.id = static_cast<std::int32_t>(number);
  std::uint64_t serial = mix(number);
  const std::string_view name = textOf(camera.name);
  for (const char letter : name) {
    serial = mix(serial + static_cast<unsigned char>(letter));
  }
  char digits[17];
  static_cast<void>(
      std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(serial)));
  copyText(camera.key, std::string(name) + "-" + digits);
}

std::string cabinetText() {
  std::string text;
  for (const std::string_view line : cabinetLines) {
    const Fields fields = fieldsOf(line);
    if (isOfThisSdk(fields)) {
      std::string_view height = fields[sizeColumn];
      const std::string width(cutOff(height, "x"));
      text += std::string(fields[nameColumn]) + "\t" + width + " x " + std::string(height) + "\t" +
              remarksOn(fields) + "\n";
    }
  }
  return text;
}

}  // namespace orvane::sim
