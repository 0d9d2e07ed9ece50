#include "tests/sizewalk/tree_model.h"

#include <gtest/gtest.h>

namespace test {

using sizewalk::EntryRecord;
using sizewalk::FileTree;
using sizewalk::NodeFlag;
using sizewalk::NodeId;

Listing& Listing::add(const std::string& name, const EntryRecord& entry) {
  result_.addEntry(name, entry);
  return *this;
}

Listing& Listing::file(const std::string& name, std::uint64_t apparent, std::uint64_t allocated,
                       std::uint32_t birthTime, std::uint64_t hardLinkKey) {
  EntryRecord entry;
  entry.kind = sizewalk::classifyName(name);
  entry.apparentSize = apparent;
  entry.allocatedSize = allocated;
  entry.itemCount = 1;
  entry.birthTime = birthTime;
  entry.hardLinkKey = hardLinkKey;
  return add(name, entry);
}

Listing& Listing::folder(const std::string& name, std::uint32_t birthTime) {
  EntryRecord entry;
  entry.kind = sizewalk::kKindFolder;
  entry.flags = NodeFlag::Directory;
  entry.birthTime = birthTime;
  result_.subdirectories.push_back(static_cast<std::uint32_t>(result_.entries.size()));
  return add(name, entry);
}

Listing& Listing::mountPoint(const std::string& name) {
  EntryRecord entry;
  entry.kind = sizewalk::kKindFolder;
  entry.flags = sizewalk::NodeFlags(NodeFlag::Directory).with(NodeFlag::MountPoint);
  return add(name, entry);
}

Listing& Listing::unreadableEntry(const std::string& name) {
  EntryRecord entry;
  entry.flags = NodeFlag::Unreadable;
  entry.itemCount = 1;
  ++result_.errors;
  return add(name, entry);
}

Listing& Listing::unreadable() {
  result_.unreadable = true;
  ++result_.errors;
  return *this;
}

Listing& Listing::breaksOff() {
  ++result_.errors;
  return *this;
}

std::vector<NodeId> add(FileTree& tree, const Listing& listing) {
  std::vector<NodeId> subdirectories;
  tree.addChildren(listing.result(), &subdirectories);
  return subdirectories;
}

namespace {

void countNode(const FileTree& tree, NodeId node, Recount* out) {
  out->totals.datedEntries += tree.birthTime(node) != 0;
  out->totals.errors += tree.flags(node).has(NodeFlag::Unreadable);
  if (tree.isDirectory(node)) {
    out->totals.directories += !tree.flags(node).has(NodeFlag::MountPoint);
    return;
  }
  out->totals.files += static_cast<std::uint64_t>(tree.itemCount(node));
  out->totals.hardLinks += tree.flags(node).has(NodeFlag::HardLinkDuplicate);
  auto& kind = out->kinds[static_cast<std::size_t>(tree.kind(node))];
  kind.count += 1;
  kind.allocatedSize += tree.allocatedSize(node);
  kind.apparentSize += tree.apparentSize(node);
  kind.addedLastMonth += tree.addedLastMonth(node);
  kind.addedLastSixMonths += tree.addedLastSixMonths(node);
  kind.addedSinceLastScan += tree.addedSinceLastScan(node);
}

Recount::Sums countFolder(const FileTree& tree, NodeId folder, Recount* out) {
  Recount::Sums sums;
  const sizewalk::NodeRange children = tree.children(folder);
  for (NodeId child = children.first; child < children.last; ++child) {
    if (tree.isTakenOut(child)) continue;
    countNode(tree, child, out);
    Recount::Sums of = {tree.apparentSize(child),       tree.allocatedSize(child),
                        tree.addedLastMonth(child),     tree.addedLastSixMonths(child),
                        tree.addedSinceLastScan(child), tree.itemCount(child)};
    if (tree.isDirectory(child)) of = countFolder(tree, child, out);
    sums.apparent += of.apparent;
    sums.allocated += of.allocated;
    sums.month += of.month;
    sums.sixMonths += of.sixMonths;
    sums.sinceLast += of.sinceLast;
    sums.items += of.items;
  }
  out->folders[folder] = sums;
  return sums;
}

}  // namespace

Recount recount(const FileTree& tree) {
  Recount result;
  countFolder(tree, sizewalk::kRootNode, &result);
  result.totals.errors += tree.flags(sizewalk::kRootNode).has(NodeFlag::Unreadable);
  return result;
}

void expectSumsMatchRecount(const FileTree& tree) {
  const Recount fresh = recount(tree);
  for (const auto& [node, sums] : fresh.folders) {
    const Recount::Sums kept = {tree.apparentSize(node),       tree.allocatedSize(node),
                                tree.addedLastMonth(node),     tree.addedLastSixMonths(node),
                                tree.addedSinceLastScan(node), tree.itemCount(node)};
    EXPECT_EQ(kept, sums) << "folder " << node << " " << tree.path(node);
  }
  for (sizewalk::KindIndex kind = 0; kind < sizewalk::kKindCount; ++kind) {
    EXPECT_EQ(tree.kindTotals(kind), fresh.kinds[static_cast<std::size_t>(kind)])
        << "kind " << kind;
  }
  const sizewalk::ScanTotals totals = tree.totals();
  EXPECT_EQ(totals.files, fresh.totals.files);
  EXPECT_EQ(totals.directories, fresh.totals.directories);
  EXPECT_EQ(totals.datedEntries, fresh.totals.datedEntries);
  EXPECT_EQ(totals.hardLinks, fresh.totals.hardLinks);
  EXPECT_EQ(totals.errors, fresh.totals.errors);
}

SmallTree::SmallTree() {
  tree.createRoot("/r");
  add(tree, Listing(0).folder("a").folder("b"));
  add(tree, Listing(1).file("x.txt", 10, 512).file("y.txt", 20, 1024));
}

}  // namespace test
