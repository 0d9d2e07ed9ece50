#pragma once

#include <cstdint>

namespace sizewalk {

/// How directories are listed. Only `Enumerate` does anything on Linux; the other codes are kept so
/// that a summary can name the way that was asked for.
enum class ListingStrategy : std::uint32_t { Auto = 0, Enumerate = 1, Mft = 2 };

/// "auto", "enum" or "mft"; any unknown code is "auto".
const char* listingStrategyName(std::uint32_t code);

/// What a scan counts and how hard it works. Times are seconds since the epoch.
struct ScanOptions {
  /// Options for a scan that starts now: thresholds 30 and 182 days back, no last scan.
  ScanOptions();
  /// The same with a clock that reads `now`; a clock earlier than a threshold's distance gives 0
  /// for it.
  explicit ScanOptions(std::uint32_t now);

  /// Makes births at or after `time` count as added since the last scan; 0 means that none is
  /// known.
  void setLastScanTime(std::uint32_t time) {
    lastScanTime = time;
    hasLastScan = time != 0;
  }

  ListingStrategy strategy = ListingStrategy::Auto;
  /// Reader threads; 0 or less chooses by the storage and the processors.
  std::int32_t threads = 0;
  /// Counts a file that has several names once.
  bool dedupeHardLinks = true;
  /// Births at or after it count as added in the last month.
  std::uint32_t monthThreshold;
  /// Births at or after it count as added in the last six months.
  std::uint32_t sixMonthThreshold;
  bool hasLastScan = false;
  /// Births at or after it count as added since the last scan, when `hasLastScan`.
  std::uint32_t lastScanTime = 0;
  /// Bytes in each reader's listing buffer.
  std::uint64_t readBufferSize = 262144;
};

}  // namespace sizewalk
