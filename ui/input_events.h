#pragma once

#include <optional>

#include "ui/input.h"
#include "ui/x11.h"

// X's input events as the toolkit's own records.

namespace ui {

/// A step of the wheel in rows and columns: up and left are negative.
struct WheelStep {
  int dx;
  int dy;

  bool operator==(const WheelStep&) const = default;
};

/// The step that a button stands for; nothing for ordinary buttons.
std::optional<WheelStep> wheelStepOf(unsigned button);

MouseEvent mouseEventOf(const XButtonEvent& event, int clicks);
/// A release carries no modifiers, whatever keys are held.
MouseEvent releaseEventOf(const XButtonEvent& event, int clicks);
MouseEvent mouseEventOf(const XMotionEvent& event);
/// Not const: XLookupString wants it so.
KeyEvent keyEventOf(XKeyEvent& event);

}  // namespace ui
