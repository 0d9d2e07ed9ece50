#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "app/map/rendered_treemap.h"
#include "sizewalk/file_tree.h"
#include "ui/colour.h"
#include "ui/geometry.h"

namespace app {

/// Three lines around an item, from the outside inwards: a light one, one in the accent colour and
/// a dark one that lets the item shine through.
struct OutlineStyle {
  /// Of each line, in pixels.
  int thickness = 1;
  ui::Colour accent = 0xFFFFFFFF;
};

/// Smaller items have no outline: it would hide what it is around.
inline constexpr int kLeastOutlined = 3;

/// Where an item is outlined on the map; empty where the map does not show it by itself, or too
/// small.
ui::Rect outlineOf(const RenderedTreemap& map, sizewalk::NodeId node);

/// Draws `outlines`, rectangles of the map that are just inside their items' edges, on `pixels`,
/// those of the part `area` of the map, 0xRRGGBB row by row. Light lines lie below all others and
/// dark ones above, so that no light line cuts through the dark one of an item around it. Any
/// thread.
void drawOutlines(std::span<const ui::Rect> outlines, const OutlineStyle& style,
                  const ui::Rect& area, std::span<std::uint32_t> pixels);

/// Appends the parts of the map that an outline takes: four bands along its edges, or all inside of
/// it where that is hardly more.
void addOutlineBands(const ui::Rect& outline, const OutlineStyle& style,
                     std::vector<ui::Rect>* bands);

}  // namespace app
