// The built program while it scans a folder that does not answer: a dead network mount.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "tests/program/program_run.h"
#include "tests/support/blocking_file_system.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/keys.h"

namespace {

using test::BlockingFileSystem;
using test::eventually;
using test::kDimmed;
using test::kGround;
using test::Running;
using Clock = std::chrono::steady_clock;

/// What the program may take to answer under a sanitizer on a machine busy with other tests. It
/// takes a fiftieth of that otherwise, and would take for ever if it waited for the file system.
constexpr std::chrono::seconds kLongest{5};

constexpr unsigned long kShift = 0xFFE1;

class ProgramHang : public testing::Test {
 protected:
  void SetUp() override {
    if (!fileSystem_.problem().empty()) GTEST_SKIP() << fileSystem_.problem();
    fileSystem_.hold(BlockingFileSystem::Request::List, "folder");
  }

  /// The scan has shown what it found at the top, and hangs below.
  void waitUntilItHangs(Running& program) const {
    ASSERT_TRUE(fileSystem_.waitUntilHeld());
    ASSERT_TRUE(eventually([&] { return program.title() == title(fileSystem_.path()); }));
    ASSERT_TRUE(eventually([&] { return program.pixel(450, 100) != program.pixel(1000, 600); }));
  }

  /// `act` has the effect `seen`, in time.
  static void expectAtOnce(const std::string& what, const std::function<void()>& act,
                           const std::function<bool()>& seen) {
    const auto start = Clock::now();
    act();
    EXPECT_TRUE(eventually(seen)) << what;
    const auto took = Clock::now() - start;
    EXPECT_LT(took, kLongest) << what;
    std::cout << what << ": " << std::chrono::duration_cast<std::chrono::milliseconds>(took).count()
              << " ms\n";
  }
  /// Closes the window: the program ends in time, with status 0, and had nothing to complain of.
  static void expectToCloseAtOnce(Running& program) {
    int status = -2;
    expectAtOnce(
        "close", [&] { status = program.close(); }, [] { return true; });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(program.errors(), "");
  }
  /// Goes from the welcome view to the chooser, and there to the folder "chosen" of the home
  /// directory.
  static void choose(Running& program) {
    program.client().pressKey(kShift);
    program.key(ui::key::kTab);  // backwards, to the last of the controls
    program.client().releaseKey(kShift);
    program.key(ui::key::kReturn);
    EXPECT_TRUE(eventually([&] { return program.pixel(5, 700) == kDimmed; }));
    program.key(ui::key::kDown);
    program.ctrlKey(ui::key::kReturn);
  }
  static std::vector<unsigned long> buttons(Running& program) {
    return program.client().screenPixels(program.window(), 0, 4, 200, 28);
  }
  static std::string title(const std::string& folder) { return folder + " — Heap Gauge · 1.1.1"; }

  bool isRecorded(const std::string& folder) const {
    const std::string file = home_.path() + "/.local/share/heapgauge/scan-history.txt";
    return std::filesystem::exists(file) &&
           test::readFile(file).find("\t" + folder + "\n") != std::string::npos;
  }
  std::string settings() const {
    const std::string file = home_.path() + "/.config/heapgauge/settings.ini";
    return std::filesystem::exists(file) ? test::readFile(file) : std::string();
  }

  test::PrivateHome home_;
  BlockingFileSystem fileSystem_;
  const test::XServer server_{test::kPlainScreen};
};

TEST_F(ProgramHang, ClosesAtOnce) {
  Running program({fileSystem_.path()});
  waitUntilItHangs(program);
  expectToCloseAtOnce(program);
  EXPECT_FALSE(isRecorded(fileSystem_.path()));
}

TEST_F(ProgramHang, StopsAtOnceAndThenCloses) {
  Running program({fileSystem_.path()});
  waitUntilItHangs(program);
  const auto before = buttons(program);
  expectAtOnce(
      "stop", [&] { program.key(ui::key::kEscape); }, [&] { return buttons(program) != before; });
  expectToCloseAtOnce(program);
}

TEST_F(ProgramHang, ScansAnewAtOnceAgainAndAgain) {
  Running program({fileSystem_.path()});
  waitUntilItHangs(program);
  const auto scans = [&] { return fileSystem_.openings("folder"); };
  constexpr int kMost = 4;
  for (int scan = 2; scan <= kMost; ++scan) {
    expectAtOnce(
        "F5", [&] { program.key(ui::key::kF5); }, [&] { return scans() == scan; });
  }
  for (int i = 0; i < 20; ++i) program.key(ui::key::kF5);
  expectAtOnce(
      "settings", [&] { program.ctrlKey(','); },
      [&] { return program.pixel(250, 400) == kDimmed; });
  EXPECT_EQ(scans(), kMost) << "they must not fill the machine";
  expectToCloseAtOnce(program);
}

TEST_F(ProgramHang, ChangesASettingAtOnce) {
  Running program({fileSystem_.path()});
  waitUntilItHangs(program);
  expectAtOnce(
      "settings", [&] { program.ctrlKey(','); },
      [&] { return program.pixel(250, 400) == kDimmed; });
  expectAtOnce(
      "setting",
      [&] {
        program.key(ui::key::kDown);
        program.key(' ');
      },
      [&] { return settings() == "[Heapgauge]\nSplitHorizontally=true\n"; });
  expectToCloseAtOnce(program);
  EXPECT_EQ(settings(), "[Heapgauge]\nSplitHorizontally=true\n");
}

TEST_F(ProgramHang, ScansAnotherFolderAtOnce) {
  const std::string chosen = home_.path() + "/chosen";
  test::writeFile(chosen + "/file", "x");
  Running program({fileSystem_.path()});
  waitUntilItHangs(program);
  expectAtOnce(
      "open", [&] { program.ctrlKey('o'); }, [&] { return program.pixel(5, 700) == kGround; });
  expectAtOnce(
      "choose", [&] { choose(program); }, [&] { return program.title() == title(chosen); });
  EXPECT_TRUE(eventually([&] { return isRecorded(chosen); }));
  EXPECT_EQ(fileSystem_.held(), 1) << "the first scan still hangs";
  expectToCloseAtOnce(program);
  EXPECT_TRUE(isRecorded(chosen));
  EXPECT_FALSE(isRecorded(fileSystem_.path()));
}

TEST_F(ProgramHang, AnswersWhileThePathItselfDoesNot) {
  fileSystem_.hold(BlockingFileSystem::Request::Examine, "folder");
  const std::string path = fileSystem_.path() + "/folder/../folder";
  Running program({path});
  ASSERT_TRUE(fileSystem_.waitUntilHeld());
  EXPECT_TRUE(eventually([&] { return program.title() == title(path); }));
  expectAtOnce(
      "settings", [&] { program.ctrlKey(','); },
      [&] { return program.pixel(250, 400) == kDimmed; });
  program.key(ui::key::kEscape);
  EXPECT_TRUE(eventually([&] { return program.pixel(250, 400) == kGround; }));
  expectAtOnce(
      "open", [&] { program.ctrlKey('o'); }, [&] { return program.pixel(5, 700) == kGround; });
  expectToCloseAtOnce(program);
}

TEST_F(ProgramHang, ScansToTheEndWhatAnswersLate) {
  Running program({fileSystem_.path()});
  waitUntilItHangs(program);
  EXPECT_FALSE(isRecorded(fileSystem_.path()));
  fileSystem_.release();
  EXPECT_TRUE(eventually([&] { return isRecorded(fileSystem_.path()); }));
  EXPECT_EQ(program.close(), 0);
}

TEST_F(ProgramHang, ScansToTheEndWhatFailsLate) {
  Running program({fileSystem_.path()});
  waitUntilItHangs(program);
  const auto before = buttons(program);
  fileSystem_.fail();
  EXPECT_TRUE(eventually([&] { return isRecorded(fileSystem_.path()); }));
  EXPECT_TRUE(eventually([&] { return buttons(program) != before; })) << "it can be scanned anew";
  EXPECT_EQ(program.close(), 0);
}

TEST_F(ProgramHang, IsNotMisledByALateAnswerToAScanThatWasLeft) {
  Running program({fileSystem_.path()});
  waitUntilItHangs(program);
  program.ctrlKey('o');
  EXPECT_TRUE(eventually([&] { return program.pixel(5, 700) == kGround; }));
  fileSystem_.release();
  EXPECT_TRUE(eventually([&] { return fileSystem_.held() == 0; }));
  EXPECT_EQ(program.title(), "Heap Gauge · 1.1.1");
  EXPECT_EQ(program.close(), 0);
  EXPECT_FALSE(isRecorded(fileSystem_.path()));
}

}  // namespace
