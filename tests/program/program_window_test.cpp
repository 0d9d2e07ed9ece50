// The built program while it runs: what the window manager and the user see of its window.

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/types.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

#include "tests/program/program_run.h"
#include "tests/support/blocking_file_system.h"
#include "tests/support/child.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/other_client.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"

namespace {

using test::eventually;
using test::kPlainScreen;
using test::PrivateHome;
using test::Running;
using test::TempDirectory;
using test::XServer;
using test::XServerOptions;

class ProgramWindow : public testing::Test {
 protected:
  PrivateHome home_;
  TempDirectory dir_;
};

TEST_F(ProgramWindow, IsNamedAfterTheProgramAndItsVersion) {
  const XServer server(kPlainScreen);
  Running program;
  EXPECT_EQ(program.title(), "Heap Gauge · 1.1.1");
  EXPECT_EQ(program.plainTitle(), "Heap Gauge · 1.1.1");
}

TEST_F(ProgramWindow, IsNamedAfterTheFolderItScans) {
  const XServer server(kPlainScreen);
  test::writeFile(dir_ / "scanned/file", "x");
  Running program({dir_ / "scanned"});
  const std::string expected = dir_ / "scanned" + " — Heap Gauge · 1.1.1";
  EXPECT_TRUE(eventually([&] { return program.title() == expected; })) << program.title();
  EXPECT_EQ(program.plainTitle(), expected);
}

TEST_F(ProgramWindow, TellsTheWindowManagerItsClassAndSizes) {
  const XServer server(kPlainScreen);
  Running program;
  EXPECT_EQ(program.client().textProperty(program.window(), "WM_CLASS", "STRING"),
            std::string("heapgauge\0Heapgauge\0", 20));
  EXPECT_EQ(program.client().sizeOf(program.window()), std::pair(1100, 720));
  EXPECT_EQ(program.leastSize(), std::pair(640ul, 420ul));
}

TEST_F(ProgramWindow, ScalesItsSizesWithTheScreen) {
  const XServer server({.width = 2400, .height = 1600, .resources = "Xft.dpi:\t144\n"});
  Running program;
  EXPECT_EQ(program.client().sizeOf(program.window()), std::pair(1650, 1080));
  EXPECT_EQ(program.leastSize(), std::pair(960ul, 630ul));
}

TEST_F(ProgramWindow, ClosesWithStatus0) {
  const XServer server(kPlainScreen);
  Running program;
  EXPECT_EQ(program.close(), 0);
  EXPECT_EQ(program.errors(), "");
}

TEST_F(ProgramWindow, ClosesWithStatus0InTheMiddleOfAScan) {
  test::BlockingFileSystem disk;
  if (!disk.problem().empty()) GTEST_SKIP() << disk.problem();
  disk.hold(test::BlockingFileSystem::Request::List, "folder");
  const XServer server(kPlainScreen);
  Running program({disk.path()});
  ASSERT_TRUE(disk.waitUntilHeld());
  EXPECT_EQ(program.close(), 0);
  EXPECT_EQ(program.errors(), "");
  EXPECT_FALSE(std::filesystem::exists(home_.path() + "/.local/share/heapgauge"));
}

/// Whether that signal is ignored by the process `pid`.
bool ignores(pid_t pid, int signal) {
  std::ifstream status("/proc/" + std::to_string(pid) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (!line.starts_with("SigIgn:")) continue;
    return (std::stoull(line.substr(line.find('\t') + 1), nullptr, 16) >> (signal - 1) & 1) != 0;
  }
  return false;
}

TEST_F(ProgramWindow, EndsWithStatus1WhenTheServerGoesAway) {
  auto server = std::make_unique<XServer>(XServerOptions{.startedAnew = true});
  TempDirectory dir;
  test::Child child({HEAPGAUGE_PROGRAM}, "/dev/null", "/dev/null", dir / "errors");
  test::OtherClient().shownWindow("Heapgauge");
  EXPECT_TRUE(ignores(child.pid(), SIGPIPE)) << "a frame may be on its way";
  server.reset();
  EXPECT_EQ(child.wait(), 1);
  EXPECT_EQ(test::readFile(dir / "errors"), "Lost the connection to the X server.\n");
}

}  // namespace
