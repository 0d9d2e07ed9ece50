#pragma once

#include <chrono>

#include "base/file_descriptor.h"

namespace base {

/// Keeps other processes of ours that ask for it away from a file or a directory, by an advisory
/// lock (flock). Whoever does not ask is not kept away. Asks the disk, and waits for who holds the
/// lock: not for the window thread, but for the one rename into the trash.
class FileLock {
 public:
  static constexpr std::chrono::milliseconds kLongestWait{1000};

  /// Locks what `file` has open; O_PATH will not do. Waits `longestWait` at most for others, then
  /// goes on without; so it does at once where locks are not to be had.
  explicit FileLock(FileDescriptor file, std::chrono::milliseconds longestWait = kLongestWait);
  /// Locks an open directory, for which a descriptor of O_PATH will do.
  static FileLock ofDirectory(int directory);
  /// Lets the others in.
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  bool held() const { return outcome_ == Outcome::Held; }
  /// The file is open, but its file system knows no locks, so that nobody can hold one.
  bool unknownHere() const { return outcome_ == Outcome::UnknownHere; }

 private:
  enum class Outcome { Held, NotHad, UnknownHere };
  static Outcome lockUntil(int file, std::chrono::steady_clock::time_point deadline);

  FileDescriptor file_;
  const Outcome outcome_;
};

}  // namespace base
