#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "sizewalk/node.h"

namespace sizewalk {

/// SplitMix64's finaliser (Steele, Lea, Flood 2014): spreads every input bit over the whole word.
constexpr std::uint64_t mixBits(std::uint64_t x) {
  x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ULL;
  x = (x ^ (x >> 27)) * 0x94d049bb133111ebULL;
  return x ^ (x >> 31);
}

/// The key that names the file (device, inode), never 0. `device` is major << 32 | minor.
constexpr std::uint64_t hardLinkKey(std::uint64_t device, std::uint64_t inode) {
  const std::uint64_t key =
      mixBits((device + 0x165667b19e3779f9ULL) ^ (inode * 0x9e3779b97f4a7c15ULL));
  return key == 0 ? 1 : key;
}

/// Which files with several names were counted, and at which node: an open-addressing hash table
/// with linear probing, 70 % full at most. Not synchronised; it belongs to the tree's writer.
class HardLinkSet {
 public:
  HardLinkSet();

  /// The node counted for `key` before; or `node` itself when the key is new, which then stands for
  /// it. `key` is not 0.
  NodeId findOrInsert(std::uint64_t key, NodeId node);

  /// The node counted for `key`, which must be known.
  NodeId find(std::uint64_t key) const { return nodes_[slotOf(key)]; }
  /// Makes `node` the one counted for `key`, which must be known.
  void assign(std::uint64_t key, NodeId node);

  /// Forgets every key whose counted node satisfies `gone`.
  void eraseIf(const std::function<bool(NodeId)>& gone);

  std::uint64_t size() const { return count_; }
  /// Slots in the table, a power of two.
  std::uint64_t capacity() const { return keys_.size(); }

 private:
  std::uint64_t slotOf(std::uint64_t key) const;
  void rebuild(std::uint64_t capacity, const std::function<bool(NodeId)>& dropped);

  std::uint64_t count_ = 0;
  std::vector<std::uint64_t> keys_;  // 0 = empty slot
  std::vector<NodeId> nodes_;        // for each key, the node that was counted
};

}  // namespace sizewalk
