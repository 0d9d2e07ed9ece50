#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace base {

/// A small text file that several processes of ours read and change: the settings, the history of
/// scans. Who changes it reads it first and replaces it whole, all under a lock, so that no change
/// gets lost and nobody ever sees half of it. The lock is a file of its own beside it, NAME.lock,
/// which stays: the file itself is another one after each change. The new text is written to
/// NAME.tmp first.
///
/// Whatever fails, fails silently and leaves the file as it was. Asks the disk and may wait for it
/// without end. Any thread.
class SharedFile {
 public:
  /// More is none of ours. It is neither read nor replaced.
  static constexpr std::size_t kLargest = std::size_t{16} << 20;

  /// What becomes of NAME.tmp when not all of the text could be written to it.
  enum class Incomplete { Stays, IsRemoved };

  SharedFile(std::string path, Incomplete incomplete);

  const std::string& path() const { return path_; }

  /// The whole text; empty when there is no file. Nothing when there is something that cannot be
  /// read: for its permissions, for want of descriptors, because the disk fails, because it is no
  /// regular file or larger than `kLargest`.
  std::optional<std::string> read() const;

  /// Replaces the text by what `edit` makes of it. Waits a second at most for another process that
  /// is at it (`FileLock::kLongestWait`). Returns false when nothing was replaced: where that other
  /// one did not end, where `read` gives nothing, where the new text is larger than `kLargest` or
  /// could not be written. A file system that knows no locks is done without. The directory exists.
  bool change(const std::function<std::string(const std::string& text)>& edit) const;

 private:
  bool replace(const std::string& text) const;

  const std::string path_;
  const Incomplete incomplete_;
};

}  // namespace base
