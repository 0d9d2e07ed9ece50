#include "base/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "tests/support/temp_directory.h"

namespace base {
namespace {

TEST(ReadWholeFile, GivesEveryByte) {
  const test::TempDirectory directory;
  std::string content = std::string("a\0b\r\n\xff", 6) + std::string(100000, 'x');
  test::writeFile(directory / "file", content);
  EXPECT_EQ(readWholeFile(directory / "file"), content);
}

TEST(ReadWholeFile, TellsAnEmptyFileFromOneItCannotRead) {
  const test::TempDirectory directory;
  test::writeFile(directory / "empty");
  EXPECT_EQ(readWholeFile(directory / "empty"), "");
  EXPECT_EQ(readWholeFile(directory / "missing"), std::nullopt);
  EXPECT_EQ(readWholeFile(directory.path()), std::nullopt);  // opens, but cannot be read
}

TEST(ReadWholeFile, WaitsForNobodyAndReadsRegularFilesOnly) {
  const test::TempDirectory directory;
  ASSERT_EQ(mkfifo((directory / "fifo").c_str(), 0600), 0);
  EXPECT_EQ(readWholeFile(directory / "fifo"), std::nullopt);
  EXPECT_EQ(readWholeFile("/dev/null"), std::nullopt);
  ASSERT_EQ(symlink("fifo", (directory / "link").c_str()), 0);
  EXPECT_EQ(readWholeFile(directory / "link"), std::nullopt);
}

TEST(ReadWholeFile, FollowsALinkToAFile) {
  const test::TempDirectory directory;
  test::writeFile(directory / "file", "text");
  ASSERT_EQ(symlink("file", (directory / "link").c_str()), 0);
  EXPECT_EQ(readWholeFile(directory / "link"), "text");
}

TEST(WriteWholeFile, ReplacesWhatWasThere) {
  const test::TempDirectory directory;
  test::writeFile(directory / "file", "a longer text");
  EXPECT_EQ(writeWholeFile(directory / "file", "short"), WriteOutcome::Written);
  EXPECT_EQ(test::readFile(directory / "file"), "short");
}

TEST(WriteWholeFile, CreatesAFileForTheUserAlone) {
  const test::TempDirectory directory;
  EXPECT_EQ(writeWholeFile(directory / "file", "text"), WriteOutcome::Written);
  struct stat status {};
  ASSERT_EQ(stat((directory / "file").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST(WriteWholeFile, SaysWhyItFailed) {
  const test::TempDirectory directory;
  EXPECT_EQ(writeWholeFile(directory / "missing/file", "text"), WriteOutcome::NotOpened);
  EXPECT_EQ(writeWholeFile("/dev/full", "text"), WriteOutcome::Incomplete);
  ASSERT_EQ(mkfifo((directory / "fifo").c_str(), 0600), 0);
  EXPECT_EQ(writeWholeFile(directory / "fifo", "text"), WriteOutcome::NotOpened);
}

}  // namespace
}  // namespace base
