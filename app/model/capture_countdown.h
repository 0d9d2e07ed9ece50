#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace app {

/// Waits, in ticks of 100 ms, until the one frame of a capture is to be written: for the delay, and
/// then for the end of any scan. Window thread only.
class CaptureCountdown {
 public:
  /// Starts to wait; `seconds` is cut to whole ticks. What is not a number counts as 0.
  void start(std::string file, double seconds) {
    file_ = std::move(file);
    ticksToWait_ = std::isnan(seconds) ? 0 : std::trunc(10 * seconds);
    ticks_ = 0;
  }

  /// One tick. The file to write when the moment has come; that happens once.
  std::optional<std::string> tick(bool scanning) {
    if (file_.empty()) return std::nullopt;
    ++ticks_;
    if (scanning || static_cast<double>(ticks_) < ticksToWait_) return std::nullopt;
    return std::exchange(file_, {});
  }

 private:
  std::string file_;  // empty: nothing to capture
  double ticksToWait_ = 0;
  std::int64_t ticks_ = 0;
};

}  // namespace app
