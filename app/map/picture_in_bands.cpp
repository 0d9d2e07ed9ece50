#include "app/map/picture_in_bands.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

namespace app {

namespace {
/// 128 kB fit into the socket: more waits for the server, which may itself wait for a processor.
constexpr std::size_t kBandPixels = 32768;
}  // namespace

PictureInBands::PictureInBands(ui::Connection& connection, RenderedTreemap map,
                               std::vector<sizewalk::NodeId> selected)
    : parts_{std::move(map), ui::ServerImage(connection), std::move(selected), {}} {
  for (const sizewalk::NodeId node : parts_.selected) {
    parts_.outlines.push_back(outlineOf(parts_.map, node));
  }
}

bool PictureInBands::reserve() { return parts_.image.reserve(parts_.map.width, parts_.map.height); }

void PictureInBands::sendNext(const OutlineStyle& style) {
  const RenderedTreemap& map = parts_.map;
  const auto width = static_cast<std::size_t>(map.width);
  const int rows = static_cast<int>(std::max<std::size_t>(kBandPixels / width, 1));
  const ui::Rect band = {0, rowsSent_, map.width, std::min(rows, map.height - rowsSent_)};
  std::span<const std::uint32_t> pixels = std::span(map.pixels)
                                              .subspan(static_cast<std::size_t>(band.y) * width,
                                                       static_cast<std::size_t>(band.h) * width);
  if (!parts_.outlines.empty()) {
    outlined_.assign(pixels.begin(), pixels.end());
    drawOutlines(parts_.outlines, style, band, outlined_);
    pixels = outlined_;
  }
  parts_.image.replace(band, pixels);
  rowsSent_ += band.h;
}

}  // namespace app
