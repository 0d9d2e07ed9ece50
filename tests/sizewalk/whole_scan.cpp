#include "tests/sizewalk/whole_scan.h"

#include <gtest/gtest.h>

namespace test {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;

sizewalk::ScanOptions withThreads(int threads) {
  sizewalk::ScanOptions options;
  options.threads = threads;
  return options;
}

Scan::Scan(const std::string& path, int threads) : scanner(withThreads(threads)) {
  scanner.setRoot(path);
  scanner.walk(kRootNode);
}

std::map<std::string, TreeEntry> describe(const FileTree& tree) {
  std::map<std::string, TreeEntry> result;
  for (NodeId node = 0; node < tree.nodeCount(); ++node) {
    result[tree.path(node)] = {tree.kind(node), tree.flags(node).bits(), tree.apparentSize(node),
                               tree.allocatedSize(node), tree.itemCount(node)};
  }
  return result;
}

NodeId nodeOf(const FileTree& tree, const std::string& path) {
  for (NodeId node = 0; node < tree.nodeCount(); ++node) {
    if (tree.path(node) == path) return node;
  }
  ADD_FAILURE() << path << " is not in the tree";
  return kRootNode;
}

}  // namespace test
