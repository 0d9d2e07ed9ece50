#pragma once

#include <cstddef>

#include "ui/geometry.h"
#include "ui/text_fit.h"

// Where the parts of the pending panel are. Needs no window.

namespace app {

inline constexpr const char* kPendingHeading = "Pending Deletes";
inline constexpr const char* kUndeleteAllText = "Undelete All";
inline constexpr const char* kDeleteNowText = "Delete Now";
inline constexpr const char* kUndeleteText = "Undelete";

/// Rows that the panel grows by; those after them are scrolled to.
inline constexpr std::size_t kMostPendingRows = 4;

/// What lengths depend on.
struct PendingScale {
  double scale = 1;
  /// Of the body font, device pixels.
  int lineHeight = 0;
};

/// Height of a row, at least 1.
int pendingRowHeight(const PendingScale& scale);
/// What the panel wants for so many items; 0 for none.
int pendingPanelHeight(std::size_t items, const PendingScale& scale);

/// The fixed parts. A panel that is too low cuts its rows off, then its heading.
struct PendingLayout {
  ui::Rect heading;
  ui::Rect undeleteAll;
  ui::Rect deleteNow;
  /// What the rows show in, scroll bar included.
  ui::Rect rows;
};

PendingLayout layOutPending(const ui::Rect& panel, const PendingScale& scale,
                            const ui::MeasureText& measure);

/// The parts of one row.
struct PendingRowLayout {
  ui::Rect ring;
  ui::Rect name;
  ui::Rect undelete;
};

/// In `row`, which leaves the scroll bar out.
PendingRowLayout layOutPendingRow(const ui::Rect& row, const PendingScale& scale,
                                  const ui::MeasureText& measure);

}  // namespace app
