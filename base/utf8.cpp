#include "base/utf8.h"

namespace base {

namespace {

/// How the lead byte of a UTF-8 sequence of `length` bytes is marked, and the least value it may
/// hold.
struct SequenceForm {
  unsigned leadMask;
  unsigned leadBits;
  std::size_t length;
  char32_t least;
};
constexpr SequenceForm kSequenceForms[] = {
    {0x80, 0x00, 1, 0x0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

constexpr std::string_view kReplacementBytes = "\xEF\xBF\xBD";

std::optional<Utf8Character> decode(std::string_view bytes, const SequenceForm& form) {
  char32_t value = static_cast<unsigned char>(bytes[0]) & ~form.leadMask;
  for (const char c : bytes.substr(1)) {
    if (!isContinuation(c)) return std::nullopt;
    value = value << 6 | (static_cast<unsigned char>(c) & 0x3F);
  }
  const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
  if (value < form.least || value > 0x10FFFF || surrogate) return std::nullopt;
  return Utf8Character{value, form.length};
}

}  // namespace

std::optional<Utf8Character> firstCharacter(std::string_view text) {
  if (text.empty()) return std::nullopt;
  const auto lead = static_cast<unsigned char>(text[0]);
  for (const SequenceForm& form : kSequenceForms) {
    if ((lead & form.leadMask) != form.leadBits) continue;
    if (text.size() < form.length) return std::nullopt;
    return decode(text.substr(0, form.length), form);
  }
  return std::nullopt;
}

std::string encoded(char32_t codePoint) {
  if (codePoint < 0x80) return {static_cast<char>(codePoint)};
  std::string bytes;
  const int continuations = codePoint < 0x800 ? 1 : codePoint < 0x10000 ? 2 : 3;
  const SequenceForm& form = kSequenceForms[continuations];
  bytes += static_cast<char>(form.leadBits | codePoint >> 6 * continuations);
  for (int i = continuations - 1; i >= 0; --i) {
    bytes += static_cast<char>(0x80 | (codePoint >> 6 * i & 0x3F));
  }
  return bytes;
}

std::string withReplacements(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const std::optional<Utf8Character> character = firstCharacter(text);
    const std::size_t length = character ? character->length : 1;
    valid.append(character ? text.substr(0, length) : kReplacementBytes);
    text.remove_prefix(length);
  }
  return valid;
}

std::size_t characterStart(std::string_view text, std::size_t position) {
  if (position >= text.size()) return text.size();
  while (position > 0 && isContinuation(text[position])) --position;
  return position;
}

}  // namespace base
