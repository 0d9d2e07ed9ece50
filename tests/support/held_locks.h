#pragma once

namespace test {

/// Counts the mutexes that each thread of this process holds at a time, for the scope. Programs
/// whose tests use it link `test_held_locks`, which stands in for the C library's functions. Not
/// for builds with a sanitizer, which stands there itself.
class HeldLocks {
 public:
#ifdef HEAPGAUGE_SANITIZED
  static constexpr bool kCounts = false;
#else
  static constexpr bool kCounts = true;
#endif

  HeldLocks();
  ~HeldLocks();
  HeldLocks(const HeldLocks&) = delete;
  HeldLocks& operator=(const HeldLocks&) = delete;

  /// The most that one thread has held at a time so far.
  int most() const;
};

/// Holds up the first thread that wakes all who wait for a condition variable, at that, for the
/// scope.
class HeldWakeUps {
 public:
  HeldWakeUps();
  /// Releases.
  ~HeldWakeUps();
  HeldWakeUps(const HeldWakeUps&) = delete;
  HeldWakeUps& operator=(const HeldWakeUps&) = delete;

  /// Returns once a thread is held up; false when none came for twenty seconds.
  bool waitUntilReached() const;
  void release();
};

}  // namespace test
