#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "app/model/commands.h"
#include "app/model/measure.h"
#include "sizewalk/node.h"
#include "ui/widgets/menu_entry.h"

namespace app {

using PerformCommand = std::function<void(const Command&)>;

/// What hangs from the menu button. `state` is that of the moment the menu opens.
std::vector<ui::MenuEntry> applicationMenu(const CommandState& state,
                                           const PerformCommand& perform);

/// The menu of one item. `state` is that of the moment the menu opens.
std::vector<ui::MenuEntry> contextMenu(sizewalk::NodeId node, const CommandState& state,
                                       const PerformCommand& perform);
/// The menu of an item that is one of several that are selected, `selected` in all.
std::vector<ui::MenuEntry> selectionMenu(std::int64_t selected, const PerformCommand& perform);

/// The measures to choose from, with a tick at the `current` one.
std::vector<ui::MenuEntry> measureMenu(Measure current, const PerformCommand& perform);

}  // namespace app
