#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/model/settings_store.h"

namespace app {

/// A yes/no setting as the user sees it: what it says, and the way to its value.
struct SettingsRow {
  std::string title;
  std::string explanation;  // may be empty
  std::function<bool()> get;
  /// Stores the value at once.
  std::function<void(bool)> set;
};

/// A row for every setting, in the order that they are shown in. `store` outlives them.
std::vector<SettingsRow> settingsRows(SettingsStore& store);

/// Gives every setting of the rows its default. One that has it already is not written, so that a
/// file that says nothing of it goes on saying nothing.
void resetAll(SettingsStore& store);

}  // namespace app
