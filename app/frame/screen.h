#pragma once

#include <cstdint>
#include <functional>

#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/widgets/input_target.h"

namespace app {

/// What fills the window: the welcome or a scan. The main window shows one of them at a time and
/// hands it all input. Window thread only; lengths are device pixels, the screen covers the window.
class Screen : public ui::InputTarget {
 public:
  /// A new frame is to be drawn.
  std::function<void()> onChanged;

  virtual void setSize(int width, int height) = 0;
  /// Brings everything up to date before it is painted. True when that was costly, so that it
  /// should not be asked for too often. What changes meanwhile is in that frame, needing no other.
  bool prepare() {
    preparing_ = true;
    const bool costly = bringUpToDate();
    preparing_ = false;
    return costly;
  }
  virtual void paint(ui::Canvas& canvas) const = 0;

  /// Another screen takes this one's place, or a dialog opens over it: nothing is pressed or under
  /// the pointer any more.
  virtual void hide() = 0;
  /// True when the key means something here.
  virtual bool key(const ui::KeyEvent& event) = 0;
  virtual void tick(std::int64_t /*nowMs*/) {}
  /// Takes back what lies over the screen, one thing at a time; false when there is nothing.
  virtual bool dismiss() { return false; }
  /// The button that the application menu hangs from.
  virtual ui::Rect menuButton() const = 0;
  /// The shape of the pointer where it is.
  virtual ui::PointerShape pointer() const = 0;

 protected:
  virtual bool bringUpToDate() { return false; }
  void changed() const {
    if (onChanged && !preparing_) onChanged();
  }

 private:
  bool preparing_ = false;
};

}  // namespace app
