#include "app/actions/directory_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <thread>

namespace app {

namespace {
using Clock = std::chrono::steady_clock;

/// flock() waits for ever or not at all, so the lock is asked for again and again.
constexpr std::chrono::milliseconds kBetweenTries{2};

bool lockUntil(int directory, Clock::time_point deadline) {
  while (::flock(directory, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return false;
    if (Clock::now() >= deadline) return false;
    std::this_thread::sleep_for(kBetweenTries);
  }
  return true;
}
}  // namespace

DirectoryLock::DirectoryLock(int directory)
    : directory_(::openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      held_(directory_.valid() && lockUntil(directory_.get(), Clock::now() + kLongestWait)) {}

DirectoryLock::~DirectoryLock() {
  // Closing alone would leave the lock to a child that has just been forked.
  if (held_) ::flock(directory_.get(), LOCK_UN);
}

}  // namespace app
