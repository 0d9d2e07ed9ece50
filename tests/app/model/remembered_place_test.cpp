#include "app/model/remembered_place.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/sizewalk/tree_model.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::Listing;
using Nodes = std::vector<NodeId>;
using Part = RememberedPlace::Part;

Nodes sorted(Nodes nodes) {
  std::ranges::sort(nodes);
  return nodes;
}

/// A tree of /r with a/ with b/ with the file f, and the folder c/.
struct Scanned {
  Scanned() { tree.createRoot("/r"); }
  void readRoot() {
    a = add(tree, Listing(kRootNode).folder("a").folder("c")).front();
    c = a + 1;
  }
  void readA() { b = add(tree, Listing(a).file("x", 1).folder("b")).front(); }
  void readB() {
    add(tree, Listing(b).file("f", 1));
    f = tree.firstChild(b);
  }
  void readAll() {
    readRoot();
    readA();
    readB();
    add(tree, Listing(c).file("y", 1));
  }
  FileTree tree;
  NodeId a = 0, b = 0, c = 0, f = 0;
};

class RememberedPlaceTest : public testing::Test {
 protected:
  RememberedPlaceTest() { old_.readAll(); }
  /// In b, with a and b open, at the file f.
  void remember() {
    place_.remember(
        old_.tree,
        {.current = old_.b, .innermost = old_.b, .previous = {kRootNode, old_.c}, .next = {old_.a}},
        {.open = {kRootNode, old_.b, old_.a}, .current = old_.f, .top = old_.f, .topAt = -7});
  }

  Scanned old_;
  Scanned now_;
  RememberedPlace place_;
};

TEST_F(RememberedPlaceTest, SeeksNothingAtFirst) {
  now_.readAll();
  place_.lookIn(now_.tree);
  EXPECT_FALSE(place_.seeks(Part::Focus));
  EXPECT_TRUE(place_.takeList().open.empty());
}

TEST_F(RememberedPlaceTest, FindsEachPartAsTheTreeFills) {
  remember();
  EXPECT_TRUE(place_.seeks(Part::Focus));
  place_.lookIn(now_.tree);
  EXPECT_EQ(place_.focus().current, kRootNode);
  EXPECT_EQ(place_.takeList().open, Nodes{kRootNode});
  now_.readRoot();
  place_.lookIn(now_.tree);
  EXPECT_EQ(place_.focus().current, now_.a) << "as near as there is";
  EXPECT_EQ(place_.focus().previous, (Nodes{kRootNode, now_.c}));
  EXPECT_EQ(place_.focus().next, Nodes{now_.a});
  ListPlace list = place_.takeList();
  EXPECT_EQ(list.open, Nodes{now_.a}) << "those that are new";
  EXPECT_EQ(list.top, now_.a);
  now_.readA();
  now_.readB();
  place_.lookIn(now_.tree);
  EXPECT_EQ(place_.focus().current, now_.b);
  EXPECT_EQ(place_.focus().innermost, now_.b);
  list = place_.takeList();
  EXPECT_EQ(list.open, Nodes{now_.b});
  EXPECT_EQ(list.current, now_.f);
  EXPECT_EQ(list.top, now_.f);
  EXPECT_EQ(list.topAt, -7);
}

TEST_F(RememberedPlaceTest, WaitsForATreeWithoutNodes) {
  remember();
  const FileTree nothing;
  place_.lookIn(nothing);
  EXPECT_EQ(place_.focus().current, kRootNode);
  EXPECT_TRUE(place_.takeList().open.empty());
}

TEST_F(RememberedPlaceTest, FallsBackToTheNearestFolderThatIsLeft) {
  remember();
  now_.a = add(now_.tree, Listing(kRootNode).folder("a")).front();
  add(now_.tree, Listing(now_.a).folder("another"));
  place_.lookIn(now_.tree);
  EXPECT_EQ(place_.focus().current, now_.a);
  EXPECT_EQ(place_.focus().previous, Nodes{kRootNode}) << "c is gone";
  EXPECT_EQ(place_.takeList().top, now_.a);
}

TEST_F(RememberedPlaceTest, FallsBackWhereAFolderHasBecomeAFile) {
  remember();
  add(now_.tree, Listing(kRootNode).file("a", 1));
  place_.lookIn(now_.tree);
  EXPECT_EQ(now_.tree.name(place_.focus().current), "a") << "which the focus knows to go out of";
  place_.endSearch();
  EXPECT_FALSE(place_.seeks(Part::Focus));
}

TEST_F(RememberedPlaceTest, GoesOnSeekingWhatASecondScanHadNotFoundYet) {
  remember();
  now_.readRoot();
  place_.lookIn(now_.tree);
  place_.takeList();
  // What is shown by then: the focus is at a, the list at its top.
  place_.remember(now_.tree, {.current = now_.a, .innermost = now_.a, .previous = {}, .next = {}},
                  {.open = {kRootNode, now_.a}, .current = now_.a, .top = kRootNode, .topAt = 0});
  Scanned third;
  third.readAll();
  place_.lookIn(third.tree);
  EXPECT_EQ(place_.focus().current, third.b);
  EXPECT_EQ(place_.focus().previous, (Nodes{kRootNode, third.c}));
  const ListPlace list = place_.takeList();
  EXPECT_EQ(sorted(list.open), sorted({kRootNode, third.a, third.b}));
  EXPECT_EQ(list.current, third.f);
  EXPECT_EQ(list.top, third.f);
  EXPECT_EQ(list.topAt, -7);
}

TEST_F(RememberedPlaceTest, GoesOnSeekingWhereTheSecondScanHadNotBegun) {
  remember();
  const FileTree nothing;
  place_.remember(nothing, {}, {});
  now_.readAll();
  place_.lookIn(now_.tree);
  EXPECT_EQ(place_.focus().current, now_.b);
  EXPECT_EQ(sorted(place_.takeList().open), sorted({kRootNode, now_.a, now_.b}));
}

TEST_F(RememberedPlaceTest, KeepsWhatTheUserDidInstead) {
  remember();
  now_.readRoot();
  place_.lookIn(now_.tree);
  for (const Part part : {Part::Focus, Part::OpenRows, Part::CurrentRow, Part::Scroll}) {
    place_.giveUp(part);
  }
  place_.remember(now_.tree, {.current = now_.c, .innermost = now_.c, .previous = {}, .next = {}},
                  {.open = {kRootNode}, .current = now_.c, .top = now_.c, .topAt = 3});
  Scanned third;
  third.readAll();
  place_.lookIn(third.tree);
  EXPECT_EQ(place_.focus().current, third.c);
  EXPECT_TRUE(place_.focus().previous.empty());
  const ListPlace list = place_.takeList();
  EXPECT_EQ(list.open, Nodes{kRootNode});
  EXPECT_EQ(list.current, third.c);
  EXPECT_EQ(list.top, third.c);
  EXPECT_EQ(list.topAt, 3);
}

TEST_F(RememberedPlaceTest, SeeksNoMoreWhatWasGone) {
  remember();
  now_.a = add(now_.tree, Listing(kRootNode).folder("a")).front();
  add(now_.tree, Listing(now_.a).folder("another"));
  place_.lookIn(now_.tree);
  place_.takeList();
  place_.remember(now_.tree, {.current = now_.a, .innermost = now_.a, .previous = {}, .next = {}},
                  {.open = {kRootNode, now_.a}, .current = {}, .top = kRootNode, .topAt = 0});
  Scanned third;
  third.readAll();
  place_.lookIn(third.tree);
  EXPECT_EQ(place_.focus().current, third.a);
  EXPECT_EQ(sorted(place_.takeList().open), sorted({kRootNode, third.a}));
}

TEST_F(RememberedPlaceTest, FindsItsWayInAFolderThatIsReadAgain) {
  remember();
  ASSERT_TRUE(old_.tree.dropContents(old_.a));
  place_.lookIn(old_.tree);
  EXPECT_EQ(place_.focus().current, old_.a);
  const NodeId fresh = add(old_.tree, Listing(old_.a).folder("b")).front();
  place_.lookIn(old_.tree);
  EXPECT_EQ(place_.focus().current, fresh);
}

TEST_F(RememberedPlaceTest, ForgetsWhatTheTreeLeadsToNoMore) {
  ASSERT_TRUE(old_.tree.dropContents(old_.a));
  remember();
  now_.readAll();
  place_.lookIn(now_.tree);
  EXPECT_EQ(sorted(place_.takeList().open), sorted({kRootNode, now_.a}));
}

TEST_F(RememberedPlaceTest, TellsNamesOfAnyBytesApart) {
  FileTree before;
  before.createRoot("/r");
  const std::string odd("\xff\n\0z", 4);
  const NodeId folder = add(before, Listing(kRootNode).folder(odd)).front();
  place_.remember(before, {.current = folder, .innermost = folder, .previous = {}, .next = {}}, {});
  const auto folders =
      add(now_.tree, Listing(kRootNode).folder(odd.substr(0, 2)).folder(odd).folder("\xfe"));
  place_.lookIn(now_.tree);
  EXPECT_EQ(place_.focus().current, folders[1]);
}

TEST_F(RememberedPlaceTest, FollowsAWayOfThousandsOfFolders) {
  constexpr int kDepth = 5000;
  const auto deepTree = [&](FileTree& tree) {
    tree.createRoot("/r");
    Nodes way = {kRootNode};
    for (int i = 0; i < kDepth; ++i) {
      way.push_back(add(tree, Listing(way.back()).folder("d" + std::to_string(i % 10))).front());
    }
    return way;
  };
  FileTree before;
  const Nodes way = deepTree(before);
  place_.remember(before,
                  {.current = way.back(), .innermost = way.back(), .previous = {}, .next = {}},
                  {.open = way, .current = {}, .top = way.back(), .topAt = 0});
  FileTree after;
  const Nodes found = deepTree(after);
  place_.lookIn(after);
  EXPECT_EQ(place_.focus().current, found.back());
  EXPECT_EQ(sorted(place_.takeList().open), found);
}

}  // namespace
}  // namespace app
