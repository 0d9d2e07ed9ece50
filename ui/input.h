#pragma once

#include <cstdint>
#include <string>

namespace ui {

/// What the pointer looks like.
enum class PointerShape : int { Arrow = 0, Hand = 1, ResizeHorizontal = 2, ResizeVertical = 3 };

/// X's numbers of the buttons that choose, and open a context menu.
inline constexpr int kPrimaryButton = 1;
inline constexpr int kSecondaryButton = 3;

/// X's key symbol of the space bar.
inline constexpr unsigned long kSpaceKey = ' ';

/// Something the pointer did.
struct MouseEvent {
  /// Position in window pixels.
  int x = 0;
  int y = 0;
  /// X's number: 1 left, 2 middle, 3 right, 8 and up extra buttons, 4 to 7 the wheel; 0 for motion.
  int button = 0;
  /// 1 for a single press, 2 for a double one, and so on without bound; 1 for motion and wheel.
  int clicks = 1;
  /// Keys that were held; false for releases.
  bool shift = false;
  bool ctrl = false;
  /// When the window handed it on, as `steadyMs` tells.
  std::int64_t timeMs = 0;
  /// When the server saw it, in milliseconds that begin again after 2^32; of presses, releases and
  /// the wheel. Tells how far apart two of them were made, however late they are handed on.
  std::uint32_t serverMs = 0;
  /// False for a motion that only tells where the pointer rests, once what lay over it is gone.
  bool moved = true;
};

/// A key that was pressed.
struct KeyEvent {
  /// X's key symbol, as X11/keysymdef.h lists them: the character's code for ASCII. Letters come as
  /// the modifiers make them, upper case with Shift.
  unsigned long keysym = 0;
  /// What Xlib says that the key types, at most 32 bytes; empty for keys without text.
  std::string text;
  bool shift = false;
  bool ctrl = false;
  /// When the window handed it on, as `steadyMs` tells.
  std::int64_t timeMs = 0;
  /// What the key types as UTF-8, in every script, where `text` is what Xlib makes of it without a
  /// locale: ASCII or Latin-1. Empty for a dead key and for those that it changes; the character
  /// that comes of them follows by itself, as a key without symbol and text.
  std::string typed = {};
};

/// Counts the presses of a series of quick clicks in one place. All buttons share one series.
class ClickCounter {
 public:
  /// A press at (x, y) in device pixels, at `nowMs` milliseconds: its number in its series. It
  /// continues the series when it is at most 4 pixels away from the press before in either
  /// direction and at most 399 ms later.
  int press(int x, int y, std::int64_t nowMs);
  /// The number of the last press; 0 before any.
  int count() const { return count_; }

 private:
  std::int64_t lastPressMs_ = 0;
  int lastPressX_ = 0;
  int lastPressY_ = 0;
  int count_ = 0;
};

}  // namespace ui
