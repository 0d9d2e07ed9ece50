#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/dialogs/folder_listing.h"
#include "base/owed_answers.h"

namespace app {

/// Lists folders without waiting long for them, so that one on a network that is down, or one of
/// very many folders, holds nobody up. Used by one thread; one serves the whole run of a program
/// (see `base::OwedAnswers`).
class FolderLister {
 public:
  /// Has the thread that uses the lister run a task, as long as the lister is there. Called on the
  /// lister's threads, with a lock held, and not after the lister has gone.
  using Post = std::function<void(std::function<void()>)>;
  /// Called on several threads at once, perhaps still when the lister is gone: it owns what it
  /// needs. What it throws makes a folder that cannot be read.
  using List = std::function<FolderListing(const std::string& path)>;

  /// An answer that `list` did not wait for, on the thread that uses the lister. It may be for a
  /// folder that nobody cares for any more.
  std::function<void(const std::string& path, FolderListing listing)> onListed;

  /// The lister goes without waiting for answers.
  explicit FolderLister(Post post, List list = listSubFolders);

  /// Lists a folder, and waits 25 ms at most. The answer, when it comes at once, as it mostly does:
  /// a view that waited for it can be drawn right the first time. Otherwise nothing, and `onListed`
  /// is called later. Where no thread can be started the folder cannot be read.
  std::optional<FolderListing> list(const std::string& path);

 private:
  base::OwedAnswers<std::string, FolderListing> answers_;
};

}  // namespace app
