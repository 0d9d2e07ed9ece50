#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "ui/widgets/overlay.h"

namespace ui {

/// What lies over what in the window, and so who gets its input: a menu over dialogs over the
/// screen. This is the only place that knows that order, for painting, the pointer and the keys
/// alike, and whether the keyboard is in use, so that rings are shown: from a key that moves to the
/// next press. Window thread only.
class InputStack {
 public:
  /// A new frame is to be drawn.
  std::function<void()> onChanged;
  /// The pointer has this shape where it is; also when that is no news.
  std::function<void(PointerShape)> onPointer;

  /// Shows `screen`, which outlives being shown, instead of another one. Menus close.
  void show(View& screen);
  /// Puts an overlay on top, in place of a menu that is open. It is closed by itself, or with the
  /// stack.
  void open(std::unique_ptr<Overlay> overlay);
  void closeMenu();
  /// Something lies over the screen.
  bool covered() const { return !over_.empty(); }

  /// The window has this size. Menus close.
  void setSize(int width, int height);
  /// As `View::prepare`, for all. What is under the pointer by then may give it another shape.
  bool prepare();
  /// As `View::collectDamage`, for all.
  void collectDamage(Damage* damage);
  void paint(Canvas& canvas) const;
  void tick(std::int64_t nowMs);

  void press(const MouseEvent& event);
  void motion(const MouseEvent& event);
  void release(const MouseEvent& event);
  void leave();
  void wheel(const MouseEvent& event, int dy);
  /// False when the screen has no use for the key. What lies over it keeps all keys.
  bool key(const KeyEvent& event);

 private:
  View* top() const;
  void close(const Overlay* overlay);
  void tellPointer();
  void updatePointer();
  void useKeyboard(bool used);
  /// Other things lie over each other now.
  void changed();
  void needsFrame() const;

  View* screen_ = nullptr;
  /// The topmost last; a menu can only be that.
  std::vector<std::unique_ptr<Overlay>> over_;
  Rect window_;
  Damage damage_;
  bool keyboardUsed_ = false;
  // Serial numbers of views, 0 for none.
  /// What took the last press.
  std::uint64_t pressed_ = 0;
  /// The presses of the series up to one that closed a menu and did nothing else: those that follow
  /// are counted from it on.
  int clicksBefore_ = 0;
  /// Where the pointer is in the window, if it is, and what was last told so.
  std::optional<MouseEvent> pointer_;
  std::uint64_t told_ = 0;
};

}  // namespace ui
