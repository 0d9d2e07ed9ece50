#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <set>
#include <string>
#include <vector>

#include "app/actions/trash.h"
#include "tests/app/actions/rename_hook.h"
#include "tests/app/actions/trash_fixture.h"
#include "tests/support/environment.h"
#include "tests/support/file_access.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

constexpr int kRounds = 1000;
constexpr int kDifferentNames = 100;

/// Counts those who have come to a meeting of two processes, in memory that they share.
class Meeting {
 public:
  Meeting()
      : arrived_(new (mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                           MAP_SHARED | MAP_ANONYMOUS, -1, 0)) std::atomic<int>(0)) {}
  ~Meeting() { munmap(arrived_, sizeof(std::atomic<int>)); }
  Meeting(const Meeting&) = delete;
  Meeting& operator=(const Meeting&) = delete;

  /// Waits until both have come for the `round`th time, from 0; false when the other one does not.
  bool waitForBoth(int round) {
    arrived_->fetch_add(1);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (arrived_->load() < 2 * (round + 1)) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      sched_yield();
    }
    return true;
  }

 private:
  std::atomic<int>* arrived_;
};

std::string itemPath(const std::string& folder, int round) {
  return folder + "/" + std::to_string(round) + "/same " + std::to_string(round % kDifferentNames) +
         ".txt";
}

int trashAll(const std::string& folder, Meeting& meeting) {
  // The other one has time to choose its name between this one's choice and its move.
  const test::RenameHook hook([](int) {
    for (int i = 0; i < 20; ++i) sched_yield();
    return 0;
  });
  for (int round = 0; round < kRounds; ++round) {
    if (!meeting.waitForBoth(round)) return 1;
    if (!moveToTrash(itemPath(folder, round), nullptr)) return 2;
  }
  return 0;
}

struct TwoProcesses : testing::Test {
  test::PrivateHome home;
  test::TempDirectory work{test::TempDirectory::Place::Memory};
  test::ScopedEnvironment environment;
  std::string files = work / "data/Trash/files";
  std::string info = work / "data/Trash/info";

  void SetUp() override { environment.set("XDG_DATA_HOME", work / "data"); }

  /// Each of two processes trashes `kRounds` items that hold the paths they lie at.
  void trashFromBoth() {
    for (const char* folder : {"p", "q"}) {
      for (int round = 0; round < kRounds; ++round) {
        const std::string path = itemPath(work / folder, round);
        test::writeFile(path, path);
      }
    }
    Meeting meeting;
    std::vector<pid_t> processes;
    for (const char* folder : {"p", "q"}) {
      const pid_t process = fork();
      if (process == 0) _exit(trashAll(work / folder, meeting));
      processes.push_back(process);
    }
    for (const pid_t process : processes) {
      int status = -1;
      ASSERT_EQ(waitpid(process, &status, 0), process);
      EXPECT_EQ(status, 0);
    }
  }

  void expectEveryItemInTheTrash() {
    std::set<std::string> origins;
    for (const std::string& name : test::namesIn(files)) {
      origins.insert(test::readFile(files + "/" + name));
    }
    EXPECT_EQ(origins.size(), 2u * kRounds);
  }
};

TEST_F(TwoProcesses, TrashTheSameNamesAtTheSameTime) {
  trashFromBoth();
  expectEveryItemInTheTrash();
  EXPECT_EQ(test::namesIn(info).size(), 2u * kRounds);
  for (const std::string& name : test::namesIn(files)) {
    EXPECT_EQ(test::pathInRecord(info + "/" + name + ".trashinfo"),
              test::readFile(files + "/" + name));
  }
}

TEST_F(TwoProcesses, LoseNoItemWithoutALockEither) {
  const test::OrdinaryFileAccess ordinary;
  test::makeDirectory(info);
  ASSERT_EQ(chmod(info.c_str(), 0300), 0);  // what cannot be opened for reading cannot be locked
  trashFromBoth();
  expectEveryItemInTheTrash();
  ASSERT_EQ(chmod(info.c_str(), 0700), 0);
}

}  // namespace
}  // namespace app
