#include "app/frame/pending_rows.h"

#include "app/frame/countdown_ring.h"
#include "app/model/format.h"

namespace app {

std::vector<PendingRow> pendingRows(const PendingDeletes& pending) {
  std::vector<PendingRow> rows;
  rows.reserve(pending.size());
  for (const PendingDelete& item : pending.items()) {
    rows.push_back(
        {item.id, displayName(item.name), remainingFraction(item.remainingMs, kPendingMs)});
  }
  return rows;
}

}  // namespace app
