#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <vector>

#include "ui/geometry.h"
#include "ui/input.h"

namespace ui {

/// Hands what the pointer does to the part of the window that it is on. A part that was pressed has
/// the pointer until the last button is released, wherever it goes: drags do not end at an edge.
/// Window thread only.
class PointerRouter {
 public:
  /// What a part does; each may be empty.
  struct Target {
    std::function<void(const MouseEvent&)> press;
    std::function<void(const MouseEvent&)> motion;
    std::function<void(const MouseEvent&)> release;
    std::function<void()> leave;
    /// `dy` steps, down when above 0.
    std::function<void(const MouseEvent&, int dy)> wheel;
  };
  using Index = std::size_t;

  /// Adds a part, without a place yet. Parts do not overlap.
  Index add(Target target);
  void setRect(Index index, const Rect& rect) { parts_[index].rect = rect; }

  /// The part that was pressed; nothing beside all parts.
  std::optional<Index> press(const MouseEvent& event);
  void motion(const MouseEvent& event);
  void release(const MouseEvent& event);
  void leave();
  void wheel(const MouseEvent& event, int dy);
  /// The part that has the pointer: the one that was pressed, else the one that it is on.
  std::optional<Index> owner() const { return held_ ? held_ : entered_; }
  /// Forgets where the pointer is and which part has it: what is pressed is let go beside
  /// everything, so that it does not act, and the part that the pointer was on is told that it
  /// left.
  void reset();

 private:
  struct Part {
    Target target;
    Rect rect;
  };

  std::optional<Index> partAt(int x, int y) const;
  void enter(std::optional<Index> part);

  std::vector<Part> parts_;
  /// The part that the pointer is on.
  std::optional<Index> entered_;
  /// The part that was pressed, and the buttons that are down since then.
  std::optional<Index> held_;
  std::set<int> buttonsDown_;
};

}  // namespace ui
