#include <gtest/gtest.h>

#include "tests/ui/window_test_base.h"
#include "ui/x11.h"
#include "ui/x_errors.h"

namespace test {
namespace {

using ui::PointerShape;

class WindowPointer : public WindowTest {
 protected:
  /// How many requests `act` sends.
  unsigned long requests(const std::function<void()>& act) const {
    Display* display = connection->native().display;
    const unsigned long before = NextRequest(display);
    act();
    return NextRequest(display) - before;
  }
};

TEST_F(WindowPointer, IsAnArrowAtFirst) { EXPECT_EQ(window.pointer(), PointerShape::Arrow); }

TEST_F(WindowPointer, TakesEveryShape) {
  show();
  ui::ErrorTrap trap(connection->native().display);
  for (const PointerShape shape : {PointerShape::Hand, PointerShape::ResizeHorizontal,
                                   PointerShape::ResizeVertical, PointerShape::Arrow}) {
    EXPECT_GT(requests([&] { window.setPointer(shape); }), 0u);
    EXPECT_EQ(window.pointer(), shape);
  }
  EXPECT_FALSE(trap.caught());
}

TEST_F(WindowPointer, AsksForNothingWhileItStaysTheSame) {
  show();
  window.setPointer(PointerShape::Hand);
  EXPECT_EQ(requests([&] { window.setPointer(PointerShape::Hand); }), 0u);
}

TEST_F(WindowPointer, MakesEachCursorOnce) {
  show();
  window.setPointer(PointerShape::Hand);
  window.setPointer(PointerShape::Arrow);
  EXPECT_EQ(requests([&] { window.setPointer(PointerShape::Hand); }), 1u) << "for the window alone";
}

TEST_F(WindowPointer, IsRememberedUntilThereIsAWindow) {
  EXPECT_EQ(requests([&] { window.setPointer(PointerShape::Hand); }), 0u);
  show();
  EXPECT_EQ(window.pointer(), PointerShape::Hand);
  EXPECT_EQ(requests([&] { window.setPointer(PointerShape::Hand); }), 0u);
}

}  // namespace
}  // namespace test
