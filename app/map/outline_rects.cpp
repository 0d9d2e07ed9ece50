// A large map has a million blocks and is rendered several times a second during a scan, so this
// index is filled far more often than it is asked. Blocks are distributed over buckets of
// neighbouring nodes, in two passes that add nothing but the index of each block: siblings have
// consecutive indices and come in one after the other, so both passes stay within the cache.
// Threads share the buckets, not the blocks, and so never write in one place. Whoever asks looks at
// all blocks of a bucket.
//
// A hash table that kept eight neighbours together took twice to five times the memory and three
// times as long to fill; std::unordered_map, which allocates for each node, twenty times as long.

#include "app/map/outline_rects.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "app/model/parallel.h"

namespace app {

using sizewalk::NodeId;

namespace {

/// Fewer nodes in a bucket would cost memory without shortening a search by much.
constexpr unsigned kLeastShift = 4;
/// Below this many blocks for each, a thread costs more than it saves.
constexpr std::size_t kBlocksPerThread = 65536;

bool standsForNode(const PictureBlock& block) { return block.id >= 0 && block.restCount == 0; }

}  // namespace

void OutlineRects::assign(std::span<const PictureBlock> blocks, unsigned threads) {
  least_ = std::numeric_limits<NodeId>::max();
  NodeId greatest = 0;
  std::size_t nodes = 0;
  for (const PictureBlock& block : blocks) {
    if (!standsForNode(block)) continue;
    least_ = std::min(least_, static_cast<NodeId>(block.id));
    greatest = std::max(greatest, static_cast<NodeId>(block.id));
    ++nodes;
  }
  order_.resize(nodes);
  ends_.clear();
  if (nodes == 0) return;
  // However far apart the nodes lie, there are no more buckets than blocks.
  for (shift_ = kLeastShift; ((greatest - least_) >> shift_) > nodes;) ++shift_;
  ends_.resize(bucketOf(greatest) + 1);
  const std::size_t shares =
      std::clamp<std::size_t>(nodes / kBlocksPerThread, 1, std::max(threads, 1U));
  const auto inShares = [&](auto pass) {
    forEachOnThreads(shares, threads, [&](std::size_t share) {
      (this->*pass)(blocks, bucketCount() * share / shares, bucketCount() * (share + 1) / shares);
    });
  };
  inShares(&OutlineRects::count);
  std::uint32_t start = 0;
  for (std::uint32_t& end : ends_) start += std::exchange(end, start);
  inShares(&OutlineRects::distribute);
}

void OutlineRects::count(std::span<const PictureBlock> blocks, std::size_t firstBucket,
                         std::size_t lastBucket) {
  for (const PictureBlock& block : blocks) {
    if (!standsForNode(block)) continue;
    const std::size_t bucket = bucketOf(static_cast<NodeId>(block.id));
    if (bucket >= firstBucket && bucket < lastBucket) ++ends_[bucket];
  }
}

/// Each bucket's end is its start before, and has moved to its end afterwards.
void OutlineRects::distribute(std::span<const PictureBlock> blocks, std::size_t firstBucket,
                              std::size_t lastBucket) {
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    if (!standsForNode(blocks[i])) continue;
    const std::size_t bucket = bucketOf(static_cast<NodeId>(blocks[i].id));
    if (bucket < firstBucket || bucket >= lastBucket) continue;
    order_[ends_[bucket]++] = static_cast<std::uint32_t>(i);
  }
}

std::optional<std::uint32_t> OutlineRects::blockOf(NodeId node,
                                                   std::span<const PictureBlock> blocks) const {
  if (order_.empty() || node < least_ || bucketOf(node) >= bucketCount()) return std::nullopt;
  const std::size_t bucket = bucketOf(node);
  const std::uint32_t first = bucket == 0 ? 0 : ends_[bucket - 1];
  std::optional<std::uint32_t> found;
  for (std::uint32_t i = first; i < ends_[bucket]; ++i) {
    const PictureBlock& block = blocks[order_[i]];
    if (static_cast<NodeId>(block.id) != node) continue;
    if (!found || block.rect.area() > blocks[*found].rect.area()) found = order_[i];
  }
  return found;
}

}  // namespace app
