#include "ui/button.h"

#include <algorithm>

#include "ui/text.h"

namespace ui {

namespace {

// Logical pixels.
constexpr double kRadius = 5;
constexpr double kRing = 2;

constexpr Colour kBlack = 0xFF000000;
constexpr Colour kWhite = 0xFFFFFFFF;

// How far the accent colour moves for the states of a default button.
constexpr double kAccentPressed = 0.2;
constexpr double kAccentHovered = 0.12;

Rect inset(const Rect& rect, int by) {
  return {rect.x + by, rect.y + by, rect.w - 2 * by, rect.h - 2 * by};
}

bool isAccented(const Button& button) {
  return button.kind == ButtonKind::Default && !button.disabled;
}

Colour textColour(const Button& button, const Palette& palette) {
  if (button.disabled) return palette.dimText;
  return isAccented(button) ? palette.accentText : palette.text;
}

}  // namespace

bool PressTracker::motion(Control under) {
  if (under_ == under) return false;
  under_ = under;
  return true;
}

bool PressTracker::press(Control under) {
  under_ = under;
  held_ = under;
  return under.has_value();
}

PressTracker::Control PressTracker::release(Control under) {
  under_ = under;
  const Control held = held_;
  held_.reset();
  return held == under ? held : std::nullopt;
}

bool PressTracker::hovered(std::int64_t control) const {
  return under_ == control && (!held_ || held_ == control);
}

int focusRingWidth(double scale) { return std::max(1, scaled(kRing, scale)); }

Colour buttonFill(const Button& button, const Palette& palette) {
  if (button.disabled) return palette.window;
  if (isAccented(button)) {
    if (button.pressed) return mixed(palette.accent, kBlack, kAccentPressed);
    return button.hovered ? mixed(palette.accent, kWhite, kAccentHovered) : palette.accent;
  }
  if (button.pressed) return palette.pressed;
  return button.hovered ? mixed(palette.raised, palette.pressed, 0.5) : palette.raised;
}

void fillOutlined(Canvas& canvas, const Rect& rect, int radius, int width, Colour outline,
                  Colour fill) {
  canvas.fillRoundRect(rect, radius, outline);
  canvas.fillRoundRect(inset(rect, width), std::max(radius - width, 0), fill);
}

void paintButton(Canvas& canvas, const Button& button, const Font& font, const Palette& palette) {
  if (button.rect.empty()) return;
  const double scale = canvas.connection().scale();
  const int radius = scaled(kRadius, scale);
  const int ring = focusRingWidth(scale);
  const Colour fill = buttonFill(button, palette);
  const Colour border = isAccented(button) ? fill : palette.border;
  if (!button.focused || !canvas.showsRings()) {
    fillOutlined(canvas, button.rect, radius, 1, border, fill);
  } else if (isAccented(button)) {
    // The ring has the button's own colour here: a line between the two tells them apart.
    canvas.fillRoundRect(button.rect, radius, palette.accent);
    fillOutlined(canvas, inset(button.rect, ring), std::max(radius - ring, 0),
                 std::max(1, ring / 2), palette.accentText, fill);
  } else {
    fillOutlined(canvas, button.rect, radius, ring, palette.accent, fill);
  }
  drawText(canvas, inset(button.rect, 1), button.text, font, textColour(button, palette),
           Align::Centre);
}

}  // namespace ui
