#include "sizewalk/scan_history.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <new>
#include <string_view>

#include "base/directories.h"
#include "base/home_directory.h"
#include "base/shared_file.h"

namespace sizewalk {

namespace {

constexpr std::string_view kProgramDirectory = "/heapgauge";
constexpr std::string_view kFileName = "/scan-history.txt";

/// The directory of the history file; empty when the user has none.
std::string dataDirectory() {
  const char* configured = std::getenv("XDG_DATA_HOME");
  if (configured && *configured == '/') return std::string(configured).append(kProgramDirectory);
  const std::string home = base::homeDirectory();
  if (home.empty()) return {};
  return (home + "/.local/share").append(kProgramDirectory);
}

bool fitsIntoALine(std::string_view path) {
  return path.find('\n') == std::string_view::npos && !path.ends_with('\r');
}

std::uint32_t parseTime(std::string_view text) {
  std::uint32_t time = 0;  // stays as it is when there is no number or it is too large
  std::from_chars(text.data(), text.data() + text.size(), time);
  return time;
}

void loadLine(std::string_view line, ScanHistory& history) {
  while (line.ends_with('\r')) line.remove_suffix(1);
  const std::size_t tab = line.find('\t');
  if (tab == std::string_view::npos) return;
  history[std::string(line.substr(tab + 1))] = parseTime(line.substr(0, tab));
}

ScanHistory parsed(std::string_view text) {
  ScanHistory history;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    loadLine(line, history);
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return history;
}

std::string fileText(const ScanHistory& history) {
  std::string text;
  for (const auto& [path, time] : history) {
    if (!fitsIntoALine(path)) continue;
    text.append(std::to_string(time)).append(1, '\t').append(path).append(1, '\n');
  }
  return text;
}

base::SharedFile historyFile() { return {historyPath(), base::SharedFile::Incomplete::IsRemoved}; }

void changeFile(const std::function<std::string(const std::string&)>& edit) {
  const std::string directory = dataDirectory();
  if (directory.empty()) return;
  base::makeDirectories(directory);  // a failure shows when a file is created in it
  historyFile().change(edit);
}

/// Does `act`; without memory for it there is no history.
template <typename Act>
void whereMemorySuffices(Act act) {
  try {
    act();
  } catch (const std::bad_alloc&) {
  }
}

}  // namespace

std::string historyPath() {
  const std::string directory = dataDirectory();
  return directory.empty() ? std::string() : std::string(directory).append(kFileName);
}

ScanHistory loadHistory() { return parsed(historyFile().read().value_or(std::string())); }

void saveHistory(const ScanHistory& history) {
  changeFile([&](const std::string&) { return fileText(history); });
}

std::uint32_t lastScanTime(const std::string& path) {
  std::uint32_t time = 0;
  whereMemorySuffices([&] {
    const ScanHistory history = loadHistory();
    const auto entry = history.find(path);
    if (entry != history.end()) time = entry->second;
  });
  return time;
}

void recordScan(const std::string& path, std::uint32_t time) {
  whereMemorySuffices([&] {
    changeFile([&](const std::string& text) {
      ScanHistory history = parsed(text);
      history[path] = time != 0 ? time : static_cast<std::uint32_t>(std::time(nullptr));
      return fileText(history);
    });
  });
}

}  // namespace sizewalk
