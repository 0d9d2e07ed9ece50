#include "ui/widgets/pointer_router.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ui {
namespace {

using Log = std::vector<std::string>;

/// Two parts side by side, each 10 wide, with nothing right of them.
class PointerRouterTest : public ::testing::Test {
 protected:
  PointerRouterTest() {
    addPart("a", {0, 0, 10, 10});
    addPart("b", {10, 0, 10, 10});
  }

  void addPart(const std::string& name, const ui::Rect& rect) {
    const auto note = [this, name](const char* what) { log.push_back(name + " " + what); };
    const auto index = router.add({.press = [=](const auto&) { note("press"); },
                                   .motion = [=](const auto&) { note("motion"); },
                                   .release = [=](const auto&) { note("release"); },
                                   .leave = [=] { note("leave"); },
                                   .wheel = [=](const auto&, int) { note("wheel"); }});
    router.setRect(index, rect);
  }

  static ui::MouseEvent at(int x) { return {.x = x, .y = 5, .button = 1}; }

  PointerRouter router;
  Log log;
};

TEST_F(PointerRouterTest, SendsMotionToThePartBelow) {
  router.motion(at(5));
  router.motion(at(15));
  router.motion(at(25));
  EXPECT_EQ(log, (Log{"a motion", "a leave", "b motion", "b leave"}));
}

TEST_F(PointerRouterTest, NamesThePartThatWasPressed) {
  EXPECT_EQ(router.press(at(15)), 1u);
  router.release(at(15));
  EXPECT_EQ(router.press(at(25)), std::nullopt);
}

TEST_F(PointerRouterTest, TellsWhichPartHasThePointer) {
  EXPECT_EQ(router.owner(), std::nullopt);
  router.motion(at(5));
  EXPECT_EQ(router.owner(), 0u);
  router.press(at(15));
  router.motion(at(5));
  EXPECT_EQ(router.owner(), 1u);
  router.release(at(5));
  router.motion(at(5));
  EXPECT_EQ(router.owner(), 0u);
}

TEST_F(PointerRouterTest, KeepsTheDragWithThePartThatWasPressed) {
  router.press(at(5));
  router.motion(at(15));
  router.leave();
  router.motion(at(25));
  router.release(at(25));
  router.motion(at(15));
  EXPECT_EQ(log, (Log{"a press", "a motion", "a motion", "a release", "a leave", "b motion"}));
}

TEST_F(PointerRouterTest, EndsADragWithTheLastButton) {
  const ui::MouseEvent other = {.x = 15, .y = 5, .button = 3};
  router.press(at(5));
  router.press(other);
  router.release(other);
  router.motion(at(15));
  router.release(at(15));
  router.motion(at(15));
  EXPECT_EQ(log, (Log{"a press", "a press", "a release", "a motion", "a release", "a leave",
                      "b motion"}));
}

TEST_F(PointerRouterTest, IsNotBoundByAReleaseThatNobodyToldOf) {
  router.press(at(5));
  router.press(at(15));
  router.release(at(15));
  router.motion(at(5));
  EXPECT_EQ(
      log, (Log{"a press", "a release", "a leave", "b press", "b release", "b leave", "a motion"}));
}

TEST_F(PointerRouterTest, ADragThatBeganBesideAllPartsIsNobodys) {
  router.press(at(25));
  router.motion(at(25));
  router.release(at(25));
  EXPECT_TRUE(log.empty());
}

TEST_F(PointerRouterTest, TurnsTheWheelWhereThePointerIs) {
  router.press(at(5));
  router.wheel(at(15), 1);
  router.wheel(at(25), 1);
  EXPECT_EQ(log, (Log{"a press", "b wheel"}));
}

TEST_F(PointerRouterTest, TellsThePartThatThePointerLeftTheWindow) {
  router.motion(at(5));
  router.leave();
  router.leave();
  EXPECT_EQ(log, (Log{"a motion", "a leave"}));
}

TEST_F(PointerRouterTest, AResetEndsADrag) {
  router.press(at(5));
  router.reset();
  router.motion(at(15));
  router.release(at(15));
  EXPECT_EQ(log, (Log{"a press", "a release", "a leave", "b motion"}));
}

TEST_F(PointerRouterTest, AResetLetsGoBesideEverything) {
  std::optional<ui::MouseEvent> released;
  router.setRect(router.add({.press = {},
                             .motion = {},
                             .release = [&](const auto& event) { released = event; },
                             .leave = {},
                             .wheel = {}}),
                 {20, 0, 10, 10});
  router.reset();
  EXPECT_FALSE(released) << "nothing was held";
  router.press(at(25));
  router.reset();
  ASSERT_TRUE(released);
  EXPECT_LT(released->x, 0);
  EXPECT_EQ(released->button, 1);
}

}  // namespace
}  // namespace ui
