#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "app/model/settings.h"

namespace app {

/// The user's configuration directory: $XDG_CONFIG_HOME when it is set and not empty, otherwise
/// ".config" in the home directory, which is the account's when $HOME is not set. Empty when there
/// is none of them.
std::string configurationHome();

/// Named settings kept in "heapgauge/settings.ini" of the configuration directory. The file holds
/// one section, "[Heapgauge]", of "key=value" lines; lines that begin with '#' or ';' and other
/// sections are skipped when it is read and gone once it is written. Unknown keys are kept.
///
/// A default is the reader's: it is passed at each call and never stored. Window thread only.
class SettingsStore {
 public:
  /// The program's store, loaded from `configurationHome()` by the first call (which any thread may
  /// make).
  static SettingsStore& instance();

  /// Loads the settings below `configHome`. Creates it, but nothing above it, and the program's
  /// directory in it with mode 0700 when they are missing. A file that cannot be read counts as
  /// empty. When `configHome` is empty the settings live in memory only.
  explicit SettingsStore(const std::string& configHome);

  /// What is stored for `key` when that is exactly "true" or "false", otherwise `fallback`.
  bool getBool(std::string_view key, bool fallback) const;
  bool get(const Setting& setting) const { return getBool(setting.key, setting.fallback); }

  /// Stores the value and replaces the file at once; does neither when just that is stored already.
  /// When the file cannot be replaced the old one stays and the value holds for this run.
  void setBool(std::string_view key, bool value);

 private:
  void load();
  void save() const;

  std::string path_;  // empty: in memory only
  std::map<std::string, std::string, std::less<>> values_;
};

}  // namespace app
