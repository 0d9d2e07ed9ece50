// A large map has half a million blocks and is rendered several times a second during a scan, so
// this table is filled far more often than it is asked. It is an open-addressing table of eight
// bytes a cell with the index of the block in place of the rectangle itself. The hash keeps eight
// consecutive nodes together in one cache line's worth of cells: siblings have consecutive indices
// and come in one after the other, so filling mostly stays within the cache. std::unordered_map
// allocates for each node; with 400,000 blocks it took six times as long to fill, more than twice
// as long as shading the whole map.

#include "app/map/outline_rects.h"

#include <algorithm>
#include <bit>

namespace app {

namespace {

constexpr std::uint32_t kFree = 0xFFFFFFFF;  // not a node: indices are signed in the blocks
constexpr unsigned kTogetherBits = 3;
constexpr std::size_t kFewestCells = 64;

}  // namespace

void OutlineRects::assign(std::span<const TreemapBlock> blocks) {
  const std::size_t cells = std::bit_ceil(std::max(kFewestCells, blocks.size() * 2));
  cells_.assign(cells, {kFree, 0});
  shift_ = 64 - static_cast<unsigned>(std::countr_zero(cells)) + kTogetherBits;
  size_ = 0;
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    const TreemapBlock& block = blocks[i];
    if (block.id < 0 || block.restCount != 0) continue;
    const auto node = static_cast<sizewalk::NodeId>(block.id);
    Cell& cell = cells_[cellOf(node)];
    if (cell.node == kFree) {
      ++size_;
    } else if (block.rect.area() <= blocks[cell.block].rect.area()) {
      continue;
    }
    cell = {node, static_cast<std::uint32_t>(i)};
  }
}

std::optional<std::uint32_t> OutlineRects::blockOf(sizewalk::NodeId node) const {
  if (size_ == 0 || node == kFree) return std::nullopt;
  const Cell& cell = cells_[cellOf(node)];
  if (cell.node != node) return std::nullopt;
  return cell.block;
}

/// The cell that holds `node`, or the free one where it belongs.
std::size_t OutlineRects::cellOf(sizewalk::NodeId node) const {
  const std::uint64_t spread = (node >> kTogetherBits) * 0x9E3779B97F4A7C15U >> shift_;
  const std::size_t together = node & ((1U << kTogetherBits) - 1);
  std::size_t cell = static_cast<std::size_t>(spread) << kTogetherBits | together;
  while (cells_[cell].node != kFree && cells_[cell].node != node) {
    cell = (cell + 1) & (cells_.size() - 1);
  }
  return cell;
}

}  // namespace app
