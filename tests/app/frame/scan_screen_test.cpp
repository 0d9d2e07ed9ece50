// A scan as the whole window: how its parts follow each other.

#include "app/frame/scan_screen.h"

#include <memory>
#include <string>
#include <vector>

#include "app/model/format.h"
#include "tests/app/frame/scan_screen_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

TEST_F(ScanScreenTest, CoversTheWindowInEveryArrangement) {
  for (const bool above : {false, true}) {
    for (const bool kindsShown : {false, true}) {
      set({.listAboveMap = above, .showKinds = kindsShown});
      EXPECT_EQ(picture().count(rgb(test::kNothingDrawn)), 0) << above << kindsShown;
    }
  }
}

// Map and list follow each other.

TEST_F(ScanScreenTest, SelectsInTheListWhatIsPressedOnTheMap) {
  EXPECT_EQ(listed(), (Nodes{kRootNode, big_, photo_, empty_, late_}));
  click(onMap(deep_));
  EXPECT_EQ(selected(), Nodes{deep_});
  EXPECT_EQ(list().current(), deep_);
  EXPECT_EQ(listed(), (Nodes{kRootNode, big_, inner_, deep_, song_, photo_, empty_, late_}));
  EXPECT_EQ(screen_.target(), deep_);
}

TEST_F(ScanScreenTest, ScrollsTheListToWhatIsPressedOnTheMap) {
  fillEmpty(200, 1000);
  EXPECT_EQ(list().scrollOffset(), 0);
  const NodeId last = tree_->firstChild(empty_) + 199;
  click(onMap(last));
  EXPECT_GT(list().scrollOffset(), 0);
  EXPECT_EQ(ui::intersect(inList(last), screen_.layout().list), inList(last)) << "in view";
}

TEST_F(ScanScreenTest, OutlinesOnTheMapWhatIsPressedInTheList) {
  const auto before = picture();
  click(inList(photo_));
  EXPECT_EQ(selected(), Nodes{photo_});
  const ui::Rect place = onMap(photo_);
  const auto after = picture();
  EXPECT_EQ(after.at(place.x, place.y), 0xFFFFFFu);
  EXPECT_FALSE(part(after, screen_.layout().map) == part(before, screen_.layout().map));
}

TEST_F(ScanScreenTest, FocusesTheMapOnAFolderPressedTwiceInTheList) {
  EXPECT_FALSE(canGoUp());
  EXPECT_EQ(screen_.toolbar().layout().segments.size(), 1u);
  clickTwice(inList(big_));
  EXPECT_EQ(focus(), big_);
  EXPECT_EQ(map().root, big_);
  EXPECT_TRUE(canGoUp());
  EXPECT_EQ(screen_.toolbar().layout().segments.size(), 2u);
  EXPECT_EQ(map().outlineRect(photo_), nullptr);
  EXPECT_TRUE(commands_.empty());
}

TEST_F(ScanScreenTest, OpensAFilePressedTwiceInTheList) {
  clickTwice(inList(photo_));
  EXPECT_EQ(commands_, (std::vector<Command>{{.action = Action::Open, .target = photo_}}));
  EXPECT_EQ(focus(), kRootNode);
}

TEST_F(ScanScreenTest, AsksToGoToTheFolderOfAPressedSegment) {
  screen_.focus().go(inner_);
  screen_.prepare();
  ASSERT_EQ(screen_.toolbar().layout().segments.size(), 3u);
  goAndClick(segment(1));
  goAndClick(segment(0));
  EXPECT_EQ(commands_, (std::vector<Command>{{.action = Action::GoTo, .target = big_},
                                             {.action = Action::GoTo, .target = kRootNode}}));
}

TEST_F(ScanScreenTest, AsksToGoOutWithTheButton) {
  clickTwice(inList(big_));
  goAndClick(up());
  EXPECT_EQ(commands_, std::vector<Command>{{.action = Action::GoOut}});
}

TEST_F(ScanScreenTest, OpensTheWayToTheFolderInFocus) {
  screen_.focus().go(inner_);
  screen_.prepare();
  EXPECT_EQ(list().current(), inner_);
  EXPECT_TRUE(list().rows().find(inner_));
}

TEST_F(ScanScreenTest, GoesInAndOutWithTheWheelOnTheMapOnly) {
  wheel(onMap(deep_), -1);
  EXPECT_EQ(focus(), big_);
  wheel(screen_.layout().map, 1);
  EXPECT_EQ(focus(), kRootNode);
  wheel(inList(big_), -1);
  EXPECT_EQ(focus(), kRootNode) << "the wheel scrolls lists";
}

TEST_F(ScanScreenTest, GoesOutWithTheMiddleButtonAndBackIn) {
  screen_.focus().go(inner_);
  screen_.prepare();
  click(screen_.layout().map, 2);
  EXPECT_EQ(focus(), big_);
  click(screen_.layout().map, 8);
  EXPECT_EQ(focus(), kRootNode);
  click(screen_.layout().map, 9);
  EXPECT_EQ(focus(), big_);
}

TEST_F(ScanScreenTest, HasAContextMenuForWhatIsUnderThePointer) {
  click(onMap(photo_), 3);
  click(inList(big_), 3);
  EXPECT_EQ(menus_, (Nodes{photo_, big_}));
  EXPECT_EQ(selected(), Nodes{big_});
}

// Kinds.

TEST_F(ScanScreenTest, DimsTheOtherKindsOfAPressedRow) {
  ASSERT_EQ(kinds().rows().size(), 3u);
  const auto mapPart = [&] { return part(picture(), screen_.layout().map); };
  screen_.leave();
  const auto plain = mapPart();
  click(inKinds(0));
  ASSERT_TRUE(kinds().selectedKind());
  screen_.leave();
  EXPECT_FALSE(mapPart() == plain);
  EXPECT_TRUE(key(ui::key::kEscape));
  EXPECT_FALSE(kinds().selectedKind());
  EXPECT_TRUE(mapPart() == plain);
  EXPECT_FALSE(key(ui::key::kEscape)) << "there is nothing left";
  click(inKinds(0));
  click(inKinds(0));
  screen_.leave();
  EXPECT_TRUE(mapPart() == plain) << "a second press ends it too";
}

TEST_F(ScanScreenTest, TakesTheCardBackBeforeTheHighlight) {
  click(inKinds(0));
  screen_.motion(at(onMap(photo_), 0));
  screen_.tick(ui::Window::now() + 1000);
  EXPECT_TRUE(key(ui::key::kEscape));
  EXPECT_TRUE(kinds().selectedKind()) << "it was the card's turn";
  EXPECT_TRUE(key(ui::key::kEscape));
  EXPECT_FALSE(kinds().selectedKind());
}

TEST_F(ScanScreenTest, EndsTheHighlightWithTheTableThatShowsIt) {
  screen_.leave();
  const auto plain = part(picture(), screen_.layout().map);
  click(inKinds(0));
  set({.showKinds = false});
  set({.showKinds = true});
  screen_.leave();
  EXPECT_TRUE(part(picture(), screen_.layout().map) == plain);
}

// The keyboard.

TEST_F(ScanScreenTest, GoesRoundItsPartsWithTab) {
  EXPECT_EQ(keyboard(), "list");
  key(ui::key::kTab);
  EXPECT_EQ(keyboard(), "kinds");
  key(ui::key::kTab);
  EXPECT_EQ(keyboard(), "map");
  key(ui::key::kTab);
  EXPECT_EQ(keyboard(), "list");
  key(ui::key::kTab, true);
  EXPECT_EQ(keyboard(), "map");
  key(ui::key::kTab, true);
  EXPECT_EQ(keyboard(), "kinds");
}

TEST_F(ScanScreenTest, GoesPastTheKindsWhenTheyAreNotShown) {
  key(ui::key::kTab);
  set({.showKinds = false});
  EXPECT_EQ(keyboard(), "list") << "the table had the keyboard";
  key(ui::key::kTab);
  EXPECT_EQ(keyboard(), "map");
  key(ui::key::kTab, true);
  EXPECT_EQ(keyboard(), "list");
}

TEST_F(ScanScreenTest, GivesTheKeyboardToThePartThatIsPressed) {
  click(onMap(photo_));
  EXPECT_EQ(keyboard(), "map");
  click(inKinds(1));
  EXPECT_EQ(keyboard(), "kinds");
  click(inList(photo_));
  EXPECT_EQ(keyboard(), "list");
}

TEST_F(ScanScreenTest, HasARingOnTheRowOfTheListWithTheKeyboard) {
  const auto withRing = part(picture(), screen_.layout().list);
  key(ui::key::kTab);
  EXPECT_FALSE(part(picture(), screen_.layout().list) == withRing);
}

// Dividers.

TEST_F(ScanScreenTest, MovesItsDividersAndPutsThemBack) {
  const FrameLayout before = screen_.layout();
  drag(before.mainDivider, 100, 0);
  EXPECT_EQ(screen_.layout().mainDivider.x, before.mainDivider.x + 100);
  EXPECT_EQ(map().width, screen_.layout().map.w) << "drawn at its new size";
  drag(screen_.layout().kindsDivider, 0, -80);
  EXPECT_EQ(screen_.layout().kindsDivider.y, before.kindsDivider.y - 80);
  EXPECT_EQ(picture().count(rgb(test::kNothingDrawn)), 0);
  clickTwice(screen_.layout().mainDivider);
  clickTwice(screen_.layout().kindsDivider);
  EXPECT_EQ(screen_.layout().mainDivider, before.mainDivider);
  EXPECT_EQ(screen_.layout().kindsDivider, before.kindsDivider);
}

TEST_F(ScanScreenTest, ShowsWhichWayADividerMoves) {
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::Arrow);
  point(screen_.layout().mainDivider);
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::ResizeHorizontal);
  point(screen_.layout().kindsDivider);
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::ResizeVertical);
  point(screen_.layout().map);
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::Arrow);
  point(segment(0));
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::Hand);
}

TEST_F(ScanScreenTest, KeepsTheShapeOfThePointerWhileADragIsAheadOfItsDivider) {
  ui::MouseEvent event = at(screen_.layout().mainDivider);
  screen_.press(event);
  event.x = 5;  // further than the divider goes
  screen_.motion(event);
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::ResizeHorizontal);
  screen_.release(event);
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::Arrow);
}

TEST_F(ScanScreenTest, HasNoResizePointerWhereAPressOnTheMapIsDraggedOverADivider) {
  ui::MouseEvent event = at(onMap(photo_));
  screen_.press(event);
  screen_.motion(at(screen_.layout().mainDivider, 0));
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::Arrow);
  screen_.release(at(screen_.layout().mainDivider));
  point(screen_.layout().mainDivider);
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::ResizeHorizontal);
}

TEST_F(ScanScreenTest, PutsADividerBackOnEscape) {
  for (const bool above : {false, true}) {
    set({.listAboveMap = above});
    for (const auto divider : {&FrameLayout::mainDivider, &FrameLayout::kindsDivider}) {
      const ui::Rect own = screen_.layout().*divider;
      drag(own, 20, 20);
      const ui::Rect moved = screen_.layout().*divider;
      ASSERT_NE(moved, own);
      ui::MouseEvent event = at(moved);
      screen_.press(event);
      event.x += 30;
      event.y += 30;
      screen_.motion(event);
      ASSERT_NE(screen_.layout().*divider, moved);
      EXPECT_TRUE(key(ui::key::kEscape)) << "so that no scan is stopped";
      EXPECT_EQ(screen_.layout().*divider, moved);
      event.x += 30;
      screen_.motion(event);
      screen_.release(event);
      EXPECT_EQ(screen_.layout().*divider, moved);
      EXPECT_FALSE(key(ui::key::kEscape));
      clickTwice(moved);
      EXPECT_EQ(screen_.layout().*divider, own);
    }
  }
}

TEST_F(ScanScreenTest, PutsADividerBackWhenTheKeyboardIsInTheKinds) {
  click(inKinds(0));
  ASSERT_TRUE(kinds().selectedKind());
  const ui::Rect before = screen_.layout().mainDivider;
  ui::MouseEvent event = at(before);
  screen_.press(event);
  event.x += 50;
  screen_.motion(event);
  key(ui::key::kEscape);
  EXPECT_EQ(screen_.layout().mainDivider, before);
  EXPECT_TRUE(kinds().selectedKind()) << "what lies below keeps until the next Escape";
}

TEST_F(ScanScreenTest, PutsADividerBackForAnotherButtonAndForALostPointer) {
  const ui::Rect before = screen_.layout().mainDivider;
  const auto begin = [&] {
    ui::MouseEvent event = at(before);
    screen_.press(event);
    event.x += 50;
    screen_.motion(event);
    ASSERT_NE(screen_.layout().mainDivider, before);
  };
  begin();
  screen_.press(at(screen_.layout().map, 3));
  EXPECT_EQ(screen_.layout().mainDivider, before);
  EXPECT_TRUE(menus_.empty());
  screen_.release(at(screen_.layout().map, 3));
  screen_.release(at(screen_.layout().map, 1));
  EXPECT_EQ(screen_.layout().mainDivider, before);
  begin();
  screen_.releasePointer();
  EXPECT_EQ(screen_.layout().mainDivider, before);
}

TEST_F(ScanScreenTest, GivesADividersPlaceBackWhenTheWindowIsLargeAgain) {
  drag(screen_.layout().mainDivider, 1000, 0);
  const FrameLayout before = screen_.layout();
  ASSERT_EQ(before.map.w, 160);
  screen_.setRect({0, 0, 1600, kHeight});
  EXPECT_GT(screen_.layout().map.w, 160) << "its share of the window, not the limit it was at";
  screen_.setRect({0, 0, 640, 420});
  EXPECT_EQ(screen_.layout().map.w, 160);
  screen_.setRect({0, 0, kWidth, kHeight});
  EXPECT_EQ(screen_.layout().mainDivider, before.mainDivider);
}

TEST_F(ScanScreenTest, KeepsKeysInTheControlWithTheRing) {
  const auto shown = [&] { return std::make_pair(listed(), selected()); };
  click(inList(big_));
  key(ui::key::kRight);
  click(inKinds(1));
  const auto before = shown();
  for (const auto keysym : {ui::key::kLeft, ui::key::kRight, ui::key::kPageUp, ui::key::kPageDown,
                            ui::key::kHome, ui::key::kEnd, ui::key::kUp, ui::key::kDown}) {
    key(keysym);
    screen_.key({.keysym = keysym, .text = {}, .ctrl = true});
    screen_.key({.keysym = keysym, .text = {}, .shift = true});
  }
  EXPECT_EQ(shown(), before) << "the kinds have the ring";
  key(ui::key::kTab);
  ASSERT_EQ(keyboard(), "map");
  const auto onTheMap = shown();
  for (const auto keysym :
       {ui::key::kPageUp, ui::key::kPageDown, ui::key::kHome, ui::key::kEnd, ui::key::kDelete}) {
    key(keysym);
    screen_.key({.keysym = keysym, .text = {}, .shift = true, .typed = "\x7f"});
  }
  EXPECT_EQ(shown(), onTheMap) << "the map has the ring";
}

TEST_F(ScanScreenTest, HandsNoEnterFromKindsWithoutRowsToTheList) {
  const auto empty = std::make_shared<sizewalk::FileTree>(treeOptions());
  empty->createRoot("/e");
  const NodeId inside = add(*empty, Listing(0).folder("inside")).front();
  add(*empty, Listing(inside).folder("deeper"));
  screen_.show(empty);
  screen_.prepare();
  ASSERT_TRUE(kinds().rows().empty());
  key(ui::key::kDown);
  key(ui::key::kTab);
  screen_.key({.keysym = ui::key::kReturn, .text = {}, .typed = "\r"});
  EXPECT_EQ(focus(), kRootNode);
  screen_.show(nullptr);
}

TEST_F(ScanScreenTest, TakesBackInTheListWhatWasTypedElsewhere) {
  click(inKinds(0));
  ASSERT_TRUE(screen_.key({.keysym = 'p', .text = {}, .typed = "p"}));
  EXPECT_TRUE(screen_.key({.keysym = ui::key::kBackSpace, .text = "\b", .timeMs = 10}));
  EXPECT_FALSE(screen_.key({.keysym = ui::key::kBackSpace, .text = "\b", .timeMs = 5000}));
}

TEST_F(ScanScreenTest, HandsTheListOnlyLettersOfAnotherViewsKeys) {
  click(inList(photo_));
  click(inKinds(0));
  key(ui::key::kLeft);
  screen_.key({.keysym = 'a', .text = {}, .ctrl = true});
  EXPECT_EQ(selected(), Nodes{photo_}) << "nothing is selected behind the user's back";
  screen_.key({.keysym = 'b', .text = {}, .typed = "b"});
  EXPECT_EQ(selected(), Nodes{big_});
}

}  // namespace
}  // namespace app
