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

constexpr ui::Rect kToolbarPlace = {0, 0, 900, 36};

class ToolbarTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  ToolbarTest() {
    tree.createRoot("/home/u");
    folder = add(tree, Listing(0).folder("Pictures")).front();
    bar.setRect(kToolbarPlace);
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
  void show(const ToolbarState& state) {
    bar.update(state);
    bar.prepare();
  }
  /// Shows `state` and lets so much time pass that every button takes presses.
  void showAtRest(const ToolbarState& state) {
    show(state);
    bar.tick(now_);
    now_ += 500;
  }
  ui::MouseEvent eventAt(const ui::Rect& rect, int button = 1) const {
    ui::MouseEvent event = at(rect, button);
    event.timeMs = now_;
    return event;
  }
  void press(const ui::Rect& rect, int button = 1) { bar.press(eventAt(rect, button)); }
  void release(const ui::Rect& rect, int button = 1) { bar.release(eventAt(rect, button)); }
  void click(const ui::Rect& rect, int button = 1) {
    press(rect, button);
    release(rect, button);
  }
  ui::Rect place(Action action) const { return bar.layout().place(action); }
  std::vector<std::string> taken() { return std::exchange(told, {}); }
  test::Picture picture() {
    return ViewsOnWindow::picture(900, 60, [&](ui::Canvas& canvas) { bar.paint(canvas); });
  }

  sizewalk::FileTree tree;
  sizewalk::NodeId folder = 0;
  Toolbar bar{style};
  std::vector<std::string> told;
  int changes = 0;
  std::int64_t now_ = 1'000'000;
};

using Told = std::vector<std::string>;

TEST_F(ToolbarTest, TellsWhichButtonWasPressed) {
  showAtRest(finished());
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
  showAtRest(running);
  click(bar.layout().place(Action::StopScan));
  EXPECT_EQ(taken(), (Told{"stop"}));
}

TEST_F(ToolbarTest, ActsOnlyWhenTheButtonIsLetGoOverItself) {
  showAtRest(finished());
  press(bar.layout().place(Action::LeaveScan));
  EXPECT_TRUE(taken().empty());
  release(bar.layout().place(Action::Rescan));
  EXPECT_TRUE(taken().empty());
  EXPECT_FALSE(changedBy([&] { release(bar.layout().place(Action::LeaveScan)); }));
  EXPECT_TRUE(taken().empty());
}

TEST_F(ToolbarTest, DoesNotRescanWhenTheScanEndsDuringAPressOnStop) {
  ToolbarState running = finished();
  running.scanning = true;
  showAtRest(running);
  press(bar.layout().place(Action::StopScan));
  showAtRest(finished());
  release(bar.layout().place(Action::Rescan));
  EXPECT_TRUE(taken().empty());
}

TEST_F(ToolbarTest, IgnoresOtherButtonsOfTheMouse) {
  showAtRest(finished());
  click(bar.layout().place(Action::LeaveScan), 2);
  click(bar.layout().place(Action::LeaveScan), 3);
  EXPECT_TRUE(taken().empty());
  press(bar.layout().place(Action::LeaveScan));
  release(bar.layout().place(Action::LeaveScan), 3);
  EXPECT_TRUE(taken().empty());
  release(bar.layout().place(Action::LeaveScan));
  EXPECT_EQ(taken(), (Told{"open"}));
}

TEST_F(ToolbarTest, HoldsOnlyTheMenuWithoutAScan) {
  showAtRest(finished());
  const ToolbarLayout before = bar.layout();
  const ui::Rect pictures = segment(1);
  EXPECT_TRUE(changedBy([&] { showAtRest({}); }));
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
  showAtRest(finished());
  click(segment(0));
  click(segment(1));
  EXPECT_EQ(taken(), (Told{"node 0", "node " + std::to_string(folder)}));
}

TEST_F(ToolbarTest, TakesBackAPressWhenAnotherFolderComesUnderThePointer) {
  ToolbarState state = finished();
  showAtRest(state);
  const ui::Rect place = segment(1);
  const auto deeper = add(tree, Listing(folder).folder("Pictures of last year")).front();
  press(place);
  state.tree = nullptr;
  showAtRest(state);
  release(place);
  EXPECT_TRUE(taken().empty());
  state = finished();
  state.focus = deeper;
  showAtRest(state);
  press(segment(2));
  release(segment(1));
  EXPECT_TRUE(taken().empty());
}

TEST_F(ToolbarTest, ShowsAHandOverSegmentsOnly) {
  showAtRest(finished());
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
  EXPECT_FALSE(changedBy([&] { bar.setRect(kToolbarPlace); }));
  EXPECT_TRUE(changedBy([&] { bar.setRect({0, 0, 700, 36}); }));
  EXPECT_LT(bar.layout().place(Action::OpenApplicationMenu).x, 700);
}

// Buttons that come under a resting pointer.

TEST_F(ToolbarTest, TakesTheSecondPressOfADoubleOneOnStopForNothingElse) {
  ToolbarState running = finished();
  running.scanning = true;
  showAtRest(running);
  const ui::Rect stop = place(Action::StopScan);
  click(stop);
  show(finished());
  ASSERT_TRUE(place(Action::Rescan).contains(stop.x + stop.w / 2, stop.y + stop.h / 2));
  now_ += 499;
  click(stop);
  EXPECT_EQ(taken(), (Told{"stop"}));
  now_ += 500;
  click(stop);
  EXPECT_EQ(taken(), (Told{"rescan"}));
}

TEST_F(ToolbarTest, DoesNotRescanWhenTheScanEndsJustBeforeAPressOnStop) {
  ToolbarState running = finished();
  running.scanning = true;
  showAtRest(running);
  const ui::Rect stop = place(Action::StopScan);
  bar.motion(eventAt(stop));
  show(finished());
  ui::MouseEvent trembling = eventAt(stop);
  trembling.x += 2;
  bar.motion(trembling);
  bar.press(trembling);
  bar.release(trembling);
  EXPECT_TRUE(taken().empty());
}

TEST_F(ToolbarTest, TakesPressesAtOnceOnWhatTookNobodysPlace) {
  Toolbar fresh{style};
  fresh.onCommand = bar.onCommand;
  fresh.setRect(kToolbarPlace);
  fresh.prepare();
  const ui::MouseEvent event = eventAt(fresh.layout().place(Action::OpenApplicationMenu));
  fresh.press(event);
  fresh.release(event);
  EXPECT_EQ(taken(), (Told{"menu"}));
}

TEST_F(ToolbarTest, TakesAPressOfAPointerThatHasMovedOnToTheNewButton) {
  ToolbarState running = finished();
  running.scanning = true;
  showAtRest(running);
  bar.motion(eventAt(place(Action::StopScan)));
  show(finished());
  bar.motion(eventAt(place(Action::LeaveScan)));
  bar.motion(eventAt(place(Action::Rescan)));
  click(place(Action::Rescan));
  EXPECT_EQ(taken(), (Told{"rescan"}));
}

TEST_F(ToolbarTest, GivesAPressOnUpToNothingThatTakesItsPlace) {
  showAtRest(finished());
  const ui::Rect up = place(Action::GoOut);
  click(up);
  show({.tree = &tree});
  ASSERT_TRUE(place(Action::OpenMeasureMenu).contains(up.x + up.w / 2, up.y + up.h / 2));
  now_ += 200;
  click(up);
  EXPECT_EQ(taken(), (Told{"up"}));
}

TEST_F(ToolbarTest, CountsEveryQuickPressOnAButtonThatStays) {
  showAtRest(finished());
  for (int i = 0; i < 3; ++i) {
    click(place(Action::GoOut));
    add(tree, Listing(folder).folder("f" + std::to_string(i)));
    show(finished());
    now_ += 60;
  }
  EXPECT_EQ(taken(), (Told{"up", "up", "up"}));
}

TEST_F(ToolbarTest, TakesPressesOnASelectorThatGrowsUnderThePointer) {
  showAtRest(finished());
  bar.motion(eventAt(place(Action::OpenMeasureMenu)));
  const ui::Rect before = place(Action::OpenMeasureMenu);
  ToolbarState another = finished();
  another.measure = Measure::AddedLastSixMonths;
  show(another);
  ASSERT_GT(place(Action::OpenMeasureMenu).w, before.w);
  click(before);
  EXPECT_EQ(taken(), (Told{"measure"}));
}

TEST_F(ToolbarTest, HasUnderThePointerWhatIsThereByNow) {
  ToolbarState running = finished();
  running.scanning = true;
  show(running);
  const ui::Rect stop = place(Action::StopScan);
  const auto ground = [&] { return picture().at(stop.x + 4, stop.y + 2); };
  bar.motion(eventAt(stop));
  const auto hovered = ground();
  ASSERT_NE(hovered, rgb(style.palette().raised));
  show(finished());
  EXPECT_EQ(ground(), hovered) << "another button is under the pointer";
  show(running);
  const ui::Rect first = segment(0);
  bar.motion(eventAt(first));
  ASSERT_EQ(bar.pointer(), ui::PointerShape::Hand);
  show({});
  EXPECT_EQ(bar.pointer(), ui::PointerShape::Arrow);
  show(finished());
  bar.leave();
  show(running);
  EXPECT_EQ(ground(), rgb(style.palette().raised)) << "the pointer is elsewhere";
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

TEST_F(ToolbarTest, ShowsHowFarAScanIsAlongItsLowerEdge) {
  EXPECT_TRUE(changedBy([&] { bar.setProgress(0.5); }));
  const test::Picture shown = picture();
  for (const int x : {0, 449}) {
    EXPECT_EQ(shown.at(x, 33), rgb(style.palette().window)) << x;
    EXPECT_EQ(shown.at(x, 34), rgb(style.palette().accent)) << x;
    EXPECT_EQ(shown.at(x, 35), rgb(style.palette().accent)) << x;
  }
  EXPECT_EQ(shown.at(450, 35), rgb(style.palette().border));
  EXPECT_FALSE(changedBy([&] { bar.setProgress(0.5004); })) << "not a pixel more";
  EXPECT_TRUE(changedBy([&] { bar.setProgress(0); }));
  EXPECT_EQ(picture().count(rgb(style.palette().accent)), 0);
}

TEST_F(ToolbarTest, ShowsWhichButtonIsHeld) {
  showAtRest(finished());
  const ui::Rect open = bar.layout().place(Action::LeaveScan);
  const auto ground = [&] { return picture().at(open.x + 4, open.y + 2); };
  EXPECT_EQ(ground(), rgb(style.palette().raised));
  press(open);
  EXPECT_EQ(ground(), rgb(style.palette().pressed));
  bar.motion(at(bar.layout().place(Action::OpenApplicationMenu)));
  EXPECT_EQ(ground(), rgb(style.palette().raised));
}

TEST_F(ToolbarTest, UnderlinesTheSegmentUnderThePointerInTheLinkColour) {
  showAtRest(finished());
  EXPECT_EQ(picture().count(rgb(style.palette().link)), 0);
  bar.motion(at(segment(1)));
  EXPECT_GE(picture().count(rgb(style.palette().link)), segment(1).w);
}

// The figures of the folder in focus.

TEST_F(ToolbarTest, TellsTheFiguresOfTheFolderBehindItsName) {
  show(finished());
  bar.setFigures(FolderFigures{1'200'000'000, 12'345});
  const ui::Rect last = segment(1);
  EXPECT_EQ(bar.figures().text, "1.20 GB · 12,345 items");
  EXPECT_EQ(bar.figures().rect.x, last.x + last.w + 12);
  const ui::Rect place = bar.figures().rect;
  EXPECT_GT(picture().part(place.x, place.y, place.w, place.h).count(rgb(style.palette().dimText)),
            10);
}

TEST_F(ToolbarTest, HasFiguresThatCannotBePressed) {
  showAtRest(finished());
  bar.setFigures(FolderFigures{1'200'000'000, 12'345});
  bar.motion(eventAt(bar.figures().rect, 0));
  EXPECT_EQ(bar.pointer(), ui::PointerShape::Arrow);
  click(bar.figures().rect);
  EXPECT_TRUE(taken().empty());
}

TEST_F(ToolbarTest, GivesNoFolderUpForItsFigures) {
  show(finished());
  const auto segments = bar.layout().segments;
  const ui::Rect last = segment(1);
  const std::string all = "1.20 GB · 12,345 items";
  const int rest = 900 - (bar.layout().breadcrumb.x + bar.layout().breadcrumb.w);
  const auto shownWith = [&](int room) {
    bar.setRect({0, 0, last.x + last.w + 12 + room + rest, 36});
    EXPECT_EQ(bar.layout().segments, segments);
    return bar.figures().text;
  };
  bar.setFigures(FolderFigures{1'200'000'000, 12'345});
  EXPECT_EQ(shownWith(style.textWidth(all)), all);
  EXPECT_EQ(shownWith(style.textWidth(all) - 1), "1.20 GB");
  EXPECT_EQ(shownWith(style.textWidth("1.20 GB") - 1), "");
  EXPECT_TRUE(bar.figures().rect.empty());
}

TEST_F(ToolbarTest, AsksForAFrameOnlyWhenFiguresChange) {
  show(finished());
  EXPECT_TRUE(changedBy([&] { bar.setFigures(FolderFigures{1000, 2}); }));
  EXPECT_FALSE(changedBy([&] { bar.setFigures(FolderFigures{1000, 2}); }));
  EXPECT_TRUE(changedBy([&] { bar.setFigures(FolderFigures{1000, 3}); }));
  EXPECT_TRUE(changedBy([&] { bar.setFigures(std::nullopt); }));
  EXPECT_EQ(bar.figures().text, "");
  bar.setFigures(FolderFigures{1000, 3});
  show({});
  EXPECT_EQ(bar.figures().text, "") << "no folder to tell of";
}

// What it tells of its buttons.

TEST_F(ToolbarTest, TellsWhatTheButtonUnderThePointerDoesAndItsKey) {
  showAtRest(finished());
  EXPECT_EQ(bar.hint(), "");
  const std::map<Action, std::string> hints = {
      {Action::LeaveScan, "Choose another folder to scan (Ctrl+O)"},
      {Action::Rescan, "Scan this folder again (F5)"},
      {Action::GoOut, "One folder up (Backspace)"},
      {Action::OpenMeasureMenu, "Choose what is measured"},
      {Action::OpenApplicationMenu, "Menu (F10)"}};
  for (const auto& button : hints) {
    const ui::Rect& place = bar.layout().place(button.first);
    EXPECT_TRUE(changedBy([&] { bar.motion(eventAt(place)); }));
    EXPECT_EQ(bar.hint(), button.second);
  }
  bar.motion(eventAt(segment(0)));
  EXPECT_EQ(bar.hint(), "") << "it has its name";
  bar.motion(eventAt(bar.layout().place(Action::GoOut)));
  bar.leave();
  EXPECT_EQ(bar.hint(), "");
}

TEST_F(ToolbarTest, TellsWhatStoppingDoes) {
  ToolbarState scanning = finished();
  scanning.scanning = true;
  showAtRest(scanning);
  bar.motion(eventAt(bar.layout().place(Action::StopScan)));
  EXPECT_EQ(bar.hint(), "Stop the scan and keep what it has found (Escape)");
}

}  // namespace
}  // namespace app
