#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "sizewalk/hard_link_set.h"
#include "sizewalk/node.h"

namespace sizewalk {

/// Under which of its names a file with several is counted: each file once, at a name that can be
/// seen, where there is one. The other names are duplicates of size 0.
///
/// A file is counted at the first name that turns up. When that is taken out of the tree, the names
/// known by then stay duplicates; the next one that turns up is counted and displaces the first.
/// Once the first is back it is the duplicate, unless the other one is taken out by then.
///
/// Knows nodes by index alone; whoever owns it says what is taken out and keeps the sums. Not
/// synchronised: it belongs to the tree's writer.
class HardLinkLedger {
 public:
  /// Whether a node, or a folder above it, is taken out.
  using TakenOutTest = std::function<bool(NodeId)>;
  /// One name of a file.
  struct Name {
    /// `hardLinkKey` of the file, not 0.
    std::uint64_t key;
    NodeId node;
    NodeId folder;
    std::uint64_t allocatedBytes;
  };
  enum class Role { Counted, Duplicate };

  /// Enters a name and says what it is. Its node is above every one entered before; it need not be
  /// in the tree yet, its folder is.
  Role enter(const Name& name, const TakenOutTest& isTakenOut);

  /// Looks again at what was displaced, after something was put back. Returns the nodes that were
  /// counted until now and whose file is counted at another visible name: each becomes a duplicate
  /// and is to be entered as one.
  std::vector<NodeId> settle(const TakenOutTest& isTakenOut);
  /// Enters a node that is no duplicate yet as one.
  void enterDuplicate(NodeId node, std::uint64_t allocatedBytes);

  /// What a duplicate would take up if it counted for itself. `node` must be one.
  std::uint64_t duplicateBytes(NodeId node) const;

  /// Forgets every node that satisfies `isDropped`. A file counted at one of them is counted at the
  /// name displaced there, if that stays, else at the next that turns up.
  void forget(const std::function<bool(NodeId)>& isDropped);

 private:
  struct Duplicate {
    NodeId node;
    std::uint64_t allocatedBytes;
  };
  /// A node that is taken out and was where the file was counted until another name turned up.
  struct Displaced {
    std::uint64_t key;
    NodeId node;
  };

  HardLinkSet counted_;
  /// In ascending order of node.
  std::vector<Duplicate> duplicates_;
  std::vector<Displaced> displaced_;
};

}  // namespace sizewalk
