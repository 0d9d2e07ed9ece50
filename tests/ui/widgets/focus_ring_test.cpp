// When the ring round what has the keyboard is seen.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "tests/ui/widgets/views_on_window.h"
#include "ui/button.h"
#include "ui/keys.h"
#include "ui/widgets/input_stack.h"
#include "ui/widgets/message_dialog.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/view_group.h"

namespace ui {
namespace {

using test::rgb;

constexpr int kRingsWidth = 400;
constexpr int kRingsHeight = 300;

class RingedButton : public View {
 public:
  explicit RingedButton(const Style& style) : style_(style) {}
  bool takesKeyboard() const override { return true; }
  void paint(Canvas& canvas) const override {
    paintButton(canvas, {.rect = rect(), .focused = focused()}, style_.body(), style_.palette());
  }

 private:
  const Style& style_;
};

class RingedRows : public RowList {
 public:
  using RowList::RowList;
  bool takesKeyboard() const override { return true; }
  void fill() { setCount(3); }

 private:
  void paintRow(Canvas& /*canvas*/, std::size_t /*row*/, const Rect& /*place*/) const override {}
  bool isCurrent(std::size_t row) const override { return row == 0; }
};

/// A button and three rows; the button has the keyboard.
class RingedScreen : public ViewGroup {
 public:
  explicit RingedScreen(const Style& style) : button(style), rows(style) {
    add(button);
    add(rows);
    button.setRect({10, 10, 80, 30});
    rows.setRect({10, 60, 200, 100});
    rows.fill();
    giveKeyboardTo(&button);
  }

  RingedButton button;
  RingedRows rows;
};

class FocusRingTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  FocusRingTest() : screen_(style) {
    stack_.onChanged = [this] { ++changes_; };
    screen_.onChanged = [this] { ++changes_; };
    screen_.setRect({0, 0, kRingsWidth, kRingsHeight});
    stack_.setSize(kRingsWidth, kRingsHeight);
    stack_.show(screen_);
  }

  bool key(key::Keysym keysym) { return stack_.key({.keysym = keysym, .text = {}}); }
  void pressNothing() {
    stack_.press({.x = 390, .y = 290, .button = 1});
    stack_.release({.x = 390, .y = 290, .button = 1});
  }
  /// Pixels in the ring's colour.
  long ringed() {
    return picture(kRingsWidth, kRingsHeight, [&](Canvas& canvas) { stack_.paint(canvas); })
        .count(rgb(style.palette().accent));
  }

  RingedScreen screen_;
  InputStack stack_;
  int changes_ = 0;
};

TEST_F(FocusRingTest, IsSeenFromTheFirstTabToTheNextPress) {
  ASSERT_TRUE(screen_.button.focused());
  EXPECT_EQ(ringed(), 0) << "the keyboard is not in use yet";
  key(key::kTab);
  ASSERT_TRUE(screen_.rows.focused());
  EXPECT_GT(ringed(), 0);
  key(key::kTab);
  ASSERT_TRUE(screen_.button.focused());
  EXPECT_GT(ringed(), 0);
  pressNothing();
  EXPECT_EQ(ringed(), 0);
  EXPECT_TRUE(screen_.button.focused()) << "it has the keyboard still";
  key(key::kDown);
  EXPECT_GT(ringed(), 0);
}

TEST_F(FocusRingTest, IsHiddenByAPressThatMovesTheKeyboard) {
  key(key::kTab);
  ASSERT_TRUE(screen_.rows.focused());
  stack_.press(test::at(screen_.button.rect()));
  ASSERT_TRUE(screen_.button.focused());
  EXPECT_EQ(ringed(), 0);
}

TEST_F(FocusRingTest, ComesWithEveryKeyThatMoves) {
  for (const key::Keysym keysym :
       {key::kTab, key::kLeftTab, key::kUp, key::kDown, key::kLeft, key::kRight, key::kHome,
        key::kEnd, key::kPageUp, key::kPageDown, key::kKeypadDown}) {
    pressNothing();
    ASSERT_EQ(ringed(), 0);
    key(keysym);
    EXPECT_GT(ringed(), 0) << keysym;
  }
}

TEST_F(FocusRingTest, DoesNotComeWithOtherKeysNorGoWithMovesAndTheWheel) {
  for (const key::Keysym keysym : {key::Keysym{'a'}, key::kEscape, key::kReturn, key::kDelete,
                                   key::kBackSpace, key::kF1, key::Keysym{' '}}) {
    key(keysym);
    EXPECT_EQ(ringed(), 0) << keysym;
  }
  key(key::kTab);
  const long before = ringed();
  stack_.motion({.x = 300, .y = 200});
  stack_.wheel({.x = 300, .y = 200}, 1);
  EXPECT_EQ(ringed(), before);
}

TEST_F(FocusRingTest, AsksForAFrameOnlyWhenItComesOrGoes) {
  const auto changedBy = [&](const std::function<void()>& act) {
    changes_ = 0;
    act();
    return changes_ > 0;
  };
  EXPECT_FALSE(changedBy([&] { pressNothing(); }));
  EXPECT_TRUE(changedBy([&] { key(key::kUp); })) << "which the button has no use for";
  EXPECT_FALSE(changedBy([&] { key(key::kUp); }));
  EXPECT_TRUE(changedBy([&] { pressNothing(); }));
}

TEST_F(FocusRingTest, IsSeenInADialogAsOnTheScreen) {
  stack_.open(std::make_unique<MessageDialog>(
      *connection, style, "Title", "Text",
      std::vector<DialogButton>{{"No", ButtonKind::Plain, [] {}},
                                {"Yes", ButtonKind::Plain, [] {}}}));
  EXPECT_EQ(ringed(), 0);
  key(key::kTab);
  const long shown = ringed();
  EXPECT_GT(shown, 0);
  stack_.press({.x = kRingsWidth / 2, .y = kRingsHeight / 2, .button = 1});
  EXPECT_EQ(ringed(), 0);
  key(key::kLeft);
  EXPECT_GT(ringed(), 0);
}

}  // namespace
}  // namespace ui
