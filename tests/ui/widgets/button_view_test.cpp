#include "ui/widgets/button_view.h"

#include <gtest/gtest.h>

namespace ui {
namespace {

constexpr Rect kButtonPlace = {10, 10, 50, 20};

/// One button, that comes and goes.
class OneButton : public ButtonView<> {
 public:
  bool hoveredNow() const { return hovered(1); }

  bool there = false;

 private:
  void paint(Canvas& /*canvas*/) const override {}
  Places buttonPlaces() const override { return there ? Places{{1, kButtonPlace}} : Places{}; }
  void act(Control /*control*/) override {}
};

TEST(ButtonView, AsksForAFrameWhenAButtonIsSeenUnderThePointer) {
  OneButton view;
  int changes = 0;
  view.onChanged = [&] { ++changes; };
  view.motion({.x = 20, .y = 20});
  view.there = true;
  changes = 0;
  view.pointerSeen(20, 20);
  EXPECT_TRUE(view.hoveredNow());
  EXPECT_EQ(changes, 1);
  view.pointerSeen(20, 20);
  EXPECT_EQ(changes, 1) << "nothing is new";
}

}  // namespace
}  // namespace ui
