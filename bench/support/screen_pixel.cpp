#include "bench/support/screen_pixel.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

/// Asking without a pause would take a processor from the programs that are measured.
constexpr std::chrono::microseconds kPause(100);

template <typename Condition>
void waitFor(const Condition& condition) {
  const Clock::time_point deadline = Clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (Clock::now() > deadline) throw std::runtime_error("the awaited frame does not come");
    std::this_thread::sleep_for(kPause);
  }
}

}  // namespace

struct ScreenPixel::Native {
  Native(int left, int top) : display(XOpenDisplay(nullptr)), x(left), y(top) {
    if (!display) throw std::runtime_error("no X server");
  }
  ~Native() { XCloseDisplay(display); }

  Display* display;
  int x;
  int y;
};

ScreenPixel::ScreenPixel(int x, int y) : native_(std::make_unique<Native>(x, y)) {}
ScreenPixel::~ScreenPixel() = default;

unsigned long ScreenPixel::value() const {
  Display* display = native_->display;
  XImage* image = XGetImage(display, DefaultRootWindow(display), native_->x, native_->y, 1, 1,
                            AllPlanes, ZPixmap);
  if (!image) throw std::runtime_error("the screen cannot be read");
  const unsigned long pixel = XGetPixel(image, 0, 0);
  XDestroyImage(image);
  return pixel;
}

void ScreenPixel::waitUntil(unsigned long wanted) const {
  waitFor([&] { return value() == wanted; });
}

void ScreenPixel::waitUntilNot(unsigned long old) const {
  waitFor([&] { return value() != old; });
}

}  // namespace bench
