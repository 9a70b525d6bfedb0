// Joining paths by the rules of each system.
#include "platform/path_join.hpp"

#include <gtest/gtest.h>

using orvane::platform::joinPosixPath;
using orvane::platform::joinWindowsPath;

TEST(WindowsPath, SeparatorGoesBetweenDirectoryAndFile) {
  const std::pair<std::wstring, std::wstring> beforeFile[] = {
      {L"C:\\sdk", L"C:\\sdk\\"},
      {L"sdk", L"sdk\\"},
      {L"C:/sdk", L"C:/sdk\\"},
      {L"\\\\server", L"\\\\server\\"},
      // A trailing separator gives the same path.
      {L"C:\\sdk\\", L"C:\\sdk\\"},
      {L"C:\\sdk/", L"C:\\sdk/"},
      {L"", L""},
      // A bare drive gets no separator.
      {L"C:", L"C:"},
      {L"z:", L"z:"},
      // These only look like a drive.
      {L"1:", L"1:\\"},
      {L"@:", L"@:\\"},
      {L"[:", L"[:\\"},
      {L"{:", L"{:\\"},
      {L"C:x", L"C:x\\"},
      {L"C", L"C\\"},
      {L"Cx", L"Cx\\"},
      {L":", L":\\"}};
  for (const auto& [directory, prefix] : beforeFile) {
    EXPECT_EQ(joinWindowsPath(directory, L"a.dll"), prefix + L"a.dll");
  }
}

TEST(PosixPath, SlashGoesBetweenDirectoryAndFile) {
  EXPECT_EQ(joinPosixPath("/sdk", "liba.so"), "/sdk/liba.so");
  EXPECT_EQ(joinPosixPath("/sdk\\", "liba.so"), "/sdk\\/liba.so");
  EXPECT_EQ(joinPosixPath("/sdk/", "liba.so"), "/sdk/liba.so");
  EXPECT_EQ(joinPosixPath("/", "liba.so"), "/liba.so");
  EXPECT_EQ(joinPosixPath("", "liba.so"), "liba.so");
}
