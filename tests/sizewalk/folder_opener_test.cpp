// How the folders of a walk are opened: at what cost in the depth, with few descriptors, and where
// somebody moves or replaces them meanwhile.

#include "sizewalk/folder_opener.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "sizewalk/tree_scanner.h"
#include "tests/app/held_folder.h"
#include "tests/sizewalk/tree_model.h"
#include "tests/sizewalk/whole_scan.h"
#include "tests/support/real_tree.h"
#include "tests/support/temp_directory.h"

namespace sizewalk {
namespace {

namespace fs = std::filesystem;
using test::describe;
using test::Listing;
using test::Scan;
using test::TempDirectory;
using test::withThreads;
using test::writeFile;

/// Leaves this process so many descriptors more, for the scope; what it closes it may open again
/// where all that it has open have the lowest numbers.
class FewDescriptors {
 public:
  explicit FewDescriptors(int left) {
    int number = 0;
    while (isOpen(number) || left-- > 0) ++number;
    limitTo(number);
  }
  /// Leaves those alone that can be opened beside one that is, and each that is closed.
  static FewDescriptors upToTheLastOpen() {
    int number = 4096;
    while (!isOpen(number - 1)) --number;
    return FewDescriptors(Limit{number});
  }
  ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &usual_); }
  FewDescriptors(const FewDescriptors&) = delete;
  FewDescriptors& operator=(const FewDescriptors&) = delete;

 private:
  struct Limit {
    int number;
  };
  explicit FewDescriptors(Limit limit) { limitTo(limit.number); }

  static bool isOpen(int number) { return fcntl(number, F_GETFD) >= 0; }
  void limitTo(int number) {
    getrlimit(RLIMIT_NOFILE, &usual_);
    const rlimit limit = {static_cast<rlim_t>(number), usual_.rlim_max};
    setrlimit(RLIMIT_NOFILE, &limit);
  }

  rlimit usual_{};
};

int openDescriptors() {
  int count = 0;
  for (int number = 0; number < 4096; ++number) count += fcntl(number, F_GETFD) >= 0;
  return count;
}

/// A walk on a thread of its own that has come to the folder "held" and waits there.
class HeldWalk {
 public:
  explicit HeldWalk(TreeScanner& scanner) : walking_([&scanner] { scanner.walk(kRootNode); }) {
    EXPECT_TRUE(held_.waitUntilReached());
  }
  ~HeldWalk() { finish(); }
  HeldWalk(const HeldWalk&) = delete;
  HeldWalk& operator=(const HeldWalk&) = delete;

  /// Lets it go on and waits for its end.
  void finish() {
    held_.release();
    if (walking_.joinable()) walking_.join();
  }

 private:
  test::HeldFolder held_{"held"};
  std::thread walking_;
};

enum class Order { LeafFirst, LeafLast };

/// A chain of folders, each with a leaf folder beside the next link: a walk that goes down the
/// chain first meets the leaves on its way up.
void makeComb(const std::string& path, int depth, Order order) {
  base::FileDescriptor at(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  for (int i = 0; i < depth; ++i) {
    const char* const first = order == Order::LeafFirst ? "leaf" : "link";
    const char* const second = order == Order::LeafFirst ? "link" : "leaf";
    ASSERT_EQ(mkdirat(at.get(), first, 0700), 0);
    ASSERT_EQ(mkdirat(at.get(), second, 0700), 0);
    at = base::FileDescriptor(openat(at.get(), "link", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_TRUE(at.valid());
  }
}

TEST(FolderOpener, OpensEveryFolderOfAChainOnce) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  test::makeDeepTree(dir.path(), 6000, 12345);
  for (const int readers : {1, 4}) {
    const Scan scan(dir.path(), readers);
    EXPECT_EQ(scan.tree().totals().errors, 0U);
    EXPECT_EQ(scan.tree().apparentSize(kRootNode), 12345U);
    EXPECT_EQ(scan.scanner.statistics().opens, 6001U) << readers;
  }
}

/// A reader that opens one folder after the other.
class LoneReader {
 public:
  explicit LoneReader(const FileTree& tree) : opener_(tree, kRootNode, stop_) {}
  bool opens(NodeId folder, std::size_t subfolders) {
    opener_.find(folder, &way_);
    base::FileDescriptor fd = opener_.open(&way_);
    const bool opened = fd.valid();
    opener_.giveBack(way_, std::move(fd), subfolders);
    return opened;
  }
  std::uint64_t openings() const { return way_.opens; }

 private:
  const std::atomic<bool> stop_{false};
  FolderOpener opener_;
  FolderWay way_;
};

TEST(FolderOpener, OpensFewAgainOnTheWayUpAComb) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  makeComb(dir.path(), 6000, Order::LeafFirst);
  const Scan scan(dir.path());
  const FileTree& tree = scan.tree();
  std::vector<NodeId> links = {kRootNode}, leaves;
  for (NodeId node = 1; node < tree.nodeCount(); ++node) {
    (tree.name(node) == "link" ? links : leaves).push_back(node);
  }
  LoneReader reader(tree);
  for (const NodeId link : links) {
    ASSERT_TRUE(reader.opens(link, 2));
  }
  EXPECT_EQ(reader.openings(), links.size());
  for (auto leaf = leaves.rbegin(); leaf != leaves.rend(); ++leaf) {
    ASSERT_TRUE(reader.opens(*leaf, 0));
  }
  EXPECT_LE(reader.openings() - links.size(), 4 * leaves.size());
}

// How many depends on how far the readers are ahead of what is added to the tree. Each opened from
// the start would be three and a half for a folder.
TEST(FolderOpener, OpensFewFoldersOfABushyTreeTwice) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  for (int i = 0; i < 50; ++i) {
    for (int j = 0; j < 20; ++j) {
      test::makeDirectory(dir / ("a" + std::to_string(i) + "/b" + std::to_string(j) + "/c"));
    }
  }
  const Scan scan(dir.path(), 1);
  EXPECT_LE(scan.scanner.statistics().opens, 2 * scan.tree().nodeCount());
}

// As above; each opened from the start would be some four hundred for a folder.
TEST(FolderOpener, OpensFewAgainInABushAtTheEndOfAChain) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  std::string path = dir.path();
  for (int i = 0; i < 400; ++i) path += "/d";
  for (int i = 0; i < 50; ++i) {
    for (int j = 0; j < 20; ++j) {
      test::makeDirectory(path + "/a" + std::to_string(i) + "/b" + std::to_string(j) + "/c");
    }
  }
  for (const int readers : {1, 8}) {
    const Scan scan(dir.path(), readers);
    EXPECT_EQ(scan.tree().totals().errors, 0U);
    EXPECT_LE(scan.scanner.statistics().opens, 20 * scan.tree().nodeCount()) << readers;
  }
}

TEST(FolderOpener, StartsBelowTheRootAsWell) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  test::makeDeepTree(dir.path(), 300, 12345);
  TreeScanner scanner(withThreads(2));
  scanner.setRoot(dir.path());
  ASSERT_EQ(scanner.walk(kRootNode), 0);
  ASSERT_EQ(scanner.walk(200), 0);
  EXPECT_EQ(scanner.statistics().opens, 101U);
  EXPECT_EQ(scanner.tree().apparentSize(kRootNode), 12345U);
  EXPECT_EQ(scanner.tree().totals().errors, 0U);
}

TEST(FolderOpener, LeavesNothingOpen) {
  const TempDirectory dir;
  test::makeDeepTree(dir.path(), 100, 1);
  const int before = openDescriptors();
  const Scan scan(dir.path(), 4);
  EXPECT_EQ(openDescriptors(), before);
}

TEST(FolderOpener, KeepsFewFoldersOpenWhereFewMayBe) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  test::makeDeepTree(dir.path(), 100, 1);
  writeFile(dir / "d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/d/held/file");
  rlimit usual{};
  getrlimit(RLIMIT_NOFILE, &usual);
  rlimit few = usual;
  few.rlim_cur = 64;
  setrlimit(RLIMIT_NOFILE, &few);
  TreeScanner scanner(withThreads(1));
  scanner.setRoot(dir.path());
  const int before = openDescriptors();
  HeldWalk walk(scanner);
  EXPECT_LE(openDescriptors(), before + 8 + 1) << "what is kept, and the reader's own";
  walk.finish();
  setrlimit(RLIMIT_NOFILE, &usual);
  EXPECT_EQ(scanner.tree().totals().errors, 0U);
}

/// A tree with a path longer than the kernel takes, combs, and folders beside each other.
void makeVariedTree(const std::string& path) {
  test::makeBushyTree(path, 3, 60, 2);
  const std::string name(200, 'n');
  base::FileDescriptor at(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  for (int i = 0; i < 2 * PATH_MAX / 200; ++i) {
    ASSERT_EQ(mkdirat(at.get(), name.c_str(), 0700), 0);
    at = base::FileDescriptor(openat(at.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  }
  ASSERT_TRUE(at.valid());
  for (const Order order : {Order::LeafFirst, Order::LeafLast}) {
    const std::string comb = path + (order == Order::LeafFirst ? "/comb" : "/other comb");
    test::makeDirectory(comb);
    makeComb(comb, 100, order);
  }
}

TEST(FolderOpener, ReadsAllWithTwoDescriptorsAndAnyNumberOfReaders) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  makeVariedTree(dir.path());
  const auto whole = describe(Scan(dir.path()).tree());
  for (const int left : {2, 3, 5, 10, 20}) {
    for (const int readers : {1, 2, 8, 32}) {
      TreeScanner scanner(withThreads(readers));
      scanner.setRoot(dir.path());
      {
        const FewDescriptors few(left);
        ASSERT_EQ(scanner.walk(kRootNode), 0);
      }
      EXPECT_EQ(scanner.tree().totals().errors, 0U) << left << ' ' << readers;
      EXPECT_TRUE(describe(scanner.tree()) == whole) << left << ' ' << readers;
    }
  }
}

TEST(FolderOpener, ReadsWhatASinglePathReachesWithOneDescriptor) {
  const TempDirectory dir;
  test::makeBushyTree(dir.path(), 3, 60, 2);
  const auto whole = describe(Scan(dir.path()).tree());
  for (const int readers : {1, 8}) {
    TreeScanner scanner(withThreads(readers));
    scanner.setRoot(dir.path());
    {
      const FewDescriptors few(1);
      ASSERT_EQ(scanner.walk(kRootNode), 0);
    }
    EXPECT_TRUE(describe(scanner.tree()) == whole) << readers;
  }
}

TEST(FolderOpener, MarksTheStartWhereThereIsNoDescriptor) {
  const TempDirectory dir;
  writeFile(dir / "file");
  TreeScanner scanner(withThreads(4));
  scanner.setRoot(dir.path());
  {
    const FewDescriptors none(0);
    EXPECT_EQ(scanner.walk(kRootNode), 0);
  }
  EXPECT_TRUE(scanner.tree().flags(kRootNode).has(NodeFlag::Unreadable));
  EXPECT_EQ(scanner.tree().totals().errors, 1U);
  scanner.walk(kRootNode);
  EXPECT_EQ(scanner.tree().nodeCount(), 2U) << "there are descriptors again";
}

TEST(FolderOpener, GoesOnWhereDescriptorsRunOutInTheMiddle) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  makeVariedTree(dir.path());
  writeFile(dir / "comb/link/link/link/link/link/link/link/link/held/file", "x");
  const auto whole = describe(Scan(dir.path()).tree());
  for (const int readers : {1, 4}) {
    TreeScanner scanner(withThreads(readers));
    scanner.setRoot(dir.path());
    HeldWalk walk(scanner);
    {
      const auto few = FewDescriptors::upToTheLastOpen();
      walk.finish();
    }
    EXPECT_EQ(scanner.tree().totals().errors, 0U) << readers;
    EXPECT_TRUE(describe(scanner.tree()) == whole) << readers;
  }
}

TEST(FolderOpener, ReadsOnInAFolderThatIsRenamed) {
  const TempDirectory dir;
  writeFile(dir / "folder/held/file", std::string(100, 'x'));
  TreeScanner scanner(withThreads(1));
  scanner.setRoot(dir.path());
  HeldWalk walk(scanner);
  fs::rename(dir / "folder", dir / "renamed");
  writeFile(dir / "folder/held/other", std::string(7, 'x'));
  walk.finish();
  EXPECT_EQ(scanner.tree().apparentSize(kRootNode), 100U) << "of the folder that was listed";
  EXPECT_EQ(scanner.tree().totals().errors, 0U);
}

TEST(FolderOpener, MarksAFolderThatIsGone) {
  const TempDirectory dir;
  writeFile(dir / "folder/held/file", "x");
  TreeScanner scanner(withThreads(1));
  scanner.setRoot(dir.path());
  HeldWalk walk(scanner);
  fs::rename(dir / "folder/held", dir / "elsewhere");
  walk.finish();
  EXPECT_EQ(scanner.tree().totals().errors, 1U);
  EXPECT_EQ(scanner.tree().nodeCount(), 3U);
}

/// The folders a, a/b and a/b/c of `path` in a tree, as if they had been listed.
class ListedFolders {
 public:
  explicit ListedFolders(const std::string& path) {
    test::makeDirectory(path + "/a/b/c");
    tree.createRoot(path);
    add(tree, Listing(0).folder("a"));
    add(tree, Listing(1).folder("b"));
    add(tree, Listing(2).folder("c"));
  }
  /// Whether a reader that has nothing open yet reaches c.
  bool reachesLast() const { return LoneReader(tree).opens(3, 0); }
  FileTree tree;
};

TEST(FolderOpener, FollowsNoSymbolicLinkThatTakesAFoldersPlace) {
  for (const std::string replaced : {"a", "a/b", "a/b/c"}) {
    const TempDirectory dir;
    ListedFolders folders(dir / "scanned");
    ASSERT_TRUE(folders.reachesLast());
    fs::rename(dir / ("scanned/" + replaced), dir / "elsewhere");
    fs::create_directory_symlink(dir / "elsewhere", dir / ("scanned/" + replaced));
    EXPECT_TRUE(fs::exists(dir / "scanned/a/b/c"));
    EXPECT_FALSE(folders.reachesLast()) << replaced;
    const FewDescriptors few(1);
    EXPECT_FALSE(folders.reachesLast()) << replaced;
  }
}

TEST(FolderOpener, ReachesTheStartThroughALink) {
  const TempDirectory dir;
  test::makeDirectory(dir / "real/scanned");
  fs::create_directory_symlink(dir / "real", dir / "link");
  ListedFolders folders(dir / "link/scanned");
  EXPECT_TRUE(folders.reachesLast());
}

}  // namespace
}  // namespace sizewalk
