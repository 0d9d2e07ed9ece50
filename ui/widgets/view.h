#pragma once

#include <cstdint>
#include <functional>

#include "ui/canvas.h"
#include "ui/damage.h"
#include "ui/geometry.h"
#include "ui/input.h"

namespace ui {

/// A part of the window: it has a place, paints itself there, takes input and tells when it looks
/// different. Screens, dialogs and menus are views too.
///
/// A frame has two halves: `prepare` may change state, look at data and lay out; `paint` only
/// draws, the same until the next `prepare`, and perhaps only a part. Window thread only. Places
/// and lengths are device pixels of the window.
class View {
 public:
  /// A new frame is to be drawn.
  std::function<void()> onChanged;

  View() : serial_(nextSerial()) {}
  virtual ~View() = default;
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  /// Tells it from every other view, also from those that are gone. Never 0.
  std::uint64_t serial() const { return serial_; }

  const Rect& rect() const { return rect_; }
  /// Gives the view its place. What is laid out already is not laid out again.
  void setRect(const Rect& rect);

  /// Whether Tab stops here and a press gives it the keyboard.
  virtual bool takesKeyboard() const { return false; }
  bool focused() const { return focused_; }
  /// Gives the view the keyboard, or takes it away: a ring says so while the keyboard is in use.
  void setFocused(bool focused);

  /// Brings everything up to date before it is painted. True when that was costly, so that it
  /// should not be asked for too often. What changes meanwhile is in that frame, needing no other.
  bool prepare();
  /// Adds to `damage` what looks different since the last call, of a view that is prepared.
  virtual void collectDamage(Damage* damage);
  /// Draws at least what lies in the clip.
  virtual void paint(Canvas& canvas) const = 0;
  /// Draws what lies over all other views of the window, such as a card; called after them.
  virtual void paintOver(Canvas& /*canvas*/) const {}

  virtual void press(const MouseEvent& /*event*/) {}
  virtual void motion(const MouseEvent& /*event*/) {}
  virtual void release(const MouseEvent& /*event*/) {}
  /// The pointer is elsewhere now.
  virtual void leave() {}
  /// The pointer is at (x, y) of the window, here or beside the view, which other events do not
  /// tell.
  virtual void pointerSeen(int /*x*/, int /*y*/) {}
  /// Something covers the window: where the pointer goes meanwhile is not seen.
  virtual void pointerLost() {}
  /// `dy` steps of the wheel, down when above 0.
  virtual void wheel(const MouseEvent& /*event*/, int /*dy*/) {}
  /// True when the key means something here.
  virtual bool key(const KeyEvent& /*event*/) { return false; }
  /// Called a few times a second. `nowMs` counts as the time of events does.
  virtual void tick(std::int64_t /*nowMs*/) {}
  /// Something covers the view: nothing is pressed or under the pointer any more.
  virtual void releasePointer() { leave(); }
  /// The shape of the pointer where it is, as of the last event or frame.
  virtual PointerShape pointer() const { return PointerShape::Arrow; }

 protected:
  /// `rect()` is another one.
  virtual void layOut() {}
  virtual bool bringUpToDate() { return false; }
  /// All of the view may look different. Right wherever it is not known what of it does.
  void changed() { changed(rect_); }
  /// This part of the window may look different, and no other.
  void changed(const Rect& part);
  /// The next `prepare` finds out whether something looks different, and says so.
  void needsFrame() const {
    if (onChanged && !preparing_) onChanged();
  }

 private:
  static std::uint64_t nextSerial();

  const std::uint64_t serial_;
  Rect rect_;
  /// What looks different since it was collected.
  Damage damage_;
  bool focused_ = false;
  bool preparing_ = false;
};

}  // namespace ui
