#pragma once

#include <chrono>

namespace app {

/// Decides how often the views follow a running scan: as often as they like while drawing is quick,
/// and so seldom that drawing takes no more than a third of the window thread's time when it is
/// slow.
class RefreshPacer {
 public:
  using Clock = std::chrono::steady_clock;

  bool due(Clock::time_point now) const { return now >= next_; }
  /// A refresh ran from `start` to `end`: the next is due after a pause of twice as long.
  void ran(Clock::time_point start, Clock::time_point end) { next_ = end + 2 * (end - start); }

 private:
  Clock::time_point next_{};
};

}  // namespace app
