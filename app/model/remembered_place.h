#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/model/map_focus.h"
#include "sizewalk/file_tree.h"

namespace app {

/// What the folder list shows of a tree: which folders are open, the row that the keys act on and
/// how far it is scrolled.
struct ListPlace {
  /// In any order.
  std::vector<sizewalk::NodeId> open;
  std::optional<sizewalk::NodeId> current;
  /// The topmost row in view and how far below the upper edge it begins, in device pixels; below 0
  /// for a row that is cut off.
  std::optional<sizewalk::NodeId> top;
  std::int64_t topAt = 0;
};

/// Where the user was in a scan that is made again, kept by path and found in the new tree while
/// that fills. What is gone falls back to the nearest folder around it that is left.
///
/// The paths make one tree of names, so a way of thousands of folders is kept once, and each folder
/// of the scan is searched for names once, when it has been read: a look costs as much as there are
/// folders that have not been read yet on the ways that are sought, however large the scan is.
///
/// Each part is sought until the user does something about it himself. Window thread only.
class RememberedPlace {
 public:
  enum class Part : std::uint8_t { Focus, OpenRows, CurrentRow, Scroll };

  /// Forgets what was remembered before and seeks nothing.
  void forget() { *this = {}; }
  /// Remembers a place in `tree`, to seek all of it in another tree or, where a folder is read
  /// again, in the same. What is still sought from before stays sought.
  void remember(const sizewalk::FileTree& tree, const MapFocus::Way& focus, const ListPlace& list);
  /// Seeks a part no more.
  void giveUp(Part part) { sought(part) = false; }
  /// Remembers a folder, and all below it, as closed.
  void rememberClosed(const sizewalk::FileTree& tree, sizewalk::NodeId folder);
  bool seeks(Part part) const { return sought_[static_cast<std::size_t>(part)]; }

  /// Looks for what `tree`, always the same one since `remember`, holds by now.
  void lookIn(const sizewalk::FileTree& tree);
  /// The tree is complete: what was not found is gone.
  void endSearch();

  /// As much as was found of the folder in focus and the way there.
  MapFocus::Way focus() const;
  /// As much as was found. Of the open folders those that are new since the last call.
  ListPlace takeList();

 private:
  enum class State : std::uint8_t { Sought, Found, Gone };
  using StepId = std::uint32_t;

  /// One name on the ways; the first is the scanned folder.
  struct Step {
    StepId above = 0;
    sizewalk::NodeId node = sizewalk::kRootNode;  // once it is found
    State state = State::Sought;
    bool open = false;
    std::map<std::string, StepId, std::less<>> below = {};
  };
  using Ways = std::vector<StepId>;

  bool& sought(Part part) { return sought_[static_cast<std::size_t>(part)]; }
  StepId below(StepId step, std::string_view name);
  std::optional<StepId> stepOf(const sizewalk::FileTree& tree, sizewalk::NodeId node,
                               std::unordered_map<sizewalk::NodeId, StepId>* known);
  /// The step that names lead to; nothing when nothing was remembered there.
  std::optional<StepId> find(const sizewalk::FileTree& tree, sizewalk::NodeId node) const;
  void goOnSeeking(const RememberedPlace& before);
  std::vector<bool> stillNeeded() const;
  void found(StepId step, sizewalk::NodeId node);
  void match(StepId folder, const sizewalk::FileTree& tree, sizewalk::NodeRange children);
  sizewalk::NodeId nearest(StepId step) const;
  std::vector<sizewalk::NodeId> foundOf(const Ways& ways) const;

  /// Parents before children.
  std::vector<Step> steps_;
  StepId focus_ = 0;
  StepId innermost_ = 0;
  Ways previous_;
  Ways next_;
  std::optional<StepId> current_;
  std::optional<StepId> top_;
  std::int64_t topAt_ = 0;
  std::array<bool, 4> sought_ = {};  // by part
  /// Found, but not read when last looked at, and something is sought inside.
  std::vector<StepId> unread_;
  std::vector<sizewalk::NodeId> newlyOpen_;
};

}  // namespace app
