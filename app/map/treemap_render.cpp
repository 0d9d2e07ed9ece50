#include "app/map/treemap_render.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <utility>

#include "app/map/cushion_kernel.h"
#include "app/map/cushion_shading.h"
#include "app/model/parallel.h"
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

/// About so many blocks are laid out in one go by one thread.
constexpr std::size_t kBlocksInPart = 8192;

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

/// A part of the map on its way from the layout to the picture.
struct MapPart {
  std::vector<TreemapBlock> blocks;
  std::vector<RestSum> rests;
  /// 0xRRGGBB before shading (the top byte means nothing); 0 where a block is not painted.
  std::vector<std::uint32_t> colours;
  std::vector<RunRows> rows;
  /// Of the first block in the whole layout.
  std::size_t firstIndex = 0;
};

/// Neighbouring blocks of a part that are coloured in one go by one thread. Most take nanoseconds,
/// a folder drawn as one block microseconds.
struct MapPiece {
  MapPart* part = nullptr;
  std::size_t first = 0;
  std::size_t length = 0;
};
constexpr std::size_t kBlocksInPiece = 8192;
static_assert(kBlocksInPiece % kRunLength == 0);

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
  /// colour even where the tree changes meanwhile.
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

 private:
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

/// Lays out and paints a map, both on several threads. Blocks as they are laid out take four times
/// the memory of what the picture keeps of them, and go as soon as it is shaded.
class MapMaker {
 public:
  MapMaker(const LayoutParts& layout, const BlockPainter& painter, unsigned threads,
           const std::stop_token& stop, RenderedTreemap* map)
      : layout_(layout),
        painter_(painter),
        threads_(threads),
        stop_(stop),
        map_(*map),
        parts_(layout.count()) {}

  void make() {
    forEachOnThreads(
        parts_.size(), threads_, [this](std::size_t i) { layOut(i); }, stop_);
    const std::vector<MapPiece> pieces = divide();
    forEachOnThreads(
        pieces.size(), threads_, [&](std::size_t i) { colour(pieces[i]); }, stop_);
    std::vector<BlockSequence> sequences;
    for (const MapPart& part : parts_) {
      sequences.push_back(
          {part.blocks, part.colours, part.rows, static_cast<std::uint32_t>(part.firstIndex)});
    }
    const MapImage image = {map_.pixels.data(), map_.blockAt.data(), map_.width, map_.height};
    clearImage(image, threads_, stop_);
    shadeBlocks(sequences, image, threads_, stop_);
  }

 private:
  void layOut(std::size_t index) {
    MapPart& part = parts_[index];
    part.blocks.reserve(layout_.blocksIn(index));
    layout_.layOut(index, &part.blocks, &part.rests);
    part.colours.resize(part.blocks.size());
    part.rows.resize(runCount(part.blocks.size()));
  }

  /// Makes room for the blocks in the picture. Parts may be of any size, pieces are not.
  std::vector<MapPiece> divide() {
    std::vector<MapPiece> pieces;
    std::size_t next = 0;
    for (MapPart& part : parts_) {
      const std::size_t length = part.blocks.size();
      part.firstIndex = next;
      for (std::size_t first = 0; first < length; first += kBlocksInPiece) {
        pieces.push_back({&part, first, std::min(kBlocksInPiece, length - first)});
      }
      next += length;
      map_.rests.insert(map_.rests.end(), part.rests.begin(), part.rests.end());
    }
    map_.blocks.resize(next);
    return pieces;
  }

  void colour(const MapPiece& piece) {
    MapPart& part = *piece.part;
    for (std::size_t i = piece.first; i < piece.first + piece.length; ++i) {
      const TreemapBlock& block = part.blocks[i];
      PictureBlock& kept = map_.blocks[part.firstIndex + i];
      kept = {.rect = pixelSpan(block.rect, map_.width, map_.height),
              .id = block.id,
              .restCount = block.restCount,
              .painted = block.painted,
              .reason = block.reason};
      painter_.choose(block, &part.colours[i], &kept.kind);
    }
    findRunRows(std::span(part.blocks).subspan(piece.first, piece.length),
                std::span(part.rows).subspan(piece.first / kRunLength, runCount(piece.length)));
  }

  const LayoutParts& layout_;
  const BlockPainter& painter_;
  const unsigned threads_;
  const std::stop_token& stop_;
  RenderedTreemap& map_;
  std::vector<MapPart> parts_;
};

void findExtras(RenderedTreemap* map) {
  for (std::uint32_t i = 0; i < map->blocks.size(); ++i) {
    const PictureBlock& block = map->blocks[i];
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
                              unsigned threads, const std::stop_token& stop) {
  if (width > kMostPixels || height > kMostPixels) throw std::length_error("too large a map");
  RenderedTreemap map = std::move(recycled);
  map.width = width;
  map.height = height;
  map.root = root;
  map.rootSize = 0;
  map.kindColours = colours;
  map.rests.clear();
  map.extras.clear();
  map.extraColours.clear();
  const bool nothingToShow = width < 1 || height < 1 || root >= tree.nodeCount();
  const std::size_t pixels =
      nothingToShow ? 0 : static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  map.pixels.resize(pixels);
  map.blockAt.resize(pixels);
  if (nothingToShow) map.blocks.clear();  // otherwise every one of them is written
  if (!nothingToShow) {
    map.rootSize = measureValue(tree, root, measure);
    for (const ExtraBlock& extra : extraBlocks) map.extraColours.insert_or_assign(extra.id, extra);
    const MapRect whole = {0, 0, static_cast<double>(width), static_cast<double>(height)};
    const LayoutParts layout(tree, root, whole, measure, extraBlocks, kBlocksInPart);
    MapMaker(layout, BlockPainter(tree, measure, colours, map.extraColours), threads, stop, &map)
        .make();
    if (!extraBlocks.empty()) findExtras(&map);
  }
  endWhereGivenUp(stop);
  map.outlineRects.assign(map.blocks, threads);
  return map;
}

const PictureBlock* RenderedTreemap::blockUnder(std::int32_t x, std::int32_t y) const {
  if (blocks.empty() || x < 0 || y < 0 || x >= width || y >= height) return nullptr;
  const std::uint32_t index =
      blockAt[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
              static_cast<std::size_t>(x)];
  return index == kNoBlock ? nullptr : &blocks[index];
}

const PixelSpan* RenderedTreemap::outlineRect(NodeId node) const {
  const std::optional<std::uint32_t> block = outlineRects.blockOf(node, blocks);
  return block ? &blocks[*block].rect : nullptr;
}

std::int64_t RenderedTreemap::restSize(const PictureBlock& block) const {
  const auto rest = std::ranges::find(rests, block.id, &RestSum::id);
  return rest == rests.end() ? 0 : rest->size;
}

}  // namespace app
