#pragma once

#include <optional>
#include <set>
#include <vector>

#include "ui/widgets/view.h"

namespace ui {

/// A view that consists of others beside each other. It hands what the pointer does to the one that
/// it is on: one that was pressed has the pointer until the last button is released, wherever it
/// goes, so that drags do not end at an edge. Keys go to the one that has the keyboard, which Tab
/// and presses move. Window thread only.
class ViewGroup : public View {
 public:
  void collectDamage(Damage* damage) override;
  void paint(Canvas& canvas) const override;
  void press(const MouseEvent& event) override;
  void motion(const MouseEvent& event) override;
  void release(const MouseEvent& event) override;
  void leave() override;
  void wheel(const MouseEvent& event, int dy) override;
  /// Of the view that has the keyboard, then Tab and Shift+Tab.
  bool key(const KeyEvent& event) override;
  void tick(std::int64_t nowMs) override;
  /// What is pressed is let go beside everything, so that it does not act, and the view that the
  /// pointer was on is told that it left.
  void releasePointer() override;
  PointerShape pointer() const override;

 protected:
  /// Adds a view, which outlives the group and whose frames are the group's. Painting, ticks and
  /// Tab go in the order of adding. Views do not overlap; one whose place is empty gets nothing.
  void add(View& view);

  /// The view that has the pointer: the one that was pressed, else the one that it is on; null
  /// where there is none.
  View* pointerOwner() const { return held_ ? held_ : entered_; }
  /// Null when none has.
  View* keyboardOwner() const { return keyboard_; }
  void giveKeyboardTo(View* view);

  /// Prepares all views.
  bool bringUpToDate() override;

 private:
  View* viewAt(int x, int y) const;
  void enter(View* view);
  bool cycleKeyboard(bool backwards);

  std::vector<View*> views_;
  /// The view that the pointer is on.
  View* entered_ = nullptr;
  /// The view that was pressed, null when nothing was or beside all of them, and the buttons that
  /// are down since then.
  View* held_ = nullptr;
  std::set<int> buttonsDown_;
  View* keyboard_ = nullptr;
};

}  // namespace ui
