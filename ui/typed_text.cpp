#include "ui/typed_text.h"

#include <string_view>

#include "base/utf8.h"
#include "ui/keys.h"

namespace ui {

namespace {

using key::Keysym;

// X11/keysymdef.h: a Unicode character has its code point plus this as its symbol.
constexpr Keysym kUnicode = 0x01000000;

// The symbols from the first one on, in their order; a hyphen where there is none.
constexpr Keysym kFirstCyrillic = 0x6C0;
constexpr std::u32string_view kCyrillic =
    U"юабцдефгхийклмнопярстужвьызшэщчъЮАБЦДЕФГХИЙКЛМНОПЯРСТУЖВЬЫЗШЭЩЧЪ";
constexpr Keysym kFirstGreek = 0x7C1;
constexpr std::u32string_view kGreek = U"ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡΣ-ΤΥΦΧΨΩ-------αβγδεζηθικλμνξοπρσςτυφχψω";
constexpr Keysym kSmallYo = 0x6A3;
constexpr Keysym kCapitalYo = 0x6B3;

/// The character of a symbol in a table; 0 beside it.
char32_t lookedUp(Keysym keysym, Keysym first, std::u32string_view table) {
  if (keysym < first || keysym - first >= table.size()) return 0;
  const char32_t character = table[keysym - first];
  return character == U'-' ? 0 : character;
}

char32_t characterOf(Keysym keysym) {
  const bool ascii = keysym >= 0x20 && keysym <= 0x7E;
  const bool latin1 = keysym >= 0xA0 && keysym <= 0xFF;
  if (ascii || latin1) return static_cast<char32_t>(keysym);
  if (keysym > kUnicode && keysym <= kUnicode + 0x10FFFF) {
    return static_cast<char32_t>(keysym - kUnicode);
  }
  if (keysym == kSmallYo) return U'ё';
  if (keysym == kCapitalYo) return U'Ё';
  const char32_t cyrillic = lookedUp(keysym, kFirstCyrillic, kCyrillic);
  return cyrillic != 0 ? cyrillic : lookedUp(keysym, kFirstGreek, kGreek);
}

}  // namespace

std::string typedText(const KeyEvent& event) {
  const char32_t character = characterOf(event.keysym);
  return character == 0 ? event.text : base::encoded(character);
}

}  // namespace ui
