#include "app/actions/pending_deletes.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>

#include "app/model/selection.h"

namespace app {

using sizewalk::NodeId;
using sizewalk::RemovedSubtree;

namespace {

constexpr const char* kNoTrash = "There is no trash here.";
constexpr const char* kSilentDisk = "The disk that it is on does not answer.";
/// From the moment at which an item was added: what was scanned just now answers in microseconds,
/// from a disk that has to wake up in some tenths of a second.
constexpr std::chrono::seconds kPatience{1};

bool liesWithin(std::string_view path, std::string_view folder) {
  if (path.size() <= folder.size() || !path.starts_with(folder)) return false;
  return folder.ends_with('/') || path[folder.size()] == '/';
}

}  // namespace

void PendingDeletes::notify() const {
  if (changed) changed();
}

void PendingDeletes::setTree(sizewalk::FileTree* tree) {
  if (tree_ == tree) return;
  tree_ = tree;
  ++treeNumber_;
  if (items_.empty()) return;
  items_.clear();
  notify();
}

// Adding.

void PendingDeletes::add(std::span<const NodeId> nodes) {
  if (!tree_) return;
  std::vector<NodeId> known;
  std::ranges::copy_if(nodes, std::back_inserter(known), [&](NodeId node) {
    return node != sizewalk::kRootNode && node < tree_->nodeCount();
  });
  Selection chosen;
  chosen.replace(known);
  const std::vector<NodeId> outermost = chosen.outermost(*tree_);
  std::vector<RemovedSubtree> taken;
  for (const NodeId node : known) {
    if (!std::ranges::binary_search(outermost, node)) continue;
    const RemovedSubtree undo = tree_->removeSubtree(node);
    if (undo.valid) taken.push_back(undo);
  }
  if (taken.empty()) return;
  append(taken);
  notify();
}

void PendingDeletes::append(const std::vector<RemovedSubtree>& taken) {
  std::vector<std::string> paths;
  paths.reserve(taken.size());
  for (const RemovedSubtree& undo : taken) {
    paths.push_back(tree_->path(static_cast<NodeId>(undo.node)));
  }
  const std::vector<IdentityAnswer> identities = askIdentities(paths, identify_);
  const auto now = std::chrono::steady_clock::now();
  for (std::size_t i = 0; i < taken.size(); ++i) {
    items_.push_back({.id = ++lastId_,
                      .path = std::move(paths[i]),
                      .name = std::string(tree_->name(static_cast<NodeId>(taken[i].node))),
                      .undo = taken[i],
                      .treeNumber = treeNumber_,
                      .identity = identities[i],
                      .addedAt = now});
  }
}

// Leaving the list. Items leave it before anything is done with them: a callback finds it as it is
// going to be, and may change it.

PendingDeletes::Items PendingDeletes::extract(
    const std::function<bool(const PendingDelete&)>& chosen) {
  const auto first = std::stable_partition(items_.begin(), items_.end(), std::not_fn(chosen));
  Items taken(std::make_move_iterator(first), std::make_move_iterator(items_.end()));
  items_.erase(first, items_.end());
  return taken;
}

void PendingDeletes::attach(const PendingDelete& item) {
  if (tree_ && item.treeNumber == treeNumber_) tree_->restoreSubtree(item.undo);
}

void PendingDeletes::putBack(const Items& items) {
  if (items.empty()) return;
  for (const PendingDelete& item : items) attach(item);
  notify();
}

void PendingDeletes::undelete(std::size_t index) {
  if (index < items_.size()) undeleteItem(items_[index].id);
}

void PendingDeletes::undeleteItem(std::uint64_t id) {
  const auto found = std::ranges::find(items_, id, &PendingDelete::id);
  if (found == items_.end()) return;
  putBack(extract([id, path = found->path](const PendingDelete& item) {
    return item.id == id || liesWithin(path, item.path);
  }));
}

void PendingDeletes::undeleteAll() { putBack(std::exchange(items_, {})); }

void PendingDeletes::undeleteWithin(std::string_view path) {
  putBack(extract([path](const PendingDelete& item) { return liesWithin(item.path, path); }));
}

// Committing.

bool PendingDeletes::tick(std::int64_t elapsedMs) {
  if (items_.empty() || paused() || elapsedMs < 1) return false;
  for (PendingDelete& item : items_) item.remainingMs -= elapsedMs;
  const Items due = extract([](const PendingDelete& item) { return item.remainingMs <= 0; });
  commitAll(due);
  return !due.empty();
}

void PendingDeletes::deleteAllNow() { commitAll(std::exchange(items_, {})); }

void PendingDeletes::deleteNowWithin(std::string_view path) {
  commitAll(extract([path](const PendingDelete& item) { return liesWithin(item.path, path); }));
}

std::size_t PendingDeletes::countWithin(std::string_view path) const {
  return static_cast<std::size_t>(std::ranges::count_if(
      items_, [path](const PendingDelete& item) { return liesWithin(item.path, path); }));
}

void PendingDeletes::commitAll(const Items& items) {
  if (items.empty()) return;
  // What could not be moved is told to be where it was: no folder around it goes to the trash then.
  std::vector<std::string> staying;
  const auto holdsOneStaying = [&](const PendingDelete& item) {
    return std::ranges::any_of(
        staying, [&](const std::string& path) { return liesWithin(path, item.path); });
  };
  for (const PendingDelete& item : items) {
    if (holdsOneStaying(item)) {
      attach(item);
    } else if (!commit(item)) {
      staying.push_back(item.path);
    }
  }
  for (const PendingDelete& item : extract(holdsOneStaying)) attach(item);
  notify();
}

bool PendingDeletes::commit(const PendingDelete& item) {
  std::string error;
  if (moveToTrash(item, &error)) return true;
  attach(item);
  if (failed) failed(item.path, error);
  return false;
}

bool PendingDeletes::moveToTrash(const PendingDelete& item, std::string* error) const {
  if (!trash) {
    *error = kNoTrash;
    return false;
  }
  const auto found = answerBy(item.addedAt + kPatience, item.identity);
  if (!found || !found->identity) {
    *error = found ? std::generic_category().message(found->errorNumber) : kSilentDisk;
    return false;
  }
  return trash(item, *found->identity, error);
}

}  // namespace app
