#pragma once

#include <functional>
#include <vector>

#include "app/commands.h"
#include "app/measure.h"
#include "app/menu_entry.h"

namespace app {

using PerformCommand = std::function<void(Command)>;

/// What hangs from the menu button. `state` is that of the moment the menu opens.
std::vector<MenuEntry> applicationMenu(const CommandState& state, const PerformCommand& perform);

/// The measures to choose from, with a tick at the `current` one.
std::vector<MenuEntry> measureMenu(Measure current, const PerformCommand& perform);

}  // namespace app
