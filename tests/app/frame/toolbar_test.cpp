// The toolbar in a window.

#include "app/frame/toolbar.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/sizewalk/tree_model.h"
#include "tests/ui/widgets/views_on_window.h"

namespace app {
namespace {

using test::add;
using test::at;
using test::Listing;
using test::rgb;

constexpr ui::Rect kBar = {0, 0, 900, 36};

class ToolbarTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  ToolbarTest() {
    tree.createRoot("/home/u");
    folder = add(tree, Listing(0).folder("Pictures")).front();
    bar.setRect(kBar);
    bar.onChanged = [&] { ++changes; };
    bar.onCommand = [&](const Command& command) { told.push_back(wordFor(command)); };
  }

  static std::string wordFor(const Command& command) {
    const std::map<Action, std::string> words = {
        {Action::LeaveScan, "open"},          {Action::StopScan, "stop"},
        {Action::Rescan, "rescan"},           {Action::GoOut, "up"},
        {Action::OpenMeasureMenu, "measure"}, {Action::OpenApplicationMenu, "menu"}};
    if (command.action == Action::GoTo) return "node " + std::to_string(command.target.value());
    return words.at(command.action);
  }
  /// Whether `act` made the bar ask for a frame.
  bool changedBy(const std::function<void()>& act) {
    changes = 0;
    act();
    return changes > 0;
  }
  ToolbarState finished() const { return {.tree = &tree, .canGoUp = true, .focus = folder}; }
  ui::Rect segment(std::size_t number) const {
    const BreadcrumbSegment& part = bar.layout().segments.at(number);
    const ui::Rect& room = bar.layout().breadcrumb;
    return {room.x + part.x, room.y, part.width, room.h};
  }
  void click(const ui::Rect& rect, int button = 1) {
    bar.press(at(rect, button));
    bar.release(at(rect, button));
  }
  std::vector<std::string> taken() { return std::exchange(told, {}); }
  test::Picture picture() {
    return ViewsOnWindow::picture(900, 60, [&](ui::Canvas& canvas) { bar.paint(canvas); });
  }

  sizewalk::FileTree tree;
  sizewalk::NodeId folder = 0;
  Toolbar bar{style};
  std::vector<std::string> told;
  int changes = 0;
};

using Told = std::vector<std::string>;

TEST_F(ToolbarTest, TellsWhichButtonWasPressed) {
  bar.update(finished());
  click(bar.layout().place(Action::LeaveScan));
  click(bar.layout().place(Action::Rescan));
  click(bar.layout().place(Action::GoOut));
  click(bar.layout().place(Action::OpenMeasureMenu));
  click(bar.layout().place(Action::OpenApplicationMenu));
  EXPECT_EQ(taken(), (Told{"open", "rescan", "up", "measure", "menu"}));
}

TEST_F(ToolbarTest, StopsARunningScan) {
  ToolbarState running = finished();
  running.scanning = true;
  bar.update(running);
  click(bar.layout().place(Action::StopScan));
  EXPECT_EQ(taken(), (Told{"stop"}));
}

TEST_F(ToolbarTest, ActsOnlyWhenTheButtonIsLetGoOverItself) {
  bar.update(finished());
  bar.press(at(bar.layout().place(Action::LeaveScan)));
  EXPECT_TRUE(taken().empty());
  bar.release(at(bar.layout().place(Action::Rescan)));
  EXPECT_TRUE(taken().empty());
  EXPECT_FALSE(changedBy([&] { bar.release(at(bar.layout().place(Action::LeaveScan))); }));
  EXPECT_TRUE(taken().empty());
}

TEST_F(ToolbarTest, DoesNotRescanWhenTheScanEndsDuringAPressOnStop) {
  ToolbarState running = finished();
  running.scanning = true;
  bar.update(running);
  bar.press(at(bar.layout().place(Action::StopScan)));
  bar.update(finished());
  bar.release(at(bar.layout().place(Action::Rescan)));
  EXPECT_TRUE(taken().empty());
}

TEST_F(ToolbarTest, IgnoresOtherButtonsOfTheMouse) {
  bar.update(finished());
  click(bar.layout().place(Action::LeaveScan), 2);
  click(bar.layout().place(Action::LeaveScan), 3);
  EXPECT_TRUE(taken().empty());
  bar.press(at(bar.layout().place(Action::LeaveScan)));
  bar.release(at(bar.layout().place(Action::LeaveScan), 3));
  EXPECT_TRUE(taken().empty());
  bar.release(at(bar.layout().place(Action::LeaveScan)));
  EXPECT_EQ(taken(), (Told{"open"}));
}

TEST_F(ToolbarTest, HoldsOnlyTheMenuWithoutAScan) {
  bar.update(finished());
  const ToolbarLayout before = bar.layout();
  const ui::Rect pictures = segment(1);
  EXPECT_TRUE(changedBy([&] { bar.update({}); }));
  for (const ui::Rect& rect :
       {before.place(Action::LeaveScan), before.place(Action::Rescan), before.place(Action::GoOut),
        before.place(Action::OpenMeasureMenu), pictures}) {
    click(rect);
  }
  EXPECT_TRUE(taken().empty());
  click(bar.layout().place(Action::OpenApplicationMenu));
  EXPECT_EQ(taken(), (Told{"menu"}));
}

TEST_F(ToolbarTest, GoesToTheFolderOfASegment) {
  bar.update(finished());
  click(segment(0));
  click(segment(1));
  EXPECT_EQ(taken(), (Told{"node 0", "node " + std::to_string(folder)}));
}

TEST_F(ToolbarTest, TakesBackAPressWhenAnotherFolderComesUnderThePointer) {
  ToolbarState state = finished();
  bar.update(state);
  const ui::Rect place = segment(1);
  const auto deeper = add(tree, Listing(folder).folder("Pictures of last year")).front();
  bar.press(at(place));
  state.tree = nullptr;
  bar.update(state);
  bar.release(at(place));
  EXPECT_TRUE(taken().empty());
  state = finished();
  state.focus = deeper;
  bar.update(state);
  bar.press(at(segment(2)));
  bar.release(at(segment(1)));
  EXPECT_TRUE(taken().empty());
}

TEST_F(ToolbarTest, ShowsAHandOverSegmentsOnly) {
  bar.update(finished());
  bar.motion(at(bar.layout().place(Action::LeaveScan)));
  EXPECT_EQ(bar.pointer(), ui::PointerShape::Arrow);
  EXPECT_TRUE(changedBy([&] { bar.motion(at(segment(0))); }));
  EXPECT_EQ(bar.pointer(), ui::PointerShape::Hand);
  EXPECT_FALSE(changedBy([&] { bar.motion(at(segment(0))); }));
  EXPECT_TRUE(changedBy([&] { bar.leave(); }));
  EXPECT_EQ(bar.pointer(), ui::PointerShape::Arrow);
}

TEST_F(ToolbarTest, IsNotLaidOutAnewWhileTheTreeGrows) {
  EXPECT_TRUE(changedBy([&] { bar.update(finished()); }));
  const BreadcrumbSegment* before = bar.layout().segments.data();
  add(tree, Listing(folder).file("a", 1).folder("b").file("c", 1));
  EXPECT_FALSE(changedBy([&] { bar.update(finished()); }));
  EXPECT_EQ(bar.layout().segments.data(), before);
  ToolbarState withAnotherMeasure = finished();
  withAnotherMeasure.measure = Measure::AddedLastMonth;
  EXPECT_TRUE(changedBy([&] { bar.update(withAnotherMeasure); }));
}

TEST_F(ToolbarTest, NamesTheFolderOnceTheTreeHasIt) {
  sizewalk::FileTree empty;
  const ToolbarState state = {.tree = &empty, .scanning = true};
  bar.update(state);
  EXPECT_TRUE(bar.layout().segments.empty());
  empty.createRoot("/home/u");
  EXPECT_TRUE(changedBy([&] { bar.update(state); }));
  EXPECT_EQ(bar.layout().segments.size(), 1u);
}

TEST_F(ToolbarTest, IsLaidOutAnewForAnotherSize) {
  bar.update(finished());
  EXPECT_FALSE(changedBy([&] { bar.setRect(kBar); }));
  EXPECT_TRUE(changedBy([&] { bar.setRect({0, 0, 700, 36}); }));
  EXPECT_LT(bar.layout().place(Action::OpenApplicationMenu).x, 700);
}

TEST_F(ToolbarTest, FillsItsRectAboveALineInTheBorderColour) {
  const test::Picture shown = picture();
  for (const int x : {0, 450, 899}) {
    EXPECT_EQ(shown.at(x, 0), rgb(style.palette().window)) << x;
    EXPECT_EQ(shown.at(x, 34), rgb(style.palette().window)) << x;
    EXPECT_EQ(shown.at(x, 35), rgb(style.palette().border)) << x;
    EXPECT_EQ(shown.at(x, 36), rgb(test::kNothingDrawn)) << x;
  }
}

TEST_F(ToolbarTest, ShowsWhichButtonIsHeld) {
  bar.update(finished());
  const ui::Rect open = bar.layout().place(Action::LeaveScan);
  const auto ground = [&] { return picture().at(open.x + 4, open.y + 2); };
  EXPECT_EQ(ground(), rgb(style.palette().raised));
  bar.press(at(open));
  EXPECT_EQ(ground(), rgb(style.palette().pressed));
  bar.motion(at(bar.layout().place(Action::OpenApplicationMenu)));
  EXPECT_EQ(ground(), rgb(style.palette().raised));
}

TEST_F(ToolbarTest, UnderlinesTheSegmentUnderThePointerInTheLinkColour) {
  bar.update(finished());
  EXPECT_EQ(picture().count(rgb(style.palette().link)), 0);
  bar.motion(at(segment(1)));
  EXPECT_GE(picture().count(rgb(style.palette().link)), segment(1).w);
}

}  // namespace
}  // namespace app
