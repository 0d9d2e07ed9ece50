#include "sizewalk/hard_link_ledger.h"

#include <algorithm>
#include <utility>

namespace sizewalk {

HardLinkLedger::Role HardLinkLedger::enter(const Name& name, const TakenOutTest& isTakenOut) {
  const NodeId counted = counted_.findOrInsert(name.key, name.node);
  if (counted == name.node) return Role::Counted;
  if (!isTakenOut(counted) || isTakenOut(name.folder)) {
    duplicates_.push_back({name.node, name.allocatedBytes});
    return Role::Duplicate;
  }
  displaced_.push_back({name.key, counted});  // first: for this there may be no memory
  counted_.assign(name.key, name.node);
  return Role::Counted;
}

std::vector<NodeId> HardLinkLedger::settle(const TakenOutTest& isTakenOut) {
  std::vector<NodeId> becomeDuplicates;
  std::vector<Displaced> remaining;
  for (const Displaced& displaced : displaced_) {
    const NodeId counted = counted_.find(displaced.key);
    if (isTakenOut(displaced.node)) {
      remaining.push_back(displaced);
    } else if (isTakenOut(counted)) {
      counted_.assign(displaced.key, displaced.node);
      remaining.push_back({displaced.key, counted});
    } else {
      becomeDuplicates.push_back(displaced.node);
    }
  }
  displaced_ = std::move(remaining);
  return becomeDuplicates;
}

void HardLinkLedger::enterDuplicate(NodeId node, std::uint64_t allocatedBytes) {
  const auto place = std::ranges::lower_bound(duplicates_, node, {}, &Duplicate::node);
  duplicates_.insert(place, {node, allocatedBytes});
}

std::uint64_t HardLinkLedger::duplicateBytes(NodeId node) const {
  return std::ranges::lower_bound(duplicates_, node, {}, &Duplicate::node)->allocatedBytes;
}

void HardLinkLedger::forget(const std::function<bool(NodeId)>& isDropped) {
  counted_.eraseIf(isDropped);
  std::erase_if(duplicates_, [&](const Duplicate& entry) { return isDropped(entry.node); });
  std::erase_if(displaced_, [&](const Displaced& entry) { return isDropped(entry.node); });
  // Whoever displaced one that stays may be forgotten: then that one is counted again.
  std::erase_if(displaced_, [&](const Displaced& entry) {
    return counted_.findOrInsert(entry.key, entry.node) == entry.node;
  });
}

}  // namespace sizewalk
