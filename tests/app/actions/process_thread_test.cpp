#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <thread>
#include <vector>

#include "app/actions/process.h"
#include "base/file_descriptor.h"
#include "tests/support/eventually.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

// A program that held another one's pipe would keep the reader waiting for its end.
TEST(RunCapture, DoesNotWaitForProgramsThatOtherThreadsStart) {
  const test::TempDirectory directory;
  const std::string gate = directory / "gate";
  ASSERT_EQ(mkfifo(gate.c_str(), 0600), 0);
  // Each program waits at the gate for a line of its own.
  const base::FileDescriptor keeper(open(gate.c_str(), O_RDWR | O_CLOEXEC));
  std::vector<std::string> captured(4);
  {
    std::vector<std::jthread> threads;
    for (std::string& text : captured) {
      threads.emplace_back([&text] {
        for (int i = 0; i < 20; ++i) text += runCapture({"echo", "text"});
      });
      threads.emplace_back([&gate] {
        for (int i = 0; i < 5; ++i) {
          EXPECT_TRUE(
              spawnDetached({"sh", "-c", "read line < \"$0\"; echo >> \"$0.passed\"", gate}));
        }
      });
    }
  }
  std::string expected;
  for (int i = 0; i < 20; ++i) expected += "text\n";
  for (const std::string& text : captured) EXPECT_EQ(text, expected);
  const std::string lines(20, '\n');
  ASSERT_EQ(write(keeper.get(), lines.data(), lines.size()), 20);
  struct stat passed {};
  EXPECT_TRUE(test::eventually(
      [&] { return stat((gate + ".passed").c_str(), &passed) == 0 && passed.st_size == 20; }));
}

}  // namespace
}  // namespace app
