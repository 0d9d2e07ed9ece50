// The card of the map under a pointer at rest, when what lay over the screen goes away or another
// scan comes.

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "tests/app/frame/scan_screen_fixture.h"
#include "ui/widgets/input_stack.h"
#include "ui/widgets/message_dialog.h"
#include "ui/widgets/popup_menu.h"

namespace app {
namespace {

/// The screen in a window in which other things lie over it.
class ScanScreenCardTest : public ScanScreenTest {
 protected:
  ScanScreenCardTest() {
    stack_.setSize(kWidth, kHeight);
    stack_.show(screen_);
  }

  void movePointer(const ui::Rect& rect) {
    ui::MouseEvent event = at(rect, 0);
    event.timeMs = nowMs_;
    stack_.motion(event);
    stack_.prepare();
  }
  /// Whether a card is there after a while.
  bool cardComes() {
    stack_.prepare();
    nowMs_ += 5000;
    stack_.tick(nowMs_);
    return screen_.map().cardShown();
  }
  void pressEscape() { stack_.key({.keysym = ui::key::kEscape, .text = {}}); }
  void openMenu() {
    std::vector<ui::MenuEntry> entries = {{.label = "Open", .action = [] {}}};
    stack_.open(std::make_unique<ui::PopupMenu>(style, std::move(entries), 600, 300));
  }
  void openMessage() {
    stack_.open(
        std::make_unique<ui::MessageDialog>(*connection, style, "Title", "Text", ui::okButton()));
  }

  ui::InputStack stack_;
  std::int64_t nowMs_ = 0;
};

TEST_F(ScanScreenCardTest, ComesOverTheMapAloneToAPointerThatRests) {
  const test::Picture before = picture();
  movePointer(onMap(photo_));
  ASSERT_TRUE(cardComes());
  const test::Picture after = picture();
  for (const ui::Rect& beside : {screen_.layout().list, screen_.layout().kinds}) {
    EXPECT_TRUE(part(before, beside) == part(after, beside));
  }
}

TEST_F(ScanScreenCardTest, WaitsForAMoveAfterAMenuOrADialog) {
  for (const auto& open : {std::function([&] { openMenu(); }), {[&] { openMessage(); }}}) {
    movePointer(onMap(photo_));
    ASSERT_TRUE(cardComes());
    open();
    EXPECT_FALSE(cardComes()) << "it would lie below";
    pressEscape();
    ASSERT_FALSE(stack_.covered());
    EXPECT_FALSE(cardComes());
    EXPECT_EQ(screen_.map().hovered(), photo_) << "the outline comes at once";
    ui::Rect beside = onMap(photo_);
    beside.x += 1;
    movePointer(beside);
    EXPECT_TRUE(cardComes());
  }
}

TEST_F(ScanScreenCardTest, WaitsForAMoveAfterADialogInWhichThePointerMoved) {
  movePointer(onMap(photo_));
  openMessage();
  movePointer(onMap(song_));
  pressEscape();
  EXPECT_FALSE(cardComes());
  EXPECT_EQ(screen_.map().hovered(), song_);
}

TEST_F(ScanScreenCardTest, WaitsForAMoveOnceAnotherScanIsShown) {
  movePointer(onMap(photo_));
  ASSERT_TRUE(cardComes());
  screen_.showAgain(tree_);
  stack_.show(screen_);
  EXPECT_FALSE(cardComes());
  ASSERT_EQ(screen_.map().hovered(), photo_);
  ui::Rect beside = onMap(photo_);
  beside.x += 1;
  movePointer(beside);
  EXPECT_TRUE(cardComes());
}

}  // namespace
}  // namespace app
