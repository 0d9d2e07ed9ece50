#pragma once

#include <chrono>
#include <optional>

namespace test {

/// Has the next picture that is sent to the X server take so long, once, as that of a huge tree
/// would. For this the test program has an `XPutImage` of its own before Xlib's. One at a time.
class SlowDrawing {
 public:
  explicit SlowDrawing(std::chrono::milliseconds takes);
  ~SlowDrawing();
  SlowDrawing(const SlowDrawing&) = delete;
  SlowDrawing& operator=(const SlowDrawing&) = delete;

  /// When that picture had been sent; nothing while none was.
  std::optional<std::chrono::steady_clock::time_point> sent() const;
};

}  // namespace test
