#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/scroller.h"
#include "ui/widgets/input_target.h"
#include "ui/widgets/menu_entry.h"
#include "ui/widgets/style.h"

namespace ui {

/// A menu over the window that has all input until an entry is chosen or it is closed. One entry is
/// the current one, which both the pointer and the keys move. An entry is chosen when the primary
/// button, pressed in the menu, is let go over it; a press outside only closes the menu. In a
/// window that is too low for all entries they scroll. Window thread only; lengths are device
/// pixels.
class PopupMenu : public InputTarget {
 public:
  /// A new frame is to be drawn.
  std::function<void()> onChanged;
  /// The menu is done with. Whoever owns it may destroy it during the call; the action of the
  /// entry that was chosen runs after it.
  std::function<void()> onClosed;

  /// `style` outlives the menu.
  PopupMenu(const Style& style, std::vector<MenuEntry> entries);

  /// Puts the menu below and to the right of (x, y), as far as a window of this size has room for
  /// it there; above it or moved to the left otherwise.
  void place(int x, int y, int windowWidth, int windowHeight);
  /// Makes the first entry that can be chosen the current one, for a menu opened by a key.
  void goToFirst();
  void paint(Canvas& canvas) const;

  void press(const MouseEvent& event) override;
  void motion(const MouseEvent& event) override;
  void release(const MouseEvent& event) override;
  void leave() override;
  void wheel(const MouseEvent& event, int dy) override;
  void key(const KeyEvent& event);

  const std::vector<MenuEntry>& entries() const { return entries_; }
  std::optional<std::size_t> current() const { return current_; }
  const Rect& rect() const { return rect_; }
  Rect entryRect(std::size_t entry) const;

 private:
  int entryHeight(std::size_t entry) const;
  int contentHeight() const;
  int wantedWidth() const;
  int tickWidth() const;
  std::optional<std::size_t> choosableAt(int x, int y) const;
  void setCurrent(std::optional<std::size_t> entry);
  void walk(std::optional<std::size_t> from, MenuStep step);
  void choose(std::size_t entry);
  void close();
  void changed() const;
  void paintEntry(Canvas& canvas, std::size_t entry) const;

  const Style& style_;
  const std::vector<MenuEntry> entries_;
  Rect rect_;
  Scroller scroller_;
  std::optional<std::size_t> current_;
  bool pressed_ = false;  // the primary button, in the menu
};

}  // namespace ui
