#pragma once

#include <chrono>

#include "base/file_descriptor.h"

namespace app {

/// Keeps other processes of ours that ask for it out of a directory, by an advisory lock (flock).
/// Whoever does not ask is not kept out.
class DirectoryLock {
 public:
  static constexpr std::chrono::milliseconds kLongestWait{1000};

  /// Locks the open directory, for which a descriptor of O_PATH will do. Waits `kLongestWait` at
  /// most for others, then goes on without; so it does at once where locks are not to be had.
  explicit DirectoryLock(int directory);
  /// Lets the others in.
  ~DirectoryLock();
  DirectoryLock(const DirectoryLock&) = delete;
  DirectoryLock& operator=(const DirectoryLock&) = delete;

  bool held() const { return held_; }

 private:
  base::FileDescriptor directory_;
  bool held_ = false;
};

}  // namespace app
