#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "app/map/treemap_layout.h"
#include "app/model/settings.h"

namespace app {

/// What is known of the volume that holds the scanned folder, in bytes.
struct VolumeSpace {
  std::uint64_t usedBytes = 0;
  std::uint64_t freeBytes = 0;
  /// The scanned folder is the volume's own, not one inside.
  bool isWhole = false;
};

/// Which extra blocks the user wants to see.
struct ExtraBlockSettings {
  bool freeSpace = setting::kShowFreeSpace.fallback;
  bool otherSpace = setting::kShowOtherSpace.fallback;
  friend bool operator==(const ExtraBlockSettings&, const ExtraBlockSettings&) = default;
};

/// The blocks that the map shows beside the scanned folder: the volume's free space, then what
/// others than the folder take of it, unless that is nothing. `bytesOnDisk` is what the scanned
/// folder takes of the volume, whatever measure is shown. Empty without figures.
std::vector<ExtraBlock> extraBlocksFor(const std::optional<VolumeSpace>& volume,
                                       std::uint64_t bytesOnDisk,
                                       const ExtraBlockSettings& settings);

}  // namespace app
