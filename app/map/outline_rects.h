#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "app/map/treemap_layout.h"

namespace app {

/// Finds the rectangle that stands for a node on the map: a hash map from node index to the block
/// whose rectangle it is. Rest blocks and extra blocks stand for no node.
class OutlineRects {
 public:
  /// Replaces the contents; the memory is kept. Of several blocks with one id the largest counts,
  /// of equally large ones the first.
  void assign(std::span<const TreemapBlock> blocks);

  /// Index of the block of `node`, nothing when the map does not show it.
  std::optional<std::uint32_t> blockOf(sizewalk::NodeId node) const;

  std::size_t size() const { return size_; }

 private:
  struct Cell {
    std::uint32_t node;
    std::uint32_t block;
  };

  std::size_t cellOf(sizewalk::NodeId node) const;

  std::vector<Cell> cells_;
  unsigned shift_ = 0;
  std::size_t size_ = 0;
};

}  // namespace app
