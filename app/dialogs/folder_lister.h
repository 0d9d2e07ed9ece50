#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/dialogs/folder_listing.h"

namespace app {

/// Lists folders on threads of its own, so that one on a network that is down, or one of very many
/// folders, holds nobody up. Used by one thread. One serves the whole run of a program: it
/// remembers which folders still owe an answer, and asks none of them again meanwhile.
class FolderLister {
 public:
  /// Has the thread that uses the lister run a task, as long as the lister is there. Called on the
  /// lister's threads, with a lock held, and not after the lister has gone. Must not throw.
  using Post = std::function<void(std::function<void()>)>;
  /// Called on several threads at once, perhaps still when the lister is gone: it owns what it
  /// needs. Must not throw.
  using List = std::function<FolderListing(const std::string& path)>;

  /// An answer that `list` did not wait for, on the thread that uses the lister. It may be for a
  /// folder that nobody cares for any more.
  std::function<void(const std::string& path, FolderListing listing)> onListed;

  explicit FolderLister(Post post, List list = listSubFolders);
  /// Returns without waiting for answers.
  ~FolderLister();
  FolderLister(const FolderLister&) = delete;
  FolderLister& operator=(const FolderLister&) = delete;

  /// Lists a folder. The answer, when it comes at once, as it mostly does: a view that waited for
  /// it can be drawn right the first time. Otherwise nothing, and `onListed` is called later.
  std::optional<FolderListing> list(const std::string& path);

 private:
  struct Shared;
  void handOn(const std::string& path, FolderListing listing) const;

  const std::shared_ptr<Shared> shared_;  // with the threads, which may outlive the lister
};

}  // namespace app
