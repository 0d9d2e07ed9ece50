#pragma once

#include <chrono>
#include <cstdint>

namespace ui {

/// Milliseconds of a clock that only goes on, whatever the time of day is set to: what spans are
/// measured by. Since when it counts is not known.
inline std::int64_t steadyMs() {
  const auto sinceItsBeginning = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(sinceItsBeginning).count();
}

}  // namespace ui
