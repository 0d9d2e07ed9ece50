#pragma once

#include <algorithm>
#include <chrono>
#include <utility>

namespace app {

/// Decides how often the views follow a running scan: as often as they like while making a picture
/// is quick, and so seldom that it takes no more than a third of the window thread's time when it
/// is slow.
class RefreshPacer {
 public:
  using Clock = std::chrono::steady_clock;

  bool due(Clock::time_point now) const { return now >= next_; }

  /// Calls `refresh`, which says whether it made anything. If so, the next refresh is due after a
  /// pause of twice the time it took; if not, whatever pause is in force goes on.
  template <typename Refresh>
  void run(Refresh&& refresh) {
    const Clock::time_point start = Clock::now();
    if (std::forward<Refresh>(refresh)()) pauseAfter(Clock::now() - start);
  }

  /// A part of a refresh has ended that took so long.
  void pauseAfter(Clock::duration took) { next_ = std::max(next_, Clock::now() + 2 * took); }

 private:
  Clock::time_point next_{};
};

}  // namespace app
