#include "app/map/space_labels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "app/map/cushion_kernel.h"
#include "app/map/extra_blocks.h"
#include "app/map/kind_highlight.h"
#include "app/map/treemap_render.h"
#include "tests/app/map/treemap_view_fixture.h"
#include "tests/support/counting_proxy.h"
#include "tests/ui/contrast.h"

namespace app {
namespace {

using Labels = std::vector<SpaceLabel>;

/// Every character is ten pixels wide.
int tenPerCharacter(std::string_view text) {
  return 10 * static_cast<int>(std::ranges::count_if(
                  text, [](char byte) { return (static_cast<unsigned char>(byte) >> 6) != 2; }));
}

const SpaceLabelStyle kTens = {
    .lineHeight = 20, .padding = 5, .leastWidth = 40, .measure = tenPerCharacter};

/// What stands on a block of 5000 bytes of free space.
Labels onBlock(const MapRect& rect) {
  RenderedTreemap map;
  map.blocks.resize(1);
  map.blocks[0].rect = pixelSpan(rect, kMostPixels, kMostPixels);
  map.blocks[0].id = kFreeSpaceBlock;
  map.extras = {0};
  map.extraColours[kFreeSpaceBlock] = {kFreeSpaceBlock, "Free space", 5000, 0x2B3648};
  return spaceLabels(map, kTens);
}

TEST(SpaceLabels, HaveTheSizeBelowTheLabel) {
  EXPECT_EQ(onBlock({10, 20, 200, 100}),
            (Labels{{"Free space", {15, 50, 190, 20}}, {"5.00 kB", {15, 70, 190, 20}}}));
  EXPECT_EQ(onBlock({10, 20, 110, 50}),
            (Labels{{"Free space", {15, 25, 100, 20}}, {"5.00 kB", {15, 45, 100, 20}}}))
      << "it just fits";
}

TEST(SpaceLabels, HaveTheSizeBesideTheLabelWhereThereIsOneLine) {
  EXPECT_EQ(onBlock({0, 0, 200, 49}), (Labels{{"Free space  5.00 kB", {5, 14, 190, 20}}}));
  EXPECT_EQ(onBlock({0, 0, 199, 30}), (Labels{{"Free space", {5, 5, 189, 20}}}));
}

TEST(SpaceLabels, AreShortenedAndDoWithoutASizeThatDoesNotFit) {
  EXPECT_EQ(onBlock({0, 0, 109, 100}),
            (Labels{{"Free spa…", {5, 30, 99, 20}}, {"5.00 kB", {5, 50, 99, 20}}}));
  EXPECT_EQ(onBlock({0, 0, 79, 100}), (Labels{{"Free …", {5, 40, 69, 20}}}))
      << "half a number would be another one";
  EXPECT_EQ(onBlock({0, 0, 50, 30}), (Labels{{"Fre…", {5, 5, 40, 20}}}));
}

TEST(SpaceLabels, AreLeftOutWhereThereIsNoRoom) {
  EXPECT_EQ(onBlock({0, 0, 49, 100}), Labels{});
  EXPECT_EQ(onBlock({0, 0, 400, 29}), Labels{});
  EXPECT_EQ(onBlock({0, 0, 3, 2}), Labels{});
}

TEST(SpaceLabels, StandOnTheBlocksOfWhatIsBesideTheTree) {
  sizewalk::FileTree tree(test::mapTreeOptions());
  test::fillRoot(tree, std::vector<test::MapEntry>(300, file(1000)));
  const auto blocks = extraBlocksFor(VolumeSpace{700'000, 300'000}, 300'000, {true, true});
  ASSERT_EQ(blocks.size(), 2u);
  const auto map = renderTreemap(tree, kRootNode, 600, 400, KindColours(true), blocks, {});
  const Labels labels = spaceLabels(map, kTens);
  ASSERT_EQ(labels.size(), 4u);
  for (const SpaceLabel& label : labels) {
    const bool free = label.text == "Free space" || label.text == "300 kB";
    for (const int x : {label.line.x, label.line.x + label.line.w - 1}) {
      for (const int y : {label.line.y, label.line.y + label.line.h - 1}) {
        EXPECT_EQ(map.blockUnder(x, y)->id, free ? kFreeSpaceBlock : kOtherSpaceBlock);
      }
    }
  }
  const auto without = renderTreemap(tree, kRootNode, 600, 400, KindColours(true), {}, {}, map);
  EXPECT_EQ(spaceLabels(without, kTens), Labels{}) << "in the memory of the last picture";
}

TEST(SpaceLabels, AreMissingWhereTheSpaceIsMergedWithSmallItems) {
  sizewalk::FileTree tree(test::mapTreeOptions());
  test::fillRoot(tree, {file(100'000'000)});
  const std::vector<ExtraBlock> tiny = {{kFreeSpaceBlock, "Free space", 8000, 0x2B3648},
                                        {kOtherSpaceBlock, "Other space in use", 8000, 0x4A4458}};
  const auto map = renderTreemap(tree, kRootNode, 100, 100, KindColours(true), tiny, {});
  ASSERT_TRUE(std::ranges::any_of(map.blocks, [](const auto& block) { return block.id < 0; }));
  SpaceLabelStyle any = kTens;
  any.lineHeight = any.padding = any.leastWidth = 0;
  EXPECT_EQ(spaceLabels(map, any), Labels{});
}

TEST(SpaceLabels, CanBeReadOnTheBlocksAndWhereThoseAreDimmed) {
  const auto blocks = extraBlocksFor(VolumeSpace{700, 300}, 0, {true, true});
  ASSERT_EQ(blocks.size(), 2u);
  for (const ExtraBlock& block : blocks) {
    EXPECT_GE(test::contrast(kSpaceLabelColour, block.colour), 4.5) << block.label;
    EXPECT_GE(test::contrast(kSpaceLabelColour, dimmedPixel(block.colour)), 4.5) << block.label;
  }
}

// On the map in the window.

class SpaceLabelsOnMapTest : public TreemapViewTest {
 protected:
  SpaceLabelsOnMapTest() {
    picture_.setExtraBlocks({{kFreeSpaceBlock, "Free space", 2'000'000, 0x2B3648}});
    view_.setRect(kPlace);
  }

  ui::Rect placeOfSpace() const {
    const auto& map = picture_.rendered();
    return inWindow(map.blocks[map.extras.at(0)].rect);
  }
  static long lettersIn(const test::Picture& picture, const ui::Rect& rect) {
    return picture.part(rect.x, rect.y, rect.w, rect.h).count(kSpaceLabelColour & 0xFFFFFF);
  }
};

TEST_F(SpaceLabelsOnMapTest, AreSeenInTheMiddleOfTheirBlocks) {
  const auto picture = painted();
  const ui::Rect place = placeOfSpace();
  EXPECT_GT(lettersIn(picture, place), 50);
  EXPECT_EQ(lettersIn(picture, place), lettersIn(picture, kWindow));
  const int lines = 2 * style_.lineHeight();
  const int top = place.y + (place.h - lines) / 2;
  EXPECT_EQ(lettersIn(picture, {place.x, top, place.w, lines}), lettersIn(picture, kWindow));
  EXPECT_GT(lettersIn(picture, {place.x, top, place.w, lines / 2}), 0) << "the label";
  EXPECT_GT(lettersIn(picture, {place.x, top + lines / 2, place.w, lines / 2}), 0) << "the size";
}

TEST_F(SpaceLabelsOnMapTest, StayThereUnderThePointerAndGoWithTheSpace) {
  const auto plain = painted();
  const ui::Rect place = placeOfSpace();
  point(place);
  const auto under = painted();
  EXPECT_FALSE(under == plain) << "it is outlined";
  const ui::Rect inside = {place.x + 2, place.y + 2, place.w - 4, place.h - 4};
  EXPECT_EQ(lettersIn(under, inside), lettersIn(plain, inside));
  view_.leave();
  picture_.setExtraBlocks({});
  picture_.markDirty();
  EXPECT_EQ(lettersIn(painted(), kWindow), 0);
}

TEST_F(SpaceLabelsOnMapTest, MoveWithTheMapAndFitIntoASmallerOne) {
  const auto before = painted().part(kPlace.x, kPlace.y, kPlace.w, kPlace.h);
  ASSERT_GT(lettersIn(before, {0, 0, kPlace.w, kPlace.h}), 0);
  const ui::Rect next = {kPlace.x + 30, kPlace.y + 40, kPlace.w, kPlace.h};
  view_.setRect(next);
  EXPECT_EQ(painted().part(next.x, next.y, next.w, next.h), before);
  view_.setRect({40, 30, 200, 12});
  EXPECT_EQ(lettersIn(painted(), kWindow), 0);
}

/// They are drawn by the server, from letters that it has.
TEST(SpaceLabelTraffic, IsNextToNothingWhenThePointerMoves) {
  constexpr ui::Rect kWholeWindow{0, 0, 800, 600};
  const test::XServer server;
  const test::CountingProxy proxy(server.display());
  const auto connection = ui::Connection::open();
  ASSERT_NE(connection, nullptr);
  ui::Window window(*connection);
  ASSERT_TRUE(window.create("map", kWholeWindow.w, kWholeWindow.h));
  const ui::Style style(*connection, ui::kDarkPalette);
  const auto tree = std::make_shared<sizewalk::FileTree>();
  test::fillRoot(*tree, {file(1000), file(900)});
  KindColours colours(true);
  TreemapPicture picture(*connection, colours);
  MapFocus focus;
  Selection selection;
  TreemapView view(style, picture, focus, selection);
  view.setRect(kWholeWindow);
  picture.setExtraBlocks({{kFreeSpaceBlock, "Free space", 5000, 0x2B3648}});
  picture.show(tree, kRootNode);
  picture.update();
  view.refresh();
  window.onPrepare = [&] { picture.update(); };
  window.onPaint = [&](ui::Canvas& canvas) {
    view.paint(canvas);
    window.quit();
  };
  const test::TempDirectory directory;
  const auto bytesOfFrame = [&] {
    const std::uint64_t before = proxy.bytesToServer();
    window.invalidate();
    window.run();
    EXPECT_TRUE(window.capture(directory.path() + "/frame"));  // waits for the server
    return proxy.bytesToServer() - before;
  };
  ASSERT_EQ(picture.rendered().extras.size(), 1u);
  bytesOfFrame();
  for (const int x : {20, 400, 790}) {
    view.motion({.x = x, .y = 300});
    EXPECT_LT(bytesOfFrame(), 5000u);
  }
}

}  // namespace
}  // namespace app
