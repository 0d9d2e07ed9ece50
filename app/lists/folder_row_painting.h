#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "app/lists/folder_rows.h"
#include "ui/canvas.h"
#include "ui/colour.h"
#include "ui/geometry.h"
#include "ui/widgets/style.h"

namespace app {

/// Where the parts of a row of the folder list are, in device pixels of the window.
struct FolderRowPlaces {
  /// Left edge of the triangle, and the middle of the row's height.
  int x0;
  int mid;
  /// At the left edge of the list.
  ui::Rect mark;
  ui::Rect swatch;
  ui::Rect name;
  ui::Rect size;

  /// The triangle and the room around it, as far as the swatch: it is too small to aim at.
  bool isOnTriangle(int x) const;
};

/// The parts of a row that takes `row` and stands `depth` levels deep.
FolderRowPlaces folderRowPlaces(const ui::Style& style, const ui::Rect& row, std::int32_t depth);

/// What a row of the folder list looks like, apart from its ground and the ring round it.
struct FolderRowLook {
  FolderRow row;
  /// Without a colour there is no swatch.
  std::optional<ui::Colour> swatch;
  std::string_view name;
  std::string_view size;
  bool selected = false;
  /// The map shows that folder: the row carries a mark.
  bool inFocus = false;
};

void paintFolderRow(ui::Canvas& canvas, const ui::Style& style, const FolderRowPlaces& places,
                    const FolderRowLook& look);

}  // namespace app
