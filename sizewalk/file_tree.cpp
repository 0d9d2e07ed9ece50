#include "sizewalk/file_tree.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <span>
#include <utility>

#include "sizewalk/fatal.h"

namespace sizewalk {

namespace {

std::string_view lastComponent(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string_view::npos || path.size() == 1) return path;
  return path.substr(slash + 1);
}

std::uint64_t unreadableAmong(std::span<const EntryRecord> entries) {
  return static_cast<std::uint64_t>(std::ranges::count_if(
      entries, [](const EntryRecord& e) { return e.flags.has(NodeFlag::Unreadable); }));
}

}  // namespace

FileTree::FileTree(const ScanOptions& options, TreeLimits limits)
    : options_(options),
      limits_(limits),
      parent_(limits.nodes),
      nameOffset_(limits.nodes),
      nameLength_(limits.nodes),
      kind_(limits.nodes),
      flags_(limits.nodes),
      apparentSize_(limits.nodes),
      allocatedSize_(limits.nodes),
      itemCount_(limits.nodes),
      childRange_(limits.nodes),
      birthTime_(limits.nodes),
      addedLastMonth_(limits.nodes),
      addedLastSixMonths_(limits.nodes),
      addedSinceLastScan_(limits.nodes),
      names_(limits.nameBytes) {}

void FileTree::createRoot(std::string rootPath, std::uint32_t birthTime) {
  const base::MutexLock lock(writeMutex_);
  rootPath_ = std::move(rootPath);
  growTo(1);
  writeName(kRootNode, lastComponent(rootPath_));
  end_ = 1;
  EntryRecord root;
  root.kind = kKindFolder;
  root.birthTime = birthTime;
  writeNode(kRootNode, kRootNode, root, NodeFlag::Directory, {});
  publish();
}

void FileTree::growTo(std::uint64_t nodes) {
  if (nodes > limits_.nodes) {
    endProgram("Heap Gauge: this folder holds more entries than one scan can keep.");
  }
  parent_.grow(nodes);
  nameOffset_.grow(nodes);
  nameLength_.grow(nodes);
  kind_.grow(nodes);
  flags_.grow(nodes);
  apparentSize_.grow(nodes);
  allocatedSize_.grow(nodes);
  itemCount_.grow(nodes);
  childRange_.grow(nodes);
  birthTime_.grow(nodes);
  addedLastMonth_.grow(nodes);
  addedLastSixMonths_.grow(nodes);
  addedSinceLastScan_.grow(nodes);
}

/// A name lies within one page, so that it can be handed out as one piece; what is left of a page
/// that is too short for the next name stays unused.
std::uint32_t FileTree::storeName(std::string_view name) {
  constexpr std::uint64_t kPageLength = decltype(names_)::kPageLength;
  const std::uint64_t leftOnPage = kPageLength - (namesEnd_ & (kPageLength - 1));
  const std::uint64_t start = name.size() <= leftOnPage ? namesEnd_ : namesEnd_ + leftOnPage;
  if (start + name.size() > limits_.nameBytes) {
    endProgram("Heap Gauge: the names in this folder take more room than one scan can keep.");
  }
  names_.grow(start + std::max<std::size_t>(name.size(), 1));
  if (!name.empty()) std::memcpy(&names_[start], name.data(), name.size());
  namesEnd_ = start + name.size();
  return static_cast<std::uint32_t>(start);
}

void FileTree::addChildren(const DirectoryResult& result, std::vector<NodeId>* subdirectories,
                           const std::atomic<bool>* stop) {
  subdirectories->clear();
  const base::MutexLock lock(writeMutex_);
  const NodeId directory = result.directory;
  const HardLinkLedger::TakenOutTest inTakenOut = takenOutTest();
  Ending ending = Ending::AtTheEnd;
  Tally tally;
  noteErrors(result, &tally);
  totals_.addSystemCalls(result.systemCalls);
  if (!result.entries.empty()) {
    const auto first = static_cast<NodeId>(end_);
    growTo(end_ + result.entries.size());
    subdirectories->reserve(result.subdirectories.size());
    NodeSums batch;
    ending = appendEntries(result, inTakenOut, stop, &batch, &tally);
    rollUp(directory, batch);
    setChildren(directory, {first, static_cast<NodeId>(end_)});
    for (const std::uint32_t position : result.subdirectories) {
      if (first + position < end_) subdirectories->push_back(first + position);
    }
    tally.scan.directories += subdirectories->size();
  }
  if (!inTakenOut(directory)) totals_.add(tally);
  publish();
  if (ending == Ending::WithoutMemory) throw std::bad_alloc();
}

/// Each error has a node whose flag stands for it: an entry's own, or the directory's, which could
/// not be opened or whose listing broke off.
void FileTree::noteErrors(const DirectoryResult& result, Tally* tally) {
  tally->scan.errors += result.errors;
  const bool brokeOff = result.errors > 0 && result.errors > unreadableAmong(result.entries);
  if (!result.unreadable && !brokeOff) return;
  setFlags(result.directory, flags(result.directory).with(NodeFlag::Unreadable));
}

/// Writes the entries as the next nodes and sets `batch` to their sums. Where it ends before the
/// last one, those before stay, and are all that is counted.
FileTree::Ending FileTree::appendEntries(const DirectoryResult& result,
                                         const HardLinkLedger::TakenOutTest& inTakenOut,
                                         const std::atomic<bool>* stop, NodeSums* batch,
                                         Tally* tally) {
  Ending ending = Ending::AtTheEnd;
  const auto stopped = [&](std::size_t done) {
    return done > 0 && done % kEntriesBetweenLooks == 0 && stop &&
           stop->load(std::memory_order_relaxed);
  };
  std::size_t done = 0;
  try {
    for (; done < result.entries.size(); ++done) {
      if (stopped(done)) {
        ending = Ending::Stopped;
        break;
      }
      batch->add(appendEntry(result, result.entries[done], inTakenOut, tally));
      ++end_;
    }
  } catch (const std::bad_alloc&) {
    ending = Ending::WithoutMemory;
  }
  tally->scan.files += batch->itemCount;
  tally->scan.errors -= unreadableAmong(std::span(result.entries).subspan(done));
  return ending;
}

/// What may find no memory comes first, so that an entry counts as a whole or not at all.
NodeSums FileTree::appendEntry(const DirectoryResult& result, const EntryRecord& entry,
                               const HardLinkLedger::TakenOutTest& inTakenOut, Tally* tally) {
  const auto node = static_cast<NodeId>(end_);
  writeName(node, result.nameOf(entry));
  NodeFlags flags = entry.flags;
  NodeSums sums;
  if (enterName(entry, node, result.directory, inTakenOut) == HardLinkLedger::Role::Duplicate) {
    flags = flags.with(NodeFlag::HardLinkDuplicate);
    tally->scan.hardLinks += 1;
    tally->scan.hardLinkBytes += entry.allocatedSize;
  } else {
    sums = entrySums(entry);
  }
  writeNode(node, result.directory, entry, flags, sums);
  tally->scan.datedEntries += entry.birthTime != 0;
  if (!flags.has(NodeFlag::Directory)) tally->addToKind(entry.kind, sums);
  return sums;
}

HardLinkLedger::Role FileTree::enterName(const EntryRecord& entry, NodeId node, NodeId folder,
                                         const HardLinkLedger::TakenOutTest& inTakenOut) {
  if (entry.hardLinkKey == 0 || !options_.dedupeHardLinks) return HardLinkLedger::Role::Counted;
  return hardLinks_.enter({entry.hardLinkKey, node, folder, entry.allocatedSize}, inTakenOut);
}

NodeSums FileTree::entrySums(const EntryRecord& entry) const {
  NodeSums sums;
  sums.apparentSize = entry.apparentSize;
  sums.allocatedSize = entry.allocatedSize;
  sums.itemCount = entry.itemCount;
  if (entry.birthTime == 0) return sums;
  if (entry.birthTime >= options_.sixMonthThreshold) {
    sums.addedLastSixMonths = entry.allocatedSize;
    if (entry.birthTime >= options_.monthThreshold) sums.addedLastMonth = entry.allocatedSize;
  }
  if (options_.hasLastScan && entry.birthTime >= options_.lastScanTime) {
    sums.addedSinceLastScan = entry.allocatedSize;
  }
  return sums;
}

void FileTree::writeName(NodeId node, std::string_view name) {
  nameOffset_[node] = storeName(name);
  nameLength_[node] = static_cast<std::uint16_t>(name.size());
}

void FileTree::writeNode(NodeId node, NodeId parent, const EntryRecord& entry, NodeFlags flags,
                         const NodeSums& sums) {
  parent_[node] = parent;
  kind_[node] = entry.kind;
  flags_.initialise(node, flags.bits());
  apparentSize_.initialise(node, sums.apparentSize);
  allocatedSize_.initialise(node, sums.allocatedSize);
  itemCount_.initialise(node, static_cast<std::int32_t>(sums.itemCount));
  birthTime_.initialise(node, entry.birthTime);
  // Of most files nothing was added lately.
  addedLastMonth_.initialise(node, sums.addedLastMonth);
  addedLastSixMonths_.initialise(node, sums.addedLastSixMonths);
  addedSinceLastScan_.initialise(node, sums.addedSinceLastScan);
  // childRange: only a folder that was read has one.
}

NodeSums FileTree::sumsOf(NodeId node) const {
  return {apparentSize_.load(node),
          allocatedSize_.load(node),
          static_cast<std::uint32_t>(itemCount_.load(node)),
          addedLastMonth_.load(node),
          addedLastSixMonths_.load(node),
          addedSinceLastScan_.load(node)};
}

void FileTree::addSums(NodeId node, const NodeSums& sums) {
  apparentSize_.add(node, sums.apparentSize);
  allocatedSize_.add(node, sums.allocatedSize);
  itemCount_.store(node, static_cast<std::int32_t>(
                             static_cast<std::uint32_t>(itemCount_.load(node)) + sums.itemCount));
  addedLastMonth_.add(node, sums.addedLastMonth);
  addedLastSixMonths_.add(node, sums.addedLastSixMonths);
  addedSinceLastScan_.add(node, sums.addedSinceLastScan);
}

/// Adds `sums` to `from` and to what lies above it, up to the root or the first taken-out node. A
/// folder of folders has nothing to add, which is all there is in most of a long chain.
void FileTree::rollUp(NodeId from, const NodeSums& sums) {
  if (sums == NodeSums{}) return;
  for (NodeId node = from;; node = parent_[node]) {
    addSums(node, sums);
    if (node == kRootNode || isTakenOut(node)) return;
  }
}

void FileTree::publish() { published_.store(static_cast<NodeId>(end_), std::memory_order_release); }

void FileTree::setFlags(NodeId node, NodeFlags flags) {
  flags_.store(node, flags.bits(), std::memory_order_release);
}

void FileTree::setChildren(NodeId node, NodeRange range) {
  childRange_.store(node, std::uint64_t{range.first} << 32 | range.size(),
                    std::memory_order_release);
}

NodeRange FileTree::children(NodeId node) const {
  const NodeId end = nodeCount();
  const std::uint64_t range = childRange_.load(node);
  return publishedPart(firstOf(range), countOf(range), end);
}

/// A dropped node keeps its parent, so the way up proves nothing by itself: each folder on it must
/// still hold, in its child range, the entry below.
///
/// Level by level this looks at different moments, and the tree may change in between. The answer
/// is true for one moment all the same. Nothing is taken out or dropped unless it is visible, and
/// from the inside out: a level that breaks finds all above it whole. So either no level broke
/// between the first look and the last, or all of them were whole just before the first one that
/// did. Acquire keeps the looks in their order.
bool FileTree::isVisible(NodeId node) const {
  if (node >= nodeCount()) return false;
  for (; node != kRootNode; node = parent_[node]) {
    const std::uint8_t bits = flags_.load(node, std::memory_order_acquire);
    if (NodeFlags::fromBits(bits).has(NodeFlag::Excluded)) return false;
    const std::uint64_t range = childRange_.load(parent_[node], std::memory_order_acquire);
    const NodeId first = firstOf(range);
    if (node < first || node - first >= countOf(range)) return false;
  }
  return true;
}

std::string FileTree::path(NodeId node) const {
  std::string result;
  path(node, &result);
  return result;
}

/// Two passes up the parents: the length first, so that the components can be written from the
/// back.
void FileTree::path(NodeId node, std::string* out) const {
  const bool slashEnded = !rootPath_.empty() && rootPath_.back() == '/';
  std::size_t length = rootPath_.size() - (slashEnded && node != kRootNode ? 1 : 0);
  const std::size_t rootLength = length;
  for (NodeId n = node; n != kRootNode; n = parent_[n]) length += 1 + nameLength_[n];
  out->resize(length);
  char* end = out->data() + length;
  for (NodeId n = node; n != kRootNode; n = parent_[n]) {
    const std::string_view part = name(n);
    end -= part.size();
    std::copy(part.begin(), part.end(), end);
    *--end = '/';
  }
  std::copy_n(rootPath_.data(), rootLength, out->data());
}

std::uint64_t FileTree::countSubtree(NodeId node) const {
  if (node >= nodeCount() || isTakenOut(node)) return 0;
  std::uint64_t count = 0;
  std::vector<NodeId> pending = {node};
  while (!pending.empty()) {
    const NodeId next = pending.back();
    pending.pop_back();
    ++count;
    const NodeRange range = children(next);
    for (NodeId child = range.first; child < range.last; ++child) {
      if (!isTakenOut(child)) pending.push_back(child);
    }
  }
  return count;
}

}  // namespace sizewalk
