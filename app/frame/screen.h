#pragma once

#include "ui/geometry.h"
#include "ui/widgets/view_group.h"

namespace app {

/// What fills the window: the welcome or a scan. The main window shows one of them at a time.
/// Window thread only.
class Screen : public ui::ViewGroup {
 public:
  /// The button that the application menu hangs from.
  virtual ui::Rect menuButton() const = 0;
};

}  // namespace app
