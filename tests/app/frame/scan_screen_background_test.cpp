// A scan as the whole window, whose map is drawn in the background.

#include <stdexcept>

#include "app/lists/folder_row_painting.h"
#include "tests/app/frame/scan_screen_fixture.h"
#include "tests/support/eventually.h"
#include "tests/support/posted_tasks.h"

namespace app {
namespace {

/// Before the screen, which ends its pictures first.
struct HasTasks {
  test::PostedTasks tasks_;
};

class ScanScreenBackgroundTest : private HasTasks, public ScanScreenTest {
 protected:
  ScanScreenBackgroundTest() : ScanScreenTest(tasks_.post()) {}

  /// Has the screen look at a tree that has grown; its picture is made, but not taken yet.
  void growTree(const std::string& name, std::uint64_t size) {
    add(*tree_, Listing(late_).file(name, size));
    screen_.treeChanged();
    screen_.prepare();
    ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  }
  /// With all the bands that it is sent in.
  void takePicture() {
    while (tasks_.count() > 0) {
      tasks_.run();
      screen_.prepare();
    }
  }

  /// The colours that a kind has now: in the list, in the table, and on the map before shading.
  struct Seen {
    std::uint32_t list;
    std::uint32_t table;
    std::uint32_t map;
  };
  Seen coloursOf(NodeId node) {
    const test::Picture frame = picture();
    const std::size_t row = list().rows().find(node).value();
    const ui::Rect inList =
        folderRowPlaces(style, list().rowRect(row), list().rows().rows()[row].depth).swatch;
    const auto kind = std::ranges::find(kinds().rows(), tree_->kind(node), &KindRow::kind) -
                      kinds().rows().begin();
    const ui::Rect inTable = kinds().rowRect(static_cast<std::size_t>(kind));
    return {frame.at(inList.x + inList.w / 2, inList.y + inList.h / 2),
            frame.at(kinds().columns().swatchX + 4, inTable.y + inTable.h / 2), onMapColour(node)};
  }
  std::uint32_t onMapColour(NodeId node) const {
    const auto block =
        std::ranges::find(map().blocks, static_cast<std::int32_t>(node), &PictureBlock::id);
    if (block == map().blocks.end()) throw std::runtime_error("not on the map");
    return map().kindColours.colourForKind(block->kind) & 0xFFFFFF;
  }
  void expectOneColour(NodeId node) {
    const Seen seen = coloursOf(node);
    EXPECT_EQ(seen.list, seen.map);
    EXPECT_EQ(seen.table, seen.map);
  }
};

TEST_F(ScanScreenBackgroundTest, HasOneColourForAKindEverywhereWhileRanksChange) {
  set({.consistentKindColours = false});
  click(onMap(photo_));
  expectOneColour(photo_);
  const std::uint32_t before = onMapColour(photo_);
  growTree("book.pdf", 1'000'000);  // now the first of all kinds
  expectOneColour(photo_);
  EXPECT_EQ(onMapColour(photo_), before) << "the last picture is still there";
  takePicture();
  expectOneColour(photo_);
  EXPECT_NE(onMapColour(photo_), before);
}

TEST_F(ScanScreenBackgroundTest, HasOneColourForAKindWhereAPictureIsOvertaken) {
  set({.consistentKindColours = false});
  growTree("book.pdf", 1'000'000);
  const auto before = onMapColour(photo_);
  screen_.focus().go(big_);  // drawn at once, with the ranks of now
  screen_.prepare();
  screen_.focus().goOut();
  screen_.prepare();
  EXPECT_NE(onMapColour(photo_), before);
  expectOneColour(photo_);
  takePicture();
  expectOneColour(photo_);
}

TEST_F(ScanScreenBackgroundTest, ShowsTheKindsOwnColoursWithTheNextFrame) {
  set({.consistentKindColours = false});
  growTree("book.pdf", 1'000'000);
  set({.consistentKindColours = true});
  expectOneColour(photo_);
  EXPECT_EQ(onMapColour(photo_), KindColours(true).colourForKind(tree_->kind(photo_)) & 0xFFFFFF);
  takePicture();
  expectOneColour(photo_);
}

}  // namespace
}  // namespace app
