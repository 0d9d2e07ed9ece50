// The built program and the server that knows the newest version, played by a stand-in for curl.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>

#include "base/file_descriptor.h"
#include "tests/program/program_run.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/keys.h"

namespace {

using test::eventually;
using test::kDimmed;
using test::kGround;

class ProgramUpdate : public testing::Test {
 protected:
  ProgramUpdate() { path_.set("PATH", tools_.path() + ":" + std::getenv("PATH")); }

  /// Has "curl" run the shell's `lines`.
  void curlDoes(const std::string& lines) {
    const std::string file = tools_ / "curl";
    test::writeFile(file, "#!/bin/sh\n" + lines + "\n");
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
  }

  /// Returns when whoever was asked at the start has answered, if anybody was, and a frame has been
  /// drawn after that. The program asks before its first frame, on a thread that hands the answer
  /// on before it ends; nothing else in the welcome view keeps a thread.
  static void awaitFrameAfterTheAnswer(test::Running& program) {
    awaitNewFrames(program);
    const std::string threads = "/proc/" + std::to_string(program.process().pid()) + "/task";
    const auto count = [&] {
      return std::distance(std::filesystem::directory_iterator(threads), {});
    };
#ifdef __SANITIZE_THREAD__
    constexpr int kThreadsAtRest = 2;  // the sanitizer has one of its own
#else
    constexpr int kThreadsAtRest = 1;
#endif
    ASSERT_TRUE(eventually([&] { return count() == kThreadsAtRest; }));
    awaitNewFrames(program);
  }
  /// By a dialog that is opened and closed.
  static void awaitNewFrames(test::Running& program) {
    program.ctrlKey(',');
    ASSERT_TRUE(eventually([&] { return program.pixel(5, 700) == kDimmed; }));
    program.key(ui::key::kEscape);
    ASSERT_TRUE(eventually([&] { return program.pixel(5, 700) == kGround; }));
  }

  const test::XServer server_{{.height = 960}};
  test::PrivateHome home_;
  test::TempDirectory tools_;
  test::ScopedEnvironment path_;
};

TEST_F(ProgramUpdate, TellsOfANewerVersionUnderTheToolbarUntilItIsPutAway) {
  curlDoes(R"(echo '{"updateAvailable":true,"latest":{"version":"9.9.9"}}')");
  test::Running program;
  const auto lineIsThere = [&] { return program.pixel(5, 45) != kGround; };
  ASSERT_TRUE(eventually(lineIsThere));
  program.key(ui::key::kF1);
  EXPECT_TRUE(eventually([&] { return program.pixel(5, 700) == kDimmed; })) << "the About box";
  program.key(ui::key::kEscape);
  EXPECT_TRUE(eventually([&] { return program.pixel(5, 700) == kGround; }));
  EXPECT_TRUE(lineIsThere());
  EXPECT_EQ(program.close(), 0);
}

TEST_F(ProgramUpdate, SaysNothingWhenThereIsNone) {
  curlDoes("echo asked >'" + (tools_ / "asked") +
           R"('; echo '{"updateAvailable":false,"latest":{"version":"1.1.1"}}')");
  test::Running program;
  ASSERT_TRUE(eventually([&] { return std::filesystem::exists(tools_ / "asked"); }));
  awaitFrameAfterTheAnswer(program);
  EXPECT_EQ(program.pixel(5, 45), kGround);
  EXPECT_EQ(program.close(), 0);
}

TEST_F(ProgramUpdate, AsksNobodyWhenTheUserDoesNotWantIt) {
  curlDoes("echo asked >'" + (tools_ / "asked") + "'; echo '{}'");
  test::writeFile(home_.path() + "/.config/heapgauge/settings.ini",
                  "[Heapgauge]\nCheckForUpdates=false\n");
  test::Running program;
  awaitFrameAfterTheAnswer(program);
  EXPECT_FALSE(std::filesystem::exists(tools_ / "asked"));
  EXPECT_EQ(program.close(), 0);
}

TEST_F(ProgramUpdate, ClosesAtOnceWhileTheServerDoesNotAnswer) {
  const std::string asked = tools_ / "asked";
  const std::string answer = tools_ / "answer";
  ASSERT_EQ(mkfifo(answer.c_str(), 0600), 0);
  curlDoes("echo asked >'" + asked + "'; exec cat '" + answer + "'");
  test::Running program;
  ASSERT_TRUE(eventually([&] { return std::filesystem::exists(asked); }));
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(program.close(), 0);
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(5))
      << "the answer would never come";
  // The stand-in waits for the first who writes, and ends with that.
  EXPECT_TRUE(eventually([&] {
    return base::FileDescriptor(open(answer.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)).valid();
  })) << "the program ended without waiting for it";
}

}  // namespace
