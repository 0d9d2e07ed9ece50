#include "app/map/block_painter.h"

#include "app/map/drawn_kind.h"

namespace app {

using sizewalk::KindIndex;

BlockPainter::BlockPainter(const sizewalk::FileTree& tree, const MeasureSettings& measure,
                           const KindColours& colours,
                           const std::unordered_map<std::int32_t, ExtraBlock>& extraColours)
    : tree_(tree), measure_(measure), colours_(colours), extraColours_(extraColours) {
  for (KindIndex kind = 0; kind < sizewalk::kKindCount; ++kind) {
    table_[kind] = colours.colourForKind(kind);
  }
}

std::uint32_t BlockPainter::choose(const TreemapBlock& block, KindIndex* kind) const {
  if (block.id < 0) return extraColours_.at(block.id).colour;
  const KindIndex drawn = drawnKind(tree_, static_cast<sizewalk::NodeId>(block.id), measure_);
  if (block.restCount == 0) *kind = drawn;
  return colourOfKind(drawn);
}

std::uint32_t BlockPainter::colourOfKind(KindIndex kind) const {
  return kind < sizewalk::kKindCount ? table_[kind] : colours_.colourForKind(kind);
}

}  // namespace app
