#include "app/extra_blocks.h"

#include <algorithm>
#include <limits>

namespace app {

namespace {

constexpr std::uint32_t kFreeSpaceColour = 0x2B3648;
constexpr std::uint32_t kOtherSpaceColour = 0x4A4458;

/// File systems on a network make up their figures; one past the signed range stays at its end.
std::int64_t blockSize(std::uint64_t bytes) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
  return static_cast<std::int64_t>(std::min(bytes, kMost));
}

}  // namespace

std::vector<ExtraBlock> extraBlocksFor(const std::optional<VolumeSpace>& volume,
                                       std::int64_t rootSize, const ExtraBlockSettings& settings) {
  std::vector<ExtraBlock> blocks;
  if (!volume) return blocks;
  if (settings.freeSpace) {
    blocks.push_back(
        {kFreeSpaceBlock, "Free space", blockSize(volume->freeBytes), kFreeSpaceColour});
  }
  const std::int64_t used = blockSize(volume->usedBytes);
  if (settings.otherSpace && rootSize >= 0 && used > rootSize) {
    blocks.push_back({kOtherSpaceBlock, "Other space in use", used - rootSize, kOtherSpaceColour});
  }
  return blocks;
}

}  // namespace app
