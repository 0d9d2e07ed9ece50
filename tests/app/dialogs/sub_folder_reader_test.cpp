#include "app/dialogs/sub_folder_reader.h"

#include <gtest/gtest.h>

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
  std::unique_ptr<SubFolderReader> reader_ = std::make_unique<SubFolderReader>(
      [this](ui::Task task) { tasks_.append(std::move(task)); }, slow_.read());
};

TEST_F(SubFolderReaderTest, AnswersAtOnceForAnOrdinaryFolder) {
  const test::TempDirectory directory;
  test::makeDirectory(directory / "sub");
  // A machine that is busy may take longer than what counts as at once.
  std::optional<SubFolders> subFolders;
  ASSERT_TRUE(eventually([&] { return (subFolders = reader_->read(directory.path())); }));
  EXPECT_TRUE(subFolders->readable);
  EXPECT_EQ(subFolders->folders, (std::vector<SubFolder>{{"sub", true}}));
  std::optional<SubFolders> missing;
  ASSERT_TRUE(eventually([&] { return (missing = reader_->read(directory / "missing")); }));
  EXPECT_FALSE(missing->readable);
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
