#include "sizewalk/scan_history.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include "base/directories.h"
#include "base/files.h"
#include "base/home_directory.h"
#include "base/mutex.h"

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

std::string fileText(const ScanHistory& history) {
  std::string text;
  for (const auto& [path, time] : history) {
    if (!fitsIntoALine(path)) continue;
    text.append(std::to_string(time)).append(1, '\t').append(path).append(1, '\n');
  }
  return text;
}

}  // namespace

std::string historyPath() {
  const std::string directory = dataDirectory();
  return directory.empty() ? std::string() : std::string(directory).append(kFileName);
}

ScanHistory loadHistory() {
  ScanHistory history;
  const std::string text = base::readWholeFile(historyPath()).value_or(std::string());
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    loadLine(line, history);
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  }
  return history;
}

void saveHistory(const ScanHistory& history) {
  const std::string directory = dataDirectory();
  if (directory.empty()) return;
  base::makeDirectories(directory);  // a failure shows when the file is created in it
  const std::string path = historyPath();
  const std::string temporary = path + ".tmp";
  const base::WriteOutcome outcome = base::writeWholeFile(temporary, fileText(history));
  if (outcome == base::WriteOutcome::NotOpened) return;
  const bool replaced =
      outcome == base::WriteOutcome::Written && std::rename(temporary.c_str(), path.c_str()) == 0;
  if (!replaced) std::remove(temporary.c_str());
}

std::uint32_t lastScanTime(const std::string& path) {
  const ScanHistory history = loadHistory();
  const auto entry = history.find(path);
  return entry == history.end() ? 0 : entry->second;
}

void recordScan(const std::string& path, std::uint32_t time) {
  // One scan may end just as another that was given up does.
  static base::Mutex oneAtATime;
  const base::MutexLock lock(oneAtATime);
  ScanHistory history = loadHistory();
  history[path] = time != 0 ? time : static_cast<std::uint32_t>(std::time(nullptr));
  saveHistory(history);
}

}  // namespace sizewalk
