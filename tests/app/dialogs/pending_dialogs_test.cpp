#include "app/dialogs/pending_dialogs.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/ui/window_test_base.h"
#include "ui/keys.h"
#include "ui/widgets/input_stack.h"
#include "ui/widgets/message_dialog.h"

namespace app {
namespace {

using Told = std::vector<std::string>;

TEST(PendingTexts, AskWhatIsToBecomeOfWhatWaits) {
  EXPECT_EQ(leaveScanText(1),
            "1 item is waiting to be deleted. Leaving this scan deletes them immediately.");
  EXPECT_EQ(leaveScanText(3),
            "3 items are waiting to be deleted. Leaving this scan deletes them immediately.");
  EXPECT_EQ(leaveScanText(12'345),
            "12,345 items are waiting to be deleted. Leaving this scan deletes them immediately.");
  EXPECT_EQ(rescanFolderText(2),
            "2 items are waiting to be deleted. Rescanning their folder deletes them immediately.");
}

TEST(PendingTexts, AskWhetherTheCountdownIsToBeCutShort) {
  EXPECT_EQ(deleteNowText(1),
            "1 item will go to the trash straight away, without the rest of the countdown. This "
            "cannot be undone from here.");
  EXPECT_EQ(deleteNowText(1'000),
            "1,000 items will go to the trash straight away, without the rest of the countdown. "
            "This cannot be undone from here.");
}

TEST(PendingTexts, TellWhyAnItemIsStillThere) {
  EXPECT_EQ(trashFailureText(std::vector<TrashFailure>{{"/a/b\xFF", "No such file or directory"}}),
            "/a/b\\377 - No such file or directory. It is still where it was.");
  EXPECT_EQ(trashFailureText(std::vector<TrashFailure>{{"/a", "Nowhere to put it."}}),
            "/a - Nowhere to put it. It is still where it was.")
      << "one full stop";
}

TEST(PendingTexts, KeepTheReasonInSightAfterAVeryLongPath) {
  const std::string path = "/" + std::string(5000, 'x') + "/end";
  const std::string text = trashFailureText(std::vector<TrashFailure>{{path, "It is stuck"}});
  EXPECT_TRUE(text.ends_with("xx/end - It is stuck. It is still where it was."));
  EXPECT_LT(text.size(), 400u);
}

TEST(PendingTexts, TellOfSeveralFailuresAtOnce) {
  std::vector<TrashFailure> failures = {{"/a", "It is stuck."}, {"/b", "It is gone"}};
  EXPECT_EQ(trashFailureText(failures),
            "2 items are still where they were.\n\n/a - It is stuck.\n/b - It is gone.");
  failures.resize(1'200, {"/c", "It is stuck"});
  const std::string text = trashFailureText(failures);
  EXPECT_TRUE(text.starts_with("1,200 items are still where they were.\n\n/a - "));
  EXPECT_TRUE(text.ends_with("/c - It is stuck.\n… and 1,196 more.")) << text;
}

class PendingDialogsTest : public test::WindowTest {
 protected:
  PendingDialogsTest() { stack_.setSize(640, 420); }

  PendingChoices choices() {
    return {[this] { told_.push_back("delete"); }, [this] { told_.push_back("back"); },
            [this] { told_.push_back("cancel"); }};
  }
  const ui::MessageDialog& open(std::unique_ptr<ui::Overlay> dialog) {
    const auto& opened = dynamic_cast<const ui::MessageDialog&>(*dialog);
    stack_.open(std::move(dialog));
    return opened;
  }
  void openSettle() { open(leaveScanQuestion(*connection, style_, 3, choices())); }
  void key(unsigned long keysym) { stack_.key({.keysym = keysym, .text = {}}); }
  /// What the button does that so many presses of Tab lead to.
  std::string after(int tabs) {
    openSettle();
    for (int i = 0; i < tabs; ++i) key(ui::key::kTab);
    key(ui::key::kReturn);
    EXPECT_FALSE(stack_.covered());
    return std::exchange(told_, {}).at(0);
  }

  ui::Style style_{*connection, ui::kLightPalette};
  Told told_;
  ui::InputStack stack_;
};

TEST_F(PendingDialogsTest, HaveTheirTitlesAndTexts) {
  const auto& settle = open(leaveScanQuestion(*connection, style_, 3, {}));
  EXPECT_EQ(settle.title(), "Pending deletes");
  EXPECT_EQ(settle.text(), leaveScanText(3));
  const auto& rescan = open(rescanFolderQuestion(*connection, style_, 1, {}));
  EXPECT_EQ(rescan.title(), "Pending deletes");
  EXPECT_EQ(rescan.text(), rescanFolderText(1));
  const auto& now = open(deleteNowQuestion(*connection, style_, 2, {}));
  EXPECT_EQ(now.title(), "Delete now?");
  EXPECT_EQ(now.text(), deleteNowText(2));
  const std::vector<TrashFailure> failures = {{"/a", "x"}, {"/b", "y"}};
  const auto& one =
      open(trashFailureMessage(*connection, style_, std::span(failures).first(1), {}));
  EXPECT_EQ(one.title(), "Could not move it to the trash");
  EXPECT_EQ(one.text(), "/a - x. It is still where it was.");
  EXPECT_EQ(open(trashFailureMessage(*connection, style_, failures, {})).title(),
            "Could not move them to the trash");
}

TEST_F(PendingDialogsTest, AskWithTheSafeButtonUnderEnter) {
  EXPECT_EQ(after(0), "cancel");
  EXPECT_EQ(after(1), "delete");
  EXPECT_EQ(after(2), "back");
  EXPECT_EQ(after(3), "cancel");
}

TEST_F(PendingDialogsTest, AreCancelledByEscape) {
  openSettle();
  key(ui::key::kTab);
  key(ui::key::kEscape);
  EXPECT_EQ(told_, Told{"cancel"});
  EXPECT_FALSE(stack_.covered());
}

TEST_F(PendingDialogsTest, HaveTheirButtonsFromLeftToRight) {
  const auto& dialog = open(leaveScanQuestion(*connection, style_, 3, choices()));
  EXPECT_LT(dialog.buttonRect(0).x, dialog.buttonRect(1).x);
  EXPECT_LT(dialog.buttonRect(1).x, dialog.buttonRect(2).x);
  const ui::Rect second = dialog.buttonRect(1);
  const ui::MouseEvent event = {
      .x = second.x + second.w / 2, .y = second.y + second.h / 2, .button = 1};
  stack_.press(event);
  stack_.release(event);
  EXPECT_EQ(told_, Told{"back"});
}

TEST_F(PendingDialogsTest, DeleteNowOnlyWhenToldTo) {
  const auto ask = [&] {
    open(deleteNowQuestion(*connection, style_, 2, [this] { told_.push_back("delete"); }));
  };
  ask();
  key(ui::key::kReturn);
  ask();
  key(ui::key::kEscape);
  EXPECT_EQ(told_, Told{});
  ask();
  key(ui::key::kTab);
  key(ui::key::kReturn);
  EXPECT_EQ(told_, Told{"delete"});
  EXPECT_FALSE(stack_.covered());
}

TEST_F(PendingDialogsTest, SayWhenTheFailureWasToldOf) {
  const std::vector<TrashFailure> failures = {{"/a", "x"}};
  for (const unsigned long keysym : {ui::key::kReturn, ui::key::kEscape}) {
    open(trashFailureMessage(*connection, style_, failures, [this] { told_.push_back("told"); }));
    key(keysym);
  }
  EXPECT_EQ(told_, (Told{"told", "told"}));
}

}  // namespace
}  // namespace app
