#pragma once

// The keys without a character of their own, by the numbers of X11/keysymdef.h, whose macros must
// not reach application code. Keys with an ASCII character have that as their number.

namespace ui::key {

using Keysym = unsigned long;

inline constexpr Keysym kBackSpace = 0xFF08;
inline constexpr Keysym kTab = 0xFF09;
/// Tab with Shift held, as most keyboards send it.
inline constexpr Keysym kLeftTab = 0xFE20;
inline constexpr Keysym kReturn = 0xFF0D;
inline constexpr Keysym kEscape = 0xFF1B;
inline constexpr Keysym kHome = 0xFF50;
inline constexpr Keysym kLeft = 0xFF51;
inline constexpr Keysym kUp = 0xFF52;
inline constexpr Keysym kRight = 0xFF53;
inline constexpr Keysym kDown = 0xFF54;
inline constexpr Keysym kPageUp = 0xFF55;
inline constexpr Keysym kPageDown = 0xFF56;
inline constexpr Keysym kEnd = 0xFF57;
inline constexpr Keysym kMenu = 0xFF67;
inline constexpr Keysym kKeypadEnter = 0xFF8D;
inline constexpr Keysym kKeypadHome = 0xFF95;
inline constexpr Keysym kKeypadLeft = 0xFF96;
inline constexpr Keysym kKeypadUp = 0xFF97;
inline constexpr Keysym kKeypadRight = 0xFF98;
inline constexpr Keysym kKeypadDown = 0xFF99;
inline constexpr Keysym kKeypadPageUp = 0xFF9A;
inline constexpr Keysym kKeypadPageDown = 0xFF9B;
inline constexpr Keysym kKeypadEnd = 0xFF9C;
inline constexpr Keysym kKeypadDelete = 0xFF9F;
inline constexpr Keysym kF1 = 0xFFBE;
inline constexpr Keysym kF5 = 0xFFC2;
inline constexpr Keysym kF10 = 0xFFC7;
inline constexpr Keysym kDelete = 0xFFFF;

/// The key that one of the number pad means while Num Lock is off; any other key as it is. Shift
/// and Tab make Tab, so that callers look at `KeyEvent::shift` alone.
constexpr Keysym plain(Keysym keysym) {
  switch (keysym) {
    case kLeftTab:
      return kTab;
    case kKeypadEnter:
      return kReturn;
    case kKeypadDelete:
      return kDelete;
    case kKeypadEnd:
      return kEnd;
    default:
      break;
  }
  const bool keypad = keysym >= kKeypadHome && keysym <= kKeypadPageDown;
  return keypad ? keysym - kKeypadHome + kHome : keysym;
}

}  // namespace ui::key
