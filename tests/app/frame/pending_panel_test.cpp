// The pending panel in a window.

#include "app/frame/pending_panel.h"

#include <string>
#include <utility>
#include <vector>

#include "app/frame/countdown_ring.h"
#include "tests/ui/widgets/views_on_window.h"
#include "ui/keys.h"

namespace app {
namespace {

using test::at;
using test::rgb;
using Told = std::vector<std::string>;

constexpr int kPanelWidth = 640;
constexpr int kBottom = 400;

std::vector<PendingRow> rowsOf(const std::vector<std::uint64_t>& ids) {
  std::vector<PendingRow> rows;
  for (const std::uint64_t id : ids) rows.push_back({id, "item " + std::to_string(id), 0.9});
  return rows;
}

class PendingPanelTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  PendingPanelTest() {
    panel_.onUndelete = [this](std::uint64_t id) { told_.push_back(std::to_string(id)); };
    panel_.onUndeleteAll = [this] { told_.push_back("all"); };
    panel_.onDeleteNow = [this] { told_.push_back("now"); };
    panel_.onChanged = [this] { ++changes_; };
  }

  /// Stands on the status line, as in the window.
  void showRows(std::vector<PendingRow> rows) {
    panel_.setRows(std::move(rows));
    const int height = panel_.wantedHeight();
    panel_.setRect({0, kBottom - height, kPanelWidth, height});
    panel_.prepare();
  }
  void show(const std::vector<std::uint64_t>& ids) { showRows(rowsOf(ids)); }
  /// Lets so much time pass that every button takes presses.
  void rest() {
    panel_.tick(now_);
    now_ += 500;
    panel_.tick(now_);
  }
  ui::Rect undelete(std::size_t row) const { return panel_.undeleteRect(row); }
  const ui::Rect& undeleteAll() const { return panel_.layout().undeleteAll; }
  const ui::Rect& deleteNow() const { return panel_.layout().deleteNow; }

  ui::MouseEvent eventAt(const ui::Rect& rect, int button = 1) const {
    ui::MouseEvent event = at(rect, button);
    event.timeMs = now_;
    return event;
  }
  void press(const ui::Rect& rect, int button = 1) { panel_.press(eventAt(rect, button)); }
  void release(const ui::Rect& rect, int button = 1) { panel_.release(eventAt(rect, button)); }
  void click(const ui::Rect& rect, int button = 1) {
    press(rect, button);
    release(rect, button);
  }
  bool key(unsigned long keysym) { return panel_.key({.keysym = keysym, .text = {}}); }
  Told taken() { return std::exchange(told_, {}); }
  test::Picture picture() {
    panel_.prepare();
    return ViewsOnWindow::picture(kPanelWidth, kBottom, [&](ui::Canvas& c) { panel_.paint(c); });
  }

  PendingPanel panel_{style};
  Told told_;
  int changes_ = 0;
  std::int64_t now_ = 1'000'000;
};

TEST_F(PendingPanelTest, TellsWhichButtonWasPressed) {
  show({7, 8, 9});
  rest();
  click(undelete(1));
  click(undelete(2));
  click(undeleteAll());
  click(deleteNow());
  EXPECT_EQ(taken(), (Told{"8", "9", "all", "now"}));
}

TEST_F(PendingPanelTest, ActsOnlyWhenTheButtonIsLetGoOverItself) {
  show({7, 8});
  rest();
  press(undelete(0));
  release(undelete(1));
  press(deleteNow());
  release(undeleteAll());
  click(panel_.rowRect(0));
  click(panel_.layout().heading);
  EXPECT_EQ(taken(), Told{});
}

TEST_F(PendingPanelTest, IgnoresOtherButtonsOfTheMouse) {
  show({7});
  rest();
  click(undelete(0), 2);
  click(deleteNow(), 3);
  EXPECT_EQ(taken(), Told{});
}

// Rows that leave while they are pressed.

TEST_F(PendingPanelTest, GivesAPressToNoOtherItemWhenARowLeaves) {
  show({1, 2, 3, 4, 5, 6});
  rest();
  const ui::Rect place = undelete(1);
  press(place);
  show({2, 3, 4, 5, 6});  // the scrolled list has no room to give up: all rows move up
  release(place);
  EXPECT_EQ(taken(), Told{});
}

TEST_F(PendingPanelTest, GivesAPressToItsItemWhereverThatIsWhenItIsLetGo) {
  show({1, 2, 3});
  rest();
  press(undelete(2));
  show({2, 3});
  release(undelete(1));
  EXPECT_EQ(taken(), Told{"3"});
}

TEST_F(PendingPanelTest, ForgetsAPressOnAnItemThatLeft) {
  show({1, 2});
  rest();
  const ui::Rect place = undelete(1);
  press(place);
  show({1});
  release(place);
  EXPECT_EQ(taken(), Told{});
}

TEST_F(PendingPanelTest, TakesNoPressOnARowThatHasJustTakenAnothersPlace) {
  show({1, 2, 3, 4, 5, 6});
  rest();
  const ui::Rect place = undelete(0);
  panel_.motion(eventAt(place, 0));
  show({2, 3, 4, 5, 6});
  click(place);
  EXPECT_EQ(taken(), Told{});
  now_ += 499;
  click(place);
  EXPECT_EQ(taken(), Told{});
  now_ += 1;
  click(place);
  EXPECT_EQ(taken(), Told{"2"});
}

TEST_F(PendingPanelTest, TakesThatPressOnceThePointerHasComeAnew) {
  show({1, 2, 3, 4, 5, 6});
  rest();
  panel_.motion(eventAt(undelete(0), 0));
  show({2, 3, 4, 5, 6});
  panel_.motion(eventAt(panel_.layout().heading, 0));
  panel_.motion(eventAt(undelete(0), 0));
  click(undelete(0));
  EXPECT_EQ(taken(), Told{"2"});
}

TEST_F(PendingPanelTest, TakesNoPressOnTheHeadingThatSinksUnderThePointer) {
  show({1, 2});
  rest();
  const ui::Rect place = undelete(0);
  panel_.motion(eventAt(place, 0));
  show({2});
  ASSERT_TRUE(deleteNow().contains(eventAt(place).x, eventAt(place).y));
  click(place);
  EXPECT_EQ(taken(), Told{});
}

TEST_F(PendingPanelTest, TakesPressesOnRowsThatStayWhileTheOldestLeaves) {
  show({1, 2, 3});
  rest();
  const ui::Rect second = undelete(1);
  show({2, 3});
  EXPECT_EQ(undelete(0), second) << "the panel stands on the status line";
  click(second);
  EXPECT_EQ(taken(), Told{"2"});
}

TEST_F(PendingPanelTest, TakesQuickPressesOnAButtonThatStays) {
  show({1, 2, 3});
  rest();
  click(undeleteAll());
  click(undeleteAll());
  panel_.setRows({{1, "item 1", 0.5}, {2, "item 2", 0.5}, {3, "item 3", 0.5}});
  click(undeleteAll());
  EXPECT_EQ(taken(), (Told{"all", "all", "all"}));
}

TEST_F(PendingPanelTest, TakesNoPressWhenItHasJustAppeared) {
  show({1});
  click(undelete(0));
  EXPECT_EQ(taken(), Told{});
  show({});
  panel_.pointerLost();
  show({1});
  click(deleteNow());
  EXPECT_EQ(taken(), Told{});
}

TEST_F(PendingPanelTest, TakesAPressOfAPointerThatCameFromElsewhere) {
  show({1});
  panel_.pointerSeen(5, 5);
  panel_.motion(eventAt(undelete(0), 0));
  click(undelete(0));
  EXPECT_EQ(taken(), Told{"1"});
}

// Keys.

TEST_F(PendingPanelTest, WalksTheRowsByKeys) {
  show({1, 2, 3});
  EXPECT_TRUE(key(ui::key::kReturn));
  key(ui::key::kDown);
  key(' ');
  key(ui::key::kDown);
  key(ui::key::kDown);
  key(ui::key::kKeypadEnter);
  key(ui::key::kHome);
  key(ui::key::kReturn);
  key(ui::key::kEnd);
  key(ui::key::kReturn);
  key(ui::key::kPageUp);
  key(ui::key::kReturn);
  EXPECT_EQ(taken(), (Told{"1", "2", "3", "1", "3", "1"}));
}

TEST_F(PendingPanelTest, LeadsUpToTheHeadingByKeys) {
  show({1, 2});
  key(ui::key::kUp);
  key(ui::key::kUp);
  key(ui::key::kReturn);
  key(ui::key::kRight);
  key(ui::key::kReturn);
  key(ui::key::kLeft);
  key(ui::key::kReturn);
  key(ui::key::kDown);
  key(ui::key::kReturn);
  EXPECT_EQ(taken(), (Told{"all", "now", "all", "1"}));
}

TEST_F(PendingPanelTest, LeavesOtherKeysAlone) {
  EXPECT_FALSE(key(ui::key::kReturn)) << "without rows";
  show({1});
  EXPECT_FALSE(key(ui::key::kLeft));
  EXPECT_FALSE(key(ui::key::kEscape));
  EXPECT_FALSE(key('a'));
  EXPECT_FALSE(panel_.key({.keysym = ui::key::kHome, .text = {}, .ctrl = true}));
}

TEST_F(PendingPanelTest, NeverComesToDeleteNowByItself) {
  show({1, 2, 3});
  key(ui::key::kEnd);
  show({1, 2});
  key(ui::key::kReturn);
  show({1});
  key(ui::key::kReturn);
  show({4});
  key(ui::key::kReturn);
  EXPECT_EQ(taken(), (Told{"2", "1", "4"}));
}

TEST_F(PendingPanelTest, ScrollsToTheRowThatKeysLeadTo) {
  show({1, 2, 3, 4, 5, 6, 7});
  EXPECT_GE(panel_.rowRect(6).y, kBottom - 5);
  key(ui::key::kEnd);
  EXPECT_EQ(panel_.rowRect(6).y + panel_.rowRect(6).h,
            panel_.layout().rows.y + panel_.layout().rows.h);
}

// Scrolling.

TEST_F(PendingPanelTest, ScrollsByTheWheelAndKeepsTheRowUnderThePointer) {
  show({1, 2, 3, 4, 5, 6, 7, 8});
  panel_.wheel(eventAt(undelete(0), 0), 1);
  EXPECT_EQ(panel_.rowRect(3).y, panel_.layout().rows.y);
  show({2, 3, 4, 5, 6, 7, 8});
  EXPECT_EQ(panel_.rowRect(2).y, panel_.layout().rows.y) << "the same item";
}

TEST_F(PendingPanelTest, DragsItsBar) {
  show({1, 2, 3, 4, 5, 6, 7, 8});
  const ui::Rect& rows = panel_.layout().rows;
  ui::MouseEvent event = {.x = rows.x + rows.w - 3, .y = rows.y + 4, .button = 1, .timeMs = now_};
  panel_.press(event);
  event.y += rows.h;
  panel_.motion(event);
  panel_.release(event);
  EXPECT_EQ(panel_.rowRect(7).y + panel_.rowRect(7).h, rows.y + rows.h);
  EXPECT_EQ(taken(), Told{});
}

// What is seen.

TEST_F(PendingPanelTest, AsksForAFrameOnlyWhenSomethingIsDifferent) {
  show({1, 2});
  changes_ = 0;
  panel_.setRows(rowsOf({1, 2}));
  EXPECT_EQ(changes_, 0);
  panel_.setRows({{1, "item 1", 0.8}, {2, "item 2", 0.9}});
  EXPECT_EQ(changes_, 1);
}

TEST_F(PendingPanelTest, DrawsTheRingOfEveryRow) {
  showRows({{1, "a", 0.95}, {2, "b", 0.43}});
  const test::Picture shown = picture();
  for (const std::size_t row : {0u, 1u}) {
    const ui::Rect whole = panel_.rowRect(row);
    const double left = panel_.rows()[row].remaining;
    const auto ring =
        ringPixels(16, left, ringColour(left, style.palette()), style.palette().window);
    const ui::Rect place =
        layOutPendingRow(whole, {1, style.lineHeight()}, [](auto) { return 50; }).ring;
    EXPECT_EQ(shown.part(place.x, place.y, 16, 16).pixels, ring) << row;
  }
}

TEST_F(PendingPanelTest, FillsItsRectAndNoMore) {
  show({1});
  const test::Picture shown = picture();
  const ui::Rect& rect = panel_.rect();
  EXPECT_EQ(shown.at(3, rect.y), rgb(style.palette().border));
  EXPECT_EQ(shown.at(3, rect.y + 1), rgb(style.palette().window));
  EXPECT_EQ(shown.at(3, rect.y - 1), rgb(test::kNothingDrawn));
  EXPECT_EQ(shown.part(0, rect.y, rect.w, rect.h).count(rgb(test::kNothingDrawn)), 0);
}

TEST_F(PendingPanelTest, ShowsARingOnTheButtonThatKeysPress) {
  show({1, 2});
  const auto edge = [&](const ui::Rect& rect) { return picture().at(rect.x + rect.w / 2, rect.y); };
  EXPECT_NE(edge(undelete(0)), rgb(style.palette().accent));
  panel_.setFocused(true);
  EXPECT_EQ(edge(undelete(0)), rgb(style.palette().accent));
  key(ui::key::kDown);
  EXPECT_NE(edge(undelete(0)), rgb(style.palette().accent));
  EXPECT_EQ(edge(undelete(1)), rgb(style.palette().accent));
}

}  // namespace
}  // namespace app
