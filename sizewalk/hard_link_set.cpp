#include "sizewalk/hard_link_set.h"

#include <utility>

namespace sizewalk {

namespace {
constexpr std::uint64_t kFirstCapacity = 4096;
}

HardLinkSet::HardLinkSet() : keys_(kFirstCapacity, 0), nodes_(kFirstCapacity, 0) {}

std::uint64_t HardLinkSet::slotOf(std::uint64_t key) const {
  const std::uint64_t mask = keys_.size() - 1;
  std::uint64_t slot = mixBits(key) & mask;
  while (keys_[slot] != 0 && keys_[slot] != key) slot = (slot + 1) & mask;
  return slot;
}

NodeId HardLinkSet::findOrInsert(std::uint64_t key, NodeId node) {
  std::uint64_t slot = slotOf(key);
  if (keys_[slot] == key) return nodes_[slot];
  if (count_ * 10 >= keys_.size() * 7) {
    rebuild(keys_.size() * 2, [](NodeId) { return false; });
    slot = slotOf(key);
  }
  keys_[slot] = key;
  nodes_[slot] = node;
  ++count_;
  return node;
}

void HardLinkSet::assign(std::uint64_t key, NodeId node) { nodes_[slotOf(key)] = node; }

void HardLinkSet::eraseIf(const std::function<bool(NodeId)>& gone) { rebuild(keys_.size(), gone); }

void HardLinkSet::rebuild(std::uint64_t capacity, const std::function<bool(NodeId)>& dropped) {
  // Both first: without memory for one of them the old table stays.
  std::vector<std::uint64_t> keys(capacity, 0);
  std::vector<NodeId> nodes(capacity, 0);
  const std::vector<std::uint64_t> oldKeys = std::exchange(keys_, std::move(keys));
  const std::vector<NodeId> oldNodes = std::exchange(nodes_, std::move(nodes));
  count_ = 0;
  for (std::uint64_t i = 0; i < oldKeys.size(); ++i) {
    if (oldKeys[i] == 0 || dropped(oldNodes[i])) continue;
    const std::uint64_t slot = slotOf(oldKeys[i]);
    keys_[slot] = oldKeys[i];
    nodes_[slot] = oldNodes[i];
    ++count_;
  }
}

}  // namespace sizewalk
