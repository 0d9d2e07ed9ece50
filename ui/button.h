#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ui/canvas.h"
#include "ui/colour.h"
#include "ui/fonts.h"
#include "ui/geometry.h"
#include "ui/palette.h"

namespace ui {

/// Which of a view's controls the pointer is over, and which one it holds down. A control acts when
/// the primary button is let go over the one that it was pressed on; moving off first takes the
/// press back. The view finds the control under the pointer and numbers its controls as it likes,
/// but one number keeps meaning the same control while it is held.
class PressTracker {
 public:
  using Control = std::optional<std::int64_t>;

  // These take the control under the pointer, and return whether a control looks different now.

  bool motion(Control under);
  bool press(Control under);
  /// The pointer is over none any more.
  bool leave() { return motion(std::nullopt); }

  /// The control that acts, if any. Always worth a repaint when one was held.
  Control release(Control under);
  /// Forgets the press: what was held is gone or means something else.
  void cancel() { held_.reset(); }

  /// Whether `control` looks as under the pointer. While one is held, no other does.
  bool hovered(std::int64_t control) const;
  /// Whether `control` looks held down: it is, and the pointer is over it.
  bool pressed(std::int64_t control) const { return held_ == control && under_ == control; }
  bool holding() const { return held_.has_value(); }
  Control under() const { return under_; }
  Control held() const { return held_; }
  friend bool operator==(const PressTracker&, const PressTracker&) = default;

 private:
  Control under_;
  Control held_;
};

/// How a button stands out among others.
enum class ButtonKind : int {
  Plain = 0,
  /// The one that Enter presses, in the accent colour.
  Default = 1,
};

/// A button with a line of text, as it is to look. Holds no behaviour.
struct Button {
  Rect rect{};
  std::string text{};
  ButtonKind kind = ButtonKind::Plain;
  bool hovered = false;
  bool pressed = false;
  /// Has the keyboard: shows a ring where the canvas shows rings.
  bool focused = false;
  bool disabled = false;
};

void paintButton(Canvas& canvas, const Button& button, const Font& font, const Palette& palette);

/// The ground of a button in its state. A disabled one has the window's colour.
Colour buttonFill(const Button& button, const Palette& palette);

/// A rounded rectangle of `fill` inside an outline of `width` pixels, which lies within `rect`.
void fillOutlined(Canvas& canvas, const Rect& rect, int radius, int width, Colour outline,
                  Colour fill);

/// Thickness in device pixels of the ring around what has the keyboard.
int focusRingWidth(double scale);

/// `share` of 0 to 1 of the way from `a` to `b`, both opaque; each channel rounded.
constexpr Colour mixed(Colour a, Colour b, double share) {
  Colour result = 0xFF000000;
  for (const unsigned shift : {0u, 8u, 16u}) {
    const auto from = static_cast<double>((a >> shift) & 0xFF);
    const auto to = static_cast<double>((b >> shift) & 0xFF);
    result |= static_cast<Colour>(from + (to - from) * share + 0.5) << shift;
  }
  return result;
}

}  // namespace ui
