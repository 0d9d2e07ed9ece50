#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "tests/ui/window_test_base.h"
#include "ui/input.h"
#include "ui/palette.h"
#include "ui/widgets/style.h"

namespace test {

/// A window for views to draw in, on a server whose scale is exactly `scale`.
class ViewsOnWindow : protected WindowOnServer {
 protected:
  explicit ViewsOnWindow(const ui::Palette& palette = ui::kLightPalette, double scale = 1);

  /// What `paintViews` leaves in a window of this size, whose ground is magenta.
  Picture picture(int width, int height, const std::function<void(ui::Canvas&)>& paintViews);

  ui::Style style;
};

/// Far from every colour of the palettes: shows where no view has drawn.
inline constexpr ui::Colour kNothingDrawn = 0xFFFF00FF;

constexpr std::uint32_t rgb(ui::Colour colour) { return colour & 0xFFFFFF; }

/// The left button, or another, at the middle of `rect`.
ui::MouseEvent at(const ui::Rect& rect, int button = 1);

}  // namespace test
