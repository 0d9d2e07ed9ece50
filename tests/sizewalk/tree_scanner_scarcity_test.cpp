// A walk that finds too few threads or too little memory.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <string>

#include "sizewalk/tree_scanner.h"
#include "tests/sizewalk/tree_model.h"
#include "tests/sizewalk/whole_scan.h"
#include "tests/support/real_tree.h"
#include "tests/support/scarcity.h"
#include "tests/support/temp_directory.h"

namespace sizewalk {
namespace {

using test::describe;
using test::Scan;
using test::TempDirectory;
using test::withThreads;
using test::writeFile;

TEST(TreeScanner, GoesOnWithTheReadersThatFindThreads) {
  const TempDirectory dir;
  test::makeBushyTree(dir.path(), 2, 50, 4);
  const auto whole = describe(Scan(dir.path(), 4).tree());
  for (int left = 2; left < 6; ++left) {
    TreeScanner scanner(withThreads(4));
    scanner.setRoot(dir.path());
    const test::FewThreads few(left);
    EXPECT_EQ(scanner.walk(kRootNode), 0) << left;
    EXPECT_EQ(describe(scanner.tree()), whole) << left;
  }
}

TEST(TreeScanner, SaysThatItFoundNoThreads) {
  const TempDirectory dir;
  writeFile(dir / "file", "12345");
  for (const int left : {0, 1}) {  // one is the integrator's
    TreeScanner scanner(withThreads(4));
    scanner.setRoot(dir.path());
    {
      const test::FewThreads few(left);
      EXPECT_EQ(scanner.walk(kRootNode), EAGAIN) << left;
    }
    EXPECT_EQ(scanner.tree().nodeCount(), 1U);
    EXPECT_EQ(scanner.walk(kRootNode), 0) << "there are threads again";
    EXPECT_EQ(scanner.tree().apparentSize(kRootNode), 5U);
  }
}

/// So many names that they need a second map of memory.
void makeManyNames(const std::string& path, int folders = 20) {
  constexpr int kNames = 4300;
  for (int i = 0; i < kNames; ++i) {
    std::string name = std::to_string(i);
    name.resize(250, 'x');
    writeFile(path + "/folder" + std::to_string(i % folders) + "/" + name);
  }
}

TEST(TreeScanner, SaysThatMemoryRanOut) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  makeManyNames(dir.path());
  TreeScanner scanner(withThreads(4));
  scanner.setRoot(dir.path());
  {
    const test::FewPages none(0);
    EXPECT_EQ(scanner.walk(kRootNode), ENOMEM);
  }
  EXPECT_GE(scanner.tree().nodeCount(), 1U);
}

TEST(TreeScanner, KeepsWhatItReadBeforeMemoryRanOut) {
  const TempDirectory dir(TempDirectory::Place::Memory);
  makeManyNames(dir.path(), 1);
  const std::string linked = dir / "folder0/" + std::string(250, 'y');
  for (int i = 0; i < 300; ++i) {  // of those that are listed last and first
    const std::string name = linked.substr(0, linked.size() - 3) + std::to_string(100 + i);
    writeFile(name, "12345");
    ASSERT_EQ(
        link(name.c_str(), (name.substr(0, name.size() - 3) + "z" + std::to_string(i)).c_str()), 0);
  }
  TreeScanner scanner(withThreads(2));
  scanner.setRoot(dir.path());
  {
    const test::FewPages none(0);
    ASSERT_EQ(scanner.walk(kRootNode), ENOMEM);
  }
  const FileTree& tree = scanner.tree();
  EXPECT_GT(tree.nodeCount(), 3000U);
  EXPECT_EQ(tree.childCount(1), tree.nodeCount() - 2);
  test::expectSumsMatchRecount(tree);
  EXPECT_EQ(scanner.walk(kRootNode), 0) << "there is memory again";
  EXPECT_EQ(describe(tree), describe(Scan(dir.path()).tree()));
  test::expectSumsMatchRecount(tree);
}

TEST(TreeScanner, SaysThatAReaderFoundNoMemory) {
#ifdef HEAPGAUGE_SANITIZED
  GTEST_SKIP() << "the sanitizers end a program that runs out of memory";
#else
  const TempDirectory dir;
  writeFile(dir / "file");
  ScanOptions options = withThreads(2);
  options.readBufferSize = std::uint64_t{1} << 46;
  TreeScanner scanner(options);
  scanner.setRoot(dir.path());
  EXPECT_EQ(scanner.walk(kRootNode), ENOMEM);
#endif
}

/// This process gets no more than 8 GiB of addresses.
class FewAddresses {
 public:
  FewAddresses() {
    getrlimit(RLIMIT_AS, &usual_);
    rlimit limit = usual_;
    limit.rlim_cur = std::min<rlim_t>(rlim_t{8} << 30, usual_.rlim_max);
    setrlimit(RLIMIT_AS, &limit);
  }
  ~FewAddresses() { setrlimit(RLIMIT_AS, &usual_); }
  FewAddresses(const FewAddresses&) = delete;
  FewAddresses& operator=(const FewAddresses&) = delete;

 private:
  rlimit usual_{};
};

TEST(TreeScanner, TellsWantOfMemoryForItsReadersFromWantOfThreads) {
#ifdef HEAPGAUGE_SANITIZED
  GTEST_SKIP() << "the sanitizers need more addresses";
#else
  const TempDirectory dir;
  TreeScanner scanner(withThreads(std::numeric_limits<int>::max()));  // 16 GiB to list them
  scanner.setRoot(dir.path());
  const FewAddresses few;
  EXPECT_EQ(scanner.walk(kRootNode), ENOMEM);
#endif
}

}  // namespace
}  // namespace sizewalk
