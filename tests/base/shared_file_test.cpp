#include "base/shared_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "base/file_lock.h"
#include "tests/support/blocking_file_system.h"
#include "tests/support/file_access.h"
#include "tests/support/temp_directory.h"

namespace base {
namespace {

namespace fs = std::filesystem;

class SharedFileTest : public testing::Test {
 protected:
  std::string path() const { return directory_ / "file"; }
  SharedFile file(SharedFile::Incomplete incomplete = SharedFile::Incomplete::Stays) const {
    return {path(), incomplete};
  }
  static bool write(const SharedFile& file, const std::string& text) {
    return file.change([&](const std::string&) { return text; });
  }
  /// For what cannot be read: says so, and is not asked for a new text.
  static bool isLeftAlone(const SharedFile& file) {
    bool asked = false;
    const bool changed = file.change([&](const std::string& text) {
      asked = true;
      return text;
    });
    return !file.read() && !asked && !changed;
  }
  std::set<std::string> names() const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory_.path())) {
      names.insert(entry.path().filename());
    }
    return names;
  }

  const test::TempDirectory directory_;
};

TEST_F(SharedFileTest, IsEmptyWhereThereIsNone) {
  EXPECT_EQ(file().read(), "");
  EXPECT_EQ(names(), std::set<std::string>{});
}

TEST_F(SharedFileTest, GivesTheOldTextToWhoChangesIt) {
  EXPECT_TRUE(write(file(), "one"));
  std::string old;
  EXPECT_TRUE(file().change([&](const std::string& text) {
    old = text;
    return text + " two";
  }));
  EXPECT_EQ(old, "one");
  EXPECT_EQ(test::readFile(path()), "one two");
  EXPECT_EQ(file().read(), "one two");
  EXPECT_EQ(names(), (std::set<std::string>{"file", "file.lock"}));
}

TEST_F(SharedFileTest, IsForTheUserAlone) {
  const mode_t old = umask(0);
  write(file(), "text");
  umask(old);
  for (const std::string& name : {path(), path() + ".lock"}) {
    EXPECT_EQ(fs::status(name).permissions(), fs::perms(0600)) << name;
  }
}

TEST_F(SharedFileTest, IsLeftAloneWithoutPermissionToReadIt) {
  test::writeFile(path(), "precious");
  fs::permissions(path(), fs::perms::none);
  bool alone = false;
  {
    const test::OrdinaryFileAccess ordinary;
    alone = isLeftAlone(file());
  }
  EXPECT_TRUE(alone);
  fs::permissions(path(), fs::perms::owner_all);
  EXPECT_EQ(test::readFile(path()), "precious");
}

TEST_F(SharedFileTest, IsLeftAloneWhileTheDiskFails) {
  test::BlockingFileSystem disk;
  if (!disk.problem().empty()) GTEST_SKIP() << disk.problem();
  fs::create_symlink(disk.path() + "/top", path());
  EXPECT_TRUE(isLeftAlone(file()));  // it opens, and no read succeeds
  disk.fail();
  EXPECT_TRUE(isLeftAlone(file()));
  EXPECT_TRUE(fs::is_symlink(path()));
}

TEST_F(SharedFileTest, IsLeftAloneWithoutFreeDescriptors) {
  test::writeFile(path(), "precious");
  write(file(), "precious");  // the lock is there
  rlimit old{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &old), 0);
  bool leftAlone = true;
  // From none on: in turn the lock, the file and what replaces it find no descriptor.
  const int next = fcntl(0, F_DUPFD_CLOEXEC, 0);
  ASSERT_GE(next, 0);
  close(next);
  for (int free = 0; free < 2; ++free) {
    const rlimit few{static_cast<rlim_t>(next + free), old.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    leftAlone = leftAlone && !write(file(), "lost");
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &old), 0);
  }
  EXPECT_TRUE(leftAlone);
  EXPECT_EQ(test::readFile(path()), "precious");
  EXPECT_TRUE(write(file(), "again"));
}

TEST_F(SharedFileTest, IsLeftAloneWhenItIsNoRegularFile) {
  ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
  EXPECT_TRUE(isLeftAlone(file()));
  fs::remove(path());
  fs::create_directory(path());
  EXPECT_TRUE(isLeftAlone(file()));
  EXPECT_EQ(names(), (std::set<std::string>{"file", "file.lock"}));
}

TEST_F(SharedFileTest, IsLeftAloneWhenItIsHuge) {
  test::writeSparseFile(path(), 200'000'000'000);
  EXPECT_TRUE(isLeftAlone(file()));
  EXPECT_EQ(fs::file_size(path()), 200'000'000'000U);
  fs::resize_file(path(), SharedFile::kLargest + 1);
  EXPECT_TRUE(isLeftAlone(file()));
  fs::resize_file(path(), SharedFile::kLargest);
  EXPECT_EQ(file().read().value_or("").size(), SharedFile::kLargest);
}

TEST_F(SharedFileTest, NeverGrowsBeyondWhatIsRead) {
  EXPECT_TRUE(write(file(), std::string(SharedFile::kLargest, 'x')));
  EXPECT_FALSE(write(file(), std::string(SharedFile::kLargest + 1, 'x')));
  EXPECT_EQ(fs::file_size(path()), SharedFile::kLargest);
  EXPECT_FALSE(fs::exists(path() + ".tmp"));
}

TEST_F(SharedFileTest, KeepsTheOldTextWhenTheDiskIsFull) {
  write(file(), "old");
  for (const auto incomplete : {SharedFile::Incomplete::Stays, SharedFile::Incomplete::IsRemoved}) {
    fs::create_symlink("/dev/full", path() + ".tmp");
    EXPECT_FALSE(write(file(incomplete), "new"));
    EXPECT_EQ(test::readFile(path()), "old");
    EXPECT_EQ(fs::remove(path() + ".tmp"), incomplete == SharedFile::Incomplete::Stays);
  }
}

TEST_F(SharedFileTest, RemovesTheTemporaryFileWhenItCannotReplace) {
  EXPECT_FALSE(file().change([&](const std::string&) {
    fs::create_directory(path());
    return "new";
  }));
  EXPECT_FALSE(fs::exists(path() + ".tmp"));
}

TEST_F(SharedFileTest, GivesUpOnALockThatIsKept) {
  write(file(), "old");
  const FileLock kept(FileDescriptor(open((path() + ".lock").c_str(), O_RDWR | O_CLOEXEC)));
  ASSERT_TRUE(kept.held());
  EXPECT_FALSE(write(file(), "new"));
  EXPECT_EQ(file().read(), "old");  // reading needs no lock
}

TEST_F(SharedFileTest, FollowsNoLinkToALock) {
  fs::create_symlink(directory_ / "elsewhere", path() + ".lock");
  EXPECT_FALSE(write(file(), "new"));
  EXPECT_FALSE(fs::exists(directory_ / "elsewhere"));
}

TEST_F(SharedFileTest, KeepsWhatProcessesAddAtTheSameTime) {
  constexpr int kProcesses = 3;
  constexpr int kRounds = 100;
  std::vector<pid_t> children;
  for (int process = 0; process < kProcesses; ++process) {
    const pid_t child = fork();
    if (child == 0) {
      int failures = 0;
      for (int i = 0; i < kRounds; ++i) {
        const auto add = [&](const std::string& text) {
          return text + std::string(1, static_cast<char>('a' + process));
        };
        while (!file().change(add)) ++failures;
      }
      _exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  const std::string text = test::readFile(path());
  for (int process = 0; process < kProcesses; ++process) {
    EXPECT_EQ(std::ranges::count(text, static_cast<char>('a' + process)), kRounds);
  }
}

}  // namespace
}  // namespace base
