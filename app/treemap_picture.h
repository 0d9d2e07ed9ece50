#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "app/kind_colours.h"
#include "app/measure.h"
#include "app/treemap_render.h"
#include "sizewalk/file_tree.h"
#include "ui/canvas.h"
#include "ui/connection.h"
#include "ui/geometry.h"
#include "ui/server_image.h"

namespace app {

/// The picture of the focused folder, which the map's view draws its outlines on. Keeps the last
/// one and makes a new one only when what it shows or its size has changed; its pixels are sent to
/// the X server once. Window thread only.
class TreemapPicture {
 public:
  /// Both outlive the picture.
  TreemapPicture(ui::Connection& connection, const KindColours& colours)
      : colours_(colours), image_(connection) {}

  /// Shows `focus` of `tree`, or nothing when `tree` is null. The tree outlives being shown. Until
  /// the next `update` the last picture of that tree stays; that of another one goes at once.
  void show(const sizewalk::FileTree* tree, sizewalk::NodeId focus);
  void setMeasure(const MeasureSettings& measure);
  /// Takes part in every picture from now on, whatever is in focus.
  void setExtraBlocks(std::vector<ExtraBlock> blocks);
  /// Dims every block but those of `kind`; none when there is none.
  void setHighlight(std::optional<int> kind);
  /// What the map shows has changed: the next `update` makes a new picture.
  void markDirty() { dirty_ = true; }

  /// Gives the picture its place in the window.
  void setRect(const ui::Rect& rect) { rect_ = rect; }
  const ui::Rect& rect() const { return rect_; }

  /// Makes a new picture if one is due. Call it before painting. True when it made one.
  bool update();
  /// Draws the last picture.
  void paint(ui::Canvas& canvas) const;

  const sizewalk::FileTree* tree() const { return tree_; }
  const MeasureSettings& measure() const { return measure_; }
  const RenderedTreemap& rendered() const { return rendered_; }

 private:
  bool fits() const;
  void send();

  const KindColours& colours_;
  const sizewalk::FileTree* tree_ = nullptr;
  sizewalk::NodeId focus_ = sizewalk::kRootNode;
  MeasureSettings measure_;
  std::vector<ExtraBlock> extraBlocks_;
  std::optional<int> highlight_;
  ui::Rect rect_;
  bool dirty_ = false;
  /// The pixels with the server are not those to be seen.
  bool unsent_ = false;
  RenderedTreemap rendered_;
  ui::ServerImage image_;
  std::vector<std::uint32_t> dimmed_;
};

}  // namespace app
