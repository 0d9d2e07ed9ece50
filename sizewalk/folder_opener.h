#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/file_descriptor.h"
#include "base/mutex.h"
#include "sizewalk/file_tree.h"
#include "sizewalk/node.h"

namespace sizewalk {

/// The way from an open folder down to one that is to be opened. A reader's own; it keeps its
/// memory for the next folder.
struct FolderWay {
  NodeId folder() const { return below.front(); }
  /// How far the folder lies below the one that the walk starts at.
  std::size_t depth() const { return firstDepth + below.size() - 1; }

  /// The nearest folder above that is open; none where the way begins with the start of the walk.
  std::shared_ptr<const base::FileDescriptor> base;
  /// What is to be opened one after the other, the last one first. Never empty.
  std::vector<NodeId> below;
  /// The depth of the first to be opened, which is the last in `below`.
  std::size_t firstDepth = 0;
  /// Calls made to open a folder, for all ways so far.
  std::uint64_t opens = 0;
};

/// Opens the folders of one walk, each by its name in the folder that holds it. So a folder costs
/// the same in any depth, and no symbolic link that takes a folder's place meanwhile is followed
/// below the start.
///
/// For that a few folders stay open after they were listed. A bounded set of them has to serve
/// chains of any length, which a walk goes down and, with what waits beside the chain, up again.
/// Which one makes room is decided by its age since its last use, divided by the greatest power of
/// two in its depth: one level in two is kept for a while, one in four for twice as long, and so
/// on. One whose folders have all been opened goes at once, but for one level in eight, since what
/// lies deeper may still need it. Whoever needs a folder that is no longer open finds one some
/// levels above it, at distances that grow only as the way up does: n levels take some n log n
/// openings. Keeping the latest alone would have every few levels opened again from the start.
///
/// Where descriptors run out, what is kept is closed and fewer are kept from then on; a reader then
/// waits for the others to close theirs before it gives a folder up. Any thread.
class FolderOpener {
 public:
  /// How many folders stay open at most, and at most how much of what the process may open.
  static constexpr std::size_t kMostKept = 64;
  static constexpr std::size_t kShareKept = 8;

  /// For a walk of `tree` that begins at `start`. `stop`, when set, ends waiting; it and the tree
  /// outlive this.
  FolderOpener(const FileTree& tree, NodeId start, const std::atomic<bool>& stop);

  /// Finds the way to `folder`, which is `start` or lies below it.
  void find(NodeId folder, FolderWay* way);
  /// Opens the folder at the end of the way for listing, as `openDirectory` does, and lets go of
  /// the way's base. None on failure; that is to be given back as well.
  base::FileDescriptor open(FolderWay* way);
  /// Takes back what `open` returned for `way`, and keeps it open for a while if there are
  /// `subfolders` in it that will be opened.
  void giveBack(const FolderWay& way, base::FileDescriptor fd, std::size_t subfolders);

 private:
  using Shared = std::shared_ptr<const base::FileDescriptor>;
  struct Kept {
    NodeId folder;
    std::size_t depth;
    /// How many in it were not opened yet; one that was opened on the way to another has many.
    std::size_t unopened;
    std::uint64_t lastUse;
    Shared fd;
  };
  enum class Keeping { Allowed, Forbidden };

  base::FileDescriptor openAlong(FolderWay* way, Keeping keeping);
  base::FileDescriptor openNext(const base::FileDescriptor* holder, NodeId folder, int flags) const;
  base::FileDescriptor openInNeed(FolderWay* way);
  base::FileDescriptor openWithFewest(FolderWay* way);
  Shared keep(NodeId folder, std::size_t depth, std::size_t unopened, base::FileDescriptor fd);
  void noteUse(std::vector<Kept>::iterator holder, const FolderWay& way) REQUIRES(mutex_);
  std::vector<Kept> makeRoom() REQUIRES(mutex_);
  void enterNeed();
  void leaveNeed();

  const FileTree& tree_;
  const NodeId start_;
  const std::atomic<bool>& stop_;
  /// In the upper half the calls of `open`, in the lower one the readers that have a descriptor or
  /// are about to, but for those in need of one. Of every folder, so on a line of its own.
  alignas(64) std::atomic<std::uint64_t> openings_{0};

  alignas(64) base::Mutex mutex_;  // guards the members below; nothing is opened or closed under it
  std::vector<Kept> kept_ GUARDED_BY(mutex_);  // in ascending order of folder
  std::size_t mostKept_ GUARDED_BY(mutex_);
  std::uint64_t uses_ GUARDED_BY(mutex_) = 0;
  /// Readers that found no descriptor; nothing is kept while there are any. Read without the mutex
  /// to tell whether anybody has to be woken.
  std::atomic<int> inNeed_{0};

  base::Mutex needMutex_;  // held by the one reader in need whose turn it is
  base::CondVar gaveBack_;
};

}  // namespace sizewalk
