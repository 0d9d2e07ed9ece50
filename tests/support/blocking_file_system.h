#pragma once

#include <memory>
#include <string>

#include "tests/support/temp_directory.h"

namespace test {

/// A real file system, mounted in a temporary directory and served by a thread of this process,
/// that answers as slowly as a test wants it to, or not at all. It holds
///
///     folder/inside   a file of 1000 bytes
///     top             a file of 2000 bytes
///
/// As with a network file system, a request that waits is given up when its process is killed. Any
/// thread may call the members.
class BlockingFileSystem {
 public:
  /// The requests that can be held up.
  enum class Request { List, Examine };

  /// Mounts. Where that cannot be done, `problem` says why.
  BlockingFileSystem();
  /// Answers what waits with an error, and unmounts.
  ~BlockingFileSystem();
  BlockingFileSystem(const BlockingFileSystem&) = delete;
  BlockingFileSystem& operator=(const BlockingFileSystem&) = delete;

  /// Why there is no such file system here; empty when there is.
  const std::string& problem() const { return problem_; }
  /// Where it is mounted.
  const std::string& path() const { return mountPoint_; }

  /// From now on the folder `name` is listed up to its entry `entries`; then comes EIO.
  void breakListing(const std::string& name, int entries);
  /// From now on requests to list or to examine what lies at `name`, a path inside ("" for the
  /// root), get no answer.
  void hold(Request request, const std::string& name);
  /// Answers what waits, and everything from now on.
  void release();
  /// The same, but with EIO.
  void fail();
  /// Returns once a request waits; false when none came for twenty seconds.
  bool waitUntilHeld() const;
  /// How many requests wait. The kernel may ask for the listing of a folder only once at a time, so
  /// that the second who lists it waits there.
  int held() const;
  /// How often the folder `name` was opened to be listed.
  int openings(const std::string& name) const;

 private:
  class Server;

  TempDirectory dir_;
  const std::string mountPoint_ = dir_ / "mounted";
  std::string problem_;
  std::unique_ptr<Server> server_;
};

}  // namespace test
