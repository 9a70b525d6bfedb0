// Shared by the library tests: the library and a directory of simulated SDKs.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "doubles/sdk_directory.hpp"
#include "doubles/simulated_sdk.hpp"
#include "support/library_under_test.hpp"

namespace orvane::testing {

/// The library, newly loaded, and an empty directory from which it loads SDKs.
class LibraryTest : public ::testing::Test {
 protected:
  LibraryTest() { oc.library_dir(directory.utf8().c_str()); }

  /// Puts a simulated SDK without the functions in `missing` into the directory, and loads it so
  /// that the test can control it.
  SimulatedSdk install(const std::string& baseName, const std::vector<std::string>& missing = {}) {
    directory.add(baseName, missing);
    return SimulatedSdk(directory.file(baseName));
  }

  std::string error() const { return oc.error(); }
  std::string info(int index) const { return oc.info(index); }
  std::string libraries() const { return oc.libraries(); }

  /// The text of one value in the description of a camera.
  std::string infoValue(int index, const std::string& key) const {
    const std::string json = info(index);
    const std::size_t found = json.find("\"" + key + "\":");
    if (found == std::string::npos) {
      return "no " + key;
    }
    const std::size_t start = found + key.size() + 3;
    const std::size_t end = json[start] == '['   ? json.find(']', start) + 1
                            : json[start] == '"' ? json.find("\",", start) + 1
                                                 : json.find_first_of(",}", start);
    return json.substr(start, end - start);
  }

  /// Checks a scan that finds nothing: no camera, no library, no message.
  void expectNothingFound() {
    EXPECT_EQ(oc.scan(), 0);
    EXPECT_EQ(libraries(), "");
    EXPECT_EQ(error(), "");
  }

  /// Checks a scan that finds ZWO's SDK with its default cameras.
  void expectAsiFound() {
    EXPECT_GE(oc.scan(), 3);
    EXPECT_EQ(libraries(), "ASICamera2");
    EXPECT_EQ(error(), "");
  }

  /// Reads one frame into `frame`, which has exactly oc_buffer_size() bytes.
  int readFrame(int timeoutMs = 1000) {
    frame.assign(static_cast<std::size_t>(oc.buffer_size()), 0xA5);
    return oc.read(frame.data(), static_cast<int>(frame.size()), timeoutMs);
  }

  /// Checks from the host's side that no camera is open.
  void expectClosed() const {
    EXPECT_EQ(oc.buffer_size(), 0);
    std::uint8_t byte = 0;
    EXPECT_EQ(oc.read(&byte, 1, 0), -1);
    EXPECT_EQ(error(), "Camera closed or buffer too small");
  }

  SdkDirectory directory;
  LibraryUnderTest oc;
  std::vector<std::uint8_t> frame;
};

/// Copies text into a fixed array. Text that fills the array gets no NUL.
template <std::size_t size>
void setText(char (&array)[size], const std::string& text) {
  std::memset(array, 0, size);
  std::memcpy(array, text.data(), text.size() < size ? text.size() : size);
}

/// Checks that nothing is open in the SDK and that it saw no violation.
inline void expectClean(const SimulatedSdk& sdk) {
  const SimInvariants now = sdk.invariants();
  EXPECT_EQ(now.devicesOpen, 0);
  EXPECT_EQ(now.streamsRunning, 0);
  EXPECT_EQ(now.callsOnClosed, 0);
  EXPECT_EQ(now.stopsWithoutStart, 0);
  EXPECT_EQ(now.shortBuffers, 0);
  EXPECT_EQ(now.writesPastBuffer, 0);
}

}  // namespace orvane::testing
