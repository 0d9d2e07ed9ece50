#include "app/map/extra_blocks.h"

#include "app/model/format.h"

namespace app {

namespace {

constexpr std::uint32_t kFreeSpaceColour = 0x2B3648;
constexpr std::uint32_t kOtherSpaceColour = 0x4A4458;

}  // namespace

std::vector<ExtraBlock> extraBlocksFor(const std::optional<VolumeSpace>& volume,
                                       std::int64_t rootSize, const ExtraBlockSettings& settings) {
  std::vector<ExtraBlock> blocks;
  if (!volume) return blocks;
  if (settings.freeSpace) {
    blocks.push_back(
        {kFreeSpaceBlock, "Free space", signedSize(volume->freeBytes), kFreeSpaceColour});
  }
  const std::int64_t used = signedSize(volume->usedBytes);
  if (settings.otherSpace && rootSize >= 0 && used > rootSize) {
    blocks.push_back({kOtherSpaceBlock, "Other space in use", used - rootSize, kOtherSpaceColour});
  }
  return blocks;
}

}  // namespace app
