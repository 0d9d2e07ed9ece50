#include "app/frame/scan_progress.h"

#include <gtest/gtest.h>

namespace app {
namespace {

constexpr ScanStatus kScanning = {.scanning = true};
constexpr VolumeSpace kDisk = {.usedBytes = 400, .freeBytes = 100, .isWhole = true};

TEST(ScanProgress, IsTheShareOfWhatIsInUse) {
  EXPECT_EQ(scanProgress(kScanning, kDisk, 0), 0);
  EXPECT_EQ(scanProgress(kScanning, kDisk, 100), 0.25);
  EXPECT_EQ(scanProgress(kScanning, kDisk, 400), 1);
}

TEST(ScanProgress, NeverPassesTheWhole) {
  EXPECT_EQ(scanProgress(kScanning, kDisk, 401), 1);
  EXPECT_EQ(scanProgress(kScanning, kDisk, UINT64_MAX), 1);
}

TEST(ScanProgress, IsNothingForAFolderOfADisk) {
  VolumeSpace around = kDisk;
  around.isWhole = false;
  EXPECT_EQ(scanProgress(kScanning, around, 100), 0);
}

TEST(ScanProgress, IsNothingBeforeTheDiskHasAnsweredAndForOneWithoutFigures) {
  EXPECT_EQ(scanProgress(kScanning, std::nullopt, 100), 0);
  EXPECT_EQ(scanProgress(kScanning, VolumeSpace{.isWhole = true}, 100), 0);
}

TEST(ScanProgress, IsNothingOnceTheScanHasEndedOrReadsOneFolderAgain) {
  EXPECT_EQ(scanProgress({.stopped = true}, kDisk, 100), 0);
  EXPECT_EQ(scanProgress({.scanning = true, .readingAgain = true}, kDisk, 100), 0);
}

}  // namespace
}  // namespace app
