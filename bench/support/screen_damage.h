#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

#include "ui/geometry.h"

namespace bench {

/// What changes on the screen of the X server that DISPLAY names, as the server tells a second
/// client (XDamage): nothing is asked again and again, so that the programs that are measured keep
/// their processors.
class ScreenDamage {
 public:
  using Clock = std::chrono::steady_clock;

  struct Change {
    Clock::time_point at;  // when the server's word of it was read
    ui::Rect rect;         // pixels of the screen
    std::uint64_t sample;  // of the pixels watched: another where they are not the same
  };

  /// Watches some rows of pixels across `sampled`. Throws std::runtime_error when there is no
  /// server, or one that does not know the extension.
  explicit ScreenDamage(const ui::Rect& sampled);
  ~ScreenDamage();
  ScreenDamage(const ScreenDamage&) = delete;
  ScreenDamage& operator=(const ScreenDamage&) = delete;

  /// The next change; nothing when none comes within `longest`.
  std::optional<Change> next(std::chrono::milliseconds longest);

 private:
  struct Native;
  std::unique_ptr<Native> native_;
};

}  // namespace bench
