#pragma once

#include <string>

#include "ui/input.h"

namespace ui {

/// The character that a key types, as UTF-8; empty for keys without one. `KeyEvent::text` is what
/// Xlib makes of a key without a locale, which is ASCII or Latin-1 and lacks every other script:
/// this goes by the key symbol instead. Knows the symbols of Unicode characters, of ASCII and
/// Latin-1, and the older ones that Cyrillic and Greek layouts still send.
std::string typedText(const KeyEvent& event);

}  // namespace ui
