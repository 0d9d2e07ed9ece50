#pragma once

#include <functional>
#include <vector>

#include "sizewalk/file_tree.h"

namespace app {

/// Which folder fills the map, and the way the user took there. Window thread only.
class MapFocus {
 public:
  /// The folder in focus and how it was come to.
  struct Way {
    sizewalk::NodeId current = sizewalk::kRootNode;
    /// Where going back in leads.
    sizewalk::NodeId innermost = sizewalk::kRootNode;
    // The newest last.
    std::vector<sizewalk::NodeId> previous;
    std::vector<sizewalk::NodeId> next;
  };

  /// The folder in focus is another one.
  std::function<void()> onChanged;

  /// Begins anew at the scanned folder of `tree`, which outlives being used here; null when no scan
  /// is shown. Not reported.
  void reset(const sizewalk::FileTree* tree);

  Way way() const { return {current_, innermost_, previous_, next_}; }
  /// Has the focus be where that way leads, or in the nearest folder around that can be focused.
  /// All of its nodes are in the tree.
  void takeUp(Way way);

  sizewalk::NodeId current() const { return current_; }
  bool canGoOut() const { return current_ != sizewalk::kRootNode; }

  /// Focuses `folder`; does nothing where it is not a folder of the tree.
  void go(sizewalk::NodeId folder);
  /// Focuses the entry of the focused folder on the way to `node`, if that is a folder.
  void goTowards(sizewalk::NodeId node);
  /// One level out, further where that level is not to be seen any more. Does nothing at the
  /// scanned folder.
  void goOut();
  /// Goes out as far as the nearest folder that is visible, where the one in focus is not any more.
  /// To be called when the tree has changed.
  void keepVisible();
  /// One level back in, on the way to the folder that going out left behind.
  void goBackIn();
  /// To the folder that was in focus before the current one, and back again. Passes over what can
  /// be focused no longer: what is taken out or dropped, or lies inside such a folder.
  void goToPrevious();
  void goToNext();

 private:
  bool canFocus(sizewalk::NodeId folder) const;
  /// Whether it is to be taken up again: while it is read there may be nothing in it yet.
  bool isFilled(sizewalk::NodeId folder) const;
  void moveTo(sizewalk::NodeId folder);
  void goBackOver(std::vector<sizewalk::NodeId>* way, std::vector<sizewalk::NodeId>* wayBack);

  const sizewalk::FileTree* tree_ = nullptr;
  sizewalk::NodeId current_ = sizewalk::kRootNode;
  /// Where going back in leads.
  sizewalk::NodeId innermost_ = sizewalk::kRootNode;
  // The newest last.
  std::vector<sizewalk::NodeId> previous_;
  std::vector<sizewalk::NodeId> next_;
};

}  // namespace app
