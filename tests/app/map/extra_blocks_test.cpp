#include "app/map/extra_blocks.h"

#include <gtest/gtest.h>

#include <limits>

namespace app {
namespace {

constexpr ExtraBlockSettings kBoth = {true, true};
constexpr VolumeSpace kVolume = {.usedBytes = 600, .freeBytes = 250};

const ExtraBlock kFree = {-2, "Free space", 250, 0x2B3648};

using Blocks = std::vector<ExtraBlock>;

TEST(ExtraBlocks, AreTheFreeSpaceThenTheOtherSpace) {
  EXPECT_EQ(extraBlocksFor(kVolume, 100, kBoth),
            (Blocks{kFree, {-3, "Other space in use", 500, 0x4A4458}}));
}

TEST(ExtraBlocks, AreThoseThatTheSettingsAskFor) {
  EXPECT_EQ(extraBlocksFor(kVolume, 100, {}), Blocks{});
  EXPECT_EQ(extraBlocksFor(kVolume, 100, {true, false}), Blocks{kFree});
  EXPECT_EQ(extraBlocksFor(kVolume, 100, {false, true}),
            (Blocks{{-3, "Other space in use", 500, 0x4A4458}}));
}

TEST(ExtraBlocks, AreNoneWithoutFigures) {
  EXPECT_EQ(extraBlocksFor(std::nullopt, 100, kBoth), Blocks{});
}

TEST(ExtraBlocks, LeaveOutOtherSpaceWhereThereIsNone) {
  EXPECT_EQ(extraBlocksFor(kVolume, 599, kBoth).size(), 2U);
  EXPECT_EQ(extraBlocksFor(kVolume, 600, kBoth), Blocks{kFree});
  EXPECT_EQ(extraBlocksFor(kVolume, 601, kBoth), Blocks{kFree});
  EXPECT_EQ(extraBlocksFor(kVolume, 1ULL << 63, kBoth), Blocks{kFree});
}

TEST(ExtraBlocks, TakeAFullVolumesFreeSpaceAsItIs) {
  const Blocks blocks = extraBlocksFor(VolumeSpace{600, 0}, 600, kBoth);
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0].size, 0);
}

TEST(ExtraBlocks, KeepFiguresPastTheSignedRangeAtItsEnd) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  const Blocks blocks = extraBlocksFor(VolumeSpace{~0ULL, ~0ULL}, 7, kBoth);
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_EQ(blocks[0].size, kMost);
  EXPECT_EQ(blocks[1].size, kMost);
  EXPECT_EQ(extraBlocksFor(VolumeSpace{~0ULL, 0}, ~0ULL - 9, kBoth).at(1).size, 9);
}

}  // namespace
}  // namespace app
