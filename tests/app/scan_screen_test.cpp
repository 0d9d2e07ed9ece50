// A scan as the whole window: how its parts follow each other.

#include "app/scan_screen.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/format.h"
#include "tests/app/views_on_window.h"
#include "tests/sizewalk/tree_model.h"
#include "ui/keys.h"

namespace app {
namespace {

using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::at;
using test::Listing;
using test::rgb;
using Nodes = std::vector<NodeId>;

constexpr int kWidth = 1000;
constexpr int kHeight = 650;
constexpr std::uint32_t kMonthAgo = 2000;

sizewalk::ScanOptions treeOptions() {
  sizewalk::ScanOptions options;
  options.sixMonthThreshold = 1000;
  options.monthThreshold = kMonthAgo;
  return options;
}

/// /r holds big/ with inner/ (deep.txt, 60,000) and song.mp3 (40,000), photo.jpg (50,000), of which
/// only deep.txt and photo.jpg were added within a month, empty/ and late/.
class ScanScreenTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  ScanScreenTest() {
    screen_.onChanged = [this] { ++changes_; };
    screen_.onCommand = [this](Command command) { commands_.push_back(command); };
    screen_.onContextMenu = [this](NodeId node, int, int) { menus_.push_back(node); };
    screen_.onOpenFile = [this](NodeId node) { opened_.push_back(node); };
    tree_->createRoot("/r");
    const auto folders = add(
        *tree_,
        Listing(0).folder("big").file("photo.jpg", 50'000, 0, 3000).folder("empty").folder("late"));
    big_ = folders[0];
    empty_ = folders[1];
    late_ = folders[2];
    photo_ = big_ + 1;
    inner_ = add(*tree_, Listing(big_).folder("inner").file("song.mp3", 40'000)).front();
    song_ = inner_ + 1;
    add(*tree_, Listing(inner_).file("deep.txt", 60'000, 0, 3000));
    deep_ = tree_->firstChild(inner_);
    screen_.setSize(kWidth, kHeight);
    screen_.show(tree_.get());
    screen_.prepare();
  }
  ~ScanScreenTest() override { screen_.show(nullptr); }

  const FolderList& list() const { return screen_.list(); }
  const KindsTable& kinds() const { return screen_.kinds(); }
  const RenderedTreemap& map() const { return screen_.picture().rendered(); }
  const std::string& right() const { return screen_.statusLine().right(); }
  NodeId focus() { return screen_.focus().current(); }
  bool canGoUp() const { return !screen_.toolbar().layout().up.empty(); }

  Nodes selected() {
    Nodes nodes(screen_.selection().nodes().begin(), screen_.selection().nodes().end());
    std::ranges::sort(nodes);
    return nodes;
  }
  Nodes listed() const {
    Nodes nodes;
    for (const FolderRow& row : list().rows().rows()) nodes.push_back(row.node);
    return nodes;
  }

  ui::Rect onMap(NodeId node) const {
    const MapRect* rect = map().outlineRect(node);
    if (!rect) throw std::runtime_error("not on the map");
    ui::Rect pixels = pixelRect(*rect);
    pixels.x += screen_.picture().rect().x;
    pixels.y += screen_.picture().rect().y;
    return pixels;
  }
  ui::Rect inList(NodeId node) const { return list().rowRect(list().rows().find(node).value()); }
  /// A row of the kinds table.
  ui::Rect inKinds(std::size_t row) const { return kinds().rowRect(row); }
  const ui::Rect& up() const { return screen_.toolbar().layout().up; }
  ui::Rect segment(std::size_t number) const {
    const ToolbarLayout& bar = screen_.toolbar().layout();
    const BreadcrumbSegment& found = bar.segments.at(number);
    return {bar.breadcrumb.x + found.x, bar.breadcrumb.y, found.width, bar.breadcrumb.h};
  }

  /// Puts `count` files into empty/.
  void fillEmpty(int count, std::uint64_t size) {
    Listing many(empty_);
    for (int i = 0; i < count; ++i) many.file("f" + std::to_string(i), size);
    add(*tree_, many);
    screen_.treeChanged();
    screen_.prepare();
  }

  void click(const ui::MouseEvent& event) {
    screen_.press(event);
    screen_.release(event);
    screen_.prepare();
  }
  void click(const ui::Rect& rect, int button = 1, bool ctrl = false) {
    ui::MouseEvent event = at(rect, button);
    event.ctrl = ctrl;
    click(event);
  }
  void clickTwice(const ui::Rect& rect) {
    ui::MouseEvent event = at(rect);
    click(event);
    event.clicks = 2;
    click(event);
  }
  void point(const ui::Rect& rect) {
    screen_.motion(at(rect, 0));
    screen_.prepare();
  }
  void drag(const ui::Rect& rect, int dx, int dy) {
    ui::MouseEvent event = at(rect);
    screen_.press(event);
    event.x += dx;
    event.y += dy;
    screen_.motion(event);
    screen_.release(event);
    screen_.prepare();
  }
  void wheel(const ui::Rect& rect, int dy) {
    screen_.wheel(at(rect, 0), dy);
    screen_.prepare();
  }
  bool key(unsigned long keysym, bool shift = false) {
    const bool known = screen_.key({.keysym = keysym, .text = {}, .shift = shift});
    screen_.prepare();
    return known;
  }
  void set(const ScanScreenSettings& settings) {
    screen_.setSettings(settings);
    screen_.prepare();
  }

  test::Picture picture() {
    screen_.prepare();
    return ViewsOnWindow::picture(kWidth, kHeight, [&](ui::Canvas& c) { screen_.paint(c); });
  }
  static test::Picture part(const test::Picture& picture, const ui::Rect& rect) {
    return picture.part(rect.x, rect.y, rect.w, rect.h);
  }
  /// The part that has the keyboard.
  std::string keyboard() {
    const auto& mapRect = screen_.layout().map;
    if (picture().at(mapRect.x, mapRect.y) == rgb(style.palette().accent)) return "map";
    const auto kind = kinds().currentKind();
    const auto sort = kinds().sort();
    key(ui::key::kDown);
    const bool moved = kinds().currentKind() != kind;
    key(ui::key::kUp);
    EXPECT_EQ(kinds().sort(), sort);
    return moved ? "kinds" : "list";
  }

  KindColours colours_{true};
  std::unique_ptr<sizewalk::FileTree> tree_ = std::make_unique<sizewalk::FileTree>(treeOptions());
  NodeId big_ = 0, photo_ = 0, empty_ = 0, late_ = 0, inner_ = 0, song_ = 0, deep_ = 0;
  ScanScreen screen_{*connection, style, colours_};
  int changes_ = 0;
  std::vector<Command> commands_;
  Nodes menus_;
  Nodes opened_;
};

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
  EXPECT_TRUE(opened_.empty());
}

TEST_F(ScanScreenTest, OpensAFilePressedTwiceInTheList) {
  clickTwice(inList(photo_));
  EXPECT_EQ(opened_, Nodes{photo_});
  EXPECT_EQ(focus(), kRootNode);
}

TEST_F(ScanScreenTest, GoesToTheFolderOfAPressedSegment) {
  screen_.focus().go(inner_);
  screen_.prepare();
  ASSERT_EQ(screen_.toolbar().layout().segments.size(), 3u);
  click(segment(1));
  EXPECT_EQ(focus(), big_);
  click(segment(0));
  EXPECT_EQ(focus(), kRootNode);
  EXPECT_FALSE(canGoUp());
}

TEST_F(ScanScreenTest, AsksToGoOutWithTheButton) {
  clickTwice(inList(big_));
  click(up());
  EXPECT_EQ(commands_, std::vector<Command>{Command::GoOut});
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
  EXPECT_TRUE(screen_.dismiss());
  EXPECT_FALSE(kinds().selectedKind());
  EXPECT_TRUE(mapPart() == plain);
  EXPECT_FALSE(screen_.dismiss()) << "there is nothing left";
  click(inKinds(0));
  click(inKinds(0));
  screen_.leave();
  EXPECT_TRUE(mapPart() == plain) << "a second press ends it too";
}

TEST_F(ScanScreenTest, TakesTheCardBackBeforeTheHighlight) {
  click(inKinds(0));
  screen_.motion(at(onMap(photo_), 0));
  screen_.tick(ui::Window::now() + 1000);
  EXPECT_TRUE(screen_.dismiss());
  EXPECT_TRUE(kinds().selectedKind()) << "it was the card's turn";
  EXPECT_TRUE(screen_.dismiss());
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

// The status line.

TEST_F(ScanScreenTest, NamesWhatIsUnderThePointer) {
  EXPECT_EQ(right(), "");
  point(onMap(deep_));
  EXPECT_EQ(right(), "/r/big/inner/deep.txt");
  point(inList(photo_));
  EXPECT_EQ(right(), "/r/photo.jpg");
  point(inKinds(0));
  EXPECT_EQ(right(), "");
  point(onMap(photo_));
  screen_.leave();
  screen_.prepare();
  EXPECT_EQ(right(), "");
}

TEST_F(ScanScreenTest, AddsUpWhatIsSelectedAndCountsNothingTwice) {
  click(onMap(song_));
  point(onMap(deep_));
  EXPECT_EQ(right(), "/r/big/inner/deep.txt") << "one item is not several";
  click(onMap(photo_), 1, true);
  EXPECT_EQ(right(), "2 selected · " + formatSize(90'000));
  click(inList(big_), 1, true);  // holds the song
  EXPECT_EQ(right(), "3 selected · " + formatSize(150'000));
}

TEST_F(ScanScreenTest, TellsOfTheScan) {
  screen_.setScanStatus({.scanning = true});
  screen_.prepare();
  EXPECT_EQ(screen_.statusLine().left(), formatSize(150'000) + " in 3 items  ·  scanning…");
  EXPECT_FALSE(screen_.toolbar().layout().stop.empty());
  EXPECT_TRUE(screen_.toolbar().layout().rescan.empty());
  screen_.setScanStatus({.elapsedSeconds = 1.5, .stopped = true});
  screen_.prepare();
  EXPECT_EQ(screen_.statusLine().left(), formatSize(150'000) + " in 3 items  ·  1.50s  ·  stopped");
  EXPECT_TRUE(screen_.toolbar().layout().stop.empty());
  EXPECT_FALSE(screen_.toolbar().layout().rescan.empty());
}

TEST_F(ScanScreenTest, WaitsForTheFirstNode) {
  sizewalk::FileTree growing(treeOptions());
  screen_.show(&growing);
  screen_.setScanStatus({.scanning = true});
  screen_.setVolumeSpace(VolumeSpace{100, 100});
  EXPECT_EQ(picture().count(rgb(test::kNothingDrawn)), 0);
  EXPECT_EQ(screen_.statusLine().left(), "Scanning…");
  for (const auto keysym : {ui::key::kDown, ui::key::kTab, ui::key::kReturn}) key(keysym);
  clickTwice(screen_.layout().map);
  clickTwice(screen_.layout().list);
  wheel(screen_.layout().map, -1);
  wheel(screen_.layout().map, 1);
  EXPECT_EQ(selected(), Nodes{});
  growing.createRoot("/new");
  screen_.treeChanged();
  screen_.prepare();
  EXPECT_EQ(listed(), Nodes{kRootNode});
  EXPECT_EQ(screen_.toolbar().layout().segments.size(), 1u);
  screen_.show(nullptr);
}

// Measures and settings.

TEST_F(ScanScreenTest, AsksForNoFrameWhileItPreparesOne) {
  screen_.treeChanged();
  changes_ = 0;
  EXPECT_TRUE(screen_.prepare());
  EXPECT_EQ(changes_, 0);
  click(onMap(song_));
  EXPECT_GT(changes_, 0);
}

TEST_F(ScanScreenTest, HasCommandsActOnWhatIsSelected) {
  EXPECT_EQ(screen_.target(), kRootNode);
  click(onMap(song_));
  EXPECT_EQ(screen_.target(), song_);
  wheel(onMap(song_), -1);
  ASSERT_EQ(focus(), big_);
  EXPECT_EQ(screen_.target(), song_) << "the list shows the focused folder now";
  click(inList(photo_), 1, true);
  EXPECT_EQ(screen_.target(), photo_) << "of several the current row";
  click(inList(photo_), 1, true);
  EXPECT_EQ(screen_.target(), song_);
}

TEST_F(ScanScreenTest, HasTheListTakeTheKeysThatOtherPartsHaveNoUseFor) {
  click(onMap(song_));
  ASSERT_TRUE(screen_.key({.keysym = 'p', .text = "p"}));
  screen_.prepare();
  EXPECT_EQ(list().current(), photo_);
}

TEST_F(ScanScreenTest, AddsSizesUpWithinTheirRange) {
  add(*tree_, Listing(empty_)
                  .file("a", std::uint64_t{1} << 62)
                  .file("b", (std::uint64_t{1} << 62) - 1)
                  .file("c", (std::uint64_t{1} << 62) - 5));
  screen_.treeChanged();
  screen_.prepare();
  const NodeId first = tree_->firstChild(empty_);
  screen_.selection().replace(Nodes{first, first + 1, first + 2});
  screen_.prepare();
  EXPECT_EQ(right(), selectionText(3, INT64_MAX));
}

TEST_F(ScanScreenTest, SortsByAnotherMeasureAndKeepsTheSelection) {
  click(onMap(song_));
  ASSERT_EQ(listed(), (Nodes{kRootNode, big_, inner_, song_, photo_, empty_, late_}));
  add(*tree_, Listing(empty_).file("new.txt", 20'000, 20'000, 3000));
  screen_.setMeasure({.measure = Measure::AddedLastMonth});
  screen_.prepare();
  EXPECT_EQ(list().rows().rows()[1].node, empty_) << "the only one of allocated bytes";
  EXPECT_EQ(selected(), Nodes{song_});
  EXPECT_EQ(map().outlineRect(song_), nullptr);
  EXPECT_EQ(screen_.statusLine().left().find(formatSize(20'000)), 0u);
}

TEST_F(ScanScreenTest, PutsTheListAboveTheMap) {
  set({.listAboveMap = true});
  const FrameLayout& frame = screen_.layout();
  EXPECT_EQ(frame.list.w, kWidth);
  EXPECT_GT(frame.map.y, frame.list.y + frame.list.h);
  EXPECT_GT(frame.kinds.x, frame.map.x);
  EXPECT_EQ(map().width, frame.map.w);
  click(onMap(photo_));
  EXPECT_EQ(selected(), Nodes{photo_}) << "presses find the parts where they are now";
  point(frame.mainDivider);
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::ResizeVertical);
}

TEST_F(ScanScreenTest, GivesTheRoomOfHiddenKindsToTheList) {
  const FrameLayout before = screen_.layout();
  set({.showKinds = false});
  EXPECT_TRUE(screen_.layout().kinds.empty());
  EXPECT_EQ(screen_.layout().list.h, before.list.h + before.kinds.h + before.kindsDivider.h);
  click(before.kinds);
  EXPECT_FALSE(kinds().selectedKind());
}

TEST_F(ScanScreenTest, ColoursByRankWhenColoursNeedNotBeTheSameInEveryScan) {
  const auto colourOf = [&](NodeId node) { return colours_.colourForKind(tree_->kind(node)); };
  const auto before = colourOf(deep_);
  const auto mapBefore = map().pixels;
  set({.consistentKindColours = false});
  KindColours byRank(false);
  byRank.setKindSlots(kindSlotsBySize(kinds().rows()));
  EXPECT_EQ(colourOf(deep_), byRank.colourForKind(tree_->kind(deep_)));
  EXPECT_FALSE(map().pixels == mapBefore);
  set({.consistentKindColours = true});
  EXPECT_EQ(colourOf(deep_), before);
  EXPECT_TRUE(map().pixels == mapBefore);
}

TEST_F(ScanScreenTest, ShowsTheRestOfTheVolumeBesideTheScannedFolderOnly) {
  set({.extraBlocks = {.freeSpace = true, .otherSpace = true}});
  const auto extras = [&] {
    return std::ranges::count_if(map().blocks, [](const auto& block) { return block.id < 0; });
  };
  EXPECT_EQ(extras(), 0) << "the volume is not known yet";
  screen_.setVolumeSpace(VolumeSpace{300'000, 100'000});
  screen_.prepare();
  EXPECT_EQ(extras(), 2);
  screen_.focus().go(big_);
  screen_.prepare();
  EXPECT_EQ(extras(), 0);
  screen_.focus().goOut();
  screen_.prepare();
  EXPECT_EQ(extras(), 2);
  set({});
  EXPECT_EQ(extras(), 0);
}

// A tree that grows.

TEST_F(ScanScreenTest, KeepsTheRowUnderThePointerAndTheSelectedOnesWhereTheyAre) {
  fillEmpty(100, 1000);
  const NodeId seen = tree_->firstChild(empty_) + 60;
  click(onMap(seen));
  point(inList(seen));
  const ui::Rect before = inList(seen);
  add(*tree_, Listing(late_).file("large.txt", 500'000));
  screen_.treeChanged();
  screen_.prepare();
  EXPECT_EQ(list().rows().rows()[1].node, late_) << "a row more is above";
  EXPECT_EQ(inList(seen), before);
  EXPECT_EQ(list().hovered(), seen);
  EXPECT_EQ(selected(), Nodes{seen});
  EXPECT_EQ(right(), "/r/empty/f60");
}

// Another tree.

TEST_F(ScanScreenTest, KeepsNothingOfATreeThatIsGone) {
  click(onMap(deep_));
  click(onMap(photo_), 1, true);
  click(inKinds(0));
  screen_.focus().go(inner_);
  screen_.setVolumeSpace(VolumeSpace{300'000, 100'000});
  screen_.prepare();
  point(onMap(deep_));
  screen_.tick(ui::Window::now() + 1000);  // a card
  screen_.press(at(onMap(deep_)));         // and a press that goes on
  screen_.show(nullptr);
  tree_.reset();
  EXPECT_EQ(selected(), Nodes{});
  EXPECT_EQ(focus(), kRootNode);
  EXPECT_FALSE(kinds().selectedKind());
  EXPECT_FALSE(screen_.dismiss());
  EXPECT_EQ(picture().count(rgb(test::kNothingDrawn)), 0);
  EXPECT_EQ(screen_.statusLine().left(), "");
  EXPECT_EQ(right(), "");
  screen_.motion(at(screen_.layout().map, 0));
  screen_.release(at(screen_.layout().map));
  screen_.tick(ui::Window::now() + 2000);
  for (const auto keysym : {ui::key::kDown, ui::key::kReturn, ui::key::kTab, ui::key::kRight,
                            ui::key::kTab, ui::key::kReturn}) {
    key(keysym);
  }
  click(screen_.layout().toolbar);
  click(screen_.layout().list);
  picture();
}

TEST_F(ScanScreenTest, ShowsAnotherTreeFromItsScannedFolderOn) {
  screen_.focus().go(inner_);
  click(inKinds(0));
  point(screen_.layout().map);
  sizewalk::FileTree next(treeOptions());
  next.createRoot("/next");
  add(next, Listing(0).file("one.txt", 10));
  screen_.show(&next);
  tree_.reset();
  screen_.prepare();
  EXPECT_EQ(focus(), kRootNode);
  EXPECT_FALSE(canGoUp());
  EXPECT_EQ(listed(), (Nodes{kRootNode, 1}));
  EXPECT_EQ(kinds().rows().size(), 1u);
  EXPECT_EQ(keyboard(), "list");
  EXPECT_EQ(right(), "") << "where the pointer is counts from its next motion on";
  point(screen_.layout().map);
  EXPECT_EQ(right(), "/next/one.txt");
  screen_.show(nullptr);
}

TEST_F(ScanScreenTest, LetsGoOfWhatIsPressedWhenAnotherTreeIsShown) {
  const FrameLayout frame = screen_.layout();
  // A divider, the button that leaves the scan, and a thumb.
  screen_.press(at(frame.mainDivider));
  screen_.show(tree_.get());
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::Arrow);
  screen_.motion(at(frame.map, 0));
  EXPECT_EQ(screen_.layout().mainDivider, frame.mainDivider);
  const ui::Rect open = screen_.toolbar().layout().open;
  screen_.press(at(open));
  screen_.show(tree_.get());
  screen_.release(at(open));
  EXPECT_TRUE(commands_.empty());
  click(open);
  EXPECT_EQ(commands_, std::vector<Command>{Command::LeaveScan});
}

TEST_F(ScanScreenTest, HasNothingUnderThePointerOnceAnotherScreenWasShown) {
  screen_.leave();
  const auto plain = picture();
  point(onMap(photo_));
  screen_.tick(ui::Window::now() + 1000);
  EXPECT_FALSE(picture() == plain);
  screen_.hide();
  EXPECT_TRUE(picture() == plain);
  point(screen_.layout().mainDivider);
  screen_.hide();
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::Arrow);
}

TEST_F(ScanScreenTest, DoesNotTakeTwoPressesOnTwoTreesForADoubleOne) {
  ui::MouseEvent event = at(onMap(deep_));
  click(event);
  screen_.show(tree_.get());
  screen_.prepare();
  event.clicks = 2;
  click(event);
  EXPECT_EQ(focus(), kRootNode);
}

}  // namespace
}  // namespace app
