#include "sizewalk/scan_options.h"

#include <gtest/gtest.h>

#include "sizewalk/tree_scanner.h"

namespace sizewalk {
namespace {

TEST(ReaderCount, IsWhatWasAskedFor) {
  EXPECT_EQ(chooseReaderCount(
                1, [] { return 30; }, 64),
            1);
  EXPECT_EQ(chooseReaderCount(100, nullptr, 2), 100);
}

TEST(ReaderCount, FollowsTheStorageWhereItIsKnown) {
  EXPECT_EQ(chooseReaderCount(
                0, [] { return 4; }, 64),
            4);
  EXPECT_EQ(chooseReaderCount(
                -3, [] { return 4; }, 64),
            4);
}

TEST(ReaderCount, LeavesTwoProcessorsToOthers) {
  EXPECT_EQ(chooseReaderCount(0, nullptr, 6), 4);
  EXPECT_EQ(chooseReaderCount(0, nullptr, 64), 8);
  EXPECT_EQ(chooseReaderCount(0, nullptr, 1), 1);
  EXPECT_EQ(chooseReaderCount(0, nullptr, 2), 1);
  EXPECT_EQ(chooseReaderCount(
                0, [] { return 0; }, 6),
            4);
}

TEST(ReaderCount, IsTwoWhenNothingIsKnown) { EXPECT_EQ(chooseReaderCount(0, nullptr, 0), 2); }

TEST(ScanOptions, LookBackAMonthAndHalfAYear) {
  const ScanOptions options(1000000000);
  EXPECT_EQ(options.monthThreshold, 1000000000u - 2592000);
  EXPECT_EQ(options.sixMonthThreshold, 1000000000u - 15724800);
  EXPECT_FALSE(options.hasLastScan);
  EXPECT_EQ(options.lastScanTime, 0u);
  EXPECT_EQ(options.readBufferSize, 262144u);
}

TEST(ScanOptions, DoNotLookBackBeyondTheEpoch) {
  const ScanOptions options(2592001);
  EXPECT_EQ(options.monthThreshold, 1u);
  EXPECT_EQ(options.sixMonthThreshold, 0u);
}

TEST(ScanOptions, NameTheirStrategies) {
  EXPECT_STREQ(listingStrategyName(0), "auto");
  EXPECT_STREQ(listingStrategyName(1), "enum");
  EXPECT_STREQ(listingStrategyName(2), "mft");
  EXPECT_STREQ(listingStrategyName(3), "auto");
}

}  // namespace
}  // namespace sizewalk
