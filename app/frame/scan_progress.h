#pragma once

#include <cstdint>
#include <optional>

#include "app/map/extra_blocks.h"
#include "app/model/scan_status.h"

namespace app {

/// How far the scan of a whole disk is: the share, 0 to 1, that `foundBytes` on it are of those in
/// use. 0 unless such a scan runs and the disk has said how much that is.
double scanProgress(const ScanStatus& status, const std::optional<VolumeSpace>& volume,
                    std::uint64_t foundBytes);

}  // namespace app
