#include "ui/widgets/menu_entry.h"

namespace ui {

std::optional<std::size_t> nextEntry(std::span<const MenuEntry> entries,
                                     std::optional<std::size_t> from, MenuStep step) {
  const std::size_t count = entries.size();
  const std::size_t stride = step == MenuStep::Down ? 1 : count - 1;
  // One before where the walk begins, round the end.
  std::size_t entry = from.value_or(step == MenuStep::Down ? count - 1 : 0);
  for (std::size_t i = 0; i < count; ++i) {
    entry = (entry + stride) % count;
    if (entries[entry].canBeChosen()) return entry;
  }
  return std::nullopt;
}

}  // namespace ui
