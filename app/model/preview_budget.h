#pragma once

#include <chrono>

namespace app {

/// Decides when a picture of a growing tree may be made, which the next one replaces: while nearly
/// nothing has been read at once, then so seldom that all of them together take a tenth of the time
/// of one processor. What makes the tree grow wants the processors too, and the last picture, which
/// stays, comes the sooner for it. Times are of a monotonic clock.
class PreviewBudget {
 public:
  using Clock = std::chrono::steady_clock;

  /// The tree begins to grow at `now`.
  explicit PreviewBudget(Clock::time_point now = {}) : begun_(now) {}

  /// Whether a picture may be begun, if it takes as long as the last one.
  bool allows(Clock::time_point now) const { return kShare * (spent_ + last_) <= now - begun_; }

  /// A picture took `processorTime`.
  void spend(Clock::duration processorTime) {
    spent_ += processorTime;
    last_ = processorTime;
  }

 private:
  static constexpr int kShare = 10;

  Clock::time_point begun_;
  Clock::duration spent_{};
  Clock::duration last_{};
};

}  // namespace app
