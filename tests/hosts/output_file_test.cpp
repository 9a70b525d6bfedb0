// That a file appears whole, replaces another only when it may, and is written by one program.
#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <optional>
#include <system_error>

#include "scratch_directory.hpp"
#include "system/disk_space.hpp"
#include "system/file.hpp"

namespace orvane::host {

namespace {

using orvane::testing::contentOf;
using orvane::testing::ScratchDirectory;
using orvane::testing::utf8;
using Bytes = std::vector<std::uint8_t>;

class OutputFileTest : public ::testing::Test {
 protected:
  void writeOld() const { std::ofstream(path) << "old"; }

  std::size_t filesHere() const {
    const std::filesystem::directory_iterator files(scratch.path());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }

  template <class Action>
  std::string failureOf(Action action) const {
    try {
      action();
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "";
  }

  std::string cannotCreate(const std::string& reason) const {
    return "Cannot create \"" + utf8(path) + "\": " + reason;
  }

  const ScratchDirectory scratch;
  const std::filesystem::path path = scratch.file("caf\u00e9.ser");
};

TEST_F(OutputFileTest, HasItsNameOnlyWhenItIsPublished) {
  OutputFile file(path);
  file.writeAt(0, Bytes{'n', 'e', 'w'});
  EXPECT_FALSE(std::filesystem::exists(path));
  file.publish();
  EXPECT_EQ(contentOf(path), "new");
  file.publish();
  file.writeAt(3, Bytes{'e', 'r'});
  file.close();
  EXPECT_EQ(contentOf(path), "newer");
  EXPECT_EQ(filesHere(), 1U);
}

TEST_F(OutputFileTest, LeavesNothingWhenItIsNotPublished) {
  OutputFile(path).writeAt(0, Bytes{'n'});
  EXPECT_EQ(filesHere(), 0U);
  writeOld();
  OutputFile(path, Existing::Replace).writeAt(0, Bytes{'n'});
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(filesHere(), 1U);
}

TEST_F(OutputFileTest, ReplacesAnExistingFileOnlyIfItMay) {
  writeOld();
  EXPECT_EQ(failureOf([&] { const OutputFile file(path); }), cannotCreate("it exists already"));
  EXPECT_EQ(contentOf(path), "old");
  OutputFile file(path, Existing::Replace);
  file.writeAt(0, Bytes{'n'});
  EXPECT_EQ(contentOf(path), "old");
  file.publish();
  EXPECT_EQ(contentOf(path), "n");
  EXPECT_EQ(filesHere(), 1U);
}

TEST_F(OutputFileTest, DoesNotReplaceAFileThatTurnedUpMeanwhile) {
  {
    OutputFile file(path);
    writeOld();
    EXPECT_EQ(failureOf([&] { file.close(); }), cannotCreate("it exists already"));
  }
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(filesHere(), 1U);
}

TEST_F(OutputFileTest, TakesOverWhatAKilledProgramHasLeft) {
  std::ofstream(temporaryName(path)) << "a long part of a recording";
  OutputFile file(path);
  file.writeAt(0, Bytes{'n'});
  file.close();
  EXPECT_EQ(contentOf(path), "n");
  EXPECT_EQ(filesHere(), 1U);
}

TEST_F(OutputFileTest, IsWrittenByOneProgramOnly) {
  const std::string busy = cannotCreate("another program is writing it");
  for (const Existing existing : {Existing::Refuse, Existing::Replace}) {
    OutputFile file(path, Existing::Replace);
    file.writeAt(0, Bytes{'1'});
    EXPECT_EQ(failureOf([&] { const OutputFile second(path, existing); }), busy);
    file.publish();
    EXPECT_EQ(failureOf([&] { const OutputFile second(path, existing); }), busy);
    file.writeAt(1, Bytes{'2'});
    EXPECT_EQ(contentOf(path), "12");
    EXPECT_EQ(filesHere(), 1U);
  }
  OutputFile(path, Existing::Replace).close();
}

// Two programs that write the same file do not have the same temporary name for it where a link
// leads to its directory.
TEST_F(OutputFileTest, DoesNotReplaceAFileThatAnotherProgramHasBegunToWrite) {
  std::optional<OutputFile> first(std::in_place, path, Existing::Replace);
  first->writeAt(0, Bytes{'1'});
  const std::filesystem::path other = scratch.file("other");
  OutputFile second(other, Existing::Replace);
  second.writeAt(0, Bytes{'2'});
  first->publish();
  EXPECT_FALSE(renameFile(temporaryName(other), path, true));
  EXPECT_EQ(errno, EBUSY);
  EXPECT_EQ(contentOf(path), "1");
  first.reset();
  EXPECT_TRUE(renameFile(temporaryName(other), path, true));
  EXPECT_EQ(contentOf(path), "2");
}

TEST_F(OutputFileTest, IsRemovedOnRequest) {
  OutputFile file(path);
  file.publish();
  file.discard();
  EXPECT_EQ(filesHere(), 0U);
}

TEST_F(OutputFileTest, ADirectoryIsNotReplaced) {
  std::filesystem::create_directory(path);
  EXPECT_NE(failureOf([&] { const OutputFile file(path, Existing::Replace); }), "");
  EXPECT_TRUE(std::filesystem::is_directory(path));
  EXPECT_EQ(filesHere(), 1U);
}

TEST(FreeSpace, IsThatOfTheDirectorysDisk) {
  const ScratchDirectory scratch;
  EXPECT_GT(freeSpace(scratch.path()).value_or(0), 0);
  EXPECT_FALSE(freeSpace(scratch.file("nothing") / "here"));
}

TEST(FailureReason, AFullDiskIsSaidSo) {
  EXPECT_EQ(failureReason(ENOSPC), "the disk is full");
  EXPECT_EQ(failureReason(EACCES), std::generic_category().message(EACCES));
}

}  // namespace

}  // namespace orvane::host
