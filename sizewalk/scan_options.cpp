#include "sizewalk/scan_options.h"

#include <ctime>

namespace sizewalk {

namespace {
constexpr std::uint32_t kMonthSeconds = 2592000;      // 30 days
constexpr std::uint32_t kSixMonthSeconds = 15724800;  // 182 days

std::uint32_t secondsBefore(std::uint32_t now, std::uint32_t distance) {
  return now < distance ? 0 : now - distance;
}
}  // namespace

const char* listingStrategyName(std::uint32_t code) {
  switch (code) {
    case static_cast<std::uint32_t>(ListingStrategy::Enumerate):
      return "enum";
    case static_cast<std::uint32_t>(ListingStrategy::Mft):
      return "mft";
    default:
      return "auto";
  }
}

ScanOptions::ScanOptions() : ScanOptions(static_cast<std::uint32_t>(std::time(nullptr))) {}

ScanOptions::ScanOptions(std::uint32_t now)
    : monthThreshold(secondsBefore(now, kMonthSeconds)),
      sixMonthThreshold(secondsBefore(now, kSixMonthSeconds)) {}

}  // namespace sizewalk
