#include "sizewalk/file_tree.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "sizewalk/fatal.h"

// Taking subtrees out while the walk goes on rests on one rule: a sum is rolled up as far as the
// first taken-out node and no further, and only what no taken-out node stands above counts in the
// totals. So a taken-out node always carries what its subtree holds at the moment, and putting it
// back is adding that to what lies above, whether or not the walk has been inside since. Keeping a
// copy of the sums in the removal record instead would put back what the subtree held when it was
// taken out, and lose the rest.

namespace sizewalk {

namespace {

constexpr std::array kScanFields = {&ScanTotals::files,         &ScanTotals::directories,
                                    &ScanTotals::datedEntries,  &ScanTotals::hardLinks,
                                    &ScanTotals::hardLinkBytes, &ScanTotals::errors,
                                    &ScanTotals::systemCalls};

constexpr std::array kKindFields = {
    &KindTotals::allocatedSize,  &KindTotals::apparentSize,       &KindTotals::count,
    &KindTotals::addedLastMonth, &KindTotals::addedLastSixMonths, &KindTotals::addedSinceLastScan};

std::uint64_t loadShared(std::uint64_t& value) {
  return std::atomic_ref(value).load(std::memory_order_relaxed);
}

/// Adds with one writer, so that a load and a store suffice; wraps, so that it also subtracts.
void addShared(std::uint64_t& value, std::uint64_t amount) {
  std::atomic_ref(value).store(loadShared(value) + amount, std::memory_order_relaxed);
}

template <typename Totals, typename Fields>
Totals loadTotals(Totals& shared, const Fields& fields) {
  Totals copy;
  for (const auto field : fields) copy.*field = loadShared(shared.*field);
  return copy;
}

template <typename Totals, typename Fields>
void addTotals(Totals& shared, const Totals& amount, const Fields& fields, bool add) {
  for (const auto field : fields) {
    const std::uint64_t value = amount.*field;
    if (value != 0) addShared(shared.*field, add ? value : 0 - value);
  }
}

std::string_view lastComponent(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string_view::npos || path.size() == 1) return path;
  return path.substr(slash + 1);
}

}  // namespace

/// The six values that roll up. Unsigned with wrap-around, so that the same code adds and
/// subtracts.
struct FileTree::Sums {
  std::uint64_t apparentSize = 0;
  std::uint64_t allocatedSize = 0;
  std::uint32_t itemCount = 0;
  std::uint64_t addedLastMonth = 0;
  std::uint64_t addedLastSixMonths = 0;
  std::uint64_t addedSinceLastScan = 0;

  void add(const Sums& other) {
    apparentSize += other.apparentSize;
    allocatedSize += other.allocatedSize;
    itemCount += other.itemCount;
    addedLastMonth += other.addedLastMonth;
    addedLastSixMonths += other.addedLastSixMonths;
    addedSinceLastScan += other.addedSinceLastScan;
  }

  Sums negated() const {
    return {0 - apparentSize,   0 - allocatedSize,      0 - itemCount,
            0 - addedLastMonth, 0 - addedLastSixMonths, 0 - addedSinceLastScan};
  }
};

/// Every total that the visible nodes of a subtree account for.
struct FileTree::Tally {
  ScanTotals scan;
  std::array<KindTotals, kKindCount> kinds{};
};

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
      firstChild_(limits.nodes),
      childCount_(limits.nodes),
      birthTime_(limits.nodes),
      addedLastMonth_(limits.nodes),
      addedLastSixMonths_(limits.nodes),
      addedSinceLastScan_(limits.nodes),
      names_(limits.nameBytes) {}

void FileTree::createRoot(std::string rootPath, std::uint32_t birthTime) {
  const base::MutexLock lock(writeMutex_);
  rootPath_ = std::move(rootPath);
  growTo(1);
  EntryRecord root;
  root.kind = kKindFolder;
  root.birthTime = birthTime;
  writeNode(kRootNode, kRootNode, root, lastComponent(rootPath_), NodeFlag::Directory, {});
  publish();
}

// --- Growing
// ------------------------------------------------------------------------------------------

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
  firstChild_.grow(nodes);
  childCount_.grow(nodes);
  birthTime_.grow(nodes);
  addedLastMonth_.grow(nodes);
  addedLastSixMonths_.grow(nodes);
  addedSinceLastScan_.grow(nodes);
  end_ = nodes;
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

void FileTree::addChildren(const DirectoryResult& result, std::vector<NodeId>* subdirectories) {
  subdirectories->clear();
  const base::MutexLock lock(writeMutex_);
  const NodeId directory = result.directory;
  const bool visible = !beneathExcluded(directory);
  noteErrors(result, visible);
  if (result.entries.empty()) return;

  const std::uint64_t first = end_;
  growTo(end_ + result.entries.size());
  const auto firstNode = static_cast<NodeId>(first);
  const Sums batch = appendEntries(result, firstNode, visible);
  setChildren(directory, firstNode, static_cast<std::uint32_t>(result.entries.size()));
  if (visible) {
    addShared(totals_.files, batch.itemCount);
    addShared(totals_.directories, result.subdirectories.size());
  }
  rollUp(directory, batch);
  publish();
  for (const std::uint32_t position : result.subdirectories) {
    subdirectories->push_back(firstNode + position);
  }
}

void FileTree::noteErrors(const DirectoryResult& result, bool visible) {
  addShared(totals_.systemCalls, result.systemCalls);
  if (result.unreadable) {
    setFlags(result.directory, flags(result.directory).with(NodeFlag::Unreadable));
  }
  if (result.errors == 0) return;
  if (visible) addShared(totals_.errors, result.errors);
  const auto flagged = static_cast<std::uint64_t>(std::ranges::count_if(
      result.entries, [](const EntryRecord& e) { return e.flags.has(NodeFlag::Unreadable); }));
  const std::uint64_t unflagged = result.errors - flagged - (result.unreadable ? 1 : 0);
  if (unflagged != 0) listingFailures_.push_back({result.directory, unflagged});
}

FileTree::Sums FileTree::appendEntries(const DirectoryResult& result, NodeId first, bool visible) {
  Sums batch;
  std::uint64_t dated = 0;
  NodeId node = first;
  for (const EntryRecord& entry : result.entries) {
    const bool duplicate = noteHardLink(entry, node, visible);
    const Sums sums = entrySums(entry, duplicate);
    const NodeFlags flags = duplicate ? entry.flags.with(NodeFlag::HardLinkDuplicate) : entry.flags;
    writeNode(node, result.directory, entry, result.nameOf(entry), flags, sums);
    dated += entry.birthTime != 0;
    if (visible && !entry.flags.has(NodeFlag::Directory)) {
      KindTotals& kind = kindTotals_[entry.kind];
      addShared(kind.allocatedSize, sums.allocatedSize);
      addShared(kind.apparentSize, sums.apparentSize);
      addShared(kind.count, 1);
      addShared(kind.addedLastMonth, sums.addedLastMonth);
      addShared(kind.addedLastSixMonths, sums.addedLastSixMonths);
      addShared(kind.addedSinceLastScan, sums.addedSinceLastScan);
    }
    batch.add(sums);
    ++node;
  }
  if (visible) addShared(totals_.datedEntries, dated);
  return batch;
}

/// True when the entry's file was counted at another node before.
bool FileTree::noteHardLink(const EntryRecord& entry, NodeId node, bool visible) {
  if (entry.hardLinkKey == 0 || !options_.dedupeHardLinks) return false;
  if (hardLinks_.findOrInsert(entry.hardLinkKey, node) == node) return false;
  duplicates_.push_back({node, entry.allocatedSize});
  if (visible) {
    addShared(totals_.hardLinks, 1);
    addShared(totals_.hardLinkBytes, entry.allocatedSize);
  }
  return true;
}

FileTree::Sums FileTree::entrySums(const EntryRecord& entry, bool duplicate) const {
  if (duplicate) return {};
  Sums sums;
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

void FileTree::writeNode(NodeId node, NodeId parent, const EntryRecord& entry,
                         std::string_view name, NodeFlags flags, const Sums& sums) {
  parent_[node] = parent;
  nameOffset_[node] = storeName(name);
  nameLength_[node] = static_cast<std::uint16_t>(name.size());
  kind_[node] = entry.kind;
  flags_[node] = flags.bits();
  apparentSize_[node] = sums.apparentSize;
  allocatedSize_[node] = sums.allocatedSize;
  itemCount_[node] = static_cast<std::int32_t>(sums.itemCount);
  birthTime_[node] = entry.birthTime;
  addedLastMonth_[node] = sums.addedLastMonth;
  addedLastSixMonths_[node] = sums.addedLastSixMonths;
  addedSinceLastScan_[node] = sums.addedSinceLastScan;
  // firstChild and childCount: the fresh page holds the 0 they start with.
}

// --- Sums
// ---------------------------------------------------------------------------------------------

FileTree::Sums FileTree::sumsOf(NodeId node) const {
  return {apparentSize_.load(node),
          allocatedSize_.load(node),
          static_cast<std::uint32_t>(itemCount_.load(node)),
          addedLastMonth_.load(node),
          addedLastSixMonths_.load(node),
          addedSinceLastScan_.load(node)};
}

void FileTree::addSums(NodeId node, const Sums& sums) {
  apparentSize_.add(node, sums.apparentSize);
  allocatedSize_.add(node, sums.allocatedSize);
  itemCount_.store(node, static_cast<std::int32_t>(
                             static_cast<std::uint32_t>(itemCount_.load(node)) + sums.itemCount));
  addedLastMonth_.add(node, sums.addedLastMonth);
  addedLastSixMonths_.add(node, sums.addedLastSixMonths);
  addedSinceLastScan_.add(node, sums.addedSinceLastScan);
}

/// Adds `sums` to `from` and to what lies above it, up to the root or the first taken-out node.
void FileTree::rollUp(NodeId from, const Sums& sums) {
  for (NodeId node = from;; node = parent_[node]) {
    addSums(node, sums);
    if (node == kRootNode || flags(node).has(NodeFlag::Excluded)) return;
  }
}

void FileTree::publish() { published_.store(static_cast<NodeId>(end_), std::memory_order_release); }

void FileTree::setFlags(NodeId node, NodeFlags flags) { flags_.store(node, flags.bits()); }

/// A change of an existing range passes through 0, which `children` uses to tell a torn pair.
void FileTree::setChildren(NodeId node, NodeId first, std::uint32_t count) {
  childCount_.store(node, 0, std::memory_order_release);
  firstChild_.store(node, first, std::memory_order_release);
  childCount_.store(node, count, std::memory_order_release);
}

NodeRange FileTree::children(NodeId node) const {
  const NodeId end = nodeCount();
  const std::uint32_t count = childCount_.load(node, std::memory_order_acquire);
  const NodeId first = firstChild_.load(node, std::memory_order_acquire);
  // The count read twice: equal counts around a changed start would need the start to have been
  // written between two equal values, and every change writes a 0 between them.
  if (count == 0 || childCount_.load(node) != count || first >= end) return {};
  return {first, first + std::min(count, end - first)};
}

// --- Taking out and putting back
// ------------------------------------------------------------------------

bool FileTree::beneathExcluded(NodeId node) const {
  if (takenOut_.empty()) return false;
  for (;; node = parent_[node]) {
    if (flags(node).has(NodeFlag::Excluded)) return true;
    if (node == kRootNode) return false;
  }
}

/// Whether the root leads to `node` without passing anything taken out or dropped.
bool FileTree::isVisible(NodeId node) const {
  if (node >= end_) return false;
  for (; node != kRootNode; node = parent_[node]) {
    const NodeId above = parent_[node];
    const NodeId first = firstChild_[above];
    if (node < first || node - first >= childCount_[above]) return false;
    if (flags(node).has(NodeFlag::Excluded)) return false;
  }
  return true;
}

bool FileTree::isWithin(NodeId node, NodeId folder) const {
  while (node != folder && node != kRootNode) node = parent_[node];
  return node == folder;
}

void FileTree::tallyNode(NodeId node, Tally* tally) const {
  const NodeFlags flags = this->flags(node);
  tally->scan.datedEntries += birthTime_[node] != 0;
  tally->scan.errors += flags.has(NodeFlag::Unreadable);
  if (flags.has(NodeFlag::Directory)) {
    tally->scan.directories += !flags.has(NodeFlag::MountPoint);
    return;
  }
  tally->scan.files += static_cast<std::uint32_t>(itemCount_[node]);
  KindTotals& kind = tally->kinds[kind_[node]];
  kind.allocatedSize += allocatedSize_[node];
  kind.apparentSize += apparentSize_[node];
  kind.count += 1;
  kind.addedLastMonth += addedLastMonth_[node];
  kind.addedLastSixMonths += addedLastSixMonths_[node];
  kind.addedSinceLastScan += addedSinceLastScan_[node];
  if (flags.has(NodeFlag::HardLinkDuplicate)) {
    const auto found = std::ranges::lower_bound(duplicates_, node, {}, &Duplicate::node);
    tally->scan.hardLinks += 1;
    tally->scan.hardLinkBytes += found->bytes;
  }
}

/// What `node` and all that is visible beneath it account for.
FileTree::Tally FileTree::tallySubtree(NodeId node) const {
  Tally tally;
  tallyNode(node, &tally);
  std::vector<NodeId> folders = {node};
  while (!folders.empty()) {
    const NodeId folder = folders.back();
    folders.pop_back();
    const NodeId first = firstChild_[folder];
    for (NodeId child = first; child != first + childCount_[folder]; ++child) {
      if (flags(child).has(NodeFlag::Excluded)) continue;
      tallyNode(child, &tally);
      if (childCount_[child] != 0) folders.push_back(child);
    }
  }
  for (const ListingFailure& failure : listingFailures_) {
    NodeId above = failure.directory;
    while (above != node && above != kRootNode && !flags(above).has(NodeFlag::Excluded)) {
      above = parent_[above];
    }
    if (above == node) tally.scan.errors += failure.errors;
  }
  return tally;
}

void FileTree::applyTally(const Tally& tally, bool add) {
  addTotals(totals_, tally.scan, kScanFields, add);
  for (std::size_t kind = 0; kind < tally.kinds.size(); ++kind) {
    addTotals(kindTotals_[kind], tally.kinds[kind], kKindFields, add);
  }
}

RemovedSubtree FileTree::removeSubtree(NodeId node) {
  const base::MutexLock lock(writeMutex_);
  if (node == kRootNode || !isVisible(node)) return {};
  const Sums sums = sumsOf(node);
  const RemovedSubtree record = {static_cast<std::int32_t>(node), firstChild_[node],
                                 childCount_[node], sums.allocatedSize, true};
  applyTally(tallySubtree(node), false);
  rollUp(parent_[node], sums.negated());
  setFlags(node, flags(node).with(NodeFlag::Excluded));
  setChildren(node, 0, 0);
  takenOut_.push_back({node, sums.allocatedSize});
  takenOutBytes_.fetch_add(sums.allocatedSize, std::memory_order_relaxed);
  publish();
  return record;
}

void FileTree::restoreSubtree(const RemovedSubtree& record) {
  const base::MutexLock lock(writeMutex_);
  if (!record.valid || record.node < 0 || static_cast<NodeId>(record.node) >= end_) return;
  const auto node = static_cast<NodeId>(record.node);
  const auto found = std::ranges::find(takenOut_, node, &TakenOut::node);
  if (found == takenOut_.end()) return;

  takenOut_.erase(found);
  takenOutBytes_.fetch_sub(record.allocatedBytes, std::memory_order_relaxed);
  setFlags(node, flags(node).without(NodeFlag::Excluded));
  // A folder that had not been read when it was taken out may have been read since: then its range
  // is set.
  if (record.childCount != 0) setChildren(node, record.firstChild, record.childCount);
  rollUp(parent_[node], sumsOf(node));
  if (!beneathExcluded(node)) applyTally(tallySubtree(node), true);
  publish();
}

bool FileTree::dropContents(NodeId folder) {
  const base::MutexLock lock(writeMutex_);
  if (!isVisible(folder) || !isDirectory(folder)) return false;

  Tally contents = tallySubtree(folder);
  contents.scan.datedEntries -= birthTime_[folder] != 0;  // the folder itself stays
  contents.scan.directories -= !flags(folder).has(NodeFlag::MountPoint);
  applyTally(contents, false);
  setFlags(folder, flags(folder).without(NodeFlag::Unreadable));
  rollUp(folder, sumsOf(folder).negated());

  const auto within = [&](NodeId node) { return isWithin(node, folder); };
  hardLinks_.eraseIf(within);
  std::erase_if(listingFailures_, [&](const auto& failure) { return within(failure.directory); });
  std::erase_if(duplicates_, [&](const auto& duplicate) { return within(duplicate.node); });
  std::erase_if(takenOut_, [&](const TakenOut& taken) {
    if (!within(taken.node)) return false;
    takenOutBytes_.fetch_sub(taken.bytes, std::memory_order_relaxed);
    return true;
  });
  setChildren(folder, 0, 0);
  publish();
  return true;
}

// --- Reading
// --------------------------------------------------------------------------------------------

ScanTotals FileTree::totals() const { return loadTotals(totals_, kScanFields); }

KindTotals FileTree::kindTotals(int kind) const {
  if (kind < 0 || kind >= kKindCount) return {};
  return loadTotals(kindTotals_[static_cast<std::size_t>(kind)], kKindFields);
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
  if (node >= nodeCount() || flags(node).has(NodeFlag::Excluded)) return 0;
  std::uint64_t count = 0;
  std::vector<NodeId> pending = {node};
  while (!pending.empty()) {
    const NodeId next = pending.back();
    pending.pop_back();
    ++count;
    const NodeRange range = children(next);
    for (NodeId child = range.first; child < range.last; ++child) {
      if (!flags(child).has(NodeFlag::Excluded)) pending.push_back(child);
    }
  }
  return count;
}

}  // namespace sizewalk
