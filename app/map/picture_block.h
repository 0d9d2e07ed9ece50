#pragma once

#include <cstdint>

#include "app/map/treemap_layout.h"
#include "sizewalk/file_kinds.h"
#include "ui/geometry.h"

namespace app {

/// No picture of the map is wider or higher: X has windows of half that size at the most.
inline constexpr std::int32_t kMostPixels = 65535;

/// The pixels that a block of the map is drawn on; first inclusive, last exclusive.
struct PixelSpan {
  std::uint16_t left = 0;
  std::uint16_t top = 0;
  std::uint16_t right = 0;
  std::uint16_t bottom = 0;

  ui::Rect rect() const { return {left, top, right - left, bottom - top}; }
  std::int64_t area() const { return std::int64_t{right - left} * (bottom - top); }
  friend bool operator==(const PixelSpan&, const PixelSpan&) = default;
};

/// A block of a picture that is finished: what tells what lies where. There are two pictures of up
/// to a million blocks, so it holds nothing else.
struct PictureBlock {
  /// Each edge of the block rounded half away from zero, as the shading does it; within the
  /// picture.
  PixelSpan rect;
  /// As in `TreemapBlock`.
  std::int32_t id = 0;
  std::int32_t restCount = 0;
  /// The kind of the block when its colour was chosen; for a folder drawn as one block the kind
  /// that it is coloured by. `kNoKind` for merged entries, for what is beside the tree, and where
  /// nothing is painted.
  sizewalk::KindIndex kind = sizewalk::kNoKind;
  bool painted = true;
  BlockReason reason = BlockReason::laidOut;
  friend bool operator==(const PictureBlock&, const PictureBlock&) = default;
};
static_assert(sizeof(PictureBlock) == 20);

}  // namespace app
