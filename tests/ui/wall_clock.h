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

}  // namespace test
