#include "bench/support/screen_damage.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/Xdamage.h>
#include <poll.h>

#include <functional>
#include <stdexcept>
#include <string_view>

namespace bench {

namespace {
using Clock = ScreenDamage::Clock;
constexpr int kRows = 3;
}  // namespace

struct ScreenDamage::Native {
  explicit Native(const ui::Rect& rect) : display(XOpenDisplay(nullptr)), sampled(rect) {
    if (!display) throw std::runtime_error("no X server");
    int firstError = 0;
    if (!XDamageQueryExtension(display, &firstEvent, &firstError)) {
      XCloseDisplay(display);
      throw std::runtime_error("the X server tells of no damage");
    }
    XDamageCreate(display, DefaultRootWindow(display), XDamageReportRawRectangles);
    XSync(display, False);
  }
  ~Native() { XCloseDisplay(display); }

  /// Whether an event can be read without waiting, at `deadline` at the latest.
  bool await(Clock::time_point deadline) const {
    using std::chrono::milliseconds;
    while (XPending(display) == 0) {
      const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
      if (left <= milliseconds(0)) return false;
      pollfd connection = {ConnectionNumber(display), POLLIN, 0};
      poll(&connection, 1, static_cast<int>(left.count()));
    }
    return true;
  }

  std::uint64_t sample() const {
    std::uint64_t hash = 0;
    for (int row = 1; row <= kRows; ++row) {
      XImage* image = XGetImage(display, DefaultRootWindow(display), sampled.x,
                                sampled.y + sampled.h * row / (kRows + 1),
                                static_cast<unsigned>(sampled.w), 1, AllPlanes, ZPixmap);
      if (!image) throw std::runtime_error("the screen cannot be read");
      const auto bytes = static_cast<std::size_t>(image->bytes_per_line);
      hash = hash * 31 + std::hash<std::string_view>()({image->data, bytes});
      XDestroyImage(image);
    }
    return hash;
  }

  Display* display;
  ui::Rect sampled;
  int firstEvent = 0;
};

ScreenDamage::ScreenDamage(const ui::Rect& sampled) : native_(std::make_unique<Native>(sampled)) {}
ScreenDamage::~ScreenDamage() = default;

std::optional<ScreenDamage::Change> ScreenDamage::next(std::chrono::milliseconds longest) {
  const Clock::time_point deadline = Clock::now() + longest;
  while (native_->await(deadline)) {
    XEvent event;
    XNextEvent(native_->display, &event);
    if (event.type != native_->firstEvent + XDamageNotify) continue;
    const auto at = Clock::now();
    const auto& area = reinterpret_cast<const XDamageNotifyEvent&>(event).area;
    return Change{at, {area.x, area.y, area.width, area.height}, native_->sample()};
  }
  return std::nullopt;
}

}  // namespace bench
