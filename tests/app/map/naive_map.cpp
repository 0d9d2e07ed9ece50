#include "tests/app/map/naive_map.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <list>

namespace test {

using app::BlockReason;
using app::CushionCoefficients;
using app::ExtraBlock;
using app::MapRect;
using app::PlacedItem;
using app::TreemapBlock;
using app::WeightedItem;
using sizewalk::FileTree;
using sizewalk::NodeFlag;
using sizewalk::NodeId;

namespace {

constexpr std::int32_t kMarker = -2147483647 - 1;

struct Scene {
  const FileTree& tree;
  app::MeasureSettings measure;
  const std::vector<ExtraBlock>& extraBlocks;
  std::vector<TreemapBlock>* out;
};

std::int64_t valueOf(const FileTree& tree, NodeId node, const app::MeasureSettings& measure) {
  if ((tree.flags(node).bits() & 32) != 0) return 0;
  const int index = static_cast<int>(measure.measure);
  if (index == 1) return static_cast<std::int64_t>(tree.addedLastMonth(node));
  if (index == 2) return static_cast<std::int64_t>(tree.addedLastSixMonths(node));
  if (index == 3) return static_cast<std::int64_t>(tree.addedSinceLastScan(node));
  if (measure.physicalSize) return static_cast<std::int64_t>(tree.allocatedSize(node));
  return static_cast<std::int64_t>(tree.apparentSize(node));
}

std::uint64_t endOfChildren(const FileTree& tree, NodeId node) {
  return std::min<std::uint64_t>(tree.nodeCount(),
                                 std::uint64_t{tree.firstChild(node)} + tree.childCount(node));
}

CushionCoefficients withRidge(CushionCoefficients c, const MapRect& r, double height) {
  if (r.width > 0 && r.height > 0) {
    const double k = 4 * height;
    c.quadraticX -= k / r.width;
    c.linearX += k * (2 * r.x + r.width) / r.width;
    c.quadraticY -= k / r.height;
    c.linearY += k * (2 * r.y + r.height) / r.height;
  }
  return c;
}

std::int32_t keyOf(const FileTree& tree, std::int32_t id) {
  if (id < 0) return id;
  const auto node = static_cast<NodeId>(id);
  if ((tree.flags(node).bits() & 1) != 0) return ~id;
  return tree.kind(node);
}

struct Group {
  double sum = 0;
  std::vector<WeightedItem> members;
};

bool heavier(const WeightedItem& a, const WeightedItem& b) { return a.weight > b.weight; }

std::vector<WeightedItem> grouped(const FileTree& tree, const std::vector<WeightedItem>& entries) {
  std::unordered_map<std::int32_t, Group> groups;
  std::list<std::int32_t> keys;
  for (const WeightedItem& entry : entries) {
    const std::int32_t key = keyOf(tree, entry.id);
    if (groups.count(key) == 0) keys.push_back(key);
    groups[key].sum += entry.weight;
    groups[key].members.push_back(entry);
  }
  keys.sort([&](std::int32_t a, std::int32_t b) { return groups[a].sum > groups[b].sum; });
  std::vector<WeightedItem> list;
  for (const std::int32_t key : keys) {
    std::vector<WeightedItem>& members = groups[key].members;
    std::stable_sort(members.begin(), members.end(), heavier);
    list.insert(list.end(), members.begin(), members.end());
  }
  return list;
}

void layOut(const Scene& scene, NodeId node, const MapRect& rect, std::int32_t depth,
            CushionCoefficients cushion, double height) {
  const FileTree& tree = scene.tree;
  if (depth > 0) cushion = withRidge(cushion, rect, height);
  TreemapBlock self;
  self.rect = rect;
  self.id = static_cast<std::int32_t>(node);
  self.depth = depth;
  self.cushion = cushion;
  const auto leaf = [&](BlockReason reason) {
    self.reason = reason;
    scene.out->push_back(self);
  };
  const std::uint64_t end = endOfChildren(tree, node);
  if (tree.childCount(node) == 0 || tree.firstChild(node) >= end)
    return leaf(BlockReason::noChildren);
  if (rect.width < 1 || rect.height < 1 || rect.width * rect.height < 9) {
    return leaf(depth == 64 ? BlockReason::depthLimit : BlockReason::tooSmall);
  }
  if (depth == 64) return leaf(BlockReason::depthLimit);

  std::vector<WeightedItem> collected;
  if (depth == 0) {
    for (const ExtraBlock& extra : scene.extraBlocks) {
      if (extra.size > 0) collected.push_back({extra.id, static_cast<double>(extra.size)});
    }
  }
  for (NodeId child = tree.firstChild(node); child < end; ++child) {
    const std::int64_t value = valueOf(tree, child, scene.measure);
    if (value > 0) {
      collected.push_back({static_cast<std::int32_t>(child), static_cast<double>(value)});
    }
  }
  if (collected.empty()) return leaf(BlockReason::nothingVisible);

  double total = 0;
  for (const WeightedItem& entry : collected) total += entry.weight;
  const double scale = total >= 1 ? (rect.width * rect.height) / total : rect.width * rect.height;
  std::vector<WeightedItem> staying;
  std::int32_t restId = -1;
  std::int32_t restCount = 0;
  double restWeight = 0;
  for (const WeightedItem& entry : collected) {
    if (scale * entry.weight >= 1.0) {
      staying.push_back(entry);
      continue;
    }
    if (restId < 0) restId = entry.id;
    ++restCount;
    restWeight += entry.weight;
  }
  std::vector<WeightedItem> list = grouped(tree, staying);
  if (restCount > 0 && scale * restWeight >= 1.0) list.push_back({kMarker, restWeight});
  if (list.empty()) return leaf(BlockReason::nothingVisible);

  self.painted = false;
  scene.out->push_back(self);
  const double childHeight = height * 0.91;
  for (const PlacedItem& item : squarifyNaively(list, rect)) {
    TreemapBlock block;
    block.rect = item.rect;
    block.depth = depth + 1;
    block.cushion = withRidge(cushion, item.rect, childHeight);
    if (item.id == kMarker) {
      block.id = restId;
      block.restCount = restCount;
      block.reason = BlockReason::rest;
    } else if (item.id >= 0 && (tree.flags(static_cast<NodeId>(item.id)).bits() & 1) != 0) {
      layOut(scene, static_cast<NodeId>(item.id), item.rect, depth + 1, cushion, childHeight);
      continue;
    } else {
      block.id = item.id;
    }
    scene.out->push_back(block);
  }
}

double worstRatio(const std::vector<WeightedItem>& items, std::size_t first, std::size_t last,
                  double a, double m) {
  double sum = 0;
  for (std::size_t i = first; i <= last; ++i) sum += items[i].weight;
  const double t = a * sum / m;
  double worst = 0;
  for (std::size_t i = first; i <= last; ++i) {
    const double l = a * items[i].weight / t;
    if (!(t > 0) || !(l > 0)) return std::numeric_limits<double>::infinity();
    worst = std::max(worst, std::max(l / t, t / l));
  }
  return worst;
}

sizewalk::KindIndex dominantKind(const FileTree& tree, NodeId folder,
                                 app::MeasureSettings measure) {
  measure.physicalSize = false;
  NodeId c = folder;
  int levels = 0;
  while ((tree.flags(c).bits() & 1) != 0) {
    const std::uint64_t end = endOfChildren(tree, c);
    const std::uint64_t first = tree.firstChild(c);
    std::int64_t largest = 0;
    NodeId pick = 0;
    bool any = false;
    for (std::uint64_t child = first; tree.childCount(c) > 0 && child < end && child < first + 256;
         ++child) {
      const std::int64_t value = valueOf(tree, static_cast<NodeId>(child), measure);
      if (!any || value > largest) {
        largest = value;
        pick = static_cast<NodeId>(child);
        any = true;
      }
    }
    if (!any || largest < 1) break;
    ++levels;
    if ((tree.flags(pick).bits() & 1) == 0 || levels == 8) return tree.kind(pick);
    c = pick;
  }
  return tree.kind(c);
}

std::uint32_t colourOf(const Scene& scene, const TreemapBlock& block,
                       const app::KindColours& colours) {
  for (const ExtraBlock& extra : scene.extraBlocks) {
    if (extra.id == block.id) return extra.colour;
  }
  sizewalk::KindIndex kind = scene.tree.kind(static_cast<NodeId>(block.id));
  if (kind == 1) kind = dominantKind(scene.tree, static_cast<NodeId>(block.id), scene.measure);
  if (kind == 1) kind = 75;
  return colours.colourForKind(kind);
}

}  // namespace

std::vector<PlacedItem> squarifyNaively(const std::vector<WeightedItem>& items, MapRect free) {
  std::vector<PlacedItem> placed;
  double total = 0;
  for (const WeightedItem& item : items) total += item.weight;
  std::size_t i = 0;
  while (i < items.size() && total > 0 && free.width > 0 && free.height > 0) {
    const double m = std::min(free.width, free.height);
    const double a = free.width * free.height / total;
    std::size_t k = i;
    while (k + 1 < items.size() &&
           !(worstRatio(items, i, k + 1, a, m) > worstRatio(items, i, k, a, m))) {
      ++k;
    }
    double sum = 0;
    for (std::size_t j = i; j <= k; ++j) sum += items[j].weight;
    const double t = a * sum / m;
    const bool column = free.width >= free.height;
    double offset = 0;
    for (std::size_t j = i; j <= k; ++j) {
      const double l = a * items[j].weight / std::max(t, 1e-9);
      placed.push_back({items[j].id, column ? MapRect{free.x, free.y + offset, t, l}
                                            : MapRect{free.x + offset, free.y, l, t}});
      offset += l;
    }
    if (column) {
      free.x += t;
      free.width -= t;
    } else {
      free.y += t;
      free.height -= t;
    }
    total -= sum;
    i = k + 1;
  }
  return placed;
}

void shadeNaively(const TreemapBlock& block, std::uint32_t colour, std::uint32_t blockIndex,
                  std::vector<std::uint32_t>* pixels, std::vector<std::uint32_t>* blockAt,
                  std::int32_t width, std::int32_t height) {
  const MapRect& r = block.rect;
  const double left = std::max(0.0, std::round(r.x));
  const double right = std::min<double>(std::round(r.x + r.width), width);
  const double top = std::max(0.0, std::round(r.y));
  const double bottom = std::min<double>(std::round(r.y + r.height), height);
  if (!(left < right) || !(top < bottom)) return;
  const CushionCoefficients& q = block.cushion;
  for (int py = static_cast<int>(top); py < static_cast<int>(bottom); ++py) {
    for (int px = static_cast<int>(left); px < static_cast<int>(right); ++px) {
      const double gx = 2 * q.quadraticX * (px + 0.5) + q.linearX;
      const double gy = 2 * q.quadraticY * (py + 0.5) + q.linearY;
      const double c = (gx * 0.23570226039551584 + gy * 0.23570226039551584 + 0.9428090415820634) /
                       std::sqrt(gx * gx + gy * gy + 1);
      const double f = c < 0 ? 0.208 : (0.8 * c + 0.2) * 1.04;
      std::uint32_t pixel = 0;
      for (const int shift : {16, 8, 0}) {
        double channel = colour >> shift & 255;
        if (!(c >= 0 && f >= 1)) channel *= f;
        pixel |= (channel < 255 ? static_cast<std::uint32_t>(channel) : 255U) << shift;
      }
      const std::size_t at = static_cast<std::size_t>(py) * static_cast<std::size_t>(width) +
                             static_cast<std::size_t>(px);
      (*pixels)[at] = pixel;
      (*blockAt)[at] = blockIndex;
    }
  }
}

NaiveMap drawNaively(const FileTree& tree, NodeId root, std::int32_t width, std::int32_t height,
                     const app::KindColours& colours, const std::vector<ExtraBlock>& extraBlocks,
                     const app::MeasureSettings& measure) {
  NaiveMap map;
  if (width < 1 || height < 1 || root >= tree.nodeCount()) return map;
  const Scene scene = {tree, measure, extraBlocks, &map.blocks};
  layOut(scene, root, {0, 0, static_cast<double>(width), static_cast<double>(height)}, 0, {}, 0.38);
  const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  map.pixels.assign(size, 0x1C1C1E);
  map.blockAt.assign(size, 0xFFFFFFFF);
  for (std::size_t i = 0; i < map.blocks.size(); ++i) {
    const TreemapBlock& block = map.blocks[i];
    if (!block.painted) continue;
    shadeNaively(block, colourOf(scene, block, colours), static_cast<std::uint32_t>(i), &map.pixels,
                 &map.blockAt, width, height);
  }
  for (const TreemapBlock& block : map.blocks) {
    if (block.id < 0 || block.restCount != 0) continue;
    const auto [at, isNew] =
        map.outlineRects.emplace(static_cast<std::uint32_t>(block.id), block.rect);
    const MapRect& r = at->second;
    if (!isNew && block.rect.width * block.rect.height > r.width * r.height)
      at->second = block.rect;
  }
  return map;
}

}  // namespace test
