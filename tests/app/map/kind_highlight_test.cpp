#include "app/map/kind_highlight.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "app/map/cushion_shading.h"
#include "app/map/drawn_kind.h"
#include "app/map/treemap_render.h"
#include "sizewalk/file_kinds.h"
#include "tests/app/map/map_tree.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::file;
using test::fill;
using test::fillRoot;
using test::folder;

constexpr sizewalk::KindIndex kPdf = 5;
constexpr sizewalk::KindIndex kJpeg = 8;
constexpr MeasureSettings kLengths;
constexpr MeasureSettings kOnDisk = {Measure::CurrentSize, true};

RenderedTreemap draw(const FileTree& tree, int width, int height,
                     const MeasureSettings& measure = kLengths,
                     const std::vector<ExtraBlock>& extraBlocks = {}) {
  return renderTreemap(tree, kRootNode, width, height, KindColours(true), extraBlocks, measure);
}

/// Highlights `kind` and checks every pixel: those of the blocks in `kept` stay, all others are
/// dimmed.
void expectKept(const RenderedTreemap& map, sizewalk::KindIndex kind,
                const std::set<std::size_t>& kept) {
  std::vector<std::uint32_t> pixels = {1, 2, 3};  // of an earlier, smaller map
  highlightKind(map, kind, &pixels);
  ASSERT_EQ(pixels.size(), map.pixels.size());
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const bool keeps = map.blockAt[i] != kNoBlock && kept.contains(map.blockAt[i]);
    ASSERT_EQ(pixels[i], keeps ? map.pixels[i] : dimmedPixel(map.pixels[i])) << "pixel " << i;
  }
}

/// The painted block with this id, which is in sight.
std::size_t blockOf(const RenderedTreemap& map, std::int32_t id) {
  const auto block = std::ranges::find_if(
      map.blocks, [&](const PictureBlock& b) { return b.id == id && b.painted; });
  const auto index = static_cast<std::size_t>(block - map.blocks.begin());
  EXPECT_NE(std::ranges::find(map.blockAt, index), map.blockAt.end()) << "no pixel of " << id;
  return index;
}

TEST(DimmedPixel, IsAQuarterOfTheColourOverDarkGrey) {
  EXPECT_EQ(dimmedPixel(0x000000), 0x151515u);
  EXPECT_EQ(dimmedPixel(0xFFFFFF), 0x545454u);
  EXPECT_EQ(dimmedPixel(0xFF0000), 0x541515u);
  EXPECT_EQ(dimmedPixel(0x03FF80), 0x155435u) << "no channel reaches into the next";
  EXPECT_EQ(dimmedPixel(kMapBackground), 0x1C1C1Cu);
}

TEST(KindHighlight, KeepsTheBlocksOfTheKindAndDimsTheOthers) {
  FileTree tree;
  const auto folders =
      fillRoot(tree, {file(1000, kPdf), file(700, kJpeg), folder(), file(500, kPdf)});
  fill(tree, folders.front(), {file(800, kPdf), file(900, kJpeg)});
  const NodeId outer = tree.firstChild(kRootNode);
  const NodeId inner = tree.firstChild(folders.front());
  const auto map = draw(tree, 120, 80);
  const auto at = [&](NodeId node) { return blockOf(map, static_cast<std::int32_t>(node)); };
  expectKept(map, kPdf, {at(outer), at(outer + 3), at(inner)});
  expectKept(map, kJpeg, {at(outer + 1), at(inner + 1)});
}

TEST(KindHighlight, DimsEverythingWhenThereIsNothingOfTheKind) {
  FileTree tree;
  fillRoot(tree, {file(1000, kPdf), file(700, kJpeg)});
  expectKept(draw(tree, 60, 40), sizewalk::otherKind, {});
}

/// A folder of 2 x 4 pixels, which is drawn as one block.
TEST(KindHighlight, CountsAFolderDrawnAsOneBlockAsWhatFillsIt) {
  FileTree tree;
  const auto folders = fillRoot(tree, {file(24, kJpeg), folder()});
  fill(tree, folders.front(), {file(2, kJpeg), file(6, kPdf)});
  const auto map = draw(tree, 8, 4);
  const std::size_t block = blockOf(map, static_cast<std::int32_t>(folders.front()));
  ASSERT_EQ(map.blocks[block].reason, BlockReason::tooSmall);
  expectKept(map, kPdf, {block});
  expectKept(map, sizewalk::kKindFolder, {});
}

/// The same with entries that have no length, by size on disk.
TEST(KindHighlight, CountsAFolderThatNothingFillsAsTheKindOfItsColour) {
  FileTree tree;
  const auto folders = fillRoot(tree, {file(24, kJpeg), folder()});
  fill(tree, folders.front(), {{kPdf, 0, 8}});
  const auto map = draw(tree, 8, 4, kOnDisk);
  const std::size_t block = blockOf(map, static_cast<std::int32_t>(folders.front()));
  ASSERT_EQ(map.blocks[block].kind, sizewalk::otherKind);
  expectKept(map, sizewalk::otherKind, {block});
  expectKept(map, sizewalk::kKindFolder, {});
}

/// What shines is what is seen in the colour of the kind, whatever the tree holds by now.
TEST(KindHighlight, GoesByTheTreeAsItWasWhenTheMapWasMade) {
  FileTree tree;
  const auto folders = fillRoot(tree, {file(24, kJpeg), folder()});
  const auto inner = fill(tree, folders.front(), {file(2, kJpeg), file(6, kPdf), folder()});
  const auto map = draw(tree, 8, 4);
  const std::size_t block = blockOf(map, static_cast<std::int32_t>(folders.front()));
  fill(tree, inner.front(), {file(100, kJpeg)});
  ASSERT_EQ(drawnKind(tree, folders.front(), kLengths), kJpeg)
      << "it is filled by another kind now";
  expectKept(map, kPdf, {block});
}

TEST(KindHighlight, DimsMergedItemsOfTheKind) {
  FileTree tree;
  std::vector<test::MapEntry> entries(20, file(60, kPdf));
  entries.push_back(file(1'000'000, kJpeg));
  fillRoot(tree, entries);
  const auto map = draw(tree, 100, 100);
  ASSERT_TRUE(std::ranges::any_of(map.blocks, [](const auto& b) { return b.restCount == 20; }));
  expectKept(map, kPdf, {});
}

TEST(KindHighlight, DimsWhatIsBesideTheTree) {
  FileTree tree;
  fillRoot(tree, {file(1000, kPdf)});
  const auto map = draw(tree, 80, 60, kLengths,
                        {{kFreeSpaceBlock, "Free space", 500, 0x2B3648},
                         {kOtherSpaceBlock, "Other space in use", 400, 0x4A4458}});
  blockOf(map, kFreeSpaceBlock);
  blockOf(map, kOtherSpaceBlock);
  const auto file = static_cast<std::int32_t>(tree.firstChild(kRootNode));
  expectKept(map, kPdf, {blockOf(map, file)});
}

TEST(KindHighlight, DimsTheBackground) {
  FileTree tree;
  fillRoot(tree, {file(1000, kPdf)});
  RenderedTreemap map = draw(tree, 40, 30);
  for (std::size_t i = 0; i < 100; ++i) {
    map.pixels[i] = kMapBackground;
    map.blockAt[i] = kNoBlock;
  }
  const auto file = static_cast<std::int32_t>(tree.firstChild(kRootNode));
  expectKept(map, kPdf, {blockOf(map, file)});
}

TEST(KindHighlight, HasNoPixelsOfAnEmptyMap) {
  FileTree tree;
  fillRoot(tree, {file(1000, kPdf)});
  expectKept(draw(tree, 0, 40), kPdf, {});
}

}  // namespace
}  // namespace app
