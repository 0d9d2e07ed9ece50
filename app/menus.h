#pragma once

#include <functional>
#include <vector>

#include "app/model/commands.h"
#include "app/model/measure.h"
#include "ui/widgets/menu_entry.h"

namespace app {

using PerformCommand = std::function<void(const Command&)>;

/// What hangs from the menu button. `state` is that of the moment the menu opens.
std::vector<ui::MenuEntry> applicationMenu(const CommandState& state,
                                           const PerformCommand& perform);

/// The measures to choose from, with a tick at the `current` one.
std::vector<ui::MenuEntry> measureMenu(Measure current, const PerformCommand& perform);

}  // namespace app
