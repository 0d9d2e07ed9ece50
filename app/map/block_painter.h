#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>

#include "app/map/treemap_layout.h"
#include "app/model/kind_colours.h"
#include "app/model/measure.h"
#include "sizewalk/file_kinds.h"
#include "sizewalk/file_tree.h"

namespace app {

/// Chooses the kinds and colours of a layout's blocks. One object serves several threads at once.
class BlockPainter {
 public:
  /// `extraColours` are the blocks of what is beside the tree, by their ids. All but `measure`
  /// outlive it.
  BlockPainter(const sizewalk::FileTree& tree, const MeasureSettings& measure,
               const KindColours& colours,
               const std::unordered_map<std::int32_t, ExtraBlock>& extraColours);

  /// The colour of a painted block, 0xRRGGBB before shading, and its kind; the latter stays as it
  /// is where the block stands for several items or for none. Once for each block, so that it has
  /// one colour even where the tree changes meanwhile.
  std::uint32_t choose(const TreemapBlock& block, sizewalk::KindIndex* kind) const;

 private:
  std::uint32_t colourOfKind(sizewalk::KindIndex kind) const;

  const sizewalk::FileTree& tree_;
  const MeasureSettings measure_;
  const KindColours& colours_;
  const std::unordered_map<std::int32_t, ExtraBlock>& extraColours_;
  /// Looked up once for each kind: ranked colours take a hash look-up, and there are blocks by the
  /// hundred thousand.
  std::array<std::uint32_t, sizewalk::kKindCount> table_;
};

}  // namespace app
