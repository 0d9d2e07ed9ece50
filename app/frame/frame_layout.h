#pragma once

#include <optional>

#include "ui/geometry.h"

namespace app {

/// Where the user has put the dividers, as shares of the room that they divide; nothing where a
/// divider stands at its own place. A window with too little room for one lays it out elsewhere: it
/// stops where a pane would become unusable.
struct DividerPlaces {
  /// List beside the map: the left column's share of the width, the list's share of that column.
  std::optional<double> column;
  std::optional<double> listOverKinds;
  /// List above the map: the list's share of the height, the map's share of the width below it.
  std::optional<double> listHeight;
  std::optional<double> mapBesideKinds;
};

/// What the frame is laid out for. Pixels are device pixels.
struct FrameRequest {
  int width = 0;
  int height = 0;
  double scale = 1;
  /// Of the body font.
  int lineHeight = 0;
  bool listAboveMap = false;
  bool showKinds = true;
  /// What the line about an update asks for; 0 while none is told.
  int updateHeight = 0;
  /// What the pending panel asks for; 0 while nothing waits. It gets no more than half of the room
  /// above the status line.
  int pendingHeight = 0;
  DividerPlaces dividers;
};

/// The parts of the main window while a scan is shown. They and the dividers between them cover the
/// window without overlap; a part that is not shown is empty.
struct FrameLayout {
  ui::Rect toolbar;
  /// Across the window, under the toolbar.
  ui::Rect update;
  ui::Rect list;
  ui::Rect kinds;
  ui::Rect map;
  /// Across the window, between those above and the status line.
  ui::Rect pending;
  ui::Rect status;
  /// Between the list (and the kinds beside it) and the map.
  ui::Rect mainDivider;
  /// Between the kinds table and its neighbour.
  ui::Rect kindsDivider;
};

FrameLayout layOutFrame(const FrameRequest& request);

/// The toolbar alone, as it is in every window of that size.
ui::Rect toolbarRect(int width, int height, double scale, int lineHeight);

}  // namespace app
