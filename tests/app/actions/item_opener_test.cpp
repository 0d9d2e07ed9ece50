#include "app/actions/item_opener.h"

#include <gtest/gtest.h>

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "app/actions/desktop.h"
#include "tests/app/actions/fake_program.h"
#include "tests/support/eventually.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

using Names = std::vector<std::string>;

class ItemOpenerTest : public testing::Test {
 protected:
  ItemOpenerTest() {
    opener_.onMissing = [this](const std::string& program) { missing_.push_back(program); };
  }

  bool runNextTask() {
    std::function<void()> task;
    if (!test::eventually([&] {
          const std::lock_guard lock(mutex_);
          if (tasks_.empty()) return false;
          task = std::move(tasks_.front());
          tasks_.erase(tasks_.begin());
          return true;
        })) {
      return false;
    }
    task();
    return true;
  }

  std::mutex mutex_;  // guards tasks_
  std::vector<std::function<void()>> tasks_;
  Names missing_;
  ItemOpener opener_{[this](std::function<void()> task) {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
  }};
};

TEST_F(ItemOpenerTest, TellsWhenTheOpenerIsNotThere) {
  const test::FakePrograms programs(test::FakePrograms::RestOfPath::Hidden);
  opener_.open("/a");
  ASSERT_TRUE(runNextTask());
  EXPECT_EQ(missing_, Names{kOpener});
  opener_.showInFiles("/a");
  ASSERT_TRUE(runNextTask());
  EXPECT_EQ(missing_, (Names{kOpener, kBusSender}));
}

TEST_F(ItemOpenerTest, TellsWhenNobodyCanBeAskedForAFolderThatWouldComeBack) {
  test::FakePrograms programs(test::FakePrograms::RestOfPath::Hidden);
  programs.add("timeout", "shift 3; exec \"$@\"");
  programs.add(kAssociations, "echo heapgauge.desktop");
  opener_.onNoFileManager = [] { FAIL() << "none was asked"; };
  const test::TempDirectory folder;
  opener_.open(folder.path());
  ASSERT_TRUE(runNextTask());
  EXPECT_EQ(missing_, Names{kBusSender});
}

TEST_F(ItemOpenerTest, SaysNothingWhereTheProgramIsThere) {
  test::FakePrograms programs(test::FakePrograms::RestOfPath::Kept);
  programs.addRecorder(kOpener);
  opener_.open("/a folder/it's");
  ASSERT_TRUE(runNextTask());
  EXPECT_EQ(programs.argumentsOf(kOpener), Names{"/a folder/it's"});
  EXPECT_EQ(missing_, Names{});
}

TEST_F(ItemOpenerTest, DoesNothingWithoutAPath) {
  test::FakePrograms programs(test::FakePrograms::RestOfPath::Kept);
  programs.addRecorder(kOpener);
  opener_.open("");
  opener_.open("/b");
  ASSERT_TRUE(runNextTask());
  EXPECT_EQ(programs.argumentsOf(kOpener), Names{"/b"}) << "the first one that was started";
}

}  // namespace
}  // namespace app
