// What the library tests share: the library, a directory of simulated SDKs, small cameras.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "doubles/sdk_directory.hpp"
#include "doubles/simulated_sdk.hpp"
#include "support/library_under_test.hpp"

namespace orvane::testing {

/// The library, freshly loaded, and an empty directory that it is told to load SDKs from.
class LibraryTest : public ::testing::Test {
 protected:
  LibraryTest() { oc.library_dir(directory.utf8().c_str()); }

  /// Puts a simulated SDK into the directory, without the functions in `missing`, and loads it for
  /// the test to control.
  SimulatedSdk install(const std::string& baseName, const std::vector<std::string>& missing = {}) {
    directory.add(baseName, missing);
    return SimulatedSdk(directory.file(baseName));
  }

  std::string error() const { return oc.error(); }
  std::string info(int index) const { return oc.info(index); }
  std::string libraries() const { return oc.libraries(); }

  /// The text of one value in a camera's description.
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

  /// Reads one frame into `frame`, which holds exactly oc_buffer_size() bytes.
  int readFrame(int timeoutMs = 1000) {
    frame.assign(static_cast<std::size_t>(oc.buffer_size()), 0xA5);
    return oc.read(frame.data(), static_cast<int>(frame.size()), timeoutMs);
  }

  /// No camera is open, as far as a host can see.
  void expectClosed() const {
    EXPECT_EQ(oc.buffer_size(), 0);
    std::uint8_t byte = 0;
    const std::string before = error();
    EXPECT_EQ(oc.read(&byte, 1, 0), -1);
    EXPECT_EQ(error(), "Camera closed or buffer too small");
  }

  SdkDirectory directory;
  LibraryUnderTest oc;
  std::vector<std::uint8_t> frame;
};

/// Copies text into a fixed array; text that fills the array gets no NUL.
template <std::size_t size>
void setText(char (&array)[size], const std::string& text) {
  std::memset(array, 0, size);
  std::memcpy(array, text.data(), text.size() < size ? text.size() : size);
}

/// Nothing went wrong inside the SDK, and nothing is open in it.
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
