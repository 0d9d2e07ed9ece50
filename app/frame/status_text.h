#pragma once

#include <cstdint>
#include <string>

namespace app {

/// What the status line tells of the shown scan. Sizes are bytes.
struct ScanStatus {
  /// Nodes of the tree so far.
  std::uint64_t nodes = 0;
  /// The scanned folder's total under the current measure, and the items in it.
  std::int64_t total = 0;
  std::int64_t items = 0;
  bool scanning = false;
  // The rest counts once the scan has ended.
  double elapsedSeconds = 0;
  std::int64_t hardLinks = 0;
  std::int64_t hardLinkBytes = 0;
  std::int64_t unreadable = 0;
  bool stopped = false;
};

/// The status line while a scan is shown, such as "1.20 GB in 12,345 items  ·  0.31s".
std::string statusText(const ScanStatus& status);

/// What is said of several selected items, such as "3 selected · 1.20 GB".
std::string selectionText(std::int64_t items, std::int64_t bytes);

}  // namespace app
