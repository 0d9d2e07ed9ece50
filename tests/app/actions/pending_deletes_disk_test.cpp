// The list of what waits to be deleted, over real folders that real scans read.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "app/actions/pending_deletes.h"
#include "app/actions/trash.h"
#include "sizewalk/file_kinds.h"
#include "sizewalk/tree_scanner.h"
#include "tests/sizewalk/tree_model.h"
#include "tests/support/environment.h"
#include "tests/support/file_access.h"
#include "tests/support/real_tree.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using sizewalk::TreeScanner;
using test::TempDirectory;
using test::writeFile;

std::optional<ItemIdentity> identityOf(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return std::nullopt;
  return ItemIdentity{status.st_dev, status.st_ino};
}

sizewalk::ScanOptions withThreads(int threads) {
  sizewalk::ScanOptions options(2'000'000'000);
  options.threads = threads;
  return options;
}

struct Scan {
  explicit Scan(const std::string& path, int threads = 2) : scanner(withThreads(threads)) {
    scanner.setRoot(path);
    scanner.walk(kRootNode);
  }
  FileTree& tree() { return scanner.tree(); }
  TreeScanner scanner;
};

NodeId nodeAt(const FileTree& tree, const std::string& path) {
  for (NodeId node = 0; node < tree.nodeCount(); ++node) {
    if (tree.path(node) == path) return node;
  }
  ADD_FAILURE() << "not in the tree: " << path;
  return kRootNode;
}

/// Everything that a tree adds up to, as a fresh scan of `path` has it.
void expectAsScanned(const FileTree& tree, const std::string& path) {
  Scan fresh(path);
  const FileTree& expected = fresh.tree();
  EXPECT_EQ(tree.apparentSize(kRootNode), expected.apparentSize(kRootNode));
  EXPECT_EQ(tree.allocatedSize(kRootNode), expected.allocatedSize(kRootNode));
  EXPECT_EQ(tree.itemCount(kRootNode), expected.itemCount(kRootNode));
  EXPECT_EQ(tree.addedLastMonth(kRootNode), expected.addedLastMonth(kRootNode));
  EXPECT_EQ(tree.addedLastSixMonths(kRootNode), expected.addedLastSixMonths(kRootNode));
  EXPECT_EQ(tree.countSubtree(kRootNode), expected.countSubtree(kRootNode));
  EXPECT_EQ(tree.totals().files, expected.totals().files);
  EXPECT_EQ(tree.totals().directories, expected.totals().directories);
  EXPECT_EQ(tree.totals().hardLinks, expected.totals().hardLinks);
  EXPECT_EQ(tree.totals().hardLinkBytes, expected.totals().hardLinkBytes);
  for (sizewalk::KindIndex kind = 0; kind < sizewalk::kKindCount; ++kind) {
    EXPECT_EQ(tree.kindTotals(kind), expected.kindTotals(kind)) << kind;
  }
  test::expectSumsMatchRecount(tree);
}

/// A folder of files and a trash beside it, of which items are renamed into.
class PendingOnDisk : public testing::Test {
 protected:
  PendingOnDisk() {
    test::makeDirectory(folder());
    test::makeDirectory(dir_ / "trash");
    pending_.trash = [this](const PendingDelete& item, const ItemIdentity& identity,
                            std::string* error) {
      if (identityOf(item.path) != identity) {
        *error = "It is another one.";
        return false;
      }
      return std::rename(item.path.c_str(), (dir_ / ("trash/" + item.name)).c_str()) == 0;
    };
    pending_.failed = [this](const std::string& path, const std::string& error) {
      failures_.push_back(path + ": " + error);
    };
  }

  std::string folder() const { return dir_ / "folder"; }
  std::string at(const std::string& relative) const { return folder() + "/" + relative; }
  void put(const FileTree& tree, const std::vector<std::string>& relative) {
    std::vector<NodeId> nodes;
    for (const std::string& path : relative) nodes.push_back(nodeAt(tree, at(path)));
    pending_.add(nodes);
  }

  TempDirectory dir_;
  PendingDeletes pending_{identityOf};
  std::vector<std::string> failures_;
};

TEST_F(PendingOnDisk, LeavesTheTotalsOfAFreshScanWhateverIsPutBackInWhateverOrder) {
  test::makeBushyTree(folder(), 11, 120, 5);
  std::mt19937 random(5);
  Scan scan(folder());
  FileTree& tree = scan.tree();
  pending_.setTree(&tree);
  for (int round = 0; round < 40; ++round) {
    for (int i = 0; i < 6; ++i) {
      std::vector<NodeId> nodes;
      for (int n = 0; n < 3; ++n) nodes.push_back(static_cast<NodeId>(random() % tree.nodeCount()));
      pending_.add(nodes);
    }
    while (!pending_.empty()) pending_.undelete(random() % pending_.size());
  }
  expectAsScanned(tree, folder());
}

TEST_F(PendingOnDisk, LeavesTheTotalsOfAFreshScanAfterTrashing) {
  test::makeBushyTree(folder(), 12, 80, 5);
  writeFile(at("linked/one.txt"), std::string(9000, 'x'));
  writeFile(at("other/keep"), "k");
  ASSERT_EQ(link(at("linked/one.txt").c_str(), at("other/two.txt").c_str()), 0);
  Scan scan(folder());
  pending_.setTree(&scan.tree());
  put(scan.tree(), {"other/keep"});
  put(scan.tree(), {"other"});
  pending_.undelete(1);
  pending_.tick(10'000);
  EXPECT_FALSE(fs::exists(at("other/keep")));
  EXPECT_TRUE(fs::exists(dir_ / "trash/keep"));
  expectAsScanned(scan.tree(), folder());
}

TEST_F(PendingOnDisk, TouchesNothingBeforeItsTime) {
  writeFile(at("a/file"), "12345");
  Scan scan(folder());
  pending_.setTree(&scan.tree());
  put(scan.tree(), {"a"});
  pending_.tick(9'999);
  EXPECT_TRUE(fs::exists(at("a/file")));
  pending_.tick(1);
  EXPECT_FALSE(fs::exists(at("a")));
  EXPECT_TRUE(fs::exists(dir_ / "trash/a/file"));
}

TEST_F(PendingOnDisk, MovesWhatIsLeftAloneToTheTrashOfTheUser) {
  const test::PrivateHome home;
  writeFile(at("a/file"), "12345");
  Scan scan(folder());
  PendingDeletes pending(identify);
  pending.trash = [](const PendingDelete& item, const ItemIdentity& identity, std::string* error) {
    return moveToTrash(item.path, identity, error);
  };
  pending.failed = pending_.failed;
  pending.setTree(&scan.tree());
  pending.add(std::vector{nodeAt(scan.tree(), at("a"))});
  EXPECT_EQ(scan.tree().itemCount(kRootNode), 0);
  EXPECT_TRUE(pending.tick(10'000));
  EXPECT_EQ(failures_, std::vector<std::string>{});
  EXPECT_FALSE(fs::exists(at("a")));
  expectAsScanned(scan.tree(), folder());
}

TEST_F(PendingOnDisk, DoesNotTrashWhatTookTheItemsPlace) {
  writeFile(at("file"), "the one that was scanned");
  Scan scan(folder());
  pending_.setTree(&scan.tree());
  put(scan.tree(), {"file"});
  // By the deadline of its answer it is known what lies there.
  ASSERT_TRUE(answerBy(std::chrono::steady_clock::now() + std::chrono::seconds(20),
                       pending_.items()[0].identity));
  writeFile(at("new"), "of somebody else");
  fs::rename(at("new"), at("file"));
  pending_.tick(10'000);
  EXPECT_EQ(failures_, std::vector{at("file") + ": It is another one."});
  EXPECT_EQ(test::readFile(at("file")), "of somebody else");
  EXPECT_EQ(scan.tree().itemCount(kRootNode), 1);
}

TEST_F(PendingOnDisk, TellsALinkFromWhatItLeadsTo) {
  writeFile(at("target"), "t");
  fs::create_symlink("target", at("link"));
  Scan scan(folder());
  pending_.setTree(&scan.tree());
  put(scan.tree(), {"link"});
  pending_.deleteAllNow();
  EXPECT_TRUE(fs::is_symlink(dir_ / "trash/link"));
  EXPECT_TRUE(fs::exists(at("target")));
}

TEST_F(PendingOnDisk, WorksOnNamesOfAnyBytes) {
  const std::string name = "a\xFF\nb\x01";
  writeFile(at(name), "t");
  Scan scan(folder());
  pending_.setTree(&scan.tree());
  put(scan.tree(), {name});
  EXPECT_EQ(pending_.items()[0].name, name);
  pending_.deleteAllNow();
  EXPECT_TRUE(fs::exists(dir_ / ("trash/" + name)));
}

TEST_F(PendingOnDisk, IsReadAgainAfterItIsPutBack) {
  writeFile(at("changed/old"), std::string(5000, 'x'));
  writeFile(at("changed/deep/er"), std::string(6000, 'x'));
  writeFile(at("same"), std::string(7000, 'x'));
  Scan scan(folder());
  pending_.setTree(&scan.tree());
  put(scan.tree(), {"changed/deep"});
  put(scan.tree(), {"same"});
  writeFile(at("changed/new"), std::string(8000, 'x'));
  pending_.undeleteWithin(at("changed"));
  scan.scanner.walk(nodeAt(scan.tree(), at("changed")));
  pending_.undelete(0);
  expectAsScanned(scan.tree(), folder());
}

TEST_F(PendingOnDisk, IsReadAgainWithoutWhatWasDeletedBefore) {
  writeFile(at("changed/old"), std::string(5000, 'x'));
  writeFile(at("changed/deep/er"), std::string(6000, 'x'));
  Scan scan(folder());
  pending_.setTree(&scan.tree());
  put(scan.tree(), {"changed/deep"});
  pending_.deleteNowWithin(at("changed"));
  scan.scanner.walk(nodeAt(scan.tree(), at("changed")));
  EXPECT_FALSE(fs::exists(at("changed/deep")));
  expectAsScanned(scan.tree(), folder());
}

TEST_F(PendingOnDisk, IsNeitherLostNorTrashedTwiceWhenReadAgainUnsettled) {
  writeFile(at("changed/file"), std::string(5000, 'x'));
  Scan scan(folder());
  pending_.setTree(&scan.tree());
  put(scan.tree(), {"changed/file"});
  scan.scanner.walk(nodeAt(scan.tree(), at("changed")));
  expectAsScanned(scan.tree(), folder());
  pending_.undelete(0);
  EXPECT_TRUE(fs::exists(at("changed/file")));
  expectAsScanned(scan.tree(), folder());
}

TEST_F(PendingOnDisk, WorksWhileTheScanRuns) {
  test::makeBushyTree(folder(), 13, 300, 6);
  TreeScanner scanner(withThreads(4));
  scanner.setRoot(folder());
  pending_.setTree(&scanner.tree());
  std::atomic<bool> ended = false;
  std::thread walking([&] {
    scanner.walk(kRootNode);
    ended = true;
  });
  std::mt19937 random(7);
  for (bool last = false; !last;) {
    last = ended;
    const NodeId nodes = scanner.tree().nodeCount();
    for (int i = 0; i < 4; ++i) pending_.add(std::vector{static_cast<NodeId>(random() % nodes)});
    while (pending_.size() > 3) pending_.undelete(random() % pending_.size());
  }
  walking.join();
  pending_.undeleteAll();
  expectAsScanned(scanner.tree(), folder());
}

}  // namespace
}  // namespace app
