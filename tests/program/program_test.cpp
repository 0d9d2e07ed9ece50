// The built program, started as a user starts it, on an X server of the test's own.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>

#include "tests/program/program_run.h"
#include "tests/program/request_proxy.h"
#include "tests/support/environment.h"
#include "tests/support/other_client.h"
#include "tests/support/picture.h"
#include "tests/support/real_tree.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/palette.h"

namespace {

using test::kPlainScreen;
using test::Outcome;
using test::Picture;
using test::PrivateHome;
using test::ScopedEnvironment;
using test::TempDirectory;
using test::XServer;

constexpr std::uint32_t kBackground = 0x1C1C1E;
/// The ground of lists and of the welcome view in the light colours.
constexpr std::uint32_t kView = ui::kLightPalette.view & 0xFFFFFF;

/// Everything below `directory`, relative to it.
std::set<std::string> filesBelow(const std::string& directory) {
  std::set<std::string> found;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
    found.insert(entry.path().lexically_relative(directory));
  }
  return found;
}

/// The map in a frame of a scan, in a window of the first size. What is around it tells how long
/// the scan took.
Picture mapOf(const std::string& frame) { return test::readPpm(frame).part(390, 50, 700, 630); }

void expectWelcome(const std::string& frame) {
  const Picture picture = test::readPpm(frame);
  EXPECT_EQ(picture.width, 1100);
  EXPECT_EQ(picture.height, 720);
  EXPECT_GT(picture.count(kView), 1100 * 720 / 2);
  EXPECT_EQ(picture.count(kBackground), 0);
}

class Program : public testing::Test {
 protected:
  PrivateHome home_;
  TempDirectory dir_;
};

TEST_F(Program, PrintsItsVersionWithoutADisplay) {
  ScopedEnvironment environment;
  environment.unset("DISPLAY");
  const Outcome run({"--version"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "1.1.1\n");
  EXPECT_EQ(run.errors, "");
}

TEST_F(Program, PrintsItsUsage) {
  const Outcome run({"-h"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output,
            "Heap Gauge 1.1.1\n"
            "usage: heapgauge [path]\n"
            "  path    a folder to scan at once, instead of the chooser\n"
            "\n"
            "  --capture FILE        draw one frame to a PPM file and exit\n"
            "  --capture-after SEC   how long to wait first (default 1)\n"
            "\n"
            "Environment:\n"
            "  HEAPGAUGE_THEME=light|dark   override the desktop's setting\n");
  EXPECT_EQ(Outcome({"--help"}).output, run.output);
}

TEST_F(Program, LetsTheVersionWinOverACaptureBeforeIt) {
  const Outcome run({"--capture", dir_ / "out.ppm", "--version"});
  EXPECT_EQ(run.output, "1.1.1\n");
  EXPECT_NE(access((dir_ / "out.ppm").c_str(), F_OK), 0);
}

TEST_F(Program, ExplainsThatItNeedsADisplay) {
  ScopedEnvironment environment;
  environment.unset("DISPLAY");
  const Outcome run({});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors,
            "Cannot open a connection to the X display.\n"
            "This is a graphical application; DISPLAY has to be set.\n"
            "On a Wayland-only session it reaches the screen through XWayland.\n");
}

TEST_F(Program, TakesAScreenOfSixteenBitsForNoDisplay) {
  const XServer server({.depth = 16});
  const Outcome run({"--capture", dir_ / "f.ppm"});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(run.errors.starts_with("Cannot open a connection to the X display.\n"));
}

TEST_F(Program, EndsWithStatus1WhenTheServerGivesItNoWindow) {
  const XServer server(kPlainScreen);
  const test::RequestProxy windowless(test::spoilWindows);
  const Outcome run({"--capture", dir_ / "f.ppm", "--capture-after", "0"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors, "Could not create the window.\n");
  EXPECT_FALSE(std::filesystem::exists(dir_ / "f.ppm"));
}

TEST_F(Program, LeavesATreemapOfARealFolderInTheCapture) {
  const XServer server(kPlainScreen);
  test::makeBushyTree(dir_ / "scanned", 1, 60, 8);
  const std::string file = dir_ / "frame.ppm";
  const Outcome run({dir_ / "scanned", "--capture", file, "--capture-after", "0"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(test::readPpm(file).width, 1100);
  EXPECT_EQ(test::readPpm(file).height, 720);
  const Picture picture = mapOf(file);
  EXPECT_LT(picture.count(kBackground), picture.width * picture.height / 100)
      << "the files fill the map";
  const std::set<std::uint32_t> colours(picture.pixels.begin(), picture.pixels.end());
  EXPECT_GT(colours.size(), 500u) << "cushions shade every block";
}

TEST_F(Program, CapturesTheSamePictureOfTheSameFolder) {
  const XServer server(kPlainScreen);
  test::makeBushyTree(dir_ / "scanned", 2, 20, 5);
  for (const char* name : {"one.ppm", "two.ppm"}) {
    const Outcome run({dir_ / "scanned", "--capture", dir_ / name, "--capture-after", "0"});
    ASSERT_EQ(run.status, 0);
  }
  EXPECT_TRUE(mapOf(dir_ / "one.ppm") == mapOf(dir_ / "two.ppm"));
}

TEST_F(Program, ScalesItsWindowWithTheScreen) {
  const XServer server({.width = 2400, .height = 1600, .resources = "Xft.dpi:\t192\n"});
  const Outcome run({"--capture", dir_ / "f.ppm", "--capture-after", "0"});
  EXPECT_EQ(run.status, 0);
  const Picture picture = test::readPpm(dir_ / "f.ppm");
  EXPECT_EQ(picture.width, 2200);
  EXPECT_EQ(picture.height, 1440);
}

TEST_F(Program, ScansTheFolderThatALinkLeadsTo) {
  const XServer server(kPlainScreen);
  test::makeBushyTree(dir_ / "scanned", 3, 10, 4);
  ASSERT_EQ(symlink("scanned", (dir_ / "link").c_str()), 0);
  ASSERT_EQ(Outcome({dir_ / "scanned", "--capture", dir_ / "a.ppm", "--capture-after", "0"}).status,
            0);
  const Outcome run({dir_ / "link", "--capture", dir_ / "b.ppm", "--capture-after", "0"});
  EXPECT_EQ(run.errors, "");
  EXPECT_TRUE(mapOf(dir_ / "a.ppm") == mapOf(dir_ / "b.ppm"));
}

TEST_F(Program, CapturesTheMessageWhyAPathCannotBeScanned) {
  const XServer server(kPlainScreen);
  test::writeFile(dir_ / "file");
  const std::string missing = dir_ / "missing";
  const Outcome absent({missing, "--capture", dir_ / "f.ppm", "--capture-after", "0"});
  EXPECT_EQ(absent.status, 0);
  EXPECT_EQ(absent.errors, "");
  const Outcome file({dir_ / "file", "--capture", dir_ / "g.ppm", "--capture-after", "0"});
  EXPECT_EQ(file.errors, "");
  // The panel in the middle of the dimmed welcome view, with another reason in each.
  constexpr std::uint32_t kDimmedView = 0x999999;
  const Picture picture = test::readPpm(dir_ / "f.ppm");
  EXPECT_GT(picture.count(kDimmedView), 1100 * 720 / 2);
  const Picture panel = picture.part(340, 300, 420, 120);
  EXPECT_GT(panel.count(ui::kLightPalette.window & 0xFFFFFF), 420 * 120 / 2);
  EXPECT_FALSE(panel == test::readPpm(dir_ / "g.ppm").part(340, 300, 420, 120));
}

TEST_F(Program, ScansTheLastOfTwoPathsAndIgnoresUnknownOptions) {
  const XServer server(kPlainScreen);
  test::makeBushyTree(dir_ / "scanned", 4, 10, 4);
  const Outcome run({dir_ / "missing", "-x", "", dir_ / "scanned", "--capture", dir_ / "f.ppm",
                     "--capture-after", "abc"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.errors, "");
  EXPECT_LT(mapOf(dir_ / "f.ppm").count(kBackground), 700 * 630 / 100);
}

TEST_F(Program, ReportsACaptureThatCannotBeWrittenAndEndsWell) {
  const XServer server(kPlainScreen);
  const std::string file = dir_ / "no/such/folder/f.ppm";
  const Outcome run({"--capture", file, "--capture-after", "0"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.errors, "could not write " + file + "\n");
}

TEST_F(Program, CapturesTheWelcomeViewWithoutAFolder) {
  const XServer server(kPlainScreen);
  const Outcome run({"--capture", dir_ / "f.ppm", "--capture-after", "0"});
  EXPECT_EQ(run.status, 0);
  expectWelcome(dir_ / "f.ppm");
}

TEST_F(Program, CapturesAWindowThatWasNeverShown) {
  const XServer server(kPlainScreen);
  test::OtherClient manager;
  manager.holdBackWindows();
  const Outcome run({"--capture", dir_ / "f.ppm", "--capture-after", "0"});
  EXPECT_EQ(run.errors, "");
  expectWelcome(dir_ / "f.ppm");
}

// Only shortest times: how long a run takes at most is up to the machine. What a delay is rounded
// to and that some are none is the countdown's.
TEST_F(Program, WaitsASecondBeforeACaptureUnlessToldOtherwise) {
  const XServer server(kPlainScreen);
  EXPECT_GE(Outcome({"--capture", dir_ / "f.ppm"}).seconds, 0.95);
  EXPECT_GE(Outcome({"--capture", dir_ / "f.ppm", "--capture-after", "1.59"}).seconds, 1.45);
}

TEST_F(Program, CapturesAfterADelayBelowNothing) {
  const XServer server(kPlainScreen);
  for (const char* delay : {"-5", "nan", "-inf", "0.05"}) {
    const std::string file = dir_ / "frame" + delay;
    EXPECT_EQ(Outcome({"--capture", file, "--capture-after", delay}).status, 0) << delay;
    expectWelcome(file);
  }
}

TEST_F(Program, SizesFilesByTheirSpaceOnDiskUnlessTheSettingSaysOtherwise) {
  const XServer server(kPlainScreen);
  test::writeSparseFile(dir_ / "scanned/long.mp3", 1 << 30);
  test::writeFile(dir_ / "scanned/full.txt", std::string(1 << 20, 'x'));
  const auto frameWith = [&](const std::string& settings) {
    test::writeFile(home_.path() + "/.config/heapgauge/settings.ini", settings);
    const Outcome run({dir_ / "scanned", "--capture", dir_ / "f.ppm", "--capture-after", "0"});
    EXPECT_EQ(run.errors, "");
    return mapOf(dir_ / "f.ppm");
  };
  const Picture standard = frameWith("");
  EXPECT_TRUE(frameWith("[Heapgauge]\nShowPhysicalFileSize=true\n") == standard);
  EXPECT_FALSE(frameWith("[Heapgauge]\nShowPhysicalFileSize=false\n") == standard);
  // On disk there is nothing beside the full file.
  std::filesystem::remove(dir_ / "scanned/long.mp3");
  EXPECT_TRUE(frameWith("") == standard);
}

TEST_F(Program, StartsWhenItsFilesAreFifosThatNobodyWritesTo) {
  const XServer server(kPlainScreen);
  const std::string data = home_.path() + "/.local/share/heapgauge";
  const std::string configuration = home_.path() + "/.config/heapgauge";
  test::makeDirectory(data);
  test::makeDirectory(configuration);
  ASSERT_EQ(mkfifo((data + "/scan-history.txt").c_str(), 0600), 0);
  ASSERT_EQ(mkfifo((configuration + "/settings.ini").c_str(), 0600), 0);
  test::writeFile(dir_ / "scanned/file", "x");
  const Outcome run({dir_ / "scanned", "--capture", dir_ / "f.ppm", "--capture-after", "0"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.errors, "");
}

TEST_F(Program, RemembersTheScanAndTouchesNothingElseOfTheUsers) {
  const XServer server(kPlainScreen);
  test::writeFile(dir_ / "scanned/file", "x");
  ASSERT_EQ(Outcome({dir_ / "scanned", "--capture", dir_ / "f.ppm", "--capture-after", "0"}).status,
            0);
  const std::string history =
      test::readFile(home_.path() + "/.local/share/heapgauge/scan-history.txt");
  EXPECT_TRUE(history.ends_with("\t" + (dir_ / "scanned") + "\n")) << history;
  EXPECT_EQ(
      filesBelow(home_.path()),
      (std::set<std::string>{".config", ".config/heapgauge", ".local", ".local/share",
                             ".local/share/heapgauge", ".local/share/heapgauge/scan-history.txt",
                             ".local/share/heapgauge/scan-history.txt.lock"}));
  EXPECT_EQ(filesBelow(dir_.path()), (std::set<std::string>{"f.ppm", "scanned", "scanned/file"}));
}

}  // namespace
