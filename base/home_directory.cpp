#include "base/home_directory.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace base {

namespace {
constexpr std::size_t kFirstEntrySize = 1024;
constexpr std::size_t kLargestEntrySize = 1024 * 1024;

// getpwuid keeps its answer in storage that other threads share.
std::string accountHome() {
  for (std::size_t size = kFirstEntrySize; size <= kLargestEntrySize; size *= 2) {
    std::vector<char> buffer(size);
    passwd entry{};
    passwd* found = nullptr;
    const int error = getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found);
    if (error == ERANGE) continue;
    return found && found->pw_dir ? found->pw_dir : "";
  }
  return {};
}
}  // namespace

std::string homeDirectory() {
  const char* home = std::getenv("HOME");
  return home && *home ? home : accountHome();
}

}  // namespace base
