#include "app/map/map_maker.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "app/map/cushion_kernel.h"
#include "app/map/cushion_shading.h"
#include "app/map/early_shading.h"
#include "app/model/parallel.h"
#include "base/mutex.h"

namespace app {

namespace {

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

}  // namespace

void makeMap(const LayoutParts& layout, const BlockPainter& painter, unsigned threads,
             const std::stop_token& stop, RenderedTreemap* map) {
  MapMaker(layout, painter, threads, stop, map).make();
}

}  // namespace app
