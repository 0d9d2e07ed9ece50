#pragma once

#include <optional>

namespace app {

/// Where on a list the pointer holds the row that it is on, so that the row stays there when others
/// come and go. Only a pointer that has moved in the list since that was shown holds anything: one
/// that rests was there for what lay in that place before. Device pixels of the window.
class PointerHold {
 public:
  struct Place {
    int x;
    int y;
  };

  /// In logical pixels, how far a hand moves the pointer with a press without meaning to.
  static constexpr double kHandSlack = 4;

  /// The list is shown anew: nobody knows where the pointer is. Until it is seen elsewhere, a move
  /// of at most `slack` pixels in either direction counts as none: a hand makes it with a press.
  void restart(int slack);
  /// The pointer is on the list, there, on one of its rows or beside them.
  void motion(const Place& now, bool onRow);
  /// The pointer is elsewhere in the window. True when it has let go of what it held while the list
  /// was covered.
  bool seenElsewhere();
  /// Something covers the list: what is held stays so until the pointer is seen again.
  void cover() { covered_ = true; }
  /// The pointer is on the list no more. True when it has let go.
  bool leave();

  const std::optional<Place>& place() const { return held_; }
  /// It has moved and is on the list, on a row or not.
  bool onList() const { return onList_; }

 private:
  bool isFarFrom(const Place& rest, const Place& now) const;

  /// Where it was seen first.
  std::optional<Place> rest_;
  int slack_ = 0;
  bool moved_ = false;
  bool onList_ = false;
  bool covered_ = false;
  std::optional<Place> held_;
};

}  // namespace app
