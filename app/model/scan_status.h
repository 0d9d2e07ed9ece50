#pragma once

#include <cstdint>
#include <optional>

namespace app {

/// What the status line tells of the shown scan. Sizes are bytes.
struct ScanStatus {
  /// Nodes of the tree so far.
  std::uint64_t nodes = 0;
  /// The scanned folder's total under the current measure, and the items in it.
  std::int64_t total = 0;
  std::int64_t items = 0;
  bool scanning = false;
  /// What runs reads a folder of the tree again, not all of it.
  bool readingAgain = false;
  // The rest counts once the scan has ended.
  double elapsedSeconds = 0;
  std::int64_t hardLinks = 0;
  std::int64_t hardLinkBytes = 0;
  std::int64_t unreadable = 0;
  bool stopped = false;
  /// Whether it is known when the folder was scanned before; nothing until the disk has said so.
  std::optional<bool> scannedBefore = std::nullopt;
};

}  // namespace app
