#include "app/model/settings_store.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include "base/files.h"
#include "base/home_directory.h"

namespace app {

namespace {

constexpr std::string_view kSection = "Heapgauge";
constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

bool isComment(std::string_view line) { return line.starts_with('#') || line.starts_with(';'); }

bool isSectionHeader(std::string_view line) { return line.starts_with('[') && line.ends_with(']'); }

std::string_view word(bool value) { return value ? "true" : "false"; }

}  // namespace

std::string configurationHome() {
  const char* configured = std::getenv("XDG_CONFIG_HOME");
  if (configured && *configured) return configured;
  const std::string home = base::homeDirectory();
  return home.empty() ? home : home + "/.config";
}

SettingsStore& SettingsStore::instance() {
  static SettingsStore store(configurationHome());
  return store;
}

SettingsStore::SettingsStore(const std::string& configHome) {
  if (configHome.empty()) return;
  const std::string directory = configHome + "/heapgauge";
  ::mkdir(configHome.c_str(), 0700);
  ::mkdir(directory.c_str(), 0700);
  path_ = directory + "/settings.ini";
  load();
}

void SettingsStore::load() {
  const std::string text = base::readWholeFile(path_).value_or(std::string());
  bool inSection = false;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view whole = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(whole.size() + 1, rest.size()));
    const std::string_view line = trimmed(whole);
    if (line.empty() || isComment(line)) continue;
    if (isSectionHeader(line)) {
      inSection = line.substr(1, line.size() - 2) == kSection;
      continue;
    }
    const std::size_t equals = line.find('=');
    if (!inSection || equals == std::string_view::npos) continue;
    values_[std::string(trimmed(line.substr(0, equals)))] = trimmed(line.substr(equals + 1));
  }
}

bool SettingsStore::getBool(std::string_view key, bool fallback) const {
  const auto stored = values_.find(key);
  if (stored == values_.end()) return fallback;
  if (stored->second == word(true)) return true;
  if (stored->second == word(false)) return false;
  return fallback;
}

void SettingsStore::setBool(std::string_view key, bool value) {
  if (getBool(key, !value) == value) return;
  values_[std::string(key)] = word(value);
  save();
}

void SettingsStore::save() const {
  if (path_.empty()) return;
  std::string text = std::string("[").append(kSection).append("]\n");
  for (const auto& [key, value] : values_) {
    text.append(key).append(1, '=').append(value).append(1, '\n');
  }
  const std::string temporary = path_ + ".tmp";
  // The old file is still whole; a temporary one that did not take all the text stays as a trace of
  // that.
  if (base::writeWholeFile(temporary, text) != base::WriteOutcome::Written) return;
  if (std::rename(temporary.c_str(), path_.c_str()) != 0) std::remove(temporary.c_str());
}

}  // namespace app
