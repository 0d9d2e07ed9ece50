#include "app/lists/folder_row_painting.h"

#include <algorithm>

#include "ui/text.h"

namespace app {

namespace {

// Logical pixels.
constexpr double kIndent = 16;
constexpr double kSizeColumnWidth = 80;
constexpr double kMarkWidth = 3;
constexpr double kMarkLine = 1;

// Device pixels.
constexpr int kLeftMargin = 6;
constexpr int kSwatchPlace = 12;
constexpr int kSwatchSize = 8;
constexpr int kNamePlace = 26;
constexpr int kLeastNameWidth = 20;
constexpr int kNameMargin = 8;
constexpr int kSizeMargin = 10;
constexpr int kTriangleLines = 5;

void paintOpenTriangle(ui::Canvas& canvas, const FolderRowPlaces& places, ui::Colour colour) {
  const int middle = places.x0 + kTriangleLines - 1;
  for (int i = 0; i < kTriangleLines; ++i) {
    const int reach = kTriangleLines - 1 - i;  // to either side of the middle
    const int y = places.mid - 2 + i;
    canvas.line(middle - reach, y, middle + reach, y, colour);
  }
}

void paintClosedTriangle(ui::Canvas& canvas, const FolderRowPlaces& places, ui::Colour colour) {
  for (int i = 0; i < kTriangleLines; ++i) {
    const int reach = kTriangleLines - 1 - i;
    const int x = places.x0 + 2 + i;  // in the middle of what an open one is wide
    canvas.line(x, places.mid - reach, x, places.mid + reach, colour);
  }
}

/// On a selected row, whose ground has its colour, a line sets it apart. Both leave the triangles
/// free, whose place does not grow with the scale.
void paintMark(ui::Canvas& canvas, const ui::Style& style, const ui::Rect& mark, bool selected) {
  canvas.fillRect(mark, style.palette().accent);
  if (!selected) return;
  const int width = std::min(style.scaled(kMarkLine), kLeftMargin - 1);
  const ui::Rect line = {mark.x + std::min(mark.w, kLeftMargin - width), mark.y, width, mark.h};
  canvas.fillRect(line, style.palette().accentText);
}

}  // namespace

bool FolderRowPlaces::isOnTriangle(int x) const { return x >= x0 - kLeftMargin && x < swatch.x; }

FolderRowPlaces folderRowPlaces(const ui::Style& style, const ui::Rect& row, std::int32_t depth) {
  const int sizeColumn = style.scaled(kSizeColumnWidth);
  const int right = row.x + row.w;
  const int mid = row.y + row.h / 2;
  const int x0 = row.x + depth * style.scaled(kIndent) + kLeftMargin;
  const int nameX = x0 + kNamePlace;
  const int nameWidth = std::max(kLeastNameWidth, right - nameX - sizeColumn - kNameMargin);
  const int sizeWidth = sizeColumn - kSizeMargin;
  return {x0,
          mid,
          {row.x, row.y, std::min(style.scaled(kMarkWidth), kLeftMargin), row.h},
          {x0 + kSwatchPlace, mid - kSwatchSize / 2, kSwatchSize, kSwatchSize},
          {nameX, row.y, nameWidth, row.h},
          {right - sizeWidth, row.y, sizeWidth, row.h}};
}

void paintFolderRow(ui::Canvas& canvas, const ui::Style& style, const FolderRowPlaces& places,
                    const FolderRowLook& look) {
  const ui::Palette& palette = style.palette();
  const ui::Colour nameColour = look.selected ? palette.accentText : palette.text;
  const ui::Colour restColour = look.selected ? palette.accentText : palette.dimText;
  if (look.inFocus) paintMark(canvas, style, places.mark, look.selected);
  if (look.row.expandable) {
    const auto paintTriangle = look.row.expanded ? paintOpenTriangle : paintClosedTriangle;
    paintTriangle(canvas, places, restColour);
  }
  if (look.swatch) canvas.fillRect(places.swatch, *look.swatch);
  ui::drawText(canvas, places.name, look.name, style.body(), nameColour);
  ui::drawText(canvas, places.size, look.size, style.body(), restColour, ui::Align::Right);
}

}  // namespace app
