#include "ui/widgets/view_group.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ui/keys.h"

namespace ui {
namespace {

using Log = std::vector<std::string>;

/// Writes down what it is told.
class Part : public View {
 public:
  Part(std::string name, Log& log) : name_(std::move(name)), log_(log) {}

  bool keyboard = false;
  std::optional<MouseEvent> released;

  bool takesKeyboard() const override { return keyboard; }
  void paint(Canvas& /*canvas*/) const override {}
  void press(const MouseEvent& /*event*/) override { note("press"); }
  void motion(const MouseEvent& /*event*/) override { note("motion"); }
  void release(const MouseEvent& event) override {
    released = event;
    note("release");
  }
  void leave() override { note("leave"); }
  void wheel(const MouseEvent& /*event*/, int /*dy*/) override { note("wheel"); }
  bool key(const KeyEvent& event) override {
    if (event.keysym != 'k') return false;
    note("key");
    return true;
  }
  PointerShape pointer() const override {
    return name_ == "b" ? PointerShape::Hand : PointerShape::Arrow;
  }
  bool bringUpToDate() override {
    changed();
    return name_ == "b";
  }
  void change() { changed(); }

 private:
  void note(const char* what) { log_.push_back(name_ + " " + what); }

  std::string name_;
  Log& log_;
};

class Group : public ViewGroup {
 public:
  using ViewGroup::add;
  using ViewGroup::giveKeyboardTo;
};

/// Two parts side by side, each 10 wide, with nothing right of them.
class ViewGroupTest : public ::testing::Test {
 protected:
  ViewGroupTest() {
    group.add(a);
    group.add(b);
    a.setRect({0, 0, 10, 10});
    b.setRect({10, 0, 10, 10});
  }

  static MouseEvent at(int x) { return {.x = x, .y = 5, .button = 1}; }
  bool tab(bool back = false) {
    return group.key({.keysym = key::kTab, .text = {}, .shift = back});
  }

  Log log;
  Part a{"a", log};
  Part b{"b", log};
  Group group;
};

TEST_F(ViewGroupTest, SendsMotionToThePartBelow) {
  group.motion(at(5));
  group.motion(at(15));
  group.motion(at(25));
  EXPECT_EQ(log, (Log{"a motion", "a leave", "b motion", "b leave"}));
}

TEST_F(ViewGroupTest, HasThePointerShapeOfThePartThatHasThePointer) {
  EXPECT_EQ(group.pointer(), PointerShape::Arrow);
  group.motion(at(15));
  EXPECT_EQ(group.pointer(), PointerShape::Hand);
  group.press(at(15));
  group.motion(at(5));
  EXPECT_EQ(group.pointer(), PointerShape::Hand) << "b was pressed";
  group.release(at(5));
  group.motion(at(5));
  EXPECT_EQ(group.pointer(), PointerShape::Arrow);
}

TEST_F(ViewGroupTest, KeepsTheDragWithThePartThatWasPressed) {
  group.press(at(5));
  group.motion(at(15));
  group.leave();
  group.motion(at(25));
  group.release(at(25));
  group.motion(at(15));
  EXPECT_EQ(log, (Log{"a press", "a motion", "a motion", "a release", "a leave", "b motion"}));
}

TEST_F(ViewGroupTest, EndsADragWithTheLastButton) {
  const MouseEvent other = {.x = 15, .y = 5, .button = 3};
  group.press(at(5));
  group.press(other);
  group.release(other);
  group.motion(at(15));
  group.release(at(15));
  group.motion(at(15));
  EXPECT_EQ(log, (Log{"a press", "a press", "a release", "a motion", "a release", "a leave",
                      "b motion"}));
}

TEST_F(ViewGroupTest, IsNotBoundByAReleaseThatNobodyToldOf) {
  group.press(at(5));
  group.press(at(15));
  group.release(at(15));
  group.motion(at(5));
  EXPECT_EQ(
      log, (Log{"a press", "a release", "a leave", "b press", "b release", "b leave", "a motion"}));
}

TEST_F(ViewGroupTest, ADragThatBeganBesideAllPartsIsNobodys) {
  group.press(at(25));
  group.motion(at(25));
  group.release(at(25));
  EXPECT_TRUE(log.empty());
}

TEST_F(ViewGroupTest, TurnsTheWheelWhereThePointerIs) {
  group.press(at(5));
  group.wheel(at(15), 1);
  group.wheel(at(25), 1);
  EXPECT_EQ(log, (Log{"a press", "b wheel"}));
}

TEST_F(ViewGroupTest, TellsThePartThatThePointerLeftTheWindow) {
  group.motion(at(5));
  group.leave();
  group.leave();
  EXPECT_EQ(log, (Log{"a motion", "a leave"}));
}

TEST_F(ViewGroupTest, AResetEndsADrag) {
  group.press(at(5));
  group.releasePointer();
  group.motion(at(15));
  group.release(at(15));
  EXPECT_EQ(log, (Log{"a press", "a release", "a leave", "b motion"}));
}

TEST_F(ViewGroupTest, AResetLetsGoBesideEverything) {
  group.releasePointer();
  EXPECT_FALSE(a.released) << "nothing was held";
  group.press(at(5));
  group.releasePointer();
  ASSERT_TRUE(a.released);
  EXPECT_LT(a.released->x, 0);
  EXPECT_EQ(a.released->button, 1);
}

TEST_F(ViewGroupTest, HandsKeysToThePartThatWasPressed) {
  a.keyboard = b.keyboard = true;
  EXPECT_FALSE(group.key({.keysym = 'k', .text = {}})) << "none has the keyboard";
  group.press(at(15));
  EXPECT_TRUE(b.focused());
  EXPECT_TRUE(group.key({.keysym = 'k', .text = {}}));
  EXPECT_FALSE(group.key({.keysym = 'x', .text = {}}));
  EXPECT_EQ(log, (Log{"b press", "b key"}));
}

TEST_F(ViewGroupTest, APressOnWhatTakesNoKeysLeavesTheKeyboardWhereItIs) {
  a.keyboard = true;
  group.press(at(5));
  group.release(at(5));
  group.press(at(15));
  EXPECT_TRUE(a.focused());
  EXPECT_FALSE(b.focused());
}

TEST_F(ViewGroupTest, TabGoesRoundThePartsThatAreThere) {
  a.keyboard = b.keyboard = true;
  EXPECT_TRUE(tab());
  EXPECT_TRUE(a.focused());
  tab();
  EXPECT_TRUE(b.focused());
  EXPECT_FALSE(a.focused());
  tab();
  EXPECT_TRUE(a.focused());
  tab(true);
  EXPECT_TRUE(b.focused());
  a.setRect({});
  tab();
  EXPECT_TRUE(b.focused()) << "the other one has no place";
}

TEST_F(ViewGroupTest, TabStopsNowhereWhereNothingTakesKeys) { EXPECT_FALSE(tab()); }

TEST_F(ViewGroupTest, TellsOfChangesButNotOfThoseWhileItPrepares) {
  int changes = 0;
  group.onChanged = [&] { ++changes; };
  a.change();
  EXPECT_EQ(changes, 1);
  EXPECT_TRUE(group.prepare()) << "b was costly";
  EXPECT_EQ(changes, 1);
}

}  // namespace
}  // namespace ui
