// The dialogs' common ground, seen through messages and questions.

#include "ui/widgets/message_dialog.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/ui/window_test_base.h"
#include "ui/keys.h"
#include "ui/widgets/input_stack.h"

namespace ui {
namespace {

class MessageDialogTest : public test::WindowTest {
 protected:
  MessageDialogTest() { stack_.setSize(600, 400); }

  /// A question that names what it did.
  MessageDialog& ask(const std::string& text = "Some items are waiting.") {
    const auto note = [this](const char* what) { return [this, what] { done_.push_back(what); }; };
    auto dialog = std::make_unique<MessageDialog>(
        *connection, style_, "Delete now?", text,
        std::vector<DialogButton>{{"Delete Them", ui::ButtonKind::Plain, note("delete")},
                                  {"Cancel", ui::ButtonKind::Default, note("cancel")}},
        1);
    MessageDialog& asked = *dialog;
    stack_.open(std::move(dialog));
    return asked;
  }

  void key(unsigned long keysym, bool shift = false) {
    stack_.key({.keysym = keysym, .text = {}, .shift = shift});
  }
  static ui::MouseEvent at(const ui::Rect& rect, int button = 1) {
    return {.x = rect.x + rect.w / 2, .y = rect.y + rect.h / 2, .button = button};
  }
  void click(const ui::Rect& rect) {
    stack_.press(at(rect));
    stack_.release(at(rect));
  }

  Style style_{*connection, ui::kLightPalette};
  InputStack stack_;
  std::vector<std::string> done_;
};

TEST_F(MessageDialogTest, HasTheSafeButtonUnderEnter) {
  ask();
  key(ui::key::kReturn);
  EXPECT_EQ(done_, std::vector<std::string>{"cancel"});
  EXPECT_FALSE(stack_.covered());
}

TEST_F(MessageDialogTest, TakesTabToTheOtherButtonAndBack) {
  ask();
  key(ui::key::kTab);
  key(ui::key::kReturn);
  EXPECT_EQ(done_, std::vector<std::string>{"delete"});
  ask();
  key(ui::key::kTab, true);
  key(ui::key::kTab);
  key(' ');
  EXPECT_EQ(done_.back(), "cancel");
}

TEST_F(MessageDialogTest, IsCancelledByEscape) {
  ask();
  key(ui::key::kTab);
  key(ui::key::kEscape);
  EXPECT_EQ(done_, std::vector<std::string>{"cancel"});
}

TEST_F(MessageDialogTest, ActsWhenAButtonIsLetGoOverItself) {
  MessageDialog& dialog = ask();
  const ui::Rect deletes = dialog.buttonRect(0);
  const ui::Rect cancels = dialog.buttonRect(1);
  dialog.press(at(deletes));
  dialog.release(at(cancels));
  dialog.press(at(deletes, 3));
  dialog.release(at(deletes, 3));
  EXPECT_TRUE(done_.empty());
  click(deletes);
  EXPECT_EQ(done_, std::vector<std::string>{"delete"});
}

TEST_F(MessageDialogTest, StaysWhenThePressIsOutside) {
  ask();
  click({1, 1, 2, 2});
  EXPECT_TRUE(stack_.covered());
  EXPECT_TRUE(done_.empty());
}

TEST_F(MessageDialogTest, IsGoneBeforeItsButtonActs) {
  auto dialog =
      std::make_unique<MessageDialog>(*connection, style_, "Title", "Text",
                                      std::vector<DialogButton>{{"Next", {}, [this] {
                                                                   EXPECT_FALSE(stack_.covered());
                                                                   ask();
                                                                 }}});
  stack_.open(std::move(dialog));
  key(ui::key::kReturn);
  ASSERT_TRUE(stack_.covered()) << "its button opened another";
  EXPECT_TRUE(done_.empty());
}

TEST_F(MessageDialogTest, WrapsItsTextInsideThePanel) {
  const int low = ask().panel().h;
  const MessageDialog& high = ask(std::string(2000, 'm'));
  EXPECT_GT(high.panel().h, low);
  EXPECT_LE(high.panel().h, 400);
  EXPECT_GE(high.panel().x, 0);
  EXPECT_LE(high.panel().x + high.panel().w, 600);
}

TEST_F(MessageDialogTest, StaysInTheMiddleOfAWindowThatChangesItsSize) {
  const MessageDialog& dialog = ask();
  stack_.setSize(900, 500);
  const ui::Rect panel = dialog.panel();
  EXPECT_EQ(panel.x, (900 - panel.w) / 2);
  EXPECT_EQ(panel.y, (500 - panel.h) / 2);
  stack_.setSize(60, 40);
  EXPECT_LE(dialog.panel().w, 60);
  EXPECT_LE(dialog.panel().h, 40);
}

TEST_F(MessageDialogTest, DimsTheWindowAroundItsPanel) {
  window.create("dialog", 600, 400);
  const ui::Rect panel = ask().panel();
  const test::Picture picture = paint([&](ui::Canvas& canvas) {
    canvas.fillRect({0, 0, 600, 400}, 0xFFFFFFFF);
    stack_.paint(canvas);
  });
  EXPECT_EQ(picture.at(5, 5), 0x999999u);
  EXPECT_EQ(picture.at(panel.x + panel.w / 2, panel.y + 4), ui::kLightPalette.window & 0xFFFFFF);
}

}  // namespace
}  // namespace ui
