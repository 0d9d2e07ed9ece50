#pragma once

#include <cstdint>
#include <functional>

namespace ui {

/// A callable due at intervals. Times are as `steadyMs` tells, passed in by the caller.
class Tick {
 public:
  /// Replaces the callable; it is first due one interval after `now`. An interval of 0 or less is
  /// no tick.
  void set(int intervalMs, std::function<void()> onTick, std::int64_t now);
  void stop();

  bool installed() const { return intervalMs_ >= 1 && onTick_; }
  /// Calls the callable once when it is due, however late. The next one is due an interval after
  /// `now`. The callable may replace or stop the tick.
  void runIfDue(std::int64_t now);
  /// Milliseconds until the tick is due, 0 when it is overdue, -1 (for ever) without a tick.
  int msUntilDue(std::int64_t now) const;

 private:
  bool isDue(std::int64_t now) const { return nextTick_ <= now; }

  int intervalMs_ = 0;
  std::int64_t nextTick_ = 0;
  std::function<void()> onTick_;
};

}  // namespace ui
