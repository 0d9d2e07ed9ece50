// Apart from what is built for the thread sanitizer: it starts no threads in a forked process.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "app/model/settings_store.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

constexpr int kChanges = 100;

std::string key(const std::string& process, int number) { return process + std::to_string(number); }

bool changeAll(const std::string& configHome, const std::string& process) {
  for (int i = 0; i < kChanges; ++i) {
    SettingsStore store(configHome);
    store.setBool(key(process, i), true);
    if (!store.awaitSaved(std::chrono::steady_clock::now() + std::chrono::seconds(20)))
      return false;
  }
  return true;
}

// As of a capture beside the window.
TEST(SettingsStoreProcesses, LoseNothingThatTheyChangeAtTheSameTime) {
  const test::TempDirectory config;
  const pid_t child = fork();
  if (child == 0) _exit(changeAll(config.path(), "child") ? 0 : 1);
  EXPECT_TRUE(changeAll(config.path(), "parent"));
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  const SettingsStore store(config.path());
  for (int i = 0; i < kChanges; ++i) {
    EXPECT_TRUE(store.getBool(key("child", i), false)) << i;
    EXPECT_TRUE(store.getBool(key("parent", i), false)) << i;
  }
}

}  // namespace
}  // namespace app
