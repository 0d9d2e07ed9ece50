#include "app/dialogs/folder_lister.h"

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

class FolderListerTest : public testing::Test {
 protected:
  FolderListerTest() {
    lister_->onListed = [this](const std::string& path, FolderListing) { told_.push_back(path); };
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
  std::unique_ptr<FolderLister> lister_ = std::make_unique<FolderLister>(
      [this](ui::Task task) { tasks_.append(std::move(task)); }, slow_.list());
};

TEST_F(FolderListerTest, AnswersAtOnceForAnOrdinaryFolder) {
  const test::TempDirectory directory;
  test::makeDirectory(directory / "sub");
  // A machine that is busy may take longer than what counts as at once.
  std::optional<FolderListing> listing;
  ASSERT_TRUE(eventually([&] { return (listing = lister_->list(directory.path())); }));
  EXPECT_TRUE(listing->readable);
  EXPECT_EQ(listing->subFolders, (std::vector<SubFolder>{{"sub", true}}));
  std::optional<FolderListing> missing;
  ASSERT_TRUE(eventually([&] { return (missing = lister_->list(directory / "missing")); }));
  EXPECT_FALSE(missing->readable);
}

TEST_F(FolderListerTest, DoesNotWaitForASlowFolder) {
  EXPECT_FALSE(lister_->list("/slow"));
  tasks_.runAll();
  EXPECT_EQ(told_, Told{});
  slow_.release();
  EXPECT_TRUE(tells({"/slow"}));
}

TEST_F(FolderListerTest, AsksAFolderThatOwesAnAnswerOnlyOnce) {
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(lister_->list("/slow"));
  slow_.release();
  EXPECT_TRUE(tells({"/slow"}));
  EXPECT_EQ(slow_.questions(), 1);
}

TEST_F(FolderListerTest, IsNotHeldUpByAnotherFolder) {
  EXPECT_FALSE(lister_->list("/slow"));
  const test::TempDirectory directory;
  EXPECT_TRUE(eventually([&] { return lister_->list(directory.path()).has_value(); }));
  slow_.release();
}

TEST_F(FolderListerTest, TellsNothingOnceItIsGone) {
  EXPECT_FALSE(lister_->list("/slow"));
  lister_.reset();
  slow_.release();
  ASSERT_TRUE(eventually([&] { return slow_.answers() == 1; }));
  tasks_.runAll();
  EXPECT_EQ(told_, Told{});
}

}  // namespace
}  // namespace app
