#include "app/actions/trash_record.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <string>

#include "base/file_descriptor.h"
#include "tests/app/actions/trash_fixture.h"
#include "tests/support/environment.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

/// The local time of a place for the scope.
class TimeZone {
 public:
  explicit TimeZone(const std::string& zone) {
    environment_->set("TZ", zone);
    tzset();
  }
  ~TimeZone() {
    environment_.reset();
    tzset();
  }

 private:
  std::unique_ptr<test::ScopedEnvironment> environment_ =
      std::make_unique<test::ScopedEnvironment>();
};

struct TrashRecordTest : testing::Test {
  test::TempDirectory info;
  base::FileDescriptor open{::open(info.path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
  std::string file = info / "name.trashinfo";
  TrashRecord record{open.get(), "name"};
};

TEST(PercentEncoded, KeepsLettersDigitsAndFiveMore) {
  const std::string kept = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  EXPECT_EQ(percentEncoded(kept), kept);
}

TEST(PercentEncoded, WritesEveryOtherByteInTwoUpperCaseDigits) {
  EXPECT_EQ(percentEncoded("/home/u/a b.txt"), "/home/u/a%20b.txt");
  EXPECT_EQ(percentEncoded("\xc3\xa9"), "%C3%A9");
  EXPECT_EQ(percentEncoded(":%+!*'()@&=$,;?#[]"),
            "%3A%25%2B%21%2A%27%28%29%40%26%3D%24%2C%3B%3F%23%5B%5D");
  EXPECT_EQ(percentEncoded("\n\x01\x7f\xff\xfe"), "%0A%01%7F%FF%FE");
  int escaped = 0;
  for (int byte = 0; byte < 256; ++byte) {
    escaped += percentEncoded(std::string(1, static_cast<char>(byte))).size() == 3 ? 1 : 0;
  }
  EXPECT_EQ(escaped, 256 - 26 - 26 - 10 - 5);
}

TEST(RecordText, IsThreeLinesWithTheLocalTime) {
  const TimeZone zone("XYZ-2");
  EXPECT_EQ(recordText("/a b", 1709813109),
            "[Trash Info]\nPath=/a%20b\nDeletionDate=2024-03-07T14:05:09\n");
}

TEST_F(TrashRecordTest, IsAFileForTheUserAlone) {
  ASSERT_TRUE(record.write("text"));
  EXPECT_EQ(test::readFile(file), "text");
  struct stat status {};
  ASSERT_EQ(stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(TrashRecordTest, ReplacesALongerOne) {
  test::writeFile(file, "what another record held");
  ASSERT_TRUE(record.write("text"));
  EXPECT_EQ(test::readFile(file), "text");
}

TEST_F(TrashRecordTest, TakenBackIsGoneOrWhatItWas) {
  ASSERT_TRUE(record.write("text"));
  record.takeBack();
  EXPECT_FALSE(test::exists(file));
  test::writeFile(file, "before");
  ASSERT_TRUE(record.write("text"));
  record.takeBack();
  EXPECT_EQ(test::readFile(file), "before");
}

TEST_F(TrashRecordTest, TakenBackLeavesWhatAnotherProcessWroteSince) {
  ASSERT_TRUE(record.write("text"));
  test::writeFile(file, "theirs");
  record.takeBack();
  EXPECT_EQ(test::readFile(file), "theirs");
}

TEST_F(TrashRecordTest, FollowsNoLinkAndWaitsForNobody) {
  test::writeFile(info / "elsewhere", "precious");
  ASSERT_EQ(symlink("elsewhere", file.c_str()), 0);
  EXPECT_FALSE(record.write("text"));
  EXPECT_EQ(test::readFile(info / "elsewhere"), "precious");
  EXPECT_TRUE(test::exists(file));
  ASSERT_EQ(unlink(file.c_str()), 0);
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  EXPECT_FALSE(record.write("text"));
  EXPECT_TRUE(test::exists(file));
}

}  // namespace
}  // namespace app
