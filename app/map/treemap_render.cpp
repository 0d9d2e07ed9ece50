#include "app/map/treemap_render.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "app/map/cushion_shading.h"
#include "sizewalk/file_kinds.h"

namespace app {

using sizewalk::FileTree;
using sizewalk::KindIndex;
using sizewalk::NodeId;
using sizewalk::NodeRange;

namespace {

// Bounds that keep colouring cheap where folders are huge; what lies beyond them is not looked at.
constexpr NodeId kChildrenLookedAt = 256;
constexpr int kLevelsLookedAt = 8;

/// Blocks coloured in one go by one thread. Most take nanoseconds, a folder drawn as one block
/// microseconds.
constexpr std::size_t kBlocksPerPiece = 4096;
static_assert(kBlocksPerPiece % kRunLength == 0);

std::optional<NodeId> largestChild(const FileTree& tree, NodeId folder,
                                   const MeasureSettings& measure) {
  const NodeRange children = tree.children(folder);
  const NodeId end = children.first + std::min(children.size(), kChildrenLookedAt);
  std::optional<NodeId> largest;
  std::int64_t most = 0;
  for (NodeId child = children.first; child < end; ++child) {
    const std::int64_t value = measureValue(tree, child, measure);
    if (value <= most) continue;
    most = value;
    largest = child;
  }
  return largest;
}

using ExtraColours = std::unordered_map<std::int32_t, ExtraBlock>;

/// Chooses the blocks' kinds and colours during one render, on several threads at once.
class BlockPainter {
 public:
  BlockPainter(const FileTree& tree, const MeasureSettings& measure, const KindColours& colours,
               const ExtraColours& extraColours)
      : tree_(tree), measure_(measure), colours_(colours), extraColours_(extraColours) {
    for (KindIndex kind = 0; kind < sizewalk::kKindCount; ++kind) {
      table_[kind] = colours.colourForKind(kind);
    }
  }

  /// Once for each block, on one thread or another, so that a block that two threads shade has one
  /// colour even where the tree changes meanwhile. Fills `colours` and `kinds` of the map.
  void chooseColours(unsigned threads, RenderedTreemap* map, std::vector<RunRows>* rows) const {
    const std::span<const TreemapBlock> blocks = map->blocks;
    map->colours.resize(blocks.size());
    map->kinds.resize(blocks.size());
    rows->resize(runCount(blocks.size()));
    const std::size_t pieces = (blocks.size() + kBlocksPerPiece - 1) / kBlocksPerPiece;
    forEachOnThreads(pieces, threads, [&](std::size_t piece) {
      const std::size_t end = std::min(blocks.size(), (piece + 1) * kBlocksPerPiece);
      for (std::size_t i = piece * kBlocksPerPiece; i < end; ++i) {
        choose(blocks[i], &map->colours[i], &map->kinds[i]);
      }
      const std::size_t first = piece * kBlocksPerPiece;
      findRunRows(blocks.subspan(first, end - first),
                  std::span(*rows).subspan(first / kRunLength, runCount(end - first)));
    });
  }

 private:
  void choose(const TreemapBlock& block, std::uint32_t* colour, KindIndex* kind) const {
    *colour = 0;
    *kind = sizewalk::kNoKind;
    if (!block.painted) return;
    if (block.id < 0) {
      *colour = extraColours_.at(block.id).colour;
      return;
    }
    const KindIndex drawn = drawnKind(tree_, static_cast<NodeId>(block.id), measure_);
    *colour = colourOfKind(drawn);
    if (block.restCount == 0) *kind = drawn;
  }

  std::uint32_t colourOfKind(KindIndex kind) const {
    return kind < sizewalk::kKindCount ? table_[kind] : colours_.colourForKind(kind);
  }

  const FileTree& tree_;
  const MeasureSettings& measure_;
  const KindColours& colours_;
  const ExtraColours& extraColours_;
  /// Looked up once for each kind: ranked colours take a hash look-up, and there are blocks by the
  /// hundred thousand.
  std::array<std::uint32_t, sizewalk::kKindCount> table_;
};

void findExtras(RenderedTreemap* map) {
  for (std::uint32_t i = 0; i < map->blocks.size(); ++i) {
    const TreemapBlock& block = map->blocks[i];
    if (block.id < 0 && block.restCount == 0) map->extras.push_back(i);
  }
}

}  // namespace

KindIndex dominantKind(const FileTree& tree, NodeId folder, const MeasureSettings& measure) {
  // The descent goes by length even where sizes on disk are shown.
  const MeasureSettings lengths = {measure.measure, false};
  NodeId current = folder;
  int levels = 0;
  while (tree.isDirectory(current)) {
    const std::optional<NodeId> pick = largestChild(tree, current, lengths);
    if (!pick) break;
    ++levels;
    if (!tree.isDirectory(*pick) || levels == kLevelsLookedAt) return tree.kind(*pick);
    current = *pick;
  }
  return tree.kind(current);
}

KindIndex drawnKind(const FileTree& tree, NodeId node, const MeasureSettings& measure) {
  const KindIndex own = tree.kind(node);
  if (own != sizewalk::kKindFolder) return own;
  const KindIndex filling = dominantKind(tree, node, measure);
  return filling == sizewalk::kKindFolder ? sizewalk::otherKind : filling;
}

RenderedTreemap renderTreemap(const FileTree& tree, NodeId root, std::int32_t width,
                              std::int32_t height, const KindColours& colours,
                              std::span<const ExtraBlock> extraBlocks,
                              const MeasureSettings& measure, RenderedTreemap recycled,
                              unsigned threads) {
  RenderedTreemap map = std::move(recycled);
  map.width = width;
  map.height = height;
  map.root = root;
  map.rootSize = 0;
  map.kindColours = colours;
  map.blocks.clear();
  map.rests.clear();
  map.colours.clear();
  map.kinds.clear();
  map.extras.clear();
  map.extraColours.clear();
  const bool nothingToShow = width < 1 || height < 1 || root >= tree.nodeCount();
  const std::size_t pixels =
      nothingToShow ? 0 : static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  map.pixels.resize(pixels);
  map.blockAt.resize(pixels);
  if (!nothingToShow) {
    map.rootSize = measureValue(tree, root, measure);
    layoutTreemap(tree, root, {0, 0, static_cast<double>(width), static_cast<double>(height)}, 0,
                  measure, extraBlocks, {}, kRidgeHeight, &map.blocks, &map.rests);
    for (const ExtraBlock& extra : extraBlocks) map.extraColours.insert_or_assign(extra.id, extra);
    if (!extraBlocks.empty()) findExtras(&map);
    std::vector<RunRows> rows;
    BlockPainter(tree, measure, colours, map.extraColours).chooseColours(threads, &map, &rows);
    shadeBlocks(map.blocks, map.colours, rows,
                {map.pixels.data(), map.blockAt.data(), width, height}, threads);
  }
  map.outlineRects.assign(map.blocks);
  return map;
}

const TreemapBlock* RenderedTreemap::blockUnder(std::int32_t x, std::int32_t y) const {
  if (blocks.empty() || x < 0 || y < 0 || x >= width || y >= height) return nullptr;
  const std::uint32_t index =
      blockAt[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
              static_cast<std::size_t>(x)];
  return index == kNoBlock ? nullptr : &blocks[index];
}

const MapRect* RenderedTreemap::outlineRect(NodeId node) const {
  const std::optional<std::uint32_t> block = outlineRects.blockOf(node);
  return block ? &blocks[*block].rect : nullptr;
}

std::int64_t RenderedTreemap::restSize(const TreemapBlock& block) const {
  const auto rest = std::ranges::find(rests, block.id, &RestSum::id);
  return rest == rests.end() ? 0 : rest->size;
}

}  // namespace app
