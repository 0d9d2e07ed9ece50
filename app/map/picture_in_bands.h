#pragma once

#include <vector>

#include "app/map/rendered_treemap.h"
#include "app/map/selection_outlines.h"
#include "sizewalk/file_tree.h"
#include "ui/connection.h"
#include "ui/geometry.h"
#include "ui/server_image.h"

namespace app {

/// A large picture on its way to the X server, band by band, so that the window thread has turns
/// for its user in between. Until it is there the picture before it is seen. Window thread only.
class PictureInBands {
 public:
  /// All that it consists of once it is there.
  struct Parts {
    RenderedTreemap map;
    ui::ServerImage image;
    /// What is selected in it, in ascending order, and by its places the outlines.
    std::vector<sizewalk::NodeId> selected;
    std::vector<ui::Rect> outlines;
  };

  /// `connection` outlives it. Sends nothing yet.
  PictureInBands(ui::Connection& connection, RenderedTreemap map,
                 std::vector<sizewalk::NodeId> selected);

  /// Asks the server for room, before the first band. False when it has none.
  bool reserve();
  /// One more; only until the last one.
  void sendNext(const OutlineStyle& style);
  bool isThere() const { return rowsSent_ >= parts_.map.height; }

  /// For whoever takes them from here.
  Parts& parts() { return parts_; }

 private:
  Parts parts_;
  int rowsSent_ = 0;
  std::vector<std::uint32_t> outlined_;
};

}  // namespace app
