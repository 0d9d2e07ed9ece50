#include "app/map/extra_blocks.h"

#include "app/model/format.h"

namespace app {

namespace {

constexpr std::uint32_t kFreeSpaceColour = 0x2B3648;
constexpr std::uint32_t kOtherSpaceColour = 0x4A4458;

}  // namespace

std::vector<ExtraBlock> extraBlocksFor(const std::optional<VolumeSpace>& volume,
                                       std::uint64_t bytesOnDisk,
                                       const ExtraBlockSettings& settings) {
  std::vector<ExtraBlock> blocks;
  if (!volume) return blocks;
  if (settings.freeSpace) {
    blocks.push_back(
        {kFreeSpaceBlock, "Free space", signedSize(volume->freeBytes), kFreeSpaceColour});
  }
  if (settings.otherSpace && volume->usedBytes > bytesOnDisk) {
    blocks.push_back({kOtherSpaceBlock, "Other space in use",
                      signedSize(volume->usedBytes - bytesOnDisk), kOtherSpaceColour});
  }
  return blocks;
}

}  // namespace app
