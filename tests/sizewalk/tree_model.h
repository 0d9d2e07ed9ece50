#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "sizewalk/file_tree.h"

namespace test {

/// Builds listings by hand: `Listing(7).file("a", 100).folder("b")` is what a reader finds in
/// node 7.
class Listing {
 public:
  explicit Listing(sizewalk::NodeId directory) { result_.reset(directory); }

  Listing& file(const std::string& name, std::uint64_t apparent, std::uint64_t allocated = 0,
                std::uint32_t birthTime = 0, std::uint64_t hardLinkKey = 0);
  Listing& folder(const std::string& name, std::uint32_t birthTime = 0);
  Listing& mountPoint(const std::string& name);
  Listing& unreadableEntry(const std::string& name);
  Listing& add(const std::string& name, const sizewalk::EntryRecord& entry);
  Listing& unreadable();
  /// The listing broke off after the entries that were added.
  Listing& breaksOff();

  const sizewalk::DirectoryResult& result() const { return result_; }

 private:
  sizewalk::DirectoryResult result_;
};

/// Adds a listing to the tree and returns the subdirectories to be read next.
std::vector<sizewalk::NodeId> add(sizewalk::FileTree& tree, const Listing& listing);

/// All that a tree adds up to, counted afresh from the leaves by plain recursion over child ranges.
/// The oracle for every sum that the tree keeps current.
struct Recount {
  struct Sums {
    std::uint64_t apparent = 0, allocated = 0, month = 0, sixMonths = 0, sinceLast = 0;
    std::int64_t items = 0;
    friend bool operator==(const Sums&, const Sums&) = default;
  };
  std::map<sizewalk::NodeId, Sums> folders;
  sizewalk::ScanTotals totals;  // without hardLinkBytes and systemCalls
  std::vector<sizewalk::KindTotals> kinds = std::vector<sizewalk::KindTotals>(sizewalk::kKindCount);
};
Recount recount(const sizewalk::FileTree& tree);

/// Fails the current test where the tree's own sums and totals differ from a recount.
void expectSumsMatchRecount(const sizewalk::FileTree& tree);

/// /r with folder a (node 1) holding x.txt (3) and y.txt (4), and folder b (2), not read.
struct SmallTree {
  SmallTree();
  sizewalk::FileTree tree;
};

}  // namespace test
