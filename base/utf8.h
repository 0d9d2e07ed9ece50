#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace base {

/// One character of a UTF-8 text, and the bytes that it takes there.
struct Utf8Character {
  char32_t codePoint;
  std::size_t length;
};

/// The character that `text` begins with; nothing when it begins with no well-formed sequence
/// (Unicode Standard, table 3-7: neither overlong nor a surrogate nor past U+10FFFF) or is empty.
std::optional<Utf8Character> firstCharacter(std::string_view text);

/// The bytes of a code point, which is none of the surrogates.
std::string encoded(char32_t codePoint);

/// What stands for a byte that belongs to no character.
inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// True for the bytes of a sequence after its first.
constexpr bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

/// `text` with every byte that belongs to no character replaced by U+FFFD.
std::string withReplacements(std::string_view text);

/// The last place of `text` at or before `position` where a character begins, or its end. `text` is
/// valid UTF-8.
std::size_t characterStart(std::string_view text, std::size_t position);

}  // namespace base
