#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace sizewalk {

/// When each folder was last scanned to its end, kept over program runs in "scan-history.txt" of
/// the user's data directory. One line per folder: the time in decimal, a tab, the path's bytes, a
/// line feed; no header and no quoting. Entries are never dropped.
///
/// Any thread but the window's: a disk is asked, and who saves waits for another thread or process
/// of ours that does, a second at most. Failures are silent. An unreadable history means that no
/// last scan is known; nothing is then saved in its place, and so it is with one of more than
/// `base::SharedFile::kLargest` bytes. A save that fails, or that another process did not let in
/// within that second, leaves the file as it was.

/// Path to seconds since the epoch, in bytewise order of the paths.
using ScanHistory = std::map<std::string, std::uint32_t>;

/// "heapgauge/scan-history.txt" below $XDG_DATA_HOME when that is absolute, otherwise below
/// ".local/share" of the home directory. Empty when there is no home directory at all; then nothing
/// is loaded or saved.
std::string historyPath();

/// Empty when the file is missing or unreadable. Lines may be of any length; carriage returns at
/// their end are dropped, lines without a tab are skipped, and of two lines for one path the later
/// counts. A time is the digits before the tab: none, or a number past 32 bits, is 0, which stands
/// for an unknown time.
ScanHistory loadHistory();

/// Replaces the file, and creates its directory (mode 0700, as every missing one above it) if need
/// be. A path that the format cannot give back, one that holds a line feed or ends in a carriage
/// return, is left out: its line would stand for another folder.
void saveHistory(const ScanHistory& history);

/// When exactly `path` was last scanned; 0 when that is not known.
std::uint32_t lastScanTime(const std::string& path);

/// Notes that `path` was scanned at `time`, or now when it is 0. What other threads and processes
/// note at the same time is kept.
void recordScan(const std::string& path, std::uint32_t time);

}  // namespace sizewalk
