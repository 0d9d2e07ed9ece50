#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/actions/identity_inquiry.h"
#include "app/actions/item_identity.h"
#include "sizewalk/file_tree.h"

namespace app {

/// How long an item waits before it is moved to the trash.
inline constexpr std::int64_t kPendingMs = 10'000;

/// An item that waits to be moved to the trash, out of the tree meanwhile.
struct PendingDelete {
  /// Tells it from every other one, also from those that are gone. Never 0.
  std::uint64_t id = 0;
  /// Absolute, bytes.
  std::string path;
  /// The last component, bytes.
  std::string name;
  std::int64_t remainingMs = kPendingMs;
  /// What puts it back into the tree that `treeNumber` tells from those shown before and after.
  sizewalk::RemovedSubtree undo;
  std::uint64_t treeNumber = 0;
  /// What lay at `path` when it was added.
  IdentityAnswer identity;
  std::chrono::steady_clock::time_point addedAt;
};

/// The items that the user has told to be deleted and that can still be put back. Adding one takes
/// it out of the tree at once and touches nothing on disk; when its countdown has run out, it is
/// handed to `trash`. What cannot be trashed comes back into the tree.
///
/// Items are held by path and by what lay there when they were added, which a thread of its own
/// asks the disk for. While a disk has not told, nothing of it is trashed: it hangs, and so would
/// moving.
///
/// The callbacks may call any of the functions. Window thread only. docs/decisions/0009-deleting.md
/// says why.
class PendingDeletes {
 public:
  /// Moves the item to the trash if it still is what `identity` tells; else, or when that fails,
  /// returns false with a sentence for the user.
  std::function<bool(const PendingDelete& item, const ItemIdentity& identity, std::string* error)>
      trash;
  /// The list, and with it the tree, is another one now.
  std::function<void()> changed;
  /// The item at `path` could not be trashed. It is where it was, and in the tree again.
  std::function<void(const std::string& path, const std::string& error)> failed;

  explicit PendingDeletes(Identify identify) : identify_(std::move(identify)) {}
  PendingDeletes(const PendingDeletes&) = delete;
  PendingDeletes& operator=(const PendingDeletes&) = delete;

  /// The tree of the shown scan, or none; outlives being set. What still waits is settled before
  /// another one is set: otherwise it is forgotten, and stays where it is on disk.
  void setTree(sizewalk::FileTree* tree);

  /// In the order in which they were added.
  const std::vector<PendingDelete>& items() const { return items_; }
  bool empty() const { return items_.empty(); }
  std::size_t size() const { return items_.size(); }

  /// Takes the nodes out of the tree and has them wait. Of nodes inside each other only the
  /// outermost is added. The root and what is not in the tree any more is left out.
  void add(std::span<const sizewalk::NodeId> nodes);

  /// The countdown stands still as long as any of the tokens handed out lives. They may outlive the
  /// list.
  [[nodiscard]] std::shared_ptr<const void> pause() const { return pauseToken_; }
  bool paused() const { return pauseToken_.use_count() > 1; }
  /// Lets `elapsedMs` of the countdown pass and commits, in order, every item whose time is up.
  /// Returns whether there was one. Does nothing while paused, and below 1 ms.
  bool tick(std::int64_t elapsedMs);

  // Putting back. An item inside a folder that waits as well takes that folder with it: it would
  // go to the trash with the folder otherwise, though the user has just rescued it.

  /// Does nothing when there is no such item.
  void undelete(std::size_t index);
  void undeleteItem(std::uint64_t id);
  void undeleteAll();
  /// Commits every item now, in order. Waits up to a second after an item was added for a disk that
  /// has not told yet what it is.
  void deleteAllNow();

  // What waits inside the folder `path`. Reading a folder anew makes it impossible to put back what
  // was taken out inside: one of the last two comes first.

  std::size_t countWithin(std::string_view path) const;
  void undeleteWithin(std::string_view path);
  void deleteNowWithin(std::string_view path);

 private:
  using Items = std::vector<PendingDelete>;

  void append(const std::vector<sizewalk::RemovedSubtree>& taken);
  /// Takes those out of the list for which `chosen` holds; both parts keep their order.
  Items extract(const std::function<bool(const PendingDelete&)>& chosen);
  void putBack(const Items& items);
  void commitAll(const Items& items);
  /// False when it could not be trashed; it is back in the tree then, and reported.
  bool commit(const PendingDelete& item);
  bool moveToTrash(const PendingDelete& item, std::string* error) const;
  void attach(const PendingDelete& item);
  void notify() const;

  const Identify identify_;
  sizewalk::FileTree* tree_ = nullptr;
  std::uint64_t treeNumber_ = 0;
  Items items_;
  std::uint64_t lastId_ = 0;
  /// Those who hold it have the countdown stand still.
  const std::shared_ptr<const void> pauseToken_ = std::make_shared<const int>(0);
};

}  // namespace app
