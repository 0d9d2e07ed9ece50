#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "app/model/scan_status.h"
#include "sizewalk/file_tree.h"

namespace app {

/// The status line while a scan is shown, such as "1.20 GB in 12,345 items  ·  0.31s".
std::string statusText(const ScanStatus& status);

/// What is said of one item: its path, as the file system has it, and whether it could be read.
std::string itemText(const sizewalk::FileTree& tree, sizewalk::NodeId node);

/// What is said of several selected items, such as "3 selected · 1.20 GB".
std::string selectionText(std::int64_t items, std::int64_t bytes);

/// What the right end of the status line could tell of. Empty where there is nothing of the kind.
struct StatusTopics {
  /// The beginning of a name that the user types to search for it.
  std::string_view typed = {};
  /// What the button under the pointer does.
  std::string_view button = {};
  /// How many items are selected, and what several add up to.
  std::int64_t selected = 0;
  std::int64_t selectedBytes = 0;
  /// The item that was used last, by the pointer or the keys: its `itemText`.
  std::string_view item = {};
  /// The name of the kind that the map highlights.
  std::string_view highlighted = {};
};

/// A text of the status line, and where it is cut when it has not enough room.
struct StatusNote {
  enum class Cut : int { Start = 0, End = 1 };
  std::string text = {};
  Cut cut = Cut::Start;
  friend bool operator==(const StatusNote&, const StatusNote&) = default;
};

/// One thing at a time, what the user is about first: letters as they are typed, the button under
/// the pointer, several selected items, the item that was used last; where that is none, the kind
/// that is highlighted, with the key that ends it.
StatusNote statusNote(const StatusTopics& topics);

}  // namespace app
