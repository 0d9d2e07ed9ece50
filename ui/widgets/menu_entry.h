#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace ui {

/// A line of a menu.
struct MenuEntry {
  /// Empty for a line that separates others.
  std::string label;
  bool enabled = true;
  /// Runs when the entry is chosen; the menu is gone by then.
  std::function<void()> action{};
  /// Is the one of several that holds.
  bool ticked = false;
  /// The key that does the same without the menu, as it is written; empty where there is none.
  std::string key{};

  bool separates() const { return label.empty(); }
  bool canBeChosen() const { return enabled && action && !separates(); }
};

/// Which way the keyboard goes through a menu.
enum class MenuStep : int { Up = -1, Down = 1 };

/// The nearest entry that can be chosen, going from `from` to the next one and on from the other
/// end; without `from` the first or the last one. Nothing when there is none at all.
std::optional<std::size_t> nextEntry(std::span<const MenuEntry> entries,
                                     std::optional<std::size_t> from, MenuStep step);

}  // namespace ui
