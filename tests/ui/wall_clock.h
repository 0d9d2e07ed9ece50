#pragma once

#include <cstdint>

namespace test {

/// Has the time of day be wrong by so much during a scope, as after a user has set it. Clocks that
/// nobody sets go on as they do. One at a time.
class WallClock {
 public:
  explicit WallClock(std::int64_t offByMs);
  ~WallClock();
  WallClock(const WallClock&) = delete;
  WallClock& operator=(const WallClock&) = delete;
};

/// Has the clock that nobody sets, by which spans are measured, go fifty times slower during a
/// scope, so that what a test does quickly is quick also on a machine that stands still for a
/// while. One at a time.
class SlowSpans {
 public:
  SlowSpans();
  ~SlowSpans();
  SlowSpans(const SlowSpans&) = delete;
  SlowSpans& operator=(const SlowSpans&) = delete;
};

}  // namespace test
