// What to do about a finding, in words for the SDK's user.
#include "sdk_check/cures.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "sdk_check/system_loader.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

// The libraries whose names begin like this, and who provides them.
struct Provider {
  std::string_view beginning;
  std::string_view cure;
};

constexpr std::string_view runtime2015 =
    "Install Microsoft's Visual C++ Redistributable 2015-2022 for x64.";
constexpr std::string_view runtime2013 =
    "Install Microsoft's Visual C++ Redistributable 2013 for x64.";
constexpr std::string_view runtime2012 =
    "Install Microsoft's Visual C++ Redistributable 2012 for x64.";
constexpr std::string_view runtime2010 =
    "Install Microsoft's Visual C++ Redistributable 2010 for x64.";
constexpr std::string_view runtime2008 =
    "Install Microsoft's Visual C++ Redistributable 2008 for x64.";
constexpr std::string_view debugRuntime =
    "The file is a developer's build: get the released one from the maker.";
constexpr std::string_view partOfPackage =
    "It is part of the maker's SDK package: copy it from there into the SDK's directory.";

// The first that fits counts.
constexpr std::array providers{
    Provider{"vcruntime140d", debugRuntime},
    Provider{"vcruntime140_1d", debugRuntime},
    Provider{"msvcp140d", debugRuntime},
    Provider{"ucrtbased", debugRuntime},
    Provider{"vcruntime140", runtime2015},
    Provider{"msvcp140", runtime2015},
    Provider{"concrt140", runtime2015},
    Provider{"vcomp140", runtime2015},
    Provider{"mfc140", runtime2015},
    Provider{"ucrtbase", runtime2015},
    Provider{"api-ms-win-crt-", runtime2015},
    Provider{"msvcr120", runtime2013},
    Provider{"msvcp120", runtime2013},
    Provider{"mfc120", runtime2013},
    Provider{"msvcr110", runtime2012},
    Provider{"msvcp110", runtime2012},
    Provider{"mfc110", runtime2012},
    Provider{"msvcr100", runtime2010},
    Provider{"msvcp100", runtime2010},
    Provider{"mfc100", runtime2010},
    Provider{"msvcr90", runtime2008},
    Provider{"msvcp90", runtime2008},
    Provider{"mfc90", runtime2008},
    Provider{"api-ms-win-", "It is part of newer versions of Windows: update Windows."},
    Provider{"winusb", "It is part of Windows: install the maker's driver."},
    Provider{"tbb", partOfPackage},
    Provider{"opencv", partOfPackage},
    Provider{"libusb-1.0.so", "Install libusb 1.0; Debian's package is libusb-1.0-0."},
    Provider{"libudev.so", "Install libudev; Debian's package is libudev1."},
    Provider{"libstdc++.so", "Install the C++ library; Debian's package is libstdc++6."},
    Provider{"libgomp.so", "Install the OpenMP library; Debian's package is libgomp1."},
};

bool startsWithIgnoringCase(std::string_view text, std::string_view beginning) {
  return containsIgnoringCase(text.substr(0, beginning.size()), beginning);
}

// What Windows' error codes say about a file that looks like a usable library.
std::string_view cureOfCode(std::optional<std::int64_t> code) {
  switch (code.value_or(0)) {
    case 5:
      return "You may not open this file: copy it again, or change its permissions.";
    case 32:
      return "Another program keeps the file locked: close it.";
    case 127:
      return "A library that it needs is too old: update Windows, and copy all files of the "
             "maker's "
             "SDK package into this directory.";
    case 225:
      return "Your virus scanner has blocked the file: allow it there.";
    case 1114:
      return "It could not start: install the maker's driver, then get the current library from "
             "the "
             "maker.";
    case 1260:
    case 4551:
      return "A rule of this computer blocks the file: ask its administrator.";
    default:
      return "Get the current library from the maker.";
  }
}

}  // namespace

std::string cureOfMissing(std::string_view library) {
  const auto found = std::ranges::find_if(providers, [&](const Provider& provider) {
    return startsWithIgnoringCase(library, provider.beginning);
  });
  return std::string(library) + ": " +
         std::string(found != providers.end()
                         ? found->cure
                         : "Look for it in the maker's SDK package and copy it into the SDK's "
                           "directory.");
}

std::vector<std::string> curesOf(const SdkFindings& findings) {
  const std::string file = validUtf8(utf8FromPath(findings.file.filename()));
  if (!findings.isPresent || findings.isHealthy()) {
    return {};
  }
  if (findings.isLoaded()) {
    return {findings.missingFunctions.size() == findings.sdk.functions.size()
                ? file + " is another library: get the one of this name from the maker."
                : file +
                      " is older than this program's interface: get the current one from the "
                      "maker."};
  }
  if (!findings.content.cure.empty()) {
    return {findings.content.cure};
  }
  std::vector<std::string> cures;
  for (const ImportFinding& import : findings.imports) {
    if (!import.cure.empty() && std::ranges::find(cures, import.cure) == cures.end()) {
      cures.push_back(import.cure);
    }
  }
  return cures.empty()
             ? std::vector{std::string(cureOfCode(findings.load.value_or(LoadResult()).code))}
             : cures;
}

std::string cureOfNoSdk() {
  std::vector<std::string> files;
  std::ranges::transform(allSdks(), std::back_inserter(files), [](const Sdk& sdk) {
    return libraryFileName(sdk.baseName) + " (" + sdk.maker + ")";
  });
  return "Copy the library of your camera's maker into it: " + alternatives(files) + ".";
}

}  // namespace orvane::host
