#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/mutex.h"
#include "sizewalk/directory_result.h"
#include "sizewalk/hard_link_ledger.h"
#include "sizewalk/node.h"
#include "sizewalk/paged_column.h"
#include "sizewalk/scan_options.h"
#include "sizewalk/tree_totals.h"

namespace sizewalk {

/// How large a tree may grow. Going past either ends the program.
struct TreeLimits {
  std::uint64_t nodes = 268435456;
  std::uint64_t nameBytes = 4294967296;
};

/// What is needed to put back a subtree that was taken out.
struct RemovedSubtree {
  std::int32_t node = -1;
  /// The node's child range when it was taken out.
  NodeId firstChild = 0;
  std::uint32_t childCount = 0;
  /// The subtree's allocated bytes when it was taken out.
  std::uint64_t allocatedBytes = 0;
  /// Tells this time that the node was taken out from every other.
  std::uint64_t serial = 0;
  bool valid = false;
};

/// Every entry that a scan met, as parallel columns indexed by `NodeId`.
///
/// A node is an index, not an object: each field is a column of its own, pages are never moved, and
/// the children of a directory are one contiguous run of indices. Values of a directory are the
/// sums over its subtree without what is taken out of it; they are rolled up to the root each time
/// a directory has been read, so the root shows the total of everything read so far and a live view
/// needs no second pass.
///
/// A node ceases to be visible in two ways. One that is taken out (`removeSubtree`,
/// `NodeFlag::Excluded`) can be put back. One that is dropped (`dropContents`), since its folder is
/// read anew, never comes back.
///
/// Threads. All changes (`addChildren`, `dropContents`, `removeSubtree`, `restoreSubtree`) are
/// serialised by one mutex, which the integrator takes once per directory. Readers take no lock:
/// they trust indices below `nodeCount()`, which is published with release after a directory's
/// entries and sums are in place. What changes after publication (sums, flags, child ranges,
/// totals) is read through relaxed atomics, so a reader may see a total that is a few directories
/// behind, never a torn one. `isVisible` alone needs more: flags and child ranges are stored with
/// release for it.
class FileTree {
 public:
  explicit FileTree(const ScanOptions& options = {}, TreeLimits limits = {});

  /// As `ScanOptions::setLastScanTime`. Before `createRoot`.
  void setLastScanTime(std::uint32_t time) { options_.setLastScanTime(time); }

  /// Makes node 0, the scanned folder. Call once, before anything else and before other threads
  /// look. `rootPath` is the folder's path without a trailing slash, "/" for the root of the file
  /// system.
  void createRoot(std::string rootPath, std::uint32_t birthTime = 0);

  // Writing. One of these runs at a time, whichever thread calls it.

  /// A million entries take a tenth of a second to add, these some two milliseconds.
  static constexpr std::size_t kEntriesBetweenLooks = 16384;

  /// Appends the entries of one read directory as the children of `result.directory`, rolls their
  /// sums up and publishes them. Sets `subdirectories` to the nodes that are to be read next.
  /// Beneath a taken-out node sums go no further than that node and no total changes. A directory
  /// is added once, and again only after `dropContents`.
  ///
  /// Once `stop` is set, by another thread, only the first `kEntriesBetweenLooks` entries or some
  /// more become children; the others are left out, as if the listing had broken off there.
  ///
  /// Ends the program when a limit is passed. Throws std::bad_alloc when memory runs out: the
  /// entries before that are children and count, the others are not there.
  void addChildren(const DirectoryResult& result, std::vector<NodeId>* subdirectories,
                   const std::atomic<bool>* stop = nullptr);

  /// Drops what `folder` holds, before it is read anew: its contents leave every sum and total
  /// and the hard-link ledger, and records of subtrees taken out beneath it become void. The nodes
  /// stay allocated, so that an index which somebody holds stays readable, but nothing leads to
  /// them. No walk may be running. Returns false, changing nothing, when `folder` is not a visible
  /// directory.
  bool dropContents(NodeId folder);

  /// Takes `node` and all it holds out of the tree: every ancestor and every total drops by what
  /// the subtree holds. Its other names, where a file within has any, stay duplicates of size 0 as
  /// long as they are not read anew. Returns an invalid record, changing nothing, for the root and
  /// for a node that is not visible.
  RemovedSubtree removeSubtree(NodeId node);

  /// Puts back what `removeSubtree` took out, with what the subtree holds by now: a walk may have
  /// gone on inside it. Does nothing for a record that is not valid, and for one of a node that was
  /// put back since or dropped.
  void restoreSubtree(const RemovedSubtree& record);

  // Reading, by any thread.

  /// Nodes published so far; smaller indices are complete.
  NodeId nodeCount() const noexcept { return published_.load(std::memory_order_acquire); }

  /// The root's parent is 0 and means nothing.
  NodeId parent(NodeId node) const { return parent_[node]; }
  /// Bytes as the file system gave them; for the root the last component of its path.
  std::string_view name(NodeId node) const {
    return {&names_[nameOffset_[node]], nameLength_[node]};
  }
  KindIndex kind(NodeId node) const { return kind_[node]; }
  NodeFlags flags(NodeId node) const { return NodeFlags::fromBits(flags_.load(node)); }
  bool isDirectory(NodeId node) const { return flags(node).has(NodeFlag::Directory); }
  /// Whether `node` is what was taken out. What lies inside is not marked: see `isVisible`.
  bool isTakenOut(NodeId node) const { return flags(node).has(NodeFlag::Excluded); }
  std::uint64_t apparentSize(NodeId node) const { return apparentSize_.load(node); }
  std::uint64_t allocatedSize(NodeId node) const { return allocatedSize_.load(node); }
  std::int32_t itemCount(NodeId node) const { return itemCount_.load(node); }
  NodeId firstChild(NodeId node) const { return firstOf(childRange_.load(node)); }
  /// 0 until the directory has been read.
  std::uint32_t childCount(NodeId node) const { return countOf(childRange_.load(node)); }
  /// Seconds since the epoch, 0 when unknown.
  std::uint32_t birthTime(NodeId node) const { return birthTime_[node]; }
  /// Allocated bytes in the subtree born at or after the respective threshold.
  std::uint64_t addedLastMonth(NodeId node) const { return addedLastMonth_.load(node); }
  std::uint64_t addedLastSixMonths(NodeId node) const { return addedLastSixMonths_.load(node); }
  std::uint64_t addedSinceLastScan(NodeId node) const { return addedSinceLastScan_.load(node); }

  /// The published children of `node`; empty while there are none. First and last belong together
  /// even while the folder is being read anew.
  NodeRange children(NodeId node) const;

  ScanTotals totals() const { return totals_.scan(); }
  /// All zero for a kind outside the list.
  KindTotals kindTotals(KindIndex kind) const { return totals_.kind(kind); }
  /// Allocated bytes of all subtrees that are taken out, each as large as when it was taken.
  std::uint64_t takenOutBytes() const { return takenOutBytes_.load(std::memory_order_relaxed); }

  /// Of the scanned folder; to be asked by other threads once `nodeCount()` is above 0, as are all
  /// paths.
  const std::string& rootPath() const { return rootPath_; }
  /// The full path of `node`. It may be longer than the kernel accepts in one call.
  std::string path(NodeId node) const;
  /// The same into `out`, keeping its memory.
  void path(NodeId node, std::string* out) const;

  /// Whether the root leads to `node`: true while neither the node nor a folder above it is taken
  /// out or was dropped by `dropContents`. False for an index that is not published. Costs two
  /// loads a level, whatever the folders on the way hold. The answer holds for one moment during
  /// the call. The thread that takes out and puts back may rely on it afterwards, but for a
  /// `dropContents` elsewhere; once dropped, a node never comes back.
  bool isVisible(NodeId node) const;

  /// Nodes in the subtree, `node` included; what is taken out is not counted. 0 for an index that
  /// is not published and for a node that is taken out itself.
  std::uint64_t countSubtree(NodeId node) const;

 private:
  struct TakenOut {
    NodeRange children;
    std::uint64_t bytes = 0;
    std::uint64_t serial = 0;
  };

  static NodeId firstOf(std::uint64_t childRange) { return static_cast<NodeId>(childRange >> 32); }
  static std::uint32_t countOf(std::uint64_t childRange) {
    return static_cast<std::uint32_t>(childRange);
  }

  void growTo(std::uint64_t nodes) REQUIRES(writeMutex_);
  std::uint32_t storeName(std::string_view name) REQUIRES(writeMutex_);
  void noteErrors(const DirectoryResult& result, Tally* tally) REQUIRES(writeMutex_);
  enum class Ending { AtTheEnd, Stopped, WithoutMemory };
  Ending appendEntries(const DirectoryResult& result,
                       const HardLinkLedger::TakenOutTest& inTakenOut,
                       const std::atomic<bool>* stop, NodeSums* batch, Tally* tally)
      REQUIRES(writeMutex_);
  NodeSums appendEntry(const DirectoryResult& result, const EntryRecord& entry,
                       const HardLinkLedger::TakenOutTest& inTakenOut, Tally* tally)
      REQUIRES(writeMutex_);
  HardLinkLedger::Role enterName(const EntryRecord& entry, NodeId node, NodeId folder,
                                 const HardLinkLedger::TakenOutTest& inTakenOut)
      REQUIRES(writeMutex_);
  NodeSums entrySums(const EntryRecord& entry) const;
  void writeName(NodeId node, std::string_view name) REQUIRES(writeMutex_);
  void writeNode(NodeId node, NodeId parent, const EntryRecord& entry, NodeFlags flags,
                 const NodeSums& sums) REQUIRES(writeMutex_);
  void setChildren(NodeId node, NodeRange range) REQUIRES(writeMutex_);
  void setFlags(NodeId node, NodeFlags flags) REQUIRES(writeMutex_);
  void publish() REQUIRES(writeMutex_);

  NodeSums sumsOf(NodeId node) const;
  void addSums(NodeId node, const NodeSums& sums) REQUIRES(writeMutex_);
  void rollUp(NodeId from, const NodeSums& sums) REQUIRES(writeMutex_);
  bool isInTakenOut(NodeId node) const;
  HardLinkLedger::TakenOutTest takenOutTest() const REQUIRES(writeMutex_);
  NodeRange writtenChildren(NodeId node) const REQUIRES(writeMutex_);
  Tally tallySubtree(NodeId node) const REQUIRES(writeMutex_);
  void tallyNode(NodeId node, Tally* tally) const REQUIRES(writeMutex_);
  std::vector<bool> nodesBelow(NodeId folder) const REQUIRES(writeMutex_);
  void forget(const std::vector<bool>& dropped) REQUIRES(writeMutex_);
  void makeDuplicate(NodeId node) REQUIRES(writeMutex_);

  ScanOptions options_;
  const TreeLimits limits_;
  std::string rootPath_;

  /// Serialises the integrator with the window thread's own changes. Guards the plain members below
  /// and every write to the columns and totals.
  mutable base::Mutex writeMutex_;
  std::uint64_t end_ GUARDED_BY(writeMutex_) = 0;       // nodes that are complete
  std::uint64_t namesEnd_ GUARDED_BY(writeMutex_) = 0;  // bytes of the name store in use
  HardLinkLedger hardLinks_ GUARDED_BY(writeMutex_);
  std::unordered_map<NodeId, TakenOut> takenOut_ GUARDED_BY(writeMutex_);
  std::uint64_t lastSerial_ GUARDED_BY(writeMutex_) = 0;

  /// Publishes the columns below it.
  std::atomic<NodeId> published_{0};
  std::atomic<std::uint64_t> takenOutBytes_{0};
  SharedTotals totals_;

  PagedColumn<NodeId> parent_;
  PagedColumn<std::uint32_t> nameOffset_;
  PagedColumn<std::uint16_t> nameLength_;
  PagedColumn<KindIndex> kind_;
  PagedColumn<std::uint8_t> flags_;
  PagedColumn<std::uint64_t> apparentSize_;
  PagedColumn<std::uint64_t> allocatedSize_;
  PagedColumn<std::int32_t> itemCount_;
  /// The first child in the upper half, the number of children in the lower: one store replaces
  /// both, so that nobody takes the start of one range with the length of another.
  PagedColumn<std::uint64_t> childRange_;
  PagedColumn<std::uint32_t> birthTime_;
  PagedColumn<std::uint64_t> addedLastMonth_;
  PagedColumn<std::uint64_t> addedLastSixMonths_;
  PagedColumn<std::uint64_t> addedSinceLastScan_;
  PagedColumn<char, 20> names_;
};

}  // namespace sizewalk
