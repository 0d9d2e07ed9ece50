#pragma once

#include <memory>

namespace bench {

/// One pixel of the screen of the X server that DISPLAY names, watched as by a user's eye: what is
/// on the screen counts, not what any program has asked for. Values are the server's raw pixels.
class ScreenPixel {
 public:
  /// Throws std::runtime_error when there is no server.
  ScreenPixel(int x, int y);
  ~ScreenPixel();
  ScreenPixel(const ScreenPixel&) = delete;
  ScreenPixel& operator=(const ScreenPixel&) = delete;

  unsigned long value() const;
  /// Return once the pixel has, or no longer has, that value; they ask a few times each
  /// millisecond. Throw std::runtime_error when it takes more than twenty seconds.
  void waitUntil(unsigned long value) const;
  void waitUntilNot(unsigned long value) const;

 private:
  struct Native;
  std::unique_ptr<Native> native_;
};

}  // namespace bench
