#pragma once

#include "app/kind_colours.h"
#include "app/measure.h"
#include "app/treemap_render.h"
#include "sizewalk/file_tree.h"
#include "ui/canvas.h"
#include "ui/geometry.h"

namespace app {

/// The map in the window: keeps the last picture of the focused folder and makes a new one only
/// when what it shows or its size has changed. Window thread only.
class TreemapView {
 public:
  /// `colours` outlives the view.
  explicit TreemapView(const KindColours& colours) : colours_(colours) {}

  /// Shows `focus` of `tree`, or nothing when `tree` is null. The tree outlives being shown.
  void show(const sizewalk::FileTree* tree, sizewalk::NodeId focus);
  void setMeasure(const MeasureSettings& measure);
  /// What the map shows has changed: the next `update` makes a new picture.
  void markDirty() { dirty_ = true; }

  /// Gives the view its place in the window.
  void setRect(const ui::Rect& rect) { rect_ = rect; }

  /// Makes a new picture if one is due. Call it before painting. True when it made one.
  bool update();
  /// Draws the last picture.
  void paint(ui::Canvas& canvas) const;

  const RenderedTreemap& rendered() const { return rendered_; }

 private:
  const KindColours& colours_;
  const sizewalk::FileTree* tree_ = nullptr;
  sizewalk::NodeId focus_ = sizewalk::kRootNode;
  MeasureSettings measure_;
  ui::Rect rect_;
  bool dirty_ = false;
  RenderedTreemap rendered_;
};

}  // namespace app
