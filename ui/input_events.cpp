#include "ui/input_events.h"

#include <algorithm>
#include <array>

namespace ui {

namespace {

bool hasShift(unsigned state) { return (state & ShiftMask) != 0; }
bool hasCtrl(unsigned state) { return (state & ControlMask) != 0; }

}  // namespace

std::optional<WheelStep> wheelStepOf(unsigned button) {
  switch (button) {
    case 4:
      return WheelStep{0, -1};
    case 5:
      return WheelStep{0, +1};
    case 6:
      return WheelStep{-1, 0};
    case 7:
      return WheelStep{+1, 0};
    default:
      return std::nullopt;
  }
}

MouseEvent mouseEventOf(const XButtonEvent& event, int clicks) {
  return {.x = event.x,
          .y = event.y,
          .button = static_cast<int>(event.button),
          .clicks = clicks,
          .shift = hasShift(event.state),
          .ctrl = hasCtrl(event.state),
          .serverMs = static_cast<std::uint32_t>(event.time)};
}

MouseEvent releaseEventOf(const XButtonEvent& event, int clicks) {
  MouseEvent release = mouseEventOf(event, clicks);
  release.shift = release.ctrl = false;
  return release;
}

MouseEvent mouseEventOf(const XMotionEvent& event) {
  return {event.x, event.y, 0, 1, hasShift(event.state), hasCtrl(event.state)};
}

KeyEvent keyEventOf(XKeyEvent& event) {
  std::array<char, 32> buffer{};
  KeySym keysym = NoSymbol;
  const int length =
      XLookupString(&event, buffer.data(), static_cast<int>(buffer.size()), &keysym, nullptr);
  const auto bytes = static_cast<std::size_t>(std::max(0, length));
  return {keysym, std::string(buffer.data(), bytes), hasShift(event.state), hasCtrl(event.state)};
}

}  // namespace ui
