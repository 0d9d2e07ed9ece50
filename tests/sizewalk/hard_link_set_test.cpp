#include "sizewalk/hard_link_set.h"

#include <gtest/gtest.h>

namespace sizewalk {
namespace {

TEST(HardLinkSet, TellsTheNodeThatWasCountedFirst) {
  HardLinkSet set;
  EXPECT_EQ(set.findOrInsert(42, 7), 7u);
  EXPECT_EQ(set.findOrInsert(42, 8), 7u);
  EXPECT_EQ(set.findOrInsert(43, 9), 9u);
  EXPECT_EQ(set.size(), 2u);
}

TEST(HardLinkSet, DoublesBeforeTheInsertThatFindsItSevenTenthsFull) {
  HardLinkSet set;
  EXPECT_EQ(set.capacity(), 4096u);
  // 2868 x 10 is the first count at or above 4096 x 7.
  for (std::uint64_t key = 1; key <= 2868; ++key) set.findOrInsert(key, static_cast<NodeId>(key));
  EXPECT_EQ(set.capacity(), 4096u);
  set.findOrInsert(2868, 1);  // known: nothing is inserted
  EXPECT_EQ(set.capacity(), 4096u);
  set.findOrInsert(2869, 2869);
  EXPECT_EQ(set.capacity(), 8192u);
}

TEST(HardLinkSet, KeepsEveryKeyThroughGrowthAndErasure) {
  HardLinkSet set;
  for (std::uint64_t i = 1; i <= 50000; ++i) set.findOrInsert(mixBits(i), static_cast<NodeId>(i));
  set.eraseIf([](NodeId node) { return node % 3 == 0; });
  for (std::uint64_t i = 1; i <= 50000; ++i) {
    const NodeId expected = i % 3 == 0 ? 1000000 : static_cast<NodeId>(i);
    ASSERT_EQ(set.findOrInsert(mixBits(i), 1000000), expected);
  }
}

TEST(HardLinkKey, IsTheDocumentedHashAndNeverZero) {
  // Worked out with arbitrary-precision integers.
  EXPECT_EQ(mixBits(1), 0x5692161d100b05e5u);
  EXPECT_EQ(hardLinkKey(0x800000001, 131073), 0x476fc17fbd6bf3bau);
  // The one device that makes the mixed word 0 for inode 0.
  EXPECT_EQ(hardLinkKey(std::uint64_t{0} - 0x165667b19e3779f9ULL, 0), 1u);
}

}  // namespace
}  // namespace sizewalk
