#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <tuple>

#include "sizewalk/tree_scanner.h"

namespace test {

sizewalk::ScanOptions withThreads(int threads);

/// A scan of one folder, from start to end.
struct Scan {
  explicit Scan(const std::string& path, int threads = 4);
  const sizewalk::FileTree& tree() const { return scanner.tree(); }
  sizewalk::TreeScanner scanner;
};

/// Everything that a tree says of each path, free of the order in which directories were read.
using TreeEntry =
    std::tuple<std::int16_t, std::uint8_t, std::uint64_t, std::uint64_t, std::int32_t>;
std::map<std::string, TreeEntry> describe(const sizewalk::FileTree& tree);

/// The node of that path; the root, and a failure of the test, where there is none.
sizewalk::NodeId nodeOf(const sizewalk::FileTree& tree, const std::string& path);

}  // namespace test
