#include "app/frame/scan_progress.h"

#include <algorithm>

namespace app {

double scanProgress(const ScanStatus& status, const std::optional<VolumeSpace>& volume,
                    std::uint64_t foundBytes) {
  if (!status.scanning || status.readingAgain) return 0;
  if (!volume || !volume->isWhole || volume->usedBytes == 0) return 0;
  // More than was in use: others write meanwhile.
  return std::min(1.0, static_cast<double>(foundBytes) / static_cast<double>(volume->usedBytes));
}

}  // namespace app
