#pragma once

/// X's key symbols for the keys that are no characters, as `KeyEvent::keysym` has them.
/// X11/keysymdef.h has them all, as macros; input_events.cpp checks these against it.
namespace ui::key {

inline constexpr unsigned long kBackspace = 0xff08;
inline constexpr unsigned long kTab = 0xff09;
/// What Tab becomes with Shift.
inline constexpr unsigned long kBackTab = 0xfe20;
inline constexpr unsigned long kReturn = 0xff0d;
inline constexpr unsigned long kKeypadEnter = 0xff8d;
inline constexpr unsigned long kEscape = 0xff1b;
inline constexpr unsigned long kSpace = 0x0020;
inline constexpr unsigned long kHome = 0xff50;
inline constexpr unsigned long kLeft = 0xff51;
inline constexpr unsigned long kUp = 0xff52;
inline constexpr unsigned long kRight = 0xff53;
inline constexpr unsigned long kDown = 0xff54;
inline constexpr unsigned long kPageUp = 0xff55;
inline constexpr unsigned long kPageDown = 0xff56;
inline constexpr unsigned long kEnd = 0xff57;
inline constexpr unsigned long kMenu = 0xff67;
inline constexpr unsigned long kDelete = 0xffff;
inline constexpr unsigned long kF1 = 0xffbe;
inline constexpr unsigned long kF5 = 0xffc2;
inline constexpr unsigned long kF10 = 0xffc7;

}  // namespace ui::key
