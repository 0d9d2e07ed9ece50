#pragma once

#include <string>

namespace test {

/// Holds up every thread that opens a folder of one name, so that a scan runs for exactly as long
/// as a test needs it to. For this the test program has an `openat` of its own in place of the C
/// library's. One at a time; any thread may call the members.
class HeldFolder {
 public:
  /// `name` is the last component of the path, or "/".
  explicit HeldFolder(const std::string& name);
  /// Releases.
  ~HeldFolder();
  HeldFolder(const HeldFolder&) = delete;
  HeldFolder& operator=(const HeldFolder&) = delete;

  /// Returns once a thread is held up; false when none came for twenty seconds.
  bool waitUntilReached() const { return waitUntilHeld(1); }
  /// The same for so many threads.
  bool waitUntilHeld(int threads) const;
  /// How many threads are held up.
  int held() const;
  /// Lets everybody go on and holds up who comes to a folder called `name` from now on.
  void holdInstead(const std::string& name);
  /// Lets everybody go on, also those that come later.
  void release() { holdInstead({}); }
};

}  // namespace test
