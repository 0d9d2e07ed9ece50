// The layout is a squarified treemap (Bruls, Huizing and van Wijk, "Squarified Treemaps", 2000): a
// folder's entries, largest first, are cut off the rectangle in rows along its shorter side, and a
// row is extended as long as that does not worsen the worst aspect ratio in it. What differs from
// the paper is the order: files of one kind form a group and lie together, groups come largest
// first, so the weights fall within a group and may rise from one group to the next.
//
// Every folder goes through the same passes over its entries: read each child once, merge what is
// smaller than a pixel, group, sort, place, descend. Only the placed rectangles outlive the descent
// into a folder's children; they stand on one stack that all levels share, and every other array is
// reused from folder to folder. A row's worst ratio needs no pass over the row: both ratios of a
// member are monotonic in its weight, in rounded arithmetic too, so the row's smallest and largest
// member decide. The plain definition, all members for every candidate, is quadratic in the row's
// length.
//
// A large map is laid out in parts: what is above them once, and each of them by itself, with what
// lies between its subtrees copied in where it belongs. So the parts' blocks are those of the whole
// in its order, whoever lays them out.
//
// The grouping keeps one hash table for all folders and distributes the entries over the groups in
// linear time, which leaves short runs to sort. A map from key to member list, made anew for each
// folder, would allocate several times per folder, and most folders have a handful of entries.

#include "app/map/treemap_layout.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

#include "app/map/entry_groups.h"

namespace app {

using sizewalk::FileTree;
using sizewalk::NodeFlag;
using sizewalk::NodeId;
using sizewalk::NodeRange;

namespace {

constexpr double kSmallestArea = 9.0;       // square pixels a folder needs to be subdivided
constexpr double kSmallestEntryArea = 1.0;  // square pixels an entry needs not to be merged
constexpr double kThinnestDivisor = 1e-9;   // keeps a row without thickness from dividing by 0

/// The row that is being built: as much of it as its worst aspect ratio depends on.
class Row {
 public:
  /// `areaScale`: pixels of area per unit of weight.
  Row(double shortSide, double areaScale) : shortSide_(shortSide), areaScale_(areaScale) {}

  void add(double weight) {
    sum_ += weight;
    smallest_ = std::min(smallest_, weight);
    largest_ = std::max(largest_, weight);
  }

  double sum() const { return sum_; }
  double thickness() const { return areaScale_ * sum_ / shortSide_; }

  double worstRatio() const {
    const double t = thickness();
    if (!(t > 0)) return std::numeric_limits<double>::infinity();
    const double shortest = areaScale_ * smallest_ / t;
    if (!(shortest > 0)) return std::numeric_limits<double>::infinity();
    return std::max(areaScale_ * largest_ / t / t, t / shortest);
  }

 private:
  double shortSide_;
  double areaScale_;
  double sum_ = 0;
  double smallest_ = std::numeric_limits<double>::infinity();
  double largest_ = 0;
};

/// Places a row at the left edge of `free` (when it is at least as wide as high) or along its top
/// edge, and takes the row's room off `free`.
void placeRow(std::span<const WeightedItem> row, double thickness, double areaScale, MapRect* free,
              std::vector<PlacedItem>* out) {
  const double divisor = std::max(thickness, kThinnestDivisor);
  const bool column = free->width >= free->height;
  double offset = 0;
  for (const WeightedItem& item : row) {
    const double length = areaScale * item.weight / divisor;
    out->push_back({item.id, column ? MapRect{free->x, free->y + offset, thickness, length}
                                    : MapRect{free->x + offset, free->y, length, thickness}});
    offset += length;
  }
  if (column) {
    free->x += thickness;
    free->width -= thickness;
  } else {
    free->y += thickness;
    free->height -= thickness;
  }
}

void squarifyPresorted(std::span<const WeightedItem> items, const MapRect& rect,
                       std::vector<PlacedItem>* out) {
  double total = 0;
  for (const WeightedItem& item : items) total += item.weight;
  MapRect free = rect;
  std::size_t first = 0;
  while (first < items.size() && total > 0 && free.width > 0 && free.height > 0) {
    const double areaScale = free.width * free.height / total;
    Row row(std::min(free.width, free.height), areaScale);
    row.add(items[first].weight);
    double worst = row.worstRatio();
    std::size_t last = first + 1;
    for (; last < items.size(); ++last) {
      Row longer = row;
      longer.add(items[last].weight);
      const double ratio = longer.worstRatio();
      if (ratio > worst) break;
      row = longer;
      worst = ratio;
    }
    placeRow(items.subspan(first, last - first), row.thickness(), areaScale, &free, out);
    total -= row.sum();
    first = last;
  }
}

/// A sum of weights, which is exact below 2^53.
std::int64_t bytesOf(double weight) {
  constexpr double kPastTheRange = 9223372036854775808.0;
  return weight < kPastTheRange ? static_cast<std::int64_t>(weight)
                                : std::numeric_limits<std::int64_t>::max();
}

class Layouter {
 public:
  Layouter(const FileTree& tree, const MeasureSettings& measure,
           std::span<const ExtraBlock> extraBlocks, std::vector<TreemapBlock>* out,
           std::vector<RestSum>* rests)
      : tree_(tree), measure_(measure), extraBlocks_(extraBlocks), out_(*out), rests_(rests) {}

  /// Takes subfolders, for which it returns true, to be laid out elsewhere.
  std::function<bool(const SubtreeLayout&)> defer;

  void layOut(const SubtreeLayout& folder);

 private:
  /// What was merged because it is smaller than a pixel.
  struct Rest {
    std::int32_t id = -1;
    std::int32_t count = 0;
    double weight = 0;

    void merge(const WeightedItem& entry) {
      if (id < 0) id = entry.id;
      ++count;
      weight += entry.weight;
    }
    RestSum sum() const { return {id, bytesOf(weight)}; }
  };

  void collect(NodeRange children, bool withExtraBlocks);
  Rest arrange(double area);
  std::int32_t groupKey(std::int32_t id) const;
  void place(const PlacedItem& item, const Rest& rest, const TreemapBlock& folder, double height);

  const FileTree& tree_;
  const MeasureSettings& measure_;
  const std::span<const ExtraBlock> extraBlocks_;
  std::vector<TreemapBlock>& out_;
  std::vector<RestSum>* const rests_;

  // In use within one folder only.
  std::vector<WeightedItem> entries_;
  EntryGroups groups_;
  /// A stack: each folder on the way down has its placed items above those of the folder around it.
  std::vector<PlacedItem> placed_;
};

void Layouter::layOut(const SubtreeLayout& folder) {
  const MapRect& rect = folder.rect;
  const std::int32_t depth = folder.depth;
  TreemapBlock block = {
      rect,          static_cast<std::int32_t>(folder.node), depth, 0, true, BlockReason::laidOut,
      folder.cushion};
  if (depth > 0) addRidge(rect, folder.height, &block.cushion);
  const auto endAsLeaf = [&](BlockReason reason) {
    block.reason = reason;
    out_.push_back(block);
  };

  const NodeRange children = tree_.children(folder.node);
  if (children.empty()) return endAsLeaf(BlockReason::noChildren);
  if (depth == kDepthLimit) return endAsLeaf(BlockReason::depthLimit);
  if (rect.width < 1 || rect.height < 1 || rect.area() < kSmallestArea) {
    return endAsLeaf(BlockReason::tooSmall);
  }
  collect(children, depth == 0);
  const Rest rest = arrange(rect.area());
  if (entries_.empty()) return endAsLeaf(BlockReason::nothingVisible);

  block.painted = false;
  out_.push_back(block);
  const std::size_t first = placed_.size();
  squarify(entries_, rect, Presorted::Yes, &placed_);
  const std::size_t last = placed_.size();
  for (std::size_t i = first; i < last; ++i) {
    // By value: the stack may move while a folder puts its own items on it.
    const PlacedItem item = placed_[i];
    place(item, rest, block, folder.height * kRidgeDecay);
  }
  placed_.resize(first);
}

/// Reads everything the layout of one folder depends on, once: on a living tree a second look may
/// differ.
void Layouter::collect(NodeRange children, bool withExtraBlocks) {
  entries_.clear();
  if (withExtraBlocks) {
    for (const ExtraBlock& extra : extraBlocks_) {
      if (extra.size > 0) entries_.push_back({extra.id, static_cast<double>(extra.size)});
    }
  }
  for (NodeId child = children.first; child < children.last; ++child) {
    const std::int64_t value = measureValue(tree_, child, measure_);
    if (value <= 0) continue;
    entries_.push_back({static_cast<std::int32_t>(child), static_cast<double>(value)});
  }
}

/// Brings the entries into the order in which they are placed. Those under a pixel are merged into
/// the returned rest, which becomes the last entry unless it is under a pixel itself.
Layouter::Rest Layouter::arrange(double area) {
  double total = 0;
  for (const WeightedItem& entry : entries_) total += entry.weight;
  const double scale = total >= 1 ? area / total : area;
  Rest rest;
  groups_.clear();
  for (const WeightedItem& entry : entries_) {
    if (scale * entry.weight >= kSmallestEntryArea) {
      groups_.add(groupKey(entry.id), entry);
    } else {
      rest.merge(entry);
    }
  }
  groups_.arrange(&entries_);
  if (rest.count > 0 && scale * rest.weight >= kSmallestEntryArea) {
    entries_.push_back({kRestMarker, rest.weight});
  }
  return rest;
}

/// Files of one kind share a key, every folder and every extra block has its own. The ranges meet:
/// the folder with index 1 has the free space's key and is placed with it, the one with index 2
/// with the other space. That costs nothing but a place, and a key stays one number.
std::int32_t Layouter::groupKey(std::int32_t id) const {
  if (id < 0) return id;
  const auto node = static_cast<NodeId>(id);
  return tree_.isDirectory(node) ? ~id : tree_.kind(node);
}

void Layouter::place(const PlacedItem& item, const Rest& rest, const TreemapBlock& folder,
                     double height) {
  const std::int32_t depth = folder.depth + 1;
  if (item.id >= 0 && tree_.isDirectory(static_cast<NodeId>(item.id))) {
    const SubtreeLayout subtree = {static_cast<NodeId>(item.id), item.rect, depth, folder.cushion,
                                   height};
    if (!defer || !defer(subtree)) layOut(subtree);
    return;
  }
  TreemapBlock& block = out_.emplace_back(
      TreemapBlock{item.rect, item.id, depth, 0, true, BlockReason::laidOut, folder.cushion});
  addRidge(item.rect, height, &block.cushion);
  if (item.id == kRestMarker) {
    block.id = rest.id;
    block.restCount = rest.count;
    block.reason = BlockReason::rest;
    if (rests_) rests_->push_back(rest.sum());
  }
}

}  // namespace

void addRidge(const MapRect& rect, double height, CushionCoefficients* cushion) {
  if (!(rect.width > 0) || !(rect.height > 0)) return;
  const double k = 4 * height;
  cushion->quadraticX -= k / rect.width;
  cushion->linearX += k * (2 * rect.x + rect.width) / rect.width;
  cushion->quadraticY -= k / rect.height;
  cushion->linearY += k * (2 * rect.y + rect.height) / rect.height;
}

void squarify(std::span<const WeightedItem> items, const MapRect& rect, Presorted presorted,
              std::vector<PlacedItem>* out) {
  if (presorted == Presorted::Yes) return squarifyPresorted(items, rect, out);
  std::vector<WeightedItem> sorted(items.begin(), items.end());
  std::stable_sort(sorted.begin(), sorted.end(), [](const WeightedItem& a, const WeightedItem& b) {
    return a.weight > b.weight;
  });
  squarifyPresorted(sorted, rect, out);
}

void layoutTreemap(const FileTree& tree, NodeId node, const MapRect& rect, std::int32_t depth,
                   const MeasureSettings& measure, std::span<const ExtraBlock> extraBlocks,
                   const CushionCoefficients& cushion, double height,
                   std::vector<TreemapBlock>* out, std::vector<RestSum>* rests) {
  Layouter(tree, measure, extraBlocks, out, rests).layOut({node, rect, depth, cushion, height});
}

LayoutParts::LayoutParts(const FileTree& tree, NodeId focus, const MapRect& rect,
                         const MeasureSettings& measure, std::span<const ExtraBlock> extraBlocks,
                         std::size_t mostInPart)
    : tree_(tree), measure_(measure), extraBlocks_(extraBlocks), mostInPart_(mostInPart) {
  Layouter layouter(tree, measure, extraBlocks, &above_, &restsAbove_);
  layouter.defer = [this](const SubtreeLayout& subtree) {
    std::size_t blocks = 0;
    if (!isPart(subtree, &blocks)) return false;
    deferred_.push_back({subtree, blocks, above_.size(), restsAbove_.size()});
    return true;
  };
  const SubtreeLayout whole = {focus, rect, 0, {}, kRidgeHeight};
  if (!layouter.defer(whole)) layouter.layOut(whole);
  join();
}

/// Whether to lay out `subtree` in one piece, and about how many blocks it gives. Each has a square
/// pixel at least, but for folders.
bool LayoutParts::isPart(const SubtreeLayout& subtree, std::size_t* blocks) const {
  const double items = std::max(tree_.itemCount(subtree.node), 0);
  const double most = std::min(items, std::max(subtree.rect.area(), 0.0));
  *blocks = static_cast<std::size_t>(most) + 1;
  return *blocks <= mostInPart_ || tree_.childCount(subtree.node) >= *blocks / 2;
}

void LayoutParts::join() {
  Part part;
  for (std::size_t i = 0; i < deferred_.size(); ++i) {
    part.blocks += deferred_[i].blocks;
    if (part.blocks < mostInPart_) continue;
    parts_.push_back({i + 1, deferred_[i].blocksBefore, deferred_[i].restsBefore, part.blocks});
    part.blocks = 0;
  }
  parts_.push_back({deferred_.size(), above_.size(), restsAbove_.size(), part.blocks});
  std::size_t before = 0;
  for (Part& each : parts_) each.blocks += each.lastBlock - std::exchange(before, each.lastBlock);
}

void LayoutParts::layOut(std::size_t part, std::vector<TreemapBlock>* out,
                         std::vector<RestSum>* rests) const {
  Part at = part == 0 ? Part() : parts_[part - 1];
  const auto copyAbove = [&](std::size_t lastBlock, std::size_t lastRest) {
    out->insert(out->end(), above_.data() + at.lastBlock, above_.data() + lastBlock);
    rests->insert(rests->end(), restsAbove_.data() + at.lastRest, restsAbove_.data() + lastRest);
    at.lastBlock = lastBlock;
    at.lastRest = lastRest;
  };
  Layouter layouter(tree_, measure_, extraBlocks_, out, rests);
  for (; at.lastSubtree < parts_[part].lastSubtree; ++at.lastSubtree) {
    const Deferred& deferred = deferred_[at.lastSubtree];
    copyAbove(deferred.blocksBefore, deferred.restsBefore);
    layouter.layOut(deferred.subtree);
  }
  copyAbove(parts_[part].lastBlock, parts_[part].lastRest);
}

}  // namespace app
