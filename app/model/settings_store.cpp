#include "app/model/settings_store.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <optional>
#include <utility>

#include "base/detached_threads.h"
#include "base/home_directory.h"
#include "base/mutex.h"
#include "base/owed_answers.h"
#include "base/shared_file.h"

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

std::string programDirectory(const std::string& configHome) { return configHome + "/heapgauge"; }

std::string settingsFile(const std::string& configHome) {
  return programDirectory(configHome) + "/settings.ini";
}

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

/// What is still to reach the file.
struct SettingsStore::Saver {
  Saver(const std::string& path, Values loaded)
      : file(path, base::SharedFile::Incomplete::Stays), known(std::move(loaded)) {}

  /// Has a thread save what is unsaved, unless one is at it. Where none is to be had the next
  /// change tries again.
  static void start(const std::shared_ptr<Saver>& self) EXCLUDES(self->mutex);
  /// Waits for the thread, until `deadline` at most. False when it has not ended then.
  bool awaitEnd(std::chrono::steady_clock::time_point deadline) EXCLUDES(mutex);
  bool hasUnsaved() EXCLUDES(mutex);
  /// The work of the thread.
  void run() EXCLUDES(mutex);
  /// The changes to be saved next; nothing, and the thread has ended, when there are none.
  std::optional<Values> next() EXCLUDES(mutex);
  /// `changes` could not be saved. False, and the thread has ended, unless newer ones have come
  /// meanwhile that are yet to be tried.
  bool putBack(Values changes) EXCLUDES(mutex);
  bool write(const Values& changes) EXCLUDES(mutex);
  /// What the file is to hold when another program has changed nothing in it.
  Values all() EXCLUDES(mutex);
  void end() REQUIRES(mutex);

  const base::SharedFile file;
  base::Mutex mutex;  // guards the members below
  base::CondVar ended;
  Values known GUARDED_BY(mutex);  // loaded, and changed since
  Values unsaved GUARDED_BY(mutex);
  bool saving GUARDED_BY(mutex) = false;
};

SettingsStore::SettingsStore(const std::string& configHome) {
  if (configHome.empty()) return;
  base::OwedAnswers<std::string, Values> disk(&SettingsStore::load, {});
  values_ = disk.ask(configHome, kLongestLoad).value_or(Values());
  saver_ = std::make_shared<Saver>(settingsFile(configHome), values_);
}

SettingsStore::Values SettingsStore::load(const std::string& configHome) {
  ::mkdir(configHome.c_str(), 0700);
  ::mkdir(programDirectory(configHome).c_str(), 0700);
  const base::SharedFile file(settingsFile(configHome), base::SharedFile::Incomplete::Stays);
  return parsed(file.read().value_or(std::string()));
}

SettingsStore::Values SettingsStore::parsed(std::string_view text) {
  Values values;
  bool inSection = false;
  while (!text.empty()) {
    const std::string_view whole = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(whole.size() + 1, text.size()));
    const std::string_view line = trimmed(whole);
    if (line.empty() || isComment(line)) continue;
    if (isSectionHeader(line)) {
      inSection = line.substr(1, line.size() - 2) == kSection;
      continue;
    }
    const std::size_t equals = line.find('=');
    if (!inSection || equals == std::string_view::npos) continue;
    values[std::string(trimmed(line.substr(0, equals)))] = trimmed(line.substr(equals + 1));
  }
  return values;
}

std::string SettingsStore::textOf(const Values& values) {
  std::string text = std::string("[").append(kSection).append("]\n");
  for (const auto& [key, value] : values) {
    text.append(key).append(1, '=').append(value).append(1, '\n');
  }
  return text;
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
  if (!saver_) return;
  {
    const base::MutexLock lock(saver_->mutex);
    saver_->known[std::string(key)] = word(value);
    saver_->unsaved[std::string(key)] = word(value);
  }
  Saver::start(saver_);
}

bool SettingsStore::awaitSaved(std::chrono::steady_clock::time_point deadline) const {
  if (!saver_) return true;
  if (!saver_->awaitEnd(deadline)) return false;
  // What could not be saved: perhaps it can by now.
  if (saver_->hasUnsaved()) Saver::start(saver_);
  return saver_->awaitEnd(deadline);
}

bool SettingsStore::Saver::awaitEnd(std::chrono::steady_clock::time_point deadline) {
  const base::MutexLock lock(mutex);
  while (saving && ended.waitUntil(mutex, deadline)) {
  }
  return !saving;
}

bool SettingsStore::Saver::hasUnsaved() {
  const base::MutexLock lock(mutex);
  return !unsaved.empty();
}

void SettingsStore::Saver::start(const std::shared_ptr<Saver>& self) {
  {
    const base::MutexLock lock(self->mutex);
    if (std::exchange(self->saving, true)) return;
  }
  if (base::startDetached([self] { self->run(); })) return;
  const base::MutexLock lock(self->mutex);
  self->saving = false;
}

void SettingsStore::Saver::run() {
  try {
    while (std::optional<Values> changes = next()) {
      if (!write(*changes) && !putBack(std::move(*changes))) return;
    }
  } catch (const std::bad_alloc&) {  // these changes hold for this run only
    const base::MutexLock lock(mutex);
    end();
  }
}

void SettingsStore::Saver::end() {
  saving = false;
  ended.notifyAll();
}

std::optional<SettingsStore::Values> SettingsStore::Saver::next() {
  const base::MutexLock lock(mutex);
  if (!unsaved.empty()) return std::exchange(unsaved, {});
  end();
  return std::nullopt;
}

bool SettingsStore::Saver::putBack(Values changes) {
  const base::MutexLock lock(mutex);
  const bool newer = !unsaved.empty();
  unsaved.merge(changes);  // what is newer stays
  if (!newer) end();
  return newer;
}

SettingsStore::Values SettingsStore::Saver::all() {
  const base::MutexLock lock(mutex);
  return known;
}

bool SettingsStore::Saver::write(const Values& changes) {
  return file.change([&](const std::string& text) {
    Values values = text.empty() ? all() : parsed(text);  // the file is gone
    for (const auto& [key, value] : changes) values.insert_or_assign(key, value);
    return textOf(values);
  });
}

}  // namespace app
