#include "sizewalk/hard_link_ledger.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace sizewalk {
namespace {

using Role = HardLinkLedger::Role;
using Nodes = std::vector<NodeId>;

constexpr std::uint64_t kFile = 77;
constexpr std::uint64_t kOtherFile = 78;

/// A ledger for nodes in folders 1, 2 and 3; node 10 lies in folder 1, node 25 in folder 2.
class HardLinkLedgerTest : public testing::Test {
 protected:
  Role enter(NodeId node, std::uint64_t key = kFile, std::uint64_t bytes = 512) {
    return ledger_.enter({key, node, folderOf(node), bytes}, test());
  }
  Nodes settle() { return ledger_.settle(test()); }
  void forget(const std::set<NodeId>& dropped) {
    ledger_.forget([&](NodeId node) { return dropped.contains(node); });
  }
  void takeOut(NodeId folder) { out_.insert(folder); }
  void putBack(NodeId folder) { out_.erase(folder); }

  HardLinkLedger ledger_;

 private:
  static NodeId folderOf(NodeId node) { return node / 10; }
  HardLinkLedger::TakenOutTest test() const {
    return [this](NodeId node) { return out_.contains(node) || out_.contains(folderOf(node)); };
  }
  std::set<NodeId> out_;
};

TEST_F(HardLinkLedgerTest, CountsEachFileAtTheNameThatTurnsUpFirst) {
  EXPECT_EQ(enter(10), Role::Counted);
  EXPECT_EQ(enter(11, kOtherFile), Role::Counted);
  EXPECT_EQ(enter(20), Role::Duplicate);
  EXPECT_EQ(enter(21, kOtherFile), Role::Duplicate);
  EXPECT_EQ(enter(30), Role::Duplicate);
}

TEST_F(HardLinkLedgerTest, RemembersWhatEachDuplicateWouldTakeUp) {
  enter(10);
  enter(20, kFile, 1024);
  enter(21, kFile, 2048);
  ledger_.enterDuplicate(15, 4096);  // among those entered before
  EXPECT_EQ(ledger_.duplicateBytes(15), 4096u);
  EXPECT_EQ(ledger_.duplicateBytes(20), 1024u);
  EXPECT_EQ(ledger_.duplicateBytes(21), 2048u);
}

TEST_F(HardLinkLedgerTest, CountsTheNextNameWhileTheFirstIsTakenOut) {
  enter(10);
  enter(20);
  takeOut(1);
  EXPECT_EQ(enter(30), Role::Counted) << "20 was known by then and stays";
  EXPECT_EQ(enter(31), Role::Duplicate);
  putBack(1);
  EXPECT_EQ(settle(), Nodes{10});
  EXPECT_EQ(settle(), Nodes{}) << "it is settled";
  EXPECT_EQ(enter(32), Role::Duplicate);
}

TEST_F(HardLinkLedgerTest, CountsNoNameThatTurnsUpInsideWhatIsTakenOut) {
  enter(10);
  takeOut(1);
  takeOut(2);
  EXPECT_EQ(enter(20), Role::Duplicate);
  EXPECT_EQ(enter(21, kOtherFile), Role::Counted) << "its file has no other name";
  EXPECT_EQ(enter(30, kOtherFile), Role::Counted);
  putBack(2);
  EXPECT_EQ(settle(), Nodes{21});
}

TEST_F(HardLinkLedgerTest, LeavesWhatIsStillTakenOutUnsettled) {
  enter(10);
  takeOut(1);
  enter(20);
  EXPECT_EQ(settle(), Nodes{}) << "something else was put back";
  putBack(1);
  EXPECT_EQ(settle(), Nodes{10});
}

TEST_F(HardLinkLedgerTest, CountsTheFirstNameAgainWhenTheOtherIsTakenOutByThen) {
  enter(10);
  takeOut(1);
  enter(20);
  takeOut(2);
  putBack(1);
  EXPECT_EQ(settle(), Nodes{}) << "10 counts";
  EXPECT_EQ(enter(11), Role::Duplicate);
  putBack(2);
  EXPECT_EQ(settle(), Nodes{20});
}

TEST_F(HardLinkLedgerTest, CountsOneOfTwoDisplacedNamesThatComeBackTogether) {
  enter(10);
  takeOut(1);
  enter(20);
  takeOut(2);
  enter(30);
  takeOut(3);
  putBack(1);
  putBack(2);
  EXPECT_EQ(settle(), Nodes{20}) << "10 was the first and counts again";
  putBack(3);
  EXPECT_EQ(settle(), Nodes{30});
}

TEST_F(HardLinkLedgerTest, CountsAFileAnewOnceItsCountedNameIsForgotten) {
  enter(10);
  enter(20);
  enter(21, kOtherFile);
  forget({10});
  EXPECT_EQ(ledger_.duplicateBytes(20), 512u) << "a name that is known stays what it is";
  EXPECT_EQ(enter(30), Role::Counted);
  EXPECT_EQ(enter(31, kOtherFile), Role::Duplicate) << "another file is not concerned";
}

TEST_F(HardLinkLedgerTest, CountsADisplacedNameAgainOnceTheOtherIsForgotten) {
  enter(10);
  takeOut(1);
  enter(20);
  forget({20});
  putBack(1);
  EXPECT_EQ(settle(), Nodes{});
  EXPECT_EQ(enter(30), Role::Duplicate) << "of 10";
}

TEST_F(HardLinkLedgerTest, NeverComesBackToADisplacedNameThatIsForgotten) {
  enter(10);
  takeOut(1);
  enter(20);
  forget({10});
  putBack(1);
  EXPECT_EQ(settle(), Nodes{});
  EXPECT_EQ(enter(30), Role::Duplicate) << "of 20";
}

TEST_F(HardLinkLedgerTest, KeepsTheBytesOfOtherDuplicatesWhenSomeAreForgotten) {
  enter(10);
  for (NodeId node = 20; node < 30; ++node) enter(node, kFile, node);
  forget({20, 22, 29});
  for (const NodeId node : {21u, 23u, 28u}) EXPECT_EQ(ledger_.duplicateBytes(node), node);
}

}  // namespace
}  // namespace sizewalk
