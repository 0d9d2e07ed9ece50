#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "app/map/picture_block.h"

namespace app {

/// Finds the rectangle that stands for a node on the map. Rest blocks and extra blocks stand for no
/// node.
class OutlineRects {
 public:
  /// Replaces the contents; the memory is kept. Uses up to `threads` threads.
  void assign(std::span<const PictureBlock> blocks, unsigned threads);

  /// Index of the block of `node` among those that were assigned; nothing when none is its. Of
  /// several the largest counts, of equally large ones the first.
  std::optional<std::uint32_t> blockOf(sizewalk::NodeId node,
                                       std::span<const PictureBlock> blocks) const;

  /// Blocks that stand for a node.
  std::size_t size() const { return order_.size(); }

 private:
  void count(std::span<const PictureBlock> blocks, std::size_t firstBucket, std::size_t lastBucket);
  void distribute(std::span<const PictureBlock> blocks, std::size_t firstBucket,
                  std::size_t lastBucket);
  std::size_t bucketOf(sizewalk::NodeId node) const { return (node - least_) >> shift_; }
  std::size_t bucketCount() const { return ends_.size(); }

  /// The nodes from the least to the greatest one fall into buckets of 2^shift_ neighbours.
  sizewalk::NodeId least_ = 0;
  unsigned shift_ = 0;
  /// Indices of blocks, bucket by bucket, and where each bucket ends.
  std::vector<std::uint32_t> order_;
  std::vector<std::uint32_t> ends_;
};

}  // namespace app
