// Joining paths by the rules of each system.
#include "platform/path_join.hpp"

#include <gtest/gtest.h>

using orvane::platform::joinPosixPath;
using orvane::platform::joinWindowsPath;

TEST(WindowsPath, BackslashGoesBetweenDirectoryAndFile) {
  EXPECT_EQ(joinWindowsPath(L"C:\\sdk", L"a.dll"), L"C:\\sdk\\a.dll");
  EXPECT_EQ(joinWindowsPath(L"sdk", L"a.dll"), L"sdk\\a.dll");
  EXPECT_EQ(joinWindowsPath(L"C:/sdk", L"a.dll"), L"C:/sdk\\a.dll");
  EXPECT_EQ(joinWindowsPath(L"\\\\server", L"a.dll"), L"\\\\server\\a.dll");
}

TEST(WindowsPath, TrailingSeparatorGivesTheSamePath) {
  EXPECT_EQ(joinWindowsPath(L"C:\\sdk\\", L"a.dll"), L"C:\\sdk\\a.dll");
  EXPECT_EQ(joinWindowsPath(L"C:\\sdk/", L"a.dll"), L"C:\\sdk/a.dll");
}

TEST(WindowsPath, EmptyDirectoryGivesTheBareFileName) {
  EXPECT_EQ(joinWindowsPath(L"", L"a.dll"), L"a.dll");
}

TEST(WindowsPath, BareDriveGetsNoSeparator) {
  EXPECT_EQ(joinWindowsPath(L"C:", L"a.dll"), L"C:a.dll");
  EXPECT_EQ(joinWindowsPath(L"z:", L"a.dll"), L"z:a.dll");
}

TEST(WindowsPath, NameThatOnlyLooksLikeADriveGetsASeparator) {
  EXPECT_EQ(joinWindowsPath(L"1:", L"a.dll"), L"1:\\a.dll");
  EXPECT_EQ(joinWindowsPath(L"@:", L"a.dll"), L"@:\\a.dll");
  EXPECT_EQ(joinWindowsPath(L"[:", L"a.dll"), L"[:\\a.dll");
  EXPECT_EQ(joinWindowsPath(L"{:", L"a.dll"), L"{:\\a.dll");
  EXPECT_EQ(joinWindowsPath(L"C:x", L"a.dll"), L"C:x\\a.dll");
  EXPECT_EQ(joinWindowsPath(L"C", L"a.dll"), L"C\\a.dll");
  EXPECT_EQ(joinWindowsPath(L"Cx", L"a.dll"), L"Cx\\a.dll");
  EXPECT_EQ(joinWindowsPath(L":", L"a.dll"), L":\\a.dll");
}

TEST(PosixPath, SlashGoesBetweenDirectoryAndFile) {
  EXPECT_EQ(joinPosixPath("/sdk", "liba.so"), "/sdk/liba.so");
  EXPECT_EQ(joinPosixPath("/sdk\\", "liba.so"), "/sdk\\/liba.so");
}

TEST(PosixPath, TrailingSlashGivesTheSamePath) {
  EXPECT_EQ(joinPosixPath("/sdk/", "liba.so"), "/sdk/liba.so");
  EXPECT_EQ(joinPosixPath("/", "liba.so"), "/liba.so");
}

TEST(PosixPath, EmptyDirectoryGivesTheBareFileName) {
  EXPECT_EQ(joinPosixPath("", "liba.so"), "liba.so");
}
