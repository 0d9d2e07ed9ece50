#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/actions/pending_deletes.h"

namespace app {

/// What the pending panel shows of an item.
struct PendingRow {
  /// Of the item; above 0.
  std::uint64_t id = 0;
  /// Readable, whatever bytes the item's name has.
  std::string name;
  /// What is left of its countdown, 0 to 1.
  double remaining = 1;

  friend bool operator==(const PendingRow&, const PendingRow&) = default;
};

/// One row for each item, in the order of the list.
std::vector<PendingRow> pendingRows(const PendingDeletes& pending);

}  // namespace app
