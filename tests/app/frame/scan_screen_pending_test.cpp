// A scan as the whole window while items wait to be deleted.

#include <string>
#include <vector>

#include "app/frame/scan_screen.h"
#include "tests/app/frame/scan_screen_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

using Told = std::vector<std::string>;

class ScanScreenPendingTest : public ScanScreenTest {
 protected:
  ScanScreenPendingTest() {
    screen_.onUndelete = [this](std::uint64_t id) { told_.push_back(std::to_string(id)); };
    screen_.onUndeleteAll = [this] { told_.push_back("all"); };
    screen_.onDeleteNow = [this] { told_.push_back("now"); };
  }
  void wait(const std::vector<std::uint64_t>& ids, double remaining = 0.9) {
    std::vector<PendingRow> rows;
    for (const std::uint64_t id : ids) rows.push_back({id, std::to_string(id), remaining});
    screen_.setPending(std::move(rows));
    screen_.prepare();
  }
  ui::Rect undelete(std::size_t row) const { return screen_.pending().undeleteRect(row); }
  const ui::Rect& map() const { return screen_.layout().map; }

  Told told_;
};

TEST_F(ScanScreenPendingTest, HasThePanelOnlyWhileSomethingWaits) {
  const FrameLayout without = screen_.layout();
  EXPECT_TRUE(without.pending.empty());
  wait({1, 2});
  const ui::Rect panel = screen_.layout().pending;
  EXPECT_EQ(panel.h, screen_.pending().wantedHeight());
  EXPECT_EQ(panel.y + panel.h, without.status.y);
  EXPECT_EQ(map().y + map().h, panel.y);
  EXPECT_EQ(picture().count(rgb(test::kNothingDrawn)), 0);
  wait({});
  EXPECT_EQ(map(), without.map);
  EXPECT_TRUE(screen_.layout().pending.empty());
}

TEST_F(ScanScreenPendingTest, LaysTheMapOutAgainOnlyForAnotherHeight) {
  wait({1, 2, 3, 4, 5});
  picture();
  const PixelSpan* before = ScanScreenTest::map().outlineRect(photo_);
  wait({1, 2, 3, 4, 5}, 0.5);
  picture();
  EXPECT_EQ(ScanScreenTest::map().outlineRect(photo_), before) << "the same picture";
  const ui::Rect tall = map();
  wait({2, 3, 4, 5});
  EXPECT_EQ(map(), tall);
  wait({3, 4, 5});
  EXPECT_GT(map().h, tall.h);
}

TEST_F(ScanScreenPendingTest, AsksForAFrameAsTheCountdownRuns) {
  wait({1});
  changes_ = 0;
  screen_.setPending({{1, "1", 0.9}});
  EXPECT_EQ(changes_, 0);
  screen_.setPending({{1, "1", 0.8}});
  EXPECT_EQ(changes_, 1);
}

TEST_F(ScanScreenPendingTest, HandsItsButtonsOn) {
  wait({4, 5});
  point(inList(photo_));
  for (const ui::Rect& rect : {undelete(1), screen_.pending().layout().undeleteAll,
                               screen_.pending().layout().deleteNow}) {
    point(rect);
    click(rect);
  }
  EXPECT_EQ(told_, (Told{"5", "all", "now"}));
}

TEST_F(ScanScreenPendingTest, TakesNoPressAtOnceWhenThePanelAppearsUnderThePointer) {
  wait({4});
  const ui::Rect place = undelete(0);
  wait({});
  point(place);
  wait({4});
  click(place);
  EXPECT_EQ(told_, Told{});
}

TEST_F(ScanScreenPendingTest, TakesNoPressAtOnceWhereAMenuWasPressed) {
  point(inList(photo_));
  screen_.releasePointer();  // the menu opens, and where the pointer goes is not seen
  wait({4});
  point(undelete(0));  // it has closed: that is where the pointer is
  click(undelete(0));
  EXPECT_EQ(told_, Told{});
}

TEST_F(ScanScreenPendingTest, IsAStopOfTabWhileItIsThere) {
  const auto focusedAfterTabs = [&] {
    for (int i = 0; i < 8; ++i) {
      if (screen_.pending().focused()) return true;
      key(ui::key::kTab);
    }
    return false;
  };
  EXPECT_FALSE(focusedAfterTabs());
  wait({4, 5});
  ASSERT_TRUE(focusedAfterTabs());
  key(ui::key::kDown);
  key(ui::key::kReturn);
  EXPECT_EQ(told_, Told{"5"});
}

TEST_F(ScanScreenPendingTest, GivesTheKeyboardToTheListWhenThePanelGoes) {
  wait({4});
  for (int i = 0; i < 8 && !screen_.pending().focused(); ++i) key(ui::key::kTab);
  ASSERT_TRUE(screen_.pending().focused());
  wait({});
  EXPECT_FALSE(screen_.pending().focused());
  EXPECT_EQ(keyboard(), "list");
}

TEST_F(ScanScreenPendingTest, StaysUsableInTheLeastWindow) {
  for (const bool above : {false, true}) {
    set({.listAboveMap = above});
    screen_.setRect({0, 0, 640, 420});
    wait({1, 2, 3, 4, 5, 6, 7});
    EXPECT_GE(screen_.layout().map.h, 80);
    EXPECT_GE(screen_.layout().list.h, 40);
    EXPECT_EQ(screen_.layout().pending.h, screen_.pending().wantedHeight());
  }
}

}  // namespace
}  // namespace app
