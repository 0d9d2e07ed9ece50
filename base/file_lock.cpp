#include "base/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <thread>
#include <utility>

namespace base {

namespace {
using Clock = std::chrono::steady_clock;

/// flock() waits for ever or not at all, so the lock is asked for again and again. So often that it
/// is met free also while others take it in turns with hardly a gap.
constexpr std::chrono::microseconds kBetweenTries{100};
}  // namespace

FileLock::FileLock(FileDescriptor file, std::chrono::milliseconds longestWait)
    : file_(std::move(file)), outcome_(lockUntil(file_.get(), Clock::now() + longestWait)) {}

FileLock FileLock::ofDirectory(int directory) {
  return FileLock(FileDescriptor(::openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
}

FileLock::~FileLock() {
  // Closing alone would leave the lock to a child that has just been forked.
  if (held()) ::flock(file_.get(), LOCK_UN);
}

FileLock::Outcome FileLock::lockUntil(int file, Clock::time_point deadline) {
  if (file < 0) return Outcome::NotHad;
  while (::flock(file, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return Outcome::UnknownHere;
    if (Clock::now() >= deadline) return Outcome::NotHad;
    std::this_thread::sleep_for(kBetweenTries);
  }
  return Outcome::Held;
}

}  // namespace base
