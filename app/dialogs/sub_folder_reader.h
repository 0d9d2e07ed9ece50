#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "app/dialogs/sub_folders.h"
#include "base/owed_answers.h"

namespace app {

/// Reads what folders hold without waiting long for them, so that one on a network that is down, or
/// one of very many folders, holds nobody up. Used by one thread; one serves the whole run of a
/// program (see `base::OwedAnswers`).
class SubFolderReader {
 public:
  /// Has the thread that uses the reader run a task, as long as the reader is there. Called on the
  /// reader's threads, with a lock held, and not after the reader has gone.
  using Post = std::function<void(std::function<void()>)>;
  /// Called on several threads at once, perhaps still when the reader is gone: it owns what it
  /// needs. What it throws makes a folder that cannot be read.
  using Read = std::function<SubFolders(const std::string& path)>;

  /// An answer that `read` did not wait for, on the thread that uses the reader. It may be for a
  /// folder that nobody cares for any more.
  std::function<void(const std::string& path, SubFolders subFolders)> onRead;

  /// How long an answer counts as coming at once: too short to be felt, long enough for any folder
  /// of a usual size.
  static constexpr std::chrono::milliseconds kAtOnce{25};

  /// The reader goes without waiting for answers.
  explicit SubFolderReader(Post post, Read read = readSubFolders,
                           std::chrono::milliseconds atOnce = kAtOnce);

  /// Reads a folder, and waits `atOnce` at most. The answer, when it comes at once, as it mostly
  /// does: a view that waited for it can be drawn right the first time. Otherwise nothing, and
  /// `onRead` is called later. Where no thread can be started the folder cannot be read.
  std::optional<SubFolders> read(const std::string& path);

 private:
  const std::chrono::milliseconds atOnce_;
  base::OwedAnswers<std::string, SubFolders> answers_;
};

}  // namespace app
