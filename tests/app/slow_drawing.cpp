#include "tests/app/slow_drawing.h"

#include <X11/Xlib.h>
#include <dlfcn.h>

#include <mutex>
#include <thread>
#include <utility>

namespace {

struct State {
  std::mutex mutex;
  std::optional<std::chrono::milliseconds> takes;
  std::optional<std::chrono::steady_clock::time_point> sent;
};

State& state() {
  static State theState;
  return theState;
}

}  // namespace

extern "C" int XPutImage(Display* display, Drawable drawable, GC gc, XImage* image, int sourceX,
                         int sourceY, int x, int y, unsigned width, unsigned height) {
  static const auto original =
      reinterpret_cast<decltype(&XPutImage)>(dlsym(RTLD_NEXT, "XPutImage"));
  std::optional<std::chrono::milliseconds> takes;
  {
    const std::lock_guard lock(state().mutex);
    takes = std::exchange(state().takes, std::nullopt);
  }
  const int result = original(display, drawable, gc, image, sourceX, sourceY, x, y, width, height);
  if (takes) {
    std::this_thread::sleep_for(*takes);  // what the test is about
    const std::lock_guard lock(state().mutex);
    state().sent = std::chrono::steady_clock::now();
  }
  return result;
}

namespace test {

SlowDrawing::SlowDrawing(std::chrono::milliseconds takes) {
  const std::lock_guard lock(state().mutex);
  state().takes = takes;
  state().sent.reset();
}

SlowDrawing::~SlowDrawing() {
  const std::lock_guard lock(state().mutex);
  state().takes.reset();
}

std::optional<std::chrono::steady_clock::time_point> SlowDrawing::sent() const {
  const std::lock_guard lock(state().mutex);
  return state().sent;
}

}  // namespace test
