// The built program while it runs: what the window manager and the user see of its window.

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/child.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/other_client.h"
#include "tests/support/real_tree.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"

namespace {

using test::eventually;
using test::PrivateHome;
using test::TempDirectory;
using test::XServer;

/// The program, started without a capture, and a second client beside it.
class Running {
 public:
  explicit Running(const std::vector<std::string>& arguments = {})
      : child_(commandLine(arguments), "/dev/null", "/dev/null", dir_ / "errors"),
        window_(client_.shownWindow("Heapgauge")) {}

  test::OtherClient& client() { return client_; }
  unsigned long window() const { return window_; }
  /// The title for today's window managers, and the one for old ones.
  std::string title() { return client_.textProperty(window_, "_NET_WM_NAME", "UTF8_STRING"); }
  std::string plainTitle() { return client_.textProperty(window_, "WM_NAME", "STRING"); }
  /// Least width and height as the window manager is told.
  std::pair<unsigned long, unsigned long> leastSize() {
    const auto hints = client_.longProperty(window_, "WM_NORMAL_HINTS");
    return hints.size() < 7 ? std::pair(0ul, 0ul) : std::pair(hints[5], hints[6]);
  }
  /// Presses the close button; the exit status, -2 when the program does not end.
  int close() {
    client_.sendProtocol(window_, "WM_DELETE_WINDOW");
    return child_.wait().value_or(-2);
  }
  std::string errors() const { return test::readFile(dir_ / "errors"); }

 private:
  static std::vector<std::string> commandLine(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), HEAPGAUGE_PROGRAM);
    return arguments;
  }

  TempDirectory dir_;
  test::Child child_;
  test::OtherClient client_;
  unsigned long window_;
};

class ProgramWindow : public testing::Test {
 protected:
  PrivateHome home_;
  TempDirectory dir_;
};

/// 960 lines at 96 dpi are 254 mm to the line, so that the interface scale is exactly 1.
const test::XServerOptions kScreen = {.height = 960};

TEST_F(ProgramWindow, IsNamedAfterTheProgramAndItsVersion) {
  const XServer server(kScreen);
  Running program;
  EXPECT_EQ(program.title(), "Heap Gauge · 1.1.1");
  EXPECT_EQ(program.plainTitle(), "Heap Gauge · 1.1.1");
}

TEST_F(ProgramWindow, IsNamedAfterTheFolderItScans) {
  const XServer server(kScreen);
  test::writeFile(dir_ / "scanned/file", "x");
  Running program({dir_ / "scanned"});
  const std::string expected = dir_ / "scanned" + " — Heap Gauge · 1.1.1";
  EXPECT_TRUE(eventually([&] { return program.title() == expected; })) << program.title();
  EXPECT_EQ(program.plainTitle(), expected);
}

TEST_F(ProgramWindow, TellsTheWindowManagerItsClassAndSizes) {
  const XServer server(kScreen);
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
  const XServer server(kScreen);
  Running program;
  EXPECT_EQ(program.close(), 0);
  EXPECT_EQ(program.errors(), "");
}

TEST_F(ProgramWindow, ClosesWithStatus0InTheMiddleOfAScan) {
  const XServer server(kScreen);
  // Each level takes longer to open than the one before: a scan of a good part of a second.
  test::makeDeepTree(dir_.path(), 3000, 1);
  Running program({dir_.path()});
  EXPECT_EQ(program.close(), 0);
  EXPECT_EQ(program.errors(), "");
  EXPECT_FALSE(std::filesystem::exists(home_.path() + "/.local/share/heapgauge"))
      << "the scan had ended before the window closed";
}

TEST_F(ProgramWindow, EndsWithStatus1WhenTheServerGoesAway) {
  auto server = std::make_unique<XServer>(kScreen);
  TempDirectory dir;
  test::Child child({HEAPGAUGE_PROGRAM}, "/dev/null", "/dev/null", dir / "errors");
  test::OtherClient().shownWindow("Heapgauge");
  server.reset();
  EXPECT_EQ(child.wait(), 1);
  EXPECT_EQ(test::readFile(dir / "errors"), "Lost the connection to the X server.\n");
}

}  // namespace
