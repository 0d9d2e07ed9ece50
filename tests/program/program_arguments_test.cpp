// The command line of the built program, a test for each thing that an argument may be.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/program/program_run.h"
#include "tests/support/child.h"
#include "tests/support/environment.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"

namespace {

using test::kPlainScreen;
using test::Outcome;
using test::XServer;

class ProgramArguments : public testing::Test {
 protected:
  /// Ends well, without a word, and leaves a frame in f.ppm.
  void expectCaptures(std::vector<std::string> arguments) {
    std::filesystem::remove(frame_);
    std::filesystem::remove_all(home_.path() + "/.local");
    const Outcome run(arguments);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(std::filesystem::exists(frame_));
  }
  /// The folder that the last run scanned, by the history of scans; empty for none.
  std::string scanned() {
    const std::string file = home_.path() + "/.local/share/heapgauge/scan-history.txt";
    if (!std::filesystem::exists(file)) return {};
    const std::string history = test::readFile(file);
    const std::size_t tab = history.find_last_of('\t');
    return history.substr(tab + 1, history.size() - tab - 2);
  }
  std::string folder(const std::string& name) {
    test::writeFile(dir_ / (name + "/file"), "x");
    return dir_ / name;
  }

  test::PrivateHome home_;
  test::TempDirectory dir_;
  const std::string frame_ = dir_ / "f.ppm";
};

TEST_F(ProgramArguments, VersionAndHelpAnswerAloneAndFirst) {
  test::ScopedEnvironment environment;
  environment.unset("DISPLAY");
  const std::string usage = Outcome({"-h"}).output;
  EXPECT_TRUE(usage.starts_with("Heap Gauge 1.1.1\nusage: heapgauge [path]\n"));
  for (const char* help : {"--help", "-h"}) {
    const Outcome run({"path", "-x", help, "--version", "--capture", frame_});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, usage);
    EXPECT_EQ(run.errors, "");
  }
  const Outcome run({"path", "-x", "--version", "--help", "--capture", frame_});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output, "1.1.1\n");
  EXPECT_EQ(run.errors, "");
  EXPECT_FALSE(std::filesystem::exists(frame_));
}

TEST_F(ProgramArguments, OptionsCountByTheirWholeText) {
  const XServer server(kPlainScreen);
  const std::string other = dir_ / "other.ppm";
  expectCaptures({"--version=1", "--vers", "--helpme", "-hh", "--capture=" + other, "--captur",
                  "--capture", frame_, "--capture-after=abc", "--capture-after", "0"});
  EXPECT_FALSE(std::filesystem::exists(other));
}

TEST_F(ProgramArguments, ACaptureTakesWhateverFollows) {
  const XServer server(kPlainScreen);
  // Into a working directory of the test's own.
  for (const char* file : {"--version", "--help", "--capture", "-x"}) {
    test::Child run(
        {"env", "-C", dir_.path(), HEAPGAUGE_PROGRAM, "--capture", file, "--capture-after", "0"},
        "/dev/null", dir_ / "out", dir_ / "errors");
    EXPECT_EQ(run.wait(), 0) << file;
    EXPECT_EQ(test::readFile(dir_ / "out"), "") << file;
    EXPECT_EQ(test::readFile(dir_ / file).substr(0, 2), "P6") << file;
  }
}

TEST_F(ProgramArguments, ADelayTakesWhateverFollows) {
  const XServer server(kPlainScreen);
  for (const char* delay : {"--version", "--help", "--capture", "-1", "abc", ""}) {
    expectCaptures({"--capture-after", delay, "--capture", frame_});
  }
}

TEST_F(ProgramArguments, ADelayWithoutItsValueIsIgnored) {
  const XServer server(kPlainScreen);
  const Outcome run({"--capture", frame_, "--capture-after"});
  EXPECT_EQ(run.status, 0);
  EXPECT_GE(run.seconds, 0.95) << "the delay stays a second";
}

TEST_F(ProgramArguments, ACaptureWithoutItsValueIsIgnored) {
  const XServer server(kPlainScreen);
  expectCaptures({"--capture", frame_, "--capture-after", "0", "--capture"});
}

TEST_F(ProgramArguments, UnknownOptionsAndEmptyOnesAreIgnored) {
  const XServer server(kPlainScreen);
  const std::string path = folder("a");
  for (const std::string ignored : {"-x", "-", "--", "--unknown", ""}) {
    expectCaptures({ignored, path, "--capture", frame_, "--capture-after", "0"});
    EXPECT_EQ(scanned(), path) << ignored;
    expectCaptures({path, "--capture", frame_, "--capture-after", "0", ignored});
    EXPECT_EQ(scanned(), path) << ignored;
  }
}

TEST_F(ProgramArguments, TheLastOfTwoPathsIsScanned) {
  const XServer server(kPlainScreen);
  const std::string a = folder("a");
  const std::string b = folder("b");
  expectCaptures({a, b, "--capture", frame_, "--capture-after", "0"});
  EXPECT_EQ(scanned(), b);
  expectCaptures({b, "--capture", frame_, "--capture-after", "0", a});
  EXPECT_EQ(scanned(), a);
}

TEST_F(ProgramArguments, NoPathScansNothing) {
  const XServer server(kPlainScreen);
  expectCaptures({"--capture", frame_, "--capture-after", "0"});
  EXPECT_EQ(scanned(), "");
}

TEST_F(ProgramArguments, ANormalStartWithoutAUsableDisplayEndsWithStatus1) {
  const XServer server({.depth = 16});
  const Outcome run({dir_.path()});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors,
            "Cannot open a connection to the X display.\n"
            "This is a graphical application; DISPLAY has to be set.\n"
            "On a Wayland-only session it reaches the screen through XWayland.\n");
}

}  // namespace
