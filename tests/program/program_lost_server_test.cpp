// The built program when its X server goes away, as at the end of a session, while it has files in
// its hands. What was to be deleted then is among the tests of the trash.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "base/file_descriptor.h"
#include "base/file_lock.h"
#include "tests/program/program_run.h"
#include "tests/program/request_proxy.h"
#include "tests/support/blocking_file_system.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/keys.h"

namespace {

namespace fs = std::filesystem;
using test::eventually;
using test::kLostServer;
using test::Running;

/// Another program that reads and replaces the file `path`: ours waits a second for it at most.
class FileInUse {
 public:
  explicit FileInUse(const std::string& path)
      : lock_(std::in_place, base::FileDescriptor(open((path + ".lock").c_str(),
                                                       O_RDWR | O_CREAT | O_CLOEXEC, 0600))) {
    EXPECT_TRUE(lock_->held());
  }
  void release() { lock_.reset(); }

 private:
  std::optional<base::FileLock> lock_;
};

class ProgramLostServer : public testing::Test {
 protected:
  ProgramLostServer() { test::writeFile(scanned_ + "/file", "x"); }

  static void expectToEndWithALine(Running& program) {
    EXPECT_EQ(program.process().wait(), 1);
    EXPECT_EQ(program.errors(), kLostServer);
  }

  test::PrivateHome home_;
  test::TempDirectory dir_;
  const std::string scanned_ = dir_ / "scanned";
  const std::string settings_ = home_.path() + "/.config/heapgauge/settings.ini";
  const std::string history_ = home_.path() + "/.local/share/heapgauge/scan-history.txt";
  const test::XServer server_{{.height = 960, .startedAnew = true}};
};

TEST_F(ProgramLostServer, SavesASettingThatIsOnItsWay) {
  // So many that the program would end long before they are written again.
  std::string others;
  for (int i = 100'000; i < 130'000; ++i) others += "key" + std::to_string(i) + "=value\n";
  test::writeFile(settings_, "[Heapgauge]\n" + others);
  Running program;
  FileInUse settings(settings_);
  program.ctrlKey(',');
  ASSERT_TRUE(eventually([&] { return program.pixel(5, 700) == test::kDimmed; }));
  program.key(ui::key::kDown);
  program.key(' ');
  ASSERT_TRUE(eventually([&] { return program.hasOpen(settings_ + ".lock"); })) << "it waits";
  // Held up, so that no second passes for it before the file is free.
  const pid_t pid = program.process().pid();
  kill(pid, SIGSTOP);
  program.loseServer(server_);
  settings.release();
  kill(pid, SIGCONT);
  expectToEndWithALine(program);
  EXPECT_TRUE(test::readFile(settings_) == "[Heapgauge]\nSplitHorizontally=true\n" + others);
  EXPECT_FALSE(fs::exists(settings_ + ".tmp"));
}

TEST_F(ProgramLostServer, LeavesTheHistoryWholeWhileAScanIsNoted) {
  const std::string before = "1700000000\t/elsewhere\n";
  test::writeFile(history_, before);
  FileInUse history(history_);
  Running program({scanned_});
  ASSERT_TRUE(eventually([&] { return program.hasOpen(history_ + ".lock"); })) << "it waits";
  program.loseServer(server_);
  expectToEndWithALine(program);
  const std::string after = test::readFile(history_);
  EXPECT_TRUE(after == before || (after.starts_with(before) && after.ends_with(scanned_ + "\n")))
      << after;
}

TEST_F(ProgramLostServer, NotesNoScanThatHasNotEnded) {
  test::BlockingFileSystem disk;
  if (!disk.problem().empty()) GTEST_SKIP() << disk.problem();
  disk.hold(test::BlockingFileSystem::Request::List, "folder");
  Running program({disk.path()});
  ASSERT_TRUE(disk.waitUntilHeld());
  program.loseServer(server_);
  expectToEndWithALine(program);
  EXPECT_FALSE(fs::exists(history_));
}

TEST_F(ProgramLostServer, LeavesTheFileOfACaptureAloneThatItCannotTake) {
  const std::string file = dir_ / "frame.ppm";
  test::writeFile(file, "an older picture");
  constexpr char kGetImage = 73;  // of the X protocol
  const test::RequestProxy proxy([&](std::span<char> request) {
    if (request[0] == kGetImage) kill(server_.pid(), SIGKILL);
  });
  const test::Outcome run({scanned_, "--capture", file, "--capture-after", "0"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors, kLostServer);
  EXPECT_EQ(test::readFile(file), "an older picture");
}

}  // namespace
