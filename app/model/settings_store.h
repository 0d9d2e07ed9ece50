#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
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
/// The disk is asked on threads of the store's own. What is changed is put into what the file holds
/// by then (`base::SharedFile`), so two programs that change different keys lose neither; what
/// another program has changed counts here from the next start on.
///
/// A default is the reader's: it is passed at each call and never stored. Window thread only.
class SettingsStore {
 public:
  /// Long enough for every disk that answers.
  static constexpr std::chrono::milliseconds kLongestLoad{1000};

  /// The program's store, loaded from `configurationHome()` by the first call (which any thread may
  /// make).
  static SettingsStore& instance();

  /// Loads the settings below `configHome`. Creates it, but nothing above it, and the program's
  /// directory in it with mode 0700 when they are missing. A file that cannot be read counts as
  /// empty, and so does one that a disk has not given within `kLongestLoad`. When `configHome` is
  /// empty the settings live in memory only.
  explicit SettingsStore(const std::string& configHome);

  /// What is stored for `key` when that is exactly "true" or "false", otherwise `fallback`.
  bool getBool(std::string_view key, bool fallback) const;
  bool get(const Setting& setting) const { return getBool(setting.key, setting.fallback); }

  /// Stores the value and has the file replaced at once, beside the caller; does neither when just
  /// that is stored already. When the file cannot be replaced (one that is there and cannot be read
  /// is not) the old one stays and the value holds for this run; the next change tries both, and so
  /// does `awaitSaved`. Where the file is gone it is written with all that is stored here.
  void setBool(std::string_view key, bool value);

  /// Tries once more to save what could not be saved, and waits until nothing is on its way to the
  /// file, `deadline` at most. False when something still is then.
  bool awaitSaved(std::chrono::steady_clock::time_point deadline) const;

 private:
  using Values = std::map<std::string, std::string, std::less<>>;
  struct Saver;

  static Values load(const std::string& configHome);
  static Values parsed(std::string_view text);
  static std::string textOf(const Values& values);

  std::shared_ptr<Saver> saver_;  // with its thread; null: in memory only
  Values values_;
};

}  // namespace app
