#include "app/command_line.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "app/model/product.h"

namespace app {
namespace {

using Answer = CommandLine::Action;

CommandLine parse(const std::vector<const char*>& arguments) { return parseCommandLine(arguments); }

void expectDefaults(const CommandLine& line) {
  EXPECT_EQ(line.action, Answer::Run);
  EXPECT_EQ(line.path, "");
  EXPECT_EQ(line.capturePath, "");
  EXPECT_EQ(line.captureDelay, 1.0);
}

TEST(Product, HasTheVersionOfTheBuild) { EXPECT_STREQ(kProductVersion, HEAPGAUGE_PROJECT_VERSION); }

TEST(ParseCommandLine, RunsWithoutArguments) { expectDefaults(parse({})); }

TEST(ParseCommandLine, TakesAPath) {
  const CommandLine line = parse({"/tmp"});
  EXPECT_EQ(line.action, Answer::Run);
  EXPECT_EQ(line.path, "/tmp");
  EXPECT_EQ(line.capturePath, "");
}

TEST(ParseCommandLine, LetsTheLastPathCount) { EXPECT_EQ(parse({"a", "b"}).path, "b"); }

TEST(ParseCommandLine, IgnoresTheEmptyArgument) {
  expectDefaults(parse({""}));
  EXPECT_EQ(parse({"a", ""}).path, "a");
}

TEST(ParseCommandLine, IgnoresUnknownOptions) {
  expectDefaults(parse({"-x"}));
  expectDefaults(parse({"-"}));
  expectDefaults(parse({"--"}));
  EXPECT_EQ(parse({"-x", "/tmp"}).path, "/tmp");
  EXPECT_EQ(parse({"--", "/tmp"}).path, "/tmp");
}

TEST(ParseCommandLine, AcceptsOptionsByTheirWholeTextOnly) {
  for (const char* argument : {"--vers", "--version=1", "--Version", "-v", "--hel", "-H", "-hh",
                               "--captur", "--capture=f.ppm", "--capture-after=3"}) {
    expectDefaults(parse({argument}));
  }
  EXPECT_EQ(parse({"--captur", "f.ppm"}).path, "f.ppm");
}

TEST(ParseCommandLine, AnswersVersion) {
  EXPECT_EQ(parse({"--version"}).action, Answer::PrintVersion);
  EXPECT_EQ(parse({"/tmp", "--version"}).action, Answer::PrintVersion);
}

TEST(ParseCommandLine, AnswersHelp) {
  EXPECT_EQ(parse({"--help"}).action, Answer::PrintUsage);
  EXPECT_EQ(parse({"-h"}).action, Answer::PrintUsage);
}

TEST(ParseCommandLine, StopsAtTheFirstQuestion) {
  EXPECT_EQ(parse({"--version", "--help"}).action, Answer::PrintVersion);
  EXPECT_EQ(parse({"-h", "--version"}).action, Answer::PrintUsage);
  EXPECT_EQ(parse({"--help", "/tmp"}).path, "");
}

TEST(ParseCommandLine, TakesACaptureFile) {
  const CommandLine line = parse({"--capture", "out.ppm", "/tmp"});
  EXPECT_EQ(line.action, Answer::Run);
  EXPECT_EQ(line.capturePath, "out.ppm");
  EXPECT_EQ(line.path, "/tmp");
  EXPECT_EQ(line.captureDelay, 1.0);
}

TEST(ParseCommandLine, TakesWhateverFollowsCaptureAsItsFile) {
  EXPECT_EQ(parse({"--capture", "--version"}).action, Answer::Run);
  EXPECT_EQ(parse({"--capture", "--version"}).capturePath, "--version");
  EXPECT_EQ(parse({"--capture", "--capture-after", "3"}).capturePath, "--capture-after");
  EXPECT_EQ(parse({"--capture", "--capture-after", "3"}).path, "3");
  EXPECT_EQ(parse({"--capture", "a", "--capture", ""}).capturePath, "");
}

TEST(ParseCommandLine, AnswersVersionAfterACaptureFile) {
  const CommandLine line = parse({"--capture", "out.ppm", "--version"});
  EXPECT_EQ(line.action, Answer::PrintVersion);
  EXPECT_EQ(line.capturePath, "out.ppm");
}

TEST(ParseCommandLine, IgnoresCaptureOptionsThatLackTheirValue) {
  expectDefaults(parse({"--capture"}));
  expectDefaults(parse({"--capture-after"}));
  EXPECT_EQ(parse({"/tmp", "--capture"}).path, "/tmp");
  EXPECT_EQ(parse({"--capture", "f.ppm", "--capture-after"}).captureDelay, 1.0);
}

TEST(ParseCommandLine, ReadsTheDelayAsStrtodDoes) {
  EXPECT_EQ(parse({"--capture-after", "2.5"}).captureDelay, 2.5);
  EXPECT_EQ(parse({"--capture-after", "-3"}).captureDelay, -3.0);
  EXPECT_EQ(parse({"--capture-after", " 4s"}).captureDelay, 4.0);
  EXPECT_EQ(parse({"--capture-after", "1e1"}).captureDelay, 10.0);
  EXPECT_EQ(parse({"--capture-after", ""}).captureDelay, 0.0);
  EXPECT_TRUE(std::isinf(parse({"--capture-after", "inf"}).captureDelay));
  EXPECT_EQ(parse({"--capture-after", "2", "--capture-after", "3"}).captureDelay, 3.0);
}

TEST(ParseCommandLine, TakesADelayThatIsNoNumberForZero) {
  const CommandLine line = parse({"--capture-after", "abc", "--capture", "f.ppm"});
  EXPECT_EQ(line.captureDelay, 0.0);
  EXPECT_EQ(line.capturePath, "f.ppm");
}

TEST(ParseCommandLine, ConsumesTheValueOfTheDelay) {
  EXPECT_EQ(parse({"--capture-after", "/tmp"}).path, "");
  EXPECT_EQ(parse({"--capture-after", "--help"}).action, Answer::Run);
}

TEST(CommandLineTexts, GiveTheVersion) { EXPECT_EQ(versionText(), "1.1.1\n"); }

TEST(CommandLineTexts, GiveTheUsage) {
  EXPECT_EQ(usageText(),
            "Heap Gauge 1.1.1\n"
            "usage: heapgauge [path]\n"
            "  path    a folder to scan at once, instead of the chooser\n"
            "\n"
            "  --capture FILE        draw one frame to a PPM file and exit\n"
            "  --capture-after SEC   how long to wait first (default 1)\n"
            "\n"
            "Environment:\n"
            "  HEAPGAUGE_THEME=light|dark   override the desktop's setting\n");
}

TEST(CommandLineTexts, GiveTheErrors) {
  EXPECT_EQ(noDisplayMessage(),
            "Cannot open a connection to the X display.\n"
            "This is a graphical application; DISPLAY has to be set.\n"
            "On a Wayland-only session it reaches the screen through XWayland.\n");
  EXPECT_EQ(noWindowMessage(), "Could not create the window.\n");
}

}  // namespace
}  // namespace app
