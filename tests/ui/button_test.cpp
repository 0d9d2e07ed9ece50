#include "ui/button.h"

#include <gtest/gtest.h>

#include "tests/ui/window_test_base.h"

namespace test {
namespace {

using ui::Button;
using ui::ButtonKind;
using ui::kDarkPalette;
using ui::kLightPalette;
using ui::PressTracker;

TEST(PressTracker, ActsOnTheControlThatWasPressedAndLetGo) {
  PressTracker tracker;
  EXPECT_TRUE(tracker.press(3));
  EXPECT_TRUE(tracker.pressed(3));
  EXPECT_EQ(tracker.release(3), 3);
  EXPECT_FALSE(tracker.pressed(3));
}

TEST(PressTracker, TakesAPressBackThatIsLetGoElsewhere) {
  PressTracker tracker;
  tracker.press(3);
  EXPECT_EQ(tracker.release(4), std::nullopt);
  tracker.press(3);
  EXPECT_EQ(tracker.release(std::nullopt), std::nullopt);
  EXPECT_EQ(tracker.release(3), std::nullopt) << "nothing is held any more";
}

TEST(PressTracker, ActsOnNothingForAPressBesideAllControls) {
  PressTracker tracker;
  EXPECT_FALSE(tracker.press(std::nullopt));
  EXPECT_EQ(tracker.release(3), std::nullopt);
  tracker.press(std::nullopt);
  EXPECT_EQ(tracker.release(std::nullopt), std::nullopt);
}

TEST(PressTracker, LooksPressedOnlyWhileThePointerIsOverIt) {
  PressTracker tracker;
  tracker.press(3);
  EXPECT_TRUE(tracker.motion(4));
  EXPECT_FALSE(tracker.pressed(3));
  EXPECT_FALSE(tracker.hovered(4)) << "another one is held";
  EXPECT_TRUE(tracker.motion(3));
  EXPECT_TRUE(tracker.pressed(3));
  EXPECT_EQ(tracker.release(3), 3);
}

TEST(PressTracker, FollowsThePointer) {
  PressTracker tracker;
  EXPECT_TRUE(tracker.motion(1));
  EXPECT_FALSE(tracker.motion(1)) << "nothing looks different";
  EXPECT_TRUE(tracker.hovered(1));
  EXPECT_FALSE(tracker.hovered(0));
  EXPECT_TRUE(tracker.leave());
  EXPECT_FALSE(tracker.leave());
  EXPECT_FALSE(tracker.hovered(1));
}

TEST(PressTracker, ForgetsACancelledPress) {
  PressTracker tracker;
  tracker.press(3);
  EXPECT_TRUE(tracker.holding());
  tracker.cancel();
  EXPECT_FALSE(tracker.holding());
  EXPECT_EQ(tracker.release(3), std::nullopt);
}

TEST(ButtonFill, TellsTheStatesApart) {
  for (const ui::Palette& palette : {kLightPalette, kDarkPalette}) {
    const auto fill = [&](const Button& button) { return ui::buttonFill(button, palette); };
    EXPECT_EQ(fill({}), palette.raised);
    EXPECT_EQ(fill({.pressed = true}), palette.pressed);
    EXPECT_EQ(fill({.hovered = true, .pressed = true}), palette.pressed);
    EXPECT_NE(fill({.hovered = true}), palette.raised);
    EXPECT_NE(fill({.hovered = true}), palette.pressed);
    EXPECT_EQ(fill({.disabled = true}), palette.window);
    EXPECT_EQ(fill({.kind = ButtonKind::Default}), palette.accent);
    EXPECT_EQ(fill({.kind = ButtonKind::Default, .disabled = true}), palette.window);
    EXPECT_NE(fill({.kind = ButtonKind::Default, .pressed = true}), palette.accent);
    EXPECT_NE(fill({.kind = ButtonKind::Default, .hovered = true}), palette.accent);
  }
}

TEST(Mixed, GoesFromOneColourToTheOther) {
  EXPECT_EQ(ui::mixed(0xFF102030, 0xFF304050, 0), 0xFF102030);
  EXPECT_EQ(ui::mixed(0xFF102030, 0xFF304050, 1), 0xFF304050);
  EXPECT_EQ(ui::mixed(0xFF102030, 0xFF301050, 0.5), 0xFF201840);
}

constexpr std::uint32_t rgb(ui::Colour colour) { return colour & 0xFFFFFF; }

class PaintButton : public WindowTest {
 protected:
  /// What `button`, without text, leaves on a window in the palette's colour.
  Picture painted(Button button, const ui::Palette& palette) {
    button.rect = kPlace;
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect({0, 0, 200, 100}, palette.window);
      ui::paintButton(canvas, button, connection->font(10, ui::FontWeight::Regular), palette);
    });
  }
  static constexpr ui::Rect kPlace = {20, 10, 80, 22};
};

TEST_F(PaintButton, HasABorderOfOnePixelAndRoundCorners) {
  const Picture picture = painted({}, kLightPalette);
  EXPECT_EQ(picture.at(60, 10), rgb(kLightPalette.border));
  EXPECT_EQ(picture.at(60, 11), rgb(kLightPalette.raised));
  EXPECT_EQ(picture.at(60, 31), rgb(kLightPalette.border));
  EXPECT_EQ(picture.at(60, 32), rgb(kLightPalette.window));
  EXPECT_EQ(picture.at(20, 20), rgb(kLightPalette.border));
  EXPECT_EQ(picture.at(99, 20), rgb(kLightPalette.border));
  for (const auto& [x, y] : {std::pair(20, 10), {99, 10}, {20, 31}, {99, 31}}) {
    EXPECT_EQ(picture.at(x, y), rgb(kLightPalette.window)) << x << ',' << y;
  }
}

TEST_F(PaintButton, ShowsARingWithTheKeyboard) {
  const Picture picture = painted({.focused = true}, kDarkPalette);
  const int ring = ui::focusRingWidth(connection->scale());
  EXPECT_GE(ring, 1);
  for (int i = 0; i < ring; ++i) EXPECT_EQ(picture.at(60, 10 + i), rgb(kDarkPalette.accent)) << i;
  EXPECT_EQ(picture.at(60, 10 + ring), rgb(kDarkPalette.raised));
}

TEST_F(PaintButton, ShowsARingInsideTheAccentColourToo) {
  const Picture plain = painted({.kind = ButtonKind::Default}, kDarkPalette);
  const Picture focused = painted({.kind = ButtonKind::Default, .focused = true}, kDarkPalette);
  EXPECT_EQ(plain.count(rgb(kDarkPalette.accentText)), 0);
  EXPECT_GT(focused.count(rgb(kDarkPalette.accentText)), 2 * (80 + 22) - 40);
}

TEST_F(PaintButton, CentresItsText) {
  const Picture picture = painted({.text = "Stop"}, kLightPalette);
  int first = 200;
  int last = 0;
  for (int y = kPlace.y + 1; y < kPlace.y + kPlace.h - 1; ++y) {
    for (int x = kPlace.x + 5; x < kPlace.x + kPlace.w - 5; ++x) {
      if (picture.at(x, y) == rgb(kLightPalette.raised)) continue;
      first = std::min(first, x);
      last = std::max(last, x);
    }
  }
  ASSERT_LT(first, last);
  EXPECT_NEAR(first - kPlace.x, kPlace.x + kPlace.w - 1 - last, 3);
}

TEST_F(PaintButton, WithoutAreaDrawsNothing) {
  const Picture picture = paint([&](ui::Canvas& canvas) {
    canvas.fillRect({0, 0, 200, 100}, kLightPalette.window);
    ui::paintButton(canvas, {.rect = {20, 10, 0, 22}, .text = "Stop"},
                    connection->font(10, ui::FontWeight::Regular), kLightPalette);
  });
  EXPECT_EQ(picture.count(rgb(kLightPalette.window)), 200 * 100);
}

}  // namespace
}  // namespace test
