#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "app/map/treemap_layout.h"
#include "app/model/kind_colours.h"
#include "app/model/measure.h"
#include "sizewalk/file_tree.h"

namespace test {

/// The map drawn the slow way, as an oracle: every definition spelled out with the plainest means,
/// hash maps, whole rows measured anew, one pixel after the other. Shares no code with the program
/// but the types.
struct NaiveMap {
  std::vector<app::TreemapBlock> blocks;
  std::vector<std::uint32_t> pixels;
  std::vector<std::uint32_t> blockAt;
  std::unordered_map<std::uint32_t, app::MapRect> outlineRects;
};

NaiveMap drawNaively(const sizewalk::FileTree& tree, sizewalk::NodeId root, std::int32_t width,
                     std::int32_t height, const app::KindColours& colours,
                     const std::vector<app::ExtraBlock>& extraBlocks,
                     const app::MeasureSettings& measure);

std::vector<app::PlacedItem> squarifyNaively(const std::vector<app::WeightedItem>& items,
                                             app::MapRect free);

/// Paints one block into images of width × height entries.
void shadeNaively(const app::TreemapBlock& block, std::uint32_t colour, std::uint32_t blockIndex,
                  std::vector<std::uint32_t>* pixels, std::vector<std::uint32_t>* blockAt,
                  std::int32_t width, std::int32_t height);

}  // namespace test
