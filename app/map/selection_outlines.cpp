// Outlines are drawn into pixels and not by the X server: of 20,000 selected items each frame would
// ask it for 240,000 filled rectangles, which takes a tenth of a second, most of it for the
// translucent ones. Pixels are drawn and sent once, and only where the selection has changed.

#include "app/map/selection_outlines.h"

#include <algorithm>
#include <cstddef>

namespace app {

namespace {

constexpr int kLines = 3;
constexpr std::uint32_t kLight = 0xFFFFFF;
/// What the dark line leaves of a channel, of 255.
constexpr std::uint32_t kLeftOfDark = 63;

std::uint32_t darkened(std::uint32_t rgb) {
  const auto channel = [&](int shift) {
    return ((rgb >> shift & 0xFF) * kLeftOfDark + 127) / 255 << shift;
  };
  return channel(16) | channel(8) | channel(0);
}

ui::Rect inset(const ui::Rect& rect, int by) {
  return {rect.x + by, rect.y + by, rect.w - 2 * by, rect.h - 2 * by};
}

/// A part of the map, to be drawn on.
class Part {
 public:
  Part(const ui::Rect& area, std::span<std::uint32_t> pixels) : area_(area), pixels_(pixels) {}

  /// Has `draw` change every pixel just inside the edge of `rect`, each once.
  template <typename Draw>
  void forEdge(const ui::Rect& rect, const Draw& draw) const {
    if (rect.empty()) return;
    forRect({rect.x, rect.y, rect.w, 1}, draw);
    if (rect.h > 1) forRect({rect.x, rect.y + rect.h - 1, rect.w, 1}, draw);
    forRect({rect.x, rect.y + 1, 1, rect.h - 2}, draw);
    if (rect.w > 1) forRect({rect.x + rect.w - 1, rect.y + 1, 1, rect.h - 2}, draw);
  }

 private:
  template <typename Draw>
  void forRect(const ui::Rect& rect, const Draw& draw) const {
    const ui::Rect seen = ui::intersect(rect, area_);
    for (int y = seen.y; y < seen.y + seen.h; ++y) {
      std::uint32_t* const row =
          &pixels_[static_cast<std::size_t>(y - area_.y) * static_cast<std::size_t>(area_.w)];
      for (int x = seen.x - area_.x; x < seen.x - area_.x + seen.w; ++x) draw(&row[x]);
    }
  }

  const ui::Rect area_;
  const std::span<std::uint32_t> pixels_;
};

}  // namespace

ui::Rect outlineOf(const RenderedTreemap& map, sizewalk::NodeId node) {
  const PixelSpan* rect = map.outlineRect(node);
  const ui::Rect pixels = rect ? rect->rect() : ui::Rect();
  return pixels.w < kLeastOutlined || pixels.h < kLeastOutlined ? ui::Rect() : pixels;
}

void drawOutlines(std::span<const ui::Rect> outlines, const OutlineStyle& style,
                  const ui::Rect& area, std::span<std::uint32_t> pixels) {
  if (area.empty()) return;
  std::vector<ui::Rect> seen;
  std::ranges::copy_if(outlines, std::back_inserter(seen), [&](const ui::Rect& outline) {
    return !ui::intersect(outline, area).empty();
  });
  const Part part(area, pixels);
  const auto stroke = [&](int line, const auto& draw) {
    for (int i = line * style.thickness; i < (line + 1) * style.thickness; ++i) {
      for (const ui::Rect& outline : seen) part.forEdge(inset(outline, i), draw);
    }
  };
  stroke(0, [](std::uint32_t* pixel) { *pixel = kLight; });
  stroke(1, [&](std::uint32_t* pixel) { *pixel = style.accent & 0xFFFFFF; });
  stroke(2, [](std::uint32_t* pixel) { *pixel = darkened(*pixel); });
}

void addOutlineBands(const ui::Rect& outline, const OutlineStyle& style,
                     std::vector<ui::Rect>* bands) {
  if (outline.empty()) return;
  const int depth = kLines * style.thickness;
  const auto [x, y, w, h] = outline;
  const ui::Rect inside = inset(outline, depth);
  if (inside.empty() || 2L * inside.w * inside.h < long{w} * h) {
    bands->push_back(outline);
    return;
  }
  bands->push_back({x, y, w, depth});
  bands->push_back({x, y + h - depth, w, depth});
  bands->push_back({x, y + depth, depth, h - 2 * depth});
  bands->push_back({x + w - depth, y + depth, depth, h - 2 * depth});
}

}  // namespace app
