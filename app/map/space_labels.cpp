#include "app/map/space_labels.h"

#include <utility>

#include "app/model/format.h"

namespace app {

namespace {

constexpr const char* kBetween = "  ";

/// The texts of one block, one a line, as far as they fit into `width` x `height`.
std::vector<std::string> linesFor(const ExtraBlock& extra, int width, int height,
                                  const SpaceLabelStyle& style) {
  if (height < style.lineHeight) return {};
  const std::string size = formatSize(extra.size);
  const std::string both = extra.label + kBetween + size;
  const bool oneLine = height < 2 * style.lineHeight;
  if (oneLine && style.measure(both) <= width) return {both};
  const bool fits = style.measure(extra.label) <= width;
  if (!fits && width < style.leastWidth) return {};
  std::vector<std::string> lines = {ui::shortenedAtEnd(extra.label, width, style.measure)};
  if (!oneLine && style.measure(size) <= width) lines.push_back(size);
  return lines;
}

void addLabels(const ui::Rect& block, const ExtraBlock& extra, const SpaceLabelStyle& style,
               std::vector<SpaceLabel>* labels) {
  const int width = block.w - 2 * style.padding;
  std::vector<std::string> lines = linesFor(extra, width, block.h - 2 * style.padding, style);
  const int height = static_cast<int>(lines.size()) * style.lineHeight;
  ui::Rect line = {block.x + style.padding, block.y + (block.h - height) / 2, width,
                   style.lineHeight};
  for (std::string& text : lines) {
    labels->push_back({std::move(text), line});
    line.y += line.h;
  }
}

}  // namespace

std::vector<SpaceLabel> spaceLabels(const RenderedTreemap& map, const SpaceLabelStyle& style) {
  std::vector<SpaceLabel> labels;
  for (const std::uint32_t index : map.extras) {
    const PictureBlock& block = map.blocks[index];
    addLabels(block.rect.rect(), map.extraColours.at(block.id), style, &labels);
  }
  return labels;
}

}  // namespace app
