#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/scroller.h"
#include "ui/widgets/menu_entry.h"
#include "ui/widgets/overlay.h"
#include "ui/widgets/style.h"

namespace ui {

/// A menu over the window that has all input until an entry is chosen or it is closed. One entry is
/// the current one, which both the pointer and the keys move. An entry is chosen when the primary
/// button, pressed in the menu, is let go over it; a press outside only closes the menu. The keys
/// of entries stand at their right, where the labels leave room. In a window that is too low for
/// all entries they scroll. Window thread only; lengths are device pixels.
class PopupMenu : public Overlay {
 public:
  /// `style` outlives the menu. It lies below and to the right of (x, y), as far as the window has
  /// room for it there; above it or moved to the left otherwise. The action of the entry that was
  /// chosen runs after `onClosed`.
  PopupMenu(const Style& style, std::vector<MenuEntry> entries, int x, int y);

  /// Makes the first entry that can be chosen the current one, for a menu opened by a key. A
  /// pointer that rests where it was changes nothing in that.
  void goToFirst();
  bool isMenu() const override { return true; }
  void paint(Canvas& canvas) const override;

  void press(const MouseEvent& event) override;
  void motion(const MouseEvent& event) override;
  void release(const MouseEvent& event) override;
  void leave() override;
  void wheel(const MouseEvent& event, int dy) override;
  /// Arrows, Home and End walk, Enter and Space choose; Escape and the keys that open menus close.
  bool key(const KeyEvent& event) override;

  const std::vector<MenuEntry>& entries() const { return entries_; }
  std::optional<std::size_t> current() const { return current_; }
  /// What the menu takes of the window.
  const Rect& panel() const { return panel_; }
  Rect entryRect(std::size_t entry) const;

 private:
  void layOut() override;
  int entryHeight(std::size_t entry) const;
  int contentHeight() const;
  int wantedWidth() const;
  int tickWidth() const;
  /// What an entry takes for its key and the gap before it.
  int keyRoom(const MenuEntry& entry) const;
  std::optional<std::size_t> choosableAt(int x, int y) const;
  void setCurrent(std::optional<std::size_t> entry);
  void walk(std::optional<std::size_t> from, MenuStep step);
  void choose(std::size_t entry);
  void paintEntry(Canvas& canvas, std::size_t entry) const;
  void paintTexts(Canvas& canvas, const MenuEntry& entry, const Rect& line, bool current) const;

  const Style& style_;
  const std::vector<MenuEntry> entries_;
  const int x_;
  const int y_;
  Rect panel_;
  Scroller scroller_;
  std::optional<std::size_t> current_;
  bool pressed_ = false;  // the primary button, in the menu
  /// Opened by a key; the pointer has not moved since, as far as was seen.
  bool keyed_ = false;
  struct Point {
    int x;
    int y;
    friend bool operator==(const Point&, const Point&) = default;
  };
  std::optional<Point> pointer_;
};

}  // namespace ui
