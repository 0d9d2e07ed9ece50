#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

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

  /// Whether a picture of `nodes` nodes may be begun, judged by what the last one has cost.
  bool allows(Clock::time_point now, std::uint64_t nodes) const {
    return kShare * (spent_ + lastNode_ * static_cast<double>(nodes)) <= now - begun_;
  }

  /// A picture of `nodes` nodes took `processorTime`.
  void spend(Clock::duration processorTime, std::uint64_t nodes) {
    spent_ += processorTime;
    lastNode_ = Cost(processorTime) / static_cast<double>(std::max<std::uint64_t>(nodes, 1));
  }

 private:
  using Cost = std::chrono::duration<double, std::nano>;
  static constexpr double kShare = 10;

  Clock::time_point begun_;
  Cost spent_{};
  /// Of the last picture for each of its nodes.
  Cost lastNode_{};
};

}  // namespace app
