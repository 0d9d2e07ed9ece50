#pragma once

#include <string>
#include <vector>

#include "app/map/rendered_treemap.h"
#include "ui/colour.h"
#include "ui/geometry.h"
#include "ui/text_fit.h"

namespace app {

/// Read on the blocks of free and other space, whose colours are dark in either theme, and darker
/// yet where they are shaded or dimmed.
inline constexpr ui::Colour kSpaceLabelColour = 0xFFEAEAEE;

/// A line of text on a block.
struct SpaceLabel {
  std::string text;
  /// Where it stands, in its middle, in pixels of the map. The text is no wider.
  ui::Rect line;
  friend bool operator==(const SpaceLabel&, const SpaceLabel&) = default;
};

/// What labels are set in, in pixels.
struct SpaceLabelStyle {
  int lineHeight = 0;
  /// Between a text and the edge of its block.
  int padding = 0;
  /// A label is shortened to no less; where there is less room there is none.
  int leastWidth = 0;
  ui::MeasureText measure;
};

/// What stands on the blocks of what is beside the tree: label and size in the middle, below each
/// other or, where there is one line, beside each other. The label is shortened where it has to be,
/// the size left out. Any thread.
std::vector<SpaceLabel> spaceLabels(const RenderedTreemap& map, const SpaceLabelStyle& style);

}  // namespace app
