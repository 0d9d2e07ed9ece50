#pragma once

#include <functional>

#include "ui/widgets/view.h"

namespace ui {

/// A view over the whole window that has all input until it is closed: a dialog or a menu. Its
/// place is the window; what it draws may be smaller. Window thread only.
class Overlay : public View {
 public:
  /// It is done with. Whoever owns it may destroy it during the call.
  std::function<void()> onClosed;

  /// Goes by itself when something else opens or the window changes its size, and acts on single
  /// presses only: a menu.
  virtual bool isMenu() const { return false; }

 protected:
  void close() {
    // A copy: the overlay, and the callable with it, may go while it runs.
    if (const auto closed = onClosed) closed();
  }
};

}  // namespace ui
