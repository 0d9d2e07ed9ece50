#include "app/map/treemap_render.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "app/map/cushion_kernel.h"
#include "app/map/cushion_shading.h"
#include "app/map/early_shading.h"
#include "app/model/parallel.h"
#include "base/mutex.h"
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
  /// What the picture keeps of the blocks; not of a huge part.
  std::vector<PictureBlock> kept;
  /// 0xRRGGBB before shading; 0 where a block is not painted.
  std::vector<std::uint32_t> colours;
  std::vector<RunRows> rows;  // of a huge part
  /// Of the first block in the whole layout.
  std::size_t firstIndex = 0;

  /// Empties it for the next part; the arrays keep their memory.
  void clear() {
    blocks.clear();
    rests.clear();
    kept.clear();
    colours.clear();
  }
  /// A folder with so many entries that one thread would hold up the others with it.
  bool huge() const { return blocks.size() > 4 * kBlocksInPart; }
};

/// Neighbouring blocks of a huge part that are coloured in one go by one thread.
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

  /// The colour of a painted block, and its kind. Once for each, so that it has one colour even
  /// where the tree changes meanwhile.
  std::uint32_t choose(const TreemapBlock& block, KindIndex* kind) const {
    if (block.id < 0) return extraColours_.at(block.id).colour;
    const KindIndex drawn = drawnKind(tree_, static_cast<NodeId>(block.id), measure_);
    if (block.restCount == 0) *kind = drawn;
    return colourOfKind(drawn);
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
/// the memory of what the picture keeps of them, so that each part is painted as soon as those
/// before it are laid out: then it is known which numbers its blocks have. Huge parts are painted
/// at the end, by all threads together.
class MapMaker {
 public:
  MapMaker(const LayoutParts& layout, const BlockPainter& painter, unsigned threads,
           const std::stop_token& stop, RenderedTreemap* map)
      : layout_(layout),
        painter_(painter),
        threads_(threads),
        stop_(stop),
        map_(*map),
        image_{map->pixels.data(), map->blockAt.data(), map->width, map->height},
        laidOut_(layout.count()) {}

  void make() {
    clearImage(image_, threads_, stop_);
    reserve();
    forEachOnThreads(
        layout_.count(), threads_, [this](std::size_t part) { makePart(part); }, stop_);
    spare_.clear();
    colourHuge();
    shadeRest();
  }

 private:
  using Parts = std::vector<std::unique_ptr<MapPart>>;

  /// Takes nothing from the system before it is written to.
  void reserve() {
    map_.blocks.clear();
    std::size_t most = 0;
    for (std::size_t part = 0; part < layout_.count(); ++part) most += layout_.blocksIn(part);
    if (map_.blocks.capacity() < most) map_.blocks = {};
    map_.blocks.reserve(most);
  }

  /// Whoever lays out the part that others wait for paints them too.
  void makePart(std::size_t index) {
    std::unique_ptr<MapPart> part = takeSpare();
    part->blocks.reserve(layout_.blocksIn(index));
    layout_.layOut(index, &part->blocks, &part->rests);
    if (!part->huge()) colour(part.get());
    for (std::unique_ptr<MapPart>& ready : enter(index, std::move(part))) {
      LateBlocks late = paint(*ready);
      giveBack(std::move(ready), std::move(late));
    }
  }

  PictureBlock keptOf(const TreemapBlock& block, std::uint32_t* colour) const {
    PictureBlock kept = {.rect = pixelSpan(block.rect, map_.width, map_.height),
                         .id = block.id,
                         .restCount = block.restCount,
                         .painted = block.painted,
                         .reason = block.reason};
    *colour = block.painted ? painter_.choose(block, &kept.kind) : 0;
    return kept;
  }

  void colour(MapPart* part) const {
    part->kept.resize(part->blocks.size());
    part->colours.resize(part->blocks.size());
    for (std::size_t i = 0; i < part->blocks.size(); ++i) {
      part->kept[i] = keptOf(part->blocks[i], &part->colours[i]);
    }
  }

  LateBlocks paint(const MapPart& part) const {
    LateBlocks late;
    EarlyShader shader(image_, &late);
    for (std::size_t i = 0; i < part.blocks.size(); ++i) {
      if (!part.blocks[i].painted) continue;
      shader.add(part.blocks[i], part.kept[i].rect, part.colours[i],
                 static_cast<std::uint32_t>(part.firstIndex + i));
    }
    shader.flush();
    return late;
  }

  /// A part is laid out. Returns what can be painted by now and is left to the caller.
  Parts enter(std::size_t index, std::unique_ptr<MapPart> part) {
    Parts ready;
    const base::MutexLock lock(mutex_);
    laidOut_[index] = std::move(part);
    for (; next_ < laidOut_.size() && laidOut_[next_]; ++next_) {
      keep(*laidOut_[next_]);
      Parts& parts = laidOut_[next_]->huge() ? huge_ : ready;
      parts.push_back(std::move(laidOut_[next_]));
    }
    return ready;
  }

  /// Gives its blocks their places in the picture.
  void keep(MapPart& part) REQUIRES(mutex_) {
    part.firstIndex = map_.blocks.size();
    map_.blocks.insert(map_.blocks.end(), part.kept.begin(), part.kept.end());
    map_.blocks.resize(part.firstIndex + part.blocks.size());
    map_.rests.insert(map_.rests.end(), part.rests.begin(), part.rests.end());
  }

  std::unique_ptr<MapPart> takeSpare() {
    const base::MutexLock lock(mutex_);
    if (spare_.empty()) return std::make_unique<MapPart>();
    std::unique_ptr<MapPart> part = std::move(spare_.back());
    spare_.pop_back();
    return part;
  }

  void giveBack(std::unique_ptr<MapPart> part, LateBlocks late) {
    part->clear();
    const base::MutexLock lock(mutex_);
    spare_.push_back(std::move(part));
    if (!late.empty()) late_.push_back(std::move(late));
  }

  /// The threads have ended when this and the next are called.
  void colourHuge() {
    std::vector<MapPiece> pieces;
    for (const std::unique_ptr<MapPart>& part : huge_) {
      const std::size_t length = part->blocks.size();
      part->colours.resize(length);
      part->rows.resize(runCount(length));
      for (std::size_t first = 0; first < length; first += kBlocksInPiece) {
        pieces.push_back({part.get(), first, std::min(kBlocksInPiece, length - first)});
      }
    }
    forEachOnThreads(
        pieces.size(), threads_, [&](std::size_t i) { colour(pieces[i]); }, stop_);
  }

  void colour(const MapPiece& piece) {
    MapPart& part = *piece.part;
    for (std::size_t i = piece.first; i < piece.first + piece.length; ++i) {
      map_.blocks[part.firstIndex + i] = keptOf(part.blocks[i], &part.colours[i]);
    }
    findRunRows(std::span(part.blocks).subspan(piece.first, piece.length),
                std::span(part.rows).subspan(piece.first / kRunLength, runCount(piece.length)));
  }

  void shadeRest() {
    std::vector<BlockSequence> sequences;
    for (const std::unique_ptr<MapPart>& part : huge_) {
      sequences.push_back(
          {part->blocks, part->colours, part->rows, static_cast<std::uint32_t>(part->firstIndex)});
    }
    for (LateBlocks& late : late_) late.addSequences(&sequences);
    std::ranges::sort(sequences, {}, &BlockSequence::firstIndex);
    shadeBlocks(sequences, image_, threads_, stop_);
  }

  const LayoutParts& layout_;
  const BlockPainter& painter_;
  const unsigned threads_;
  const std::stop_token& stop_;
  RenderedTreemap& map_;
  const MapImage image_;

  /// Guards the members below and the picture's blocks and rests, while parts are laid out.
  base::Mutex mutex_;
  /// Parts that those before them keep waiting, by their places.
  Parts laidOut_;
  std::size_t next_ = 0;
  Parts huge_;
  /// Painted parts, whose memory the next ones use.
  Parts spare_;
  std::vector<LateBlocks> late_;
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
    const BlockPainter painter(tree, measure, colours, map.extraColours);
    MapMaker(layout, painter, threads, stop, &map).make();
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
