// A scan as the whole window, shown under a pointer that was there before.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/app/frame/scan_screen_fixture.h"
#include "ui/keys.h"
#include "ui/widgets/input_stack.h"

namespace app {
namespace {

/// What was on the screen before the scan.
class EmptyView : public ui::View {
 public:
  void paint(ui::Canvas& /*canvas*/) const override {}
};

/// A pointer rests where the list will be. The scan finds forty folders, the largest last.
class ScanScreenPointerTest : public ScanScreenTest {
 protected:
  static constexpr int kFolders = 40;

  ScanScreenPointerTest() {
    stack_.setSize(kWidth, kHeight);
    stack_.show(before_);
    moveTo(rowPlace(3));
  }
  ~ScanScreenPointerTest() override { screen_.show(nullptr); }

  ui::MouseEvent rowPlace(int row) const {
    const ui::Rect& view = list().view();
    return {.x = view.x + view.w / 2, .y = view.y + row * style.rowHeight() + 5};
  }
  void moveTo(const ui::MouseEvent& place) {
    pointer_ = place;
    stack_.motion(place);
    stack_.prepare();
  }
  void moveBy(int dx, int dy) { moveTo({.x = pointer_.x + dx, .y = pointer_.y + dy}); }
  void showScan(bool again = false) {
    scan_ = std::make_shared<sizewalk::FileTree>(treeOptions());
    if (again) {
      screen_.showAgain(scan_);
    } else {
      screen_.show(scan_);
    }
    screen_.setScanStatus({.scanning = true});
    stack_.show(screen_);
    scan_->createRoot("/r");
    Listing listing(kRootNode);
    for (int i = 0; i < kFolders; ++i) listing.folder("f" + std::to_string(10 + i));
    folders_ = add(*scan_, listing);
    look();
  }
  void look() {
    screen_.treeChanged();
    stack_.prepare();
  }
  /// Each folder becomes the largest when it is read.
  void read(int from, int to) {
    for (int i = from; i < to; ++i) {
      const auto size = 1000 * (static_cast<std::uint64_t>(i) + 1);
      add(*scan_, Listing(folders_[static_cast<std::size_t>(i)]).file("x", size));
      look();
    }
  }
  void end() {
    screen_.setScanStatus({});
    look();
  }
  NodeId shownAt(std::size_t row) const { return list().rows().rows()[row].node; }

  EmptyView before_;
  ui::InputStack stack_;
  ui::MouseEvent pointer_;
  std::shared_ptr<sizewalk::FileTree> scan_;
  std::vector<NodeId> folders_;
};

TEST_F(ScanScreenPointerTest, ShowsTheLargestAtTheTopUnderAPointerThatRests) {
  showScan();
  read(0, kFolders);
  end();
  EXPECT_EQ(list().scrollOffset(), 0);
  EXPECT_EQ(shownAt(1), folders_.back());
}

TEST_F(ScanScreenPointerTest, ShowsTheLargestAtTheTopWhereTheHandShakesWithThePress) {
  showScan();
  read(0, 20);
  moveBy(2, 1);
  read(20, 30);
  moveBy(-1, -2);
  read(30, kFolders);
  end();
  EXPECT_EQ(list().scrollOffset(), 0);
  EXPECT_EQ(shownAt(1), folders_.back());
}

TEST_F(ScanScreenPointerTest, LeavesTheRowUnderAPointerThatMovesInTheListInItsPlace) {
  showScan();
  read(0, 20);
  moveBy(0, 5 * style.rowHeight());
  const NodeId held = list().hovered().value();
  read(20, kFolders);
  EXPECT_EQ(list().hovered(), held);
  EXPECT_GT(list().scrollOffset(), 0);
}

TEST_F(ScanScreenPointerTest, GoesBackToItsTopWhenThePointerOnlyPassedThrough) {
  showScan();
  read(0, 20);
  moveBy(0, 5 * style.rowHeight());
  read(20, kFolders);
  ASSERT_GT(list().scrollOffset(), 0);
  moveTo(at(screen_.layout().map, 0));
  EXPECT_EQ(list().scrollOffset(), 0);
  EXPECT_EQ(shownAt(1), folders_.back());
}

TEST_F(ScanScreenPointerTest, StaysWhereItIsWhileThePointerIsOnItsBar) {
  showScan();
  read(0, 20);
  moveBy(0, 5 * style.rowHeight());
  read(20, kFolders - 10);
  const int offset = list().scrollOffset();
  ASSERT_GT(offset, 0);
  const ui::Rect& place = list().rect();
  moveTo({.x = place.x + place.w - 2, .y = pointer_.y});
  ASSERT_EQ(list().hovered(), std::nullopt);
  read(kFolders - 10, kFolders);
  EXPECT_GE(list().scrollOffset(), offset) << "its thumb is about to be taken hold of";
}

TEST_F(ScanScreenPointerTest, StaysWhereTheUserScrolledWhenThePointerLeaves) {
  showScan();
  read(0, 20);
  moveBy(0, 5 * style.rowHeight());
  stack_.wheel(pointer_, 2);
  stack_.prepare();
  const int offset = list().scrollOffset();
  ASSERT_GT(offset, 0);
  moveTo(at(screen_.layout().map, 0));
  EXPECT_EQ(list().scrollOffset(), offset);
}

TEST_F(ScanScreenPointerTest, StaysAtTheRowThatAKeyMovedTo) {
  showScan();
  read(0, 20);
  stack_.key({.keysym = ui::key::kEnd, .text = {}});
  stack_.prepare();
  read(20, kFolders - 1);
  EXPECT_GT(list().scrollOffset(), 0);
  EXPECT_TRUE(list().view().contains(list().view().x, inList(list().current().value()).y));
}

TEST_F(ScanScreenPointerTest, ComesBackToItsPlaceUnderAPointerThatMovedBeforeItWasMadeAgain) {
  showScan();
  read(0, kFolders);
  end();
  moveBy(0, 5 * style.rowHeight());
  stack_.wheel(pointer_, 4);
  stack_.prepare();
  const int offset = list().scrollOffset();
  ASSERT_GT(offset, 0);
  showScan(true);
  moveBy(1, -1);
  read(0, kFolders);
  end();
  EXPECT_EQ(list().scrollOffset(), offset);
}

TEST_F(ScanScreenPointerTest, ComesBackToItsTopUnderAPointerThatMovedBeforeItWasMadeAgain) {
  showScan();
  read(0, 20);
  moveBy(0, 5 * style.rowHeight());
  moveTo(at(screen_.layout().map, 0));
  read(20, kFolders);
  end();
  moveTo(rowPlace(6));
  showScan(true);
  read(0, kFolders);
  end();
  EXPECT_EQ(list().scrollOffset(), 0);
  EXPECT_EQ(shownAt(1), folders_.back());
}

}  // namespace
}  // namespace app
