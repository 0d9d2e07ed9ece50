#include "app/dialogs/sub_folder_reader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/app/dialogs/slow_folders.h"
#include "tests/support/eventually.h"
#include "tests/support/temp_directory.h"
#include "ui/task_queue.h"

namespace app {
namespace {

using test::eventually;
using test::SlowFolders;
using Told = std::vector<std::string>;

constexpr std::chrono::seconds kLong{20};

class SubFolderReaderTest : public testing::Test {
 protected:
  SubFolderReaderTest() {
    reader_->onRead = [this](const std::string& path, SubFolders) { told_.push_back(path); };
  }
  /// What was told, once it is as long as `expected`.
  bool tells(const Told& expected) {
    return eventually([&] {
      tasks_.runAll();
      return told_ == expected;
    });
  }

  SlowFolders slow_;
  ui::TaskQueue tasks_;
  Told told_;
  SubFolderReader::Post post() {
    return [this](ui::Task task) { tasks_.append(std::move(task)); };
  }
  std::unique_ptr<SubFolderReader> reader_ =
      std::make_unique<SubFolderReader>(post(), slow_.read());
};

TEST_F(SubFolderReaderTest, AnswersAtOnceForAnOrdinaryFolder) {
  const test::TempDirectory directory;
  test::makeDirectory(directory / "sub");
  SubFolderReader patient(post(), slow_.read(), kLong);
  const std::optional<SubFolders> subFolders = patient.read(directory.path());
  ASSERT_TRUE(subFolders.has_value());
  EXPECT_TRUE(subFolders->readable);
  EXPECT_EQ(subFolders->folders, (std::vector<SubFolder>{{"sub", true}}));
  const std::optional<SubFolders> missing = patient.read(directory / "missing");
  ASSERT_TRUE(missing.has_value());
  EXPECT_FALSE(missing->readable);
}

// What one waits for cannot be told from a machine that stands still; that of twenty can.
TEST_F(SubFolderReaderTest, WaitsTooShortATimeToBeFelt) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 20 && std::chrono::steady_clock::now() - start < kLong; ++i) {
    EXPECT_FALSE(reader_->read("/" + std::to_string(i) + "/slow"));
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, kLong);
}

TEST_F(SubFolderReaderTest, DoesNotWaitForASlowFolder) {
  EXPECT_FALSE(reader_->read("/slow"));
  tasks_.runAll();
  EXPECT_EQ(told_, Told{});
  slow_.release();
  EXPECT_TRUE(tells({"/slow"}));
}

TEST_F(SubFolderReaderTest, AsksAFolderThatOwesAnAnswerOnlyOnce) {
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(reader_->read("/slow"));
  slow_.release();
  EXPECT_TRUE(tells({"/slow"}));
  EXPECT_EQ(slow_.questions(), 1);
}

TEST_F(SubFolderReaderTest, IsNotHeldUpByAnotherFolder) {
  EXPECT_FALSE(reader_->read("/slow"));
  const test::TempDirectory directory;
  EXPECT_TRUE(eventually([&] { return reader_->read(directory.path()).has_value(); }));
  slow_.release();
}

TEST_F(SubFolderReaderTest, TellsNothingOnceItIsGone) {
  EXPECT_FALSE(reader_->read("/slow"));
  reader_.reset();
  slow_.release();
  ASSERT_TRUE(eventually([&] { return slow_.answers() == 1; }));
  tasks_.runAll();
  EXPECT_EQ(told_, Told{});
}

}  // namespace
}  // namespace app
