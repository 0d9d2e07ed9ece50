// A scan as the whole window: how it follows measures, settings and the tree.

#include "app/frame/scan_screen.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/model/format.h"
#include "tests/app/frame/scan_screen_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

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

TEST_F(ScanScreenTest, NamesTheCurrentRowAfterAKeyUntilThePointerMoves) {
  point(inList(photo_));
  key(ui::key::kDown);
  EXPECT_EQ(right(), "/r/big");
  point(inList(photo_));
  EXPECT_EQ(right(), "/r/big") << "the pointer is where it was";
  screen_.motion({.x = inList(photo_).x + 1, .y = inList(photo_).y + 1});
  screen_.prepare();
  EXPECT_EQ(right(), "/r/photo.jpg");
  EXPECT_FALSE(key(ui::key::kF5)) << "which means nothing here";
  EXPECT_EQ(right(), "/r/photo.jpg");
}

TEST_F(ScanScreenTest, SaysOfWhatItNamesThatItCannotBeRead) {
  add(*tree_, Listing(late_).unreadable());
  screen_.treeChanged();
  point(inList(late_));
  EXPECT_EQ(right(), "/r/late - cannot be read");
  key(ui::key::kEnd);
  EXPECT_EQ(right(), "/r/late - cannot be read");
  key(ui::key::kUp);
  EXPECT_EQ(right(), "/r/empty");
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
  EXPECT_FALSE(screen_.toolbar().layout().place(Action::StopScan).empty());
  EXPECT_TRUE(screen_.toolbar().layout().place(Action::Rescan).empty());
  screen_.setScanStatus({.elapsedSeconds = 1.5, .stopped = true});
  screen_.prepare();
  EXPECT_EQ(screen_.statusLine().left(), formatSize(150'000) + " in 3 items  ·  1.50s  ·  stopped");
  EXPECT_TRUE(screen_.toolbar().layout().place(Action::StopScan).empty());
  EXPECT_FALSE(screen_.toolbar().layout().place(Action::Rescan).empty());
}

TEST_F(ScanScreenTest, TellsInTheToolbarWhatTheFocusedFolderHolds) {
  const auto told = [&] { return screen_.toolbar().figures().text; };
  EXPECT_EQ(told(), "150 kB · 3 items");
  screen_.focus().go(inner_);
  screen_.prepare();
  EXPECT_EQ(told(), "60.0 kB · 1 item");
  screen_.focus().go(big_);
  screen_.prepare();
  EXPECT_EQ(told(), "100 kB · 2 items");
  add(*tree_, Listing(inner_).file("found now", 20'000, 20'000, 3000).file("and this", 5'000));
  screen_.treeChanged();
  screen_.prepare();
  EXPECT_EQ(told(), "125 kB · 4 items");
  screen_.setMeasure({.measure = Measure::AddedLastMonth});
  screen_.prepare();
  EXPECT_EQ(told(), "20.0 kB · 4 items");
  screen_.show(nullptr);
  EXPECT_EQ(told(), "");
}

TEST_F(ScanScreenTest, WaitsForTheFirstNode) {
  const auto growing = std::make_shared<sizewalk::FileTree>(treeOptions());
  screen_.show(growing);
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
  growing->createRoot("/new");
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
  ASSERT_TRUE(screen_.key({.keysym = 'p', .text = {}, .typed = "p"}));
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

TEST_F(ScanScreenTest, ShowsHowFarTheScanOfAWholeDiskIs) {
  add(*tree_, Listing(empty_).file("new.txt", 20'000, 50'000));
  screen_.setScanStatus({.scanning = true});
  const ui::Rect bar = screen_.layout().toolbar;
  const auto length = [&] {
    const test::Picture shown = picture();
    return part(shown, {0, bar.h - 2, kWidth, 2}).count(rgb(style.palette().accent)) / 2;
  };
  EXPECT_EQ(length(), 0);
  screen_.setVolumeSpace(VolumeSpace{200'000, 100'000});
  EXPECT_EQ(length(), 0) << "a folder of the disk";
  screen_.setVolumeSpace(VolumeSpace{200'000, 100'000, true});
  EXPECT_EQ(length(), kWidth / 4);
  add(*tree_, Listing(late_).file("more.txt", 1, 50'000));
  screen_.treeChanged();
  changes_ = 0;
  screen_.prepare();
  EXPECT_EQ(changes_, 0) << "it asks for no frame of its own";
  EXPECT_EQ(length(), kWidth / 2);
  screen_.setScanStatus({.elapsedSeconds = 1});
  EXPECT_EQ(length(), 0);
}

TEST_F(ScanScreenTest, LeavesWhatTheFolderTakesOnDiskOutOfTheOtherSpaceUnderEveryMeasure) {
  add(*tree_, Listing(empty_).file("old.txt", 5'000, 80'000, 1).file("new.txt", 7, 20'000, 3000));
  set({.extraBlocks = {.otherSpace = true}});
  screen_.setVolumeSpace(VolumeSpace{900'000, 100'000});
  const auto onDisk = static_cast<std::int64_t>(tree_->allocatedSize(kRootNode));
  ASSERT_GE(onDisk, 100'000);
  for (const int measure : {0, 1, 2, 3}) {
    for (const bool physical : {false, true}) {
      screen_.setMeasure({static_cast<Measure>(measure), physical});
      screen_.prepare();
      ASSERT_TRUE(map().extraColours.contains(kOtherSpaceBlock)) << measure;
      EXPECT_EQ(map().extraColours.at(kOtherSpaceBlock).size, 900'000 - onDisk)
          << "measure " << measure << (physical ? " on disk" : " by length");
    }
  }
}

TEST_F(ScanScreenTest, LaysTheMapOutAnewOnlyForWhatTheMapShows) {
  // A new layout leaves out what was taken out behind the screen's back.
  const auto laysOut = [&](const std::function<void()>& act) {
    EXPECT_NE(map().outlineRect(photo_), nullptr);
    const auto record = tree_->removeSubtree(photo_);
    act();
    screen_.prepare();
    const bool anew = map().outlineRect(photo_) == nullptr;
    tree_->restoreSubtree(record);
    screen_.showAllInNextFrame();
    screen_.prepare();
    return anew;
  };
  const auto sets = [&](const ScanScreenSettings& settings) {
    return laysOut([&] { screen_.setSettings(settings); });
  };
  ScanScreenSettings settings;
  EXPECT_FALSE(sets(settings)) << "as they are";
  settings.showKinds = false;
  EXPECT_FALSE(sets(settings)) << "the list takes the room of the kinds";
  settings.extraBlocks = {.freeSpace = true, .otherSpace = true};
  EXPECT_FALSE(sets(settings)) << "the volume is not known";
  EXPECT_FALSE(laysOut([&] { screen_.setMeasure({}); })) << "the same measure";
  settings.consistentKindColours = false;
  EXPECT_TRUE(sets(settings));
  settings.listAboveMap = true;
  EXPECT_TRUE(sets(settings));
  settings.showKinds = true;
  EXPECT_TRUE(sets(settings)) << "the kinds are beside the map now";
  screen_.setMeasure({Measure::CurrentSize, true});
  screen_.prepare();
  EXPECT_EQ(map().outlineRect(photo_), nullptr) << "it takes nothing on disk";
  screen_.setMeasure({});
  screen_.prepare();
  screen_.setVolumeSpace(VolumeSpace{300'000, 100'000});
  screen_.prepare();
  settings.extraBlocks.freeSpace = false;
  EXPECT_TRUE(sets(settings));
  EXPECT_FALSE(sets(settings));
}

TEST_F(ScanScreenTest, SaysThatTheFolderInFocusIsEmptyWhileItsOnlyItemIsTakenOut) {
  screen_.focus().go(inner_);
  for (const bool scanning : {false, true}) {
    screen_.setScanStatus({.scanning = scanning});
    screen_.prepare();
    ASSERT_EQ(screen_.map().notice(), "");
    const auto record = tree_->removeSubtree(deep_);
    screen_.treeChanged();
    screen_.prepare();
    EXPECT_EQ(focus(), inner_);
    EXPECT_EQ(screen_.map().notice(), "This folder is empty") << scanning;
    tree_->restoreSubtree(record);
    screen_.treeChanged();
    screen_.prepare();
    EXPECT_EQ(screen_.map().notice(), "");
    EXPECT_NE(map().outlineRect(deep_), nullptr);
  }
}

TEST_F(ScanScreenTest, SaysWhatAMapWithoutBlocksMeansOnceTheScanHasEnded) {
  screen_.setScanStatus({.scanning = true});
  screen_.setMeasure({.measure = Measure::AddedSinceLastScan});
  screen_.prepare();
  EXPECT_EQ(screen_.map().notice(), "");
  screen_.setScanStatus({.scannedBefore = false});
  EXPECT_EQ(screen_.map().notice(), "This folder was not scanned before");
  screen_.setScanStatus({.scannedBefore = true});
  EXPECT_EQ(screen_.map().notice(), "Nothing here was added since the last scan");
  screen_.setMeasure({});
  screen_.prepare();
  EXPECT_EQ(screen_.map().notice(), "");
  const auto nothing = std::make_shared<sizewalk::FileTree>();
  nothing->createRoot("/nothing");
  screen_.show(nothing);
  screen_.prepare();
  EXPECT_EQ(screen_.map().notice(), "This folder is empty");
  screen_.show(nullptr);
  screen_.prepare();
  EXPECT_EQ(screen_.map().notice(), "");
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
  EXPECT_EQ(tree_.use_count(), 1) << "nobody holds it any more";
  tree_.reset();
  EXPECT_EQ(selected(), Nodes{});
  EXPECT_EQ(focus(), kRootNode);
  EXPECT_FALSE(kinds().selectedKind());
  EXPECT_FALSE(key(ui::key::kEscape));
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

TEST_F(ScanScreenTest, LetsGoOfWhatIsTakenOut) {
  screen_.focus().go(inner_);
  screen_.selection().replace(Nodes{song_, deep_, photo_});
  screen_.prepare();
  EXPECT_EQ(right(), "3 selected · " + formatSize(150'000));
  ASSERT_TRUE(tree_->removeSubtree(inner_).valid);
  screen_.treeChanged();
  screen_.prepare();
  EXPECT_EQ(selected(), (Nodes{photo_, song_}));
  EXPECT_EQ(right(), "2 selected · " + formatSize(90'000));
  EXPECT_EQ(focus(), big_) << "the nearest folder that is left";
  EXPECT_EQ(map().root, big_);
  EXPECT_EQ(screen_.toolbar().layout().segments.size(), 2u);
  ASSERT_TRUE(tree_->removeSubtree(big_).valid);
  screen_.treeChanged();
  screen_.prepare();
  EXPECT_EQ(selected(), Nodes{photo_});
  EXPECT_EQ(screen_.target(), photo_);
  EXPECT_EQ(focus(), kRootNode);
}

TEST_F(ScanScreenTest, ShowsAnotherTreeFromItsScannedFolderOn) {
  screen_.focus().go(inner_);
  click(inKinds(0));
  point(screen_.layout().map);
  const auto next = std::make_shared<sizewalk::FileTree>(treeOptions());
  next->createRoot("/next");
  add(*next, Listing(0).file("one.txt", 10));
  screen_.show(next);
  tree_.reset();
  screen_.prepare();
  EXPECT_EQ(focus(), kRootNode);
  EXPECT_FALSE(canGoUp());
  EXPECT_EQ(listed(), (Nodes{kRootNode, 1}));
  EXPECT_EQ(kinds().rows().size(), 1u);
  EXPECT_EQ(right(), "") << "where the pointer is counts from its next motion on";
  point(screen_.layout().map);
  EXPECT_EQ(right(), "/next/one.txt");
  EXPECT_EQ(keyboard(), "list");
  screen_.show(nullptr);
}

TEST_F(ScanScreenTest, KeepsNoTreeThatIsShownNoMore) {
  screen_.focus().go(inner_);
  point(screen_.layout().map);
  ASSERT_GT(tree_.use_count(), 1);
  screen_.show(nullptr);
  EXPECT_EQ(tree_.use_count(), 1);
}

TEST_F(ScanScreenTest, LetsGoOfWhatIsPressedWhenAnotherTreeIsShown) {
  const FrameLayout frame = screen_.layout();
  // A divider, the button that leaves the scan, and a thumb.
  screen_.press(at(frame.mainDivider));
  screen_.show(tree_);
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::Arrow);
  screen_.motion(at(frame.map, 0));
  EXPECT_EQ(screen_.layout().mainDivider, frame.mainDivider);
  const ui::Rect open = screen_.toolbar().layout().place(Action::LeaveScan);
  screen_.press(at(open));
  screen_.show(tree_);
  screen_.release(at(open));
  EXPECT_TRUE(commands_.empty());
  click(open);
  EXPECT_EQ(commands_, std::vector<Command>{{.action = Action::LeaveScan}});
}

TEST_F(ScanScreenTest, HasNothingUnderThePointerOnceAnotherScreenWasShown) {
  screen_.leave();
  const auto plain = picture();
  point(onMap(photo_));
  screen_.tick(ui::Window::now() + 1000);
  EXPECT_FALSE(picture() == plain);
  screen_.releasePointer();
  EXPECT_TRUE(picture() == plain);
  point(screen_.layout().mainDivider);
  screen_.releasePointer();
  EXPECT_EQ(screen_.pointer(), ui::PointerShape::Arrow);
}

TEST_F(ScanScreenTest, DoesNotTakeTwoPressesOnTwoTreesForADoubleOne) {
  ui::MouseEvent event = at(onMap(deep_));
  click(event);
  screen_.show(tree_);
  screen_.prepare();
  event.clicks = 2;
  click(event);
  EXPECT_EQ(focus(), kRootNode);
}

class ScanScreenUpdateTest : public ScanScreenTest {
 protected:
  ScanScreenUpdateTest() {
    screen_.onDownload = [this] { told_.emplace_back("download"); };
    screen_.onDismissUpdate = [this] {
      told_.emplace_back("dismiss");
      screen_.setUpdate(std::nullopt);
    };
  }
  const UpdateBar& bar() { return screen_.updateBar(); }
  void tell() {
    screen_.setUpdate("Version 1.2.0 is there.");
    screen_.prepare();
  }

  std::vector<std::string> told_;
};

TEST_F(ScanScreenUpdateTest, HasALineUnderTheToolbarOnlyWhileThereIsAnUpdate) {
  const FrameLayout without = screen_.layout();
  tell();
  const FrameLayout with = screen_.layout();
  EXPECT_EQ(bar().rect(), with.update);
  EXPECT_EQ(with.update.y, without.list.y);
  EXPECT_EQ(with.update.h, bar().wantedHeight());
  EXPECT_EQ(with.list.y, with.update.y + with.update.h);
  EXPECT_EQ(picture().count(rgb(test::kNothingDrawn)), 0);
  screen_.setUpdate(std::nullopt);
  EXPECT_EQ(screen_.layout().map, without.map);
}

TEST_F(ScanScreenUpdateTest, HandsItsButtonsOnAndGoesWhileOneIsPressed) {
  tell();
  for (const ui::Rect rect : {bar().downloadRect(), bar().dismissRect()}) {
    point(onMap(photo_));
    point(rect);
    click(rect);
  }
  EXPECT_EQ(told_, (std::vector<std::string>{"download", "dismiss"}));
  EXPECT_TRUE(bar().rect().empty());
  EXPECT_EQ(keyboard(), "list");
}

TEST_F(ScanScreenUpdateTest, TakesNoPressAtOnceWhenTheLineAppearsUnderThePointer) {
  tell();
  const ui::Rect place = bar().downloadRect();
  screen_.setUpdate(std::nullopt);
  point(place);
  tell();
  click(place);
  EXPECT_EQ(told_, std::vector<std::string>{});
}

TEST_F(ScanScreenUpdateTest, TakesNoPressAtOnceWhereAMenuWasPressed) {
  point(onMap(photo_));
  screen_.releasePointer();  // the menu opens, and where the pointer goes is not seen
  tell();
  point(bar().downloadRect());
  click(bar().downloadRect());
  EXPECT_EQ(told_, std::vector<std::string>{});
}

TEST_F(ScanScreenTest, TellsOfTheCurrentRowAfterAKeyThatIsACommand) {
  screen_.focus().go(big_);
  screen_.prepare();
  point(screen_.layout().status);
  point(onMap(song_));
  ASSERT_NE(right().find("song.mp3"), std::string::npos);
  EXPECT_FALSE(key(ui::key::kBackSpace)) << "the window goes out then";
  screen_.focus().goOut();
  screen_.prepare();
  ASSERT_EQ(list().current(), kRootNode);
  EXPECT_EQ(right(), "/r");
}

}  // namespace
}  // namespace app
